// SPDX-License-Identifier: GPL-3.0-or-later
// What the numbers of curves cost: writhe per pair of edges, scalars per point, contact.
#include <cmath>
#include <string>
#include <vector>

#include <strandview/analysis/curveNumbers.h>
#include <strandview/analysis/gaussIntegral.h>
#include <strandview/analysis/parallelTransport.h>
#include <strandview/analysis/ribbonTwist.h>
#include <strandview/analysis/shape.h>
#include <support/knots.h>
#include <support/writhe.h>

#include "measuring.h"

using namespace strandview;

namespace {

using Points = std::vector<algebra3d::Vector3<double>>;

double sink = 0; // for results, so that nothing is left out

void compareWrithes(Table& table, int size, const std::string& name)
{
    const Points knot = trefoil(size);
    const double pairs = 0.5 * size * size;
    const auto ours = [&] { sink += gaussIntegral(knot); };
    const std::vector<double> times =
        medianSeconds({ours, [&] { sink += writheOf(knot); }}, size > 1000 ? 3 : 15);
    table.compare("Writhe, " + name + " points", times[0] / pairs * 1e9, "by four arc sines",
                  times[1] / pairs * 1e9, "ns/pair", Table::Goal::AtLeast, 2);
    if (size >= 10000)
        table.limit("Writhe, " + name + " points", times[0], "s", 2);
}

void measureScalars(Table& table)
{
    const int size = 100000;
    const Points knot = trefoil(size);
    const auto rotations = parallelTransport(knot, true);
    const Line line{knot, rotations, true};
    const std::vector<double> times = medianSeconds(
        {[&] { sink += curvatures(line)[0]; }, [&] { sink += torsions(line)[0]; },
         [&] { sink += twistDensities(line)[0]; }, [&] { sink += strains(line, 2)[0]; },
         [&] { sink += twistOfEdges(knot, knot)[0]; }});
    const char* const names[] = {"curvature", "torsion", "twist", "kappa3", "Tw of a ribbon"};
    for (std::size_t i = 0; i < times.size(); ++i)
        table.limit(std::string(names[i]) + ", 10⁵ points", times[i] / size * 1e9, "ns/point", 400);
}

void measureContacts(Table& table)
{
    double perPoint = 0;
    for (const auto& [size, name] : {std::pair(10000, "10⁴"), std::pair(100000, "10⁵")}) {
        const Points knot = torusKnot(2, 3, size);
        const double time =
            medianSeconds({[&] { sink += contactOf(knot)->distance; }}, 3)[0] / size * 1e6;
        const std::string what = std::string("Contact, ") + name + " points";
        if (perPoint > 0)
            table.compare(what, time, "a tenth of them", perPoint, "µs/point", Table::Goal::AtMost,
                          4);
        else
            table.value(what, time, "µs/point");
        perPoint = time;
    }
}

} // namespace

int main()
{
    Table table("Numbers",
                "Writhe by the solid angles of two triangles, four pairs of edges at once, on all "
                "cores from 2,000 points on;\nbeside it one pair after the other by the four arc "
                "sines of Klenin and Langowski's method 1a. Scalars of a closed rod.");
    compareWrithes(table, 1000, "10³");
    compareWrithes(table, 10000, "10⁴");
    measureScalars(table);
    measureContacts(table);
    table.print();
    return std::isnan(sink) ? 1 : 0;
}
