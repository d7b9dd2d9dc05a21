// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_PICTURES_PICTUREWRITER_H
#define STRANDVIEW_APP_PICTURES_PICTUREWRITER_H

#include <memory>
#include <string>

#include <Inventor/SbVec2s.h>

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
    /// camera. The image's texts are "Software", program and version, and "Camera", as
    /// formatCamera() writes it. The picture's file is not looked at.
    std::string draw(SoGeneralScene* scene, const Picture& picture, QImage& image,
                     CameraNumbers* usedCamera = nullptr);

private:
    std::string render(SoNode* graph, const Picture& picture, QImage& image);
    TileRenderer& rendererFor(const Picture& picture, const SbVec2s& tile);

    std::unique_ptr<TileRenderer> renderer; ///< of the pictures drawn last
    std::unique_ptr<LeanPrograms> programs;
};

/// Draws one picture and saves it. The file appears complete or not at all.
std::string writePicture(SoGeneralScene* scene, const Picture& picture,
                         CameraNumbers* usedCamera = nullptr);

/// Writes an image in the format of the name's ending; as writePicture().
std::string saveImage(const QImage& image, const std::string& name);

/// The name endings of the formats that can be written, as "*.png *.jpg".
QString pictureNamePatterns();

} // namespace strandview

#endif
