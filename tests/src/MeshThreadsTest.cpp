// SPDX-License-Identifier: GPL-3.0-or-later
// Meshes are built in any thread, several at once.
#include <functional>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

#include <BiarcRibbonMesh.h>
#include <BiarcTubeMesh.h>
#include <ColourMapper.h>
#include <MeshVisitor.h>
#include <RibbonMesh.h>
#include <SoRod.h>
#include <algebra3d/Matrix3.h>
#include <gtest/gtest.h>

#include "support/RandomRods.h"

using Vector = algebra3d::Vector3<double>;

namespace {

const double RADIUS = 0.25, WIDTH = 0.4;
const int SLICES = 9, ROWS = 3;

// Every double of a mesh, and those that its triangles are told with.
class Numbers : public MeshVisitor
{
public:
    static std::vector<double> of(Mesh& mesh)
    {
        Numbers collected;
        for (int row = 0; row < mesh.getHeight(); ++row) {
            for (int column = 0; column < mesh.getWidth(); ++column) {
                collected.add(mesh.getPoints()[row][column]);
                collected.add(mesh.getNormals()[row][column]);
            }
        }
        mesh.visit(collected);
        return collected.numbers;
    }

    void begin(Kind, int) override {}
    void vertex(const Vertex& vertex) override { add(vertex.point); }
    void end() override {}

private:
    void add(const Vector& v) { numbers.insert(numbers.end(), {v.x, v.y, v.z}); }

    std::vector<double> numbers;
};

struct Case
{
    RandomRod rod;
    std::vector<Vector> edge, directions;
};

Case makeCase(unsigned seed)
{
    Case made{randomRod(RodKind::SMOOTH, 400 + int(seed), seed), {}, {}};
    RandomNumbers random(seed);
    for (const Vector& point : made.rod.points) {
        made.edge.push_back(point + 0.3 * random.unitVector());
        made.directions.push_back(random.unitVector());
    }
    return made;
}

using Meshes = std::vector<std::unique_ptr<Mesh>>;

// All kinds of meshes of one rod.
Meshes build(const Case& of)
{
    std::vector<Vector> base = of.rod.points, edge = of.edge;
    Meshes meshes;
    meshes.push_back(
        std::make_unique<BiarcTubeMesh>(of.rod.points, RADIUS, SLICES, ROWS, false, false));
    meshes.push_back(
        std::make_unique<TubeMesh>(of.rod.points, of.rod.rotations, RADIUS, SLICES, false, false));
    meshes.push_back(std::make_unique<BiarcRibbonMesh>(base, edge, WIDTH, ROWS));
    meshes.push_back(std::make_unique<RibbonMesh>(of.rod.points, of.directions, WIDTH));
    SoRod::Meshes rod =
        SoRod::makeMeshes(of.rod.points, of.rod.rotations, RADIUS, WIDTH, SLICES, ROWS, true);
    meshes.push_back(std::move(rod.tube));
    meshes.push_back(std::move(rod.ribbon));
    return meshes;
}

const int THREADS = 4, ROUNDS = 25;

// What each thread makes in its rounds, all of them at work at once.
template <typename Result>
std::vector<Result> inThreads(const std::function<Result(unsigned)>& make)
{
    std::vector<Result> results(THREADS * ROUNDS);
    std::vector<std::thread> threads;
    for (int t = 0; t < THREADS; ++t) {
        threads.emplace_back([&, t] {
            for (int i = t * ROUNDS; i < (t + 1) * ROUNDS; ++i)
                results[std::size_t(i)] = make(unsigned(i));
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    return results;
}

} // namespace

TEST(MeshThreads, MeshesBuiltAtOnceAreThoseBuiltOneAfterTheOtherBitForBit)
{
    std::vector<Case> cases;
    for (unsigned seed = 0; seed < unsigned(THREADS * ROUNDS); ++seed)
        cases.push_back(makeCase(seed));
    const auto together = inThreads<Meshes>([&](unsigned i) { return build(cases[i]); });
    for (std::size_t i = 0; i < cases.size(); ++i) {
        const Meshes alone = build(cases[i]);
        for (std::size_t kind = 0; kind < alone.size(); ++kind) {
            ASSERT_GT(alone[kind]->getHeight(), 399);
            // Too many numbers to print.
            EXPECT_TRUE(Numbers::of(*together[i][kind]) == Numbers::of(*alone[kind]))
                << "rod " << i << ", mesh " << kind;
        }
    }
}

TEST(MeshThreads, OneColourMapperIsReadBySeveral)
{
    const ColourMapper mapper(0, 1);
    const auto colours = [&mapper](unsigned seed) {
        std::vector<double> read;
        for (int i = 0; i < 10000; ++i) {
            ColourMapper::Colour colour;
            mapper.getColour((i + seed / 100.0) / 10000, colour);
            read.insert(read.end(), {colour.x, colour.y, colour.z});
        }
        return read;
    };
    const auto together = inThreads<std::vector<double>>(colours);
    for (unsigned seed = 0; seed < unsigned(THREADS * ROUNDS); ++seed)
        EXPECT_TRUE(together[seed] == colours(seed)) << seed;
}

TEST(MeshThreads, OfManyPointsTubeAndRibbonAreThoseBuiltOneAfterTheOther)
{
    for (const int count : {999, 1000, 2500}) {
        const RandomRod rod = randomRod(RodKind::SMOOTH, count, unsigned(count));
        const SoRod::Meshes both =
            SoRod::makeMeshes(rod.points, rod.rotations, RADIUS, WIDTH, SLICES, ROWS, false, false);
        const auto director = [](const algebra3d::Quaternion<double>& rotation, int column) {
            return algebra3d::Matrix3<double>(rotation).getColumn(column);
        };
        BiarcTubeMesh tube(rod.points, director(rod.rotations.front(), 2),
                           director(rod.rotations.back(), 2), RADIUS, SLICES, ROWS, false, false);
        std::vector<Vector> base = rod.points, edge;
        for (std::size_t i = 0; i < base.size(); ++i)
            edge.push_back(base[i] + WIDTH * director(rod.rotations[i], 1));
        BiarcRibbonMesh ribbon(base, edge, WIDTH, ROWS);
        EXPECT_EQ(Numbers::of(*both.tube), Numbers::of(tube)) << count;
        EXPECT_EQ(Numbers::of(*both.ribbon), Numbers::of(ribbon)) << count;
    }
}
