// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_RECORDINGGL_H
#define STRANDVIEW_TESTS_RECORDINGGL_H

#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

/// One call of OpenGL: its name and its arguments as numbers, all of which a float
/// holds exactly; an array's elements count as arguments.
struct GLCall
{
    std::string name;
    std::vector<float> arguments;

    bool operator==(const GLCall& other) const
    {
        return name == other.name && arguments == other.arguments;
    }
};

std::ostream& operator<<(std::ostream& stream, const GLCall& call);

using RecordedCalls = std::vector<GLCall>;

/// The OpenGL calls of the library and of Coin that draw in immediate mode or send a
/// material: glBegin, glEnd, glNormal3f, glTexCoord2f, glVertex3f, glColor4ub,
/// glMaterialf and glMaterialfv; that draw from buffers: glDrawElements; and that make,
/// fill and delete those: glGenBuffers, glBufferData, glMapBufferRange and glDeleteBuffers. The
/// program that links this file defines them itself; each call goes on to the real function.
namespace RecordingGL {

/// Forgets what was recorded and records from now on.
void start();
/// Stops and returns the calls since start(), in their order.
RecordedCalls stop();

/// While there is one, Coin tells of every context that it has no vertex buffers.
class WithoutBuffers
{
public:
    WithoutBuffers();
    ~WithoutBuffers();
    WithoutBuffers(const WithoutBuffers&) = delete;
    WithoutBuffers& operator=(const WithoutBuffers&) = delete;
};

} // namespace RecordingGL

/// Whether both lists are the same; if not, where they differ first.
testing::AssertionResult sameCalls(const RecordedCalls& actual, const RecordedCalls& expected);

#endif
