// SPDX-License-Identifier: GPL-3.0-or-later
#define GL_GLEXT_PROTOTYPES
#include "drawing/GLBuffer.h"

#include <utility>

#include <GL/glext.h>
#include <Inventor/C/glue/gl.h>
#include <Inventor/elements/SoGLCacheContextElement.h>

GLBuffer::GLBuffer(std::uint32_t currentContext, GLenum target, const void* data, std::size_t bytes)
    : context(currentContext)
{
    glGenBuffers(1, &name);
    glBindBuffer(target, name);
    glBufferData(target, GLsizeiptr(bytes), data, GL_STATIC_DRAW);
    glBindBuffer(target, 0);
}

GLBuffer::GLBuffer(GLBuffer&& other) noexcept
    : context(other.context), name(std::exchange(other.name, 0))
{}

GLBuffer& GLBuffer::operator=(GLBuffer&& other) noexcept
{
    std::swap(context, other.context);
    std::swap(name, other.name);
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

void GLBuffer::write(GLenum target, std::size_t offset, const void* data, std::size_t bytes) const
{
    glBindBuffer(target, name);
    glBufferSubData(target, GLintptr(offset), GLsizeiptr(bytes), data);
    glBindBuffer(target, 0);
}

void GLBuffer::bind(GLenum target) const { glBindBuffer(target, name); }
