// SPDX-License-Identifier: GPL-3.0-or-later
#include <SoDNA.h>

#include <cmath>
#include <iterator>

#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/misc/SoState.h>
#include <Inventor/nodes/SoCube.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoSwitch.h>
#include <Inventor/nodes/SoTranslation.h>

#include "detail/PlacedGroup.h"
#include "detail/Silence.h"
#include "detail/copyOf.h"
#include "drawing/DnaDrawing.h"
#include "drawing/overallColour.h"
#include <algebra3d/rotations.h>
#include <global.h>
#include <toCoin.h>

using Vector = algebra3d::Vector3<double>;
using Rotation = algebra3d::Quaternion<double>;

SO_NODE_SOURCE(SoDNA);

const double SoDNA::COLOUR_BP_DEF[3] = {1, 1, 1};

namespace {

template <typename Node>
Node* makeReferenced()
{
    auto* node = new Node;
    node->ref();
    return node;
}

} // namespace

void SoDNA::initClass() { SO_NODE_INIT_CLASS(SoDNA, SoSeparator, "SoSeparator"); }

SoDNA::SoDNA() : drawing(std::make_unique<DnaDrawing>())
{
    SO_NODE_CONSTRUCTOR(SoDNA);
    const Vector white(COLOUR_BP_DEF);
    bpMaterial = createMaterial(white, white, Vector());
    bpMaterial->ref();
    for (int i = 0; i < 4; ++i) {
        strand1Bases[i] = new SoNucleobase(SoNucleobase::getBase(i), true);
        strand1Bases[i]->ref();
        strand2Bases[i] = new SoNucleobase(SoNucleobase::getBase(i), false);
        strand2Bases[i]->ref();
    }
    createBP();
    bpSwitch = makeReferenced<PlacedGroup<SoSwitch>>();
    bpSwitch->whichChild = SO_SWITCH_ALL;
    addChild(bpSwitch);
    basesGroup = makeReferenced<PlacedGroup<SoSeparator>>();
    addChild(basesGroup);
}

SoDNA::~SoDNA()
{
    clear();
    bpMaterial->unref();
    forEachBase([](SoNucleobase* base) { base->unref(); });
    bpGroup->unref();
    bpBox->unref();
    bpSwitch->unref();
    basesGroup->unref();
}

// The pair box: centred on the pair's axis in y, as long as both bases of any pair.
void SoDNA::createBP()
{
    double xMin, xMax, yMin, yMax;
    SoNucleobase::getAllBasesBB(xMin, xMax, yMin, yMax);
    auto* translation = new SoTranslation;
    translation->translation.setValue(float((xMin + xMax) / 2), 0, 0);
    bpBox = makeReferenced<SoCube>();
    bpBox->width = float(xMax - xMin);
    bpBox->height = float(2 * yMax);
    bpBox->depth = float(strand1Bases[0]->getBoxHeight());
    bpGroup = makeReferenced<SoSeparator>();
    bpGroup->addChild(bpMaterial);
    bpGroup->addChild(translation);
    bpGroup->addChild(bpBox);
}

template <typename Action>
void SoDNA::forEachBase(Action action)
{
    for (SoNucleobase* base : strand1Bases)
        action(base);
    for (SoNucleobase* base : strand2Bases)
        action(base);
}

// Data

bool SoDNA::setData(const std::string& newSequence, const Vectors& newRAvg,
                    const Quaternions& newQAvg, const Vectors& newR1, const Quaternions& newQ1,
                    const Vectors& newR2, const Quaternions& newQ2)
{
    sequence = newSequence;
    rAvg = newRAvg;
    qAvg = newQAvg;
    r1 = newR1;
    q1 = newQ1;
    r2 = newR2;
    q2 = newQ2;
    return checkData();
}

bool SoDNA::checkData()
{
    const std::size_t n = sequence.size();
    const double tolerance = algebra3d::ROTATION_TOLERANCE;
    if (rAvg.size() == n && qAvg.size() == n && r1.size() == n && q1.size() == n &&
        r2.size() == n && q2.size() == n && isSequenceCorrect(sequence) == 0 &&
        isDataCorrect(rAvg, qAvg, tolerance) && isDataCorrect(r1, q1, tolerance) &&
        isDataCorrect(r2, q2, tolerance))
        return true;
    sequence.clear();
    rAvg.clear();
    qAvg.clear();
    r1.clear();
    q1.clear();
    r2.clear();
    q2.clear();
    return false;
}

int SoDNA::isSequenceCorrect(std::string letters)
{
    for (std::size_t i = 0; i < letters.size(); ++i) {
        if (!SoNucleobase::isBaseCorrect(letters[i]))
            return int(i) + 1;
    }
    return 0;
}

void SoDNA::generate()
{
    {
        const Silence ofAll(this);
        const auto place = [](const Vector& point, const Rotation& rotation, SoNode* node) {
            return PlacedNode{toSbVec3f(point), toSbRotation(rotation), node};
        };
        bpSwitch->place(rAvg.size(),
                        [&](std::size_t i) { return place(rAvg[i], qAvg[i], bpGroup); });
        basesGroup->place(2 * rAvg.size(), [&](std::size_t i) {
            const std::size_t pair = i / 2;
            const int base = SoNucleobase::getBaseIndex(sequence[pair]);
            return i % 2 == 0 ? place(r1[pair], q1[pair], strand1Bases[base])
                              : place(r2[pair], q2[pair],
                                      strand2Bases[SoNucleobase::getComplementIndex(base)]);
        });
        bpSwitch->touch();
        basesGroup->touch();
    }
    touch();
}

void SoDNA::clear()
{
    const auto nothing = [](std::size_t) { return PlacedNode{}; };
    bpSwitch->place(0, nothing);
    basesGroup->place(0, nothing);
    bpSwitch->touch();
    basesGroup->touch();
}

void SoDNA::copyContents(const SoFieldContainer* from, SbBool copyConnections)
{
    SoSeparator::copyContents(from, copyConnections);
    const auto* original = static_cast<const SoDNA*>(from);
    drawing->setRound(original->areAtomsDrawnRound());
    sequence = original->sequence;
    rAvg = original->rAvg;
    qAvg = original->qAvg;
    r1 = original->r1;
    q1 = original->q1;
    r2 = original->r2;
    q2 = original->q2;
    const auto follow = [copyConnections](const auto& originals, auto& held) {
        for (std::size_t i = 0; i < std::size(originals); ++i)
            holdCopyOf(originals[i], held[i], copyConnections);
    };
    holdCopyOf(original->bpMaterial, bpMaterial, copyConnections);
    follow(original->strand1Bases, strand1Bases);
    follow(original->strand2Bases, strand2Bases);
    holdCopyOf(original->bpBox, bpBox, copyConnections);
    holdCopyOf(original->bpGroup, bpGroup, copyConnections);
    holdCopyOf(original->bpSwitch, bpSwitch, copyConnections);
    holdCopyOf(original->basesGroup, basesGroup, copyConnections);
}

const std::string& SoDNA::getSequence() const { return sequence; }

const SoDNA::Vectors& SoDNA::getRAvg() const { return rAvg; }

const SoDNA::Quaternions& SoDNA::getQAvg() const { return qAvg; }

const SoDNA::Vectors& SoDNA::getR1() const { return r1; }

const SoDNA::Quaternions& SoDNA::getQ1() const { return q1; }

const SoDNA::Vectors& SoDNA::getR2() const { return r2; }

const SoDNA::Quaternions& SoDNA::getQ2() const { return q2; }

int SoDNA::getNumBP() const { return int(sequence.size()); }

SoNucleobase* SoDNA::getNucleobase(char base, int strand) const
{
    const int index = SoNucleobase::getBaseIndex(base);
    if (index < 0 || strand < 1 || strand > 2)
        return nullptr;
    return strand == 1 ? strand1Bases[index] : strand2Bases[index];
}

SoCube* SoDNA::getPairBox() const { return bpBox; }

// Bases

void SoDNA::setAtomColour(Atom atom, Vector colour)
{
    forEachBase([&](SoNucleobase* base) { base->setAtomColour(atom, colour); });
}

Vector SoDNA::getAtomColour(Atom atom) const { return strand1Bases[0]->getAtomColour(atom); }

void SoDNA::setAtomRadius(Atom atom, double radius)
{
    forEachBase([&](SoNucleobase* base) { base->setAtomRadius(atom, radius); });
}

double SoDNA::getAtomRadius(Atom atom) const { return strand1Bases[0]->getAtomRadius(atom); }

void SoDNA::setAtomComplexity(double complexity)
{
    forEachBase([&](SoNucleobase* base) { base->setAtomComplexity(complexity); });
}

double SoDNA::getAtomComplexity() const { return strand1Bases[0]->getAtomComplexity(); }

void SoDNA::drawAtomsRound(bool round)
{
    drawing->setRound(round);
    touch();
}

bool SoDNA::areAtomsDrawnRound() const { return drawing->isRound(); }

void SoDNA::showAtoms(bool show)
{
    forEachBase([&](SoNucleobase* base) { base->showAtoms(show); });
}

bool SoDNA::areAtomsShown() const { return strand1Bases[0]->areAtomsShown(); }

void SoDNA::showBaseBoxes(bool show)
{
    forEachBase([&](SoNucleobase* base) { base->showBox(show); });
}

bool SoDNA::areBaseBoxesShown() const { return strand1Bases[0]->isBoxShown(); }

void SoDNA::setSmallerPyr(bool smaller)
{
    forEachBase([&](SoNucleobase* base) { base->setSmallerPyr(smaller); });
}

bool SoDNA::isPyrSmaller() const { return strand1Bases[0]->isPyrSmaller(); }

void SoDNA::setBaseColour(char base, Vector colour)
{
    const int index = SoNucleobase::getBaseIndex(base);
    if (index < 0)
        return;
    strand1Bases[index]->setBoxColour(colour);
    strand2Bases[index]->setBoxColour(colour);
}

Vector SoDNA::getBaseColour(char base) const
{
    const int index = SoNucleobase::getBaseIndex(base);
    return index < 0 ? noColour() : strand1Bases[index]->getBoxColour();
}

// Pair boxes

void SoDNA::setBoxHeight(double height)
{
    bpBox->depth = float(std::abs(height));
    forEachBase([&](SoNucleobase* base) { base->setBoxHeight(height); });
}

double SoDNA::getBoxHeight() const { return bpBox->depth.getValue(); }

void SoDNA::setBasepairColour(Vector colour) { setOverallColour(bpMaterial, colour); }

Vector SoDNA::getBasepairColour() const { return getOverallColour(bpMaterial); }

void SoDNA::showBasePairBoxes(bool show)
{
    bpSwitch->whichChild = show ? SO_SWITCH_ALL : SO_SWITCH_NONE;
}

bool SoDNA::areBasePairBoxesShown() const
{
    return bpSwitch->whichChild.getValue() == SO_SWITCH_ALL;
}

void SoDNA::GLRenderBelowPath(SoGLRenderAction* action)
{
    SoState* const state = action->getState();
    state->push();
    // A list being recorded is for other views, too.
    const bool outOfView = !state->isCacheOpen() && cullTest(state);
    state->pop();
    if (!outOfView && !drawing->draw(action, this, bpSwitch, basesGroup))
        SoSeparator::GLRenderBelowPath(action);
}

const char* SoDNA::getFileFormatName() const { return "Separator"; }
