// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_SOOVERLAY_H
#define STRANDVIEW_APP_SCENE_SOOVERLAY_H

#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoSubNode.h>

namespace strandview {

/// What is drawn over a scene without being part of it: it has no extent there, is not
/// picked, and what is in it is not found by a search, its own camera least of all.
class SoOverlay : public SoSeparator
{
    SO_NODE_HEADER(SoOverlay);

public:
    static void initClass();
    SoOverlay();

    void getBoundingBox(SoGetBoundingBoxAction* action) override;
    void rayPick(SoRayPickAction* action) override;
    void search(SoSearchAction* action) override;

protected:
    ~SoOverlay() override;
};

} // namespace strandview

#endif
