// SPDX-License-Identifier: GPL-3.0-or-later
#include <global.h>

#include <limits>

#include <Inventor/SbRotation.h>
#include <Inventor/SoDB.h>
#include <Inventor/nodes/SoMaterial.h>
#include <gtest/gtest.h>

#include <algebra3d/Matrix3.h>

#include "support/RandomRods.h"

using Quaternion = algebra3d::Quaternion<double>;
using Vector = algebra3d::Vector3<double>;

namespace {

const double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
const double TOLERANCE = 0.01; // what the rod nodes ask for

Quaternion ofNorm(double norm) { return {0, 0, 0, norm}; }

// A unit quaternion with one component replaced by not-a-number.
Quaternion spoilt(int component)
{
    Quaternion q(0.5, 0.5, 0.5, 0.5);
    q[component] = NOT_A_NUMBER;
    return q;
}

} // namespace

TEST(IsPointRotCorrect, AcceptsNormsWithinTheTolerance)
{
    EXPECT_TRUE(isPointRotCorrect(Vector(), ofNorm(1), TOLERANCE));
    EXPECT_TRUE(isPointRotCorrect(Vector(), ofNorm(1.005), TOLERANCE));
    EXPECT_TRUE(isPointRotCorrect(Vector(), ofNorm(0.995), TOLERANCE));
    EXPECT_TRUE(isPointRotCorrect(Vector(), Quaternion(0.5, -0.5, 0.5, -0.5), TOLERANCE));
}

TEST(IsPointRotCorrect, RefusesNormsBeyondTheTolerance)
{
    EXPECT_FALSE(isPointRotCorrect(Vector(), ofNorm(1.02), TOLERANCE));
    EXPECT_FALSE(isPointRotCorrect(Vector(), ofNorm(0.98), TOLERANCE));
    EXPECT_FALSE(isPointRotCorrect(Vector(), ofNorm(0), TOLERANCE));
    EXPECT_FALSE(isPointRotCorrect(Vector(), Quaternion(1, 0, 0, 1), TOLERANCE));
}

TEST(IsPointRotCorrect, ADeviationOfExactlyTheToleranceIsCorrect)
{
    EXPECT_TRUE(isPointRotCorrect(Vector(), ofNorm(1.25), 0.25));
    EXPECT_TRUE(isPointRotCorrect(Vector(), ofNorm(0.75), 0.25));
    EXPECT_TRUE(isPointRotCorrect(Vector(), ofNorm(1), 0));
    EXPECT_FALSE(isPointRotCorrect(Vector(), ofNorm(1.25), 0.125));
}

TEST(IsPointRotCorrect, RefusesNotANumberInAnyComponent)
{
    const double infinity = std::numeric_limits<double>::infinity();
    for (int component = 0; component < 4; ++component) {
        EXPECT_FALSE(isPointRotCorrect(Vector(), spoilt(component), TOLERANCE)) << component;
        EXPECT_FALSE(isPointRotCorrect(Vector(), spoilt(component), infinity)) << component;
    }
}

TEST(IsPointRotCorrect, DoesNotExamineThePoint) // kept on purpose
{
    EXPECT_TRUE(
        isPointRotCorrect(Vector(NOT_A_NUMBER, NOT_A_NUMBER, NOT_A_NUMBER), ofNorm(1), TOLERANCE));
}

TEST(IsDataCorrect, FewerThanTwoPairsAreCorrectWhateverTheyAre)
{
    EXPECT_TRUE(isDataCorrect({}, {}, TOLERANCE));
    EXPECT_TRUE(isDataCorrect({Vector()}, {ofNorm(5)}, TOLERANCE));
    EXPECT_TRUE(isDataCorrect({Vector()}, {spoilt(0)}, TOLERANCE));
    EXPECT_TRUE(isDataCorrect({Vector()}, {ofNorm(5), ofNorm(5)}, TOLERANCE));
    EXPECT_TRUE(isDataCorrect({Vector(), Vector()}, {ofNorm(5)}, TOLERANCE));
}

TEST(IsDataCorrect, RefusesABadOrientationAtAnyPlace)
{
    const std::vector<Vector> points(4);
    EXPECT_TRUE(isDataCorrect(points, std::vector<Quaternion>(4, ofNorm(1.005)), TOLERANCE));
    for (std::size_t i = 0; i < 4; ++i) {
        SCOPED_TRACE(i);
        std::vector<Quaternion> rotations(4);
        rotations[i] = ofNorm(1.02);
        EXPECT_FALSE(isDataCorrect(points, rotations, TOLERANCE));
        for (int component = 0; component < 4; ++component) {
            rotations[i] = spoilt(component);
            EXPECT_FALSE(isDataCorrect(points, rotations, TOLERANCE)) << component;
        }
    }
}

TEST(IsDataCorrect, DoesNotExamineThePoints) // kept on purpose
{
    const std::vector<Vector> points(3, Vector(NOT_A_NUMBER, 0, 0));

    EXPECT_TRUE(isDataCorrect(points, std::vector<Quaternion>(3), TOLERANCE));
}

TEST(IsDataCorrect, TheShorterSequenceDecidesHowManyAreTested)
{
    std::vector<Quaternion> rotations(5);
    rotations[3] = ofNorm(2);

    EXPECT_TRUE(isDataCorrect(std::vector<Vector>(3), rotations, TOLERANCE));
    EXPECT_FALSE(isDataCorrect(std::vector<Vector>(4), rotations, TOLERANCE));
    // Five points, three rotations.
    EXPECT_TRUE(isDataCorrect(std::vector<Vector>(5), std::vector<Quaternion>(3), TOLERANCE));
    EXPECT_FALSE(
        isDataCorrect(std::vector<Vector>(5), {ofNorm(1), ofNorm(1), ofNorm(2)}, TOLERANCE));
}

class CreateMaterialTest : public testing::Test
{
protected:
    static void SetUpTestSuite() { SoDB::init(); }
};

TEST_F(CreateMaterialTest, SetsOneColourPerField)
{
    SoMaterial* material = createMaterial({0.1, 0.2, 0.3}, {0.4, 0.5, 0.6}, {0.7, 0.8, 0.9});
    EXPECT_EQ(material->getRefCount(), 0);
    material->ref();

    ASSERT_EQ(material->ambientColor.getNum(), 1);
    ASSERT_EQ(material->diffuseColor.getNum(), 1);
    ASSERT_EQ(material->specularColor.getNum(), 1);
    EXPECT_EQ(material->ambientColor[0], SbColor(0.1f, 0.2f, 0.3f));
    EXPECT_EQ(material->diffuseColor[0], SbColor(0.4f, 0.5f, 0.6f));
    EXPECT_EQ(material->specularColor[0], SbColor(0.7f, 0.8f, 0.9f));
    material->unref();
}

TEST_F(CreateMaterialTest, KeepsCoinsDefaultsElsewhere)
{
    SoMaterial* material = createMaterial({1, 0, 0}, {0, 1, 0}, {0, 0, 1});
    material->ref();
    SoMaterial* plain = new SoMaterial;
    plain->ref();

    EXPECT_TRUE(material->emissiveColor.isDefault());
    EXPECT_TRUE(material->shininess.isDefault());
    EXPECT_TRUE(material->transparency.isDefault());
    EXPECT_EQ(material->emissiveColor[0], plain->emissiveColor[0]);
    EXPECT_EQ(material->shininess[0], plain->shininess[0]);
    EXPECT_EQ(material->transparency[0], plain->transparency[0]);
    plain->unref();
    material->unref();
}

TEST_F(CreateMaterialTest, PassesColoursOutOfRangeOn)
{
    SoMaterial* material = createMaterial({-1, 0, 2}, {-3, 4, 5}, {6, -7, 8});
    material->ref();

    EXPECT_EQ(material->ambientColor[0], SbColor(-1, 0, 2));
    EXPECT_EQ(material->diffuseColor[0], SbColor(-3, 4, 5));
    EXPECT_EQ(material->specularColor[0], SbColor(6, -7, 8));
    material->unref();
}

TEST(QuaternionOrder, GivesCoinTheSameRotationAsTheFrame)
{
    RandomNumbers random(11);
    for (int i = 0; i < 1000; ++i) {
        SCOPED_TRACE(i);
        const Quaternion q = random.unitQuaternion();
        const algebra3d::Matrix3<double> frame(q);
        const float components[] = {float(q[0]), float(q[1]), float(q[2]), float(q[3])};
        const SbRotation rotation(components);
        for (int column = 0; column < 3; ++column) {
            SbVec3f axis(0, 0, 0), turned;
            axis[column] = 1;
            rotation.multVec(axis, turned);
            for (int k = 0; k < 3; ++k) {
                // A few roundings to float.
                EXPECT_NEAR(turned[k], frame.getColumn(column)[k], 1e-6)
                    << "column " << column << ", component " << k;
            }
        }
    }
}
