// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/BaseNodes.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include <Inventor/SbBox3f.h>
#include <Inventor/SoPrimitiveVertex.h>
#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoSearchAction.h>
#include <Inventor/nodes/SoIndexedFaceSet.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoVertexProperty.h>
#include <SoNucleobase.h>
#include <algebra3d/Vector3.h>
#include <gtest/gtest.h>

#include "support/initialiseSceneOnce.h"

namespace strandview {

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

struct Triangle
{
    SbVec3f corners[3], normal;
};

class SlabTest : public testing::Test
{
protected:
    SlabTest() { initialiseSceneOnce(); }
    ~SlabTest() override
    {
        if (slab)
            slab->unref();
    }

    void make(char letter, bool isUpright)
    {
        if (slab)
            slab->unref();
        slab = makeSlab(letter, isUpright);
        slab->ref();
    }
    const SoVertexProperty& vertices() const
    {
        const auto* shape = static_cast<SoIndexedFaceSet*>(slab->getChild(1));
        return *static_cast<SoVertexProperty*>(shape->vertexProperty.getValue());
    }
    SbBox3f box() const
    {
        SbBox3f found = boxOf(true);
        found.extendBy(boxOf(false));
        return found;
    }
    // Around the vertices of the dark edge, or of the rest.
    SbBox3f boxOf(bool isEdge) const
    {
        std::uint32_t brightest = 0;
        for (int i = 0; i < vertices().orderedRGBA.getNum(); ++i)
            brightest = std::max(brightest, vertices().orderedRGBA[i]);
        SbBox3f found;
        for (int i = 0; i < vertices().orderedRGBA.getNum(); ++i) {
            if ((vertices().orderedRGBA[i] < brightest) == isEdge)
                found.extendBy(vertices().vertex[i]);
        }
        return found;
    }
    std::vector<Triangle> triangles() const
    {
        std::vector<Triangle> all;
        SoCallbackAction action;
        const auto collect = [](void* found, SoCallbackAction* /*action*/,
                                const SoPrimitiveVertex* a, const SoPrimitiveVertex* b,
                                const SoPrimitiveVertex* c) {
            static_cast<std::vector<Triangle>*>(found)->push_back(
                {{a->getPoint(), b->getPoint(), c->getPoint()}, a->getNormal()});
        };
        action.addTriangleCallback(SoIndexedFaceSet::getClassTypeId(), collect, &all);
        action.apply(slab);
        return all;
    }

    SoSeparator* slab = nullptr;
};

TEST_F(SlabTest, IsThinAndReachesFromTheMiddleOfThePairToTheBackbone)
{
    make('A', true);
    EXPECT_GT(box().getMin()[1], 0) << "beside the other base's";
    EXPECT_LT(box().getMin()[1], 1);
    EXPECT_GT(box().getMax()[1], 8) << "a tube of radius 1 runs about 9 from the middle";
    EXPECT_LT(box().getMax()[1], 9);
    EXPECT_LT(box().getSize()[2], 2) << "the pairs are 3.4 apart";
    EXPECT_NEAR(box().getMax()[2], -box().getMin()[2], 1e-6);
}

TEST_F(SlabTest, IsDarkAlongTheMinorGroove)
{
    for (const char letter : std::string("ACGTN")) {
        make(letter, true);
        EXPECT_LT(boxOf(true).getMax()[0], 0) << "d1 points into the major groove";
        EXPECT_GT(boxOf(false).getMax()[0], 2);
    }
}

TEST_F(SlabTest, OfStrand2LiesOnTheOtherSideWithTheSameGrooves)
{
    make('C', false);
    EXPECT_LT(box().getMax()[1], 0);
    EXPECT_LT(box().getMin()[1], -8);
    EXPECT_LT(boxOf(true).getMax()[0], 0);
    EXPECT_GT(boxOf(false).getMax()[0], 2);
}

TEST_F(SlabTest, IsAClosedSurfaceSeenFromOutside)
{
    for (const bool isUpright : {true, false}) {
        make('G', isUpright);
        EXPECT_EQ(triangles().size(), 20u);
        double volume = 0;
        SbVec3f area(0, 0, 0);
        for (const Triangle& triangle : triangles()) {
            const auto& [a, b, c] = triangle.corners;
            const SbVec3f normal = (b - a).cross(c - a);
            EXPECT_GT(normal.dot(triangle.normal), 0);
            EXPECT_NEAR(triangle.normal.length(), 1, 1e-5);
            area += normal;
            volume += double(a.dot(b.cross(c))) / 6;
        }
        EXPECT_NEAR(area.length(), 0, 1e-4) << "closed";
        EXPECT_GT(volume, 20);
    }
}

TEST(Nucleobase, HasASlabWhereBasesAreShown)
{
    initialiseSceneOnce();
    DnaLook look;
    look.atoms = look.baseBoxes = true;
    for (const bool bases : {true, false}) {
        look.bases = bases;
        SoNucleobase* base = makeNucleobase('T', look, true);
        base->ref();
        EXPECT_TRUE(base->areAtomsShown());
        EXPECT_TRUE(base->isBoxShown());
        SoSearchAction search;
        search.setType(SoIndexedFaceSet::getClassTypeId());
        search.apply(base);
        EXPECT_EQ(search.getPath() != nullptr, bases);
        base->unref();
    }
}

} // namespace

} // namespace strandview
