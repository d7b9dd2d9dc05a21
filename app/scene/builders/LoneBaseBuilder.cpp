// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/builders/LoneBaseBuilder.h"

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

#include <Inventor/SoPath.h>
#include <Inventor/SoPickedPoint.h>
#include <Inventor/nodes/SoScale.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoTransform.h>

#include <SoNucleobase.h>

#include "scene/BaseNodes.h"
#include "scene/PickedPlace.h"
#include "scene/SoPlacedSolids.h"
#include "scene/builders/ColouredPairs.h"

namespace strandview {

namespace {

// No atom or corner of a base is farther from its frame.
const double REACH = 9.2; // ångström

// The first child of the group is its scale, behind which each base has its own. Behind those is
// one shape of all but atoms, where that is seen through.
int behindBases(const ShownDatum& shown) { return 1 + int(shown.bases.size()); }

void placeIn(const ShownDatum& /*shown*/, const SoPickedPoint& picked, int index,
             PickedPlace& place)
{
    const SoPath& path = *picked.getPath();
    if (path.getLength() < index + 2)
        return;
    place.datum =
        pickedPair(picked).value_or(std::size_t(std::max(path.getIndex(index + 1) - 1, 0)));
}

// Each base in its place, in ångström; those of a letter share their node.
void setPlaced(SoSeparator& group, const std::vector<LoneBase>& bases, const DnaLook& look,
               const Placement& placement)
{
    const Placement inAngstrom{placement.origin, 1 / look.angstrom};
    const auto factor = float(placement.scale * look.angstrom);
    auto* scale = new SoScale;
    scale->scaleFactor = SbVec3f(factor, factor, factor);
    group.removeAllChildren();
    group.addChild(scale);
    std::map<char, SoNucleobase*> nodes;
    for (const LoneBase& base : bases) {
        SoNucleobase*& node = nodes[base.base];
        if (!node)
            node = makeNucleobase(base.base, look, true);
        auto* transform = new SoTransform;
        transform->translation = toSbVec3f(inAngstrom.toScene(base.point));
        transform->rotation = toSbRotation(base.rotation);
        auto* placed = new SoSeparator;
        placed->addChild(transform);
        placed->addChild(node);
        group.addChild(placed);
    }
}

void setTransparency(const ShownDatum& shown, double transparency, const DnaLook& look)
{
    const int behind = behindBases(shown);
    const bool isThere = shown.group->getNumChildren() > behind,
               isAsked = transparency > 0 && (look.bases || look.baseBoxes);
    if (isThere == isAsked)
        return;
    std::vector<SoPlacedSolids::Place> places;
    for (int i = 1; i < behind; ++i) {
        const char letter = shown.bases[std::size_t(i) - 1];
        const auto* placed = static_cast<const SoSeparator*>(shown.group->getChild(i));
        const auto* transform = static_cast<const SoTransform*>(placed->getChild(0));
        places.push_back({transform->translation.getValue(), transform->rotation.getValue(),
                          baseColour(letter), 0});
        showBase(*static_cast<SoNucleobase*>(placed->getChild(1)), letter, true,
                 isAsked ? atomsAlone(look) : look);
    }
    if (isThere)
        shown.group->removeChild(behind);
    else
        shown.group->addChild(makePlacedBases(std::move(places), shown.bases, look));
}

} // namespace

const char* LoneBaseBuilder::getWork() const { return "Building bases"; }

std::size_t LoneBaseBuilder::count() const { return frame.data.loneBases.empty() ? 0 : 1; }

SbBox3f LoneBaseBuilder::getReach(std::size_t /*index*/) const
{
    const double reach = frame.scaled(REACH * frame.style.dna.angstrom);
    SbBox3f box;
    for (const LoneBase& base : frame.data.loneBases)
        box.extendBy(boxAround(frame.placement.toScene(base.point), reach));
    return box;
}

SbBox3f LoneBaseBuilder::findBox(std::size_t index, const ShownDatum& /*shown*/)
{
    return getReach(index);
}

ShownDatum LoneBaseBuilder::makeNodes(std::size_t index)
{
    ShownDatum shown;
    shown.group = new SoSeparator;
    shown.node = shown.group;
    shown.placeIn = &placeIn;
    shown.setTransparency = &setTransparency;
    updateNodes(index, shown);
    return shown;
}

void LoneBaseBuilder::updateNodes(std::size_t /*index*/, ShownDatum& shown)
{
    const std::vector<LoneBase>& bases = frame.data.loneBases;
    const DnaLook& look = frame.style.dna;
    shown.bases.clear();
    shown.parts.clear();
    for (const LoneBase& base : bases) {
        shown.bases.push_back(base.base);
        shown.parts.push_back(base.origin);
    }
    if (look.bases || look.baseBoxes || look.atoms)
        setPlaced(*shown.group, bases, look, frame.placement);
}

} // namespace strandview
