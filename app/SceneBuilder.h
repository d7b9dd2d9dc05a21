// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENEBUILDER_H
#define STRANDVIEW_APP_SCENEBUILDER_H

#include <string>

#include "Configuration.h"
#include "Style.h"

class DataScene;
class Progress;
struct Colouring;

/// Initialises Coin and registers the program's and the library's node classes;
/// once per program, and before anything else of Coin.
void initialiseScene();

/// Turns data and style into nodes: the one place that does. Everything is changing
/// content, lit at first; a legend of the colouring, if there is one, is drawn over it.
/// There is no camera of the scene in it, and its reference count is zero.
///
/// The scene has the data's coordinates, but data far from the origin are moved there,
/// and tiny ones enlarged by a power of ten, so that nothing is lost in single
/// precision. Null, and one line in `error`, if a rod cannot be interpolated: it turns
/// straight back on itself, or its ribbon's edge does.
DataScene* buildScene(const Configuration& configuration, const Style& style,
                      const Colouring* colouring, Progress& progress, std::string& error);

#endif
