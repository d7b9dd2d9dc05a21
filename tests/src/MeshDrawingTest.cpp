// SPDX-License-Identifier: GPL-3.0-or-later
// Rods and birods look the same drawn from buffers as drawn by their meshes, which draw where
// there are none: that is what they are compared with.
#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <numeric>
#include <set>
#include <string>

#include <GL/gl.h>
#include <Inventor/SoOffscreenRenderer.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/nodes/SoBaseColor.h>
#include <Inventor/nodes/SoCallback.h>
#include <Inventor/nodes/SoClipPlane.h>
#include <Inventor/nodes/SoComplexity.h>
#include <Inventor/nodes/SoCube.h>
#include <Inventor/nodes/SoDirectionalLight.h>
#include <Inventor/nodes/SoDrawStyle.h>
#include <Inventor/nodes/SoLightModel.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoMaterialBinding.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoPackedColor.h>
#include <Inventor/nodes/SoPerspectiveCamera.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoShapeHints.h>
#include <Inventor/nodes/SoTexture2.h>
#include <Inventor/nodes/SoTranslation.h>
#include <Inventor/nodes/SoTransparencyType.h>
#include <SoBirod.h>
#include <SoGeneralScene.h>
#include <SoRod.h>

#include "support/CoinEnvironment.h"
#include "support/RecordingGL.h"
#include "support/renderPicture.h"

using Vectors = std::vector<algebra3d::Vector3<double>>;
using Quaternions = std::vector<algebra3d::Quaternion<double>>;

namespace {

const int SIZE = 150;
const int MATERIALS = 200; // more than any of the nodes has rows

int count(const RecordedCalls& calls, const char* name)
{
    return int(std::count_if(calls.begin(), calls.end(),
                             [name](const GLCall& call) { return call.name == name; }));
}

// Buffers go by their names.
std::multiset<float> namesIn(const RecordedCalls& calls, const char* name)
{
    std::multiset<float> names;
    for (const GLCall& call : calls) {
        if (call.name == name)
            names.insert(call.arguments.begin(), call.arguments.end());
    }
    return names;
}

SoRod* makeRod()
{
    auto* rod = new SoRod(0.25, 0.8, 8, 4, true, true, false);
    const algebra3d::Quaternion<double> turned(0, 0, std::sin(0.4), std::cos(0.4));
    rod->setData({{-0.2, 0, -1.5}, {0.3, 0.2, 0}, {0, 0.1, 1.5}}, {{}, turned, turned});
    return rod;
}

SoBirod* makeBirod()
{
    auto* birod = new SoBirod(0.2, 0.15, 0.5, 0.3, 0.4, 0.3, 6, 3, true, true, true, true, false);
    const Quaternions straight(3);
    birod->setData({{0, 0, -1.5}, {0, 0.2, 0}, {0, 0, 1.5}}, straight,
                   {{0.2, 0, -1.5}, {0.3, 0.2, 0}, {0.2, 0, 1.5}}, straight,
                   {{-0.4, 0, -1.5}, {-0.3, 0.2, 0}, {-0.4, 0, 1.5}}, straight);
    return birod;
}

SoMaterial* makeMaterials(int number, int transparencies = 0)
{
    auto* material = new SoMaterial;
    for (int i = 0; i < number; ++i)
        material->diffuseColor.set1Value(i, float(i % 7) / 6, float(i % 5) / 4, float(i % 3) / 2);
    for (int i = 0; i < transparencies; ++i)
        material->transparency.set1Value(i, 0.3f + 0.5f * float(i % 4) / 3);
    return material;
}

SoMaterialBinding* makeBinding(SoMaterialBinding::Binding value)
{
    auto* binding = new SoMaterialBinding;
    binding->value = value;
    return binding;
}

template <typename Node, typename Value>
SoNode* make(Value Node::*field, int value)
{
    auto* node = new Node;
    (node->*field).setValue(value);
    return node;
}

SoNode* makeTexture()
{
    const unsigned char pixels[] = {255, 90, 90, 90, 255, 90, 90, 90, 255, 255, 255, 90};
    auto* texture = new SoTexture2;
    texture->image.setValue(SbVec2s(2, 2), 3, pixels);
    return texture;
}

SoNode* makeLines()
{
    auto* style = new SoDrawStyle;
    style->style = SoDrawStyle::LINES;
    style->linePattern = 0x0f3f;
    return style;
}

SoNode* makePackedColours(int number)
{
    auto* colours = new SoPackedColor;
    for (int i = 0; i < number; ++i)
        colours->orderedRGBA.set1Value(i, 0x80a000ffu + 0x01050b00u * unsigned(i % 9));
    return colours;
}

struct Setting
{
    std::string name;
    std::function<std::vector<SoNode*>()> make;
    bool fromBuffers = true;
};

void PrintTo(const Setting& setting, std::ostream* stream) { *stream << setting.name; }

std::vector<Setting> allSettings()
{
    using Binding = SoMaterialBinding;
    std::vector<Setting> settings = {
        {"OneMaterial", [] { return std::vector<SoNode*>{makeMaterials(1)}; }},
        {"TwoMaterials", [] { return std::vector<SoNode*>{makeMaterials(2)}; }},
        {"BaseColours",
         [] {
             auto* colours = new SoBaseColor;
             colours->rgb.set1Value(0, SbColor(1, 0, 0));
             colours->rgb.set1Value(1, SbColor(0, 1, 0));
             return std::vector<SoNode*>{colours};
         }},
        {"PackedColours",
         [] {
             return std::vector<SoNode*>{makePackedColours(MATERIALS),
                                         makeBinding(Binding::PER_VERTEX)};
         }},
        {"Unlit",
         [] {
             return std::vector<SoNode*>{makeMaterials(2),
                                         make(&SoLightModel::model, SoLightModel::BASE_COLOR)};
         }},
        {"Textured", [] { return std::vector<SoNode*>{makeTexture()}; }},
        {"TexturedPerVertex",
         [] {
             return std::vector<SoNode*>{makeTexture(), makeMaterials(MATERIALS),
                                         makeBinding(Binding::PER_VERTEX)};
         }},
        {"Lines",
         [] {
             return std::vector<SoNode*>{makeLines(), makeMaterials(MATERIALS),
                                         makeBinding(Binding::PER_VERTEX)};
         }},
        {"Points",
         [] {
             return std::vector<SoNode*>{make(&SoDrawStyle::style, SoDrawStyle::POINTS),
                                         makeMaterials(2)};
         }},
        {"BackFacesCulled",
         [] {
             auto* hints = new SoShapeHints;
             hints->vertexOrdering = SoShapeHints::COUNTERCLOCKWISE;
             hints->shapeType = SoShapeHints::SOLID;
             return std::vector<SoNode*>{hints};
         }},
        {"BoundingBox",
         [] { return std::vector<SoNode*>{make(&SoComplexity::type, SoComplexity::BOUNDING_BOX)}; },
         false},
    };
    const struct
    {
        const char* name;
        Binding::Binding value;
    } bindings[] = {{"Overall", Binding::OVERALL},
                    {"PerFace", Binding::PER_FACE},
                    {"PerVertex", Binding::PER_VERTEX},
                    {"PerVertexIndexed", Binding::PER_VERTEX_INDEXED}};
    for (const auto& [name, binding] : bindings) {
        // The last number: of fewer materials than there are rows.
        for (int number : {MATERIALS, 5}) {
            settings.push_back(
                {name + std::to_string(number) + "Materials", [binding = binding, number] {
                     return std::vector<SoNode*>{makeMaterials(number), makeBinding(binding)};
                 }});
        }
    }
    const struct
    {
        const char* name;
        SoTransparencyType::Type type;
        bool fromBuffers;
    } types[] = {
        {"ScreenDoor", SoTransparencyType::SCREEN_DOOR, true},
        {"Add", SoTransparencyType::ADD, true},
        {"DelayedAdd", SoTransparencyType::DELAYED_ADD, true},
        {"Blend", SoTransparencyType::BLEND, true},
        {"DelayedBlend", SoTransparencyType::DELAYED_BLEND, true},
        {"SortedBlend", SoTransparencyType::SORTED_OBJECT_BLEND, true},
        {"SortedTriangles", SoTransparencyType::SORTED_OBJECT_SORTED_TRIANGLE_BLEND, false},
        {"Opaque", SoTransparencyType::NONE, true}};
    for (const auto& [name, type, fromBuffers] : types) {
        for (int number : {1, 2, MATERIALS}) {
            settings.push_back({name + std::to_string(number) + "Transparencies",
                                [type = type, number] {
                                    std::vector<SoNode*> nodes = {
                                        make(&SoTransparencyType::value, type),
                                        makeMaterials(number, number)};
                                    if (number == MATERIALS)
                                        nodes.push_back(makeBinding(Binding::PER_VERTEX));
                                    return nodes;
                                },
                                fromBuffers});
        }
    }
    return settings;
}

} // namespace

class MeshDrawingTest : public CoinTest
{
protected:
    static void SetUpTestSuite() { initScenesOnce(); }

    NodeRef<SoSeparator> scene{new SoSeparator};
    NodeRef<SoPerspectiveCamera> camera{new SoPerspectiveCamera};
    SoGroup* settings = new SoGroup;             // for what a test puts before the shape
    NodeRef<SoSeparator> place{new SoSeparator}; // of the shape
    SoShape* shape = nullptr;
    std::unique_ptr<SoOffscreenRenderer> renderer = makeRenderer();
    RecordedCalls calls; // of the last frame

    void SetUp() override
    {
        camera->position = SbVec3f(3, 2, 3);
        camera->pointAt(SbVec3f(0, 0.1f, 0));
        camera->nearDistance = 1;
        camera->farDistance = 20;
        scene->renderCaching = SoSeparator::OFF;
        place->renderCaching = SoSeparator::OFF;
        scene->addChild(camera);
        auto* light = new SoDirectionalLight;
        light->direction = SbVec3f(-0.3f, -0.5f, -0.8f);
        scene->addChild(light);
        scene->addChild(settings);
        scene->addChild(place);
        show(makeRod());
    }

    static std::unique_ptr<SoOffscreenRenderer> makeRenderer()
    {
        return std::make_unique<SoOffscreenRenderer>(SbViewportRegion(SIZE, SIZE));
    }
    void show(SoShape* newShape)
    {
        place->removeAllChildren();
        shape = newShape;
        place->addChild(shape);
    }

    Picture draw(SoOffscreenRenderer& with)
    {
        RecordingGL::start();
        Picture picture = renderPicture(with, scene);
        calls = RecordingGL::stop();
        return picture;
    }
    Picture draw() { return draw(*renderer); }
    Picture drawChanged()
    {
        shape->touch();
        return draw();
    }
    // Drawn vertex by vertex by its meshes.
    Picture drawByMeshes()
    {
        const RecordingGL::WithoutBuffers without;
        Picture picture = draw();
        EXPECT_EQ(draws(), 0);
        return picture;
    }

    int draws() const { return count(calls, "glDrawElements"); }
    int vertices() const { return count(calls, "glVertex3f"); }
    double indices() const
    {
        double sum = 0;
        for (const GLCall& call : calls) {
            if (call.name == "glDrawElements")
                sum += call.arguments.at(1);
        }
        return sum;
    }
    // Buffers that were filled, made anew or not.
    int fills() const { return count(calls, "glBufferData") + count(calls, "glMapBufferRange"); }

    double bytesFilled() const
    {
        double sum = 0;
        for (const GLCall& call : calls) {
            if (call.name == "glBufferData" || call.name == "glMapBufferRange")
                sum += call.arguments.at(1);
        }
        return sum;
    }

    // Whether the first picture after a change is that of the meshes, and those after it, of as
    // many instances.
    void expectSameFromBuffers(int instances = 1)
    {
        const Picture expected = drawByMeshes();
        EXPECT_GT(vertices(), 0);
        EXPECT_GT(expected.countOther(BLACK), 1000);
        shape->touch();
        for (int frame = 0; frame < 3; ++frame) {
            EXPECT_EQ(compare(draw(), expected).pixels, 0) << frame;
            EXPECT_EQ(vertices(), 0) << frame;
            EXPECT_EQ(draws(), instances) << frame;
        }
    }
};

// The same picture

class MeshDrawingSetting : public MeshDrawingTest, public testing::WithParamInterface<Setting>
{
};

TEST_P(MeshDrawingSetting, LooksAsTheMeshesDrawIt)
{
    for (SoNode* node : GetParam().make())
        settings->addChild(node);
    for (SoShape* tested : {static_cast<SoShape*>(makeRod()), static_cast<SoShape*>(makeBirod())}) {
        SCOPED_TRACE(tested->getTypeId().getName().getString());
        show(tested);
        const Picture expected = drawByMeshes();
        EXPECT_GT(expected.countOther(BLACK), 80); // points are few
        for (int frame = 0; frame < 3; ++frame) {
            EXPECT_EQ(compare(draw(), expected).pixels, 0) << frame;
            EXPECT_EQ(draws() > 0, GetParam().fromBuffers) << frame;
            EXPECT_TRUE(vertices() == 0 || !GetParam().fromBuffers) << frame;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Settings, MeshDrawingSetting, testing::ValuesIn(allSettings()),
                         testing::PrintToStringParamName());

// A wave of 60,000 segments whose tube has 35 columns: 2.1 million vertices, which lie beside
// each other, so that they are drawn in their order.
SoRod* makeLongRod()
{
    Vectors points;
    for (int i = 0; i <= 60000; ++i) {
        const double x = 4e-5 * i - 1.2;
        points.emplace_back(x, 0.3 * std::sin(3 * x), 0);
    }
    auto* rod = new SoRod(0.15, 0.3, 34, 1, true, true, false);
    rod->setData(points, Quaternions(points.size()));
    return rod;
}

TEST_F(MeshDrawingTest, MillionsOfVerticesAreDrawnInRuns)
{
    settings->addChild(makeMaterials(2));
    settings->addChild(makeTexture());
    show(makeLongRod());
    const Picture expected = drawByMeshes();
    EXPECT_GT(expected.countOther(BLACK), 1000);
    for (int frame = 0; frame < 2; ++frame) {
        EXPECT_EQ(compare(draw(), expected).pixels, 0) << frame;
        EXPECT_EQ(vertices(), 0) << frame;
        // The tube's strips are nine times 7,489 at most; the caps and the ribbon follow.
        EXPECT_EQ(draws(), 10) << frame;
    }
}

TEST_F(MeshDrawingTest, NoFrameSendsAVertexWhereverTheCameraIs)
{
    expectSameFromBuffers();
    const Picture before = draw();
    camera->position = SbVec3f(-2, 3, 2);
    camera->pointAt(SbVec3f(0, 0.1f, 0));
    const Picture moved = draw();
    EXPECT_EQ(vertices(), 0);
    EXPECT_EQ(draws(), 1);
    EXPECT_GT(compare(before, moved).pixels, 500);
    EXPECT_EQ(compare(drawByMeshes(), moved).pixels, 0);
}

TEST_F(MeshDrawingTest, HiddenMeshesAreNotDrawn)
{
    auto* rod = static_cast<SoRod*>(shape);
    rod->showTube(false);
    expectSameFromBuffers();
    rod->showRibbon(false);
    for (int frame = 0; frame < 4; ++frame)
        EXPECT_EQ(draw().countOther(BLACK), 0);
    rod->showTube(true);
    expectSameFromBuffers();
}

TEST_F(MeshDrawingTest, UnderTheProgramsOfTheSceneItLooksTheSameInEveryGroup)
{
    const std::function<void(SoGeneralScene*, SoNode*)> groups[] = {
        [](SoGeneralScene* root, SoNode* node) { root->addShaded(node); },
        [](SoGeneralScene* root, SoNode* node) { root->addSolid(node); },
        [](SoGeneralScene* root, SoNode* node) { root->addChanging(node); }};
    place->insertChild(makeMaterials(2), 0);
    for (const auto& add : groups) {
        scene->removeAllChildren();
        scene->addChild(camera);
        auto* root = new SoGeneralScene;
        scene->addChild(root);
        add(root, place);
        expectSameFromBuffers();
    }
}

TEST_F(MeshDrawingTest, WhatFollowsHasItsOwnColourAndNormals)
{
    settings->addChild(makeMaterials(2));
    auto* translation = new SoTranslation;
    translation->translation = SbVec3f(-0.9f, -0.8f, 0);
    scene->addChild(translation);
    scene->addChild(new SoCube);
    scene->addChild(makeBinding(SoMaterialBinding::PER_VERTEX));
    scene->addChild(makeBirod());
    const Picture expected = drawByMeshes();
    for (int frame = 0; frame < 3; ++frame)
        EXPECT_EQ(compare(draw(), expected).pixels, 0) << frame;
    // A colour is sent anew after each draw: OpenGL leaves open which one is current.
    for (auto call = calls.begin(); call != calls.end(); ++call) {
        if (call->name == "glDrawElements") {
            EXPECT_GT(count(RecordedCalls(call, calls.end()), "glColor4ub"), 0);
        }
    }
}

namespace {

void expectNoArrays(void* found, SoAction* action)
{
    if (!action->isOfType(SoGLRenderAction::getClassTypeId()))
        return;
    *static_cast<bool*>(found) = true;
    for (GLenum array : {GL_VERTEX_ARRAY, GL_NORMAL_ARRAY, GL_COLOR_ARRAY, GL_TEXTURE_COORD_ARRAY})
        EXPECT_FALSE(glIsEnabled(array));
    for (GLenum value :
         {GL_ARRAY_BUFFER_BINDING, GL_ELEMENT_ARRAY_BUFFER_BINDING, GL_CLIENT_ATTRIB_STACK_DEPTH}) {
        GLint current = -1;
        glGetIntegerv(value, &current);
        EXPECT_EQ(current, 0);
    }
}

} // namespace

TEST_F(MeshDrawingTest, LeavesNoArraysAndBuffersToWhatFollows)
{
    bool found = false;
    auto* callback = new SoCallback;
    callback->setCallback(expectNoArrays, &found);
    settings->addChild(makeTexture());
    scene->addChild(callback);
    expectSameFromBuffers();
    EXPECT_TRUE(found);
}

// Changes

struct Change
{
    const char* name;
    std::function<void(SoRod*, SoMaterial*, SoGroup*)> apply;
};

void PrintTo(const Change& change, std::ostream* stream) { *stream << change.name; }

class MeshDrawingChange : public MeshDrawingTest, public testing::WithParamInterface<Change>
{
};

TEST_P(MeshDrawingChange, IsSeenInTheNextFrame)
{
    auto* material = makeMaterials(MATERIALS);
    material->transparency = 0.4f;
    settings->addChild(make(&SoTransparencyType::value, SoTransparencyType::BLEND));
    settings->addChild(material);
    settings->addChild(makeBinding(SoMaterialBinding::PER_VERTEX));
    expectSameFromBuffers();
    const Picture before = draw();
    GetParam().apply(static_cast<SoRod*>(shape), material, settings);
    const Picture after = draw();
    EXPECT_GT(compare(before, after).pixels, 100);
    EXPECT_EQ(compare(drawByMeshes(), after).pixels, 0);
    expectSameFromBuffers();
}

INSTANTIATE_TEST_SUITE_P(
    Changes, MeshDrawingChange,
    testing::Values(
        Change{"AColour",
               [](auto*, SoMaterial* m, auto*) { m->diffuseColor.set1Value(4, 1, 1, 1); }},
        Change{"OneColourForAll",
               [](auto*, SoMaterial* m, auto*) { m->diffuseColor.setValue(1, 0.5f, 0); }},
        Change{"Transparency", [](auto*, SoMaterial* m, auto*) { m->transparency = 0.41f; }},
        Change{"ATransparencyPerVertex",
               [](auto*, SoMaterial* m, auto*) {
                   for (int i = 0; i < MATERIALS; ++i)
                       m->transparency.set1Value(i, 0.4f + 0.3f * float(i % 2));
               }},
        Change{"Binding", [](auto*, auto*,
                             SoGroup* s) { s->addChild(makeBinding(SoMaterialBinding::OVERALL)); }},
        Change{"TransparencyType",
               [](auto*, auto*, SoGroup* s) {
                   s->addChild(make(&SoTransparencyType::value, SoTransparencyType::SCREEN_DOOR));
               }},
        Change{"HiddenTube", [](SoRod* rod, auto*, auto*) { rod->showTube(false); }},
        Change{"HiddenRibbon", [](SoRod* rod, auto*, auto*) { rod->showRibbon(false); }},
        Change{"Radius",
               [](SoRod* rod, auto*, auto*) {
                   rod->setTubeRadius(0.4);
                   rod->generate();
               }},
        Change{"RadiusWithoutNotification",
               [](SoRod* rod, auto*, auto*) {
                   rod->enableNotify(FALSE);
                   rod->setTubeRadius(0.4);
                   rod->generate();
                   rod->enableNotify(TRUE);
               }},
        Change{"Data",
               [](SoRod* rod, auto*, auto*) {
                   rod->setData({{0, 0, -1}, {0, 0, 1}}, Quaternions(2));
               }},
        Change{"APointOfTheMesh",
               [](SoRod* rod, auto*, auto*) {
                   rod->getTubeMesh()->getPoints()[3][2] += {0.9, 0.9, 0};
                   rod->touch();
               }},
        Change{"Lines", [](auto*, auto*, SoGroup* s) { s->addChild(makeLines()); }},
        Change{"Texture", [](auto*, auto*, SoGroup* s) { s->addChild(makeTexture()); }},
        Change{"Light",
               [](auto*, auto*, SoGroup* s) {
                   s->addChild(make(&SoLightModel::model, SoLightModel::BASE_COLOR));
               }}),
    testing::PrintToStringParamName());

namespace {

// Of which each has as many points as the others.
void move(SoRod& rod, int frame)
{
    const double t = 0.05 * frame;
    rod.setData({{-0.2, t, -1.5}, {0.3, 0.2 - t, 0}, {t, 0.1, 1.5}}, Quaternions(3));
}

} // namespace

TEST_F(MeshDrawingTest, WhatMovesInEveryFrameMakesNoNewBuffers)
{
    auto* const rod = static_cast<SoRod*>(shape);
    settings->addChild(makeMaterials(2));
    settings->addChild(makeTexture());
    draw();
    EXPECT_EQ(namesIn(calls, "glGenBuffers").size(), 4u); // vertices, triangles, colours, textures
    for (int frame = 0; frame < 10; ++frame) {
        move(*rod, frame);
        const Picture drawn = draw();
        EXPECT_EQ(vertices(), 0);
        EXPECT_EQ(draws(), 1);
        EXPECT_EQ(count(calls, "glGenBuffers"), 0);
        EXPECT_EQ(fills(), 1);
        EXPECT_EQ(compare(drawByMeshes(), drawn).pixels, 0);
    }
}

TEST_F(MeshDrawingTest, ColoursThatChangeWithTheDataMakeNoNewBuffers)
{
    auto* const rod = static_cast<SoRod*>(shape);
    auto* const material = makeMaterials(MATERIALS);
    settings->addChild(material);
    settings->addChild(makeBinding(SoMaterialBinding::PER_VERTEX));
    draw();
    for (int frame = 0; frame < 20; ++frame) {
        move(*rod, frame);
        material->diffuseColor.set1Value(3, 1, float(frame) / 20, 0);
        const Picture drawn = draw();
        EXPECT_EQ(vertices(), 0);
        EXPECT_EQ(count(calls, "glGenBuffers"), 0);
        EXPECT_EQ(fills(), 2);
        EXPECT_EQ(compare(drawByMeshes(), drawn).pixels, 0);
    }
}

TEST_F(MeshDrawingTest, NewColoursAloneFillNothingElse)
{
    auto* const material = makeMaterials(1);
    settings->addChild(material);
    draw();
    for (int frame = 0; frame < 20; ++frame) {
        material->diffuseColor.setValue(1, float(frame) / 20, 0);
        const Picture drawn = draw();
        EXPECT_EQ(vertices(), 0);
        EXPECT_EQ(draws(), 1);
        EXPECT_EQ(fills(), 1);
        // A few are kept: they might be those of other instances.
        EXPECT_EQ(count(calls, "glGenBuffers"), frame < 7 ? 1 : 0);
        EXPECT_EQ(compare(drawByMeshes(), drawn).pixels, 0);
    }
}

TEST_F(MeshDrawingTest, OtherRowsOrColumnsAreDrawnAsTheyAre)
{
    auto* const rod = static_cast<SoRod*>(shape);
    settings->addChild(makeMaterials(MATERIALS));
    settings->addChild(makeBinding(SoMaterialBinding::PER_VERTEX));
    settings->addChild(makeTexture());
    const std::function<void()> changes[] = {
        [&] { rod->setSubsegments(2); },
        [&] { rod->setSlices(12); },
        [&] { rod->setSubsegments(5), rod->setSlices(5); },
        [&] { rod->showRibbon(false); },
        [&] {
            rod->showRibbon(true), rod->setData({{0, 0, -1}, {0, 0, 1}}, Quaternions(2));
        },
        [&] {
            rod->setClosed(true);
            rod->setData({{1, 0, 0}, {0, 1, 0}, {-1, 0, 0.3}, {0, -1, 0}, {1, 0, 0}},
                         Quaternions(5));
        }};
    for (const auto& change : changes) {
        change();
        rod->generate();
        expectSameFromBuffers();
    }
}

TEST_F(MeshDrawingTest, TransparencyIsSeenHoweverLittleItChanges)
{
    auto* material = makeMaterials(1, 1);
    settings->addChild(make(&SoTransparencyType::value, SoTransparencyType::BLEND));
    settings->addChild(material);
    material->diffuseColor.setValue(1, 1, 1);
    material->transparency = 0.4f;
    expectSameFromBuffers();
    const Picture before = draw();
    material->transparency = 0.4045f; // 153 and 151.9 of 255 opaque
    EXPECT_GT(compare(before, draw()).pixels, 100);
    expectSameFromBuffers();
}

TEST_F(MeshDrawingTest, EveryTransparencyTypeIsSeen)
{
    auto* type = new SoTransparencyType;
    settings->addChild(type);
    settings->addChild(makeMaterials(MATERIALS, MATERIALS));
    settings->addChild(makeBinding(SoMaterialBinding::PER_VERTEX));
    for (auto value : {SoTransparencyType::BLEND, SoTransparencyType::SCREEN_DOOR,
                       SoTransparencyType::ADD, SoTransparencyType::NONE,
                       SoTransparencyType::SCREEN_DOOR, SoTransparencyType::DELAYED_BLEND}) {
        type->value = value;
        Picture last;
        for (int frame = 0; frame < 3; ++frame)
            last = draw();
        EXPECT_EQ(draws(), 1) << value;
        EXPECT_EQ(compare(drawByMeshes(), last).pixels, 0) << value;
    }
}

TEST_F(MeshDrawingTest, TransparenciesBesideTheColoursAreSeen)
{
    auto* colours = new SoBaseColor;
    for (int i = 0; i < MATERIALS; ++i)
        colours->rgb.set1Value(i, SbColor(1, float(i % 3) / 2, 0));
    auto* transparencies = makeMaterials(1, MATERIALS);
    transparencies->diffuseColor.setIgnored(TRUE);
    for (SoNode* node :
         std::vector<SoNode*>{make(&SoTransparencyType::value, SoTransparencyType::BLEND),
                              transparencies, colours, makeBinding(SoMaterialBinding::PER_VERTEX)})
        settings->addChild(node);
    expectSameFromBuffers();
    const Picture before = draw();
    transparencies->transparency.set1Value(4, 0.9f);
    const Picture after = draw();
    EXPECT_GT(compare(before, after).pixels, 20);
    EXPECT_EQ(compare(drawByMeshes(), after).pixels, 0);
}

// Several materials

TEST_F(MeshDrawingTest, InstancesUnderSeveralMaterialsHaveEachTheirOwn)
{
    const NodeRef<SoShape> held(shape);
    place->removeAllChildren();
    for (int i = 0; i < 8; ++i) {
        auto* instance = new SoSeparator;
        auto* translation = new SoTranslation;
        translation->translation = SbVec3f(0.7f * float(i % 4 - 2), 0, 0.5f * float(i / 4));
        auto* material = new SoMaterial;
        material->diffuseColor.setValue(float(i % 2), float(i / 2 % 2), 1 - 0.1f * float(i));
        instance->addChild(translation);
        instance->addChild(material);
        instance->addChild(shape);
        place->addChild(instance);
    }
    expectSameFromBuffers(8);

    // More than are kept
    auto* material = new SoMaterial;
    material->diffuseColor.setValue(1, 1, 1);
    place->addChild(material);
    place->addChild(shape);
    expectSameFromBuffers(9);
}

// One behind the other

class CoilDrawingTest : public MeshDrawingTest
{
protected:
    static const int TURNS = 60;

    // 30 segments a turn.
    static SoRod* makeCoil(int turns, int slices)
    {
        Vectors points;
        for (int i = 0; i <= 30 * turns; ++i) {
            const double t = 2 * M_PI * i / 30;
            points.emplace_back(std::cos(t), std::sin(t), -0.05 * t);
        }
        auto* coil = new SoRod(0.2, 0.5, slices, 2, true, true, false);
        coil->setData(points, Quaternions(points.size()));
        return coil;
    }

    void SetUp() override
    {
        MeshDrawingTest::SetUp();
        show(makeCoil(TURNS, 8));
        settings->addChild(make(&SoLightModel::model, SoLightModel::BASE_COLOR));
        settings->addChild(makeMaterials(2));
        camera->farDistance = 100;
    }

    // Along the axis, where every turn ends where the one in front of it ends.
    void lookInParallel()
    {
        auto* parallel = new SoOrthographicCamera;
        parallel->position = SbVec3f(0, 0, 3);
        parallel->height = 3;
        parallel->farDistance = 100;
        scene->replaceChild(scene->findChild(camera), parallel);
    }
};

TEST_F(CoilDrawingTest, LooksTheSameWithoutWhatIsHidden)
{
    for (const SbVec3f& place :
         {SbVec3f(0, 0, 3), SbVec3f(0.5f, 0.2f, 2.5f), SbVec3f(0, 0.2f, -5)}) {
        camera->position = place;
        camera->pointAt(SbVec3f(0, 0, -10), SbVec3f(0, 1, 0));
        const Picture expected = drawByMeshes();
        const Difference difference = compare(drawChanged(), expected);
        EXPECT_EQ(vertices(), 0);
        EXPECT_LE(difference.pixels, 3) << difference; // where faces cross
        EXPECT_GT(difference.covered, 3000);
        EXPECT_LE(compare(draw(), expected).pixels, 3);
    }
    lookInParallel();
    const Picture expected = drawByMeshes();
    const Difference difference = compare(drawChanged(), expected);
    EXPECT_EQ(vertices(), 0);
    EXPECT_LE(difference.pixels, 3) << difference;
    EXPECT_GT(difference.covered, 2000);
}

TEST_F(CoilDrawingTest, OfTurnsOneBehindTheOtherOnlyTheEdgesAreDrawnAgain)
{
    lookInParallel();
    drawChanged();
    const double strips = 30 * TURNS * 2; // of 8 faces of the tube, and one of the ribbon
    EXPECT_GT(indices(), 0);
    EXPECT_LT(indices(), 0.25 * 6 * (8 + 1) * strips);
}

TEST_F(CoilDrawingTest, OfMillionsOfVerticesLooksTheSameWithoutWhatIsHidden)
{
    show(makeCoil(1000, 34)); // 60,001 rows of 35 columns, and of 2
    camera->farDistance = 1000;
    // Before the end, which is in the last of the draws.
    camera->position = SbVec3f(0.5f, 0.2f, -316.7f);
    camera->pointAt(SbVec3f(0, 0, -300), SbVec3f(0, 1, 0));
    const Picture expected = drawByMeshes();
    const Difference difference = compare(drawChanged(), expected);
    EXPECT_EQ(vertices(), 0);
    EXPECT_GT(draws(), 20); // in their order it would be ten
    EXPECT_LE(difference.pixels, 3) << difference;
    EXPECT_GT(difference.covered, 3000);
}

TEST_F(CoilDrawingTest, WhatIsHiddenIsNotDrawn)
{
    camera->position = SbVec3f(0, 0, 6);
    camera->pointAt(SbVec3f(0, 0, 0), SbVec3f(0, 1, 0));
    auto* wall = new SoSeparator;
    auto* translation = new SoTranslation;
    translation->translation = SbVec3f(0, 0, 2);
    wall->addChild(translation);
    auto* cube = new SoCube;
    cube->width = cube->height = 10;
    wall->addChild(cube);
    settings->addChild(wall);
    drawChanged();
    const double strips = 30 * TURNS * 2; // of 8 faces of the tube, and one of the ribbon
    EXPECT_GT(indices(), 0);
    EXPECT_LT(indices(), 0.7 * 6 * (8 + 1) * strips);
}

TEST_F(CoilDrawingTest, FromAsideItIsOneDraw)
{
    camera->position = SbVec3f(40, 0, -9);
    camera->pointAt(SbVec3f(0, 0, -9), SbVec3f(0, 1, 0));
    drawChanged();
    EXPECT_EQ(draws(), 1);
}

// Rows nearer to each other than half a pixel

class CoarseDrawingTest : public MeshDrawingTest
{
protected:
    static const int SLICES = 12;

    // From where it does not cover the view more than once: then what is nearest would be drawn
    // first, all of it.
    void SetUp() override
    {
        MeshDrawingTest::SetUp();
        camera->position = SbVec3f(4.5f, 3, 4.5f);
        camera->pointAt(SbVec3f(0, 0.1f, 0));
    }

    struct Wave
    {
        Vectors points;
        Quaternions rotations;
    };
    static Wave waveOf(int points)
    {
        Wave wave;
        for (int i = 0; i < points; ++i) {
            const double t = 2 * M_PI * (i % (points - 1)) / (points - 1);
            const double reach = 1 + 0.2 * std::cos(7 * t);
            wave.points.emplace_back(reach * std::cos(t), reach * std::sin(t),
                                     0.3 * std::sin(5 * t));
            wave.rotations.emplace_back(std::sin(t), 0, 0, std::cos(t));
        }
        return wave;
    }

    static SoRod* makeWave(int points, bool closed)
    {
        Wave wave = waveOf(points);
        if (!closed) {
            wave.points.resize(std::size_t(points) * 4 / 5);
            wave.rotations.resize(wave.points.size());
        }
        auto* rod = new SoRod(0.1, 0.25, SLICES, 1, true, true, false);
        rod->setClosed(closed);
        rod->setData(wave.points, wave.rotations);
        return rod;
    }

    static SoBirod* makeWaves(int points)
    {
        const Wave wave = waveOf(points);
        Vectors above = wave.points, below = wave.points;
        for (auto& point : above)
            point.z += 0.12;
        for (auto& point : below)
            point.z -= 0.12;
        auto* birod =
            new SoBirod(0.05, 0.05, 0.1, 0.1, 0, 0, SLICES, 1, true, true, true, true, false);
        birod->setData(wave.points, wave.rotations, above, wave.rotations, below, wave.rotations);
        return birod;
    }

    static constexpr double INDICES_PER_ROW = 6 * (SLICES + 1); // of the tube and the ribbon

    // Whether each picture covers what the other covers, within a pixel.
    static void expectAboutSame(const Picture& a, const Picture& b)
    {
        int far = 0, inside = 0, differing = 0;
        for (int y = 1; y + 1 < SIZE; ++y) {
            for (int x = 1; x + 1 < SIZE; ++x) {
                int inA = 0, inB = 0;
                for (int i = 0; i < 9; ++i) {
                    inA += a.getColour(x + i % 3 - 1, y + i / 3 - 1) != BLACK ? 1 : 0;
                    inB += b.getColour(x + i % 3 - 1, y + i / 3 - 1) != BLACK ? 1 : 0;
                }
                const Colour ofA = a.getColour(x, y), ofB = b.getColour(x, y);
                far += (ofA != BLACK && inB == 0) || (ofB != BLACK && inA == 0) ? 1 : 0;
                inside += inA == 9 && inB == 9 ? 1 : 0;
                const int difference = std::abs(ofA[0] - ofB[0]) + std::abs(ofA[1] - ofB[1]) +
                                       std::abs(ofA[2] - ofB[2]);
                differing += inA == 9 && inB == 9 && difference > 30 ? 1 : 0;
            }
        }
        EXPECT_EQ(far, 0);
        EXPECT_GT(inside, 500);
        EXPECT_LT(differing, inside / 50) << "at edges inside";
    }
};

TEST_F(CoarseDrawingTest, LeavesRowsOutThatNobodyTellsApart)
{
    const std::vector<SoMeshShape*> shapes{makeWave(20000, false), makeWave(20000, true),
                                           makeWaves(20000)};
    for (SoMeshShape* const waves : shapes) {
        show(waves);
        const Picture fine = draw();
        const double all = indices();
        waves->drawCoarsely(true);
        const Picture coarse = draw();
        EXPECT_GT(indices(), 100 * INDICES_PER_ROW / 4);
        EXPECT_LT(indices(), all / 15);
        expectAboutSame(coarse, fine);
        EXPECT_EQ(compare(draw(), coarse).pixels, 0) << "the frame after it";
        waves->drawCoarsely(false);
        EXPECT_EQ(compare(draw(), fine).pixels, 0);
        EXPECT_EQ(indices(), all);
    }
}

TEST_F(CoarseDrawingTest, DrawsAllRowsThatCanBeToldApart)
{
    auto* const rod = makeWave(3000, false);
    const auto expectAll = [&] {
        rod->drawCoarsely(false);
        const Picture fine = draw();
        const double all = indices();
        rod->drawCoarsely(true);
        EXPECT_EQ(compare(draw(), fine).pixels, 0);
        EXPECT_EQ(indices(), all);
    };
    show(rod);
    camera->position = SbVec3f(1.2f, 0.4f, 0.5f); // in the midst of it
    camera->pointAt(SbVec3f(1, 0.3f, 0));
    camera->nearDistance = 0.01f;
    expectAll();
    auto* const parallel = new SoOrthographicCamera;
    parallel->position = SbVec3f(1, 0, 3);
    parallel->height = 0.1f;
    scene->replaceChild(camera, parallel);
    expectAll();
    parallel->height = 3;
    show(makeRod()); // of few rows
    const Picture fine = draw();
    static_cast<SoRod*>(shape)->drawCoarsely(true);
    EXPECT_EQ(compare(draw(), fine).pixels, 0);
}

TEST_F(CoarseDrawingTest, NewDataAreDrawnCoarselyInTheirFrame)
{
    auto* const rod = makeWave(20000, false);
    rod->drawCoarsely(true);
    show(rod);
    draw();
    const double coarse = indices();
    rod->setTubeRadius(0.12);
    rod->generate();
    draw();
    EXPECT_EQ(count(calls, "glGenBuffers"), 0);
    EXPECT_EQ(vertices(), 0);
    EXPECT_NEAR(indices(), coarse, 0.1 * coarse);
}

TEST_F(CoarseDrawingTest, OfNewDataTheRowsThatAreDrawnFillBuffersAlone)
{
    auto* const rod = makeWave(20000, false);
    show(rod);
    draw();
    const double all = bytesFilled();
    rod->drawCoarsely(true);
    rod->setTubeRadius(0.12);
    rod->generate();
    draw();
    EXPECT_GT(bytesFilled(), 0);
    EXPECT_LT(bytesFilled(), all / 15);
    rod->drawCoarsely(false);
    draw();
    EXPECT_GT(bytesFilled(), all / 3) << "all vertices of the new data";
}

TEST_F(CoarseDrawingTest, ForAWhileLeavesTheBuffersOfAllRowsAsTheyAre)
{
    for (SoMeshShape* const waves : {static_cast<SoMeshShape*>(makeWave(20000, true)),
                                     static_cast<SoMeshShape*>(makeWaves(20000))}) {
        show(waves);
        const Picture fine = draw();
        EXPECT_GT(fills(), 0);
        for (int time = 0; time < 2; ++time) {
            waves->drawCoarsely(true);
            draw();
            waves->drawCoarsely(false);
            EXPECT_EQ(compare(draw(), fine).pixels, 0);
            EXPECT_EQ(fills(), 0);
        }
        waves->touch();
        draw();
        EXPECT_GT(fills(), 0) << "it may have changed";
    }
}

TEST_F(CoarseDrawingTest, FourCamerasByTurnsHaveTheirRowsFoundOnce)
{
    auto* const rod = makeWave(20000, false);
    rod->drawCoarsely(true);
    show(rod);
    const auto fillsOf = [this] {
        std::vector<double> bytes;
        for (const float distance : {1.0f, 1.5f, 2.0f, 3.0f}) {
            camera->position = distance * SbVec3f(4.5f, 3, 4.5f);
            draw();
            bytes.push_back(bytesFilled());
        }
        return bytes;
    };
    const std::vector<double> first = fillsOf();
    for (std::size_t i = 1; i < first.size(); ++i)
        EXPECT_LT(first[i], first[i - 1]) << "fewer from farther away";
    const auto& tube = *rod->getTubeMesh();
    algebra3d::Vector3<double>** const points = rod->getTubeMesh()->getPoints();
    std::fill_n(points[0], tube.getHeight() * tube.getWidth(), points[0][0]);
    EXPECT_EQ(fillsOf(), first) << "nobody has said that they changed";
    rod->touch();
    EXPECT_LT(fillsOf()[0], 0.8 * first[0]);
}

// As views of a window do, whose contexts share them.
TEST_F(CoarseDrawingTest, DrawnByTurnsBuffersGetNewMemoryThatNobodyDrawsFromYet)
{
    auto* const rod = makeWave(20000, false);
    show(rod);
    draw();
    const SbViewportRegion region = renderer->getViewportRegion();
    SoGLRenderAction one(region), other(region);
    const auto drawBy = [&](SoGLRenderAction& action) {
        rod->touch();
        renderer->setGLRenderAction(&action);
        draw();
        EXPECT_GT(fills(), 0);
        return count(calls, "glMapBufferRange");
    };
    for (const bool coarse : {false, true}) {
        rod->drawCoarsely(coarse);
        drawBy(one);
        EXPECT_GT(drawBy(one), 0) << coarse;
        EXPECT_EQ(drawBy(other), 0) << coarse;
        EXPECT_GT(drawBy(other), 0) << coarse;
        EXPECT_EQ(drawBy(one), 0) << coarse;
    }
    rod->drawCoarsely(false);
    drawBy(one);
    const auto showBy = [&](SoGLRenderAction& action) {
        renderer->setGLRenderAction(&action);
        draw();
    };
    showBy(other);
    showBy(one);
    EXPECT_EQ(drawBy(one), 0) << "another one drew from it since it was filled";
    EXPECT_GT(drawBy(one), 0);
    renderer.reset(); // before they go
}

TEST_F(CoarseDrawingTest, RowsHaveTheirColoursAndTextures)
{
    auto* const rod = makeWave(20000, true);
    show(rod);
    const int rows = rod->getTubeMesh()->getHeight() + rod->getRibbonMesh()->getHeight();
    const auto makeRamp = [rows]() -> SoNode* {
        auto* const material = new SoMaterial;
        std::vector<SbColor> colours;
        for (int i = 0; i < rows; ++i)
            colours.emplace_back(float(i) / float(rows), 1 - float(i) / float(rows), 0.5f);
        material->diffuseColor.setValues(0, rows, colours.data());
        return material;
    };
    const auto perVertex = [] { return makeBinding(SoMaterialBinding::PER_VERTEX); };
    const std::vector<std::vector<SoNode*>> looks{{makeRamp(), perVertex()},
                                                  {makeRamp(), perVertex(), makeTexture()},
                                                  {makePackedColours(2)}};
    for (const std::vector<SoNode*>& look : looks) {
        settings->removeAllChildren();
        for (SoNode* const node : look)
            settings->addChild(node);
        rod->drawCoarsely(false);
        const Picture fine = draw();
        const double all = indices();
        rod->drawCoarsely(true);
        const Picture coarse = draw();
        EXPECT_LT(indices(), all / 15);
        expectAboutSame(coarse, fine);
    }
}

// Lists and contexts

TEST_F(MeshDrawingTest, AListThatIsRecordedHasTheVertices)
{
    settings->addChild(makeMaterials(2));
    const Picture expected = drawByMeshes();
    draw();
    scene->renderCaching = SoSeparator::ON;
    for (int frame = 0; frame < 4; ++frame) {
        EXPECT_EQ(compare(draw(), expected).pixels, 0) << frame;
        // Coin records in its second frame, and calls its list from then on.
        EXPECT_EQ(draws(), frame == 0 ? 1 : 0) << frame;
        EXPECT_EQ(vertices() > 0, frame == 1) << frame;
    }
    scene->renderCaching = SoSeparator::OFF;
    draw();
    EXPECT_EQ(compare(draw(), expected).pixels, 0);
    EXPECT_EQ(draws(), 1);
}

TEST_F(MeshDrawingTest, EachContextHasItsOwnBuffers)
{
    settings->addChild(makeMaterials(2));
    const auto other = makeRenderer();
    const Picture expected = drawByMeshes();
    for (int frame = 0; frame < 3; ++frame) {
        for (SoOffscreenRenderer* each : {other.get(), renderer.get()}) {
            EXPECT_EQ(compare(draw(*each), expected).pixels, 0) << frame;
            EXPECT_EQ(draws(), 1) << frame;
            EXPECT_EQ(count(calls, "glGenBuffers"), frame == 0 ? 3 : 0) << frame;
        }
    }
    shape->touch();
    for (SoOffscreenRenderer* each : {renderer.get(), other.get()}) {
        EXPECT_EQ(compare(draw(*each), expected).pixels, 0);
        EXPECT_EQ(fills(), 1); // the vertices
    }
}

TEST_F(MeshDrawingTest, ALostContextTakesItsBuffersAlong)
{
    const Picture expected = drawChanged();
    const auto made = namesIn(calls, "glGenBuffers");
    EXPECT_EQ(made.size(), 3u);
    RecordingGL::start();
    renderer.reset();
    EXPECT_EQ(namesIn(RecordingGL::stop(), "glDeleteBuffers"), made);
    renderer = makeRenderer();
    for (int frame = 0; frame < 3; ++frame) {
        EXPECT_EQ(compare(draw(), expected).pixels, 0) << frame;
        EXPECT_EQ(draws(), 1);
    }
}

TEST_F(MeshDrawingTest, BuffersGoWithTheNodeOrItsRows)
{
    drawChanged();
    const auto made = namesIn(calls, "glGenBuffers");
    auto* const rod = static_cast<SoRod*>(shape);
    rod->setSubsegments(7);
    rod->generate();
    draw(); // forgets them
    const auto madeAgain = namesIn(calls, "glGenBuffers");
    EXPECT_EQ(madeAgain.size(), 3u);
    draw(); // deletes them
    EXPECT_EQ(namesIn(calls, "glDeleteBuffers"), made);
    place->removeAllChildren();
    draw();
    EXPECT_EQ(namesIn(calls, "glDeleteBuffers"), madeAgain);
}
