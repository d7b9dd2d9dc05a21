// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_SCENEBUILDER_H
#define STRANDVIEW_APP_SCENE_SCENEBUILDER_H

#include <string>

#include <Inventor/SbBox3f.h>

#include <strandview/model/Configuration.h>

#include "scene/Placement.h"
#include "scene/SceneGeometry.h"
#include "scene/Style.h"

namespace strandview {

class DataScene;
class Progress;
struct Colouring;

/// Initialises Coin and registers the program's and the library's node classes;
/// once per program, and before anything else of Coin.
void initialiseScene();

/// About as many vertices as what buildScene() makes of the curves of data has.
double countVertices(const Configuration& configuration, const Style& style);

/// Computes the geometry of data: in any thread, since nothing of Coin is touched. One line
/// in `error` if it is too large, if a rod or birod cannot be interpolated (it turns straight
/// back on itself, or the edge of a ribbon that is shown does), or if it is stopped.
SceneGeometry computeGeometry(const Configuration& configuration, const Style& style,
                              Progress& progress, std::string& error);
/// The same of another frame, whose placement is that of the first.
SceneGeometry computeGeometry(const Configuration& next, const Style& style,
                              const Placement& placement, Progress& progress, std::string& error);

/// Boxes around all that buildScene() makes of a frame, and around what is neither hidden nor
/// deleted.
struct Reach
{
    SbBox3f all, shown;
};

/// In any thread, since no node is made. Of less, if it is stopped.
Reach findReach(const Configuration& configuration, const Style& style, SceneGeometry& geometry,
                const Progress& progress);

/// Turns data, style and the data's geometry into nodes: the one place that does. Everything is
/// changing content, lit at first; a legend of the colouring, if there is one, is drawn over it.
/// There is no camera of the scene in it, and its reference count is zero. In the thread that Coin
/// is used in.
///
/// The scene has the data's coordinates, but data far from the origin are moved there,
/// and tiny ones enlarged by a power of ten, so that nothing is lost in single
/// precision. Null, and one line in `error`, if a colour is none, the scene is too wide or
/// building is stopped.
DataScene* buildScene(const Configuration& configuration, const Style& style,
                      const Colouring* colouring, SceneGeometry geometry, Progress& progress,
                      std::string& error);
/// The same, which computes the geometry first.
DataScene* buildScene(const Configuration& configuration, const Style& style,
                      const Colouring* colouring, Progress& progress, std::string& error);

/// Lets a scene show its data in another style, with these colours of data or none: all of it, or,
/// with one line that says why not, nothing. Its nodes are made anew; camera, lights, what its user
/// changed of a datum and the room of other frames stay. Data and progress as of updateScene(),
/// geometry of the style; its placement becomes that of the scene.
std::string restyleScene(DataScene& scene, const Configuration& data, const Style& style,
                         const Colouring* colouring, SceneGeometry geometry, Progress& progress);

/// The same of a scene that knows its data, whose shapes stay as they are shown: see
/// haveSameShapes(). The colouring is that of the data that are shown; of the geometry only colours
/// of rows are taken, those that were made of the rows that are shown.
void recolourScene(DataScene& scene, const Style& style, const Colouring* colouring,
                   SceneGeometry made = {});
/// The rows that a scene shows, for colours that are made of them in another thread.
RowsOfData rowsOf(const DataScene& scene);

/// Lets a scene show the next frame instead: all of it, or, with one line that says why not,
/// nothing. Placement, style, colours' range and side stay those of the first frame; camera,
/// lights and whatever else is no datum are not touched.
///
/// Which datum is which goes by the index within its kind: the i-th rod of the frame is shown by
/// the node of the i-th rod before it. Nodes of data that are there stay, data beyond them get
/// new ones, and the last nodes go where there are fewer data. Picks are told by the new frame's
/// names.
///
/// In the thread that Coin is used in; the progress may process events, which must leave the
/// scene to itself. The geometry is that of computeGeometry() for getStyle() and getPlacement() of
/// the scene, the colouring what followColouring() makes of its getColouring(); null for a scene
/// without one.
std::string updateScene(DataScene& scene, const Configuration& next, const Colouring* colouring,
                        SceneGeometry geometry, Progress& progress);
/// The same, which computes geometry and colouring first.
std::string updateScene(DataScene& scene, const Configuration& next, Progress& progress);

} // namespace strandview

#endif
