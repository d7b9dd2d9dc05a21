// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/Stage.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include <strandview/formats/text/wording.h>
#include <strandview/model/Extent.h>

#include "scene/DataScene.h"
#include "scene/Progress.h"
#include "scene/SceneBuilder.h"
#include "scene/chooseLook.h"
#include "scene/digest.h"

namespace strandview {

namespace {

// Looked at in a second or two.
const std::size_t MOST_POINTS = 500'000;
const std::size_t FEWEST_FRAMES = 10, MOST_FRAMES = 100;

// The box around the points of several frames.
class Room
{
public:
    void include(const Extent& extent)
    {
        for (int axis = 0; axis < 3; ++axis) {
            lowest[axis] = std::min(lowest[axis], extent.centre[axis] - extent.sides[axis] / 2);
            highest[axis] = std::max(highest[axis], extent.centre[axis] + extent.sides[axis] / 2);
        }
    }
    // As of still data.
    Side getSide() const
    {
        Extent extent;
        extent.sides = highest - lowest;
        return std::array{Side::X, Side::Y, Side::Z}[std::size_t(thinnestAxis(extent))];
    }

private:
    static constexpr double INFINITE = std::numeric_limits<double>::infinity();

    algebra3d::Vector3<double> lowest{INFINITE, INFINITE, INFINITE};
    algebra3d::Vector3<double> highest{-INFINITE, -INFINITE, -INFINITE};
};

// Makes the stage of a series.
class StageMaker
{
public:
    StageMaker(Series& seriesToShow, const Options& askedOptions, ReadReport& readReport,
               Progress& toldProgress)
        : series(seriesToShow), options(askedOptions), report(readReport), progress(toldProgress)
    {}

    std::optional<Stage> make()
    {
        const std::optional<std::size_t> frame = findFirst();
        if (!frame || !chooseStyle())
            return {};
        include(first);
        if (series.count() > 1 && !lookAtOthers(*frame))
            return {};
        if (stage.room.isEmpty()) {
            report.error = fault;
            return {};
        }
        if (!chooseColouring())
            return {};
        stage.side = room.getSide();
        if (series.count() == 1)
            stage.room.makeEmpty();
        return std::move(stage);
    }

private:
    // The first frame that there is, of those that a user would wait for.
    std::optional<std::size_t> findFirst()
    {
        std::string error;
        for (std::size_t frame = 0; frame < std::min(series.count(), MOST_FRAMES); ++frame) {
            LoadedFrame loaded = series.load(frame, goOn());
            if (loaded.configuration) {
                first = std::move(*loaded.configuration);
                for (std::string& notice : loaded.notices)
                    report.notices.push_back(std::move(notice));
                return frame;
            }
            error = error.empty() ? loaded.error : error;
            if (progress.isStopped())
                break;
        }
        report.error = error;
        return {};
    }

    bool chooseStyle()
    {
        const std::optional<Style> style = strandview::chooseStyle(options, first, report);
        if (!style)
            return false;
        stage.style = *style;
        stage.placement = choosePlacement(measure(first), style->radius);
        stage.first = digestOf(first);
        return true;
    }

    bool lookAtOthers(std::size_t firstFrame)
    {
        const std::vector<std::size_t> sample = sampleOf(series.count(), measure(first).points);
        for (std::size_t i = 0; i < sample.size(); ++i) {
            progress.show("Looking at frame " + std::to_string(sample[i]) + " of " +
                          std::to_string(series.count()));
            if (sample[i] == firstFrame)
                continue;
            const LoadedFrame loaded = series.load(sample[i], goOn());
            if (progress.isStopped()) {
                report.error = "looking at the frames was stopped";
                return false;
            }
            if (!loaded.configuration)
                continue;
            include(*loaded.configuration);
            if (options.colourBy)
                values.include(summarise(loaded.configuration->rods, *options.colourBy));
        }
        if (sample.size() < series.count())
            report.notices.push_back(
                "camera and colours have room for " + std::to_string(sample.size()) + " of " +
                std::to_string(series.count()) + " frames, from the first to the last");
        return true;
    }

    // What cannot be drawn needs no room.
    void include(const Configuration& frame)
    {
        std::string error;
        SceneGeometry geometry =
            computeGeometry(frame, stage.style, stage.placement, progress, error);
        if (!error.empty()) {
            fault = fault.empty() ? error : fault;
            return;
        }
        room.include(measure(frame));
        stage.room.extendBy(findReach(frame, stage.style, geometry));
    }

    bool chooseColouring()
    {
        return strandview::chooseColouring(options, first, report, &values, stage.colouring);
    }

    Series::GoOn goOn()
    {
        return [this](double) { return !progress.isStopped(); };
    }

    Series& series;
    const Options& options;
    ReadReport& report;
    Progress& progress;
    Configuration first;
    Room room;
    ValueSummary values; ///< of all frames but the first
    std::string fault;   ///< of the first frame that cannot be drawn
    Stage stage;
};

} // namespace

std::vector<std::size_t> sampleOf(std::size_t frames, std::size_t pointsPerFrame)
{
    const std::size_t most = std::clamp(MOST_POINTS / std::max<std::size_t>(pointsPerFrame, 1),
                                        FEWEST_FRAMES, MOST_FRAMES);
    const std::size_t count = std::min(frames, most);
    std::vector<std::size_t> sample;
    for (std::size_t i = 0; i < count; ++i)
        sample.push_back(count == 1 ? 0 : i * (frames - 1) / (count - 1));
    return sample;
}

std::optional<Stage> makeStage(Series& series, const Options& options, ReadReport& report,
                               Progress& progress)
{
    return StageMaker(series, options, report, progress).make();
}

std::string showOnStage(DataScene*& scene, const Stage& stage, const Configuration& frame,
                        Progress& progress)
{
    if (scene)
        return updateScene(*scene, frame, progress);
    std::string error;
    SceneGeometry geometry = computeGeometry(frame, stage.style, stage.placement, progress, error);
    if (!error.empty())
        return error;
    geometry.side = stage.side;
    std::optional<Colouring> colouring;
    if (stage.colouring)
        colouring = followColouring(*stage.colouring, frame);
    DataScene* const made = buildScene(frame, stage.style, colouring ? &*colouring : nullptr,
                                       std::move(geometry), progress, error);
    if (made) {
        made->ref();
        scene = made;
    }
    return error;
}

} // namespace strandview
