// SPDX-License-Identifier: GPL-3.0-or-later
#include <MeshVisitor.h>

#include <string>
#include <vector>

#include <BiarcTubeMesh.h>
#include <gmock/gmock.h>

#include "support/CoinEnvironment.h"
#include "support/sampleNodes.h"
#include "support/triangles.h"

using testing::ElementsAre;

namespace {

class GridMesh : public Mesh
{
public:
    GridMesh(int rows, int columns) : Mesh(false, false)
    {
        setWidth(columns);
        setHeight(rows);
        allocateMemory();
        for (int i = 0; i < rows; ++i) {
            for (int j = 0; j < columns; ++j)
                getPoints()[i][j] = {double(j), double(i), 0};
        }
        computeNormals();
    }
};

// "strip 1,0 0,0 1,1 0,1": rows and columns as told.
class Listener : public MeshVisitor
{
public:
    void begin(Kind kind, int material) override
    {
        texts.push_back(kind == FAN ? "fan in " + std::to_string(material) + ":" : "strip:");
    }
    void vertex(const Vertex& v) override
    {
        texts.back() += " " + std::to_string(v.row) + "," + std::to_string(v.column);
        vertices.push_back(v);
    }
    void end() override { texts.back() += "."; }

    std::vector<std::string> texts;
    std::vector<Vertex> vertices;
};

// The triangles that strips and fans are, as Coin makes them.
class Triangulator : public MeshVisitor
{
public:
    void begin(Kind newKind, int /*material*/) override
    {
        kind = newKind;
        corners.clear();
    }
    void vertex(const Vertex& v) override
    {
        corners.push_back(corner(v.point, v.normal, kind == FAN ? v.row : v.material));
    }
    void end() override
    {
        const auto made = kind == FAN ? fanTriangles(corners) : stripTriangles(corners);
        triangles.insert(triangles.end(), made.begin(), made.end());
    }

    std::vector<Triangle> triangles;

private:
    Kind kind = STRIP;
    std::vector<Corner> corners;
};

} // namespace

TEST(MeshVisitor, IsToldAStripBetweenEveryTwoRowsTheFurtherRowFirst)
{
    GridMesh mesh(3, 2);
    Listener listener;
    mesh.visit(listener);
    EXPECT_THAT(listener.texts, ElementsAre("strip: 1,0 0,0 1,1 0,1.", "strip: 2,0 1,0 2,1 1,1."));
}

TEST(MeshVisitor, IsToldPlaceMaterialAndTextureCoordinatesOfEachVertex)
{
    GridMesh mesh(3, 5);
    Listener listener;
    mesh.visit(listener);
    const MeshVisitor::Vertex& v = listener.vertices[10 + 2 * 3]; // row 2, column 3
    EXPECT_EQ(v.row, 2);
    EXPECT_EQ(v.column, 3);
    EXPECT_EQ(v.point.x, 3);
    EXPECT_EQ(v.point.y, 2);
    EXPECT_EQ(v.normal.z, 1);
    EXPECT_EQ(v.material, mesh.getMaterialIndex(2, 3));
    EXPECT_EQ(v.s, 0.75);
    EXPECT_EQ(v.t, 1);
}

TEST(MeshVisitor, IsToldATubesCapsLastFromTheirLastPointToTheFirst)
{
    const BentCurve curve(0, 2);
    BiarcTubeMesh tube(curve.points, curve.rotations, 0.1, 3, 1, true, true);
    Listener listener;
    tube.visit(listener);
    EXPECT_THAT(listener.texts, ElementsAre("strip: 1,0 0,0 1,1 0,1 1,2 0,2 1,3 0,3.",
                                            "fan in 1: 0,2 0,1 0,0.", "fan in 0: 1,2 1,1 1,0."));
    // On purpose divided by width and height, not by one less.
    EXPECT_EQ(listener.vertices.back().t, 0.5);
    EXPECT_EQ(listener.vertices[8].s, 0.5);
}

TEST(MeshVisitor, IsToldNothingOfAnInvalidMesh)
{
    Listener listener;
    GridMesh(0, 3).visit(listener);
    TubeMesh(0.1, 5, false, false).visit(listener);
    EXPECT_TRUE(listener.texts.empty());
}

TEST(MeshVisitor, IsToldWhatARodGenerates)
{
    initCoinOnce();
    const NodeRef<SoRod> rod(makeBentRod());
    Triangulator triangulator;
    rod->getTubeMesh()->visit(triangulator);
    rod->getRibbonMesh()->visit(triangulator);
    EXPECT_GT(triangulator.triangles.size(), 50u);
    EXPECT_EQ(triangulator.triangles, generatedTriangles(rod));
}
