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
    for (const auto& part : parts)
        mayHaveMore.push_back(part->lookForMore([](double) { return false; }));
}

JointSeries::~JointSeries() = default;

std::size_t JointSeries::count() const
{
    std::size_t fewest = std::numeric_limits<std::size_t>::max();
    for (std::size_t i = 0; i < parts.size(); ++i)
        fewest = std::min(fewest, isStill(i) ? fewest : parts[i]->count());
    return fewest == std::numeric_limits<std::size_t>::max() ? 1 : fewest;
}

std::optional<double> JointSeries::time(std::size_t frame) const
{
    for (std::size_t i = 0; i < parts.size(); ++i)
        if (const std::optional<double> known = isStill(i) ? std::nullopt : parts[i]->time(frame))
            return known;
    return count() == 1 ? parts.front()->time(frame) : std::nullopt;
}

bool JointSeries::findMore(const GoOn& goOn, std::vector<std::string>& notices)
{
    bool mayAny = false;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        mayHaveMore[i] = mayHaveMore[i] && parts[i]->lookForMore(ofPart(i, goOn), &notices);
        mayAny = mayAny || mayHaveMore[i];
    }
    return mayAny;
}

/// The same with the share of all that the part's share is.
Series::GoOn JointSeries::ofPart(std::size_t part, const GoOn& goOn) const
{
    if (!goOn)
        return {};
    return [this, part, &goOn](double share) {
        return goOn((double(part) + share) / double(parts.size()));
    };
}

LoadedFrame JointSeries::loadFrame(std::size_t frame, const GoOn& goOn)
{
    LoadedFrame all;
    all.configuration.emplace();
    for (std::size_t i = 0; i < parts.size(); ++i) {
        LoadedFrame loaded = parts[i]->load(isStill(i) ? 0 : frame, ofPart(i, goOn));
        std::move(loaded.notices.begin(), loaded.notices.end(), std::back_inserter(all.notices));
        if (!loaded.configuration)
            return {std::nullopt, std::move(all.notices), std::move(loaded.error)};
        append(*all.configuration, std::move(*loaded.configuration));
    }
    return all;
}

} // namespace strandview
