// SPDX-License-Identifier: GPL-3.0-or-later
#include <OffscreenContext.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GL/glx.h>

#include <Inventor/C/errors/debugerror.h>
#include <Inventor/C/glue/gl.h>
#include <Inventor/SoOffscreenRenderer.h>
#include <Inventor/elements/SoGLCacheContextElement.h>
#include <Inventor/errors/SoDebugError.h>
#include <Inventor/misc/SoContextHandler.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/system/gl.h>

namespace {

// Coin halves a size that it could not get until both sides are at most this.
const unsigned int SMALLEST_SIZE = 32;

// Messages

// The C and the C++ side of Coin's debug messages have a handler each.
struct MessageHandlers
{
    cc_debugerror_cb* c;
    void* cData;
    SoErrorCB* cpp;
    void* cppData;
};

MessageHandlers currentHandlers()
{
    return {cc_debugerror_get_handler_callback(), cc_debugerror_get_handler_data(),
            SoDebugError::getHandlerCallback(), SoDebugError::getHandlerData()};
}

// Who hears the messages while one of our contexts is current, and how many of our
// contexts are, one within the other.
MessageHandlers hostHandlers;
int filterDepth = 0;

bool isRemark(const char* text)
{
    return std::strstr(text, "Couldn't get current GLX context") ||
           std::strstr(text, "Ignoring resource hogging");
}

void passAllButRemarks(const cc_debugerror* error, void*)
{
    const cc_string* text = cc_error_get_debug_string(&error->super);
    if (!isRemark(cc_string_get_text(text)))
        hostHandlers.c(error, hostHandlers.cData);
}

void passAllButRemarks(const SoError* error, void* data)
{
    const auto* handlers = static_cast<const MessageHandlers*>(data);
    if (!isRemark(error->getDebugString().getString()))
        handlers->cpp(error, handlers->cppData);
}

// Coin makes its GLX remark on the C side, when it first draws with a context.
void beginFilter()
{
    if (filterDepth++ > 0)
        return;
    hostHandlers = currentHandlers();
    cc_debugerror_set_handler_callback(passAllButRemarks, nullptr);
}

// A handler that was set in the meantime, by a callback node for instance, stays.
void endFilter()
{
    cc_debugerror_cb* const filter = passAllButRemarks;
    if (--filterDepth == 0 && cc_debugerror_get_handler_callback() == filter)
        cc_debugerror_set_handler_callback(hostHandlers.c, hostHandlers.cData);
}

// Coin makes its remark about resources once per process, when a renderer's picture
// has become much smaller, and where none of our callbacks is at work. So the first
// context is the occasion to have it made, unheard, by a renderer of our own.
void provokeResourceRemark()
{
    static bool done = false;
    if (done)
        return;
    // Zero while Coin is finding out the limits, which it does with a context as well.
    unsigned int width = 0;
    unsigned int height = 0;
    cc_glglue_context_max_dimensions(&width, &height);
    if (done || width == 0 || height == 0)
        return;
    done = true;

    MessageHandlers handlers = currentHandlers();
    SoDebugError::setHandlerCallback(passAllButRemarks, &handlers);
    {
        auto* nothing = new SoSeparator;
        nothing->ref();
        SoOffscreenRenderer renderer(SbViewportRegion(SMALLEST_SIZE, SMALLEST_SIZE));
        renderer.render(nothing);
        renderer.setViewportRegion(SbViewportRegion(1, 1));
        renderer.render(nothing);
        nothing->unref();
    }
    SoDebugError::setHandlerCallback(handlers.cpp, handlers.cppData);
    cc_debugerror_set_handler_callback(handlers.c, handlers.cData);
}

// What was current before

// The context that a thread had, GLX or EGL: no thread can have both.
struct PreviousContext
{
    Display* glxDisplay = nullptr;
    GLXContext glxContext = nullptr;
    GLXDrawable glxDrawable = 0;
    GLXDrawable glxReadDrawable = 0;

    EGLenum eglApi = EGL_OPENGL_ES_API;
    EGLDisplay eglDisplay = EGL_NO_DISPLAY;
    EGLContext eglContext = EGL_NO_CONTEXT;
    EGLSurface eglDrawSurface = EGL_NO_SURFACE;
    EGLSurface eglReadSurface = EGL_NO_SURFACE;
};

PreviousContext currentContext()
{
    PreviousContext previous;
    previous.glxContext = glXGetCurrentContext();
    if (previous.glxContext) {
        previous.glxDisplay = glXGetCurrentDisplay();
        previous.glxDrawable = glXGetCurrentDrawable();
        previous.glxReadDrawable = glXGetCurrentReadDrawable();
    }
    previous.eglApi = eglQueryAPI();
    previous.eglContext = eglGetCurrentContext();
    if (previous.eglContext != EGL_NO_CONTEXT) {
        previous.eglDisplay = eglGetCurrentDisplay();
        previous.eglDrawSurface = eglGetCurrentSurface(EGL_DRAW);
        previous.eglReadSurface = eglGetCurrentSurface(EGL_READ);
    }
    return previous;
}

// Called with no EGL context of ours left current, unless it is the previous one.
void bringBack(const PreviousContext& previous)
{
    if (previous.eglContext != EGL_NO_CONTEXT)
        eglMakeCurrent(previous.eglDisplay, previous.eglDrawSurface, previous.eglReadSurface,
                       previous.eglContext);
    eglBindAPI(previous.eglApi);
    if (previous.glxContext)
        glXMakeContextCurrent(previous.glxDisplay, previous.glxDrawable, previous.glxReadDrawable,
                              previous.glxContext);
}

// Pbuffers and contexts

// The 256 leading zeros are for Coin: it hands the handle to its GLX code once and
// reads there, in what it takes for a structure of its own, that there is no pbuffer.
struct OffscreenHandle
{
    unsigned char zeros[256] = {};
    EGLDisplay display = EGL_NO_DISPLAY;
    EGLSurface surface = EGL_NO_SURFACE;
    EGLContext context = EGL_NO_CONTEXT;
    // One entry for each time that the context was made current and not yet taken back.
    std::vector<PreviousContext> previous;
};

// Plain RGBA8 with depth and stencil, one sample per pixel; null if the display has no
// such thing. Multisampled pbuffers are no use: Coin reads the picture with glReadPixels
// and Mesa's software driver then gives one of the samples instead of their average.
EGLConfig chooseConfig(EGLDisplay display)
{
    // clang-format off
    const EGLint wanted[] = {
        EGL_SURFACE_TYPE, EGL_PBUFFER_BIT,
        EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT,
        EGL_RED_SIZE, 8, EGL_GREEN_SIZE, 8, EGL_BLUE_SIZE, 8, EGL_ALPHA_SIZE, 8,
        EGL_DEPTH_SIZE, 24, EGL_STENCIL_SIZE, 8,
        EGL_NONE};
    // clang-format on
    EGLint count = 0;
    if (!eglChooseConfig(display, wanted, nullptr, 0, &count) || count <= 0)
        return nullptr;
    std::vector<EGLConfig> configs(count);
    if (!eglChooseConfig(display, wanted, configs.data(), count, &count))
        return nullptr;
    configs.resize(count);
    // All of these are minima, and deeper colours come first.
    for (EGLConfig config : configs) {
        EGLint red = 0;
        EGLint alpha = 0;
        EGLint samples = 0;
        if (eglGetConfigAttrib(display, config, EGL_RED_SIZE, &red) && red == 8 &&
            eglGetConfigAttrib(display, config, EGL_ALPHA_SIZE, &alpha) && alpha == 8 &&
            eglGetConfigAttrib(display, config, EGL_SAMPLES, &samples) && samples <= 1)
            return config;
    }
    return nullptr;
}

void freeContext(OffscreenHandle& handle)
{
    if (handle.context != EGL_NO_CONTEXT)
        eglDestroyContext(handle.display, handle.context);
    if (handle.surface != EGL_NO_SURFACE)
        eglDestroySurface(handle.display, handle.surface);
    handle.context = EGL_NO_CONTEXT;
    handle.surface = EGL_NO_SURFACE;
}

// The context that a display was tried with, for the first who asks for one: making one takes
// milliseconds.
EGLContext triedContext = EGL_NO_CONTEXT;

// Fills in surface and context, both or neither; returns the error in that case.
EGLint makeContext(OffscreenHandle& handle, unsigned int width, unsigned int height)
{
    EGLConfig config = chooseConfig(handle.display);
    if (!config)
        return EGL_BAD_CONFIG;
    const EGLenum api = eglQueryAPI();
    if (!eglBindAPI(EGL_OPENGL_API))
        return eglGetError();
    const EGLint size[] = {EGL_WIDTH, EGLint(width), EGL_HEIGHT, EGLint(height), EGL_NONE};
    EGLint error = EGL_SUCCESS;
    handle.surface = eglCreatePbufferSurface(handle.display, config, size);
    handle.context = std::exchange(triedContext, EGL_NO_CONTEXT);
    // Without attributes the profile is the compatible one, as Coin needs it.
    if (handle.surface != EGL_NO_SURFACE && handle.context == EGL_NO_CONTEXT)
        handle.context = eglCreateContext(handle.display, config, EGL_NO_CONTEXT, nullptr);
    if (handle.surface == EGL_NO_SURFACE || handle.context == EGL_NO_CONTEXT) {
        error = eglGetError();
        freeContext(handle);
    }
    eglBindAPI(api);
    return error;
}

// The display

bool hasExtension(const char* extensions, const char* name)
{
    return extensions &&
           (" " + std::string(extensions) + " ").find(" " + std::string(name) + " ") !=
               std::string::npos;
}

std::string errorText(EGLint error)
{
    char text[32];
    std::snprintf(text, sizeof text, "EGL error 0x%04x", unsigned(error));
    return text;
}

// Whether contexts can be made on a display; the reason is added to the report if not.
bool isUsable(EGLDisplay display, const char* name, std::string& report)
{
    report += report.empty() ? "" : "; ";
    report += name;
    if (display == EGL_NO_DISPLAY) {
        report += ": not there";
        return false;
    }
    if (!eglInitialize(display, nullptr, nullptr)) {
        report += ": not initialised, " + errorText(eglGetError());
        return false;
    }
    OffscreenHandle probe;
    probe.display = display;
    const EGLint error = makeContext(probe, SMALLEST_SIZE, SMALLEST_SIZE);
    if (probe.context == EGL_NO_CONTEXT) {
        report += ": no OpenGL context with an RGBA8 pbuffer, " + errorText(error);
        return false;
    }
    triedContext = std::exchange(probe.context, EGL_NO_CONTEXT);
    freeContext(probe);
    return true;
}

EGLDisplay openDisplay()
{
    const char* extensions = eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
    auto getPlatformDisplay = reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(
        eglGetProcAddress("eglGetPlatformDisplayEXT"));
    if (!hasExtension(extensions, "EGL_EXT_platform_base"))
        getPlatformDisplay = nullptr;
    std::string report;

    EGLDisplay display = EGL_NO_DISPLAY;
    if (getPlatformDisplay && hasExtension(extensions, "EGL_MESA_platform_surfaceless"))
        display = getPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
    if (isUsable(display, "surfaceless platform", report))
        return display;

    std::vector<EGLDeviceEXT> devices;
    auto queryDevices =
        reinterpret_cast<PFNEGLQUERYDEVICESEXTPROC>(eglGetProcAddress("eglQueryDevicesEXT"));
    EGLint count = 0;
    if (getPlatformDisplay && queryDevices && hasExtension(extensions, "EGL_EXT_platform_device") &&
        queryDevices(0, nullptr, &count)) {
        devices.resize(count);
        if (!queryDevices(count, devices.data(), &count))
            count = 0;
        devices.resize(count);
    }
    if (devices.empty())
        report += "; device platform: no devices";
    for (EGLDeviceEXT device : devices) {
        display = getPlatformDisplay(EGL_PLATFORM_DEVICE_EXT, device, nullptr);
        if (isUsable(display, "device platform", report))
            return display;
    }

    display = eglGetDisplay(EGL_DEFAULT_DISPLAY);
    if (isUsable(display, "default display", report))
        return display;
    SoDebugError::postWarning("OffscreenContext",
                              "No OpenGL context for off-screen pictures. Tried: %s.",
                              report.c_str());
    return EGL_NO_DISPLAY;
}

// Opened once and never terminated: EGL gives everyone in the process the same display,
// and a static renderer still has contexts to free after main.
EGLDisplay getDisplay()
{
    static const EGLDisplay display = openDisplay();
    return display;
}

// Null if there is no such context, with the error.
OffscreenHandle* makeHandle(unsigned int width, unsigned int height, EGLint& error)
{
    error = EGL_BAD_DISPLAY;
    if (getDisplay() == EGL_NO_DISPLAY)
        return nullptr;
    auto* handle = new OffscreenHandle;
    handle->display = getDisplay();
    error = makeContext(*handle, width, height);
    if (handle->context != EGL_NO_CONTEXT)
        return handle;
    delete handle;
    return nullptr;
}

// Coin's callbacks

void* createOffscreen(unsigned int width, unsigned int height)
{
    // A failure makes Coin's tiles smaller for good. Past the smallest ones it would
    // divide by their size, zero, if it got a context after all.
    static bool givenUp = false;
    if (givenUp || getDisplay() == EGL_NO_DISPLAY)
        return nullptr;
    EGLint error = EGL_SUCCESS;
    OffscreenHandle* handle = makeHandle(width, height, error);
    if (!handle) {
        if (width <= SMALLEST_SIZE && height <= SMALLEST_SIZE) {
            givenUp = true;
            SoDebugError::postWarning("OffscreenContext",
                                      "No more OpenGL contexts for off-screen pictures: %s.",
                                      errorText(error).c_str());
        }
        return nullptr;
    }
    provokeResourceRemark();
    return handle;
}

SbBool makeCurrent(void* data)
{
    auto* handle = static_cast<OffscreenHandle*>(data);
    const PreviousContext previous = currentContext();
    if (previous.glxContext)
        glXMakeContextCurrent(previous.glxDisplay, 0, 0, nullptr);
    if (!eglBindAPI(EGL_OPENGL_API) ||
        !eglMakeCurrent(handle->display, handle->surface, handle->surface, handle->context)) {
        bringBack(previous);
        return FALSE;
    }
    handle->previous.push_back(previous);
    beginFilter();
    return TRUE;
}

void reinstatePrevious(void* data)
{
    auto* handle = static_cast<OffscreenHandle*>(data);
    if (handle->previous.empty())
        return;
    endFilter();
    const PreviousContext previous = handle->previous.back();
    handle->previous.pop_back();
    if (previous.eglContext == EGL_NO_CONTEXT)
        eglMakeCurrent(handle->display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    bringBack(previous);
}

void destroyOffscreen(void* data)
{
    auto* handle = static_cast<OffscreenHandle*>(data);
    while (!handle->previous.empty())
        reinstatePrevious(handle);
    freeContext(*handle);
    delete handle;
}

} // namespace

void OffscreenContext::install()
{
    static cc_glglue_offscreen_cb_functions callbacks = {createOffscreen, makeCurrent,
                                                         reinstatePrevious, destroyOffscreen};
    cc_glglue_context_set_offscreen_cb_functions(&callbacks);
}

OffscreenContext::OffscreenContext(int width, int height)
    : handle(nullptr), id(SoGLCacheContextElement::getUniqueCacheContext())
{
    if (getDisplay() == EGL_NO_DISPLAY)
        return; // told when it was looked for
    EGLint error = EGL_SUCCESS;
    OffscreenHandle* made = makeHandle(unsigned(width), unsigned(height), error);
    if (made && !makeCurrent(made)) {
        error = eglGetError();
        destroyOffscreen(std::exchange(made, nullptr));
    }
    handle = made;
    if (handle)
        glEnable(GL_DEPTH_TEST);
    else
        SoDebugError::postWarning("OffscreenContext",
                                  "No OpenGL context for a picture of %d x %d pixels: %s.", width,
                                  height, errorText(error).c_str());
}

OffscreenContext::~OffscreenContext()
{
    if (!handle)
        return;
    SoContextHandler::destructingContext(id);
    destroyOffscreen(handle);
}

bool OffscreenContext::isValid() const { return handle; }

void OffscreenContext::letGo()
{
    if (handle)
        reinstatePrevious(handle);
}

bool OffscreenContext::takeBack() { return handle && makeCurrent(handle); }

std::uint32_t OffscreenContext::getId() const { return id; }
