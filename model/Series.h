// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_MODEL_SERIES_H
#define STRANDVIEW_MODEL_SERIES_H

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <strandview/model/Configuration.h>
#include <strandview/modelExport.h>

namespace strandview {

/// What came of loading one frame of a series; the caller's own.
struct LoadedFrame
{
    std::optional<Configuration> configuration; ///< nothing if that failed
    std::vector<std::string> notices = {};      ///< of what was done to the data, a line each
    std::string error = {};                     ///< why it failed, in one line; else empty
};

/// Configurations one after another, such as the frames of a simulation. All of them may be
/// larger than memory: nothing is held but what load() returned and the caller keeps.
///
/// Frames are counted from 0. They need not hold the same things. A series is for one thread
/// at a time, which need not be the one that made it; two of them never share anything.
class STRANDVIEW_MODEL_EXPORT Series
{
public:
    /// Asked now and then while a frame is loaded, with the share of it that is done, from 0 to
    /// 1: whether to go on. Else the frame fails, and its error says so.
    using GoOn = std::function<bool(double share)>;

    virtual ~Series();
    Series(const Series&) = delete;
    Series& operator=(const Series&) = delete;

    /// Stays the same, but for lookForMore().
    virtual std::size_t count() const = 0;

    /// Looks for frames behind those that are counted. Whether there may be more.
    virtual bool lookForMore(const GoOn& goOn);

    /// In the unit of the data; nothing if it is not known, or there is no such frame.
    virtual std::optional<double> time(std::size_t frame) const;

    /// Any frame, in any order, as often as wanted. One that cannot be loaded leaves the others
    /// as they are; for one beyond the last the error is "found frame 7, expected 0 to 4".
    LoadedFrame load(std::size_t frame, const GoOn& goOn = {});

protected:
    Series() = default;

private:
    /// Of a frame that there is.
    virtual LoadedFrame loadFrame(std::size_t frame, const GoOn& goOn) = 0;
};

} // namespace strandview

#endif
