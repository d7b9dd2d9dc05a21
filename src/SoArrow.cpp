// SPDX-License-Identifier: GPL-3.0-or-later
#include <SoArrow.h>

#include <Inventor/nodes/SoCone.h>
#include <Inventor/nodes/SoCylinder.h>
#include <Inventor/nodes/SoRotation.h>
#include <Inventor/nodes/SoTranslation.h>
#include <toCoin.h>

using Vector = algebra3d::Vector3<double>;

// Without the macro for the whole source: the factory has arguments to pass.
SO_NODE_ABSTRACT_SOURCE(SoArrow);

void SoArrow::initClass() { SO_NODE_INIT_CLASS(SoArrow, SoSeparator, "SoSeparator"); }

void* SoArrow::createInstance() { return new SoArrow({0, 0, 0}, {0, 1, 0}, 0.1, 0, 0); }

SoArrow::SoArrow(const Vector& from, const Vector& to, double shaftRadius, double headRadius,
                 double headLength)
{
    SO_NODE_CONSTRUCTOR(SoArrow);

    setArrow(from, to, shaftRadius, headRadius, headLength);
}

void SoArrow::setArrow(const Vector& from, const Vector& to, double shaftRadius, double headRadius,
                       double headLength)
{
    removeAllChildren();
    const Vector arrow = to - from;
    const double length = arrow.getNorm();
    const bool hasRoomForShaft = headLength < length;
    const double shownHeadLength = hasRoomForShaft ? headLength : length;
    const double shaftLength = hasRoomForShaft ? length - headLength : 0;

    auto* centre = new SoTranslation;
    centre->translation = toSbVec3f((from + to) * 0.5);
    addChild(centre);
    // Cones and cylinders lie along y.
    auto* direction = new SoRotation;
    direction->rotation = SbRotation(SbVec3f(0, 1, 0), toSbVec3f(arrow));
    addChild(direction);

    const auto addAlongArrow = [this](double offset, SoNode* shape) {
        auto* part = new SoSeparator;
        auto* place = new SoTranslation;
        place->translation = SbVec3f(0, float(offset), 0);
        part->addChild(place);
        part->addChild(shape);
        addChild(part);
    };
    if (shownHeadLength > 0 && headRadius > 0) {
        auto* cone = new SoCone;
        cone->bottomRadius = float(headRadius);
        cone->height = float(shownHeadLength);
        addAlongArrow(shaftLength / 2, cone);
    }
    if (shaftLength > 0) {
        auto* cylinder = new SoCylinder;
        cylinder->radius = float(shaftRadius);
        cylinder->height = float(shaftLength);
        addAlongArrow(-shownHeadLength / 2, cylinder);
    }
}

SoArrow::~SoArrow() = default;

const char* SoArrow::getFileFormatName() const { return "Separator"; }
