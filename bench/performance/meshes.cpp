// SPDX-License-Identifier: GPL-3.0-or-later
// How fast meshes are built. With arguments it only builds tubes, for the counting of
// instructions: meshes POINTS SLICES BUILDS.
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>

#include <BiarcRibbonMesh.h>
#include <BiarcTubeMesh.h>
#include <TubeMesh.h>
#include <algebra3d/Matrix3.h>
#include <support/PlainReference.h>

#include "measuring.h"

#ifdef STRANDVIEW_WITH_VTK
#include <vtkCellArray.h>
#include <vtkNew.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>
#include <vtkTubeFilter.h>
#endif

namespace {

using Vector = algebra3d::Vector3<double>;
using Rotation = algebra3d::Quaternion<double>;

const double RADIUS = 0.1, WIDTH = 0.3;
const int SUBSEGMENTS = 10;

// A helix on a slowly bending axis, so no arc is straight.
struct Rod
{
    std::vector<Vector> points, edge, d2s;
    std::vector<Rotation> rotations;

    explicit Rod(int size)
    {
        for (int i = 0; i < size; ++i) {
            const double a = 0.3 * i, bend = 1e-3 * i;
            points.emplace_back(std::cos(a) + 50 * std::cos(bend), std::sin(a),
                                50 * std::sin(bend));
            rotations.emplace_back(std::sin(a / 2), 0, 0, std::cos(a / 2));
            d2s.push_back(algebra3d::Matrix3<double>(rotations.back()).getColumn(1));
            edge.push_back(points.back() + WIDTH * d2s.back());
        }
    }
};

// Each build takes over the memory of the one before, as a node's does.
class TubeBuilder
{
public:
    TubeBuilder(int points, int ringSlices, int ringsPerSegment = SUBSEGMENTS)
        : rod(points), slices(ringSlices), subsegments(ringsPerSegment)
    {}

    void build()
    {
        mesh = std::make_unique<BiarcTubeMesh>(rod.points, RADIUS, slices, subsegments, false,
                                               false, mesh.get());
    }
    void buildInFreshMemory()
    {
        BiarcTubeMesh fresh(rod.points, RADIUS, slices, subsegments, false, false);
    }
    double vertices() const
    {
        return (double(subsegments) * double(rod.points.size() - 1) + 1) * (slices + 1);
    }
    BiarcTubeMesh& getMesh() const { return *mesh; }
    const Rod& getRod() const { return rod; }

private:
    Rod rod;
    int slices, subsegments;
    std::unique_ptr<BiarcTubeMesh> mesh;
};

double nanoseconds(double seconds, double per) { return seconds * 1e9 / per; }

std::string named(const std::string& what, int points, int slices)
{
    return what + ", " + (points == 1000 ? "10³" : "10⁴") + " points, " + std::to_string(slices) +
           " slices";
}

#ifdef STRANDVIEW_WITH_VTK
// The tube around the same samples, given as they are: no interpolation is left to do.
class VtkTube
{
public:
    VtkTube(BiarcTubeMesh& mesh, int slices)
    {
        const int rings = mesh.getHeight();
        vtkNew<vtkPoints> points;
        points->SetDataTypeToDouble();
        vtkNew<vtkCellArray> lines;
        lines->InsertNextCell(rings);
        for (int ring = 0; ring < rings; ++ring) {
            const Vector* const columns = mesh.getPoints()[ring];
            Vector centre;
            for (int k = 0; k < slices; ++k)
                centre += columns[k] * (1.0 / slices);
            lines->InsertCellPoint(points->InsertNextPoint(centre.x, centre.y, centre.z));
        }
        vtkNew<vtkPolyData> line;
        line->SetPoints(points);
        line->SetLines(lines);
        filter->SetInputData(line);
        filter->SetRadius(RADIUS);
        filter->SetNumberOfSides(slices);
        filter->CappingOn();
        filter->SetOutputPointsPrecision(vtkAlgorithm::DOUBLE_PRECISION);
    }
    void build()
    {
        filter->Modified();
        filter->Update();
    }

private:
    vtkNew<vtkTubeFilter> filter;
};
#endif

void compareTubes(Table& table, int points, int slices, double goal)
{
    TubeBuilder tube(points, slices);
    tube.build();
    const double vertices = tube.vertices();
    const std::string rebuilt = named("Tube built again", points, slices);

    const auto plainPoints = plain::toPlain(tube.getRod().points);
    const auto buildPlain = [&] {
        const auto curve = plain::curveThrough(plainPoints, plain::estimatedTangents(plainPoints));
        plain::biarcTube(curve, RADIUS, slices, SUBSEGMENTS);
    };
    std::vector<char> block(std::size_t(vertices) * 2 * sizeof(Vector));
    int value = 0;
    const auto clearBlock = [&] { std::memset(block.data(), ++value, block.size()); };
    std::vector<std::function<void()>> builds = {
        [&] { tube.build(); }, [&] { tube.buildInFreshMemory(); }, buildPlain, clearBlock};
#ifdef STRANDVIEW_WITH_VTK
    VtkTube vtk(tube.getMesh(), slices);
    builds.push_back([&] { vtk.build(); });
#endif
    std::vector<double> times = medianSeconds(builds);
    for (double& time : times)
        time = nanoseconds(time, vertices);

    const std::string unit = "ns/vertex";
#ifdef STRANDVIEW_WITH_VTK
    table.compare(rebuilt, times[0], "vtkTubeFilter", times[4], unit, Table::Goal::AtLeast, goal);
    table.compare(named("Tube built for the first time", points, slices), times[1], "vtkTubeFilter",
                  times[4], unit, Table::Goal::None, 0);
#else
    table.missing(rebuilt + ", at least " + std::to_string(int(goal)) + " times vtkTubeFilter",
                  "VTK is not installed");
#endif
    table.compare(rebuilt, times[0], "plain formulas", times[2], unit, Table::Goal::AtLeast, 6);
    table.compare(rebuilt, times[0], "memset of the block", times[3], unit, Table::Goal::None, 0);
}

void compareOthers(Table& table, int points)
{
    const int slices = 12;
    Rod rod(points);
    const auto edgeA = plain::toPlain(rod.points), edgeB = plain::toPlain(rod.edge),
               d2s = plain::toPlain(rod.d2s);
    std::unique_ptr<BiarcRibbonMesh> ribbon;
    std::unique_ptr<TubeMesh> tube;
    const std::vector<double> times =
        medianSeconds({[&] {
                           ribbon = std::make_unique<BiarcRibbonMesh>(rod.points, rod.edge, WIDTH,
                                                                      SUBSEGMENTS, ribbon.get());
                       },
                       [&] { plain::biarcRibbon(edgeA, edgeB, SUBSEGMENTS); },
                       [&] {
                           tube = std::make_unique<TubeMesh>(rod.points, rod.rotations, RADIUS,
                                                             slices, false, false, tube.get());
                       },
                       [&] { plain::tube(edgeA, d2s, RADIUS, slices); }});
    const double rows = double(ribbon->getHeight());
    const double vertices = double(points) * (slices + 1);
    table.compare("Ribbon built again, 10⁴ points", nanoseconds(times[0], rows), "plain formulas",
                  nanoseconds(times[1], rows), "ns/row", Table::Goal::None, 0);
    table.compare(named("Tube without interpolation", points, slices),
                  nanoseconds(times[2], vertices), "plain formulas",
                  nanoseconds(times[3], vertices), "ns/vertex", Table::Goal::AtLeast, 6);
}

void countTubes(Table& table, const std::string& program, int slices)
{
    const std::string what = named("Instructions of a tube", 1000, slices);
    const int builds = 3;
    const auto count = [&](int points) {
        return countInstructions(
            program, {std::to_string(points), std::to_string(slices), std::to_string(builds)});
    };
    // The rods themselves are counted too, once per size: without builds.
    const auto withoutBuilds = [&](int points) {
        return countInstructions(program, {std::to_string(points), std::to_string(slices), "0"});
    };
    const double small = count(200) - withoutBuilds(200);
    const double large = count(1000) - withoutBuilds(1000);
    const double vertices = double(builds) * 800 * SUBSEGMENTS * (slices + 1);
    if (small < 0 || large < 0)
        table.missing(what, "valgrind cannot run");
    else
        table.limit(what, (large - small) / vertices, "per vertex", 60);
}

void compareSizes(Table& table)
{
    const char* const names[] = {"10³", "10⁴", "10⁵", "10⁶"};
    int size = 1000;
    for (int i = 0; i < 3; ++i, size *= 10) {
        // Fewer rings per segment than above, to fit into memory.
        TubeBuilder small(size, 12, 2), large(10 * size, 12, 2);
        const std::vector<double> times =
            medianSeconds({[&] { small.build(); }, [&] { large.build(); }}, i == 2 ? 7 : 31);
        table.compare(std::string("Time of ") + names[i + 1] + " points, 2 subsegments",
                      times[1] * 1e3, std::string(names[i]) + " points", times[0] * 1e3, "ms",
                      Table::Goal::AtMost, 11);
    }
}

} // namespace

int main(int count, char** arguments)
{
    if (count == 4) {
        TubeBuilder tube(std::atoi(arguments[1]), std::atoi(arguments[2]));
        for (int build = 0; build < std::atoi(arguments[3]); ++build)
            tube.build();
        return 0;
    }

    Table table("Meshes",
                "The time to build the points and normals of a mesh, per vertex (a point and its "
                "normal, 64 bytes),\nwith 10 subsegments. \"Built again\" is in the memory of the "
                "mesh before, as a node does it;\nthe first time it is in what the allocator "
                "gives. `vtkTubeFilter`\nis given the samples, in double "
                "precision, and makes the caps too. The plain formulas are those that the\ntests "
                "compare every double with. `memset` only fills as much memory.");
    for (const int slices : {12, 24})
        compareTubes(table, 10000, slices, 8);
    for (const int slices : {12, 24})
        compareTubes(table, 1000, slices, 5);
    compareOthers(table, 10000);
    for (const int slices : {12, 24})
        countTubes(table, arguments[0], slices);
    compareSizes(table);
    table.print();
}
