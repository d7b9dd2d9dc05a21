// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENEBUILDER_H
#define STRANDVIEW_APP_SCENEBUILDER_H

#include <string>

#include "Configuration.h"
#include "Style.h"

class Progress;
class SbVec3f;
class SoSeparator;

/// Initialises Coin and registers the library's node classes; once per program, and
/// before anything else of Coin.
void initialiseScene();

/// Turns data and style into nodes: the one place that does. Its reference count is
/// zero. No camera and no light is in it. The scene has the data's coordinates, but
/// data far from the origin are moved there, and tiny ones enlarged by a power of ten,
/// so that nothing is lost in single precision. Null, and one line in `error`, if a rod
/// cannot be interpolated: it turns straight back on itself, or its ribbon's edge does.
SoSeparator* buildScene(const Configuration& configuration, const Style& style, Progress& progress,
                        std::string& error);

/// Where the light of a picture or a window shines to, seen from its camera.
SbVec3f getLightDirection();

#endif
