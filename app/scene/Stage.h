// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_STAGE_H
#define STRANDVIEW_APP_SCENE_STAGE_H

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <Inventor/SbBox3f.h>

#include <strandview/formats/ReadReport.h>
#include <strandview/model/Series.h>

#include "request/CameraRequest.h"
#include "request/Options.h"
#include "scene/Colouring.h"
#include "scene/Placement.h"
#include "scene/Style.h"

namespace strandview {

class DataScene;
class Progress;

/// What stays the same over all frames of a series, whichever of them are shown and wherever they
/// are drawn: the picture of a frame does not depend on the others that are.
struct Stage
{
    Style style; ///< of the first frame, as are placement and the colouring's name
    Placement placement;
    Side side;    ///< that a frame is seen from unless another is asked for
    SbBox3f room; ///< in the scene, around all frames; empty for data that do not move
    /// Of that, what is neither hidden nor deleted; all of it, if nothing is left.
    SbBox3f shownRoom;
    std::optional<Colouring> colouring; ///< its limits are those of all frames
    ValueSummary values;                ///< of its scalar, of all frames but the first
    std::string first;                  ///< digestOf() of the first frame

    /// The room in a scene with another placement.
    SbBox3f roomIn(const Placement& other) const;
};

/// Makes a stage, a frame at a time: it looks at all frames of a series, or, of a long one, at a
/// sample with the first and the last, of which a notice tells. Frames that cannot be loaded or
/// drawn count for nothing, as long as there is one that can: the first of them gives the style.
///
/// In any thread. What is referred to outlives the maker.
class StageMaker
{
public:
    StageMaker(Series& series, const Options& options, ReadReport& report, Progress& progress);
    ~StageMaker();

    /// First of all. False, and one line in report.error, if no frame can be loaded, if what the
    /// options ask for does not suit the first that can, or if it is stopped.
    bool begin();
    /// One frame more of those that the series had at the beginning; false if none is left, or,
    /// with one line in report.error, if it is stopped.
    bool lookAtNext();
    /// At the end. Nothing, and one line in report.error, if no frame can be drawn or it was
    /// stopped.
    std::optional<Stage> finish();

private:
    class Work;
    std::unique_ptr<Work> work;
};

/// All of it at once; nothing, and one line in report.error, if it fails or is stopped.
std::optional<Stage> makeStage(Series& series, const Options& options, ReadReport& report,
                               Progress& progress);

/// Lets a scene show a frame, as updateScene() does; a null scene becomes a new one, with one
/// reference. One line that says why not, or nothing.
std::string showOnStage(DataScene*& scene, const Stage& stage, const Configuration& frame,
                        Progress& progress);

/// The frames that makeStage() looks at, of so many with so many points each.
std::vector<std::size_t> sampleOf(std::size_t frames, std::size_t pointsPerFrame);

} // namespace strandview

#endif
