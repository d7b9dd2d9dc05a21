// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/curveFaults.h"

#include <algorithm>
#include <cmath>

#include <algebra3d/Matrix3.h>

#include <BiarcRibbonMesh.h>
#include <BiarcTubeMesh.h>

#include <strandview/formats/text/wording.h>

namespace strandview {

using algebra3d::Vector3;

namespace {

using Points = std::vector<Vector3<double>>;

// Above this cosine of the angle between two directions they count as one, below it as
// across: for a message after the formulas have failed, so that rounding does not matter.
const double ALONG = 1 - 1e-9;
const double ACROSS = 1e-6;

Vector3<double> edge(const Points& points, std::size_t i)
{
    return (points[i + 1] - points[i]).getUnit();
}

bool turnsStraightBack(const Points& points, std::size_t i)
{
    return i > 0 && i + 1 < points.size() && edge(points, i - 1).dot(edge(points, i)) < -ALONG;
}

// Whether the d3 of an end's frame is across the end's edge.
bool hasD3Across(const NamedCurve& curve, std::size_t i)
{
    const std::size_t last = curve.points.size() - 1;
    if (!curve.rotations || (i != 0 && i != last))
        return false;
    const auto d3 = algebra3d::Matrix3<double>((*curve.rotations)[i]).getColumn(2);
    return std::abs(d3.dot(edge(curve.points, i == 0 ? 0 : last - 1))) < ACROSS;
}

// The first of the values from which on they are not finite, or their number.
std::size_t firstNotFinite(const std::vector<double>& values)
{
    const auto found = std::find_if(values.begin(), values.end(),
                                    [](double value) { return !std::isfinite(value); });
    return std::size_t(found - values.begin());
}

// The edge, by its first point, on which a tube's formulas fail; the number of points if
// none.
std::size_t findBadEdge(BiarcTubeMesh& tube, int subsegments, std::size_t points)
{
    const std::size_t bad = firstNotFinite(tube.getParamValues());
    if (bad < points)
        return bad - 1;
    // A frame that is not finite stays so from ring to ring.
    const auto isBad = [&tube](int row) {
        return !std::isfinite(tube.getNormals()[row][0].getNorm());
    };
    const int rows = tube.getHeight();
    if (!isBad(rows - 1))
        return points;
    int row = 0;
    while (!isBad(row))
        ++row;
    return std::min(std::size_t(row / subsegments), points - 2);
}

} // namespace

std::string findFault(BiarcTubeMesh& tube, int subsegments, const NamedCurve& curve)
{
    const std::size_t first = findBadEdge(tube, subsegments, curve.points.size());
    if (first == curve.points.size())
        return "";
    for (const std::size_t i : {first, first + 1}) {
        if (turnsStraightBack(curve.points, i)) {
            return curve.nameOfPoint(i) +
                   ": found edges that turn straight back, expected another angle between them";
        }
    }
    for (const std::size_t i : {first, first + 1}) {
        if (hasD3Across(curve, i)) {
            return curve.nameOfPoint(i) +
                   ": found a frame with d3 across the end's edge, expected d3 along it";
        }
    }
    return curve.nameOfPoint(first) + ": found an edge that no smooth curve follows, expected " +
           "smaller angles to the edges beside it";
}

std::string findFault(const BiarcRibbonMesh& ribbon, double width, const NamedCurve& curve)
{
    if (isFinite(ribbon))
        return "";
    const std::size_t point = firstNotFinite(ribbon.getParamValues());
    return curve.nameOfPoint(point) + ": found a ribbon of width " + formatted(width) +
           " whose edge shrinks to a point or turns back, expected another --ribbon-width";
}

std::string findFault(BiarcTubeMesh& tube, const BiarcRibbonMesh* shownRibbon, int subsegments,
                      double width, const NamedCurve& curve)
{
    const std::string fault = findFault(tube, subsegments, curve);
    return fault.empty() && shownRibbon ? findFault(*shownRibbon, width, curve) : fault;
}

bool isFinite(const BiarcRibbonMesh& ribbon)
{
    return std::isfinite(ribbon.getParamValues().back());
}

} // namespace strandview
