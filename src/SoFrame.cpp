// SPDX-License-Identifier: GPL-3.0-or-later
#include <SoFrame.h>

#include <algorithm>

#include <Inventor/nodes/SoCone.h>
#include <Inventor/nodes/SoCylinder.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoRotation.h>
#include <Inventor/nodes/SoTranslation.h>

#include <global.h>

#include "detail/copyOf.h"

using Vector = algebra3d::Vector3<double>;

// Without the macro for the whole source: the factory has arguments to pass.
SO_NODE_ABSTRACT_SOURCE(SoFrame);

namespace {

// Twice the cosine and the sine of half a right angle; Coin makes quaternions unit.
const float SQRT_2 = 1.4142135f;

SoSeparator* makePart(float y, SoNode* shape)
{
    auto* part = new SoSeparator;
    auto* place = new SoTranslation;
    place->translation = SbVec3f(0, y, 0);
    part->addChild(place);
    part->addChild(shape);
    return part;
}

// Along y, from 0 to 1.
SoSeparator* makeUnitArrow()
{
    auto* shaft = new SoCylinder;
    shaft->radius = 0.05f;
    shaft->height = 0.75f;
    auto* head = new SoCone;
    head->bottomRadius = 0.1f;
    head->height = 0.25f;
    auto* arrow = new SoSeparator;
    arrow->addChild(makePart(0.375f, shaft));
    arrow->addChild(makePart(0.875f, head));
    return arrow;
}

SoMaterial* makeAxisMaterial(const Vector& colour)
{
    return createMaterial(colour, colour, Vector(1, 1, 1));
}

SoRotation* makeRotation(float x, float y, float z, float w)
{
    auto* rotation = new SoRotation;
    rotation->rotation.setValue(x, y, z, w);
    return rotation;
}

} // namespace

void SoFrame::initClass() { SO_NODE_INIT_CLASS(SoFrame, SoSeparator, "SoSeparator"); }

void* SoFrame::createInstance() { return new SoFrame({1, 0, 0}, {0, 1, 0}, {0, 0, 1}); }

SoFrame::SoFrame(const Vector& colourX, const Vector& colourY, const Vector& colourZ)
    : materialX(makeAxisMaterial(colourX)),
      materialY(makeAxisMaterial(colourY)),
      materialZ(makeAxisMaterial(colourZ))
{
    SO_NODE_CONSTRUCTOR(SoFrame);

    SoSeparator* arrow = makeUnitArrow(); // one for all axes
    const auto addAxis = [this, arrow](SoMaterial* material, SoRotation* fromY) {
        auto* axis = new SoSeparator;
        axis->addChild(material);
        if (fromY)
            axis->addChild(fromY);
        axis->addChild(arrow);
        addChild(axis);
    };
    // On purpose y, z, x.
    addAxis(materialY, nullptr);
    addAxis(materialZ, makeRotation(SQRT_2, 0, 0, SQRT_2));
    addAxis(materialX, makeRotation(0, 0, SQRT_2, -SQRT_2));
}

SoFrame::~SoFrame() = default;

void SoFrame::setTransparency(double transparency)
{
    // In this order not-a-number becomes 0.
    const auto clamped = float(std::max(0.0, std::min(transparency, 1.0)));
    for (SoMaterial* material : {materialX, materialY, materialZ})
        material->transparency = clamped;
}

void SoFrame::copyContents(const SoFieldContainer* from, SbBool copyConnections)
{
    SoSeparator::copyContents(from, copyConnections);
    const auto* original = static_cast<const SoFrame*>(from);
    materialX = copyOf(original->materialX, copyConnections);
    materialY = copyOf(original->materialY, copyConnections);
    materialZ = copyOf(original->materialZ, copyConnections);
}

const char* SoFrame::getFileFormatName() const { return "Separator"; }
