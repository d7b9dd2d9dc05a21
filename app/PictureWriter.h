// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_PICTUREWRITER_H
#define STRANDVIEW_APP_PICTUREWRITER_H

#include <string>

#include "Colour.h"

class SoGeneralScene;

struct Picture
{
    std::string file;
    int width;
    int height;
    int samples; ///< per pixel, in each direction; rendered so much larger
    Colour background;
    float bottom; ///< the part of the height that is left free below the scene
};

/// Empty if the ending of a picture's name is one that can be written, otherwise one
/// line that says which can.
std::string checkPictureName(const std::string& file);

/// Renders the whole scene off screen, seen along -z with y up by an orthographic
/// camera, and writes it. The file appears complete or not at all. Returns one line that
/// says what failed, or nothing.
std::string writePicture(SoGeneralScene* scene, const Picture& picture);

#endif
