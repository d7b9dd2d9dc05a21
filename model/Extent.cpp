// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/model/Extent.h>

#include <algorithm>
#include <limits>

namespace strandview {

using algebra3d::Vector3;

namespace {

using Points = std::vector<Vector3<double>>;

// The box around points, and the length of curves.
class Measurer
{
public:
    void addPoint(const Vector3<double>& point)
    {
        ++extent.points;
        for (int axis = 0; axis < 3; ++axis) {
            lowest[axis] = std::min(lowest[axis], point[axis]);
            highest[axis] = std::max(highest[axis], point[axis]);
        }
    }
    void addPoints(const Points& points)
    {
        for (const Vector3<double>& point : points)
            addPoint(point);
    }
    void addCurve(const Points& points)
    {
        addPoints(points);
        for (std::size_t i = 1; i < points.size(); ++i)
            extent.length += (points[i] - points[i - 1]).getNorm();
        extent.segments += (long long)(points.size()) - 1;
    }
    Extent finish()
    {
        if (lowest[0] <= highest[0]) {
            extent.centre = 0.5 * (lowest + highest);
            extent.sides = highest - lowest;
        }
        return extent;
    }

private:
    static constexpr double INFINITE = std::numeric_limits<double>::infinity();

    Vector3<double> lowest{INFINITE, INFINITE, INFINITE};
    Vector3<double> highest{-INFINITE, -INFINITE, -INFINITE};
    Extent extent;
};

} // namespace

Extent measure(const Configuration& configuration)
{
    Measurer measurer;
    for (const Rod& rod : configuration.rods)
        measurer.addCurve(rod.points);
    for (const Birod& birod : configuration.birods) {
        for (const Points* points : {&birod.points, &birod.points1, &birod.points2})
            measurer.addCurve(*points);
    }
    for (const Dna& dna : configuration.dnas) {
        for (const Points* points : {&dna.pairPoints, &dna.points1, &dna.points2})
            measurer.addPoints(*points);
    }
    for (const Marker& marker : configuration.markers)
        measurer.addPoint(marker.point);
    for (const Frame& frame : configuration.frames)
        measurer.addPoint(frame.point);
    for (const Arrow& arrow : configuration.arrows) {
        measurer.addPoint(arrow.from);
        measurer.addPoint(arrow.to);
    }
    for (const LoneBase& base : configuration.loneBases)
        measurer.addPoint(base.point);
    return measurer.finish();
}

int thinnestAxis(const Extent& extent)
{
    const Vector3<double>& sides = extent.sides;
    // Files have six digits or more.
    const double rounding = 1e-6 * std::max({sides.x, sides.y, sides.z});
    const double shortest = std::min({sides.x, sides.y, sides.z}) + rounding;
    if (!(sides.z > shortest))
        return 2;
    return sides.x > shortest ? 1 : 0;
}

} // namespace strandview
