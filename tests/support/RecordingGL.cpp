// SPDX-License-Identifier: GPL-3.0-or-later
#include "RecordingGL.h"

#define GL_GLEXT_PROTOTYPES
#include <algorithm>
#include <cstdlib>
#include <iostream>

#include <GL/gl.h>
#include <Inventor/C/glue/gl.h>
#include <dlfcn.h>

namespace {

bool recording = false;
bool areBuffersHidden = false;
RecordedCalls recorded;

void record(const char* name, std::vector<float> arguments)
{
    if (recording)
        recorded.push_back({name, std::move(arguments)});
}

// The function of this name that the program would use if it had none itself.
template <typename Function>
Function* realFunction(const char* name, Function*)
{
    void* address = dlsym(RTLD_NEXT, name);
    if (!address) {
        std::cerr << "no OpenGL function " << name << '\n';
        std::abort();
    }
    return reinterpret_cast<Function*>(address);
}

} // namespace

// Exported, so that the shared libraries call these.
#define RECORDED __attribute__((visibility("default")))
#define FORWARD(function) static const auto real = realFunction(#function, &function)

extern "C" {

RECORDED void glBegin(GLenum mode)
{
    FORWARD(glBegin);
    record("glBegin", {float(mode)});
    real(mode);
}

RECORDED void glEnd()
{
    FORWARD(glEnd);
    record("glEnd", {});
    real();
}

RECORDED void glNormal3f(GLfloat x, GLfloat y, GLfloat z)
{
    FORWARD(glNormal3f);
    record("glNormal3f", {x, y, z});
    real(x, y, z);
}

RECORDED void glTexCoord2f(GLfloat s, GLfloat t)
{
    FORWARD(glTexCoord2f);
    record("glTexCoord2f", {s, t});
    real(s, t);
}

RECORDED void glVertex3f(GLfloat x, GLfloat y, GLfloat z)
{
    FORWARD(glVertex3f);
    record("glVertex3f", {x, y, z});
    real(x, y, z);
}

RECORDED void glColor4ub(GLubyte red, GLubyte green, GLubyte blue, GLubyte alpha)
{
    FORWARD(glColor4ub);
    record("glColor4ub", {float(red), float(green), float(blue), float(alpha)});
    real(red, green, blue, alpha);
}

RECORDED void glMaterialf(GLenum face, GLenum name, GLfloat value)
{
    FORWARD(glMaterialf);
    record("glMaterialf", {float(face), float(name), value});
    real(face, name, value);
}

RECORDED void glMaterialfv(GLenum face, GLenum name, const GLfloat* values)
{
    FORWARD(glMaterialfv);
    // Colours have four components, and Coin sends nothing else this way.
    record("glMaterialfv", {float(face), float(name), values[0], values[1], values[2], values[3]});
    real(face, name, values);
}

RECORDED void glDrawElements(GLenum mode, GLsizei count, GLenum type, const void* indices)
{
    FORWARD(glDrawElements);
    record("glDrawElements", {float(mode), float(count), float(type)});
    real(mode, count, type, indices);
}

RECORDED void glGenBuffers(GLsizei count, GLuint* buffers)
{
    FORWARD(glGenBuffers);
    real(count, buffers);
    record("glGenBuffers", std::vector<float>(buffers, buffers + count));
}

RECORDED void glDeleteBuffers(GLsizei count, const GLuint* buffers)
{
    FORWARD(glDeleteBuffers);
    record("glDeleteBuffers", std::vector<float>(buffers, buffers + count));
    real(count, buffers);
}

RECORDED void glBufferData(GLenum target, GLsizeiptr size, const void* data, GLenum usage)
{
    FORWARD(glBufferData);
    record("glBufferData", {float(target), float(size)});
    real(target, size, data, usage);
}

RECORDED void* glMapBufferRange(GLenum target, GLintptr offset, GLsizeiptr size, GLbitfield access)
{
    FORWARD(glMapBufferRange);
    record("glMapBufferRange", {float(target), float(size)});
    return real(target, offset, size, access);
}

RECORDED SbBool cc_glglue_has_vertex_buffer_object(const cc_glglue* context)
{
    FORWARD(cc_glglue_has_vertex_buffer_object);
    return !areBuffersHidden && real(context);
}

} // extern "C"

namespace RecordingGL {

void start()
{
    recorded.clear();
    recording = true;
}

RecordedCalls stop()
{
    recording = false;
    return std::move(recorded);
}

WithoutBuffers::WithoutBuffers() { areBuffersHidden = true; }
WithoutBuffers::~WithoutBuffers() { areBuffersHidden = false; }

} // namespace RecordingGL

std::ostream& operator<<(std::ostream& stream, const GLCall& call)
{
    stream << call.name << '(';
    for (std::size_t i = 0; i < call.arguments.size(); ++i)
        stream << (i ? ", " : "") << call.arguments[i];
    return stream << ')';
}

testing::AssertionResult sameCalls(const RecordedCalls& actual, const RecordedCalls& expected)
{
    const auto [a, e] =
        std::mismatch(actual.begin(), actual.end(), expected.begin(), expected.end());
    if (a == actual.end() && e == expected.end())
        return testing::AssertionSuccess();

    auto failure = testing::AssertionFailure();
    failure << actual.size() << " calls, expected " << expected.size() << "; from call "
            << a - actual.begin() << " on\n  actual   ";
    for (auto call = a; call != actual.end() && call - a < 8; ++call)
        failure << ' ' << *call;
    failure << "\n  expected ";
    for (auto call = e; call != expected.end() && call - e < 8; ++call)
        failure << ' ' << *call;
    return failure;
}
