// SPDX-License-Identifier: GPL-3.0-or-later
#include <SoMeshShape.h>

#include <cstdlib>

#include <Inventor/SoDB.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/lists/SoFieldList.h>
#include <Inventor/nodes/SoCube.h>
#include <Inventor/nodes/SoGroup.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoTranslation.h>
#include <Inventor/sensors/SoNodeSensor.h>

#include <Mesh.h>
#include <SoRod.h>

#include "support/CoinEnvironment.h"
#include "support/MeshShape.h"
#include "support/registration.h"

namespace {

// An unallocated mesh that has a box only.
class BoxMesh : public Mesh
{
public:
    BoxMesh(const algebra3d::Vector3<double>& minimum, const algebra3d::Vector3<double>& maximum)
        : Mesh(false, false)
    {
        resetBB();
        updateBB(minimum);
        updateBB(maximum);
    }
};

const SbViewportRegion viewport(100, 100);

} // namespace

class SoMeshShapeTest : public CoinTest
{
protected:
    BoxMesh mesh{{1, 2, 3}, {2, 4, 6}};
    NodeRef<MeshShape> shape{new MeshShape(&mesh)};
    NodeRef<MeshShape> empty{new MeshShape(nullptr)};
};

TEST_F(SoMeshShapeTest, IsAShapeThatCannotBeCreatedByName)
{
    const SoType type = SoMeshShape::getClassTypeId();
    EXPECT_EQ(type, SoType::fromName("SoMeshShape"));
    EXPECT_EQ(type.getParent(), SoShape::getClassTypeId());
    EXPECT_FALSE(type.canCreateInstance());
    EXPECT_EQ(type.createInstance(), nullptr);
}

TEST_F(SoMeshShapeTest, AddsNoFields)
{
    SoFieldList fields;
    EXPECT_EQ(shape->getFields(fields), 0);
}

TEST_F(SoMeshShapeTest, IsDrawnCoarselyIfAskedAndSoAreItsCopies)
{
    EXPECT_FALSE(shape->isDrawnCoarsely());
    const SbUniqueId before = shape->getNodeId();
    shape->drawCoarsely(true);
    EXPECT_TRUE(shape->isDrawnCoarsely());
    const SbUniqueId changed = shape->getNodeId();
    EXPECT_NE(changed, before) << "a new frame shows it";
    shape->drawCoarsely(true);
    EXPECT_EQ(shape->getNodeId(), changed);

    const NodeRef<SoRod> rod(new SoRod(0.1, 0.2, 8, 2, true, true, false));
    rod->drawCoarsely(true);
    const NodeRef<SoRod> copy(static_cast<SoRod*>(rod->copy()));
    EXPECT_TRUE(copy->isDrawnCoarsely());
}

TEST_F(SoMeshShapeTest, IsTheSameHoweverItIsDrawn)
{
    const SbUniqueId known = shape->getIdOfMeshes();
    EXPECT_EQ(known, shape->getNodeId());
    for (const bool coarse : {true, false, true}) {
        shape->drawCoarsely(coarse);
        EXPECT_EQ(shape->getIdOfMeshes(), known);
    }
    shape->touch();
    const SbUniqueId changed = shape->getIdOfMeshes();
    EXPECT_NE(changed, known);
    shape->drawCoarsely(false);
    EXPECT_EQ(shape->getIdOfMeshes(), changed);
}

TEST_F(SoMeshShapeTest, IsAnotherIfWhoIsToldHowItIsDrawnChangesIt)
{
    const SbUniqueId known = shape->getIdOfMeshes();
    SoNodeSensor sensor(
        [](void* told, SoSensor* self) {
            static_cast<SoNodeSensor*>(self)->detach();
            static_cast<SoMeshShape*>(told)->touch();
        },
        static_cast<SoMeshShape*>(shape));
    sensor.setPriority(0);
    sensor.attach(shape);
    shape->drawCoarsely(true);
    EXPECT_NE(shape->getIdOfMeshes(), known);
}

TEST_F(SoMeshShapeTest, IsAnotherAfterAChangeEvenIfItWasSilentAboutItsDrawing)
{
    const SbUniqueId known = shape->getIdOfMeshes();
    shape->enableNotify(FALSE);
    shape->drawCoarsely(true);
    EXPECT_EQ(shape->getIdOfMeshes(), known);
    shape->enableNotify(TRUE);
    shape->touch();
    EXPECT_NE(shape->getIdOfMeshes(), known);
}

TEST_F(SoMeshShapeTest, BoxAndCentreReachTheAction)
{
    SoGetBoundingBoxAction action(viewport);
    action.apply(shape);
    EXPECT_EQ(action.getBoundingBox().getMin(), SbVec3f(1, 2, 3));
    EXPECT_EQ(action.getBoundingBox().getMax(), SbVec3f(2, 4, 6));
    ASSERT_TRUE(action.isCenterSet());
    EXPECT_EQ(action.getCenter(), SbVec3f(2, 4, 6)); // as computeBBox of this shape says
}

TEST_F(SoMeshShapeTest, BoxAndCentreAreTransformed)
{
    NodeRef<SoGroup> group(new SoGroup);
    auto* translation = new SoTranslation;
    translation->translation = SbVec3f(10, 20, 30);
    group->addChild(translation);
    group->addChild(shape);
    SoGetBoundingBoxAction action(viewport);
    action.apply(group);
    EXPECT_EQ(action.getBoundingBox().getMin(), SbVec3f(11, 22, 33));
    EXPECT_EQ(action.getBoundingBox().getMax(), SbVec3f(12, 24, 36));
    EXPECT_EQ(action.getCenter(), SbVec3f(12, 24, 36));
}

TEST_F(SoMeshShapeTest, EmptyBoxAddsNothingAndSetsNoCentre)
{
    SoGetBoundingBoxAction action(viewport);
    action.apply(empty);
    EXPECT_EQ(empty->boxComputations, 1);
    EXPECT_TRUE(action.getBoundingBox().isEmpty());
    EXPECT_FALSE(action.isCenterSet());
}

TEST_F(SoMeshShapeTest, EmptyBoxLeavesWhatOtherShapesAdded)
{
    NodeRef<SoSeparator> scene(new SoSeparator);
    auto* translation = new SoTranslation;
    translation->translation = SbVec3f(5, 0, 0);
    scene->addChild(translation);
    scene->addChild(new SoCube); // 2 wide
    scene->addChild(empty);
    SoGetBoundingBoxAction action(viewport);
    action.apply(scene);
    EXPECT_EQ(action.getBoundingBox().getMin(), SbVec3f(4, -1, -1));
    EXPECT_EQ(action.getBoundingBox().getMax(), SbVec3f(6, 1, 1));
    EXPECT_EQ(action.getCenter(), SbVec3f(5, 0, 0));
}

TEST_F(SoMeshShapeTest, WithoutAnActionNothingIsComputed)
{
    shape->getBoundingBox(nullptr);
    EXPECT_EQ(shape->boxComputations, 0);
}

namespace {

void constructRod() { (new SoRod(0.1, 0.5, 8, 2, true, true, false))->ref(); }

} // namespace

TEST_F(RegistrationDeathTest, SoMeshShapeTwice)
{
    EXPECT_DEATH(
        {
            SoDB::init();
            SoMeshShape::initClass();
            SoMeshShape::initClass();
        },
        assertionIn("SoMeshShape",
                    R"(SoMeshShape::classTypeId == SoType::badType() && "don't init() twice!")"));
}

TEST_F(RegistrationDeathTest, SoRodTwice)
{
    EXPECT_DEATH(
        {
            SoDB::init();
            SoMeshShape::initClass();
            SoRod::initClass();
            SoRod::initClass();
        },
        assertionIn("SoRod",
                    R"(SoRod::classTypeId == SoType::badType() && "don't init() twice!")"));
}

TEST_F(RegistrationDeathTest, SoMeshShapeBeforeItsParent)
{
    EXPECT_DEATH(
        {
            SoDB::init();
            SoType::removeType("Shape");
            SoMeshShape::initClass();
        },
        assertionIn("SoMeshShape",
                    R"(parentType != SoType::badType() && "you forgot init() on parentclass!")"));
}

TEST_F(RegistrationDeathTest, SoRodBeforeItsParent)
{
    EXPECT_DEATH(
        {
            SoDB::init();
            SoRod::initClass();
        },
        assertionIn("SoRod",
                    R"(parentType != SoType::badType() && "you forgot init() on parentclass!")"));
}

TEST_F(RegistrationDeathTest, SoRodConstructedBeforeItsRegistration)
{
    EXPECT_DEATH(
        {
            SoDB::init();
            SoMeshShape::initClass();
            constructRod();
        },
        assertionIn("SoRod", R"(SoRod::classTypeId != SoType::badType() && "you forgot init()!")"));
}

TEST_F(RegistrationDeathTest, SoMeshShapeConstructedBeforeItsRegistration)
{
    // The base of the rod comes first.
    EXPECT_DEATH(
        {
            SoDB::init();
            constructRod();
        },
        assertionIn("SoMeshShape",
                    R"(SoMeshShape::classTypeId != SoType::badType() && "you forgot init()!")"));
}

TEST_F(RegistrationDeathTest, NothingIsRegisteredByItself)
{
    EXPECT_EXIT(
        {
            SoDB::init();
            const bool none =
                SoType::fromName("SoMeshShape").isBad() && SoType::fromName("SoRod").isBad() &&
                SoMeshShape::getClassTypeId().isBad() && SoRod::getClassTypeId().isBad();
            std::_Exit(none ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(RegistrationDeathTest, CoinsCleanUpTakesTheClassesBack)
{
    EXPECT_EXIT(
        {
            SoDB::init();
            SoMeshShape::initClass();
            SoRod::initClass();
            constructRod();
            const bool registered = !SoRod::getClassTypeId().isBad();
            SoDB::finish();
            const bool takenBack =
                SoMeshShape::getClassTypeId().isBad() && SoRod::getClassTypeId().isBad();
            std::_Exit(registered && takenBack ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}
