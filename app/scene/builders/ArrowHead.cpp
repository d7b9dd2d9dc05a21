// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/builders/ArrowHead.h"

#include <SoArrow.h>
#include <algebra3d/Matrix3.h>

#include "scene/builders/DatumBuilder.h"

namespace strandview {

ArrowHead::ArrowHead(const algebra3d::Vector3<double>& end,
                     const algebra3d::Quaternion<double>& rotation, double tubeRadius)
    : from(end),
      to(from + algebra3d::Matrix3<double>(rotation).getColumn(2) * (5 * tubeRadius)),
      radius(2.2 * tubeRadius)
{}

SbBox3f ArrowHead::getBox() const
{
    SbBox3f box = boxAround(from, radius);
    box.extendBy(toSbVec3f(to));
    return box;
}

void ArrowHead::show(SoArrow& node) const
{
    node.setArrow(from, to, 0, radius, (to - from).getNorm());
}

} // namespace strandview
