// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_PICKING_ROWBOXES_H
#define STRANDVIEW_PICKING_ROWBOXES_H

#include <algorithm>
#include <cstddef>
#include <limits>
#include <vector>

#include <algebra3d/Vector3.h>

class SoAction;
class SoRayPickAction;

// Which triangles of a mesh a ray can hit at all, so that Coin tests only those.

/// The action, if it is a ray pick; null if not.
SoRayPickAction* asRayPick(SoAction* action);

/// An axis-aligned box of triangles, rounded to float as Coin is given them. Empty to
/// begin with.
class PickBox
{
public:
    void extendBy(const PickBox& other);
    void extendBy(const algebra3d::Vector3<double>* points, int count);
    /// Makes it hold everything, for triangles that no box tells about: if a point is not
    /// finite, or they are hardly triangles, Coin can call any ray a hit.
    void unbound();

    bool isBounded() const { return minimum[0] > -INFINITE; }
    const float* getMinimum() const { return minimum; }
    const float* getMaximum() const { return maximum; }

private:
    static constexpr float INFINITE = std::numeric_limits<float>::infinity();

    float minimum[3] = {INFINITE, INFINITE, INFINITE};
    float maximum[3] = {-INFINITE, -INFINITE, -INFINITE};
};

/// The line of a ray pick, in the coordinates of the shape that is picked, near that box.
class PickLine
{
public:
    PickLine(SoRayPickAction& action, const PickBox& surroundings);

    /// Whether the line may hit a triangle in a box that is unbounded or that the
    /// surroundings contain. False is certain: the box is widened by more than all rounding.
    bool mayHit(const PickBox& box) const;

private:
    bool misses = false; ///< the surroundings
    double margin;
    // Two points on opposite sides of the surroundings; without a direction all may be hit.
    double first[3] = {};
    double direction[3] = {};
};

/// Boxes of runs of the strips between consecutive rows, boxes of runs of those, and so
/// on up to one: a bounding-volume hierarchy that keeps the order of the strips.
class RowBoxes
{
public:
    /// closed: the last column is the first one again, and flat caps may close the first
    /// and the last row. A ray that may hit a cap is one that may hit the strip beside it.
    RowBoxes(const algebra3d::Vector3<double>* const* points, int height, int width, bool closed);

    /// Calls visit(first, end) for runs of strips, in order, that hold every strip whose
    /// triangles the action's ray hits.
    template <typename Visit>
    void visitHit(SoRayPickAction& action, Visit visit) const
    {
        if (!levels.empty())
            descend(PickLine(action, bounded), levels.size() - 1, 0, visit);
    }

private:
    static constexpr std::size_t BRANCHES = 8;

    template <typename Visit>
    void descend(const PickLine& line, std::size_t level, std::size_t index, Visit& visit) const
    {
        if (!line.mayHit(levels[level][index]))
            return;
        if (level == 0) {
            const int begin = int(index) * stripsPerBox;
            visit(begin, std::min(begin + stripsPerBox, strips));
            return;
        }
        const std::size_t end = std::min((index + 1) * BRANCHES, levels[level - 1].size());
        for (std::size_t child = index * BRANCHES; child < end; ++child)
            descend(line, level - 1, child, visit);
    }

    int strips;
    int stripsPerBox;
    std::vector<std::vector<PickBox>> levels; // the last is one box; none without strips
    PickBox bounded;                          // all that are
};

#endif
