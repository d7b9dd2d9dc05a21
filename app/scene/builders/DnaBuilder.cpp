// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/builders/DnaBuilder.h"

#include <Inventor/SoPath.h>
#include <Inventor/actions/SoSearchAction.h>
#include <Inventor/nodes/SoCube.h>
#include <Inventor/nodes/SoScale.h>
#include <Inventor/nodes/SoSeparator.h>

#include <SoDNA.h>

namespace strandview {

using algebra3d::Vector3;

namespace {

// Dark enough to be seen on white where a highlight is added, and on black in the shade.
const Colour PAIR_COLOUR{0.30f, 0.42f, 0.58f};

// No atom of a base is farther from its frame.
const double REACH = 9; // ångström

// Makes of the box that all pairs share a plate: thinner than the boxes of the bases, with
// which it would share faces otherwise, and as much wider that its rim is seen around them.
void makePlate(SoDNA& dna)
{
    const float rim = 0.8f, thickness = 0.5f; // in ångström
    SoSearchAction search;
    search.setType(SoCube::getClassTypeId());
    search.setSearchingAll(TRUE);
    search.apply(dna.getChild(0));
    auto* box = static_cast<SoCube*>(search.getPath()->getTail());
    box->width = box->width.getValue() + 2 * rim;
    box->height = box->height.getValue() + 2 * rim;
    box->depth = thickness;
}

// "pair 12 AT, strand 2, " below a DNA, which is the path's node `index`: child 0 holds
// the boxes of the pairs, child 1 the bases, two for each pair.
std::string placeIn(const SoPath& path, int index)
{
    if (path.getLength() < index + 3)
        return "";
    const bool isBase = path.getIndex(index + 1) == 1;
    const int place = path.getIndex(index + 2);
    const int pair = isBase ? place / 2 : place;
    const std::string& bases = static_cast<const SoDNA*>(path.getNode(index))->getSequence();
    const char base = bases[std::size_t(pair)];
    std::string text =
        "pair " + std::to_string(pair + 1) + " " + base + SoNucleobase::getComplement(base) + ", ";
    if (isBase)
        text += "strand " + std::to_string(place % 2 + 1) + ", ";
    return text;
}

} // namespace

const char* DnaBuilder::getWork() const { return "Building DNA"; }

SbBox3f DnaBuilder::getReach(std::size_t index) const
{
    const Dna& dna = datum(index);
    const double reach = frame.scaled(REACH * frame.style.dna.angstrom);
    SbBox3f box;
    for (const auto* points : {&dna.pairPoints, &dna.points1, &dna.points2}) {
        for (const Vector3<double>& point : *points)
            box.extendBy(boxAround(frame.placement.toScene(point), reach));
    }
    return box;
}

// Around all that its frames can place, which is less than what Coin makes of turned boxes.
SbBox3f DnaBuilder::findBox(std::size_t index, const ShownDatum& /*shown*/)
{
    return getReach(index);
}

ShownDatum DnaBuilder::makeNodes(std::size_t index)
{
    const DnaLook& look = frame.style.dna;
    auto* node = new SoDNA;
    node->drawAtomsRound(true);
    node->showAtoms(look.atoms);
    node->showBaseBoxes(look.baseBoxes);
    node->showBasePairBoxes(look.pairBoxes);
    auto* scale = new SoScale;
    const float factor = float(frame.scaled(look.angstrom));
    scale->scaleFactor = SbVec3f(factor, factor, factor);
    ShownDatum shown;
    shown.group = new SoSeparator;
    shown.group->addChild(scale);
    shown.group->addChild(node);
    shown.node = node;
    shown.placeIn = &placeIn;
    updateNodes(index, shown);
    node->setBasepairColour(toVector(PAIR_COLOUR));
    if (look.baseBoxes && look.pairBoxes)
        makePlate(*node);
    return shown;
}

void DnaBuilder::updateNodes(std::size_t index, ShownDatum& shown)
{
    const Dna& dna = datum(index);
    const Placement inAngstrom{frame.placement.origin, 1 / frame.style.dna.angstrom};
    auto* node = static_cast<SoDNA*>(shown.node);
    node->setData(dna.bases, inAngstrom.toScene(dna.pairPoints), dna.pairRotations,
                  inAngstrom.toScene(dna.points1), dna.rotations1, inAngstrom.toScene(dna.points2),
                  dna.rotations2);
    node->generate();
}

} // namespace strandview
