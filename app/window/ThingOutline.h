// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_THINGOUTLINE_H
#define STRANDVIEW_APP_WINDOW_THINGOUTLINE_H

#include <vector>

#include <Inventor/SbBox3f.h>
#include <Inventor/SbViewportRegion.h>

#include "request/CameraNumbers.h"
#include "window/outlineOf.h"

class SoCamera;
class SoGLRenderAction;
class SoNode;
class SoSeparator;

namespace strandview {

/// A line around things of a scene in a viewer, wherever they are seen and whatever is in front of
/// them. It is in no scene graph, so that no picture has it.
///
///     outline.prepare(camera, action, scale);   // first of a frame, whose pixels it uses
///     ...                                       // the frame
///     outline.draw();
class ThingOutline
{
public:
    ThingOutline();
    ~ThingOutline();
    ThingOutline(const ThingOutline&) = delete;
    ThingOutline& operator=(const ThingOutline&) = delete;

    /// A part of a scene graph that shows a thing, with nothing that is above it, and a box around
    /// it.
    struct Shown
    {
        SoNode* node;
        SbBox3f box;
    };
    /// Instead of those before; cut at a plane, unless it is null.
    void setThings(const std::vector<Shown>& things, SoNode* clipPlane);

    // In the viewer's context

    /// Draws the things alone into the frame that is to be cleared next, and looks where they are,
    /// if they or the view have changed. The action is the viewer's; `scale` is the view's pixels
    /// in one of the desktop's.
    void prepare(const SoCamera& camera, const SoGLRenderAction& action, double scale);
    /// Over the frame.
    void draw() const;

private:
    /// What the last picture was made of.
    struct View
    {
        CameraNumbers camera;
        SbViewportRegion region;
        double scale = 0;
        unsigned things = 0; ///< the id of their group
    };

    CoverMask drawAlone(const SoCamera& camera, const SoGLRenderAction& action);
    SoCamera* cameraBefore(const SoCamera& camera) const;

    SoSeparator* group; ///< with a reference
    SbBox3f box;        ///< around the things
    View view;
    OutlinePicture picture;
};

} // namespace strandview

#endif
