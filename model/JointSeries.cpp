// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/model/JointSeries.h>

#include <algorithm>
#include <cassert>
#include <iterator>
#include <limits>
#include <utility>

namespace strandview {

JointSeries::JointSeries(std::vector<std::unique_ptr<Series>> seriesBesideEachOther)
    : parts(std::move(seriesBesideEachOther))
{
    assert(!parts.empty());
}

JointSeries::~JointSeries() = default;

std::size_t JointSeries::count() const
{
    std::size_t fewest = std::numeric_limits<std::size_t>::max();
    for (const auto& part : parts)
        fewest = std::min(fewest, part->count() == 1 ? fewest : part->count());
    return fewest == std::numeric_limits<std::size_t>::max() ? 1 : fewest;
}

std::optional<double> JointSeries::time(std::size_t frame) const
{
    for (const auto& part : parts)
        if (const std::optional<double> known =
                part->count() > 1 ? part->time(frame) : std::nullopt)
            return known;
    return count() == 1 ? parts.front()->time(frame) : std::nullopt;
}

LoadedFrame JointSeries::loadFrame(std::size_t frame, const GoOn& goOn)
{
    LoadedFrame all;
    all.configuration.emplace();
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const GoOn goOnWithPart = [&](double share) {
            return goOn((double(i) + share) / double(parts.size()));
        };
        Series& part = *parts[i];
        LoadedFrame loaded = part.load(part.count() == 1 ? 0 : frame, goOn ? goOnWithPart : goOn);
        std::move(loaded.notices.begin(), loaded.notices.end(), std::back_inserter(all.notices));
        if (!loaded.configuration)
            return {std::nullopt, std::move(all.notices), std::move(loaded.error)};
        append(*all.configuration, std::move(*loaded.configuration));
    }
    return all;
}

} // namespace strandview
