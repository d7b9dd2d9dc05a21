// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/scalarAt.h>

#include <algorithm>
#include <vector>

#include <strandview/analysis/gaussIntegral.h>
#include <strandview/analysis/scalars.h>

namespace strandview {

using algebra3d::Quaternion;
using algebra3d::Vector3;

namespace {

// Rows on either side that are looked at: more than any formula needs, so that their numbers have
// all decimals of the line's.
const std::size_t REACH = 64;

using Rows = std::vector<std::size_t>;

template <typename Item>
std::vector<Item> chosen(const std::vector<Item>& all, const Rows& rows)
{
    std::vector<Item> some;
    some.reserve(rows.size());
    for (const std::size_t row : rows)
        some.push_back(all[row]);
    return some;
}

template <typename Frames>
void choose(Frames& to, const Frames& from, const Rows& rows)
{
    to.pairPoints = chosen(from.pairPoints, rows);
    to.pairRotations = chosen(from.pairRotations, rows);
    to.points1 = chosen(from.points1, rows);
    to.rotations1 = chosen(from.rotations1, rows);
    to.points2 = chosen(from.points2, rows);
    to.rotations2 = chosen(from.rotations2, rows);
}

// Of a pair and the step behind it.
std::optional<double> ofPairAndStep(const Track& track, const std::string& name, std::size_t row)
{
    const std::size_t pairs = track.points.size();
    Rows rows{row};
    if (row + 1 < pairs)
        rows.push_back(row + 1);
    else if (track.isClosed && pairs > 1)
        rows.push_back(0);
    Dna part;
    for (const std::size_t chosenRow : rows)
        part.bases.push_back(track.dna->bases[chosenRow]);
    choose(part, *track.dna, rows);
    if (track.dna->standard) {
        part.standard.emplace();
        choose(*part.standard, *track.dna->standard, rows);
    }
    const Track ofPart{track.kind,     0,       0,    part.pairPoints, part.pairRotations, false,
                       track.angstrom, nullptr, &part};
    const auto values = findScalar(ofPart, name);
    return values ? std::optional(values->front()) : std::nullopt;
}

double arcLengthAt(const Track& track, std::size_t row)
{
    double length = 0;
    for (std::size_t i = 1; i <= row; ++i)
        length += (track.points[i] - track.points[i - 1]).getNorm();
    return length;
}

// The integral of the edge with all others, which of two edges that meet is 0, and its length.
struct EdgeOfCurve
{
    EdgeOfCurve(const std::vector<Vector3<double>>& curve, std::size_t edge)
        : integral(gaussIntegral({curve[edge], curve[edge + 1]}, curve)),
          length((curve[edge + 1] - curve[edge]).getNorm())
    {}
    double integral, length;
};

double writheDensityAt(const Track& track, std::size_t row)
{
    if (track.points.size() < 2)
        return 0;
    const bool hasSeam = track.isClosed && track.dna;
    const std::vector<Vector3<double>> closed =
        hasSeam ? curveOf(track) : std::vector<Vector3<double>>();
    const auto& curve = hasSeam ? closed : track.points;
    const std::size_t edges = curve.size() - 1;
    const bool isStart = row == 0, isEnd = row == edges;
    const std::size_t before = isStart ? (track.isClosed ? edges - 1 : 0) : row - 1;
    const std::size_t behind = isEnd ? (track.isClosed ? 0 : edges - 1) : row;
    const EdgeOfCurve first(curve, before), second(curve, behind);
    return (first.integral + second.integral) / (first.length + second.length);
}

// By the rows around it, unless those lie across the seam of a closed line or the line is short.
std::optional<double> ofStretch(const Track& track, const std::string& name, std::size_t row)
{
    const std::size_t count = track.points.size();
    const bool isAtSeam = track.isClosed && (row < REACH || row + REACH >= count);
    if (count <= LINE_AT_ONCE || isAtSeam) {
        const auto values = findScalar(track, name);
        return values ? std::optional((*values)[row]) : std::nullopt;
    }
    const std::size_t first = row - std::min(row, REACH), last = std::min(row + REACH, count - 1);
    const std::vector<Vector3<double>> points(track.points.begin() + std::ptrdiff_t(first),
                                              track.points.begin() + std::ptrdiff_t(last) + 1);
    const std::vector<Quaternion<double>> rotations(track.rotations.begin() + std::ptrdiff_t(first),
                                                    track.rotations.begin() + std::ptrdiff_t(last) +
                                                        1);
    const Track part{track.kind, 0, track.strand, points, rotations, false, track.angstrom};
    const auto values = findScalar(part, name);
    return values ? std::optional((*values)[row - first]) : std::nullopt;
}

} // namespace

std::optional<double> scalarAt(const Track& track, const std::string& name, std::size_t row)
{
    if (row >= track.points.size())
        return std::nullopt;
    for (const Scalar& scalar : givenScalars(track))
        if (scalar.name == name)
            return scalar.values[row];
    const Quantity* const quantity = findQuantity(track.kind, name);
    if (!quantity)
        return std::nullopt;
    if (quantity->place != ScalarPlace::POINT)
        return ofPairAndStep(track, name, row);
    if (name == "arclength")
        return arcLengthAt(track, row);
    if (name == "writhe_density")
        return writheDensityAt(track, row);
    return ofStretch(track, name, row);
}

} // namespace strandview
