// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/Ghost.h"

#include <utility>

#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoPickStyle.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoSwitch.h>

#include <BiarcTubeMesh.h>
#include <SoRod.h>

#include "scene/SoSeeThrough.h"

namespace strandview {

namespace {

const SbColor GREY(0.5f, 0.5f, 0.5f); // seen on white and on black

bool isLeftOut(const ThingId& like, const ThingLooks& looks)
{
    return looks.of(like).isOutOfView();
}

} // namespace

Ghost::Ghost() : node(new SoSeparator), curves(new SoSeeThrough)
{
    auto* const noPlace = new SoPickStyle;
    noPlace->style = SoPickStyle::UNPICKABLE;
    auto* const grey = new SoMaterial;
    grey->diffuseColor = GREY;
    curves->addChild(grey);
    node->addChild(noPlace);
    node->addChild(curves);
}

void Ghost::show(std::vector<SceneGeometry::GhostCurve> next)
{
    for (std::size_t i = 0; i < next.size(); ++i) {
        SceneGeometry::GhostCurve& curve = next[i];
        const bool fits = i < shown.size() && shown[i].rod->getSlices() == curve.slices &&
                          shown[i].rod->getSubsegments() == curve.subsegments;
        if (!fits) {
            keepFirst(i);
            shown.push_back(makeCurve(curve.slices, curve.subsegments));
        }
        shown[i].like = curve.like;
        shown[i].rod->setTubeRadius(curve.meshes.tube->getRadius());
        shown[i].rod->setData(std::move(curve.points), std::move(curve.rotations),
                              std::move(curve.meshes));
    }
    keepFirst(next.size());
    setLooks(looks);
}

Ghost::Shown Ghost::makeCurve(int slices, int subsegments)
{
    auto* const rod = new SoRod(0, 0, slices, subsegments, true, false, false);
    rod->drawCoarsely(true);
    auto* const choice = new SoSwitch;
    choice->addChild(rod);
    curves->addChild(choice);
    return {{}, choice, rod};
}

void Ghost::keepFirst(std::size_t count)
{
    for (; shown.size() > count; shown.pop_back())
        curves->removeChild(shown.back().choice);
}

void Ghost::setTransparency(double transparency) { curves->setTransparency(transparency); }

void Ghost::setLooks(const ThingLooks& next)
{
    looks = next;
    for (const Shown& curve : shown) {
        const int which = isLeftOut(curve.like, looks) ? SO_SWITCH_NONE : 0;
        if (curve.choice->whichChild.getValue() != which)
            curve.choice->whichChild = which;
    }
}

SbBox3f Ghost::getBox() const
{
    SbBox3f box;
    for (const Shown& curve : shown) {
        if (!isLeftOut(curve.like, looks))
            box.extendBy(curve.rod->getTubeMesh()->getBBox());
    }
    return box;
}

SbBox3f boxOfGhost(const std::vector<SceneGeometry::GhostCurve>& curves, const ThingLooks& looks)
{
    SbBox3f box;
    for (const SceneGeometry::GhostCurve& curve : curves) {
        if (!isLeftOut(curve.like, looks))
            box.extendBy(curve.meshes.tube->getBBox());
    }
    return box;
}

} // namespace strandview
