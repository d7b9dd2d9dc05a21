// SPDX-License-Identifier: GPL-3.0-or-later
#include <SoNucleobase.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/misc/SoState.h>
#include <Inventor/nodes/SoComplexity.h>
#include <Inventor/nodes/SoCube.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoSphere.h>
#include <Inventor/nodes/SoSwitch.h>
#include <Inventor/nodes/SoTranslation.h>

#include "detail/copyOf.h"
#include "drawing/GlyphDrawing.h"
#include "drawing/overallColour.h"
#include <global.h>
#include <idealbases.h>

using Vector = algebra3d::Vector3<double>;

SO_NODE_SOURCE(SoNucleobase);

const char SoNucleobase::BASES[5] = "ATGC";
const char SoNucleobase::COMPLEMENTS[5] = "TACG";
const double SoNucleobase::COLOUR_ATOMS_DEF[3][3] = {
    {0.4, 0.4, 0.4}, {0.4, 0.4, 1.0}, {1.0, 0.4, 0.4}};
const double SoNucleobase::ATOM_R_AMBER[3] = {1.908, 1.6612, 1.842};
const double SoNucleobase::COLOUR_BASES_DEF[4][3] = {
    {1, 0, 0}, {0, 0, 1}, {0.2, 0.7, 0.1}, {1.0, 0.9, 0.0}};
const double SoNucleobase::BASE_HEIGHT_DEF = 1.5;

namespace {

const int KINDS = 3;
const float ATOM_COMPLEXITY_DEF = 0.3f;

// Of the C locale, whatever the program's locale is.
char upperCase(char letter)
{
    return letter >= 'a' && letter <= 'z' ? char(letter - 'a' + 'A') : letter;
}

bool isIndexCorrect(int index) { return unsigned(index) < 4; }

int getKind(const char* atomName)
{
    return *atomName == 'C'   ? SoNucleobase::CARBON
           : *atomName == 'N' ? SoNucleobase::NITROGEN
                              : SoNucleobase::OXYGEN;
}

// The smallest and largest coordinate along an axis of a base's atoms but C1'.
void extend(int base, int axis, double& min, double& max)
{
    for (int atom = 1; atom < idealbases::NUM_ATOMS[base]; ++atom) {
        const double coordinate = idealbases::COORDS[base][atom][axis];
        min = std::min(min, coordinate);
        max = std::max(max, coordinate);
    }
}

void makeEmpty(double& min, double& max)
{
    min = std::numeric_limits<double>::max();
    max = -min;
}

} // namespace

void SoNucleobase::initClass() { SO_NODE_INIT_CLASS(SoNucleobase, SoSeparator, "SoSeparator"); }

SoNucleobase::SoNucleobase(char letter, bool isUpright)
    : base(upperCase(letter)), baseIndex(getBaseIndex(base)), upright(isUpright)
{
    SO_NODE_CONSTRUCTOR(SoNucleobase);
    if (!isBaseCorrect(base))
        return;
    addAtoms();
    addBox();
}

SoNucleobase::~SoNucleobase() = default;

// The parts

void SoNucleobase::addAtoms()
{
    atomComplexity = new SoComplexity;
    atomComplexity->value = ATOM_COMPLEXITY_DEF;
    for (int kind = 0; kind < KINDS; ++kind) {
        const Vector colour(COLOUR_ATOMS_DEF[kind]);
        atomMaterials[kind] = createMaterial(colour, colour, Vector());
        atomSpheres[kind] = new SoSphere;
        atomSpheres[kind]->radius = float(ATOM_R_AMBER[kind]);
        atomGroups[kind] = new SoSeparator;
        atomGroups[kind]->addChild(atomMaterials[kind]);
        atomGroups[kind]->addChild(atomComplexity);
        atomGroups[kind]->addChild(atomSpheres[kind]);
    }
    atomSwitch = new SoSwitch;
    for (int i = 1; i < idealbases::NUM_ATOMS[baseIndex]; ++i) {
        const double* const place = idealbases::COORDS[baseIndex][i];
        auto* translation = new SoTranslation;
        translation->translation.setValue(float(place[0]), float(upright ? place[1] : -place[1]),
                                          float(place[2]));
        auto* atom = new SoSeparator;
        atom->addChild(translation);
        atom->addChild(atomGroups[getKind(idealbases::ATOMS[baseIndex][i])]);
        atomSwitch->addChild(atom);
    }
    for (SoSeparator* group : atomGroups) {
        if (group->getRefCount() == 0)
            unplacedGroups.append(group);
    }
    atomSwitch->whichChild = SO_SWITCH_ALL;
    addChild(atomSwitch);
}

void SoNucleobase::addBox()
{
    const Vector colour(getDefColour(baseIndex));
    boxMaterial = createMaterial(colour, colour, Vector());
    boxTranslation = new SoTranslation;
    box = new SoCube;
    box->depth = float(BASE_HEIGHT_DEF);
    setSmallerPyr(false);
    boxSwitch = new SoSwitch;
    boxSwitch->addChild(boxMaterial);
    boxSwitch->addChild(boxTranslation);
    boxSwitch->addChild(box);
    boxSwitch->whichChild = SO_SWITCH_NONE;
    addChild(boxSwitch);
}

void SoNucleobase::copyContents(const SoFieldContainer* from, SbBool copyConnections)
{
    SoSeparator::copyContents(from, copyConnections);
    const auto* original = static_cast<const SoNucleobase*>(from);
    base = original->base;
    baseIndex = original->baseIndex;
    upright = original->upright;
    smallerPyr = original->smallerPyr;
    boxMaterial = copyOf(original->boxMaterial, copyConnections);
    box = copyOf(original->box, copyConnections);
    boxTranslation = copyOf(original->boxTranslation, copyConnections);
    boxSwitch = copyOf(original->boxSwitch, copyConnections);
    atomComplexity = copyOf(original->atomComplexity, copyConnections);
    for (int kind = 0; kind < KINDS; ++kind) {
        atomMaterials[kind] = copyOf(original->atomMaterials[kind], copyConnections);
        atomGroups[kind] = copyOf(original->atomGroups[kind], copyConnections);
        atomSpheres[kind] = copyOf(original->atomSpheres[kind], copyConnections);
    }
    atomSwitch = copyOf(original->atomSwitch, copyConnections);
    unplacedGroups.truncate(0);
    for (int i = 0; i < original->unplacedGroups.getLength(); ++i)
        unplacedGroups.append(copyOf(original->unplacedGroups[i], copyConnections));
}

// Atoms

bool SoNucleobase::hasAtoms(Atom atom) const { return isAtomCorrect(atom) && atomMaterials[atom]; }

void SoNucleobase::setAtomColour(Atom atom, Vector colour)
{
    if (hasAtoms(atom))
        setOverallColour(atomMaterials[atom], colour);
}

Vector SoNucleobase::getAtomColour(Atom atom) const
{
    return hasAtoms(atom) ? getOverallColour(atomMaterials[atom]) : noColour();
}

void SoNucleobase::setAtomRadius(Atom atom, double radius)
{
    if (hasAtoms(atom))
        atomSpheres[atom]->radius = float(std::abs(radius));
}

double SoNucleobase::getAtomRadius(Atom atom) const
{
    return hasAtoms(atom) ? atomSpheres[atom]->radius.getValue() : -1;
}

void SoNucleobase::setAtomComplexity(double complexity)
{
    if (atomComplexity)
        atomComplexity->value = float(complexity);
}

double SoNucleobase::getAtomComplexity() const
{
    return atomComplexity ? atomComplexity->value.getValue() : -1;
}

void SoNucleobase::showAtoms(bool show)
{
    if (atomSwitch)
        atomSwitch->whichChild = show ? SO_SWITCH_ALL : SO_SWITCH_NONE;
}

bool SoNucleobase::areAtomsShown() const
{
    return atomSwitch && atomSwitch->whichChild.getValue() == SO_SWITCH_ALL;
}

// Box

void SoNucleobase::setBoxColour(Vector colour)
{
    if (boxMaterial)
        setOverallColour(boxMaterial, colour);
}

Vector SoNucleobase::getBoxColour() const
{
    return boxMaterial ? getOverallColour(boxMaterial) : noColour();
}

void SoNucleobase::setBoxHeight(double height)
{
    if (box)
        box->depth = float(std::abs(height));
}

double SoNucleobase::getBoxHeight() const { return box ? box->depth.getValue() : -1; }

void SoNucleobase::showBox(bool show)
{
    boxSwitch->whichChild = show ? SO_SWITCH_ALL : SO_SWITCH_NONE;
}

bool SoNucleobase::isBoxShown() const { return boxSwitch->whichChild.getValue() == SO_SWITCH_ALL; }

void SoNucleobase::setSmallerPyr(bool smaller)
{
    smallerPyr = smaller;
    if (!box)
        return;
    double xMin, xMax, yMin, yMax;
    getAllBasesBB(xMin, xMax, yMin, yMax);
    if (smaller) {
        makeEmpty(yMin, yMax);
        extend(baseIndex, 1, yMin, yMax);
    }
    const double y = (yMin + yMax) / 2;
    boxTranslation->translation.setValue(float((xMin + xMax) / 2), float(upright ? y : -y), 0);
    box->width = float(xMax - xMin);
    box->height = float(yMax - yMin);
}

bool SoNucleobase::isPyrSmaller() const { return smallerPyr; }

// Look-ups

bool SoNucleobase::isBaseCorrect(char letter) { return getBaseIndex(letter) >= 0; }

int SoNucleobase::getBaseIndex(char letter)
{
    const char* const found = letter ? std::strchr(BASES, letter) : nullptr;
    return found ? int(found - BASES) : -1;
}

char SoNucleobase::getBase(int index) { return isIndexCorrect(index) ? BASES[index] : '\0'; }

char SoNucleobase::getComplement(int index)
{
    return isIndexCorrect(index) ? COMPLEMENTS[index] : '\0';
}

char SoNucleobase::getComplement(char letter)
{
    return getComplement(getBaseIndex(upperCase(letter)));
}

int SoNucleobase::getComplementIndex(int index) { return getBaseIndex(getComplement(index)); }

int SoNucleobase::getComplementIndex(char letter) { return getBaseIndex(getComplement(letter)); }

const double* SoNucleobase::getDefColour(int index)
{
    return isIndexCorrect(index) ? COLOUR_BASES_DEF[index] : nullptr;
}

const double* SoNucleobase::getDefColour(char letter)
{
    return getDefColour(getBaseIndex(upperCase(letter)));
}

bool SoNucleobase::isAtomCorrect(Atom atom) { return unsigned(atom) < unsigned(KINDS); }

void SoNucleobase::getAllBasesBB(double& xMin, double& xMax, double& yMin, double& yMax)
{
    makeEmpty(xMin, xMax);
    makeEmpty(yMin, yMax);
    for (int index = 0; index < 4; ++index) {
        extend(index, 0, xMin, xMax);
        extend(index, 1, yMin, yMax);
    }
}

// Drawing

void SoNucleobase::GLRenderBelowPath(SoGLRenderAction* action)
{
    SoState* const state = action->getState();
    state->push();
    // A list being recorded is for other views, too.
    const bool outOfView = !state->isCacheOpen() && cullTest(state);
    state->pop();
    if (outOfView)
        return;
    if (!drawing)
        drawing = std::make_unique<GlyphDrawing>();
    const auto drawHere = [this] { drawing->drawGlyph(0, SbMatrix::identity()); };
    if (!GlyphDrawing::canDraw(state) || !drawing->update({this}) ||
        !drawing->draw(action, drawHere))
        SoSeparator::GLRenderBelowPath(action);
}

const char* SoNucleobase::getFileFormatName() const { return "Separator"; }
