// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_GHOST_H
#define STRANDVIEW_APP_SCENE_GHOST_H

#include <vector>

#include <Inventor/SbBox3f.h>

#include "request/ThingLook.h"
#include "scene/SceneGeometry.h"

class SoRod;
class SoSeparator;
class SoSwitch;

namespace strandview {

class SoSeeThrough;

/// The nodes of what the data of a scene are compared with: tubes in one grey that is seen through,
/// which nobody can pick. In the thread that Coin is used in.
class Ghost
{
public:
    Ghost();

    /// What draws it, for the scene graph, which owns it then.
    SoSeparator* getNode() const { return node; }

    /// Lets it be these curves, in nodes that are there as far as they fit.
    void show(std::vector<SceneGeometry::GhostCurve> next);
    /// From 0 to 1.
    void setTransparency(double transparency);
    /// Leaves out what is compared with things that are hidden.
    void setLooks(const ThingLooks& looks);

    /// Around what is drawn of it, in the scene.
    SbBox3f getBox() const;

private:
    struct Shown
    {
        ThingId like;
        SoSwitch* choice; ///< whether it is drawn; owned by the graph
        SoRod* rod;
    };
    /// One that rows are left out of where its scene is drawn coarsely.
    Shown makeCurve(int slices, int subsegments);
    void keepFirst(std::size_t count);

    SoSeparator* node;
    SoSeeThrough* curves; ///< behind a material
    std::vector<Shown> shown;
    ThingLooks looks;
};

/// Around those that are not left out, in the scene, without a node.
SbBox3f boxOfGhost(const std::vector<SceneGeometry::GhostCurve>& curves, const ThingLooks& looks);

} // namespace strandview

#endif
