// SPDX-License-Identifier: GPL-3.0-or-later
#include "plotting/Plot.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace strandview {

namespace {

// Values that differ by a smaller part of the largest are the same, but for rounding.
const double SAME = 1e-9;

const Span NOTHING{std::numeric_limits<double>::infinity(),
                   -std::numeric_limits<double>::infinity()};

Span spanOf(const std::vector<double>& values, Span span)
{
    for (const double value : values) {
        if (std::isfinite(value))
            span = {std::min(span.min, value), std::max(span.max, value)};
    }
    return span;
}

Span aroundConstant(double value, double rounding)
{
    const double room = std::abs(value) > rounding ? std::abs(value) / 10 : 1;
    return {value - room, value + room};
}

// What is drawn of a stretch of places: the ends of its gaps, the least and the largest value.
void addStretch(const std::vector<double>& y, std::size_t begin, std::size_t end,
                std::vector<std::size_t>& places)
{
    std::size_t least = end, largest = end;
    std::size_t firstGap = end, lastGap = end;
    for (std::size_t i = begin; i < end; ++i) {
        if (!std::isfinite(y[i])) {
            firstGap = firstGap == end ? i : firstGap;
            lastGap = i;
            continue;
        }
        if (least == end || y[i] < y[least])
            least = i;
        if (largest == end || y[i] > y[largest])
            largest = i;
    }
    const std::size_t before = places.size();
    for (const std::size_t place : {least, largest, firstGap, lastGap}) {
        if (place != end)
            places.push_back(place);
    }
    const auto added = places.begin() + std::ptrdiff_t(before);
    std::sort(added, places.end());
    places.erase(std::unique(added, places.end()), places.end());
}

} // namespace

std::string axisTitle(const std::string& name, const std::string& unit)
{
    return unit.empty() ? name : name + " [" + unit + "]";
}

Span xSpan(const Plot& plot)
{
    Span span = NOTHING;
    for (const PlotLine& line : plot.lines)
        span = spanOf(line.x, span);
    if (span.min > span.max)
        return {0, 1};
    return span.min < span.max ? span : aroundConstant(span.min, 0);
}

Span ySpan(const PlotPanel& panel)
{
    Span span = NOTHING;
    for (const std::vector<double>& values : panel.values)
        span = spanOf(values, span);
    if (span.min > span.max)
        return {0, 1};
    const double magnitude = std::max(std::abs(span.min), std::abs(span.max));
    const double same = std::max(2 * panel.rounding, SAME * magnitude);
    if (span.max - span.min > same)
        return span;
    return aroundConstant(span.min / 2 + span.max / 2, panel.rounding);
}

std::vector<std::size_t> placesToDraw(const std::vector<double>& x, const std::vector<double>& y,
                                      std::size_t most)
{
    std::vector<std::size_t> places;
    const std::size_t count = std::min(x.size(), y.size());
    if (count <= most || count == 0 || !(x[count - 1] > x[0])) {
        for (std::size_t i = 0; i < count; ++i)
            places.push_back(i);
        return places;
    }
    const std::size_t stretches = std::max<std::size_t>(most / 2, 1);
    const double length = (x[count - 1] - x[0]) / double(stretches);
    std::size_t begin = 0;
    for (std::size_t stretch = 0; stretch < stretches; ++stretch) {
        const double last = x[0] + double(stretch + 1) * length;
        const auto behind = stretch + 1 == stretches
                                ? x.begin() + std::ptrdiff_t(count)
                                : std::upper_bound(x.begin() + std::ptrdiff_t(begin),
                                                   x.begin() + std::ptrdiff_t(count), last);
        const auto end = std::size_t(behind - x.begin());
        addStretch(y, begin, end, places);
        begin = end;
    }
    // From end to end.
    if (places.front() != 0)
        places.insert(places.begin(), 0);
    if (places.back() != count - 1)
        places.push_back(count - 1);
    return places;
}

std::size_t nearestPlace(const std::vector<double>& x, double to)
{
    const auto after = std::lower_bound(x.begin(), x.end(), to);
    if (after == x.begin())
        return 0;
    if (after == x.end() || to - *(after - 1) <= *after - to)
        return std::size_t(after - x.begin()) - 1;
    return std::size_t(after - x.begin());
}

} // namespace strandview
