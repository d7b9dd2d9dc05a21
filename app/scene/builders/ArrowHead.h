// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_BUILDERS_ARROWHEAD_H
#define STRANDVIEW_APP_SCENE_BUILDERS_ARROWHEAD_H

#include <Inventor/SbBox3f.h>

#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>

class SoArrow;

namespace strandview {

/// The head at the 3' end of a strand's tube, in the scene: it begins where the tube ends. On a
/// closed one it sits where that begins.
struct ArrowHead
{
    /// Of a tube that ends at that point, along d3 of that rotation.
    ArrowHead(const algebra3d::Vector3<double>& end, const algebra3d::Quaternion<double>& rotation,
              double tubeRadius);

    SbBox3f getBox() const;
    void show(SoArrow& node) const;

    algebra3d::Vector3<double> from, to;
    double radius;
};

} // namespace strandview

#endif
