// SPDX-License-Identifier: GPL-3.0-or-later
#include "picking/RowBoxes.h"

#include <cmath>
#include <utility>

#include <Inventor/SbLine.h>
#include <Inventor/SbVec3f.h>
#include <Inventor/actions/SoRayPickAction.h>

using algebra3d::Vector3;

namespace {

// The points on the line that Coin tells are rounded to float, and at most 13 times as
// far out as the box: an error of 13 / 2^24. The rest, and as much of the distance that the
// ray comes from, is for what Coin's own test of a triangle, in double, is wrong by.
const float ROUNDING = 2e-6F;
// Larger triangles below could have corners that are not finite.
const float LARGEST = 1e36F;
const int POINTS_PER_BOX = 16;

// Where a ray meets a triangle Coin is wrong by some 4e-16 of the distance that the ray
// comes from, divided by twice the area as a part of the squares of the sides and by the
// sine of the ray's angle to the plane. The widening covers triangles of at least this part.
const double SMALLEST_AREA = 1e-6;

void round(const Vector3<double>* points, int count, std::vector<Vector3<double>>& rounded)
{
    rounded.resize(std::size_t(count));
    std::transform(points, points + count, rounded.begin(), [](const Vector3<double>& point) {
        return Vector3<double>(float(point.x), float(point.y), float(point.z));
    });
}

// Also if a coordinate is not finite.
bool isSliver(const Vector3<double>& a, const Vector3<double>& b, const Vector3<double>& c)
{
    const Vector3<double> u = b - a, v = c - a;
    const Vector3<double> normal = u.cross(v);
    const double smallest = SMALLEST_AREA * (u.dot(u) + v.dot(v));
    return !(normal.dot(normal) > smallest * smallest);
}

bool hasSliver(const std::vector<Vector3<double>>& row, const std::vector<Vector3<double>>& next)
{
    bool found = false;
    for (std::size_t j = 0; j + 1 < row.size(); ++j) {
        found |= isSliver(row[j], next[j], next[j + 1]);
        found |= isSliver(next[j + 1], row[j], row[j + 1]);
    }
    return found;
}

// The cap is a fan from the last point that is not the first one again.
bool hasSliverInCap(const std::vector<Vector3<double>>& row)
{
    bool found = false;
    for (std::size_t j = 1; j + 2 < row.size(); ++j)
        found |= isSliver(row[row.size() - 2], row[j], row[j - 1]);
    return found;
}

// The largest absolute value of three.
float largest(const float* values)
{
    return std::max({std::abs(values[0]), std::abs(values[1]), std::abs(values[2])});
}

} // namespace

SoRayPickAction* asRayPick(SoAction* action)
{
    const bool is = action->isOfType(SoRayPickAction::getClassTypeId());
    return is ? static_cast<SoRayPickAction*>(action) : nullptr;
}

void PickBox::extendBy(const PickBox& other)
{
    for (int axis = 0; axis < 3; ++axis) {
        minimum[axis] = std::min(minimum[axis], other.minimum[axis]);
        maximum[axis] = std::max(maximum[axis], other.maximum[axis]);
    }
}

void PickBox::extendBy(const Vector3<double>* points, int count)
{
    for (int i = 0; i < count; ++i) {
        for (int axis = 0; axis < 3; ++axis) {
            const auto value = float(points[i][axis]);
            minimum[axis] = std::min(minimum[axis], value);
            maximum[axis] = std::max(maximum[axis], value);
        }
    }
}

void PickBox::unbound()
{
    std::fill_n(minimum, 3, -INFINITE);
    std::fill_n(maximum, 3, INFINITE);
}

// Coin keeps the ray in double and tells it rounded, its direction badly so if it comes
// from afar. But it answers exactly where the ray meets a triangle. Two large ones, on two
// opposite sides of the box, catch each line through the box if the sides are across the
// axis that the line mostly follows; whatever axis it is, two points that they catch are
// precise enough for all between them. Coin takes no triangle with a determinant below an
// epsilon; these have larger ones than any in the box.
PickLine::PickLine(SoRayPickAction& action, const PickBox& surroundings)
{
    const SbVec3f position = action.getLine().getPosition();
    const float widening = ROUNDING * (std::max(largest(surroundings.getMinimum()),
                                                largest(surroundings.getMaximum())) +
                                       largest(position.getValue()));
    margin = widening;
    float low[3], high[3], size = 0;
    for (int axis = 0; axis < 3; ++axis) {
        low[axis] = surroundings.getMinimum()[axis] - widening;
        high[axis] = surroundings.getMaximum()[axis] + widening;
        size = std::max(size, high[axis] - low[axis]);
    }
    if (!(widening + size < LARGEST))
        return;

    const float reach = 2 * size; // half the size, and once the size for the slope, are needed
    const auto cross = [&](int axis, float plane, SbVec3f& point) {
        const int across = (axis + 1) % 3, along = (axis + 2) % 3;
        SbVec3f corners[3], barycentric;
        for (SbVec3f& corner : corners) {
            corner[axis] = plane;
            corner[across] = low[across] + 0.5F * (high[across] - low[across]) - reach;
            corner[along] = low[along] + 0.5F * (high[along] - low[along]) - reach;
        }
        corners[1][across] += 4 * reach;
        corners[2][along] += 4 * reach;
        SbBool front;
        return action.intersect(corners[0], corners[1], corners[2], point, barycentric, front);
    };
    for (int axis = 0; axis < 3; ++axis) {
        SbVec3f start, end;
        if (cross(axis, low[axis], start) && cross(axis, high[axis], end)) {
            for (int k = 0; k < 3; ++k) {
                first[k] = start[k];
                direction[k] = double(end[k]) - double(start[k]);
            }
            return;
        }
    }
    misses = true;
}

// The separating-axis test of a line and a box: they are apart if they are so along one of
// the products of the line's direction with the axes. No division, so a line parallel to a
// side is like any other, and what is not a number separates nothing.
bool PickLine::mayHit(const PickBox& box) const
{
    if (!box.isBounded())
        return true;
    if (misses)
        return false;
    double centre[3], half[3];
    for (int axis = 0; axis < 3; ++axis) {
        const double low = box.getMinimum()[axis], high = box.getMaximum()[axis];
        centre[axis] = 0.5 * (low + high) - first[axis];
        half[axis] = 0.5 * (high - low) + margin;
    }
    for (int axis = 0; axis < 3; ++axis) {
        const int y = (axis + 1) % 3, z = (axis + 2) % 3;
        const double distance = std::abs(direction[y] * centre[z] - direction[z] * centre[y]);
        if (distance > half[y] * std::abs(direction[z]) + half[z] * std::abs(direction[y]))
            return false;
    }
    return true;
}

RowBoxes::RowBoxes(const Vector3<double>* const* points, int height, int width, bool closed)
    : strips(std::max(height - 1, 0)), stripsPerBox(std::max(POINTS_PER_BOX / width, 1))
{
    if (strips == 0)
        return;
    std::vector<Vector3<double>> last, next; // rows
    levels.emplace_back(std::size_t((strips + stripsPerBox - 1) / stripsPerBox));
    for (std::size_t i = 0; i < levels[0].size(); ++i) {
        PickBox& box = levels[0][i];
        const int begin = int(i) * stripsPerBox;
        bool slivers = false;
        for (int row = begin; row <= std::min(begin + stripsPerBox, strips); ++row) {
            round(points[row], width, next);
            box.extendBy(next.data(), width);
            slivers |= row > begin && hasSliver(last, next);
            slivers |= closed && (row == 0 || row == strips) && hasSliverInCap(next);
            last.swap(next);
        }
        if (slivers)
            box.unbound();
        else
            bounded.extendBy(box);
    }
    while (levels.back().size() > 1) {
        const std::vector<PickBox>& below = levels.back();
        std::vector<PickBox> above((below.size() + BRANCHES - 1) / BRANCHES);
        for (std::size_t i = 0; i < below.size(); ++i)
            above[i / BRANCHES].extendBy(below[i]);
        levels.push_back(std::move(above));
    }
}
