// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_OFFSCREENCONTEXT_H
#define STRANDVIEW_OFFSCREENCONTEXT_H

#include <cstdint>

#include <StrandviewExport.h>

/// OpenGL contexts for Coin's SoOffscreenRenderer, with and without a display.
///
/// The contexts are EGL pbuffers: RGBA8, depth 24, stencil 8, one sample per pixel.
/// Tried in this order: the surfaceless platform, each device of the device platform,
/// the default display. What was current on the thread before a render, a window's GLX
/// context or somebody's EGL context, is current again after it.
///
/// Where no context can be had, SoOffscreenRenderer::render returns FALSE, the first
/// time with a warning through SoDebugError that names what was tried. Two remarks
/// of Coin about its own affairs are kept from the user: "Couldn't get current GLX
/// context" and "Ignoring resource hogging"; every other message reaches the handler
/// that the host has set.
///
/// Pictures larger than 4096 x 4096 pixels are put together from tiles by Coin. It
/// writes past its buffer if such a picture has the components LUMINANCE or
/// LUMINANCE_TRANSPARENCY: ask for RGB or RGB_TRANSPARENCY.
///
/// A host that draws with its own SoGLRenderAction and reads what it wants, as it wants it, makes
/// one such context of its own. That costs less: SoOffscreenRenderer makes others to find out what
/// it may ask for, and copies every picture.
///
/// All of this belongs to Coin's thread. Contexts of SoOffscreenRenderer are owned by Coin, which
/// has them destroyed with the renderer.
class STRANDVIEW_EXPORT OffscreenContext
{
public:
    /// A context with a picture of so many pixels, and current as long as it lives, but for what
    /// letGo() says; depth is tested. Nothing is cleared. Needs no install().
    OffscreenContext(int width, int height);
    /// Has Coin free what it keeps in this context.
    ~OffscreenContext();
    OffscreenContext(const OffscreenContext&) = delete;
    OffscreenContext& operator=(const OffscreenContext&) = delete;

    /// False if no such context could be had, which a warning through SoDebugError tells.
    bool isValid() const;

    /// What was current before is so again, until takeBack(): for whoever lets others draw
    /// meanwhile. The picture stays.
    void letGo();
    /// False if it cannot be current any more.
    bool takeBack();

    /// For SoGLRenderAction::setCacheContext().
    std::uint32_t getId() const;

    /// To be called after SoDB::init() and before the first off-screen render of the
    /// process. Calling it again changes nothing. No context is made yet.
    static void install();

private:
    void* handle; ///< null if there is none
    std::uint32_t id;
};

#endif
