// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_BESIDEREADER_H
#define STRANDVIEW_APP_WINDOW_BESIDEREADER_H

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <QFutureWatcher>

#include <strandview/model/Configuration.h>

#include "playing/FrameStore.h"
#include "scene/Colouring.h"
#include "scene/Placement.h"
#include "scene/SceneGeometry.h"
#include "scene/Style.h"

namespace strandview {

/// Reads configurations for a further view, and computes what their scene needs but nodes, in
/// another thread. In the window's thread.
class BesideReader
{
public:
    struct Task
    {
        /// What is shown; null for a frame of the series.
        std::shared_ptr<const Configuration> data;
        std::size_t frame = 0; ///< or the last that there is
        // As in the first view
        Style style = {};
        Placement placement = {};
        std::optional<Colouring> colouring;
        std::size_t look = 0; ///< a number for these three
    };
    struct Result
    {
        Task task; ///< with data, unless there is an error
        std::optional<Colouring> colouring;
        SceneGeometry geometry;
        std::string error = {}; ///< one line
    };

    explicit BesideReader(std::function<void(Result& result)> onResult);
    /// Stops what is being done, and waits for it.
    ~BesideReader();
    BesideReader(const BesideReader&) = delete;
    BesideReader& operator=(const BesideReader&) = delete;

    /// Takes frames from another series from now on; none without an opener. What was asked for
    /// before will not come any more.
    void setSeries(FrameStore::Opener opener);
    /// Begins at once, or as soon as what is being done has ended; of several that wait, the last.
    void ask(Task task);
    bool isAtWork() const { return isWorking; }

private:
    struct Shared;

    void begin(Task task);
    void end();

    std::function<void(Result& result)> tell;
    std::shared_ptr<Shared> shared; ///< with the thread
    QFutureWatcher<std::shared_ptr<Result>> work;
    std::optional<Task> next;
    bool isWorking = false;
    bool isForgotten = false; ///< what is being done
};

} // namespace strandview

#endif
