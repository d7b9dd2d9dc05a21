// SPDX-License-Identifier: GPL-3.0-or-later
#include <OffscreenContext.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <dirent.h>
#include <dlfcn.h>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GL/gl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <Inventor/C/glue/gl.h>
#include <Inventor/SoOffscreenRenderer.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/errors/SoDebugError.h>
#include <Inventor/nodes/SoCallback.h>
#include <Inventor/nodes/SoComplexity.h>
#include <Inventor/nodes/SoCoordinate3.h>
#include <Inventor/nodes/SoFaceSet.h>
#include <Inventor/nodes/SoFragmentShader.h>
#include <Inventor/nodes/SoLightModel.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoMaterialBinding.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoShaderProgram.h>
#include <Inventor/nodes/SoSphere.h>

#include "support/CoinEnvironment.h"
#include "support/keepPictures.h"

using testing::AllOf;
using testing::HasSubstr;
using testing::ResultOf;

// EGL, watched and hindered: the library's calls come here first, because the
// program's own symbols are found before those of its libraries.

namespace {

struct Watch
{
    int contexts = 0;             // made and not yet destroyed
    int pbuffers = 0;             // likewise
    int made = 0;                 // contexts made in all
    double largestArea = 1e9;     // of a pbuffer, in pixels; larger ones are refused
    std::string hiddenExtensions; // the client extensions with this in their name
};

Watch watch;

template <typename Function>
Function original(const char* name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" {

__attribute__((visibility("default"))) EGLContext
eglCreateContext(EGLDisplay display, EGLConfig config, EGLContext share, const EGLint* attributes)
{
    static const auto create = original<decltype(&eglCreateContext)>("eglCreateContext");
    EGLContext context = create(display, config, share, attributes);
    watch.contexts += context != EGL_NO_CONTEXT;
    watch.made += context != EGL_NO_CONTEXT;
    return context;
}

__attribute__((visibility("default"))) EGLBoolean eglDestroyContext(EGLDisplay display,
                                                                    EGLContext context)
{
    static const auto destroy = original<decltype(&eglDestroyContext)>("eglDestroyContext");
    const EGLBoolean done = destroy(display, context);
    watch.contexts -= done == EGL_TRUE;
    return done;
}

__attribute__((visibility("default"))) EGLSurface
eglCreatePbufferSurface(EGLDisplay display, EGLConfig config, const EGLint* attributes)
{
    static const auto create =
        original<decltype(&eglCreatePbufferSurface)>("eglCreatePbufferSurface");
    double area = 1;
    for (const EGLint* entry = attributes; *entry != EGL_NONE; entry += 2)
        if (entry[0] == EGL_WIDTH || entry[0] == EGL_HEIGHT)
            area *= entry[1];
    if (area > watch.largestArea)
        return EGL_NO_SURFACE;
    EGLSurface surface = create(display, config, attributes);
    watch.pbuffers += surface != EGL_NO_SURFACE;
    return surface;
}

__attribute__((visibility("default"))) EGLBoolean eglDestroySurface(EGLDisplay display,
                                                                    EGLSurface surface)
{
    static const auto destroy = original<decltype(&eglDestroySurface)>("eglDestroySurface");
    const EGLBoolean done = destroy(display, surface);
    watch.pbuffers -= done == EGL_TRUE;
    return done;
}

__attribute__((visibility("default"))) const char* eglQueryString(EGLDisplay display, EGLint name)
{
    static const auto query = original<decltype(&eglQueryString)>("eglQueryString");
    const char* answer = query(display, name);
    if (watch.hiddenExtensions.empty() || display != EGL_NO_DISPLAY || !answer)
        return answer;
    static std::string shown;
    shown.clear();
    std::istringstream words(answer);
    for (std::string word; words >> word;)
        if (word.find(watch.hiddenExtensions) == std::string::npos)
            shown += word + " ";
    return shown.c_str();
}

} // extern "C"

namespace {

using Pixel = std::array<int, 4>;

const Pixel PLAIN_RED = {255, 0, 0, 255};
const Pixel PLAIN_BLUE = {0, 0, 255, 0};
const SbColor BLUE_BACKGROUND(0, 0, 1);

// Added to a scene first: an orthographic view of the square |x|, |y| <= 2, in which
// colours are shown as they are given.
SoSeparator* emptyScene()
{
    auto* scene = new SoSeparator;
    auto* camera = new SoOrthographicCamera;
    camera->position = SbVec3f(0, 0, 5);
    camera->height = 4;
    scene->addChild(camera);
    auto* lightModel = new SoLightModel;
    lightModel->model = SoLightModel::BASE_COLOR;
    scene->addChild(lightModel);
    return scene;
}

// A red disc of half the picture's shorter side in its centre.
void addRedSphere(SoSeparator* scene)
{
    auto* complexity = new SoComplexity;
    complexity->value = 1;
    scene->addChild(complexity);
    auto* material = new SoMaterial;
    material->diffuseColor = SbColor(1, 0, 0);
    scene->addChild(material);
    scene->addChild(new SoSphere);
}

SoSeparator* sphereScene()
{
    SoSeparator* scene = emptyScene();
    addRedSphere(scene);
    return scene;
}

// A rectangle of the given half sides whose red rises along x and whose green rises
// along y, each from 0 to 1.
void addGradient(SoSeparator* scene, float halfWidth, float halfHeight)
{
    auto* binding = new SoMaterialBinding;
    binding->value = SoMaterialBinding::PER_VERTEX;
    scene->addChild(binding);
    auto* coordinates = new SoCoordinate3;
    auto* material = new SoMaterial;
    const float corners[4][2] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    for (int i = 0; i < 4; ++i) {
        const float x = corners[i][0];
        const float y = corners[i][1];
        coordinates->point.set1Value(i, halfWidth * (2 * x - 1), halfHeight * (2 * y - 1), -2);
        material->diffuseColor.set1Value(i, x, y, 0);
    }
    scene->addChild(coordinates);
    scene->addChild(material);
    scene->addChild(new SoFaceSet);
}

// A renderer with a blue background, and its pixels; (0, 0) is the lower left one.
class Renderer
{
public:
    Renderer(int pictureWidth, int pictureHeight,
             SoOffscreenRenderer::Components pictureComponents = SoOffscreenRenderer::RGB)
        : width(pictureWidth),
          renderer(SbViewportRegion(short(pictureWidth), short(pictureHeight))),
          components(pictureComponents)
    {
        renderer.setComponents(pictureComponents);
        renderer.setBackgroundColor(BLUE_BACKGROUND);
    }

    void setSize(int pictureWidth, int pictureHeight)
    {
        width = pictureWidth;
        renderer.setViewportRegion(SbViewportRegion(short(pictureWidth), short(pictureHeight)));
    }

    bool render(SoNode* scene)
    {
        scene->ref();
        const bool done = renderer.render(scene);
        scene->unrefNoDelete();
        buffer = done ? renderer.getBuffer() : nullptr;
        if (done)
            keep();
        return done;
    }

    // Without an alpha channel the alpha is that of PLAIN_RED and PLAIN_BLUE.
    Pixel getPixel(int x, int y) const
    {
        const unsigned char* pixel = getAddress(x, y);
        const int alpha = components == SoOffscreenRenderer::RGB_TRANSPARENCY ? pixel[3]
                          : pixel[2] == 255                                   ? 0
                                                                              : 255;
        return {pixel[0], pixel[1], pixel[2], alpha};
    }

    const unsigned char* getAddress(int x, int y) const
    {
        return buffer + (std::size_t(y) * width + x) * components;
    }

private:
    void keep() const
    {
        const int height = renderer.getViewportRegion().getViewportSizePixels()[1];
        const bool hasAlpha = components == SoOffscreenRenderer::RGB_TRANSPARENCY;
        const QImage upsideDown(buffer, width, height, width * components,
                                hasAlpha ? QImage::Format_RGBA8888 : QImage::Format_RGB888);
        keepIfFailed(upsideDown.mirrored());
    }

    int width;
    SoOffscreenRenderer renderer;
    SoOffscreenRenderer::Components components;
    const unsigned char* buffer = nullptr;
};

// Whether a fresh renderer shows the red sphere before blue, in the sizes given.
bool showsSphere(int width, int height)
{
    NodeRef<SoSeparator> scene(sphereScene());
    Renderer renderer(width, height);
    return renderer.render(scene) && renderer.getPixel(width / 2, height / 2) == PLAIN_RED &&
           renderer.getPixel(0, 0) == PLAIN_BLUE &&
           renderer.getPixel(width - 1, height - 1) == PLAIN_BLUE;
}

int openFiles()
{
    int count = 0;
    DIR* folder = opendir("/proc/self/fd");
    while (readdir(folder))
        ++count;
    closedir(folder);
    return count;
}

double residentMegabytes()
{
    std::ifstream file("/proc/self/statm");
    double total = 0;
    double resident = 0;
    file >> total >> resident;
    return resident * double(sysconf(_SC_PAGESIZE)) / 1e6;
}

int countLines(const std::string& text) { return int(std::count(text.begin(), text.end(), '\n')); }

// Messages of the host's own handler.
struct Heard
{
    std::vector<std::string> texts;
};

void hear(const SoError* error, void* data)
{
    static_cast<Heard*>(data)->texts.push_back(error->getDebugString().getString());
}

void ignore(const cc_debugerror*, void*) {}

// Sets a handler for as long as it lives, on the C side as well.
class Listener
{
public:
    Listener() : callback(SoDebugError::getHandlerCallback()), data(SoDebugError::getHandlerData())
    {
        SoDebugError::setHandlerCallback(hear, &heard);
    }
    ~Listener() { SoDebugError::setHandlerCallback(callback, data); }

    Heard heard;

private:
    SoErrorCB* callback;
    void* data;
};

// Calls a function each time that the scene is drawn.
SoCallback* whenDrawn(void (*function)(void*), void* data)
{
    struct Call
    {
        static void run(void* data, SoAction* action)
        {
            if (action->isOfType(SoGLRenderAction::getClassTypeId())) {
                auto* call = static_cast<Call*>(data);
                call->function(call->data);
            }
        }
        void (*function)(void*);
        void* data;
    };
    static std::vector<std::unique_ptr<Call>> calls;
    calls.push_back(std::make_unique<Call>(Call{function, data}));
    auto* node = new SoCallback;
    node->setCallback(Call::run, calls.back().get());
    return node;
}

// Ends a process that a test has started, at once: GCC 12's leak check crashes at the
// regular exit of some of these. The same code is checked for leaks where tests share
// a process.
[[noreturn]] void end(bool right) { std::_Exit(right ? 0 : 1); }

// What happens once per process is tested in a process of its own, which starts afresh.
class OffscreenContextTest : public CoinTest
{
protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

using OffscreenContextDeathTest = OffscreenContextTest;

} // namespace

// Pictures

TEST_F(OffscreenContextTest, ShowsARedSphereBeforeABlueBackground)
{
    EXPECT_TRUE(showsSphere(300, 200));
}

TEST_F(OffscreenContextDeathTest, NeedsNoDisplay)
{
    EXPECT_EXIT(
        {
            unsetenv("DISPLAY");
            unsetenv("WAYLAND_DISPLAY");
            end(showsSphere(300, 200));
        },
        testing::ExitedWithCode(0), testing::Eq(""));
}

TEST_F(OffscreenContextTest, InstallingAgainChangesNothing)
{
    OffscreenContext::install();
    EXPECT_TRUE(showsSphere(40, 30));
    OffscreenContext::install();
    EXPECT_TRUE(showsSphere(40, 30));
    EXPECT_EQ(watch.contexts, 0);
}

TEST_F(OffscreenContextTest, RunsShaders)
{
    NodeRef<SoSeparator> scene(emptyScene());
    auto* program = new SoShaderProgram;
    auto* fragment = new SoFragmentShader;
    fragment->sourceType = SoShaderObject::GLSL_PROGRAM;
    fragment->sourceProgram =
        "#version 120\nvoid main() { gl_FragColor = vec4(0.2, 0.6, 0.4, 1.0); }\n";
    program->shaderObject.set1Value(0, fragment);
    scene->addChild(program);
    addRedSphere(scene);

    Renderer renderer(100, 100);
    ASSERT_TRUE(renderer.render(scene));
    // 0.2, 0.6 and 0.4 of 255
    EXPECT_EQ(renderer.getPixel(50, 50), (Pixel{51, 153, 102, 255}));
    EXPECT_EQ(renderer.getPixel(0, 0), PLAIN_BLUE);
}

TEST_F(OffscreenContextTest, KeepsTransparencyOfTheBackground)
{
    NodeRef<SoSeparator> scene(sphereScene());
    Renderer renderer(100, 100, SoOffscreenRenderer::RGB_TRANSPARENCY);
    ASSERT_TRUE(renderer.render(scene));
    EXPECT_EQ(renderer.getPixel(50, 50)[3], 255);
    EXPECT_EQ(renderer.getPixel(0, 0)[3], 0);
}

TEST_F(OffscreenContextTest, HasOneSamplePerPixel)
{
    NodeRef<SoSeparator> scene(sphereScene());
    Renderer renderer(200, 200, SoOffscreenRenderer::RGB_TRANSPARENCY);
    ASSERT_TRUE(renderer.render(scene));
    int red = 0;
    int blue = 0;
    for (int y = 0; y < 200; ++y) {
        for (int x = 0; x < 200; ++x) {
            red += renderer.getPixel(x, y) == PLAIN_RED;
            blue += renderer.getPixel(x, y) == PLAIN_BLUE;
        }
    }
    EXPECT_EQ(red + blue, 200 * 200);
    // A disc of radius 50: 7854 pixels, less what the sphere lacks as a polyhedron.
    EXPECT_NEAR(red, 7854, 80);
}

class OffscreenContextSizeTest : public OffscreenContextTest,
                                 public testing::WithParamInterface<std::array<int, 2>>
{
};

TEST_P(OffscreenContextSizeTest, ShowsTheDiscRoundAndInTheMiddle)
{
    const int width = GetParam()[0];
    const int height = GetParam()[1];
    NodeRef<SoSeparator> scene(sphereScene());
    Renderer renderer(width, height);
    ASSERT_TRUE(renderer.render(scene));

    // The columns and rows through the middle: the disc covers half the shorter side.
    double row = 0;
    double column = 0;
    double rowMoment = 0;
    double columnMoment = 0;
    for (int x = 0; x < width; ++x) {
        const double red = renderer.getPixel(x, height / 2)[0] / 255.0;
        row += red;
        rowMoment += red * (x + 0.5);
    }
    for (int y = 0; y < height; ++y) {
        const double red = renderer.getPixel(width / 2, y)[0] / 255.0;
        column += red;
        columnMoment += red * (y + 0.5);
    }
    // Half a pixel at either end, and what the sphere lacks as a polyhedron: under 1 %.
    const double diameter = std::min(width, height) / 2.0;
    EXPECT_NEAR(row, diameter, 1 + diameter / 100);
    EXPECT_NEAR(column, diameter, 1 + diameter / 100);
    EXPECT_NEAR(rowMoment / row, width / 2.0, 0.5 + diameter / 200);
    EXPECT_NEAR(columnMoment / column, height / 2.0, 0.5 + diameter / 200);
}

INSTANTIATE_TEST_SUITE_P(Sizes, OffscreenContextSizeTest,
                         testing::Values(std::array<int, 2>{31, 17}, std::array<int, 2>{127, 61},
                                         std::array<int, 2>{61, 127}, std::array<int, 2>{641, 479},
                                         std::array<int, 2>{1001, 33},
                                         std::array<int, 2>{33, 1001}),
                         [](const auto& size) {
                             return std::to_string(size.param[0]) + "x" +
                                    std::to_string(size.param[1]);
                         });

TEST_F(OffscreenContextTest, RendersASinglePixel)
{
    NodeRef<SoSeparator> scene(emptyScene());
    Renderer renderer(1, 1);
    ASSERT_TRUE(renderer.render(scene));
    EXPECT_EQ(renderer.getPixel(0, 0), PLAIN_BLUE);
}

// Tiles

TEST_F(OffscreenContextTest, PutsALargePictureTogetherWithoutSeams)
{
    const int width = 9000;
    const int height = 6000;
    const int scale = 10;
    // The view is 6 x 4, so the gradient covers it.
    NodeRef<SoSeparator> scene(emptyScene());
    addGradient(scene, 3, 2);
    addRedSphere(scene);

    Renderer small(width / scale, height / scale);
    ASSERT_TRUE(small.render(scene));
    Renderer large(width, height);
    ASSERT_TRUE(large.render(scene));
    EXPECT_EQ(large.getPixel(width / 2, height / 2), PLAIN_RED);

    // Averages of 10 x 10 pixels are the small picture's colours. They differ by 1 for
    // rounding and by up to 1 for the slope within a pixel; along the disc's edge, 150
    // small pixels from the centre, by anything.
    for (int y = 0; y < height / scale; ++y) {
        for (int x = 0; x < width / scale; ++x) {
            const Pixel expected = small.getPixel(x, y);
            int difference = 0;
            for (int channel = 0; channel < 3; ++channel) {
                int sum = 0;
                for (int row = 0; row < scale; ++row) {
                    const unsigned char* pixel = large.getAddress(x * scale, y * scale + row);
                    for (int column = 0; column < scale; ++column)
                        sum += pixel[3 * column + channel];
                }
                const int average = sum / (scale * scale);
                difference = std::max(difference, std::abs(average - expected[channel]));
            }
            if (difference > 2) {
                const double distance = std::hypot(x + 0.5 - 450, y + 0.5 - 300);
                ASSERT_NEAR(distance, 150, 2) << "at " << x << ", " << y;
            }
        }
    }

    // No jump anywhere along a row and a column outside the disc, tile borders included.
    for (int x = 1; x < width; ++x) {
        const int step = large.getPixel(x, 500)[0] - large.getPixel(x - 1, 500)[0];
        ASSERT_TRUE(step == 0 || step == 1) << "at column " << x;
    }
    for (int y = 1; y < height; ++y) {
        const int step = large.getPixel(500, y)[1] - large.getPixel(500, y - 1)[1];
        ASSERT_TRUE(step == 0 || step == 1) << "at row " << y;
    }
    EXPECT_LE(large.getPixel(0, 500)[0], 1);
    EXPECT_GE(large.getPixel(width - 1, 500)[0], 254);
}

TEST_F(OffscreenContextTest, RendersTheLargestPicture) { EXPECT_TRUE(showsSphere(16000, 12000)); }

TEST_F(OffscreenContextDeathTest, MakesSmallerTilesWhereLargePbuffersAreRefused)
{
    EXPECT_EXIT(
        {
            watch.largestArea = 256 * 256;
            end(showsSphere(1000, 700));
        },
        testing::ExitedWithCode(0), testing::Eq(""));
}

// Platforms

TEST_F(OffscreenContextDeathTest, UsesADeviceWhereThereIsNoSurfacelessPlatform)
{
    EXPECT_EXIT(
        {
            watch.hiddenExtensions = "surfaceless";
            end(showsSphere(300, 200));
        },
        testing::ExitedWithCode(0), testing::Eq(""));
}

TEST_F(OffscreenContextDeathTest, UsesTheDefaultDisplayWhereThereAreNoPlatforms)
{
    EXPECT_EXIT(
        {
            watch.hiddenExtensions = "platform";
            setenv("EGL_PLATFORM", "surfaceless", 1);
            end(showsSphere(300, 200));
        },
        testing::ExitedWithCode(0), testing::Eq(""));
}

// Contexts are given back

TEST_F(OffscreenContextTest, TwentyRendersInARowLeaveNothingBehind)
{
    const int width = 800;
    const int height = 600;
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(showsSphere(width, height));
    const int files = openFiles();
    const double memory = residentMegabytes();
    const int made = watch.made;

    for (int i = 0; i < 20; ++i)
        ASSERT_TRUE(showsSphere(width, height));
    EXPECT_EQ(watch.made, made + 20);
    EXPECT_EQ(watch.contexts, 0);
    EXPECT_EQ(watch.pbuffers, 0);
    EXPECT_EQ(openFiles(), files);
#ifndef __SANITIZE_ADDRESS__ // which keeps freed memory for a while
    // A pbuffer has 4 bytes of colour and 4 of depth and stencil per pixel. Twenty of
    // them would be 77 MB; what an allocator may keep is worth five.
    EXPECT_LT(residentMegabytes() - memory, 5 * width * height * 8 / 1e6);
#else
    static_cast<void>(memory);
#endif
}

TEST_F(OffscreenContextTest, TwentyRendersWithOneRendererUseOneContext)
{
    NodeRef<SoSeparator> scene(sphereScene());
    {
        Renderer renderer(80, 60);
        ASSERT_TRUE(renderer.render(scene));
        const int made = watch.made;
        for (int i = 0; i < 20; ++i)
            ASSERT_TRUE(renderer.render(scene));
        EXPECT_EQ(watch.made, made);
        EXPECT_EQ(watch.contexts, 1);
    }
    EXPECT_EQ(watch.contexts, 0);
    EXPECT_EQ(watch.pbuffers, 0);
}

TEST_F(OffscreenContextDeathTest, AStaticRendererIsDestroyedAfterMain)
{
    EXPECT_EXIT(
        {
            static SoOffscreenRenderer renderer(SbViewportRegion(100, 100));
            NodeRef<SoSeparator> scene(sphereScene());
            std::exit(renderer.render(scene) ? 0 : 1);
        },
        testing::ExitedWithCode(0), testing::Eq(""));
}

// Whoever was current before is current afterwards

namespace {

// An EGL context of somebody else, current with a pbuffer cleared to yellow.
class ForeignContext
{
public:
    explicit ForeignContext(EGLenum foreignApi) : api(foreignApi)
    {
        auto getDisplay = reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(
            eglGetProcAddress("eglGetPlatformDisplayEXT"));
        display = getDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
        const bool embedded = api == EGL_OPENGL_ES_API;
        const EGLint wanted[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE,
                                 embedded ? EGL_OPENGL_ES2_BIT : EGL_OPENGL_BIT, EGL_NONE};
        const EGLint size[] = {EGL_WIDTH, 8, EGL_HEIGHT, 8, EGL_NONE};
        const EGLint version[] = {EGL_CONTEXT_CLIENT_VERSION, 2, EGL_NONE};
        EGLConfig config = nullptr;
        EGLint count = 0;
        current = eglInitialize(display, nullptr, nullptr) && eglBindAPI(api) &&
                  eglChooseConfig(display, wanted, &config, 1, &count) && count == 1;
        if (!current)
            return;
        draw = eglCreatePbufferSurface(display, config, size);
        read = eglCreatePbufferSurface(display, config, size);
        context = eglCreateContext(display, config, EGL_NO_CONTEXT, embedded ? version : nullptr);
        current = eglMakeCurrent(display, draw, read, context);
        glClearColor(1, 1, 0, 1);
        glClear(GL_COLOR_BUFFER_BIT);
    }

    ~ForeignContext()
    {
        eglBindAPI(api);
        eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        eglDestroyContext(display, context);
        eglDestroySurface(display, draw);
        eglDestroySurface(display, read);
        eglBindAPI(EGL_OPENGL_ES_API);
    }

    bool isCurrent() const
    {
        return current && eglGetCurrentContext() == context && eglGetCurrentDisplay() == display &&
               eglGetCurrentSurface(EGL_DRAW) == draw && eglGetCurrentSurface(EGL_READ) == read &&
               eglQueryAPI() == api;
    }

    bool isYellow() const
    {
        eglMakeCurrent(display, draw, draw, context);
        unsigned char pixel[4] = {};
        glReadPixels(4, 4, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel);
        return pixel[0] == 255 && pixel[1] == 255 && pixel[2] == 0;
    }

private:
    EGLenum api;
    EGLDisplay display = EGL_NO_DISPLAY;
    EGLSurface draw = EGL_NO_SURFACE;
    EGLSurface read = EGL_NO_SURFACE;
    EGLContext context = EGL_NO_CONTEXT;
    bool current = false;
};

} // namespace

TEST_F(OffscreenContextTest, LeavesNoContextCurrentWhereThereWasNone)
{
    ASSERT_EQ(eglGetCurrentContext(), EGL_NO_CONTEXT);
    ASSERT_EQ(eglQueryAPI(), EGLenum(EGL_OPENGL_ES_API));
    ASSERT_TRUE(showsSphere(40, 30));
    EXPECT_EQ(eglGetCurrentContext(), EGL_NO_CONTEXT);
    EXPECT_EQ(eglQueryAPI(), EGLenum(EGL_OPENGL_ES_API));
}

TEST_F(OffscreenContextTest, BringsAForeignContextBack)
{
    ForeignContext foreign(EGL_OPENGL_API);
    ASSERT_TRUE(foreign.isCurrent());
    EXPECT_TRUE(showsSphere(40, 30));
    EXPECT_TRUE(foreign.isCurrent());
    EXPECT_TRUE(foreign.isYellow());
}

TEST_F(OffscreenContextTest, LetsOthersDrawMeanwhileAndKeepsItsPicture)
{
    ForeignContext foreign(EGL_OPENGL_API);
    ASSERT_TRUE(foreign.isCurrent());
    {
        OffscreenContext context(2, 2);
        ASSERT_TRUE(context.isValid());
        ASSERT_FALSE(foreign.isCurrent());
        glClearColor(1, 0, 0, 1);
        glClear(GL_COLOR_BUFFER_BIT);
        context.letGo();
        EXPECT_TRUE(foreign.isCurrent());
        EXPECT_TRUE(context.takeBack());
        EXPECT_FALSE(foreign.isCurrent());
        unsigned char pixel[4] = {};
        glReadPixels(1, 1, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel);
        EXPECT_EQ(pixel[0], 255);
        EXPECT_EQ(pixel[1], 0);
    }
    EXPECT_TRUE(foreign.isCurrent());
    EXPECT_TRUE(foreign.isYellow());
}

TEST_F(OffscreenContextTest, BringsAForeignEmbeddedContextBack)
{
    ForeignContext foreign(EGL_OPENGL_ES_API);
    ASSERT_TRUE(foreign.isCurrent());
    EXPECT_TRUE(showsSphere(40, 30));
    EXPECT_TRUE(foreign.isCurrent());
    EXPECT_TRUE(foreign.isYellow());
}

// Coin reads there, in what it takes for a structure of its own.
TEST_F(OffscreenContextTest, GivesCoinHandlesThatBeginWithZeros)
{
    void* handle = cc_glglue_context_create_offscreen(10, 10);
    ASSERT_TRUE(handle);
    const auto* bytes = static_cast<const unsigned char*>(handle);
    EXPECT_EQ(std::count(bytes, bytes + 256, 0), 256);
    cc_glglue_context_destruct(handle);
}

TEST_F(OffscreenContextTest, BringsBackOneContextAfterTheOtherWhenNested)
{
    void* first = cc_glglue_context_create_offscreen(10, 10);
    void* second = cc_glglue_context_create_offscreen(10, 10);
    ASSERT_TRUE(first);
    ASSERT_TRUE(second);

    ASSERT_TRUE(cc_glglue_context_make_current(first));
    const EGLContext firstContext = eglGetCurrentContext();
    ASSERT_TRUE(cc_glglue_context_make_current(second));
    const EGLContext secondContext = eglGetCurrentContext();
    ASSERT_NE(firstContext, secondContext);
    ASSERT_TRUE(cc_glglue_context_make_current(first));
    EXPECT_EQ(eglGetCurrentContext(), firstContext);

    cc_glglue_context_reinstate_previous(first);
    EXPECT_EQ(eglGetCurrentContext(), secondContext);
    cc_glglue_context_reinstate_previous(second);
    EXPECT_EQ(eglGetCurrentContext(), firstContext);
    cc_glglue_context_reinstate_previous(first);
    EXPECT_EQ(eglGetCurrentContext(), EGL_NO_CONTEXT);

    cc_glglue_context_destruct(first);
    cc_glglue_context_destruct(second);
    EXPECT_EQ(watch.contexts, 0);
    EXPECT_EQ(watch.pbuffers, 0);
}

TEST_F(OffscreenContextTest, RendersAPictureWhileAnotherIsBeingRendered)
{
    // The inner picture is taken between the gradient and the sphere of the outer one.
    bool innerRight = false;
    NodeRef<SoSeparator> scene(emptyScene());
    addGradient(scene, 2, 2);
    scene->addChild(whenDrawn(
        [](void* right) {
            const EGLContext outer = eglGetCurrentContext();
            *static_cast<bool*>(right) =
                outer != EGL_NO_CONTEXT && showsSphere(60, 40) && eglGetCurrentContext() == outer;
        },
        &innerRight));
    addRedSphere(scene);

    Renderer renderer(100, 100);
    ASSERT_TRUE(renderer.render(scene));
    EXPECT_TRUE(innerRight);
    EXPECT_EQ(renderer.getPixel(50, 50), PLAIN_RED);
    // The gradient's lower right and upper left corners, half a pixel inside.
    EXPECT_GE(renderer.getPixel(99, 0)[0], 252);
    EXPECT_GE(renderer.getPixel(0, 99)[1], 252);
    EXPECT_EQ(eglGetCurrentContext(), EGL_NO_CONTEXT);
}

// Messages

TEST_F(OffscreenContextDeathTest, SaysNothingWhenAllIsWell)
{
    // Coin talks of resources when a large picture is followed by a small one, and of
    // GLX with each new context.
    EXPECT_EXIT(
        {
            NodeRef<SoSeparator> scene(sphereScene());
            Renderer renderer(1200, 900);
            bool right = renderer.render(scene);
            renderer.setSize(60, 40);
            right = renderer.render(scene) && renderer.getPixel(30, 20) == PLAIN_RED && right;
            right = showsSphere(5000, 4000) && showsSphere(100, 100) && right;
            end(right);
        },
        testing::ExitedWithCode(0), testing::Eq(""));
}

TEST_F(OffscreenContextDeathTest, PassesMessagesOfOthersOn)
{
    EXPECT_EXIT(
        {
            NodeRef<SoSeparator> scene(sphereScene());
            scene->addChild(whenDrawn(
                [](void*) {
                    SoDebugError::postWarning("test", "said by a node");
                    cc_debugerror_postwarning("test", "said on the C side");
                },
                nullptr));
            end(Renderer(50, 50).render(scene));
        },
        testing::ExitedWithCode(0),
        AllOf(HasSubstr("said by a node"), HasSubstr("said on the C side"),
              ResultOf(countLines, 2)));
}

TEST_F(OffscreenContextTest, PassesMessagesOfOthersToTheHandlerOfTheHost)
{
    Listener listener;
    const auto callback = SoDebugError::getHandlerCallback();
    const auto cCallback = cc_debugerror_get_handler_callback();
    NodeRef<SoSeparator> scene(sphereScene());
    scene->addChild(whenDrawn(
        [](void*) {
            SoDebugError::postWarning("test", "said by a node");
            cc_debugerror_postwarning("test", "said on the C side");
        },
        nullptr));
    Renderer renderer(50, 50);
    ASSERT_TRUE(renderer.render(scene));

    ASSERT_EQ(listener.heard.texts.size(), 2u);
    EXPECT_THAT(listener.heard.texts[0], HasSubstr("said by a node"));
    EXPECT_THAT(listener.heard.texts[1], HasSubstr("said on the C side"));
    EXPECT_EQ(SoDebugError::getHandlerCallback(), callback);
    EXPECT_EQ(SoDebugError::getHandlerData(), &listener.heard);
    EXPECT_EQ(cc_debugerror_get_handler_callback(), cCallback);
}

TEST_F(OffscreenContextDeathTest, LeavesAHandlerInPlaceFromTheFirstRenderOn)
{
    EXPECT_EXIT(
        {
            Listener listener;
            const bool right = showsSphere(50, 50) && SoDebugError::getHandlerCallback() == hear &&
                               SoDebugError::getHandlerData() == &listener.heard;
            end(right && listener.heard.texts.empty());
        },
        testing::ExitedWithCode(0), testing::Eq(""));
}

TEST_F(OffscreenContextDeathTest, LeavesACHandlerInPlaceFromTheFirstRenderOn)
{
    // While the C++ side has its default handler: setting that one changes the C side.
    EXPECT_EXIT(
        {
            int data = 0;
            cc_debugerror_set_handler_callback(ignore, &data);
            const bool right = showsSphere(50, 50) &&
                               cc_debugerror_get_handler_callback() == ignore &&
                               cc_debugerror_get_handler_data() == &data;
            end(right);
        },
        testing::ExitedWithCode(0), testing::Eq(""));
}

TEST_F(OffscreenContextTest, KeepsAHandlerThatIsSetDuringTheRender)
{
    Listener before;
    Heard during;
    NodeRef<SoSeparator> scene(sphereScene());
    scene->addChild(
        whenDrawn([](void* heard) { SoDebugError::setHandlerCallback(hear, heard); }, &during));
    Renderer renderer(50, 50);
    ASSERT_TRUE(renderer.render(scene));
    SoDebugError::postWarning("test", "said afterwards");
    cc_debugerror_postwarning("test", "said on the C side");
    EXPECT_EQ(during.texts.size(), 2u);
    EXPECT_EQ(before.heard.texts.size(), 0u);
}

TEST_F(OffscreenContextTest, KeepsACHandlerThatIsSetDuringTheRender)
{
    Listener before;
    NodeRef<SoSeparator> scene(sphereScene());
    scene->addChild(
        whenDrawn([](void*) { cc_debugerror_set_handler_callback(ignore, nullptr); }, nullptr));
    Renderer renderer(50, 50);
    ASSERT_TRUE(renderer.render(scene));
    EXPECT_EQ(cc_debugerror_get_handler_callback(), &ignore);
}

// No contexts

TEST_F(OffscreenContextDeathTest, WithoutAnyContextSaysOnceWhatWasTried)
{
    EXPECT_EXIT(
        {
            setenv("__EGL_VENDOR_LIBRARY_FILENAMES", "/dev/null", 1);
            const bool rendered =
                showsSphere(300, 200) || showsSphere(300, 200) || showsSphere(9000, 6000);
            end(!rendered);
        },
        testing::ExitedWithCode(0),
        AllOf(HasSubstr("No OpenGL context"), HasSubstr("surfaceless platform"),
              HasSubstr("device platform"), HasSubstr("default display"), ResultOf(countLines, 1)));
}

TEST_F(OffscreenContextDeathTest, SurvivesContextsRunningOut)
{
    // Coin says so itself at each render, in its own words.
    EXPECT_EXIT(
        {
            bool right = showsSphere(300, 200);
            watch.largestArea = 0;
            right = right && !showsSphere(300, 200) && !showsSphere(20, 20);
            watch.largestArea = 1e9;
            right = right && !showsSphere(300, 200);
            end(right);
        },
        testing::ExitedWithCode(0), HasSubstr("No more OpenGL contexts"));
}

// A context of one's own

namespace {

// The pixel in the middle of the red sphere, drawn by an action of one's own.
Pixel drawSphereIn(const OffscreenContext& context, int width, int height)
{
    NodeRef<SoSeparator> scene(sphereScene());
    SoGLRenderAction action{SbViewportRegion(short(width), short(height))};
    action.setCacheContext(context.getId());
    glClearColor(0, 0, 1, 0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    action.apply(scene);
    unsigned char pixel[4] = {};
    glReadPixels(width / 2, height / 2, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel);
    return {pixel[0], pixel[1], pixel[2], pixel[3]};
}

} // namespace

TEST_F(OffscreenContextTest, OfOnesOwnIsCurrentAsLongAsItLives)
{
    for (int i = 0; i < 2; ++i) {
        {
            const OffscreenContext context(300, 200);
            ASSERT_TRUE(context.isValid());
            EXPECT_NE(eglGetCurrentContext(), EGL_NO_CONTEXT);
            EXPECT_EQ(drawSphereIn(context, 300, 200), PLAIN_RED);
        }
        EXPECT_EQ(eglGetCurrentContext(), EGL_NO_CONTEXT);
        EXPECT_EQ(watch.contexts, 0);
        EXPECT_EQ(watch.pbuffers, 0);
    }
}

TEST_F(OffscreenContextTest, OfOnesOwnBringsAForeignContextBack)
{
    ForeignContext foreign(EGL_OPENGL_API);
    {
        const OffscreenContext context(40, 30);
        EXPECT_EQ(drawSphereIn(context, 40, 30), PLAIN_RED);
        EXPECT_FALSE(foreign.isCurrent());
    }
    EXPECT_TRUE(foreign.isCurrent());
    EXPECT_TRUE(foreign.isYellow());
}

TEST_F(OffscreenContextTest, OfOnesOwnHaveIdsOfTheirOwn)
{
    const OffscreenContext one(10, 10), other(10, 10);
    EXPECT_NE(one.getId(), other.getId());
}

TEST_F(OffscreenContextDeathTest, OfOnesOwnIsTheOnlyOneThatIsMade)
{
    EXPECT_EXIT(
        {
            const OffscreenContext context(300, 200);
            end(drawSphereIn(context, 300, 200) == PLAIN_RED && watch.made == 1);
        },
        testing::ExitedWithCode(0), testing::Eq(""));
}

TEST_F(OffscreenContextDeathTest, OfOnesOwnSaysWhenItCannotBeHad)
{
    EXPECT_EXIT(
        {
            watch.largestArea = 10000;
            const OffscreenContext context(300, 200);
            end(!context.isValid() && watch.contexts == 0);
        },
        testing::ExitedWithCode(0),
        AllOf(HasSubstr("No OpenGL context for a picture of 300 x 200 pixels"),
              ResultOf(countLines, 1)));
}
