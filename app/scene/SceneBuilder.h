// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_SCENEBUILDER_H
#define STRANDVIEW_APP_SCENE_SCENEBUILDER_H

#include <string>
#include <vector>

#include <SoRod.h>

#include <strandview/model/Configuration.h>

#include "request/CameraRequest.h"
#include "scene/Placement.h"
#include "scene/Style.h"

namespace strandview {

class DataScene;
class Progress;
struct Colouring;

/// Initialises Coin and registers the program's and the library's node classes;
/// once per program, and before anything else of Coin.
void initialiseScene();

/// What can be computed of a scene without a node.
struct SceneGeometry
{
    struct Rod
    {
        std::vector<algebra3d::Vector3<double>> points; ///< in the scene
        SoRod::Meshes meshes;
    };
    Placement placement;
    Side side = Side::Z;   ///< that it is seen from unless another is asked for
    std::vector<Rod> rods; ///< one for each of the configuration
};

/// Computes the geometry of data: in any thread, since nothing of Coin is touched. One line
/// in `error` if it is too large, if a rod cannot be interpolated (it turns straight back
/// on itself, or the edge of a ribbon that is shown does), or if it is stopped.
SceneGeometry computeGeometry(const Configuration& configuration, const Style& style,
                              Progress& progress, std::string& error);

/// Turns data, style and the data's geometry into nodes: the one place that does. Everything is
/// changing content, lit at first; a legend of the colouring, if there is one, is drawn over it.
/// There is no camera of the scene in it, and its reference count is zero.
///
/// The scene has the data's coordinates, but data far from the origin are moved there,
/// and tiny ones enlarged by a power of ten, so that nothing is lost in single
/// precision. Null, and one line in `error`, if a birod cannot be interpolated or building
/// is stopped.
DataScene* buildScene(const Configuration& configuration, const Style& style,
                      const Colouring* colouring, SceneGeometry geometry, Progress& progress,
                      std::string& error);
/// The same, which computes the geometry first.
DataScene* buildScene(const Configuration& configuration, const Style& style,
                      const Colouring* colouring, Progress& progress, std::string& error);

} // namespace strandview

#endif
