// SPDX-License-Identifier: GPL-3.0-or-later
// The shader texts, and the pictures that the scene's programs make of them.
#define GL_GLEXT_PROTOTYPES
#include <SoGeneralScene.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GL/gl.h>
#include <GL/glext.h>
#include <Inventor/C/errors/debugerror.h>
#include <Inventor/errors/SoDebugError.h>
#include <Inventor/events/SoKeyboardEvent.h>
#include <Inventor/nodes/SoCoordinate3.h>
#include <Inventor/nodes/SoDrawStyle.h>
#include <Inventor/nodes/SoFaceSet.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoNormal.h>
#include <Inventor/nodes/SoNormalBinding.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoPerspectiveCamera.h>
#include <Inventor/nodes/SoRotation.h>
#include <Inventor/nodes/SoScale.h>
#include <Inventor/nodes/SoShaderObject.h>
#include <Inventor/nodes/SoShaderParameter.h>
#include <Inventor/nodes/SoShaderProgram.h>
#include <Inventor/nodes/SoSphere.h>
#include <Inventor/nodes/SoTexture2.h>
#include <Inventor/nodes/SoTextureCoordinate2.h>
#include <QDateTime>
#include <QDirIterator>
#include <QFile>
#include <QResource>
#include <gmock/gmock.h>

#include "support/CoinEnvironment.h"
#include "support/renderPicture.h"

// The library's resource collection, by the names that Qt gives its functions.
int qInitResources_Strandview();
int qCleanupResources_Strandview();

using testing::IsEmpty;

namespace {

const char* const TEXTS[2] = {":/shaders/vert.glsl", ":/shaders/frag.glsl"};

std::string resource(const char* path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return "";
    return file.readAll().toStdString();
}

std::set<std::string> allResources()
{
    std::set<std::string> paths;
    QDirIterator files(":/", QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                       QDirIterator::Subdirectories);
    while (files.hasNext())
        paths.insert(files.next().toStdString());
    return paths;
}

} // namespace

// Resources

TEST(ShaderResources, ExistWithEveryLineEndedByCrLf)
{
    for (const char* path : TEXTS) {
        SCOPED_TRACE(path);
        const std::string text = resource(path);
        ASSERT_FALSE(text.empty());
        EXPECT_EQ(text.substr(text.size() - 2), "\r\n");
        for (std::size_t i = 0; i < text.size(); ++i) {
            if (text[i] == '\n') {
                EXPECT_TRUE(i > 0 && text[i - 1] == '\r') << "byte " << i;
            }
            if (text[i] == '\r') {
                EXPECT_TRUE(i + 1 < text.size() && text[i + 1] == '\n') << "byte " << i;
            }
            const auto byte = static_cast<unsigned char>(text[i]);
            EXPECT_TRUE(byte < 127 && (byte >= 32 || byte == '\r' || byte == '\n'))
                << "byte " << i << " is no plain text";
        }
    }
}

TEST(ShaderResources, AreTheFilesByteForByteAndUncompressed)
{
    const char* names[2] = {"/vert.glsl", "/frag.glsl"};
    for (int i = 0; i < 2; ++i) {
        SCOPED_TRACE(TEXTS[i]);
        std::ifstream file(std::string(SHADERS_FOLDER) + names[i], std::ios::binary);
        const std::string expected((std::istreambuf_iterator<char>(file)),
                                   std::istreambuf_iterator<char>());
        ASSERT_FALSE(expected.empty());
        const QResource stored(TEXTS[i]);
        ASSERT_TRUE(stored.isValid());
        EXPECT_EQ(stored.compressionAlgorithm(), QResource::NoCompression);
        // The bytes as they are stored.
        EXPECT_EQ(
            std::string(reinterpret_cast<const char*>(stored.data()), std::size_t(stored.size())),
            expected);
        EXPECT_FALSE(stored.lastModified().isValid()); // format version 1 has no times
    }
}

TEST(ShaderResources, AreTakenBackAndRegisteredOnDemand)
{
    const std::string vertexText = resource(TEXTS[0]), fragmentText = resource(TEXTS[1]);
    const std::set<std::string> with = allResources();
    EXPECT_EQ(qCleanupResources_Strandview(), 1);
    const std::set<std::string> without = allResources();
    EXPECT_FALSE(QFile::exists(TEXTS[0]));
    EXPECT_FALSE(QFile::exists(TEXTS[1]));
    EXPECT_EQ(qInitResources_Strandview(), 1);
    EXPECT_EQ(resource(TEXTS[0]), vertexText);
    EXPECT_EQ(resource(TEXTS[1]), fragmentText);
    EXPECT_EQ(allResources(), with);

    // One directory and the two files: nothing else came and went.
    std::set<std::string> difference;
    std::set_difference(with.begin(), with.end(), without.begin(), without.end(),
                        std::inserter(difference, difference.end()));
    EXPECT_EQ(difference,
              (std::set<std::string>{":/shaders", ":/shaders/frag.glsl", ":/shaders/vert.glsl"}));
}

// The compiler

namespace {

// A context of plain OpenGL, current while it exists, without any window system.
class PlainContext
{
public:
    PlainContext()
    {
        const auto getDisplay = reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(
            eglGetProcAddress("eglGetPlatformDisplayEXT"));
        if (getDisplay)
            display = getDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
        if (display == EGL_NO_DISPLAY || !eglInitialize(display, nullptr, nullptr))
            return;
        eglBindAPI(EGL_OPENGL_API);
        const EGLint wanted[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE,
                                 EGL_OPENGL_BIT, EGL_NONE};
        EGLConfig config = nullptr;
        EGLint count = 0;
        if (!eglChooseConfig(display, wanted, &config, 1, &count) || count == 0)
            return;
        context = eglCreateContext(display, config, EGL_NO_CONTEXT, nullptr);
        const EGLint size[] = {EGL_WIDTH, 8, EGL_HEIGHT, 8, EGL_NONE};
        surface = eglCreatePbufferSurface(display, config, size);
        current = eglMakeCurrent(display, surface, surface, context) == EGL_TRUE;
    }
    ~PlainContext()
    {
        if (display == EGL_NO_DISPLAY)
            return;
        // The display stays: it is Coin's contexts' as well.
        eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        if (surface != EGL_NO_SURFACE)
            eglDestroySurface(display, surface);
        if (context != EGL_NO_CONTEXT)
            eglDestroyContext(display, context);
    }
    PlainContext(const PlainContext&) = delete;
    PlainContext& operator=(const PlainContext&) = delete;

    bool isCurrent() const { return current; }

private:
    EGLDisplay display = EGL_NO_DISPLAY;
    EGLContext context = EGL_NO_CONTEXT;
    EGLSurface surface = EGL_NO_SURFACE;
    bool current = false;
};

struct Built
{
    bool compiled = true;
    bool linked = false;
    std::string log; // of both shaders and the program
    std::set<std::string> uniforms;
};

Built build(const std::string& vertexText, const std::string& fragmentText)
{
    Built built;
    const GLuint program = glCreateProgram();
    // Mesa keeps on disk what it has compiled, but not its remarks: no text comes twice.
    const std::string unique =
        "\n// " + std::to_string(std::chrono::system_clock::now().time_since_epoch().count()) +
        "\n";
    const auto compile = [&](GLenum kind, const std::string& shaderText) {
        const std::string text = shaderText + unique;
        const GLuint shader = glCreateShader(kind);
        const char* start = text.c_str();
        glShaderSource(shader, 1, &start, nullptr);
        glCompileShader(shader);
        GLint done = 0, length = 0;
        glGetShaderiv(shader, GL_COMPILE_STATUS, &done);
        glGetShaderiv(shader, GL_INFO_LOG_LENGTH, &length);
        std::string log(std::size_t(length) + 1, '\0');
        glGetShaderInfoLog(shader, length + 1, &length, &log[0]);
        built.log += log.substr(0, std::size_t(length));
        built.compiled &= done == GL_TRUE;
        glAttachShader(program, shader);
        glDeleteShader(shader);
    };
    compile(GL_VERTEX_SHADER, vertexText);
    compile(GL_FRAGMENT_SHADER, fragmentText);
    glLinkProgram(program);
    GLint done = 0, length = 0, count = 0;
    glGetProgramiv(program, GL_LINK_STATUS, &done);
    glGetProgramiv(program, GL_INFO_LOG_LENGTH, &length);
    std::string log(std::size_t(length) + 1, '\0');
    glGetProgramInfoLog(program, length + 1, &length, &log[0]);
    built.log += log.substr(0, std::size_t(length));
    built.linked = done == GL_TRUE;
    glGetProgramiv(program, GL_ACTIVE_UNIFORMS, &count);
    for (GLint i = 0; i < count; ++i) {
        char name[200];
        GLint size = 0;
        GLenum type = 0;
        glGetActiveUniform(program, GLuint(i), sizeof name, nullptr, &size, &type, name);
        if (std::string(name).compare(0, 3, "gl_") != 0)
            built.uniforms.insert(name);
    }
    glDeleteProgram(program);
    return built;
}

} // namespace

TEST(ShaderTexts, CompileAndLinkWithoutARemark)
{
    const PlainContext context;
    ASSERT_TRUE(context.isCurrent());
    for (const char* version : {"", "#version 110\n", "#version 120\n"}) {
        SCOPED_TRACE(version);
        const Built built = build(version + resource(TEXTS[0]), version + resource(TEXTS[1]));
        EXPECT_TRUE(built.compiled);
        EXPECT_TRUE(built.linked);
        EXPECT_THAT(built.log, IsEmpty());
        // What is left of the uniforms when those are gone that influence nothing.
        EXPECT_EQ(built.uniforms,
                  (std::set<std::string>{"isPersp", "useLight", "useTexture", "texture1",
                                         "lightDir[0]", "lightIntensity[0]", "shininess[0]"}));
    }
}

TEST(ShaderTexts, ARemarkOfTheCompilerWouldBeSeen)
{
    const PlainContext context;
    ASSERT_TRUE(context.isCurrent());
    const Built built =
        build(resource(TEXTS[0]), "void main() { float a; gl_FragColor = vec4(a); }");
    EXPECT_TRUE(built.compiled);
    EXPECT_FALSE(built.log.empty());
}

TEST(ShaderTexts, NeedNoExtensionAndNameNoVersion)
{
    for (const char* path : TEXTS) {
        SCOPED_TRACE(path);
        EXPECT_EQ(resource(path).find('#'), std::string::npos);
    }
}

// The unused uniforms are declared all the same.
TEST(ShaderTexts, DeclareTheirInterface)
{
    const char* vertex[] = {"uniform int isPersp;",
                            "uniform int useLight;",
                            "uniform mat4 ModelViewMatrix;",
                            "uniform mat4 ProjectionMatrix;",
                            "uniform mat4 NormalMatrix;",
                            "varying vec3 normal;",
                            "varying vec3 eye;",
                            "varying vec4 color;",
                            "varying vec2 texCoord;",
                            "ftransform()"};
    const char* fragment[] = {"uniform int useLight;",
                              "uniform vec3 lightDir[3];",
                              "uniform float lightIntensity[3];",
                              "uniform float shininess[3];",
                              "uniform vec4 lineColors[2];",
                              "uniform float margins[2];",
                              "uniform int numSteps[2];",
                              "uniform float steps[2];",
                              "uniform mat4 ModelViewMatrix;",
                              "uniform mat4 ProjectionMatrix;",
                              "uniform mat4 NormalMatrix;",
                              "uniform int useTexture;",
                              "uniform sampler2D texture1;"};
    for (const char* declaration : vertex)
        EXPECT_THAT(resource(TEXTS[0]), testing::HasSubstr(declaration));
    for (const char* declaration : fragment)
        EXPECT_THAT(resource(TEXTS[1]), testing::HasSubstr(declaration));
}

// Lighting, computed once more

namespace {

using Vec = std::array<double, 3>;

Vec operator+(const Vec& a, const Vec& b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2]}; }
Vec operator*(double f, const Vec& v) { return {f * v[0], f * v[1], f * v[2]}; }
Vec operator-(const Vec& v) { return -1 * v; }
double dot(const Vec& a, const Vec& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
Vec unit(const Vec& v) { return (1 / std::sqrt(dot(v, v))) * v; }

struct Light
{
    Vec direction = {0, 0, -1};
    double intensity = 0;
    double shininess = 0;
};

// Ambient 0.2, diffuse 0.8 and specular 0.5 after Phong; not clamped.
Vec litColour(const Vec& colour, const Vec& normal, const Vec& eye,
              const std::vector<Light>& lights)
{
    const Vec N = unit(normal), E = unit(eye);
    double diffuse = 0, specular = 0;
    for (const Light& light : lights) {
        if (!(light.intensity > 0))
            continue;
        const Vec L = unit(-light.direction);
        const double k = std::max(0.0, dot(N, L));
        diffuse += 0.8 * light.intensity * k;
        if (light.shininess > 0 && k > 0) {
            const double h = std::max(0.0, dot(E, unit(2 * k * N + -L)));
            if (h > 0)
                specular += 0.5 * light.intensity * std::pow(h, light.shininess);
        }
    }
    return (0.2 + diffuse) * colour + Vec{specular, specular, specular};
}

// 2 of 255: one for the 8 bits of the vertex colour and of the picture, one for the
// single precision of interpolation and powers.
void expectPixel(const Colour& actual, const Vec& colour)
{
    for (int k = 0; k < 3; ++k)
        EXPECT_NEAR(actual[std::size_t(k)], 255 * std::clamp(colour[std::size_t(k)], 0.0, 1.0), 2)
            << "component " << k;
}

const int SIZE = 16; // of the pictures
const int MIDDLE = SIZE / 2;

// Multiples of a fifth, which 8 bits hold exactly.
const Vec DIFFUSE = {0.2, 0.6, 0.4};
const Colour PLAIN = {51, 153, 102}; // the same in 255ths
const Vec TO_VIEWER = {0, 0, 1};

SbVec3f toCoin(const Vec& v) { return SbVec3f(float(v[0]), float(v[1]), float(v[2])); }

struct Quad
{
    Vec normal = TO_VIEWER;
    Vec rightNormal = {0, 0, 0}; // on the right edge, if not zero
    bool backFacing = false;
    double left = -2, right = 2, bottom = -2, top = 2, depth = 0;
    Vec colour = DIFFUSE;
    double transparency = 0;
};

// A rectangle in the plane z = depth, with its own material and normals.
SoSeparator* makeQuad(const Quad& quad)
{
    auto* separator = new SoSeparator;
    auto* material = new SoMaterial;
    material->diffuseColor = SbColor(toCoin(quad.colour));
    material->transparency = float(quad.transparency);
    separator->addChild(material);
    const bool even = dot(quad.rightNormal, quad.rightNormal) == 0;
    const SbVec3f left = toCoin(quad.normal), right = toCoin(even ? quad.normal : quad.rightNormal);
    const auto corner = [&](double x, double y) {
        return SbVec3f(float(x), float(y), float(quad.depth));
    };
    SbVec3f corners[4] = {corner(quad.left, quad.bottom), corner(quad.right, quad.bottom),
                          corner(quad.right, quad.top), corner(quad.left, quad.top)};
    SbVec3f normals[4] = {left, right, right, left};
    if (quad.backFacing) {
        std::reverse(corners, corners + 4);
        std::reverse(normals, normals + 4);
    }
    auto* binding = new SoNormalBinding;
    binding->value = SoNormalBinding::PER_VERTEX;
    separator->addChild(binding);
    auto* normal = new SoNormal;
    normal->vector.setValues(0, 4, normals);
    separator->addChild(normal);
    auto* coordinates = new SoCoordinate3;
    coordinates->point.setValues(0, 4, corners);
    separator->addChild(coordinates);
    auto* faces = new SoFaceSet;
    faces->numVertices = 4;
    separator->addChild(faces);
    return separator;
}

SoSeparator* quadWithNormal(const Vec& normal, bool backFacing = false)
{
    Quad quad;
    quad.normal = normal;
    quad.backFacing = backFacing;
    return makeQuad(quad);
}

// Every message of Coin while it exists.
class Messages
{
public:
    Messages()
        : previousCpp(SoDebugError::getHandlerCallback()),
          previousCppData(SoDebugError::getHandlerData()),
          previousC(cc_debugerror_get_handler_callback()),
          previousCData(cc_debugerror_get_handler_data())
    {
        SoDebugError::setHandlerCallback(
            [](const SoError* error, void* data) {
                static_cast<Messages*>(data)->texts.emplace_back(
                    error->getDebugString().getString());
            },
            this);
        cc_debugerror_set_handler_callback(
            [](const cc_debugerror* error, void* data) {
                const cc_string* text =
                    cc_error_get_debug_string(reinterpret_cast<const cc_error*>(error));
                static_cast<Messages*>(data)->texts.emplace_back(cc_string_get_text(text));
            },
            this);
    }
    ~Messages()
    {
        SoDebugError::setHandlerCallback(previousCpp, previousCppData);
        cc_debugerror_set_handler_callback(previousC, previousCData);
    }
    Messages(const Messages&) = delete;
    Messages& operator=(const Messages&) = delete;

    std::vector<std::string> texts;

private:
    SoErrorCB* previousCpp;
    void* previousCppData;
    cc_debugerror_cb* previousC;
    void* previousCData;
};

SoShaderParameter1i* flag(SoNode* program, int stage, const char* name)
{
    auto* shader =
        static_cast<SoShaderObject*>(static_cast<SoShaderProgram*>(program)->shaderObject[stage]);
    for (int i = 0; i < shader->parameter.getNum(); ++i) {
        auto* parameter = static_cast<SoShaderParameter1i*>(shader->parameter[i]);
        if (parameter->name.getValue() == name)
            return parameter;
    }
    return nullptr;
}

} // namespace

// A scene under a camera that looks along -z at the square from -1 to 1 in the plane
// z = 0, from 5 away. The first light has no highlight, the others are off.
class LitSceneTest : public testing::Test
{
protected:
    static void SetUpTestSuite() { initScenesOnce(); }

    LitSceneTest()
    {
        camera->position = SbVec3f(0, 0, 5);
        camera->height = 2;
        camera->nearDistance = 1;
        camera->farDistance = 10;
        root->addChild(camera);
        root->addChild(scene);
        scene->getLightingParameters(dirs, intensities, shininess);
    }

    void setLights(const std::vector<Light>& lights)
    {
        for (std::size_t i = 0; i < 3; ++i) {
            const Light light = i < lights.size() ? lights[i] : Light();
            dirs->value.set1Value(int(i), toCoin(light.direction));
            intensities->value.set1Value(int(i), float(light.intensity));
            shininess->value.set1Value(int(i), float(light.shininess));
        }
    }

    Picture render() { return renderPicture(root, SIZE, SIZE); }

    Colour renderMiddle()
    {
        const Picture picture = render();
        return picture.isRendered() ? picture.getColour(MIDDLE, MIDDLE) : Colour{-1, -1, -1};
    }

    SoGroup* group(int index)
    {
        return static_cast<SoGroup*>(static_cast<SoGroup*>(scene->getChild(0))->getChild(index));
    }
    SoNode* solidProgram() { return group(1)->getChild(1); }

    // Where the pixel's middle lies in the plane z = 0 under an orthographic camera.
    static double place(int pixel) { return 2 * (pixel + 0.5) / SIZE - 1; }

    NodeRef<SoSeparator> root{new SoSeparator};
    SoOrthographicCamera* camera = new SoOrthographicCamera;
    SoGeneralScene* scene = new SoGeneralScene;
    SoShaderParameterArray3f* dirs = nullptr;
    SoShaderParameterArray1f* intensities = nullptr;
    SoShaderParameterArray1f* shininess = nullptr;
};

const std::vector<Light> DEFAULT_LIGHTS = {{{0.2, -0.2, -1}, 1, 10}};

TEST_F(LitSceneTest, DefaultLightIsTheFirstAlone)
{
    const Vec normal = unit({-0.3, 0.2, 1});
    scene->addShaded(quadWithNormal(normal));
    expectPixel(renderMiddle(), litColour(DIFFUSE, normal, TO_VIEWER, DEFAULT_LIGHTS));
}

TEST_F(LitSceneTest, AnIntensityThatIsSetShowsInTheNextRender)
{
    const Vec normal = unit({0.4, 0.2, 1});
    scene->addShaded(quadWithNormal(normal));
    const Colour before = renderMiddle();
    expectPixel(before, litColour(DIFFUSE, normal, TO_VIEWER, DEFAULT_LIGHTS));
    intensities->value.set1Value(1, 0.5f);
    std::vector<Light> lights = DEFAULT_LIGHTS;
    lights.push_back({{-0.2, -0.2, -1}, 0.5, 10});
    const Colour after = renderMiddle();
    expectPixel(after, litColour(DIFFUSE, normal, TO_VIEWER, lights));
    EXPECT_GT(after[1], before[1] + 20);
    intensities->value.set1Value(1, 0.0f);
    EXPECT_EQ(renderMiddle(), before);
}

TEST_F(LitSceneTest, EveryArrayReachesTheNextRender)
{
    const Vec normal = unit({0.1, 0.2, 1});
    scene->addShaded(quadWithNormal(normal));
    std::vector<Light> lights = {{{0, 0, -1}, 0.5, 0}};
    setLights(lights);
    expectPixel(renderMiddle(), litColour(DIFFUSE, normal, TO_VIEWER, lights));
    lights[0].shininess = 30;
    shininess->value.set1Value(0, 30);
    expectPixel(renderMiddle(), litColour(DIFFUSE, normal, TO_VIEWER, lights));
    lights[0].direction = {-1, 0.5, -1};
    dirs->value.set1Value(0, SbVec3f(-1, 0.5f, -1));
    expectPixel(renderMiddle(), litColour(DIFFUSE, normal, TO_VIEWER, lights));
    lights = {{{0, 1, -1}, 0.25, 5}, {{1, 1, -2}, 0.75, 50}, {{0, -1, -1}, 0.5, 2}};
    SbVec3f directions[3];
    float values[2][3];
    for (std::size_t i = 0; i < 3; ++i) {
        directions[i] = toCoin(lights[i].direction);
        values[0][i] = float(lights[i].intensity);
        values[1][i] = float(lights[i].shininess);
    }
    dirs->value.setValues(0, 3, directions);
    intensities->value.setValues(0, 3, values[0]);
    shininess->value.setValues(0, 3, values[1]);
    expectPixel(renderMiddle(), litColour(DIFFUSE, normal, TO_VIEWER, lights));
}

struct LightingCase
{
    const char* name;
    std::vector<Light> lights;
    Vec normal;
};

class LitSceneLightsTest : public LitSceneTest, public testing::WithParamInterface<LightingCase>
{
};

TEST_P(LitSceneLightsTest, FrontFaceHasTheColourOfTheFormula)
{
    setLights(GetParam().lights);
    scene->addShaded(quadWithNormal(GetParam().normal));
    expectPixel(renderMiddle(),
                litColour(DIFFUSE, GetParam().normal, TO_VIEWER, GetParam().lights));
}

TEST_P(LitSceneLightsTest, BackFaceIsLitAsIfTurnedRound)
{
    setLights(GetParam().lights);
    scene->addShaded(quadWithNormal(-GetParam().normal, true));
    expectPixel(renderMiddle(),
                litColour(DIFFUSE, GetParam().normal, TO_VIEWER, GetParam().lights));
}

// An evenly lit quad does not move when the camera turns with it: lights are the eye's.
TEST_P(LitSceneLightsTest, LightsTurnWithTheCamera)
{
    setLights(GetParam().lights);
    const SbRotation turn(SbVec3f(1, 2, -0.5f), 2.1f);
    camera->orientation = turn;
    SbVec3f position;
    turn.multVec(SbVec3f(0, 0, 5), position);
    camera->position = position;
    auto* turned = new SoSeparator;
    auto* rotation = new SoRotation;
    rotation->rotation = turn;
    turned->addChild(rotation);
    turned->addChild(quadWithNormal(GetParam().normal));
    scene->addShaded(turned);
    expectPixel(renderMiddle(),
                litColour(DIFFUSE, GetParam().normal, TO_VIEWER, GetParam().lights));
}

// The shape alone turns and is stretched: a quarter turn about z takes (x, y, z) to
// (-y, x, z), and a normal shrinks along the axis in which its surface grows.
TEST_P(LitSceneLightsTest, NormalsFollowTheShape)
{
    setLights(GetParam().lights);
    auto* moved = new SoSeparator;
    auto* rotation = new SoRotation;
    rotation->rotation = SbRotation(SbVec3f(0, 0, 1), float(M_PI / 2));
    moved->addChild(rotation);
    auto* scale = new SoScale;
    scale->scaleFactor = SbVec3f(4, 1, 1);
    moved->addChild(scale);
    // Before the turn the surface's normal is (y, -x, z).
    const Vec normal = GetParam().normal;
    moved->addChild(quadWithNormal({4 * normal[1], -normal[0], normal[2]}));
    scene->addShaded(moved);
    expectPixel(renderMiddle(), litColour(DIFFUSE, normal, TO_VIEWER, GetParam().lights));
}

INSTANTIATE_TEST_SUITE_P(
    LitScene, LitSceneLightsTest,
    testing::Values(
        LightingCase{"NoLight", {}, {0, 0, 1}},
        LightingCase{"Frontal", {{{0, 0, -1}, 0.5, 0}}, {0, 0, 1}},
        LightingCase{"Oblique", {{{1, -1, -1}, 0.7, 0}}, {0.3, 0.1, 0.9}},
        LightingCase{"FromBehind", {{{0, 0, 1}, 1, 10}}, {0.1, 0.1, 0.9}},
        LightingCase{"Grazing", {{{-1, 0, 0}, 1, 0}}, {0.3, 0, 0.95}},
        LightingCase{"NoHighlightWithoutShininess", {{{0, 0, -1}, 1, 0}}, {0.1, 0, 0.9}},
        LightingCase{"NoHighlightBelowZero", {{{0, 0, -1}, 1, -3}}, {0.1, 0, 0.9}},
        LightingCase{"WideHighlight", {{{0.3, 0.2, -1}, 0.6, 1}}, {-0.1, 0, 0.9}},
        LightingCase{"NarrowHighlight", {{{0.3, 0.2, -1}, 0.6, 80}}, {-0.1, -0.05, 0.9}},
        // The reflection points away from the viewer.
        LightingCase{"HighlightBehind", {{{-1, 0, -0.1}, 1, 2}}, {0.9, 0, 0.3}},
        LightingCase{"LongDirection", {{{30, -30, -100}, 0.8, 10}}, {0.1, 0, 0.9}},
        LightingCase{"ShortDirection", {{{0.003, -0.003, -0.01}, 0.8, 10}}, {0.1, 0, 0.9}},
        LightingCase{"NegativeIntensityIsOff", {{{0, 0, -1}, -1, 10}}, {0, 0, 1}},
        LightingCase{"SecondAlone", {{}, {{-0.5, 0.1, -1}, 0.6, 15}}, {0.1, 0.2, 0.8}},
        LightingCase{"ThirdAlone", {{}, {}, {{-0.5, 0.1, -1}, 0.6, 15}}, {0.1, 0.2, 0.8}},
        LightingCase{"Two", {{{0.4, 0, -1}, 0.5, 10}, {{-1, -0.5, -1}, 0.4, 0}}, {-0.05, 0.1, 0.9}},
        LightingCase{
            "Three",
            {{{0.2, -0.2, -1}, 0.3, 10}, {{-0.2, -0.2, -1}, 0.25, 20}, {{0, 0.2, -1}, 0.2, 5}},
            {0.05, -0.1, 0.9}},
        // Red stays below 1, green and blue do not.
        LightingCase{"Saturating", {{{0, 0, -1}, 3, 0}}, {0, 0, 1}}),
    [](const auto& paramInfo) { return std::string(paramInfo.param.name); });

TEST_F(LitSceneTest, SaturationStopsAtWhite)
{
    setLights({{{0, 0, -1}, 20, 10}});
    scene->addShaded(quadWithNormal(TO_VIEWER));
    EXPECT_EQ(renderMiddle(), (Colour{255, 255, 255}));
}

TEST_F(LitSceneTest, NormalsAreMadeUnitAfterTheyAreInterpolatedAndScaled)
{
    const std::vector<Light> lights = {{{0.3, 0.1, -1}, 0.6, 12}};
    setLights(lights);
    Quad quad;
    quad.normal = {-3, 0, 4};
    quad.rightNormal = {1.2, 0, 1.6};
    auto* scaled = new SoSeparator;
    auto* scale = new SoScale;
    scale->scaleFactor = SbVec3f(0.25f, 0.25f, 0.25f);
    scaled->addChild(scale);
    quad.left = quad.bottom = -8;
    quad.right = quad.top = 8;
    scaled->addChild(makeQuad(quad));
    scene->addShaded(scaled);
    const Picture picture = render();
    ASSERT_TRUE(picture.isRendered());
    for (int x : {0, 5, 8, 12, 15}) {
        SCOPED_TRACE(x);
        const double t = (place(x) + 2) / 4; // from the left edge, -2, to the right, 2
        const Vec normal = (1 - t) * quad.normal + t * quad.rightNormal;
        expectPixel(picture.getColour(x, 3), litColour(DIFFUSE, normal, TO_VIEWER, lights));
    }
}

TEST_F(LitSceneTest, EyeIsAtTheCameraOnlyIfPerspective)
{
    auto* perspective = new SoPerspectiveCamera;
    perspective->position = SbVec3f(0, 0, 5);
    perspective->heightAngle = 1.2f;
    perspective->nearDistance = 1;
    perspective->farDistance = 10;
    root->replaceChild(camera, perspective);
    camera = nullptr;
    Quad quad;
    quad.left = quad.bottom = -10;
    quad.right = quad.top = 10;
    quad.normal = unit({0.1, -0.05, 1});
    scene->addShaded(makeQuad(quad));
    const std::vector<Light> lights = {{{0.3, 0.2, -1}, 0.6, 8}};
    setLights(lights);
    for (bool atCamera : {true, false, true}) {
        SCOPED_TRACE(atCamera);
        scene->setShaderPersp(atCamera);
        const Picture picture = render();
        ASSERT_TRUE(picture.isRendered());
        double least = 255, most = 0;
        for (int y : {0, 7, 8, 15}) {
            for (int x : {0, 4, 8, 15}) {
                SCOPED_TRACE(testing::Message() << x << " " << y);
                const double reach = 5 * std::tan(0.6); // at the quad, 5 away
                const Vec eye = {-place(x) * reach, -place(y) * reach, 5};
                expectPixel(picture.getColour(x, y),
                            litColour(DIFFUSE, quad.normal, atCamera ? eye : TO_VIEWER, lights));
                least = std::min(least, double(picture.getColour(x, y)[0]));
                most = std::max(most, double(picture.getColour(x, y)[0]));
            }
        }
        if (atCamera)
            EXPECT_GT(most - least, 40); // a highlight in one place
        else
            EXPECT_LE(most - least, 1);
    }
}

TEST_F(LitSceneTest, PerspectiveFlagChangesAnOrthographicPictureToo)
{
    setLights({{{0, 0, -1}, 1, 20}});
    scene->addShaded(quadWithNormal(TO_VIEWER));
    const Colour flat = render().getColour(0, 0);
    scene->setShaderPersp(true);
    const Vec eye = {-place(0), -place(0), 5};
    const Colour atCamera = render().getColour(0, 0);
    expectPixel(atCamera, litColour(DIFFUSE, TO_VIEWER, eye, {{{0, 0, -1}, 1, 20}}));
    EXPECT_NE(atCamera, flat);
}

// The groups

TEST_F(LitSceneTest, SolidContentHasExactlyTheMaterialsColour)
{
    setLights({{{0, 0, -1}, 3, 1}, {{0, 0, -1}, 3, 1}, {{0, 0, -1}, 3, 1}});
    scene->addSolid(quadWithNormal({0.6, 0, 0.8}));
    const Picture picture = render();
    ASSERT_TRUE(picture.isRendered());
    EXPECT_EQ(picture.count(PLAIN), SIZE * SIZE);
}

TEST_F(LitSceneTest, SolidBackFacesHaveTheSameColour)
{
    scene->addSolid(quadWithNormal(TO_VIEWER, true));
    EXPECT_EQ(render().count(PLAIN), SIZE * SIZE);
}

TEST_F(LitSceneTest, PlainChildrenAreDrawnByNeitherProgram)
{
    // Behind the scene's own content; drawn by OpenGL's own lighting, and there is no
    // light but Coin's ambient one, which this material does not reflect.
    auto* quad = quadWithNormal(TO_VIEWER);
    auto* material = static_cast<SoMaterial*>(quad->getChild(0));
    material->ambientColor = SbColor(0, 0, 0);
    material->emissiveColor = SbColor(0, 0, 1);
    scene->addChild(quad);
    EXPECT_EQ(renderMiddle(), (Colour{0, 0, 255}));
}

namespace {

// Three squares side by side on a picture of 48 x 16: solid, shaded, changing.
const int WIDTH = 48;

Quad inThird(int third)
{
    Quad quad;
    quad.left = -2.5 + 2 * third;
    quad.right = quad.left + 1;
    quad.bottom = -0.5;
    quad.top = 0.5;
    return quad;
}

// The pixels that are not black, per third.
std::array<int, 3> covered(const Picture& picture)
{
    std::array<int, 3> counts = {};
    for (int x = 0; x < WIDTH; ++x)
        for (int y = 0; y < SIZE; ++y)
            counts[std::size_t(x / SIZE)] += picture.getColour(x, y) != BLACK;
    return counts;
}

} // namespace

TEST_F(LitSceneTest, DrawStyleReachesSolidAndChangingContentAndNeverShaded)
{
    camera->viewportMapping = SoCamera::LEAVE_ALONE;
    camera->aspectRatio = 3;
    setLights({{{0, 0, -1}, 0.5, 0}});
    scene->addSolid(makeQuad(inThird(0)));
    scene->addShaded(makeQuad(inThird(1)));
    scene->addChanging(makeQuad(inThird(2)));
    const Vec lit = litColour(DIFFUSE, TO_VIEWER, TO_VIEWER, {{{0, 0, -1}, 0.5, 0}}); // 0.6 of it

    for (int round = 0; round < 2; ++round) {
        SCOPED_TRACE(round);
        for (const char* state : {"lit", "unlit", "wireframe"}) {
            SCOPED_TRACE(state);
            const Picture picture = renderPicture(root, WIDTH, SIZE);
            ASSERT_TRUE(picture.isRendered());
            const std::array<int, 3> counts = covered(picture);
            EXPECT_EQ(counts[1], 64); // a square 8 pixels wide
            expectPixel(picture.getColour(24, 8), lit);
            if (state == std::string("wireframe")) {
                for (int third : {0, 2}) {
                    EXPECT_GE(counts[std::size_t(third)], 24);
                    EXPECT_LT(counts[std::size_t(third)], 64);
                    EXPECT_EQ(picture.getColour(16 * third + 8, 8), BLACK);
                }
                EXPECT_GE(picture.count(PLAIN), 48); // the lines are unlit
            } else {
                EXPECT_EQ(counts[0], 64);
                EXPECT_EQ(counts[2], 64);
                EXPECT_EQ(picture.getColour(8, 8), PLAIN);
                if (state == std::string("lit"))
                    expectPixel(picture.getColour(40, 8), lit);
                else
                    EXPECT_EQ(picture.getColour(40, 8), PLAIN);
            }
            scene->toggleDrawStyle(false);
        }
    }
}

TEST_F(LitSceneTest, LineWidthShowsInTheWireframe)
{
    scene->setGLLineData(SbVec2f(1, 10), 3);
    Quad quad;
    quad.left = quad.bottom = -0.6;
    quad.right = quad.top = 0.6;
    scene->addSolid(makeQuad(quad));
    scene->toggleDrawStyle(false);
    scene->toggleDrawStyle(false);
    const int thin = render().countOther(BLACK);
    EXPECT_GT(thin, 0);
    SoKeyboardEvent event;
    event.setKey(SoKeyboardEvent::EQUAL);
    event.setState(SoButtonEvent::DOWN);
    EXPECT_TRUE(scene->processSoEvent(&event));
    EXPECT_GT(render().countOther(BLACK), 2 * thin);
}

TEST_F(LitSceneTest, BoundingBoxComplexityReachesAllContent)
{
    camera->viewportMapping = SoCamera::LEAVE_ALONE;
    camera->aspectRatio = 3;
    setLights({{{0, 0, -1}, 0.5, 0}});
    for (int third = 0; third < 3; ++third) {
        // A triangle: its box covers about twice as much.
        auto* quad = makeQuad(inThird(third));
        static_cast<SoFaceSet*>(quad->getChild(4))->numVertices = 3;
        third == 0   ? scene->addSolid(quad)
        : third == 1 ? scene->addShaded(quad)
                     : scene->addChanging(quad);
    }
    const std::array<int, 3> triangles = covered(renderPicture(root, WIDTH, SIZE));
    scene->toggleDrawStyle(true);
    const std::array<int, 3> boxes = covered(renderPicture(root, WIDTH, SIZE));
    for (std::size_t third = 0; third < 3; ++third) {
        EXPECT_GT(triangles[third], 20);
        EXPECT_LT(triangles[third], 45);
        EXPECT_EQ(boxes[third], 64);
    }
}

// Transparency and texture

TEST_F(LitSceneTest, AlphaOfTheVertexColourIsKept)
{
    setLights({{{0, 0, -1}, 0.5, 0}}); // 0.6 of the colour
    Quad behind;
    behind.colour = {1, 0.2, 0};
    behind.depth = -1;
    scene->addSolid(makeQuad(behind));
    Quad quad;
    quad.transparency = 0.6;
    scene->addShaded(makeQuad(quad));
    const Vec lit = litColour(DIFFUSE, TO_VIEWER, TO_VIEWER, {{{0, 0, -1}, 0.5, 0}});
    expectPixel(renderMiddle(), 0.4 * lit + 0.6 * behind.colour);
}

namespace {

SoSeparator* texturedQuad(const Quad& quad, const SbVec2s& size, int components,
                          const std::vector<unsigned char>& texels)
{
    auto* separator = new SoSeparator;
    auto* texture = new SoTexture2;
    texture->image.setValue(size, components, texels.data());
    separator->addChild(texture);
    const SbVec2f places[4] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}}; // as the corners
    auto* coordinates = new SoTextureCoordinate2;
    coordinates->point.setValues(0, 4, places);
    separator->addChild(coordinates);
    separator->addChild(makeQuad(quad));
    return separator;
}

std::vector<unsigned char> repeated(const std::vector<unsigned char>& texel, int count)
{
    std::vector<unsigned char> texels;
    for (int i = 0; i < count; ++i)
        texels.insert(texels.end(), texel.begin(), texel.end());
    return texels;
}

} // namespace

TEST_F(LitSceneTest, TextureIsBlendedByItsAlphaIfSwitchedOn)
{
    const std::vector<unsigned char> texel = {255, 51, 204, 153};
    const Vec colour = {1, 0.2, 0.8};
    const double alpha = 0.6;
    const Vec blended = alpha * colour + (1 - alpha) * DIFFUSE;
    const std::vector<Light> lights = {{{0, 0, -1}, 0.5, 0}};
    setLights(lights);
    SoShaderParameter1i* const useTexture = flag(solidProgram(), 0, "useTexture");
    ASSERT_NE(useTexture, nullptr);

    camera->viewportMapping = SoCamera::LEAVE_ALONE;
    camera->aspectRatio = 3;
    scene->addSolid(texturedQuad(inThird(0), SbVec2s(4, 4), 4, repeated(texel, 16)));
    scene->addShaded(texturedQuad(inThird(1), SbVec2s(4, 4), 4, repeated(texel, 16)));
    scene->addChanging(texturedQuad(inThird(2), SbVec2s(4, 4), 4, repeated(texel, 16)));
    for (bool on : {false, true, false}) {
        SCOPED_TRACE(on);
        useTexture->value = on ? 1 : 0;
        const Picture picture = renderPicture(root, WIDTH, SIZE);
        ASSERT_TRUE(picture.isRendered());
        const Vec base = on ? blended : DIFFUSE;
        expectPixel(picture.getColour(8, 8), base);
        expectPixel(picture.getColour(24, 8), litColour(base, TO_VIEWER, TO_VIEWER, lights));
        expectPixel(picture.getColour(40, 8), litColour(base, TO_VIEWER, TO_VIEWER, lights));
    }
}

TEST_F(LitSceneTest, TextureDoesNotChangeTheAlpha)
{
    Quad behind;
    behind.colour = {0.2, 0.2, 1};
    behind.depth = -1;
    // Drawn by the plain program first; the texture flag is everybody's, so the
    // background has a texture too, which is wholly transparent.
    scene->addSolid(texturedQuad(behind, SbVec2s(4, 4), 4, repeated({0, 0, 0, 0}, 16)));
    Quad quad;
    quad.transparency = 0.6;
    scene->addSolid(texturedQuad(quad, SbVec2s(4, 4), 4, repeated({255, 0, 0, 255}, 16)));
    flag(solidProgram(), 0, "useTexture")->value = 1;
    expectPixel(renderMiddle(), 0.4 * Vec{1, 0, 0} + 0.6 * behind.colour);
}

TEST_F(LitSceneTest, TextureIsPlacedByTheCoordinatesOfUnitZero)
{
    // Left half red, right half blue; lower half as it is, upper half dark.
    std::vector<unsigned char> texels;
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x)
            for (int value : {x < 4 ? 255 : 0, y < 4 ? 0 : 102, x < 4 ? 0 : 255})
                texels.push_back(static_cast<unsigned char>(value));
    Quad quad;
    quad.left = quad.bottom = -1;
    quad.right = quad.top = 1;
    scene->addSolid(texturedQuad(quad, SbVec2s(8, 8), 3, texels));
    flag(solidProgram(), 0, "useTexture")->value = 1;
    const Picture picture = render();
    ASSERT_TRUE(picture.isRendered());
    expectPixel(picture.getColour(4, 4), {1, 0, 0});
    expectPixel(picture.getColour(12, 4), {0, 0, 1});
    expectPixel(picture.getColour(4, 12), {1, 0.4, 0});
    expectPixel(picture.getColour(12, 12), {0, 0.4, 1});
}

// Messages and missing texts

TEST_F(LitSceneTest, RenderingMakesNoRemark)
{
    Messages messages;
    scene->addSolid(makeQuad(inThird(0)));
    scene->addShaded(makeQuad(inThird(1)));
    scene->addShaded(new SoSphere);
    scene->addChanging(makeQuad(inThird(2)));
    for (int i = 0; i < 4; ++i) {
        ASSERT_TRUE(render().isRendered());
        scene->toggleDrawStyle(false);
        scene->setShaderPersp(i % 2 == 0);
        intensities->value.set1Value(i % 3, 0.5f);
    }
    EXPECT_THAT(messages.texts, IsEmpty());
}

TEST_F(LitSceneTest, MissingTextsAreEmptyAndOtherScenesStay)
{
    scene->addSolid(quadWithNormal(TO_VIEWER));
    ASSERT_EQ(qCleanupResources_Strandview(), 1);
    NodeRef<SoGeneralScene> bare(new SoGeneralScene);
    EXPECT_EQ(qInitResources_Strandview(), 1);
    auto* bareRoot = static_cast<SoGroup*>(bare->getChild(0));
    for (int g : {1, 2}) {
        auto* program = static_cast<SoShaderProgram*>(
            static_cast<SoGroup*>(bareRoot->getChild(g))->getChild(g == 1 ? 1 : 0));
        ASSERT_EQ(program->shaderObject.getNum(), 2);
        for (int i = 0; i < 2; ++i) {
            auto* shader = static_cast<SoShaderObject*>(program->shaderObject[i]);
            EXPECT_EQ(shader->sourceProgram.getValue(), "");
            EXPECT_EQ(shader->sourceType.getValue(), SoShaderObject::GLSL_PROGRAM);
        }
    }
    EXPECT_EQ(renderMiddle(), PLAIN);
}
