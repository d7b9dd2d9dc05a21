// SPDX-License-Identifier: GPL-3.0-or-later
// How a mesh takes over the memory of the one that it replaces.
#include <memory>
#include <typeinfo>

#include <BiarcRibbonMesh.h>
#include <BiarcTubeMesh.h>
#include <gtest/gtest.h>

#include <algebra3d/Matrix3.h>

#include "support/AllocationCount.h"
#include "support/MeshComparison.h"
#include "support/PlainReference.h"
#include "support/RandomRods.h"

using Vector = algebra3d::Vector3<double>;

namespace {

const double RADIUS = 0.25, WIDTH = 0.4;

// One rod of a sequence, in which each kind of mesh replaces the one before.
struct Case
{
    RandomRod rod;
    std::vector<Vector> edge;
    int slices, rows;

    Case(int points, int ringSlices, int rowsPerBiarc, unsigned seed = 1)
        : rod(randomRod(RodKind::SMOOTH, points, seed)), slices(ringSlices), rows(rowsPerBiarc)
    {
        RandomNumbers random(seed);
        for (const Vector& point : rod.points)
            edge.push_back(point + 0.3 * random.unitVector());
    }
};

template <typename AnyMesh>
std::unique_ptr<AnyMesh> build(const Case& of, AnyMesh* replaced);

template <>
std::unique_ptr<BiarcTubeMesh> build(const Case& of, BiarcTubeMesh* replaced)
{
    return std::make_unique<BiarcTubeMesh>(of.rod.points, RADIUS, of.slices, of.rows, false, false,
                                           replaced);
}

template <>
std::unique_ptr<TubeMesh> build(const Case& of, TubeMesh* replaced)
{
    return std::make_unique<TubeMesh>(of.rod.points, of.rod.rotations, RADIUS, of.slices, false,
                                      false, replaced);
}

template <>
std::unique_ptr<BiarcRibbonMesh> build(const Case& of, BiarcRibbonMesh* replaced)
{
    std::vector<Vector> a = of.rod.points, b = of.edge;
    return std::make_unique<BiarcRibbonMesh>(a, b, WIDTH, of.rows, replaced);
}

plain::Grid expectedMesh(const Case& of, const BiarcTubeMesh&)
{
    const auto points = plain::toPlain(of.rod.points);
    return plain::biarcTube(plain::curveThrough(points, plain::estimatedTangents(points)), RADIUS,
                            of.slices, of.rows);
}

plain::Grid expectedMesh(const Case& of, const TubeMesh&)
{
    std::vector<plain::Vec> d2s;
    for (const auto& rotation : of.rod.rotations)
        d2s.push_back(plain::toPlain(algebra3d::Matrix3<double>(rotation).getColumn(1)));
    return plain::tube(plain::toPlain(of.rod.points), d2s, RADIUS, of.slices);
}

plain::Grid expectedMesh(const Case& of, const BiarcRibbonMesh&)
{
    return plain::biarcRibbon(plain::toPlain(of.rod.points), plain::toPlain(of.edge), of.rows);
}

// Memory that was never filled before holds no vectors until the mesh makes them.
void expectVectors(Mesh& mesh)
{
    for (int row = 0; row < mesh.getHeight(); ++row) {
        for (int column = 0; column < mesh.getWidth(); ++column) {
            const Vector& point = mesh.getPoints()[row][column];
            const Vector& normal = mesh.getNormals()[row][column];
            ASSERT_TRUE(typeid(point) == typeid(Vector) && typeid(normal) == typeid(Vector))
                << "row " << row << ", column " << column;
        }
    }
}

void expectEmptyTables(const TubeMesh&) {}

template <typename BiarcMesh>
void expectEmptyTables(const BiarcMesh& mesh)
{
    EXPECT_TRUE(mesh.getParamValues().empty());
    EXPECT_TRUE(mesh.getInterpParamValues().empty());
}

} // namespace

template <typename AnyMesh>
class MeshMemory : public testing::Test
{
};

using MeshTypes = testing::Types<BiarcTubeMesh, TubeMesh, BiarcRibbonMesh>;
TYPED_TEST_SUITE(MeshMemory, MeshTypes, );

TYPED_TEST(MeshMemory, IsKeptByAMeshOfTheSameSize)
{
    const Case first(50, 8, 5, 1), second(50, 8, 5, 2);
    auto mesh = build<TypeParam>(first, nullptr);
    const Vector* const block = mesh->getPoints()[0];

    auto next = build<TypeParam>(second, mesh.get());
    EXPECT_EQ(next->getPoints()[0], block);
    expectSameMesh(*next, expectedMesh(second, *next));
}

TYPED_TEST(MeshMemory, LeavesTheReplacedMeshEmpty)
{
    const Case some(20, 8, 5);
    auto mesh = build<TypeParam>(some, nullptr);
    auto next = build<TypeParam>(some, mesh.get());

    EXPECT_FALSE(mesh->isValid());
    EXPECT_EQ(mesh->getHeight(), 0);
    EXPECT_EQ(mesh->getPoints(), nullptr);
    EXPECT_EQ(mesh->getNormals(), nullptr);
    expectEmptyTables(*mesh);

    // Nothing is lost by replacing what is empty.
    auto third = build<TypeParam>(some, mesh.get());
    expectSameMesh(*third, expectedMesh(some, *third));
    expectSameMesh(*next, expectedMesh(some, *next));
}

TYPED_TEST(MeshMemory, OfAnySizeGivesTheSameMeshAsFreshMemory)
{
    RandomNumbers random(7);
    std::unique_ptr<TypeParam> mesh;
    for (unsigned seed = 0; seed < 40; ++seed) {
        SCOPED_TRACE(seed);
        const Case next(random.integer(2, 120), random.integer(3, 20), random.integer(1, 9), seed);
        mesh = build<TypeParam>(next, mesh.get());
        expectSameMesh(*mesh, expectedMesh(next, *mesh));
        expectVectors(*mesh);
    }
}

TYPED_TEST(MeshMemory, IsGivenBackByAMeshThatNeedsMuchLess)
{
    const Case large(500, 8, 5), small(20, 8, 5);
    auto mesh = build<TypeParam>(large, nullptr);
    const AllocationCount count;
    auto next = build<TypeParam>(small, mesh.get());

    // The block of the grid is new; tables are small and kept.
    EXPECT_EQ(count.largest(),
              2 * sizeof(Vector) * std::size_t(next->getHeight()) * std::size_t(next->getWidth()));
}

TYPED_TEST(MeshMemory, OfTooFewPointsStaysEmpty)
{
    const Case some(20, 8, 5), onePoint(1, 8, 5);
    auto mesh = build<TypeParam>(some, nullptr);
    auto empty = build<TypeParam>(onePoint, mesh.get());

    EXPECT_FALSE(empty->isValid());
    EXPECT_EQ(empty->getPoints(), nullptr);
    EXPECT_EQ(empty->getNormals(), nullptr);
    expectEmptyTables(*empty);
}

// Its tables are taken over, but no nodes.
TEST(MeshMemoryTables, OfAMeshThatForgotItsCurveGoWithTooFewPoints)
{
    const Case some(20, 8, 5), onePoint(1, 8, 5);
    auto tube = build<BiarcTubeMesh>(some, nullptr);
    tube->forgetCurve();
    expectEmptyTables(*build<BiarcTubeMesh>(onePoint, tube.get()));
    auto ribbon = build<BiarcRibbonMesh>(some, nullptr);
    ribbon->forgetCurves();
    expectEmptyTables(*build<BiarcRibbonMesh>(onePoint, ribbon.get()));
}

TEST(MeshMemoryCount, AMeshOfTheSameSizeAllocatesNothing)
{
    const Case first(50, 8, 5, 1), second(50, 8, 5, 2);
    std::vector<Vector> edgeA = second.rod.points, edgeB = second.edge;
    auto biarcTube = build<BiarcTubeMesh>(first, nullptr);
    auto tube = build<TubeMesh>(first, nullptr);
    auto ribbon = build<BiarcRibbonMesh>(first, nullptr);

    const Vector x(1, 0, 0);
    const AllocationCount count;
    BiarcTubeMesh a(second.rod.points, RADIUS, 8, 5, false, false, biarcTube.get());
    BiarcTubeMesh b(second.rod.points, x, x, RADIUS, 8, 5, false, false, &a);
    BiarcTubeMesh c(second.rod.points, second.rod.rotations, RADIUS, 8, 5, false, false, &b);
    TubeMesh d(second.rod.points, second.rod.rotations, RADIUS, 8, false, false, tube.get());
    BiarcRibbonMesh e(edgeA, edgeB, WIDTH, 5, ribbon.get());
    EXPECT_EQ(count.blocks(), 0u);
    EXPECT_TRUE(c.isValid() && d.isValid() && e.isValid());
}
