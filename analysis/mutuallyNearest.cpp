// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/mutuallyNearest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

#include <algebra3d/largePages.h>

#include <strandview/analysis/helices.h>

namespace strandview {

namespace {

/// A cube of space, of the size of the reach: numbers of whole cubes, which a double holds.
using Cell = std::array<double, 3>;
using InCell = std::pair<Cell, std::size_t>;

Cell cellOf(const algebra3d::Vector3<double>& point, double size)
{
    return {std::floor(point.x / size), std::floor(point.y / size), std::floor(point.z / size)};
}

/// Far more than there are bases, and few enough for each of them to be looked at by all others.
constexpr std::size_t MOST_NEIGHBOURS = 1000;

/// Goes from cell to cell in their order, and tells who is in those around each.
class Neighbourhood
{
public:
    explicit Neighbourhood(const std::vector<InCell>& sortedPoints) : sorted(sortedPoints) {}

    /// Of a cell that is not before the one asked for last. Of a crowd nobody is told.
    template <typename Visit>
    void forNeighbours(const Cell& centre, Visit visit)
    {
        std::size_t count = 0;
        for (std::size_t row = 0; row < begins.size(); ++row)
            count += moveOn(row, centre);
        if (count > MOST_NEIGHBOURS)
            return;
        for (std::size_t row = 0; row < begins.size(); ++row)
            for (std::size_t i = begins[row]; i < ends[row]; ++i)
                visit(sorted[i].second);
    }

private:
    /// A row of three cells along z is one run of the sorted ones, and the nine runs around a
    /// cell are not before those around the last one. How many are in it.
    std::size_t moveOn(std::size_t row, const Cell& centre)
    {
        const double x = double(row / 3) - 1, y = double(row % 3) - 1;
        const Cell first{centre[0] + x, centre[1] + y, centre[2] - 1};
        const Cell last{first[0], first[1], centre[2] + 1};
        std::size_t &begin = begins[row], &end = ends[row];
        while (begin < sorted.size() && sorted[begin].first < first)
            ++begin;
        end = std::max(begin, end);
        while (end < sorted.size() && sorted[end].first <= last)
            ++end;
        return end - begin;
    }

    const std::vector<InCell>& sorted;
    std::array<std::size_t, 9> begins = {}, ends = {}; ///< of the runs
};

} // namespace

std::vector<std::size_t>
mutuallyNearest(const std::vector<algebra3d::Vector3<double>>& points, double reach,
                const std::function<double(std::size_t, std::size_t)>& distance)
{
    std::vector<InCell> sorted;
    algebra3d::reserveMany(sorted, points.size());
    for (std::size_t i = 0; i < points.size(); ++i)
        sorted.emplace_back(cellOf(points[i], reach), i);
    std::sort(sorted.begin(), sorted.end());

    Neighbourhood neighbourhood(sorted);
    std::vector<std::size_t> nearest(points.size(), NO_NUCLEOTIDE);
    for (const auto& [cell, index] : sorted) {
        const std::size_t i = index;
        double least = std::numeric_limits<double>::infinity();
        neighbourhood.forNeighbours(cell, [&](std::size_t j) {
            if (j == i || (points[j] - points[i]).getNorm() > reach)
                return;
            const double apart = distance(i, j);
            if (apart < least || (apart == least && std::isfinite(apart) && j < nearest[i])) {
                least = apart;
                nearest[i] = j;
            }
        });
    }
    std::vector<std::size_t> partners(points.size(), NO_NUCLEOTIDE);
    for (std::size_t i = 0; i < points.size(); ++i)
        if (nearest[i] != NO_NUCLEOTIDE && nearest[nearest[i]] == i)
            partners[i] = nearest[i];
    return partners;
}

} // namespace strandview
