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

    /// Of those that are known: stays the same but for lookForMore(), after which there may be more
    /// of them, never fewer.
    virtual std::size_t count() const = 0;

    /// Looks for more frames where there may be some, from where it stopped: in what was opened at
    /// once, or is still written to (ReadOptions). goOn is asked first, and every few milliseconds,
    /// with the share of the data that was looked at; none is as one that always says yes. At the
    /// end the last frame is loaded, for which it is not asked.
    ///
    /// Whether there may be more frames than count() now says: those behind where goOn stopped it,
    /// or those that somebody will write. False at the end, and from then on; at once for a series
    /// whose frames were all known before. Where a fault ends it, the last frame is one more, which
    /// fails with that as its error: the others stay. What was done to the data, such as a last
    /// frame that is left out as it is cut short, is one more line each of `notices`.
    bool lookForMore(const GoOn& goOn, std::vector<std::string>* notices = nullptr);

    /// In the unit of the data; nothing if it is not known, or there is no such frame.
    virtual std::optional<double> time(std::size_t frame) const;

    /// Any frame, in any order, as often as wanted. One that cannot be loaded leaves the others
    /// as they are; for one beyond the last the error is "found frame 7, expected 0 to 4".
    LoadedFrame load(std::size_t frame, const GoOn& goOn = {});

protected:
    Series() = default;

private:
    /// Finds none unless it is overridden.
    virtual bool findMore(const GoOn& goOn, std::vector<std::string>& notices);
    /// Of a frame that there is.
    virtual LoadedFrame loadFrame(std::size_t frame, const GoOn& goOn) = 0;
};

} // namespace strandview

#endif
