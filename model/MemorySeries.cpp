// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/model/MemorySeries.h>

#include <utility>

namespace strandview {

MemorySeries::MemorySeries(std::vector<Configuration> allConfigurations,
                           std::vector<double> allTimes)
    : configurations(std::move(allConfigurations)), times(std::move(allTimes))
{
    if (times.size() != configurations.size())
        times.clear();
}

std::size_t MemorySeries::count() const { return configurations.size(); }

std::optional<double> MemorySeries::time(std::size_t frame) const
{
    return frame < times.size() ? std::optional(times[frame]) : std::nullopt;
}

LoadedFrame MemorySeries::loadFrame(std::size_t frame, const GoOn&)
{
    return {configurations[frame]};
}

} // namespace strandview
