// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_PLAYING_FRAMESTORE_H
#define STRANDVIEW_APP_PLAYING_FRAMESTORE_H

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <strandview/formats/ReadReport.h>
#include <strandview/model/Series.h>

#include "request/Options.h"
#include "scene/Colouring.h"
#include "scene/Placement.h"
#include "scene/SceneGeometry.h"
#include "scene/Stage.h"
#include "scene/Style.h"

namespace strandview {

class Progress;

/// A frame as a scene is given it.
struct FrameToPlay
{
    std::size_t frame = 0;
    std::optional<double> time;
    std::shared_ptr<const Configuration> data; ///< null if it cannot be shown
    SceneGeometry geometry;
    std::optional<Colouring> colouring;    ///< of the data; of a plan without one there is none
    std::string error = {};                ///< why not, in one line
    std::vector<std::string> notices = {}; ///< of what was done to the data
    std::size_t plan = 0;                  ///< the number of the plan that it was computed for
};

/// The frames of a series, for a thread that waits for none of them: another one opens the series,
/// counts and loads them, and computes what their scene needs but nodes.
///
/// Frames that were loaded are kept in bounded memory, those that are wanted longest. What is
/// asked for comes first, then frames ahead of it; while nothing is left to load, the rest of the
/// series is counted, and its stage made.
class FrameStore
{
public:
    /// Opens the series; null, and one line in report.error, if that fails or is stopped. With
    /// options.series.follow it is called again until it goes well.
    using Opener = std::function<std::unique_ptr<Series>(ReadReport& report, Progress& progress)>;

    /// What the frames are shown with; options.series.cacheMegabytes of them are kept, one always.
    /// All have their places in the colouring, or each in one of its own if options.ownRange.
    struct Plan
    {
        Style style = {};
        Placement placement = {};
        Options options = {};
        std::optional<Colouring> colouring = {};
    };

    /// What is known of the series.
    struct State
    {
        bool isOpened = false;                 ///< or that failed
        std::size_t count = 0;                 ///< of the frames found so far
        bool mayGrow = true;                   ///< there may be more
        std::string error = {};                ///< why it could not be opened
        std::vector<std::string> notices = {}; ///< of opening it, and since
        std::shared_ptr<const Stage> stage;    ///< once enough frames were looked at
    };

    /// onNews is called in the other thread, after it has changed something.
    FrameStore(Opener opener, Plan plan, std::function<void()> onNews);
    /// Stops what is being done.
    ~FrameStore();
    FrameStore(const FrameStore&) = delete;
    FrameStore& operator=(const FrameStore&) = delete;

    State getState() const;

    /// Asks for a frame, and then for those ahead, in this order; what was asked for before and is
    /// not begun is forgotten.
    void want(std::size_t frame, std::vector<std::size_t> ahead);
    /// Shows what comes with another plan, of this number. Frames that are kept stay; a new stage
    /// is made if it would be another one.
    enum StageChange { SAME_STAGE, NEW_STAGE };
    void follow(Plan plan, std::size_t number, StageChange change);
    /// The last frame that was asked for and came, once.
    std::optional<FrameToPlay> take();

    /// How often a frame was loaded.
    std::size_t countLoads() const;
    /// What the loaded frames take.
    std::size_t countBytes() const;

private:
    class Reader;
    std::unique_ptr<Reader> reader;
};

} // namespace strandview

#endif
