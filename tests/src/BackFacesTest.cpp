// SPDX-License-Identifier: GPL-3.0-or-later
// What of a tube is turned away is not drawn, and nobody sees it: compared with the picture of all
// of it.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include <GL/gl.h>
#include <Inventor/SoOffscreenRenderer.h>
#include <Inventor/nodes/SoCallback.h>
#include <Inventor/nodes/SoClipPlane.h>
#include <Inventor/nodes/SoDepthBuffer.h>
#include <Inventor/nodes/SoDirectionalLight.h>
#include <Inventor/nodes/SoDrawStyle.h>
#include <Inventor/nodes/SoFragmentShader.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoMaterialBinding.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoPerspectiveCamera.h>
#include <Inventor/nodes/SoPolygonOffset.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoShaderProgram.h>
#include <Inventor/nodes/SoShapeHints.h>
#include <Inventor/nodes/SoTransform.h>
#include <Inventor/nodes/SoTransparencyType.h>
#include <Inventor/nodes/SoVertexShader.h>
#include <SoGeneralScene.h>
#include <SoRod.h>
#include <algebra3d/rotations.h>
#include <toCoin.h>

#include "support/CoinEnvironment.h"
#include "support/RandomRods.h"
#include "support/RecordingGL.h"
#include "support/renderPicture.h"

using Vector = algebra3d::Vector3<double>;
using Vectors = std::vector<Vector>;
using Quaternions = std::vector<algebra3d::Quaternion<double>>;

namespace {

const int SIZE = 200;

struct Shape
{
    std::string name;
    std::function<Vector(double)> at; // from 0 to 1
    int points;
    double radius;
    int slices;
    bool closed;
    bool hides = true; // what is turned away, all over
};

void PrintTo(const Shape& shape, std::ostream* stream) { *stream << shape.name; }

Vector straight(double t) { return {2 * t - 1, 0, 0}; }
Vector ring(double t) { return {std::cos(2 * M_PI * t), std::sin(2 * M_PI * t), 0}; }
Vector bow(double t) { return ring(0.4 * t); }
Vector moreThanOneRing(double t) { return ring(1.7 * t); }
Vector sharpBend(double t) { return {0.2 * t, std::abs(t - 0.5), 0}; }
Vector wave(double t) { return {2 * t - 1, 0.4 * std::sin(9 * t), 0.3 * std::cos(5 * t)}; }
Vector knot(double t)
{
    const double a = 2 * M_PI * t;
    return Vector(std::sin(a) + 2 * std::sin(2 * a), std::cos(a) - 2 * std::cos(2 * a),
                  -std::sin(3 * a)) *
           0.35;
}

Quaternions framesAlong(const Vectors& points)
{
    Quaternions frames;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const std::size_t last = points.size() - 1;
        frames.push_back(algebra3d::between({0, 0, 1}, points[std::min(i + 1, last)] -
                                                           points[i == 0 ? 0 : i - 1]));
    }
    return frames;
}

SoRod* makeRod(const Shape& shape)
{
    Vectors points;
    for (int i = 0; i < shape.points; ++i)
        points.push_back(shape.at(double(i) / (shape.points - 1)));
    if (shape.closed)
        points.back() = points.front();
    auto* rod = new SoRod(shape.radius, 0.3, shape.slices, 3, true, true, false);
    rod->setClosed(shape.closed);
    rod->setData(points, framesAlong(points));
    return rod;
}

SoNode* makeCallback(void (*called)(void*, SoAction*))
{
    auto* callback = new SoCallback;
    callback->setCallback(called);
    return callback;
}

} // namespace

class BackFacesTest : public CoinTest
{
protected:
    static void SetUpTestSuite() { initScenesOnce(); }

    NodeRef<SoSeparator> scene{new SoSeparator};
    SoGroup* cameras = new SoGroup;
    SoGroup* settings = new SoGroup; // for what a test puts before the rod
    SoGroup* place = new SoGroup;
    NodeRef<SoRod> rod{makeRod({"", knot, 60, 0.1, 16, true})};
    SoOffscreenRenderer renderer{SbViewportRegion(SIZE, SIZE)};
    double indices = 0; // of the last frame

    void SetUp() override
    {
        scene->renderCaching = SoSeparator::OFF;
        auto* light = new SoDirectionalLight;
        light->direction = SbVec3f(-0.3f, -0.5f, -0.8f);
        auto* colours = new SoMaterial;
        colours->diffuseColor.set1Value(0, 0.9f, 0.4f, 0.2f);
        colours->diffuseColor.set1Value(1, 0.2f, 0.8f, 0.9f);
        for (SoNode* node : std::vector<SoNode*>{cameras, light, colours, settings, place})
            scene->addChild(node);
        show(rod);
        look(new SoPerspectiveCamera, {2, 1.5, 3});
    }

    void show(SoRod* shown)
    {
        place->removeAllChildren();
        place->addChild(shown);
    }
    void look(SoCamera* camera, const Vector& from, const Vector& at = {})
    {
        cameras->removeAllChildren();
        cameras->addChild(camera);
        camera->position = toSbVec3f(from);
        camera->pointAt(toSbVec3f(at), SbVec3f(0.1f, 0.9f, 0.2f));
        camera->nearDistance = 0.3f;
        camera->farDistance = 12;
    }

    Picture draw()
    {
        RecordingGL::start();
        Picture picture = renderPicture(renderer, scene);
        indices = 0;
        for (const GLCall& call : RecordingGL::stop()) {
            if (call.name == "glDrawElements")
                indices += call.arguments.at(1);
        }
        return picture;
    }
    // With a stencil test that everything passes, before which nothing is left out.
    Picture drawWhole()
    {
        scene->insertChild(makeCallback([](void*, SoAction*) { glEnable(GL_STENCIL_TEST); }), 0);
        scene->addChild(makeCallback([](void*, SoAction*) { glDisable(GL_STENCIL_TEST); }));
        Picture picture = draw();
        scene->removeChild(0);
        scene->removeChild(scene->getNumChildren() - 1);
        return picture;
    }

    // Whether it looks the same. Returns the part of the triangles that was drawn.
    double expectSame()
    {
        const Picture expected = drawWhole();
        const double all = indices;
        const Picture drawn = draw();
        const Difference difference = compare(drawn, expected);
        EXPECT_EQ(difference.pixels, 0) << difference;
        return indices / all;
    }
};

// The same from everywhere

class BackFacesOfShape : public BackFacesTest, public testing::WithParamInterface<Shape>
{
};

TEST_P(BackFacesOfShape, AreMissedFromNowhere)
{
    const NodeRef<SoRod> shown(makeRod(GetParam()));
    show(shown);
    RandomNumbers random(11);
    double drawn = 0; // of the views of all of it
    const int views = 24;
    for (int i = 0; i < views; ++i) {
        SCOPED_TRACE(i);
        const bool near = i % 3 == 0;
        const Vector from = random.unitVector() * (near ? random.uniform(1.4, 2) : 4);
        const Vector at = random.unitVector() * (near ? 0.5 : 0.1);
        auto* const parallel = new SoOrthographicCamera;
        parallel->height = float(near ? random.uniform(0.3, 1) : random.uniform(2.5, 4));
        const NodeRef<SoCamera> held(parallel);
        look(i % 2 == 0 ? static_cast<SoCamera*>(new SoPerspectiveCamera) : held, from, at);
        const double part = expectSame();
        drawn += near ? 0 : part / (views - views / 3);
    }
    if (GetParam().hides)
        EXPECT_LT(drawn, GetParam().slices <= 10 ? 0.9 : 0.75);
    else
        EXPECT_DOUBLE_EQ(drawn, 1);
}

INSTANTIATE_TEST_SUITE_P(
    Shapes, BackFacesOfShape,
    testing::Values(Shape{"Straight", straight, 20, 0.2, 12, false},
                    Shape{"Thick", bow, 15, 0.3, 24, false},
                    Shape{"Thin", wave, 40, 0.03, 10, false},
                    Shape{"Ring", ring, 40, 0.2, 32, true}, Shape{"Knot", knot, 200, 0.1, 10, true},
                    Shape{"RowsCloserThanPixels", knot, 1000, 0.1, 10, true},
                    Shape{"OfFewSides", bow, 40, 0.15, 6, false},
                    Shape{"CrossingItself", moreThanOneRing, 60, 0.2, 16, false},
                    Shape{"OfFourSides", wave, 40, 0.15, 4, false, false},
                    Shape{"BentMoreSharplyThanItIsThick", sharpBend, 9, 0.3, 12, false, false}),
    testing::PrintToStringParamName());

TEST_F(BackFacesTest, OfARingAreHalfOfIt)
{
    const NodeRef<SoRod> shown(makeRod({"", ring, 60, 0.2, 64, true}));
    shown->showRibbon(false);
    show(shown);
    look(new SoPerspectiveCamera, {0, 0, 4});
    const double tube = 6.0 * 64 * (shown->getTubeMesh()->getHeight() - 1);
    expectSame();
    EXPECT_LT(indices, 0.56 * tube);
    EXPECT_GT(indices, 0.49 * tube);
}

// As a tile of a picture shows it: a quarter of the ring.
TEST_F(BackFacesTest, AreLeftOutWithWhatLiesBesideTheView)
{
    const NodeRef<SoRod> shown(makeRod({"", ring, 60, 0.1, 32, true}));
    shown->showRibbon(false);
    show(shown);
    auto* const camera = new SoOrthographicCamera;
    look(camera, {0, 0, 4});
    camera->orientation = SbRotation::identity();
    camera->height = 2.4f;
    const double whole = expectSame();
    for (const Vector& at : {Vector(0.6, 0.6, 4), Vector(-0.6, 0.6, 4), Vector(0.6, -0.6, 4)}) {
        camera->position = toSbVec3f(at);
        camera->height = 1.2f;
        const double part = expectSame();
        EXPECT_LT(part, 0.3 * whole);
        EXPECT_GT(part, 0.25 * whole);
    }
}

// Where something of the tube's inside may be seen

TEST_F(BackFacesTest, AreDrawnWhereTheEyeIsWithinOrTheNearPlaneCuts)
{
    const Vector within = knot(0.1);
    look(new SoPerspectiveCamera, within, knot(0.15));
    static_cast<SoCamera*>(cameras->getChild(0))->nearDistance = 0.01f;
    EXPECT_EQ(expectSame(), 1);
    auto* const cutting = new SoOrthographicCamera;
    look(cutting, {0, 0, 2});
    cutting->nearDistance = 2;
    EXPECT_EQ(expectSame(), 1);
    cutting->nearDistance = 0.5f;
    EXPECT_LT(expectSame(), 0.75);
}

TEST_F(BackFacesTest, OfADisplacedPointAreDrawn)
{
    EXPECT_LT(expectSame(), 0.75);
    rod->getTubeMesh()->getPoints()[40][3] += Vector(0.3, 0.3, 0.3);
    rod->touch();
    EXPECT_EQ(expectSame(), 1);
}

struct State
{
    std::string name;
    std::function<SoNode*()> make;
    bool hides = false;
};

void PrintTo(const State& state, std::ostream* stream) { *stream << state.name; }

class BackFacesInState : public BackFacesTest, public testing::WithParamInterface<State>
{
};

namespace {

SoNode* makeProgram(const char* vertex, const char* fragment)
{
    auto* program = new SoShaderProgram;
    SoShaderObject* const shaders[] = {new SoVertexShader, new SoFragmentShader};
    const char* const texts[] = {vertex, fragment};
    for (int i = 0; i < 2; ++i) {
        shaders[i]->sourceType = SoShaderObject::GLSL_PROGRAM;
        shaders[i]->sourceProgram = texts[i];
        program->shaderObject.set1Value(i, shaders[i]);
    }
    return program;
}

SoNode* makeTransform(const SbVec3f& scale)
{
    auto* transform = new SoTransform;
    transform->scaleFactor = scale;
    transform->rotation.setValue(SbVec3f(1, 2, 3), 1);
    return transform;
}

SoNode* makeTransparency(SoTransparencyType::Type type)
{
    auto* group = new SoGroup;
    auto* how = new SoTransparencyType;
    how->value = type;
    auto* material = new SoMaterial;
    material->transparency = 0.5f;
    group->addChild(how);
    group->addChild(material);
    return group;
}

const char* const PLAIN_VERTEX = "void main() { gl_Position = ftransform();"
                                 " gl_FrontColor = vec4(gl_Normal, 1.0); }";
const char* const PLAIN_FRAGMENT = "void main() { gl_FragColor = gl_Color; }";

std::vector<State> allStates()
{
    return {
        {"Colours",
         [] {
             auto* binding = new SoMaterialBinding;
             binding->value = SoMaterialBinding::PER_VERTEX;
             return binding;
         },
         true},
        {"Mirrored",
         [] {
             return makeTransform({-1, 1, 1});
         },
         true},
        {"Stretched",
         [] {
             return makeTransform({1.2f, 0.7f, 1});
         },
         true},
        {"Program", [] { return makeProgram(PLAIN_VERTEX, PLAIN_FRAGMENT); }, true},
        {"ProgramThatLeavesOutPixels",
         [] {
             return makeProgram(PLAIN_VERTEX, "void main() { if (gl_Color.r > 0.3) discard;"
                                              " gl_FragColor = gl_Color; }");
         }},
        {"ProgramThatMovesPoints",
         [] {
             return makeProgram("void main() { gl_FrontColor = vec4(gl_Normal, 1.0);"
                                " gl_Position = gl_ModelViewProjectionMatrix *"
                                " (gl_Vertex * vec4(1.0, 1.0, -1.0, 1.0)); }",
                                PLAIN_FRAGMENT);
         }},
        {"ClipPlane",
         [] {
             auto* clip = new SoClipPlane;
             clip->plane = SbPlane(SbVec3f(1, 0.2f, 0.3f), 0.1f);
             return clip;
         }},
        {"Lines",
         [] {
             auto* style = new SoDrawStyle;
             style->style = SoDrawStyle::LINES;
             return style;
         }},
        {"Transparent", [] { return makeTransparency(SoTransparencyType::BLEND); }},
        {"ScreenDoor", [] { return makeTransparency(SoTransparencyType::SCREEN_DOOR); }},
        {"FrontFacesCulled",
         [] {
             auto* hints = new SoShapeHints;
             hints->vertexOrdering = SoShapeHints::CLOCKWISE;
             hints->shapeType = SoShapeHints::SOLID;
             return hints;
         }},
        {"WithoutDepth",
         [] {
             auto* depth = new SoDepthBuffer;
             depth->test = FALSE;
             return depth;
         }},
        {"FarthestSeen",
         [] {
             auto* depth = new SoDepthBuffer;
             depth->function = SoDepthBuffer::ALWAYS;
             return depth;
         }},
        {"Offset",
         [] {
             auto* offset = new SoPolygonOffset;
             offset->factor = 3;
             return offset;
         }},
        {"LinesOfOpenGL",
         [] { return makeCallback([](void*, SoAction*) { glPolygonMode(GL_BACK, GL_LINE); }); }},
    };
}

} // namespace

TEST_P(BackFacesInState, AreLeftOutWhereNothingShowsThem)
{
    settings->addChild(GetParam().make());
    scene->addChild(
        makeCallback([](void*, SoAction*) { glPolygonMode(GL_FRONT_AND_BACK, GL_FILL); }));
    const double drawn = expectSame();
    if (GetParam().hides)
        EXPECT_LT(drawn, 0.75);
    else
        EXPECT_EQ(drawn, 1);
}

INSTANTIATE_TEST_SUITE_P(States, BackFacesInState, testing::ValuesIn(allStates()),
                         testing::PrintToStringParamName());

TEST_F(BackFacesTest, AreLeftOutUnderTheProgramsOfTheScene)
{
    auto* const root = new SoGeneralScene;
    root->addShaded(place);
    scene->replaceChild(place, root);
    EXPECT_LT(expectSame(), 0.75);
}
