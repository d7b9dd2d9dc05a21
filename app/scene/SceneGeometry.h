// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_SCENEGEOMETRY_H
#define STRANDVIEW_APP_SCENE_SCENEGEOMETRY_H

#include <array>
#include <string>
#include <vector>

#include <SoBirod.h>
#include <SoRod.h>

#include "request/CameraRequest.h"
#include "request/ThingKind.h"
#include "request/ThingLook.h"
#include "scene/Placement.h"
#include "scene/RowColours.h"

namespace strandview {

/// What can be computed of a scene without a node.
struct SceneGeometry
{
    struct Rod
    {
        std::vector<algebra3d::Vector3<double>> points; ///< in the scene
        std::vector<algebra3d::Quaternion<double>> rotations;
        SoRod::Meshes meshes;
        RowColours colours; ///< of data, if they were made
    };
    struct Birod
    {
        SoBirod::Data data; ///< in the scene
        SoBirod::Meshes meshes;
        RowColours colours; ///< of data, if they were made
    };
    /// A backbone that the file does not have.
    struct Backbone
    {
        std::vector<algebra3d::Vector3<double>> points; ///< in the scene; none if none is drawn
        std::vector<algebra3d::Quaternion<double>> rotations;
        SoRod::Meshes meshes;
    };
    struct Dna
    {
        std::array<Backbone, 2> backbones; ///< of strand 1 and 2
    };
    /// A curve of what the data are compared with, superposed onto them.
    struct GhostCurve
    {
        ThingId like;                                   ///< what of the data it is compared with
        std::vector<algebra3d::Vector3<double>> points; ///< in the scene
        std::vector<algebra3d::Quaternion<double>> rotations;
        SoRod::Meshes meshes;
        int slices, subsegments; ///< of those
    };
    Placement placement;
    Side side = Side::Z;       ///< that it is seen from unless another is asked for
    std::vector<Rod> rods;     ///< one for each of the configuration
    std::vector<Birod> birods; ///< one for each of the configuration
    std::vector<Dna> dnas;     ///< one for each of the configuration
    std::vector<GhostCurve> ghost;
    std::vector<std::string> ghostFaults; ///< a line for each curve of it that cannot be drawn
};

} // namespace strandview

#endif
