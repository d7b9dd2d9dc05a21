// SPDX-License-Identifier: GPL-3.0-or-later
#include "rendering/FrameRenderer.h"

#include <cmath>
#include <new>
#include <utility>

#include <Inventor/SbViewportRegion.h>
#include <QString>

#include <strandview/formats/text/wording.h>
#include <toCoin.h>

#include "camera/Camera.h"
#include "pictures/madeFrom.h"
#include "request/limits.h"
#include "request/writeCommand.h"
#include "scene/DataScene.h"
#include "scene/Legend.h"
#include "scene/MeasuredLine.h"
#include "scene/Progress.h"
#include "scene/Stamp.h"
#include "scene/digest.h"

namespace strandview {

namespace {

// Of work that nobody watches.
class SilentProgress : public Progress
{
public:
    explicit SilentProgress(const Series::GoOn& goOn) : mayGoOn(goOn) {}
    bool isStopped() const override { return mayGoOn && !mayGoOn(0); }

private:
    const Series::GoOn& mayGoOn;
};

// What a colouring says beside the data's own values.
std::string describe(const Colouring& colouring)
{
    return formatted(colouring.min) + " " + formatted(colouring.max) + " " + colouring.constant +
           " " + formatted(colouring.constantMin) + " " + formatted(colouring.constantMax);
}

SbViewportRegion regionOf(const Options& options)
{
    return {short(options.pictureWidth), short(options.pictureHeight)};
}

// What a turn goes around: of still data there is one frame, whichever is asked for.
std::size_t frameOfTurn(const Options& options, const Series& series)
{
    return series.count() == 1 ? 0 : std::size_t(options.frame.value_or(0));
}

std::string write(const QImage& image, const std::string& file)
{
    try {
        return saveImage(image, file);
    } catch (const std::bad_alloc&) {
        return TOO_LITTLE_MEMORY_FOR_FRAME;
    }
}

} // namespace

// What came of drawing a frame.
struct FrameRenderer::Drawn
{
    std::string failure = {};
    bool wasThere = false;
    QImage image = {};
};

FrameRenderer::FrameRenderer(Series& framesToDraw, const Stage& commonStage,
                             const Options& askedOptions)
    : series(framesToDraw), stage(commonStage), options(askedOptions), name(*options.picture)
{
    if (!stage.room.isEmpty()) {
        CameraRequest request = withUsualSide(options.camera, stage.side);
        if (request.centre)
            request.centre = stage.placement.toScene(*request.centre);
        fixed = numbersFor(request, stage.shownRoom, regionOf(options),
                           stage.colouring
                               ? roomOf(stage.style.legend.place, stage.style.legendTextSize)
                               : FreeEdges());
        camera = *fixed;
    }
    common = "strandview " STRANDVIEW_VERSION "\n" + options.look + "\n" + stage.first + "\n" +
             (fixed ? formatCamera(*fixed) : "") + "\n" +
             (stage.colouring ? describe(*stage.colouring) : "") + "\n";
}

FrameRenderer::~FrameRenderer()
{
    if (scene)
        scene->unref();
}

void FrameRenderer::render(std::size_t frame, const Series::GoOn& goOn, const Done& done)
{
    Drawn drawn;
    try {
        drawn = drawUnlessThere(frame, goOn);
    } catch (const std::bad_alloc&) {
        drawn.failure = TOO_LITTLE_MEMORY_FOR_FRAME;
    }
    finish(done);
    if (!drawn.failure.empty())
        done(frame, {Outcome::FAILED, drawn.failure});
    else if (drawn.wasThere)
        done(frame, {Outcome::WAS_THERE});
    else
        written = {frame, std::async(std::launch::async, write, drawn.image, name.of(frame))};
}

void FrameRenderer::finish(const Done& done)
{
    if (!written)
        return;
    const std::string failure = written->failure.get();
    const std::size_t frame = written->frame;
    written.reset();
    done(frame, {failure.empty() ? Outcome::WRITTEN : Outcome::FAILED, failure});
}

std::string FrameRenderer::drawAlone(std::size_t frame, const Series::GoOn& goOn, QImage& image)
{
    try {
        const std::shared_ptr<const LoadedFrame> loaded = load(frame, goOn);
        if (!loaded->configuration)
            return loaded->error;
        Drawn drawn = draw(frame, *loaded->configuration, goOn);
        image = drawn.image;
        return drawn.failure;
    } catch (const std::bad_alloc&) {
        return TOO_LITTLE_MEMORY_FOR_FRAME;
    }
}

// What a turn goes around is loaded once.
std::shared_ptr<const LoadedFrame> FrameRenderer::load(std::size_t frame, const Series::GoOn& goOn)
{
    if (turned)
        return turned;
    if (options.series.turn)
        frame = frameOfTurn(options, series);
    auto loaded = std::make_shared<const LoadedFrame>(series.load(frame, goOn));
    if (options.series.turn && loaded->configuration)
        turned = loaded;
    return loaded;
}

FrameRenderer::Drawn FrameRenderer::drawUnlessThere(std::size_t frame, const Series::GoOn& goOn)
{
    const std::shared_ptr<const LoadedFrame> loaded = load(frame, goOn);
    if (!loaded->configuration)
        return {loaded->error};
    if (options.series.turn) { // the scene tells where its camera is
        const std::string failure = show(*loaded->configuration, goOn);
        if (!failure.empty())
            return {failure};
    }
    const std::string fingerprint = fingerprintOf(frame, *loaded->configuration);
    const bool isCameraKnown = (fixed && !options.series.turn) || !options.printCamera;
    if (!options.series.overwrite && isCameraKnown && madeFrom(name.of(frame)) == fingerprint)
        return {"", true};
    Drawn drawn = draw(frame, *loaded->configuration, goOn);
    drawn.image.setText(MADE_FROM, QString::fromStdString(fingerprint));
    return drawn;
}

FrameRenderer::Drawn FrameRenderer::draw(std::size_t frame, const Configuration& data,
                                         const Series::GoOn& goOn)
{
    Drawn drawn{show(data, goOn)};
    if (!drawn.failure.empty())
        return drawn;
    if (options.series.stamp)
        scene->setStamp(makeStamp(stampOf(frame), options.background, stage.style.legendTextSize,
                                  float(options.pictureWidth) / float(options.pictureHeight),
                                  stampPlace()));
    scene->setMeasured(makeMeasured(options.measurements, data, *scene));
    Picture picture{name.of(frame),  options.pictureWidth,   options.pictureHeight,
                    options.samples, options.background,     options.transparent,
                    cameraOf(frame), scene->getLegendRoom(), options.dpi.value_or(DPI_OF_PIXELS)};
    picture.title = titleOf(options.files);
    picture.command = [this, frame](const CameraNumbers& used) { return commandOf(frame, used); };
    drawn.failure = writer.draw(scene, picture, drawn.image, &camera);
    return drawn;
}

// Where neither a legend at the top nor a scale bar is.
StampPlace FrameRenderer::stampPlace() const
{
    if (!(scene->getLegendRoom().top > 0))
        return StampPlace::UPPER_LEFT;
    return stage.style.scaleBar ? StampPlace::LOWER_RIGHT : StampPlace::LOWER_LEFT;
}

std::string FrameRenderer::show(const Configuration& data, const Series::GoOn& goOn)
{
    if (options.series.turn && scene)
        return "";
    SilentProgress progress(goOn);
    if (!options.ownRange || !stage.colouring)
        return showOnStage(scene, stage, data, progress);
    ReadReport report;
    Stage own = stage;
    own.colouring = makeColouring(options, data, report, nullptr, progress);
    if (!own.colouring)
        return report.error;
    if (scene)
        scene->unref();
    scene = nullptr;
    return showOnStage(scene, own, data, progress);
}

std::string FrameRenderer::fingerprintOf(std::size_t frame, const Configuration& data)
{
    const std::string ofFrame =
        common + (options.series.stamp ? stampOf(frame) : "") + "\n" + digestOfGhost(data);
    if (!options.series.turn)
        return digestOf(ofFrame + digestOf(data));
    if (digestOfTurned.empty())
        digestOfTurned = digestOf(data);
    const std::optional<CameraNumbers> own = findTurnedCamera(frame);
    return digestOf(ofFrame + (own ? formatCamera(*own) + "\n" : "") + digestOfTurned);
}

// Of what all frames are compared with, if it is shown.
std::string FrameRenderer::digestOfGhost(const Configuration& data)
{
    if (!stage.style.showGhost || !data.reference)
        return "";
    if (digested != data.reference) {
        digested = data.reference;
        digestOfReference = digestOf(*digested) + "\n";
    }
    return digestOfReference;
}

std::string FrameRenderer::stampOf(std::size_t frame) const
{
    const std::size_t shown = options.series.turn ? frameOfTurn(options, series) : frame;
    return stampText(shown, series.time(shown));
}

// That of this picture alone.
std::string FrameRenderer::commandOf(std::size_t frame, const CameraNumbers& used) const
{
    ShownPicture shown{options.files, {}, used, options.getPictureSize(), options.series.stamp};
    if (series.count() > 1)
        shown.frame = options.series.turn ? frameOfTurn(options, series) : frame;
    return writeCommandToKeep(options, shown);
}

// Nothing where it is the one that the frame has without a turn.
std::optional<CameraNumbers> FrameRenderer::findTurnedCamera(std::size_t frame) const
{
    if (!options.series.turn || scene->getBox().isEmpty())
        return {};
    const SbBox3f& box = scene->getBox();
    const SbViewportRegion region = regionOf(options);
    const FreeEdges edges = scene->getLegendRoom();
    const CameraRequest request = scene->settle(options.camera);
    const CameraNumbers still = fixed ? *fixed : numbersFor(request, box, region, edges);
    const SbVec3f axis = axisToTurn(request, still);
    const CameraNumbers first =
        request.numbers || request.isFramed()
            ? still
            : withRoomToTurn(still, box, axis, region, edges, request.margin);
    if (frame == 0)
        return first == still ? std::nullopt : std::optional(first);
    const SbVec3f middle = request.centre ? toSbVec3f(*request.centre) : box.getCenter();
    return turnedAround(first, middle, axis,
                        2 * M_PI * double(frame) / double(*options.series.turn));
}

CameraRequest FrameRenderer::cameraOf(std::size_t frame) const
{
    CameraRequest request = fixed ? options.camera : scene->settle(options.camera);
    if (fixed)
        request.numbers = fixed;
    if (const std::optional<CameraNumbers> own = findTurnedCamera(frame))
        request.numbers = own;
    return request;
}

} // namespace strandview
