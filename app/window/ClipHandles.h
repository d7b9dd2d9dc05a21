// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_CLIPHANDLES_H
#define STRANDVIEW_APP_WINDOW_CLIPHANDLES_H

#include <functional>

#include <Inventor/SbBox3f.h>
#include <Inventor/SbViewportRegion.h>
#include <Inventor/actions/SoHandleEventAction.h>

#include "request/ClipPlane.h"
#include "scene/Placement.h"

class SoCamera;
class SoDragger;
class SoEvent;
class SoGroup;
class SoNode;
class SoRotateSphericalDragger;
class SoSeparator;
class SoSwitch;
class SoTransform;
class SoTranslate1Dragger;

namespace strandview {

/// What a user moves and turns a clipping plane with in a view: an arrow along its normal, a ball
/// at its middle, and a frame that tells where it is. They are in no picture.
///
///     handles.getNode()    is drawn after the scene, with its camera.
class ClipHandles
{
public:
    ClipHandles();
    ~ClipHandles();
    ClipHandles(const ClipHandles&) = delete;
    ClipHandles& operator=(const ClipHandles&) = delete;

    /// The plane while it is being moved, in few digits; may be empty.
    std::function<void(const ClipPlane& plane)> onMoved;

    SoNode* getNode() const;

    /// Around the data's box in the scene. The plane has a distance. While they are dragged they
    /// stay where the user has them.
    void show(const ClipPlane& plane, const Placement& placement, const SbBox3f& box);
    void hide();
    bool isShown() const;

    /// Gives them an event of a view, with its camera, as the mouse's; whether they take it.
    bool take(const SoEvent& event, const SbViewportRegion& region, SoCamera& camera);

private:
    static void move(void* handles, SoDragger* dragger);
    static void begin(void* handles, SoDragger* dragger);
    static void end(void* handles, SoDragger* dragger);
    void addDragger(SoDragger& dragger, SoGroup& parent);
    /// That which the user has them at.
    ClipPlane plane() const;
    void place();

    SoSwitch* visibility;
    SoSeparator* handles; ///< below it
    SoTransform* middle;  ///< from there: x along the normal
    SoTransform* size;    ///< of what is a unit long
    SoRotateSphericalDragger* turner;
    SoTranslate1Dragger* mover;
    SoSeparator* eventGraph; ///< a camera and the handles
    SoHandleEventAction events;
    ClipPlane shown;
    Placement placement;
    SbBox3f box;
    bool isDragged = false;
};

} // namespace strandview

#endif
