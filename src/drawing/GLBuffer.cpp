// SPDX-License-Identifier: GPL-3.0-or-later
#define GL_GLEXT_PROTOTYPES
#include "drawing/GLBuffer.h"

#include <utility>

#include <GL/glext.h>
#include <Inventor/C/glue/gl.h>
#include <Inventor/elements/SoGLCacheContextElement.h>

GLBuffer::GLBuffer(std::uint32_t currentContext, GLenum target, const void* data, std::size_t bytes)
    : context(currentContext), size(bytes)
{
    glGenBuffers(1, &name);
    glBindBuffer(target, name);
    glBufferData(target, GLsizeiptr(bytes), data, GL_STATIC_DRAW);
    glBindBuffer(target, 0);
}

GLBuffer::GLBuffer(GLBuffer&& other) noexcept
    : context(other.context),
      name(std::exchange(other.name, 0)),
      size(other.size),
      filledIn(other.filledIn)
{}

GLBuffer& GLBuffer::operator=(GLBuffer&& other) noexcept
{
    std::swap(context, other.context);
    std::swap(name, other.name);
    std::swap(size, other.size);
    std::swap(filledIn, other.filledIn);
    return *this;
}

GLBuffer::~GLBuffer()
{
    if (!name)
        return;
    const auto destroy = [](void* closure, std::uint32_t /*context*/) {
        const auto buffer = GLuint(reinterpret_cast<std::uintptr_t>(closure));
        glDeleteBuffers(1, &buffer);
    };
    SoGLCacheContextElement::scheduleDeleteCallback(context, destroy,
                                                    reinterpret_cast<void*>(std::uintptr_t(name)));
}

bool GLBuffer::areSupported(std::uint32_t context)
{
    return cc_glglue_has_vertex_buffer_object(cc_glglue_instance(int(context)));
}

namespace {

// All of the bound buffer, of which nothing is read again; null if the driver lends no memory. What
// is there already is not made anew, which costs more than to write into it.
void* mapToWrite(std::uint32_t context, GLenum target, std::size_t bytes, bool isThere)
{
    const cc_glglue* const glue = cc_glglue_instance(int(context));
    if (isThere && cc_glglue_glversion_matches_at_least(glue, 3, 0, 0))
        return glMapBufferRange(target, 0, GLsizeiptr(bytes),
                                GL_MAP_WRITE_BIT | GL_MAP_INVALIDATE_BUFFER_BIT);
    glBufferData(target, GLsizeiptr(bytes), nullptr, GL_DYNAMIC_DRAW);
    return bytes == 0 ? nullptr : glMapBuffer(target, GL_WRITE_ONLY);
}

} // namespace

void GLBuffer::fill(std::uint32_t currentContext, GLenum target, std::size_t bytes,
                    const std::function<void(void*)>& write, unsigned turn)
{
    const bool isThere =
        std::exchange(filledIn, turn) == turn && name != 0 && size == bytes && bytes > 0;
    if (!name) {
        context = currentContext;
        glGenBuffers(1, &name);
    }
    size = bytes;
    glBindBuffer(target, name);
    bool isWritten = bytes == 0;
    if (void* const lent = mapToWrite(context, target, bytes, isThere)) {
        write(lent);
        isWritten = glUnmapBuffer(target); // or what was written is lost
    }
    if (!isWritten) {
        std::vector<unsigned char> own(bytes);
        write(own.data());
        glBufferSubData(target, 0, GLsizeiptr(bytes), own.data());
    }
    glBindBuffer(target, 0);
}

void GLBuffer::refill(GLenum target, const void* data, std::size_t bytes)
{
    size = bytes;
    glBindBuffer(target, name);
    glBufferData(target, GLsizeiptr(bytes), data, GL_STREAM_DRAW);
}

void GLBuffer::bind(GLenum target) const { glBindBuffer(target, name); }
