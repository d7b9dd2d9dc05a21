// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_PICTURES_PICTUREWRITER_H
#define STRANDVIEW_APP_PICTURES_PICTUREWRITER_H

#include <functional>
#include <memory>
#include <string>

#include <Inventor/SbVec2s.h>

#include "request/CameraNumbers.h"
#include "request/CameraRequest.h"
#include "request/Colour.h"
#include "request/FreeEdges.h"
#include "request/limits.h"

class QImage;
class QString;
class SoGeneralScene;
class SoNode;

namespace strandview {

class LeanPrograms;
class TileRenderer;

/// Larger pictures are rendered in tiles of at most so many samples, which take some 60 MB. A
/// tile holds one pixel at least.
constexpr int SAMPLES_AT_ONCE = 5'000'000;

/// What is said of a picture that was not to be finished.
constexpr const char* PICTURE_STOPPED = "the picture was stopped";

struct Picture
{
    std::string file;
    int width;
    int height;
    int samples; ///< per pixel, in each direction; rendered so much larger
    Colour background;
    bool transparent; ///< the background is left out
    CameraRequest camera;
    FreeEdges edges;         ///< that a standard view leaves free
    int dpi = DPI_OF_PIXELS; ///< pixels per inch that the file tells, where its format can
    int samplesAtOnce = SAMPLES_AT_ONCE;
    std::string title = {}; ///< that the file tells, where its format can
    /// The command line that the file tells, made of the camera that was used; none if not set.
    std::function<std::string(const CameraNumbers& camera)> command = {};
};

/// Empty if the ending of a picture's name is one that can be written, and with
/// transparent pixels if asked for; otherwise one line that begins with `option` and
/// says which can.
std::string checkPictureName(const std::string& option, const std::string& file, bool transparent);

/// Renders scenes off screen, one picture after the other. What the pictures of a series have in
/// common is made once: the OpenGL context with its memory, which is current from the first picture
/// on as long as this lives, and the shader programs. A picture is the same whatever came before.
class PictureWriter
{
public:
    PictureWriter();
    ~PictureWriter();
    PictureWriter(const PictureWriter&) = delete;
    PictureWriter& operator=(const PictureWriter&) = delete;

    /// Returns one line that says what failed, or nothing. `usedCamera`, if not null, is told the
    /// camera. The image's texts are "Software", program and version, "Camera", as formatCamera()
    /// writes it, and "Title" and "Command", if the picture has them. Its file is not looked at.
    ///
    /// Between its tiles `goOn`, if set, is told which part of the picture is drawn, from 0 to 1,
    /// and says whether to go on; if not, the line is PICTURE_STOPPED. It may process events that
    /// leave the scene to itself, and draw in other OpenGL contexts.
    using GoOn = std::function<bool(double done)>;
    std::string draw(SoGeneralScene* scene, const Picture& picture, QImage& image,
                     CameraNumbers* usedCamera = nullptr, const GoOn& goOn = {});

private:
    std::string render(SoNode* graph, const Picture& picture, QImage& image, const GoOn& goOn);
    TileRenderer& rendererFor(const Picture& picture, const SbVec2s& tile);

    std::unique_ptr<TileRenderer> renderer; ///< of the pictures drawn last
    std::unique_ptr<LeanPrograms> programs;
};

/// Draws one picture and saves it. The file appears complete or not at all.
std::string writePicture(SoGeneralScene* scene, const Picture& picture,
                         CameraNumbers* usedCamera = nullptr);

/// Writes an image, with its texts, in the format of the name's ending; as writePicture(). A page
/// (.pdf, .svg) is as large as the image's resolution makes it.
/// `isWanted`, if set, is asked at last, before the file appears; if it says no, none does, and the
/// line is PICTURE_STOPPED.
std::string saveImage(const QImage& image, const std::string& name,
                      const std::function<bool()>& isWanted = {});

/// The name endings of the formats that can be written, with transparent pixels if asked for, as
/// "*.png *.jpg".
QString pictureNamePatterns(bool transparent);

} // namespace strandview

#endif
