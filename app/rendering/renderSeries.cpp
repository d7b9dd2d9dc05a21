// SPDX-License-Identifier: GPL-3.0-or-later
#include "rendering/renderSeries.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include <QImage>

#include <strandview/analysis/interpolate.h>
#include <strandview/formats/text/wording.h>

#include "rendering/Film.h"
#include "rendering/FrameRenderer.h"
#include "rendering/Interruption.h"
#include "rendering/SeriesProgress.h"
#include "rendering/Workers.h"
#include "request/ExitStatus.h"
#include "request/print.h"
#include "scene/Progress.h"
#include "scene/Stage.h"
#include "scene/clipping.h"
#include "scene/readFiles.h"

namespace strandview {

namespace {

// On a terminal, with the user's interruption.
class OpeningProgress : public TerminalProgress
{
public:
    explicit OpeningProgress(const Interruption& userInterruption) : interruption(userInterruption)
    {}
    bool isStopped() const override { return interruption.hasCome(); }

private:
    const Interruption& interruption;
};

// Of the frames that there are, those that are asked for.
std::vector<std::size_t> askedFrames(const Options& options, const OpenedFiles& opened,
                                     ReadReport& report)
{
    std::string& error = report.error;
    const std::size_t count = opened.series->count();
    const bool isPattern =
        options.picture && (PictureName(*options.picture).isPattern() || isFilm(*options.picture));
    const std::optional<int>& turn = options.series.turn;
    const std::size_t most = turn ? std::size_t(*turn) : count;
    const std::string noun = turn ? "picture" : "frame";
    std::vector<std::size_t> frames;
    const bool areSeveral = options.series.frames || isPattern || options.series.listFrames;
    std::optional<std::size_t> shown; // alone, or by a turn
    if (turn || options.frame || !areSeveral) {
        shown = shownFrame(opened, options, report);
        if (!shown)
            return {};
    }
    if (turn || !shown)
        frames = framesOf(options.series.frames.value_or(FrameSlice()), most);
    else
        frames.push_back(*shown);
    if (count > 1 && shown && !options.frame && !options.series.listFrames)
        report.notices.push_back("the first of " + counted(count, "frame") +
                                 "; --frame N takes another, counted from 0");
    if (frames.empty())
        error = "--frames: found none of " + counted(most, noun) + ", expected one at least";
    if (frames.size() > 1 && options.picture && !isPattern)
        error = "--render: found " + inQuotes(*options.picture) + " for " +
                counted(frames.size(), noun) + ", expected a name with %d or %05d in it";
    return framesOf(options.series.shard, frames);
}

// Says what the program ends with.
int printOrTell(const std::string& answer)
{
    const std::string unprinted = print(answer);
    if (!unprinted.empty())
        tell(unprinted);
    return unprinted.empty() ? SUCCESS : CANNOT_WRITE;
}

std::string lineOf(std::size_t frame, const Series& series, const Options& options)
{
    const std::optional<int>& turn = options.series.turn;
    const std::optional<double> time =
        turn ? 360 * double(frame) / double(*turn) : series.time(frame);
    std::string line = std::to_string(frame) + "\t" + (time ? formatted(*time) : "-");
    if (options.picture)
        line += "\t" + PictureName(*options.picture).of(frame);
    return line + "\n";
}

int listFrames(const std::vector<std::size_t>& frames, const Series& series, const Options& options)
{
    std::string text;
    for (const std::size_t frame : frames)
        text += lineOf(frame, series, options);
    return printOrTell(text);
}

// What became of the frames.
class Result
{
public:
    Result(std::size_t count, const Interruption& userInterruption)
        : progress(count), interruption(userInterruption)
    {}

    void note(std::size_t frame, const FrameRenderer::Outcome& outcome)
    {
        const bool hasFailed = outcome.kind == FrameRenderer::Outcome::FAILED;
        if (hasFailed && interruption.hasCome()) // it was stopped
            return;
        if (hasFailed) {
            say("frame " + std::to_string(frame) + ": " + outcome.failure);
            failures.push_back(frame);
        }
        progress.add(outcome.kind == FrameRenderer::Outcome::WRITTEN);
    }

    void say(const std::string& line)
    {
        progress.hide();
        tell(line);
    }

    // Says what the program ends with.
    int finish()
    {
        progress.hide();
        if (interruption.hasCome())
            return INTERRUPTED;
        std::sort(failures.begin(), failures.end());
        if (failures.size() > 1) {
            std::string text = "failed: frames";
            for (const std::size_t frame : failures)
                text += (frame == failures.front() ? " " : ", ") + std::to_string(frame);
            tell(text);
        }
        return failures.empty() ? SUCCESS : CANNOT_WRITE;
    }

private:
    SeriesProgress progress;
    const Interruption& interruption;
    std::vector<std::size_t> failures;
};

using Frames = std::vector<std::size_t>;
using Outcome = FrameRenderer::Outcome;

int renderHere(FrameRenderer& renderer, const Frames& frames, const Interruption& interruption)
{
    Result result(frames.size(), interruption);
    const auto goOn = [&interruption](double) { return !interruption.hasCome(); };
    const auto note = [&result](std::size_t frame, const Outcome& outcome) {
        result.note(frame, outcome);
    };
    for (std::size_t i = 0; i < frames.size() && goOn(0); ++i)
        renderer.render(frames[i], goOn, note);
    renderer.finish(note);
    return result.finish();
}

int renderByWorkers(Series& series, const Stage& stage, const Options& options,
                    const Frames& frames, const Interruption& interruption)
{
    Result result(frames.size(), interruption);
    const auto goOn = [&interruption] { return !interruption.hasCome(); };
    const auto makeCode = [&]() -> Workers::Code {
        const auto renderer = std::make_shared<FrameRenderer>(series, stage, options);
        return {[renderer, goOn](std::size_t frame, const Workers::Done& done) {
                    renderer->render(
                        frame, [goOn](double) { return goOn(); }, done);
                },
                [renderer](const Workers::Done& done) { renderer->finish(done); }};
    };
    Workers workers(std::size_t(options.series.jobs), makeCode);
    workers.draw(
        frames,
        [&result](std::size_t frame, const Outcome& outcome) { result.note(frame, outcome); }, goOn,
        [&result](const std::string& line) { result.say(line); });
    return result.finish();
}

// A frame that fails is left out; a film that fails is none.
int renderFilm(FrameRenderer& renderer, const Options& options, const Frames& frames,
               const Interruption& interruption)
{
    Result result(frames.size(), interruption);
    Film film(*options.picture, options.series.framesPerSecond, options.background);
    const auto goOn = [&interruption](double) { return !interruption.hasCome(); };
    std::string fault;
    bool isEmpty = true;
    for (std::size_t i = 0; i < frames.size() && fault.empty() && goOn(0); ++i) {
        QImage image;
        const std::string failure = renderer.drawAlone(frames[i], goOn, image);
        if (failure.empty())
            fault = film.add(image);
        isEmpty = isEmpty && !failure.empty();
        result.note(frames[i], {failure.empty() ? Outcome::WRITTEN : Outcome::FAILED, failure});
    }
    const int status = result.finish();
    if (status == INTERRUPTED || isEmpty)
        return status;
    if (fault.empty())
        fault = film.finish();
    if (!fault.empty())
        tell(fault);
    return fault.empty() ? status : CANNOT_WRITE;
}

int fail(const std::string& error, const Interruption& interruption)
{
    if (interruption.hasCome())
        return INTERRUPTED;
    tell(error);
    return BAD_INPUT;
}

} // namespace

bool asksForSeries(const Options& options)
{
    const SeriesRequest& series = options.series;
    return series.frames || series.turn || series.isOfFiles || series.listFrames || options.frame ||
           series.shard.count > 1 || series.stamp || series.align || series.between > 0 ||
           series.overwrite || series.jobs != 1 ||
           (options.picture &&
            (PictureName(*options.picture).isPattern() || isFilm(*options.picture)));
}

int renderSeries(const Options& options)
{
    const Interruption interruption;
    OpeningProgress opening(interruption);
    ReadReport report;
    OpenedFiles opened = openFiles(options.files, options, report, opening);
    if (!opened.series)
        return fail(report.error, interruption);
    if (options.series.between > 0 && opened.series->count() == 1)
        report.notices.push_back("--between has no effect: found 1 frame");
    opened.series = moveFrames(std::move(opened.series), options);
    Series& series = *opened.series;
    const auto* interpolated = dynamic_cast<const InterpolatedSeries*>(&series);
    const std::vector<std::size_t> frames = askedFrames(options, opened, report);
    if (!report.error.empty())
        return fail(report.error, interruption);
    if (options.series.listFrames)
        return listFrames(frames, series, options);

    const std::optional<Stage> stage = makeStage(series, options, report, opening);
    opening.hide();
    if (interpolated && !interpolated->getRefusal().empty())
        return fail("--between: " + interpolated->getRefusal(), interruption);
    if (!stage)
        return fail(report.error, interruption);
    const std::string idleClip = findIdleClip(options, stage->shownRoom, stage->placement);
    if (!idleClip.empty())
        report.notices.push_back(idleClip);
    for (const std::string& notice : report.notices)
        tell(notice);
    FrameRenderer renderer(series, *stage, options);
    // Of a turn it is known to who drew the last picture.
    const bool isCameraOfLast = options.printCamera && options.series.turn;
    int status = SUCCESS;
    if (isFilm(*options.picture))
        status = renderFilm(renderer, options, frames, interruption);
    else if (options.series.jobs != 1 && !isCameraOfLast)
        status = renderByWorkers(series, *stage, options, frames, interruption);
    else
        status = renderHere(renderer, frames, interruption);
    if (status != SUCCESS || !options.printCamera)
        return status;
    return printOrTell(formatCamera(renderer.getCamera()) + "\n");
}

} // namespace strandview
