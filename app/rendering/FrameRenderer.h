// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_RENDERING_FRAMERENDERER_H
#define STRANDVIEW_APP_RENDERING_FRAMERENDERER_H

#include <cstddef>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QImage>

#include <strandview/model/Series.h>

#include "pictures/PictureWriter.h"
#include "request/Options.h"
#include "request/PictureName.h"
#include "scene/Stage.h"
#include "scene/Stamp.h"

namespace strandview {

class DataScene;

/// Draws the pictures of a series' frames, one after the other, with one scene and one stage; or
/// those of a turn around one frame, whose numbers count the steps of the turn then. A picture does
/// not depend on those before it.
///
/// In the thread that Coin is used in; a file is packed and written in another meanwhile.
class FrameRenderer
{
public:
    /// What became of a frame.
    struct Outcome
    {
        enum Kind { WRITTEN, WAS_THERE, FAILED } kind;
        std::string failure = {}; ///< in one line; empty unless it failed
    };

    /// What is referred to outlives the renderer.
    FrameRenderer(Series& framesToDraw, const Stage& commonStage, const Options& askedOptions);
    ~FrameRenderer();
    FrameRenderer(const FrameRenderer&) = delete;
    FrameRenderer& operator=(const FrameRenderer&) = delete;

    /// Draws a frame and begins to write it, unless the same picture is there. What became of it is
    /// told to `done`: soon, or by the next call, or by finish().
    using Done = std::function<void(std::size_t frame, const Outcome& outcome)>;
    void render(std::size_t frame, const Series::GoOn& goOn, const Done& done);
    /// Waits for what is still written.
    void finish(const Done& done);

    /// Draws a frame for other uses. One line that says what failed, or nothing.
    std::string drawAlone(std::size_t frame, const Series::GoOn& goOn, QImage& image);

    /// That of every frame, or of the last picture of a turn; of still data meaningless before one
    /// was drawn.
    const CameraNumbers& getCamera() const { return camera; }

private:
    struct Written
    {
        std::size_t frame;
        std::future<std::string> failure;
    };

    struct Drawn;

    std::shared_ptr<const LoadedFrame> load(std::size_t frame, const Series::GoOn& goOn);
    Drawn drawUnlessThere(std::size_t frame, const Series::GoOn& goOn);
    Drawn draw(std::size_t frame, const Configuration& data, const Series::GoOn& goOn);
    std::string show(const Configuration& data, const Series::GoOn& goOn);
    std::string fingerprintOf(std::size_t frame, const Configuration& data);
    std::string digestOfGhost(const Configuration& data);
    std::string stampOf(std::size_t frame) const;
    StampPlace stampPlace() const;
    std::string commandOf(std::size_t frame, const CameraNumbers& used) const;
    std::optional<CameraNumbers> findTurnedCamera(std::size_t frame) const;
    CameraRequest cameraOf(std::size_t frame) const;

    Series& series;
    const Stage& stage;
    const Options& options;
    const PictureName name;
    std::optional<CameraNumbers> fixed;        ///< the camera of all frames; nothing of still data
    std::string common;                        ///< to all fingerprints
    std::shared_ptr<const LoadedFrame> turned; ///< what a turn goes around, once it is loaded
    std::string digestOfTurned;
    std::shared_ptr<const Configuration> digested; ///< the reference
    std::string digestOfReference;
    DataScene* scene = nullptr;
    PictureWriter writer;
    CameraNumbers camera{};
    std::optional<Written> written;
};

} // namespace strandview

#endif
