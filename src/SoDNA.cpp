// SPDX-License-Identifier: GPL-3.0-or-later
#include <SoDNA.h>

#include <cmath>
#include <iterator>

#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/misc/SoState.h>
#include <Inventor/nodes/SoCube.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoSwitch.h>
#include <Inventor/nodes/SoTransform.h>
#include <Inventor/nodes/SoTranslation.h>

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

// Whether a field takes a value as that of a new node does.
bool isFree(const SoField& field)
{
    return !field.isIgnored() && !field.isConnected() && field.isConnectionEnabled() &&
           field.isNotifyEnabled();
}

bool isAsMade(const SoField& field) { return field.isDefault() && isFree(field); }

// Whether a node has nothing of its own beside its fields and children.
bool isPlain(const SoNode* node)
{
    return !node->isOverride() && node->isNotifyEnabled() && !node->getUserData() &&
           node->getNodeType() == SoNode::INVENTOR && node->getName().getLength() == 0;
}

// Whether a separator with a DNA's transform is as good as new but for what it places, and
// where: nobody else holds them, and nobody changed anything else in them.
bool isReusable(const SoNode* node, const SoTransform* transform)
{
    if (node->getTypeId() != SoSeparator::getClassTypeId() || node->getRefCount() != 1 ||
        !isPlain(node))
        return false;
    const auto* separator = static_cast<const SoSeparator*>(node);
    return isAsMade(separator->renderCaching) && isAsMade(separator->boundingBoxCaching) &&
           isAsMade(separator->renderCulling) && isAsMade(separator->pickCulling) &&
           separator->getNumChildren() == 2 && separator->getChild(0) == transform &&
           transform->getRefCount() == 2 && isPlain(transform) && isFree(transform->translation) &&
           isFree(transform->rotation) && isAsMade(transform->scaleFactor) &&
           isAsMade(transform->scaleOrientation) && isAsMade(transform->center);
}

// The separators of a group that is generated again, each with its transform. Making them anew
// costs several times as much, most of it in Coin's constructors and in scattered memory.
class Separators
{
public:
    explicit Separators(std::size_t size) { kept.reserve(size); }
    ~Separators()
    {
        for (; next < kept.size(); ++next)
            kept[next]->unref();
    }
    Separators(const Separators&) = delete;
    Separators& operator=(const Separators&) = delete;

    // Keeps the child with that index beyond its removal if it can be used again.
    void keep(const SoGroup* group, std::size_t index, const SoTransform* transform)
    {
        if (index >= std::size_t(group->getNumChildren()) ||
            !isReusable(group->getChild(int(index)), transform))
            return;
        auto* separator = static_cast<SoSeparator*>(group->getChild(int(index)));
        separator->ref();
        kept.push_back(separator);
    }

    // One that was kept, to be unreferenced, or null.
    SoSeparator* take() { return next < kept.size() ? kept[next++] : nullptr; }

private:
    std::vector<SoSeparator*> kept;
    std::size_t next = 0;
};

// Keeps a node from notifying: one notification in the end tells as much as one per change.
class Silence
{
public:
    explicit Silence(SoNode* silent) : node(silent), before(silent->enableNotify(FALSE)) {}
    ~Silence() { node->enableNotify(before); }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

private:
    SoNode* node;
    SbBool before;
};

void setPlace(SoTransform* transform, const Vector& place, const Rotation& rotation)
{
    transform->translation = toSbVec3f(place);
    transform->rotation = toSbRotation(rotation);
}

// A new, referenced separator. Nobody is there yet to be notified. It is made before its
// transform, for memory is read fastest in the order in which they are visited.
SoSeparator* makePlaced(const Vector& place, const Rotation& rotation, SoNode* placed)
{
    auto* separator = makeReferenced<SoSeparator>();
    auto* transform = new SoTransform;
    const Silence ofTransform(transform), ofSeparator(separator);
    setPlace(transform, place, rotation);
    separator->addChild(transform);
    separator->addChild(placed);
    return separator;
}

// Appends a separator of a transform and what it places, and references the transform.
SoTransform* addPlaced(SoGroup* group, Separators& separators, const Vector& place,
                       const Rotation& rotation, SoNode* placed)
{
    SoSeparator* separator = separators.take();
    if (separator) {
        setPlace(static_cast<SoTransform*>(separator->getChild(0)), place, rotation);
        if (separator->getChild(1) != placed)
            separator->replaceChild(1, placed);
    } else {
        separator = makePlaced(place, rotation, placed);
    }
    auto* transform = static_cast<SoTransform*>(separator->getChild(0));
    transform->ref();
    group->addChild(separator);
    separator->unref();
    return transform;
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
    bpSwitch = makeReferenced<SoSwitch>();
    bpSwitch->whichChild = SO_SWITCH_ALL;
    addChild(bpSwitch);
    basesGroup = makeReferenced<SoSeparator>();
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
        replacePairs();
        bpSwitch->touch();
        basesGroup->touch();
    }
    touch();
}

void SoDNA::replacePairs()
{
    const Silence ofBoxes(bpSwitch), ofBases(basesGroup);
    const std::size_t former = avgTransforms.size();
    Separators boxes(former), bases(2 * former);
    for (std::size_t i = 0; i < former; ++i) {
        boxes.keep(bpSwitch, i, avgTransforms[i]);
        bases.keep(basesGroup, 2 * i, strand1Transforms[i]);
        bases.keep(basesGroup, 2 * i + 1, strand2Transforms[i]);
    }
    clear();
    const std::size_t n = rAvg.size();
    avgTransforms.resize(n);
    strand1Transforms.resize(n);
    strand2Transforms.resize(n);
    // One group after the other: they are emptied so, and memory goes in the order it came.
    for (std::size_t i = 0; i < n; ++i)
        avgTransforms[i] = addPlaced(bpSwitch, boxes, rAvg[i], qAvg[i], bpGroup);
    for (std::size_t i = 0; i < n; ++i) {
        const int base = SoNucleobase::getBaseIndex(sequence[i]);
        const int complement = SoNucleobase::getComplementIndex(base);
        strand1Transforms[i] = addPlaced(basesGroup, bases, r1[i], q1[i], strand1Bases[base]);
        strand2Transforms[i] = addPlaced(basesGroup, bases, r2[i], q2[i], strand2Bases[complement]);
    }
}

void SoDNA::clear()
{
    // Each transform then goes with its separator.
    for (auto* transforms : {&avgTransforms, &strand1Transforms, &strand2Transforms}) {
        for (SoTransform* transform : *transforms)
            transform->unref();
        transforms->clear();
    }
    bpSwitch->removeAllChildren();
    basesGroup->removeAllChildren();
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
    const std::size_t n = original->avgTransforms.size();
    for (auto* transforms : {&avgTransforms, &strand1Transforms, &strand2Transforms})
        transforms->resize(n);
    follow(original->avgTransforms, avgTransforms);
    follow(original->strand1Transforms, strand1Transforms);
    follow(original->strand2Transforms, strand2Transforms);
}

const std::string& SoDNA::getSequence() const { return sequence; }

const SoDNA::Vectors& SoDNA::getRAvg() const { return rAvg; }

const SoDNA::Quaternions& SoDNA::getQAvg() const { return qAvg; }

const SoDNA::Vectors& SoDNA::getR1() const { return r1; }

const SoDNA::Quaternions& SoDNA::getQ1() const { return q1; }

const SoDNA::Vectors& SoDNA::getR2() const { return r2; }

const SoDNA::Quaternions& SoDNA::getQ2() const { return q2; }

int SoDNA::getNumBP() const { return int(sequence.size()); }

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
