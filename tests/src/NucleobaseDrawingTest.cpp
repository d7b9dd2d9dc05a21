// SPDX-License-Identifier: GPL-3.0-or-later
#include <array>
#include <cmath>
#include <functional>
#include <ostream>
#include <vector>

#include <GL/gl.h>
#include <GL/glext.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/nodes/SoCallback.h>
#include <Inventor/nodes/SoComplexity.h>
#include <Inventor/nodes/SoCube.h>
#include <Inventor/nodes/SoDrawStyle.h>
#include <Inventor/nodes/SoIndexedFaceSet.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoRotationXYZ.h>
#include <Inventor/nodes/SoSwitch.h>
#include <Inventor/nodes/SoTransform.h>
#include <Inventor/nodes/SoTranslation.h>
#include <Inventor/nodes/SoVertexProperty.h>
#include <SoNucleobase.h>
#include <global.h>

#include "support/DrawingComparison.h"

using Vector = algebra3d::Vector3<double>;

class NucleobaseDrawingTest : public DrawingComparison
{
protected:
    NodeRef<SoNucleobase> base{new SoNucleobase('G', false)};

    void SetUp() override
    {
        lookFrom(0);
        compareDrawing(base);
    }
    void lookFrom(int side)
    {
        const float angle = 0.7f * float(side) + 0.3f;
        camera->position = SbVec3f(15 * std::cos(angle), 15 * std::sin(angle), 12);
        camera->pointAt(SbVec3f(0, -2, 0));
        camera->nearDistance = 2;
    }
};

TEST_F(NucleobaseDrawingTest, AtomsAreThoseTraversedButForAFewPixels)
{
    for (bool lit : {true, false}) {
        if (!lit)
            setUnlit();
        for (int side = 0; side < 6; ++side) {
            lookFrom(side);
            const Difference difference = compare(draw(), traverse());
            EXPECT_LE(difference.pixels, 8) << difference;
            EXPECT_LE(difference.strong, 2) << difference;
            EXPECT_GT(difference.covered, 4000);
        }
    }
}

TEST_F(NucleobaseDrawingTest, TheBoxIsThatTraversedPixelForPixel)
{
    setUnlit();
    base->showAtoms(false);
    base->showBox(true);
    for (int side = 0; side < 6; ++side) {
        lookFrom(side);
        expectSame();
    }
}

// A square of four colours, and one across it.
SoIndexedFaceSet* makeQuads()
{
    auto* vertices = new SoVertexProperty;
    vertices->normalBinding = SoVertexProperty::PER_VERTEX_INDEXED;
    vertices->materialBinding = SoVertexProperty::PER_VERTEX_INDEXED;
    const float square[4][2] = {{-3, -3}, {3, -3}, {3, 3}, {-3, 3}};
    const unsigned int colours[] = {0xff0000ff, 0x00ff00ff, 0x0000ffff, 0xffff00ff};
    auto* faces = new SoIndexedFaceSet;
    for (int i = 0; i < 8; ++i) {
        const float* place = square[i % 4];
        vertices->vertex.set1Value(i, i < 4 ? SbVec3f(place[0], place[1], 0)
                                            : SbVec3f(0, place[0], place[1]));
        vertices->normal.set1Value(i, i < 4 ? SbVec3f(0, 0, 1) : SbVec3f(1, 0, 0));
        vertices->orderedRGBA.set1Value(i, colours[i % 4]);
        faces->coordIndex.set1Value(i + i / 4, i);
    }
    faces->coordIndex.set1Value(4, SO_END_FACE_INDEX);
    faces->coordIndex.set1Value(9, SO_END_FACE_INDEX);
    faces->vertexProperty = vertices;
    return faces;
}

TEST_F(NucleobaseDrawingTest, QuadrilateralsOfAHostAreThoseTraversed)
{
    base->showAtoms(false);
    auto* own = new SoSeparator;
    own->addChild(createMaterial({1, 1, 1}, {1, 1, 1}, {}));
    auto* aside = new SoTranslation;
    aside->translation = SbVec3f(1, -1, 0.5f);
    own->addChild(aside);
    SoIndexedFaceSet* const faces = makeQuads();
    own->addChild(faces);
    base->addChild(own);
    EXPECT_EQ(countDraws(), 1);
    setUnlit();
    // Coin's override would give them all one colour; a plain separator draws them as they are.
    NodeRef<SoSeparator> plain(new SoSeparator);
    plain->addChild(camera);
    plain->addChild(settings);
    plain->addChild(own);
    for (int side = 0; side < 6; ++side) {
        lookFrom(side);
        const Difference difference = compare(draw(), draw(plain));
        EXPECT_LE(difference.strong, 8) << difference;
        EXPECT_GT(difference.covered, 2000);
    }
    // What is transparent, or has another corner, is traversed.
    auto* vertices = static_cast<SoVertexProperty*>(faces->vertexProperty.getValue());
    vertices->orderedRGBA.set1Value(2, 0xff000080);
    EXPECT_EQ(countDraws(), 0);
    vertices->orderedRGBA.set1Value(2, 0xff0000ff);
    EXPECT_EQ(countDraws(), 1);
    faces->coordIndex.set1Value(9, 4);
    EXPECT_EQ(countDraws(), 0);
}

TEST_F(NucleobaseDrawingTest, TheAtomsAreOneDrawAndTheBoxIsOne)
{
    EXPECT_EQ(countDraws(), 1);
    base->showBox(true);
    EXPECT_EQ(countDraws(), 2);
    base->showAtoms(false);
    EXPECT_EQ(countDraws(), 1);
    base->showBox(false);
    EXPECT_EQ(countDraws(), 0);
}

TEST_F(NucleobaseDrawingTest, EachPlaceIsOneDraw)
{
    setUnlit();
    base->showAtoms(false);
    base->showBox(true);
    NodeRef<SoSeparator> row(new SoSeparator);
    row->addChild(camera);
    auto* aside = new SoTransform;
    aside->translation = SbVec3f(-2, 1, -5);
    aside->rotation = SbRotation(SbVec3f(0, 0, 1), 0.5f);
    for (int i = 0; i < 3; ++i) {
        row->addChild(settings);
        row->addChild(place);
        row->addChild(aside);
    }
    drawCount = 0;
    const Picture drawn = draw(row);
    EXPECT_EQ(drawCount, 3);
    const Difference difference = compare(drawn, traverse(row));
    EXPECT_EQ(difference.pixels, 0) << difference;
    EXPECT_GT(compare(drawn, draw()).strong, 500); // of one alone
}

TEST_F(NucleobaseDrawingTest, OfNoLetterNothingIsDrawn)
{
    NodeRef<SoNucleobase> none(new SoNucleobase('X', true));
    place->addChild(none);
    EXPECT_EQ(countDraws(), 1);
    place->removeChild(0);
    drawCount = 0;
    const Picture picture = renderPicture(*renderer, scene);
    EXPECT_EQ(picture.countOther(BLACK), 0);
    EXPECT_EQ(drawCount, 0);
}

TEST_F(NucleobaseDrawingTest, OutOfViewNothingIsDrawn)
{
    SoGetBoundingBoxAction(renderer->getViewportRegion()).apply(base); // Coin has the box then
    camera->pointAt(SbVec3f(60, 40, 80));
    EXPECT_EQ(countDraws(), 0);
}

TEST_F(NucleobaseDrawingTest, WhatTheStateAsksForIsTraversed)
{
    auto* lines = new SoDrawStyle;
    lines->style = SoDrawStyle::LINES;
    settings->addChild(lines);
    expectSame(false);
    settings->removeAllChildren();
    auto* boxes = new SoComplexity;
    boxes->type = SoComplexity::BOUNDING_BOX;
    settings->addChild(boxes);
    expectSame(false);
    settings->removeAllChildren();
    EXPECT_EQ(countDraws(), 1);
}

TEST_F(NucleobaseDrawingTest, ASwitchWhoseChoiceIsIgnoredShowsNothing)
{
    base->showBox(true);
    for (int part = 0; part < 2; ++part) {
        auto* parts = static_cast<SoSwitch*>(base->getChild(part));
        parts->whichChild.setIgnored(TRUE);
        const Difference difference = compare(draw(), traverse());
        EXPECT_EQ(difference.strong, 0) << difference;
        EXPECT_GT(difference.covered, 500);
        parts->whichChild.setIgnored(FALSE);
    }
}

TEST_F(NucleobaseDrawingTest, APartThatIsNotItsOwnIsTraversed)
{
    base->addChild(new SoRotationXYZ);
    EXPECT_EQ(countDraws(), 0);
    EXPECT_GT(compare(draw(), traverse()).covered, 4000);
    base->removeChild(2);
    EXPECT_EQ(countDraws(), 1);
}

TEST_F(NucleobaseDrawingTest, IsTraversedWhereACacheRecords)
{
    SoSeparator::setNumRenderCaches(2);
    setUnlit();
    base->showAtoms(false);
    base->showBox(true);
    place->renderCaching = SoSeparator::ON;
    Picture before = draw();
    for (int frame = 0; frame < 4; ++frame) {
        if (frame == 2)
            base->setBoxColour(Vector(0, 1, 0));
        drawCount = 0;
        const Picture next = renderPicture(*renderer, scene); // from the list, once there is one
        EXPECT_TRUE(frame != 0 || drawCount == 0);            // recorded by traversal
        EXPECT_EQ(compare(before, next).pixels > 0, frame == 2);
        before = next;
    }
}

TEST_F(NucleobaseDrawingTest, IsRecordedOutOfViewToo)
{
    SoSeparator::setNumRenderCaches(2);
    place->renderCaching = SoSeparator::ON;
    auto* aside = new SoTranslation;
    aside->translation = SbVec3f(40, 0, 0);
    place->addChild(aside);
    place->addChild(new SoCube);
    SoGetBoundingBoxAction(renderer->getViewportRegion()).apply(scene); // Coin has the boxes then
    camera->pointAt(aside->translation.getValue());
    for (int frame = 0; frame < 4; ++frame) {
        const Picture cube = renderPicture(*renderer, scene);
        EXPECT_LT(cube.countOther(BLACK), 1000);
    }
    lookFrom(0);
    drawCount = 0;
    const Picture picture = renderPicture(*renderer, scene);
    EXPECT_EQ(drawCount, 0); // from the list
    EXPECT_GT(picture.countOther(BLACK), 4000);
}

TEST_F(NucleobaseDrawingTest, FollowingShapesHaveTheirOwnColours)
{
    auto* material = new SoMaterial;
    material->diffuseColor = SbColor(0, 1, 0);
    scene->insertChild(material, 0); // set before, sent after the base
    auto* translation = new SoTranslation;
    translation->translation = SbVec3f(5, 0, 0);
    scene->addChild(translation);
    scene->addChild(new SoCube);
    setUnlit();
    const Difference difference = compare(draw(), traverse());
    EXPECT_LE(difference.pixels, 2) << difference;
}

TEST_F(NucleobaseDrawingTest, IsOpaqueAfterShapesThatAreAdded)
{
    renderer->getGLRenderAction()->setTransparencyType(SoGLRenderAction::ADD);
    auto* glass = new SoMaterial;
    glass->transparency = 0.5f;
    settings->addChild(glass);
    auto* behind = new SoTranslation;
    behind->translation = SbVec3f(0, 0, -4);
    settings->addChild(behind);
    auto* pane = new SoCube;
    pane->width = pane->height = 30;
    settings->addChild(pane);
    settings->addChild(new SoMaterial);
    const Difference difference = compare(draw(), traverse());
    EXPECT_LE(difference.strong, 2) << difference;
    EXPECT_EQ(countDraws(), 1);
}

TEST_F(NucleobaseDrawingTest, LeavesOpenGLAsItWas)
{
    using Facts = std::array<GLint, 8>;
    const auto note = [](void* facts, SoAction* action) {
        if (!action->isOfType(SoGLRenderAction::getClassTypeId()))
            return;
        Facts now{};
        const GLenum asked[] = {GL_ARRAY_BUFFER_BINDING, GL_ELEMENT_ARRAY_BUFFER_BINDING,
                                GL_VERTEX_ARRAY,         GL_NORMAL_ARRAY,
                                GL_COLOR_ARRAY,          GL_COLOR_MATERIAL_PARAMETER,
                                GL_MODELVIEW_STACK_DEPTH};
        for (std::size_t i = 0; i < std::size(asked); ++i)
            glGetIntegerv(asked[i], &now[i]);
        now.back() = GLint(glGetError());
        static_cast<std::vector<Facts>*>(facts)->push_back(now);
    };
    std::vector<Facts> facts;
    auto* callback = new SoCallback;
    callback->setCallback(note, &facts);
    settings->addChild(callback);
    scene->addChild(callback);
    for (bool atoms : {true, false}) {
        for (bool box : {true, false}) {
            base->showAtoms(atoms);
            base->showBox(box);
            facts.clear();
            EXPECT_EQ(countDraws(), int(atoms) + int(box));
            ASSERT_EQ(facts.size(), 2u);
            EXPECT_EQ(facts[1], facts[0]) << atoms << box;
        }
    }
}

TEST_F(NucleobaseDrawingTest, EachContextHasItsBuffersAndANewOneAfterItsLoss)
{
    const Picture expected = draw();
    SoOffscreenRenderer other(renderer->getViewportRegion());
    EXPECT_EQ(compare(expected, renderPicture(other, scene)).pixels, 0);
    renderer = std::make_unique<SoOffscreenRenderer>(other.getViewportRegion());
    EXPECT_EQ(compare(expected, renderPicture(*renderer, scene)).pixels, 0);
    base->setAtomRadius(SoNucleobase::NITROGEN, 1);
    const Picture changed = renderPicture(*renderer, scene);
    EXPECT_GT(compare(expected, changed).strong, 50);
    EXPECT_EQ(compare(changed, renderPicture(other, scene)).pixels, 0);
}

// Changes show in the next picture

struct BaseChange
{
    const char* name;
    std::function<void(SoNucleobase*)> apply;
};

void PrintTo(const BaseChange& change, std::ostream* stream) { *stream << change.name; }

class NucleobaseDrawingChange : public NucleobaseDrawingTest,
                                public testing::WithParamInterface<BaseChange>
{
};

TEST_P(NucleobaseDrawingChange, ShowsInTheNextPicture)
{
    setUnlit();
    for (int kind = 0; kind < 3; ++kind)
        base->setAtomRadius(SoNucleobase::Atom(kind), 0.9);
    base->showBox(true);
    const Picture first = draw();
    GetParam().apply(base);
    const Picture drawn = draw();
    EXPECT_GT(compare(first, drawn).strong, 20);
    const Difference difference = compare(drawn, traverse());
    EXPECT_LE(difference.pixels, 2) << difference;
}

INSTANTIATE_TEST_SUITE_P(
    Changes, NucleobaseDrawingChange,
    testing::Values(
        BaseChange{
            "AtomColour",
            [](SoNucleobase* base) { base->setAtomColour(SoNucleobase::OXYGEN, Vector(0, 1, 0)); }},
        BaseChange{"AtomRadius",
                   [](SoNucleobase* base) { base->setAtomRadius(SoNucleobase::CARBON, 1.5); }},
        BaseChange{"AtomComplexity", [](SoNucleobase* base) { base->setAtomComplexity(0); }},
        BaseChange{"NoAtoms", [](SoNucleobase* base) { base->showAtoms(false); }},
        BaseChange{"NoBox", [](SoNucleobase* base) { base->showBox(false); }},
        BaseChange{"BoxColour", [](SoNucleobase* base) { base->setBoxColour(Vector(0, 1, 1)); }},
        BaseChange{"BoxHeight", [](SoNucleobase* base) { base->setBoxHeight(3); }},
        BaseChange{"SmallerBox", [](SoNucleobase* base) { base->setSmallerPyr(true); }}),
    testing::PrintToStringParamName());
