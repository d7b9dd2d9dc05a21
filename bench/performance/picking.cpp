// SPDX-License-Identifier: GPL-3.0-or-later
// How fast rays find what they hit.
#include <cmath>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <Inventor/SoDB.h>
#include <Inventor/SoPrimitiveVertex.h>
#include <Inventor/actions/SoRayPickAction.h>

#include <BiarcTubeMesh.h>
#include <SoMeshShape.h>

#include "measuring.h"

namespace {

using Vector = algebra3d::Vector3<double>;

const int SLICES = 12, SUBSEGMENTS = 10;

// A helix on a slowly bending axis; with more points it is longer.
std::unique_ptr<BiarcTubeMesh> makeTube(int vertices)
{
    std::vector<Vector> points;
    for (int i = 0; i <= vertices / (SUBSEGMENTS * (SLICES + 1)); ++i) {
        const double a = 0.3 * i, bend = 1e-4 * i;
        points.emplace_back(std::cos(a) + 500 * std::cos(bend), std::sin(a), 500 * std::sin(bend));
    }
    return std::make_unique<BiarcTubeMesh>(points, 0.1, SLICES, SUBSEGMENTS, false, false);
}

// Shows a tube as the nodes do, or tells Coin each of its triangles whatever the action.
class TubeShape : public SoMeshShape
{
public:
    TubeShape(BiarcTubeMesh& shownTube, bool tellsAll) : tube(shownTube), plain(tellsAll) {}
    void GLRender(SoGLRenderAction*) override {}

protected:
    void generatePrimitives(SoAction* action) override
    {
        if (plain)
            generateAll(action);
        else
            tube.generate(this, action);
    }
    void computeBBox(SoAction*, SbBox3f& box, SbVec3f& centre) override
    {
        box = tube.getBBox();
        centre = tube.getCentre();
    }

private:
    void addVertex(const Vector& point, const Vector& normal, int material)
    {
        SoPrimitiveVertex vertex;
        vertex.setPoint(SbVec3f(float(point.x), float(point.y), float(point.z)));
        vertex.setNormal(SbVec3f(float(normal.x), float(normal.y), float(normal.z)));
        vertex.setMaterialIndex(material);
        shapeVertex(&vertex);
    }
    void generateAll(SoAction* action)
    {
        const auto points = tube.getPoints(), normals = tube.getNormals();
        for (int i = 0; i + 1 < tube.getHeight(); ++i) {
            beginShape(action, TRIANGLE_STRIP);
            for (int j = 0; j < tube.getWidth(); ++j) {
                for (const int row : {i + 1, i})
                    addVertex(points[row][j], normals[row][j], row);
            }
            endShape();
        }
        for (const int row : {0, tube.getHeight() - 1}) {
            beginShape(action, TRIANGLE_FAN);
            for (int k = tube.getWidth() - 2; k >= 0; --k)
                addVertex(points[row][k], tube.getLowerCapNormal(), row);
            endShape();
        }
    }

    BiarcTubeMesh& tube;
    const bool plain;
};

struct Ray
{
    SbVec3f start, direction;
};

std::function<void()> pick(SoNode* shape, const Ray& ray)
{
    return [=] {
        SoRayPickAction action(SbViewportRegion(640, 480));
        action.setRay(ray.start, ray.direction);
        action.apply(shape);
    };
}

void compareSizes(Table& table, int vertices, const std::string& size)
{
    const std::unique_ptr<BiarcTubeMesh> tube = makeTube(vertices);
    SoNode* const quick = new TubeShape(*tube, false);
    SoNode* const plain = new TubeShape(*tube, true);
    quick->ref();
    plain->ref();

    // Across the tube, aimed at its surface, and past everything.
    const int row = tube->getHeight() / 2;
    const Vector point = tube->getPoints()[row][0], outward = tube->getNormals()[row][0];
    const SbVec3f target(float(point.x), float(point.y), float(point.z));
    const SbVec3f direction(float(-outward.x), float(-outward.y), float(-outward.z));
    const Ray hit{target - direction * 20, direction};
    const Ray miss{target + SbVec3f(0, 20, 0), SbVec3f(1, 0, 0.1F)};

    const std::vector<double> times = medianSeconds(
        {pick(quick, hit), pick(plain, hit), pick(quick, miss), pick(plain, miss), [&] {
             quick->touch();
             pick(quick, hit)();
         }});
    const std::string name = size + " vertices";
    const double microseconds = 1e6;
    table.limit("A hit, " + name, times[0] * microseconds, "µs", 50);
    table.compare("A hit, " + name, times[0] * microseconds, "every triangle",
                  times[1] * microseconds, "µs", Table::Goal::None, 0);
    table.limit("A miss, " + name, times[2] * microseconds, "µs", 5);
    table.compare("A miss, " + name, times[2] * microseconds, "every triangle",
                  times[3] * microseconds, "µs", Table::Goal::None, 0);
    table.compare("The first pick, " + name, times[4] * microseconds, "every triangle",
                  times[1] * microseconds, "µs", Table::Goal::AtMost, 1);
    quick->unref();
    plain->unref();
}

} // namespace

int main()
{
    SoDB::init();
    SoMeshShape::initClass();
    Table table("Picking",
                "The time of a ray pick, action and all, on a tube of 12 slices. A hit goes across "
                "the tube in its middle;\na miss passes all of it. The first pick after a change "
                "also makes the boxes that the others use.\nBeside it, in the same process, Coin "
                "is told every triangle.");
    compareSizes(table, 10000, "10⁴");
    compareSizes(table, 100000, "10⁵");
    compareSizes(table, 1000000, "10⁶");
    table.print();
}
