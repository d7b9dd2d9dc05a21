// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/model/Series.h>

namespace strandview {

Series::~Series() = default;

bool Series::lookForMore(const GoOn& goOn, std::vector<std::string>* notices)
{
    std::vector<std::string> untold;
    return findMore(goOn, notices ? *notices : untold);
}

bool Series::findMore(const GoOn&, std::vector<std::string>&) { return false; }

std::optional<double> Series::time(std::size_t) const { return {}; }

LoadedFrame Series::load(std::size_t frame, const GoOn& goOn)
{
    if (frame < count())
        return loadFrame(frame, goOn);
    const std::string expected =
        count() == 0 ? "none: the series is empty" : "0 to " + std::to_string(count() - 1);
    return {{}, {}, "found frame " + std::to_string(frame) + ", expected " + expected};
}

} // namespace strandview
