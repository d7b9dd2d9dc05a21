// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/Stage.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include <strandview/formats/text/wording.h>
#include <strandview/model/Extent.h>

#include <toCoin.h>

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

} // namespace

// What is known of the frames that were looked at.
class StageMaker::Work
{
public:
    Work(Series& seriesToShow, const Options& askedOptions, ReadReport& readReport,
         Progress& toldProgress)
        : series(seriesToShow), options(askedOptions), report(readReport), progress(toldProgress)
    {}

    bool begin()
    {
        const std::optional<std::size_t> frame = findFirst();
        if (!frame || !chooseStyle())
            return false;
        include(first);
        if (!goesOn())
            return false;
        count = series.count();
        sample = sampleOf(count, measure(first).points);
        sample.erase(std::remove(sample.begin(), sample.end(), *frame), sample.end());
        return true;
    }

    bool lookAtNext()
    {
        if (looked == sample.size())
            return false;
        const std::size_t frame = sample[looked++];
        progress.show("Looking at frame " + std::to_string(frame) + " of " + std::to_string(count));
        const LoadedFrame loaded = series.load(frame, goOn());
        if (loaded.configuration) {
            include(*loaded.configuration);
            includeValues(*loaded.configuration);
        }
        return goesOn();
    }

    std::optional<Stage> finish()
    {
        if (!report.error.empty())
            return {};
        if (sample.size() + 1 < count)
            report.notices.push_back("camera and colours have room for " +
                                     std::to_string(sample.size() + 1) + " of " +
                                     std::to_string(count) + " frames, from the first to the last");
        if (stage.room.isEmpty()) {
            report.error = fault;
            return {};
        }
        if (!chooseColouring())
            return {};
        stage.side = room.getSide();
        if (count == 1)
            stage.room.makeEmpty();
        if (count == 1 || stage.shownRoom.isEmpty())
            stage.shownRoom = stage.room;
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

    // Or one line in report.error.
    bool goesOn()
    {
        if (!progress.isStopped())
            return true;
        report.error = "looking at the frames was stopped";
        return false;
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
        const Reach reach = findReach(frame, stage.style, geometry, progress);
        stage.room.extendBy(reach.all);
        stage.shownRoom.extendBy(reach.shown);
    }

    void includeValues(const Configuration& frame)
    {
        if (options.colourBy)
            stage.values.include(
                summarise(frame, *options.colourBy, options.dna.angstrom, progress));
    }

    bool chooseColouring()
    {
        return strandview::chooseColouring(options, first, report, &stage.values, stage.colouring,
                                           progress);
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
    std::string fault; ///< of the first frame that cannot be drawn
    std::size_t count = 0;
    std::vector<std::size_t> sample; ///< the other frames to look at
    std::size_t looked = 0;          ///< of those
    Stage stage;
};

StageMaker::StageMaker(Series& series, const Options& options, ReadReport& report,
                       Progress& progress)
    : work(std::make_unique<Work>(series, options, report, progress))
{}

StageMaker::~StageMaker() = default;

bool StageMaker::begin() { return work->begin(); }

bool StageMaker::lookAtNext() { return work->lookAtNext(); }

std::optional<Stage> StageMaker::finish() { return work->finish(); }

SbBox3f Stage::roomIn(const Placement& other) const
{
    const auto place = [&](const SbVec3f& corner) {
        const algebra3d::Vector3<double> there{double(corner[0]), double(corner[1]),
                                               double(corner[2])};
        return toSbVec3f(other.toScene(placement.toData(there)));
    };
    return room.isEmpty() ? room : SbBox3f(place(room.getMin()), place(room.getMax()));
}

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
    StageMaker maker(series, options, report, progress);
    if (!maker.begin())
        return {};
    while (maker.lookAtNext())
        continue;
    return maker.finish();
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
        colouring = followColouring(*stage.colouring, frame, progress);
    DataScene* const made = buildScene(frame, stage.style, colouring ? &*colouring : nullptr,
                                       std::move(geometry), progress, error);
    if (made) {
        made->ref();
        scene = made;
    }
    return error;
}

} // namespace strandview
