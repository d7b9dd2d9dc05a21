// SPDX-License-Identifier: GPL-3.0-or-later
#include <SoDNA.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <ostream>

#include <Inventor/nodes/SoClipPlane.h>
#include <Inventor/nodes/SoComplexity.h>
#include <Inventor/nodes/SoCube.h>
#include <Inventor/nodes/SoDepthBuffer.h>
#include <Inventor/nodes/SoDrawStyle.h>
#include <Inventor/nodes/SoFragmentShader.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoMaterialBinding.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoRotationXYZ.h>
#include <Inventor/nodes/SoScale.h>
#include <Inventor/nodes/SoShaderParameter.h>
#include <Inventor/nodes/SoShaderProgram.h>
#include <Inventor/nodes/SoSwitch.h>
#include <Inventor/nodes/SoTexture2.h>
#include <Inventor/nodes/SoTransform.h>
#include <Inventor/nodes/SoTranslation.h>
#include <Inventor/nodes/SoVertexShader.h>
#include <SoGeneralScene.h>

#include "support/DrawingComparison.h"
#include "support/IdealDna.h"
#include "support/graph.h"

using Vector = algebra3d::Vector3<double>;

class DnaDrawingTest : public DrawingComparison
{
protected:
    static void SetUpTestSuite() { initScenesOnce(); }

    NodeRef<SoDNA> dna{new SoDNA};

    void SetUp() override
    {
        camera->position = SbVec3f(30, 20, 40);
        camera->pointAt(SbVec3f(0, 0, 12), SbVec3f(0, 0, 1));
        ASSERT_TRUE(IdealDna("ATGCCATG").give(*dna));
        dna->generate();
        compareDrawing(dna);
    }

    void lookFrom(int side)
    {
        const float angle = 0.7f * float(side);
        camera->position =
            SbVec3f(30 * std::cos(angle), 30 * std::sin(angle), 2 * float(side) - 10);
        camera->pointAt(SbVec3f(0, 0, 12), SbVec3f(0, 0, 1));
    }
    SoGroup* pair(int which, int i)
    {
        return static_cast<SoGroup*>(static_cast<SoGroup*>(dna->getChild(which))->getChild(i));
    }
    SoCube* cube()
    {
        return static_cast<SoCube*>(static_cast<SoGroup*>(pair(0, 0)->getChild(1))->getChild(2));
    }
};

// What is exact: no vertex is computed otherwise

TEST_F(DnaDrawingTest, UnlitBoxesAreThoseTraversedPixelForPixel)
{
    setUnlit();
    dna->showAtoms(false);
    expectSame();
    dna->showBaseBoxes(true); // coplanar with the pair boxes
    expectSame();
}

TEST_F(DnaDrawingTest, BoxesAreThoseThatCoinKeepsInListsUnlessCoplanar)
{
    SoSeparator::setNumRenderCaches(2);
    setUnlit();
    dna->showAtoms(false);
    dna->showBaseBoxes(true);
    cube()->width = 4;
    cube()->height = 8;
    cube()->depth = 2;
    for (int frame = 0; frame < 8; ++frame) // often enough for Coin to make them
        expectSame();
}

// What is rounded otherwise

// OpenGL lights with an ambient colour of eight bits here, and of a float there.
TEST_F(DnaDrawingTest, LitBoxesAreThoseTraversedWithinOneLevel)
{
    dna->showAtoms(false);
    dna->showBaseBoxes(true);
    const Picture drawn = draw();
    const Difference difference = compare(drawn, traverse());
    EXPECT_EQ(difference.strong, 0) << difference;
    EXPECT_LE(difference.largest, 1) << difference;
    dna->setBaseColour('G', Vector(0.2, 0.6, 0)); // of whole levels, as the others nearly are
    dna->setBaseColour('C', Vector(1, 0.8, 0));
    expectSame();
}

// A vertex is off by a few roundings of float, a hundred-thousandth of a pixel. One pixel in
// thousands then is the other side of a rounding to eight bits, or of an edge.
TEST_F(DnaDrawingTest, AtomsAreThoseTraversedButForAFewPixels)
{
    for (bool lit : {true, false}) {
        if (!lit)
            setUnlit();
        for (int side = 0; side < 6; ++side) {
            lookFrom(side);
            const Picture drawn = draw();
            const Difference difference = compare(drawn, traverse());
            EXPECT_LE(difference.pixels, 8) << difference;
            EXPECT_LE(difference.strong, 2) << difference;
            EXPECT_GT(difference.covered, 5000);
        }
    }
}

// Counts

TEST_F(DnaDrawingTest, EachBoxAndTheSpheresOfEachBaseAreOneDraw)
{
    EXPECT_EQ(countDraws(), 8 + 16);
    dna->showBaseBoxes(true);
    EXPECT_EQ(countDraws(), 8 + 16 + 16);
    dna->showAtoms(false);
    EXPECT_EQ(countDraws(), 8 + 16);
    dna->showBasePairBoxes(false);
    EXPECT_EQ(countDraws(), 16);
    dna->showBaseBoxes(false);
    EXPECT_EQ(countDraws(), 0);
}

TEST_F(DnaDrawingTest, OutOfViewNothingIsDrawn)
{
    boxOf(dna); // Coin has the box then
    camera->pointAt(SbVec3f(60, 40, 80));
    drawCount = 0;
    EXPECT_EQ(draw().countOther(BLACK), 0);
    EXPECT_EQ(drawCount, 0);
}

// Round atoms

class RoundAtomsTest : public DnaDrawingTest
{
protected:
    void SetUp() override
    {
        DnaDrawingTest::SetUp();
        dna->showBasePairBoxes(false);
        setUnlit();
        camera->farDistance = 10000;
    }
    void lookFromAfar(float distance)
    {
        camera->position = SbVec3f(distance, 0, 12);
        camera->pointAt(SbVec3f(0, 0, 12), SbVec3f(0, 0, 1));
    }
    int countIndices()
    {
        indexCount = 0;
        draw();
        return indexCount;
    }
};

TEST_F(RoundAtomsTest, HaveTheCornersOfTheirComplexityAtFirst)
{
    EXPECT_FALSE(dna->areAtomsDrawnRound());
    lookFromAfar(30);
    const int indices = countIndices();
    lookFromAfar(1000);
    EXPECT_EQ(countIndices(), indices);
}

TEST_F(RoundAtomsTest, HaveMoreCornersTheLargerTheyAre)
{
    const int ofComplexity = countIndices();
    dna->drawAtomsRound(true);
    EXPECT_TRUE(dna->areAtomsDrawnRound());
    lookFromAfar(1000);
    const int far = countIndices();
    EXPECT_GT(far, 0);
    EXPECT_LT(far, ofComplexity / 2);
    lookFromAfar(50);
    const int near = countIndices();
    EXPECT_GT(near, 4 * far);
    dna->drawAtomsRound(false);
    EXPECT_EQ(countIndices(), ofComplexity);
}

// At 200 pixels and 0.785 radians, an ångström is 241 / distance pixels.
TEST_F(RoundAtomsTest, AreOctahedraWhereTheyCoverTwoPixelsAtMost)
{
    const double twoPixels = 241 * SoNucleobase::ATOM_R_AMBER[0] / std::sqrt(2 / M_PI);
    const int indicesOfOctahedron = 3 * 8, basesOfDna = 16;
    int atoms = 0;
    for (int i = 0; i < basesOfDna; ++i)
        atoms += child<SoSwitch>(pair(1, i)->getChild(1), 0)->getNumChildren();
    dna->drawAtomsRound(true);
    lookFromAfar(float(1.1 * twoPixels));
    EXPECT_EQ(countIndices(), atoms * indicesOfOctahedron);
    lookFromAfar(float(0.9 * twoPixels));
    EXPECT_EQ(countIndices(), 3 * atoms * indicesOfOctahedron);
}

TEST_F(RoundAtomsTest, CoverAsMuchAsBeforeWhereTheyBecomeOctahedra)
{
    const double radius = 0.6; // few lie behind others
    for (int kind = 0; kind < 3; ++kind)
        dna->setAtomRadius(SoNucleobase::Atom(kind), radius);
    dna->drawAtomsRound(true);
    const double twoPixels = 241 * radius / std::sqrt(2 / M_PI);
    double covered[2] = {}; // in squares of lengths
    const int sides = 200;
    for (int side = 0; side < sides; ++side) { // spread evenly over all of them
        const double z = (2 * side + 1.0) / sides - 1, across = std::sqrt(1 - z * z);
        const SbVec3f direction(float(across * std::cos(2.4 * side)),
                                float(across * std::sin(2.4 * side)), float(z));
        for (bool octahedra : {false, true}) {
            const double distance = (octahedra ? 1.15 : 0.85) * twoPixels;
            camera->position = SbVec3f(0, 0, 12) + float(distance) * direction;
            camera->pointAt(SbVec3f(0, 0, 12));
            covered[octahedra] += distance * distance * draw().countOther(BLACK);
        }
    }
    EXPECT_NEAR(covered[true] / covered[false], 1, 0.05);
}

// Seen along the poles, where Coin's coarse spheres have 9 corners; 30 are nearly round here.
TEST_F(RoundAtomsTest, CoverAsMuchAsTheFinestSpheresOfCoin)
{
    IdealDna("G").give(*dna);
    dna->generate();
    camera->position = SbVec3f(0, 40, 0);
    camera->pointAt(SbVec3f(0, 0, 0), SbVec3f(0, 0, 1));
    camera->heightAngle = 0.25f;
    const int coarse = draw().countOther(BLACK);
    dna->drawAtomsRound(true);
    const int drawnRound = draw().countOther(BLACK);
    dna->drawAtomsRound(false);
    dna->setAtomComplexity(1);
    const int fine = draw().countOther(BLACK);
    EXPECT_LT(coarse, 0.96 * fine);
    EXPECT_NEAR(drawnRound, fine, 0.01 * fine);
}

TEST_F(RoundAtomsTest, AreThoseOfACopyToo)
{
    dna->drawAtomsRound(true);
    NodeRef<SoNode> copy(dna->copy());
    EXPECT_TRUE(static_cast<SoDNA*>(static_cast<SoNode*>(copy))->areAtomsDrawnRound());
}

// One behind the other, only what is seen is drawn

class LongDnaDrawingTest : public DnaDrawingTest
{
protected:
    static constexpr int PAIRS = 300;

    void SetUp() override
    {
        DnaDrawingTest::SetUp();
        // Not ten pairs a turn, for each is to be seen beside those in front.
        const IdealDna ideal(irregularSequence(PAIRS), 3.4, 34.3 * M_PI / 180);
        ASSERT_TRUE(ideal.give(*dna));
        dna->generate();
        camera->nearDistance = 1;
        camera->farDistance = 4000;
    }

    // Along the axis from a distance before its end, a little from the side.
    void lookAlong(float distance, float aside = 0)
    {
        const float end = 3.4f * PAIRS;
        camera->position = SbVec3f(aside, aside / 2, end + distance);
        camera->pointAt(SbVec3f(0, 0, end / 2), SbVec3f(0, 1, 0));
    }

    void lookInParallel()
    {
        auto* parallel = new SoOrthographicCamera;
        parallel->position = SbVec3f(1, 2, 3.4f * PAIRS + 20);
        parallel->height = 25;
        parallel->nearDistance = 1;
        parallel->farDistance = 4000;
        scene->replaceChild(scene->findChild(camera), parallel);
    }

    void expectSameButForAFewPixels()
    {
        const Picture drawn = draw();
        const Difference difference = compare(drawn, traverse());
        EXPECT_LE(difference.pixels, 8) << difference;
        EXPECT_LE(difference.strong, 2) << difference;
        EXPECT_GT(difference.covered, 1500);
    }
};

TEST_F(LongDnaDrawingTest, AtomsAreThoseTraversedButForAFewPixels)
{
    setUnlit();
    for (float aside : {0, 3, 20, 60}) {
        SCOPED_TRACE(aside);
        lookAlong(12, aside);
        expectSameButForAFewPixels();
    }
    lookAlong(-100); // from within
    expectSameButForAFewPixels();
    lookInParallel();
    expectSameButForAFewPixels();
}

TEST_F(LongDnaDrawingTest, BoxesAreThoseTraversedPixelForPixel)
{
    setUnlit();
    dna->showAtoms(false);
    for (bool bases : {false, true}) {
        dna->showBaseBoxes(bases);
        lookAlong(12, 1);
        expectSame();
        lookAlong(-100, 1);
        expectSame();
    }
    lookInParallel();
    expectSame();
}

TEST_F(LongDnaDrawingTest, WhatIsScaledAndTurnedIsThatTraversed)
{
    setUnlit();
    auto* transform = new SoTransform;
    transform->scaleFactor = SbVec3f(0.7f, 1.2f, -0.9f);
    transform->rotation = SbRotation(SbVec3f(0, 1, 0), float(M_PI));
    settings->addChild(transform);
    lookAlong(-70);
    expectSameButForAFewPixels();
}

TEST_F(LongDnaDrawingTest, WhatIsHiddenByTheNearestPairsIsNotDrawn)
{
    dna->showBasePairBoxes(false);
    lookAlong(12);
    EXPECT_LT(countDraws(), PAIRS / 6);
    camera->position = SbVec3f(2000, 0, 1.7f * PAIRS);
    camera->pointAt(SbVec3f(0, 0, 1.7f * PAIRS));
    EXPECT_EQ(countDraws(), 2 * PAIRS);
}

TEST_F(LongDnaDrawingTest, WhatIsHiddenButForADepthTestIsDrawn)
{
    dna->showBasePairBoxes(false);
    lookAlong(12);
    auto* depth = new SoDepthBuffer;
    depth->test = FALSE;
    settings->addChild(depth);
    EXPECT_EQ(countDraws(), 2 * PAIRS);
    settings->removeAllChildren();
    auto* plane = new SoClipPlane; // without the nearest
    plane->plane = SbPlane(SbVec3f(0, 0, -1), SbVec3f(0, 0, 3.4f * PAIRS - 40));
    settings->addChild(plane);
    EXPECT_EQ(countDraws(), 2 * PAIRS);
}

// Under the programs of a scene those of a kind are drawn together

class DnaUnderPrograms : public LongDnaDrawingTest
{
protected:
    NodeRef<SoSeparator> root{new SoSeparator};
    SoGeneralScene* lit = new SoGeneralScene;

    void SetUp() override
    {
        LongDnaDrawingTest::SetUp();
        root->renderCaching = SoSeparator::OFF;
        root->addChild(camera);
        root->addChild(lit);
        settings->addChild(place);
        lit->addShaded(settings);
        camera->position = SbVec3f(600, 20, 1.7f * PAIRS);
        camera->pointAt(SbVec3f(0, 0, 1.7f * PAIRS), SbVec3f(0, 0, 1));
    }

    void expectAsTraversed(int pixels)
    {
        const Picture drawn = draw(root);
        const Difference difference = compare(drawn, traverse(root));
        EXPECT_LE(difference.pixels, pixels) << difference;
        EXPECT_GT(difference.covered, 500);
    }
};

TEST_F(DnaUnderPrograms, AKindIsOneDraw)
{
    drawCount = placeCount = 0;
    draw(root);
    EXPECT_EQ(drawCount, 1 + 8);
    EXPECT_EQ(placeCount, 3 * PAIRS);
    dna->showAtoms(false);
    dna->showBaseBoxes(true);
    dna->showBasePairBoxes(false);
    drawCount = placeCount = 0;
    draw(root);
    EXPECT_EQ(drawCount, 8);
    EXPECT_EQ(placeCount, 2 * PAIRS);
}

TEST_F(DnaUnderPrograms, BoxesAreThoseTraversedPixelForPixel)
{
    dna->showAtoms(false);
    for (bool bases : {false, true}) {
        dna->showBaseBoxes(bases);
        expectAsTraversed(0);
    }
    auto* transform = new SoTransform;
    transform->scaleFactor = SbVec3f(0.7f, 1.2f, -0.9f);
    transform->rotation = SbRotation(SbVec3f(0, 1, 0), float(M_PI));
    settings->insertChild(transform, 0);
    lookAlong(-70);
    camera->nearDistance = 40;
    expectAsTraversed(0);
}

TEST_F(DnaUnderPrograms, AtomsAreThoseTraversedButForAFewPixels)
{
    expectAsTraversed(8);
    settings->insertChild(new SoScale, 0);
    for (float distance : {100, 200, 400}) {
        camera->position = SbVec3f(distance, 20, 1.7f * PAIRS);
        expectAsTraversed(8);
    }
}

TEST_F(DnaUnderPrograms, AChangedLightShowsInTheNextPicture)
{
    dna->showAtoms(false);
    const Picture first = draw(root);
    SoShaderParameterArray3f* directions;
    SoShaderParameterArray1f *intensities, *shininess;
    lit->getLightingParameters(directions, intensities, shininess);
    directions->value.set1Value(0, SbVec3f(0, 1, -0.1f));
    EXPECT_GT(compare(first, draw(root)).pixels, 100);
    expectAsTraversed(0);
}

TEST_F(DnaUnderPrograms, AProgramOfTheHostIsFollowed)
{
    const auto show = [&](const char* text, int draws) {
        auto* program = new SoShaderProgram;
        auto* vertex = new SoVertexShader;
        vertex->sourceType = SoShaderObject::GLSL_PROGRAM;
        vertex->sourceProgram = text;
        auto* fragment = new SoFragmentShader;
        fragment->sourceType = SoShaderObject::GLSL_PROGRAM;
        fragment->sourceProgram = "varying vec4 c; void main() { gl_FragColor = c; }";
        program->shaderObject.set1Value(0, vertex);
        program->shaderObject.set1Value(1, fragment);
        settings->insertChild(program, 0);
        drawCount = 0;
        draw(root);
        EXPECT_EQ(drawCount, draws) << text;
        dna->showAtoms(false);
        expectAsTraversed(0);
        dna->showAtoms(true);
        settings->removeChild(0);
    };
    show("#version 120\nvarying vec4 c; void main() { c = vec4(abs(gl_NormalMatrix[0]) + 0.2, 1);"
         "gl_Position = gl_ProjectionMatrix * (gl_ModelViewMatrix * gl_Vertex); }",
         9);
    show("varying vec4 c; void main() { c = gl_Color;"
         "gl_Position = gl_ModelViewProjectionMatrix * gl_Vertex; }",
         9);
    show("varying vec4 c; void main() { c = abs(gl_ModelViewMatrixInverse[0]) + 0.2;"
         "gl_Position = ftransform(); }",
         3 * PAIRS);
}

// What is not drawn from buffers is traversed

struct Setting
{
    const char* name;
    std::function<SoNode*()> make;
};

void PrintTo(const Setting& setting, std::ostream* stream) { *stream << setting.name; }

class DnaDrawingFallback : public DnaDrawingTest, public testing::WithParamInterface<Setting>
{
};

TEST_P(DnaDrawingFallback, IsTraversed)
{
    settings->addChild(GetParam().make());
    expectSame(false);
    settings->removeAllChildren();
    EXPECT_GT(countDraws(), 0);
}

namespace {

template <typename Node, typename Value>
std::function<SoNode*()> make(Value Node::*field, int value, bool override = false)
{
    return [=] {
        auto* node = new Node;
        (node->*field).setValue(value);
        node->setOverride(override);
        return node;
    };
}

SoNode* makeTransparentOverride()
{
    auto* material = new SoMaterial;
    material->transparency = 0.5f;
    material->setOverride(TRUE);
    return material;
}

SoNode* makeTexture()
{
    auto* texture = new SoTexture2;
    const unsigned char pixels[12] = {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 0};
    texture->image.setValue(SbVec2s(2, 2), 3, pixels);
    return texture;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(
    Settings, DnaDrawingFallback,
    testing::Values(Setting{"Lines", make(&SoDrawStyle::style, SoDrawStyle::LINES)},
                    Setting{"Points", make(&SoDrawStyle::style, SoDrawStyle::POINTS)},
                    Setting{"BoundingBoxes", make(&SoComplexity::type, SoComplexity::BOUNDING_BOX)},
                    Setting{"OverriddenComplexity",
                            make(&SoComplexity::type, SoComplexity::SCREEN_SPACE, true)},
                    Setting{"OverriddenTransparency", makeTransparentOverride},
                    Setting{"MaterialPerPart",
                            make(&SoMaterialBinding::value, SoMaterialBinding::PER_PART)},
                    Setting{"Texture", makeTexture}),
    testing::PrintToStringParamName());

// Changes show in the next picture

struct Change
{
    const char* name;
    std::function<void(SoDNA*)> apply;
    int draws = 40; // 8 pair boxes, 16 bases with atoms and box; without the boxes, bases alone
};

void PrintTo(const Change& change, std::ostream* stream) { *stream << change.name; }

class DnaDrawingChange : public DnaDrawingTest, public testing::WithParamInterface<Change>
{
};

TEST_P(DnaDrawingChange, ShowsInTheNextPicture)
{
    setUnlit();
    for (int kind = 0; kind < 3; ++kind)
        dna->setAtomRadius(SoNucleobase::Atom(kind), 0.9);
    dna->showBaseBoxes(true);
    const Picture first = draw();
    GetParam().apply(dna);
    drawCount = 0;
    const Picture drawn = draw();
    EXPECT_EQ(drawCount, GetParam().draws);
    EXPECT_GT(compare(first, drawn).strong, 20);
    const Difference difference = compare(drawn, traverse());
    EXPECT_LE(difference.pixels, 2) << difference; // as for atoms, unlit
}

namespace {

SoGroup* childGroup(SoNode* node, int index)
{
    return static_cast<SoGroup*>(static_cast<SoGroup*>(node)->getChild(index));
}

SoNode* firstBase(SoDNA* dna) { return childGroup(childGroup(childGroup(dna, 1), 0), 1); }

SoTransform* transformOf(SoDNA* dna, int which, int i)
{
    return static_cast<SoTransform*>(childGroup(childGroup(dna, which), i)->getChild(0));
}

SoNode* makeTranslation()
{
    auto* translation = new SoTranslation;
    translation->translation = SbVec3f(3, 2, 1);
    return translation;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(
    Changes, DnaDrawingChange,
    testing::Values(
        Change{"AtomColour",
               [](SoDNA* dna) { dna->setAtomColour(SoNucleobase::CARBON, Vector(0, 1, 0)); }},
        Change{"AtomRadius", [](SoDNA* dna) { dna->setAtomRadius(SoNucleobase::CARBON, 2); }},
        Change{"AtomComplexity", [](SoDNA* dna) { dna->setAtomComplexity(0); }},
        Change{"NoComplexity",
               [](SoDNA* dna) { dna->setAtomComplexity(std::numeric_limits<double>::quiet_NaN()); },
               0},
        Change{"NoPairBoxes",
               [](SoDNA* dna) {
                   dna->showBaseBoxes(false);
                   dna->showBasePairBoxes(false);
               },
               16},
        Change{"IgnoredPairBoxes",
               [](SoDNA* dna) {
                   dna->showBaseBoxes(false);
                   static_cast<SoSwitch*>(dna->getChild(0))->whichChild.setIgnored(TRUE);
               },
               16}, // the bases' own
        Change{"NoBaseBoxes", [](SoDNA* dna) { dna->showBaseBoxes(false); }, 24},
        Change{"SmallerPyrimidines",
               [](SoDNA* dna) {
                   dna->showBasePairBoxes(false);
                   dna->setSmallerPyr(true);
               },
               32},
        Change{"BaseColour", [](SoDNA* dna) { dna->setBaseColour('G', Vector(0, 1, 1)); }},
        Change{"PairColour",
               [](SoDNA* dna) {
                   dna->showBaseBoxes(false);
                   dna->setBasepairColour(Vector(0, 1, 1));
               },
               24},
        Change{"BoxHeight", [](SoDNA* dna) { dna->setBoxHeight(0.3); }},
        Change{"ATransform",
               [](SoDNA* dna) { transformOf(dna, 1, 5)->translation = SbVec3f(9, 0, 9); }},
        Change{"AScaledPairBox",
               [](SoDNA* dna) { transformOf(dna, 0, 3)->scaleFactor = SbVec3f(1, 3, 1); }},
        Change{"AnotherTransform",
               [](SoDNA* dna) {
                   childGroup(childGroup(dna, 1), 3)->replaceChild(0, transformOf(dna, 1, 8));
               }},
        Change{"FewerPairs",
               [](SoDNA* dna) {
                   IdealDna("GG").give(*dna);
                   dna->generate();
               },
               10},
        Change{"ARemovedBase", [](SoDNA* dna) { childGroup(dna, 1)->removeChild(4); }, 38},
        Change{"TranslatedBase",
               [](SoDNA* dna) {
                   static_cast<SoGroup*>(firstBase(dna))->insertChild(makeTranslation(), 0);
               }},
        Change{"ARotationInABase",
               [](SoDNA* dna) {
                   auto* rotation = new SoRotationXYZ;
                   rotation->angle = 1;
                   static_cast<SoGroup*>(firstBase(dna))->insertChild(rotation, 0);
               },
               28},
        Change{"AScaleInAPair",
               [](SoDNA* dna) {
                   auto* scale = new SoScale;
                   scale->scaleFactor = SbVec3f(2, 2, 2);
                   childGroup(childGroup(dna, 1), 0)->insertChild(scale, 1);
               },
               32},
        Change{
            "ATransparentBase",
            [](SoDNA* dna) {
                dna->showBasePairBoxes(false);
                static_cast<SoMaterial*>(childGroup(firstBase(dna), 1)->getChild(0))->transparency =
                    0.5f;
            },
            28},
        Change{"OneAtomOnly",
               [](SoDNA* dna) {
                   auto* atoms = static_cast<SoSwitch*>(childGroup(firstBase(dna), 0));
                   atoms->whichChild = 0;
               },
               28}),
    testing::PrintToStringParamName());

TEST_F(DnaDrawingTest, IsDrawnFromBuffersAgainOnceTheGraphIsUnderstoodAgain)
{
    dna->showAtoms(false);
    EXPECT_EQ(countDraws(), 8);
    NodeRef<SoCube> extra(new SoCube);
    pair(1, 2)->addChild(extra);
    EXPECT_EQ(countDraws(), 0);
    pair(1, 2)->removeChild(extra);
    EXPECT_EQ(countDraws(), 8);
    dna->addChild(extra);
    EXPECT_EQ(countDraws(), 0);
    dna->showAtoms(true); // the bases are drawn from their own
    EXPECT_EQ(countDraws(), 16);
}

// Caches and contexts

TEST_F(DnaDrawingTest, IsSeenInACacheThatRecords)
{
    SoSeparator::setNumRenderCaches(2);
    setUnlit();
    place->renderCaching = SoSeparator::ON;
    dna->showAtoms(false);
    Picture first = draw();
    for (int frame = 0; frame < 4; ++frame) {
        if (frame == 2)
            dna->setBasepairColour(Vector(0, 1, 1));
        drawCount = 0;
        const Picture next = renderPicture(*renderer, scene); // from the list, once there is one
        EXPECT_TRUE(frame != 0 || drawCount == 0);            // recorded by traversal
        const Difference difference = compare(first, next);
        EXPECT_EQ(difference.pixels > 0, frame == 2) << frame << ": " << difference;
        first = next;
    }
}

TEST_F(DnaDrawingTest, WhatCoinKeptOfFormerPairsIsNotDrawn)
{
    SoSeparator::setNumRenderCaches(2);
    auto* lines = new SoDrawStyle;
    lines->style = SoDrawStyle::LINES;
    settings->addChild(lines); // traversed, then
    Picture first;
    for (int frame = 0; frame < 6; ++frame) // often enough for Coin to make lists
        first = draw();
    const IdealDna bent("GGTTACGA", 3, 1);
    ASSERT_TRUE(bent.give(*dna));
    dna->generate();
    const Picture again = draw();
    EXPECT_GT(compare(first, again).strong, 100);
    NodeRef<SoDNA> fresh(new SoDNA);
    ASSERT_TRUE(bent.give(*fresh));
    fresh->generate();
    place->replaceChild(0, static_cast<SoNode*>(fresh));
    EXPECT_EQ(compare(again, renderPicture(*renderer, scene)).pixels, 0);
}

TEST_F(DnaDrawingTest, FollowingShapesHaveTheirOwnColours)
{
    auto* material = new SoMaterial;
    material->diffuseColor = SbColor(0, 1, 0);
    scene->insertChild(material, 0); // set before, sent after the DNA
    auto* translation = new SoTranslation;
    translation->translation = SbVec3f(8, 0, 12);
    scene->addChild(translation);
    scene->addChild(new SoCube);
    dna->showAtoms(false);
    expectSame();
    setUnlit();
    dna->showAtoms(true);
    const Picture drawn = draw();
    EXPECT_LE(compare(drawn, traverse()).pixels, 2);
}

TEST_F(DnaDrawingTest, EachContextHasItsBuffersAndANewOneAfterItsLoss)
{
    dna->showAtoms(false);
    setUnlit();
    const Picture expected = draw();
    auto other = std::make_unique<SoOffscreenRenderer>(SbViewportRegion(SIZE, SIZE));
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(compare(expected, renderPicture(*other, scene)).pixels, 0);
        EXPECT_EQ(compare(expected, renderPicture(*renderer, scene)).pixels, 0);
        if (i == 0)
            renderer.reset(new SoOffscreenRenderer(SbViewportRegion(SIZE, SIZE)));
        if (i == 1)
            other = std::make_unique<SoOffscreenRenderer>(SbViewportRegion(SIZE, SIZE));
    }
    dna->setBasepairColour(Vector(1, 0, 1));
    const Picture changed = renderPicture(*renderer, scene);
    EXPECT_GT(compare(expected, changed).pixels, 100);
    EXPECT_EQ(compare(changed, renderPicture(*other, scene)).pixels, 0);
}

TEST_F(DnaDrawingTest, ADnaThatGoesLeavesTheOthersPictureAlone)
{
    const Picture expected = draw();
    for (int i = 0; i < 3; ++i) {
        NodeRef<SoDNA> shortLived(new SoDNA);
        ASSERT_TRUE(IdealDna("AT").give(*shortLived));
        shortLived->generate();
        place->addChild(shortLived);
        EXPECT_GT(compare(expected, draw()).covered, 500);
        place->removeChild(1);
    }
    EXPECT_EQ(compare(expected, draw()).pixels, 0);
}
