// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DRAWING_GLBUFFER_H
#define STRANDVIEW_DRAWING_GLBUFFER_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <vector>

#include <GL/gl.h>
#include <Inventor/misc/SoContextHandler.h>

/// A buffer object of OpenGL, or none. It is deleted with this, as soon as its context is
/// current again. Contexts are named as Coin does: by their cache contexts.
class GLBuffer
{
public:
    GLBuffer() = default;
    /// Of the current context, which has this name.
    template <typename Element>
    GLBuffer(std::uint32_t currentContext, GLenum target, const std::vector<Element>& elements)
        : GLBuffer(currentContext, target, elements.data(), elements.size() * sizeof(Element))
    {}
    GLBuffer(GLBuffer&& other) noexcept;
    GLBuffer& operator=(GLBuffer&& other) noexcept;
    ~GLBuffer();

    /// Whether a context has any; OpenGL itself has them since its version 1.5.
    static bool areSupported(std::uint32_t context);

    /// Whether there is one.
    explicit operator bool() const { return name != 0; }
    /// Binds it, or none.
    void bind(GLenum target) const;
    static void unbind(GLenum target) { GLBuffer().bind(target); }

    /// Makes it one of the current context, which has this name, of so many bytes, all of which
    /// write(memory) sets: the driver's own where it lends some, so that they are nowhere twice.
    /// What is still to be drawn from the bytes before is drawn from those; in contexts that share
    /// it only if the `turn` is another one whenever another of them has begun to draw: then it
    /// gets new memory, which takes longer.
    void fill(std::uint32_t currentContext, GLenum target, std::size_t bytes,
              const std::function<void(void*)>& write, unsigned turn = 0);

    /// Binds it, and makes it hold other elements, of any number.
    template <typename Element>
    void refill(GLenum target, const std::vector<Element>& elements)
    {
        refill(target, elements.data(), elements.size() * sizeof(Element));
    }

    /// A place in the bound buffer, for OpenGL's functions that take a pointer.
    static const void* offset(std::size_t bytes) { return reinterpret_cast<const void*>(bytes); }

private:
    GLBuffer(std::uint32_t currentContext, GLenum target, const void* data, std::size_t bytes);
    void refill(GLenum target, const void* data, std::size_t bytes);

    std::uint32_t context = 0;
    GLuint name = 0;
    std::size_t size = 0;  // in bytes
    unsigned filledIn = 0; // which turn
};

/// What somebody keeps in each context, until the context goes.
template <typename Kept>
class PerContext
{
public:
    PerContext() { SoContextHandler::addContextDestructionCallback(contextGoes, this); }
    ~PerContext() { SoContextHandler::removeContextDestructionCallback(contextGoes, this); }
    PerContext(const PerContext&) = delete;
    PerContext& operator=(const PerContext&) = delete;

    Kept& operator[](std::uint32_t context) { return kept[context]; }
    void clear() { kept.clear(); }

private:
    // Called while the context is still there; what is deleted now is deleted with it.
    static void contextGoes(std::uint32_t context, void* closure)
    {
        static_cast<PerContext*>(closure)->kept.erase(context);
    }

    std::map<std::uint32_t, Kept> kept;
};

#endif
