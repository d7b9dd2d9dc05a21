// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_FRAMELOADER_H
#define STRANDVIEW_FORMATS_FRAMELOADER_H

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <strandview/formats/Milestones.h>
#include <strandview/formats/ReadReport.h>
#include <strandview/model/Configuration.h>
#include <strandview/model/Series.h>

namespace strandview {

/// Loads the frames of a series for whoever writes them, and keeps what that has to tell: each
/// notice once, and the error of the frame that fails, or that goOn stopped it. goOn is asked with
/// the share of the series that is done. They must outlive it.
class FrameLoader
{
public:
    FrameLoader(Series& loadedSeries, const Series::GoOn& shallGoOn, ReadReport& readReport)
        : series(loadedSeries), goOn(shallGoOn), report(readReport)
    {}

    std::optional<Configuration> load(std::size_t frame)
    {
        const auto goOnInFrame = [&](double share) {
            return !goOn || goOn((double(frame) + share) / double(series.count()));
        };
        LoadedFrame loaded = series.load(frame, goOnInFrame);
        std::vector<std::string>& told = report.notices;
        for (std::string& notice : loaded.notices)
            if (std::find(told.begin(), told.end(), notice) == told.end())
                told.push_back(std::move(notice));
        if (loaded.configuration && goOnInFrame(1))
            return std::move(loaded.configuration);
        report.error = loaded.configuration ? READING_STOPPED : std::move(loaded.error);
        return {};
    }

private:
    Series& series;
    const Series::GoOn& goOn;
    ReadReport& report;
};

/// Those of all its frames.
inline bool areTimesKnown(const Series& series)
{
    for (std::size_t frame = 0; frame < series.count(); ++frame)
        if (!std::isfinite(series.time(frame).value_or(INFINITY)))
            return false;
    return true;
}

} // namespace strandview

#endif
