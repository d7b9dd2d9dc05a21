// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/builders/BaseNodes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

#include <Inventor/SbBox3f.h>
#include <Inventor/SoPrimitiveVertex.h>
#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoSearchAction.h>
#include <Inventor/nodes/SoIndexedFaceSet.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoVertexProperty.h>
#include <gtest/gtest.h>

#include "support/initialiseSceneOnce.h"

namespace strandview {

using algebra3d::Quaternion;
using algebra3d::Vector3;

namespace {

// How colours look, by the linear RGB that is seen instead (G. M. Machado, M. M. Oliveira, L. A. F.
// Fernandes, A physiologically-based model for simulation of color vision deficiency, IEEE Trans.
// Vis. Comput. Graph. 15, 2009, 1291-1298; severity 1).
struct Vision
{
    const char* name;
    double seen[3][3];
};

const Vision VISIONS[] = {{"normal", {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}},
                          {"protanopia",
                           {{0.152286, 1.052583, -0.204868},
                            {0.114503, 0.786281, 0.099216},
                            {-0.003882, -0.048116, 1.051998}}},
                          {"deuteranopia",
                           {{0.367322, 0.860646, -0.227968},
                            {0.280085, 0.672501, 0.047413},
                            {-0.011820, 0.042940, 0.968881}}},
                          {"tritanopia",
                           {{1.255528, -0.076749, -0.178779},
                            {-0.078411, 0.930809, 0.147602},
                            {0.004733, 0.691367, 0.303900}}}};

double linear(double value)
{
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

double labCurve(double t)
{
    return t > 216.0 / 24389 ? std::cbrt(t) : (24389.0 / 27 * t + 16) / 116;
}

// CIE 1976 L*a*b* of sRGB as it is seen, white of D65.
Vector3<double> labOf(const Colour& colour, const Vision& vision)
{
    const double rgb[] = {linear(double(colour.red)), linear(double(colour.green)),
                          linear(double(colour.blue))};
    double seen[3];
    for (int i = 0; i < 3; ++i) {
        const double* row = vision.seen[i];
        seen[i] = std::clamp(row[0] * rgb[0] + row[1] * rgb[1] + row[2] * rgb[2], 0.0, 1.0);
    }
    const auto [r, g, b] = seen;
    const double x = labCurve((0.4124564 * r + 0.3575761 * g + 0.1804375 * b) / 0.95047);
    const double y = labCurve(0.2126729 * r + 0.7151522 * g + 0.0721750 * b);
    const double z = labCurve((0.0193339 * r + 0.1191920 * g + 0.9503041 * b) / 1.08883);
    return {116 * y - 16, 500 * (x - y), 200 * (y - z)};
}

double difference(char one, char other, const Vision& vision)
{
    return (labOf(baseColour(one), vision) - labOf(baseColour(other), vision)).getNorm();
}

TEST(BaseColours, AreToldApartWithEveryKindOfColourVision)
{
    for (const Vision& vision : VISIONS) {
        SCOPED_TRACE(vision.name);
        const std::string letters = "ACGT";
        for (char one : letters) {
            for (char other : letters) {
                if (one < other) {
                    // A tenth of the way from black to white is just a difference at a glance.
                    EXPECT_GT(difference(one, other, vision), 25) << one << other;
                }
            }
            EXPECT_GT(difference(one, 'N', vision), 18) << one;
        }
    }
    EXPECT_LT(difference('N', 'X', VISIONS[0]), 1e-9) << "any other letter is one colour";
}

// A triangle of slabs, in the scene.
struct Triangle
{
    SbVec3f corners[3], normals[3];
    std::uint32_t colour;
};

class SlabsTest : public testing::Test
{
protected:
    SlabsTest()
    {
        initialiseSceneOnce();
        slabs = makeSlabs();
        slabs->ref();
    }
    ~SlabsTest() override { slabs->unref(); }

    const SoIndexedFaceSet& shape() const
    {
        return *static_cast<SoIndexedFaceSet*>(slabs->getChild(slabs->getNumChildren() - 1));
    }
    const SoVertexProperty& vertices() const
    {
        return *static_cast<SoVertexProperty*>(shape().vertexProperty.getValue());
    }
    std::vector<std::uint32_t> colours() const
    {
        const SoMFUInt32& packed = vertices().orderedRGBA;
        return {packed.getValues(0), packed.getValues(0) + packed.getNum()};
    }
    std::size_t countColours() const
    {
        std::map<std::uint32_t, int> found;
        for (const std::uint32_t colour : colours())
            ++found[colour];
        return found.size();
    }
    SbBox3f box() const
    {
        SbBox3f found;
        for (int i = 0; i < vertices().vertex.getNum(); ++i)
            found.extendBy(vertices().vertex[i]);
        return found;
    }
    // Around the vertices of the dark edge, or of the rest.
    SbBox3f boxOf(bool dark) const
    {
        const std::vector<std::uint32_t> all = colours();
        const auto brightness = [](std::uint32_t rgba) {
            return (rgba >> 24) + (rgba >> 16 & 255) + (rgba >> 8 & 255);
        };
        std::uint32_t brightest = 0;
        for (const std::uint32_t colour : all)
            brightest = std::max(brightest, brightness(colour));
        SbBox3f found;
        for (std::size_t i = 0; i < all.size(); ++i) {
            if ((brightness(all[i]) < 0.7 * brightest) == dark)
                found.extendBy(vertices().vertex[int(i)]);
        }
        return found;
    }

    SoSeparator* slabs;
};

const PlacedBase ONE{'A', {0, 0, 0}, Quaternion<double>(), false};

TEST_F(SlabsTest, AreThinAndReachFromTheMiddleOfThePairToTheBackbone)
{
    setSlabs(*slabs, {ONE}, {}, 1);
    EXPECT_GT(box().getMin()[1], 0) << "beside the other base's";
    EXPECT_LT(box().getMin()[1], 1);
    EXPECT_GT(box().getMax()[1], 8) << "a tube of radius 1 runs about 9 from the middle";
    EXPECT_LT(box().getMax()[1], 9);
    EXPECT_LT(box().getSize()[2], 2) << "the pairs are 3.4 apart";
    EXPECT_NEAR(box().getMax()[2], -box().getMin()[2], 1e-6);
}

TEST_F(SlabsTest, AreDarkAlongTheMinorGroove)
{
    setSlabs(*slabs, {ONE}, {}, 1);
    EXPECT_EQ(countColours(), 2u);
    EXPECT_LT(boxOf(true).getMax()[0], 0) << "d1 points into the major groove";
    EXPECT_GT(boxOf(false).getMax()[0], 2);
}

TEST_F(SlabsTest, OfStrand2LieOnTheOtherSideWithTheSameGrooves)
{
    PlacedBase other = ONE;
    other.isInStrand2 = true;
    setSlabs(*slabs, {other}, {}, 1);
    EXPECT_LT(box().getMax()[1], 0);
    EXPECT_LT(box().getMin()[1], -8);
    EXPECT_LT(boxOf(true).getMax()[0], 0);
}

TEST_F(SlabsTest, AreClosedSurfacesSeenFromOutside)
{
    for (const bool second : {false, true}) {
        PlacedBase base = ONE;
        base.isInStrand2 = second;
        setSlabs(*slabs, {base}, {}, 1);
        std::vector<Triangle> triangles;
        SoCallbackAction action;
        const auto collect = [](void* all, SoCallbackAction*, const SoPrimitiveVertex* a,
                                const SoPrimitiveVertex* b, const SoPrimitiveVertex* c) {
            static_cast<std::vector<Triangle>*>(all)->push_back(
                {{a->getPoint(), b->getPoint(), c->getPoint()},
                 {a->getNormal(), b->getNormal(), c->getNormal()},
                 0});
        };
        action.addTriangleCallback(SoIndexedFaceSet::getClassTypeId(), collect, &triangles);
        action.apply(slabs);
        EXPECT_EQ(triangles.size(), 20u);
        // Six times the volume; what lies within, where edge and rest meet, is no face.
        double volume = 0;
        SbVec3f area(0, 0, 0);
        for (const Triangle& triangle : triangles) {
            const auto& [a, b, c] = triangle.corners;
            const SbVec3f normal = (b - a).cross(c - a);
            EXPECT_GT(normal.dot(triangle.normals[0]), 0);
            EXPECT_NEAR(triangle.normals[0].length(), 1, 1e-5);
            area += normal;
            volume += double(a.dot(b.cross(c)));
        }
        EXPECT_NEAR(area.length(), 0, 1e-4) << "closed";
        EXPECT_GT(volume / 6, 20);
    }
}

TEST_F(SlabsTest, StandWhereTheirFramesAreInTheScene)
{
    const double s = std::sqrt(0.5);
    const PlacedBase turned{'C', {10, 20, 30}, Quaternion<double>(0, 0, s, s), false}; // d2 is -x
    setSlabs(*slabs, {turned}, Placement{{10, 0, 0}, 2}, 0.1);
    EXPECT_GT(box().getMax()[0], -0.2);
    EXPECT_LT(box().getMax()[0], 0);
    EXPECT_LT(box().getMin()[0], -1.6) << "8 ångström of 0.1, twice";
    EXPECT_NEAR(box().getCenter()[2], 60, 1e-4);
    EXPECT_NEAR(box().getCenter()[1], 40, 0.2);
}

TEST_F(SlabsTest, AreOneShapeForAllOfThemThatIsSetAgain)
{
    const PlacedBase other{'T', {0, 0, 10}, Quaternion<double>(), true};
    setSlabs(*slabs, {ONE, other, ONE}, {}, 1);
    const int three = vertices().vertex.getNum(), faces = shape().coordIndex.getNum();
    EXPECT_EQ(countColours(), 4u);
    setSlabs(*slabs, {other}, {}, 1);
    EXPECT_EQ(3 * vertices().vertex.getNum(), three);
    EXPECT_EQ(3 * shape().coordIndex.getNum(), faces);
    EXPECT_EQ(vertices().normal.getNum(), vertices().vertex.getNum());
    EXPECT_EQ(vertices().orderedRGBA.getNum(), vertices().vertex.getNum());
    setSlabs(*slabs, {}, {}, 1);
    EXPECT_EQ(vertices().vertex.getNum(), 0);
    EXPECT_EQ(shape().coordIndex.getNum(), 0);
}

} // namespace

} // namespace strandview
