// SPDX-License-Identifier: GPL-3.0-or-later
#define GL_GLEXT_PROTOTYPES
#include "drawing/ProgramTexts.h"

#include <algorithm>
#include <cstddef>

#include <GL/glext.h>

namespace {

std::string textOf(GLuint shader)
{
    GLint size = 0; // with a NUL
    glGetShaderiv(shader, GL_SHADER_SOURCE_LENGTH, &size);
    std::string text(std::size_t(std::max(size, 1)), '\0');
    GLsizei length = 0;
    glGetShaderSource(shader, GLsizei(text.size()), &length, text.data());
    text.resize(std::size_t(length));
    return text;
}

std::size_t count(const std::string& text, const std::string& word)
{
    std::size_t number = 0;
    for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1))
        ++number;
    return number;
}

} // namespace

std::optional<ProgramTexts> readProgramTexts(GLuint program)
{
    GLuint shaders[3];
    GLsizei number = 0;
    glGetAttachedShaders(program, 3, &number, shaders);
    if (number != 2)
        return {};
    ProgramTexts texts;
    for (int i = 0; i < number; ++i) {
        GLint stage = 0;
        glGetShaderiv(shaders[i], GL_SHADER_TYPE, &stage);
        std::string& text = stage == GL_VERTEX_SHADER ? texts.vertex : texts.fragment;
        if ((stage != GL_VERTEX_SHADER && stage != GL_FRAGMENT_SHADER) || !text.empty())
            return {};
        text = textOf(shaders[i]);
    }
    if (texts.vertex.empty() || texts.fragment.empty())
        return {};
    return texts;
}

bool drawsAllInPlace(const ProgramTexts& texts)
{
    if (count(texts.vertex, "gl_Position = ftransform();") != 1)
        return false;
    for (const char* other :
         {"gl_Position", "gl_Clip", "discard", "gl_FragDepth", "gl_SampleMask"}) {
        const std::size_t allowed = other == std::string("gl_Position") ? 1 : 0;
        if (count(texts.vertex, other) + count(texts.fragment, other) != allowed)
            return false;
    }
    return true;
}
