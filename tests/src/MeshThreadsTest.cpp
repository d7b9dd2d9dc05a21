// SPDX-License-Identifier: GPL-3.0-or-later
// Meshes are built in any thread, several at once.
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include <BiarcRibbonMesh.h>
#include <BiarcTubeMesh.h>
#include <ColourMapper.h>
#include <MeshVisitor.h>
#include <RibbonMesh.h>
#include <SoRod.h>
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

// All kinds of meshes of one rod, of its own length.
std::vector<double> build(unsigned seed)
{
    const RandomRod rod = randomRod(RodKind::Smooth, 200 + int(seed), seed);
    RandomNumbers random(seed);
    std::vector<Vector> edge, directions;
    for (const Vector& point : rod.points) {
        edge.push_back(point + 0.3 * random.unitVector());
        directions.push_back(random.unitVector());
    }
    std::vector<Vector> base = rod.points;
    BiarcTubeMesh biarcTube(rod.points, RADIUS, SLICES, ROWS, false, false);
    TubeMesh tube(rod.points, rod.rotations, RADIUS, SLICES, false, false);
    BiarcRibbonMesh biarcRibbon(base, edge, WIDTH, ROWS);
    RibbonMesh ribbon(rod.points, directions, WIDTH);
    const SoRod::Meshes meshes =
        SoRod::makeMeshes(rod.points, rod.rotations, RADIUS, WIDTH, SLICES, ROWS, true);

    std::vector<double> numbers;
    for (Mesh* mesh :
         {static_cast<Mesh*>(&biarcTube), static_cast<Mesh*>(&tube),
          static_cast<Mesh*>(&biarcRibbon), static_cast<Mesh*>(&ribbon),
          static_cast<Mesh*>(meshes.tube.get()), static_cast<Mesh*>(meshes.ribbon.get())}) {
        const std::vector<double> more = Numbers::of(*mesh);
        numbers.insert(numbers.end(), more.begin(), more.end());
    }
    return numbers;
}

const int THREADS = 4, ROUNDS = 8;

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
    const auto together = inThreads<std::vector<double>>(build);
    for (unsigned seed = 0; seed < unsigned(THREADS * ROUNDS); ++seed) {
        ASSERT_GT(together[seed].size(), 10000u);
        EXPECT_TRUE(together[seed] == build(seed)) << seed; // too many numbers to print
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
