// SPDX-License-Identifier: GPL-3.0-or-later
#define GL_GLEXT_PROTOTYPES
#include "drawing/PlacedProgram.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <memory>
#include <utility>

#include <GL/glext.h>
#include <Inventor/C/glue/gl.h>

#include "drawing/GLBuffer.h"

namespace {

const char* const DECLARATIONS = "attribute mat4 placedModelView;\n"
                                 "attribute mat4 placedProjected;\n"
                                 "attribute mat3 placedNormal;\n"
                                 "vec4 placedTransform() { return placedProjected * gl_Vertex; }\n";

// What stands for what OpenGL gives; others that follow the model and the view are not understood.
const std::pair<const char*, const char*> REPLACED[] = {
    {"ftransform", "placedTransform"},
    {"gl_ModelViewMatrix", "placedModelView"},
    {"gl_ModelViewProjectionMatrix", "placedProjected"},
    {"gl_NormalMatrix", "placedNormal"},
};

bool isOfName(char letter)
{
    return std::isalnum(static_cast<unsigned char>(letter)) || letter == '_';
}

// The text for many places; empty if it is not understood.
std::string replaceMatrices(const std::string& text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size();) {
        std::size_t end = i + 1;
        while (isOfName(text[i]) && end < text.size() && isOfName(text[end]))
            ++end;
        std::string word = text.substr(i, end - i);
        const auto* const replaced =
            std::find_if(std::begin(REPLACED), std::end(REPLACED),
                         [&](const auto& pair) { return word == pair.first; });
        if (replaced != std::end(REPLACED))
            word = replaced->second;
        else if (word.rfind("gl_ModelView", 0) == 0 || word.rfind("gl_NormalMatrix", 0) == 0 ||
                 word.rfind("placed", 0) == 0 || word == "gl_NormalScale" ||
                 word == "gl_InstanceID")
            return "";
        result += word;
        i = end;
    }
    return result;
}

// Declarations stand after the lines that must be first.
std::string makePlaced(const std::string& text)
{
    std::string placed = replaceMatrices(text);
    if (placed.empty())
        return "";
    std::size_t after = 0;
    for (const char* directive : {"#version", "#extension"}) {
        const std::size_t last = placed.rfind(directive);
        if (last == std::string::npos)
            continue;
        const std::size_t end = placed.find('\n', last);
        if (end == std::string::npos)
            return "";
        after = std::max(after, end + 1);
    }
    return placed.insert(after, DECLARATIONS);
}

bool attach(GLuint program, GLenum stage, const std::string& text)
{
    const GLuint shader = glCreateShader(stage);
    const char* const characters = text.c_str();
    glShaderSource(shader, 1, &characters, nullptr);
    glCompileShader(shader);
    GLint compiled = GL_FALSE;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &compiled);
    glAttachShader(program, shader);
    glDeleteShader(shader); // once the program goes
    return compiled == GL_TRUE;
}

// A uniform's value in one program, given to another one.
using CopyFloats = void (*)(GLint location, const GLfloat* values);
using CopyIntegers = void (*)(GLint location, const GLint* values);

CopyFloats copyFloats(GLenum type)
{
    switch (type) {
    case GL_FLOAT:
        return [](GLint to, const GLfloat* values) { glUniform1fv(to, 1, values); };
    case GL_FLOAT_VEC2:
        return [](GLint to, const GLfloat* values) { glUniform2fv(to, 1, values); };
    case GL_FLOAT_VEC3:
        return [](GLint to, const GLfloat* values) { glUniform3fv(to, 1, values); };
    case GL_FLOAT_VEC4:
        return [](GLint to, const GLfloat* values) { glUniform4fv(to, 1, values); };
    case GL_FLOAT_MAT2:
        return [](GLint to, const GLfloat* values) { glUniformMatrix2fv(to, 1, GL_FALSE, values); };
    case GL_FLOAT_MAT3:
        return [](GLint to, const GLfloat* values) { glUniformMatrix3fv(to, 1, GL_FALSE, values); };
    case GL_FLOAT_MAT4:
        return [](GLint to, const GLfloat* values) { glUniformMatrix4fv(to, 1, GL_FALSE, values); };
    default:
        return nullptr;
    }
}

CopyIntegers copyIntegers(GLenum type)
{
    switch (type) {
    case GL_INT:
    case GL_BOOL:
    case GL_SAMPLER_1D:
    case GL_SAMPLER_2D:
    case GL_SAMPLER_3D:
    case GL_SAMPLER_CUBE:
        return [](GLint to, const GLint* values) { glUniform1iv(to, 1, values); };
    case GL_INT_VEC2:
    case GL_BOOL_VEC2:
        return [](GLint to, const GLint* values) { glUniform2iv(to, 1, values); };
    case GL_INT_VEC3:
    case GL_BOOL_VEC3:
        return [](GLint to, const GLint* values) { glUniform3iv(to, 1, values); };
    case GL_INT_VEC4:
    case GL_BOOL_VEC4:
        return [](GLint to, const GLint* values) { glUniform4iv(to, 1, values); };
    default:
        return nullptr;
    }
}

// The product of two matrices, column by column, summed in OpenGL's order.
void multiply(const float* a, const float* b, float* __restrict product)
{
    for (int column = 0; column < 4; ++column) {
        const float* const right = b + 4 * column;
        for (int row = 0; row < 4; ++row)
            product[4 * column + row] = a[row] * right[0] + a[4 + row] * right[1] +
                                        a[8 + row] * right[2] + a[12 + row] * right[3];
    }
}

void multiplyTranslation(float* matrix, const SbVec3f& translation)
{
    for (int row = 0; row < 4; ++row)
        matrix[12 + row] = matrix[row] * translation[0] + matrix[4 + row] * translation[1] +
                           matrix[8 + row] * translation[2] + matrix[12 + row];
}

// Of the first three rows and columns, inverted and transposed.
void invertTransposed(const float* m, float* normal)
{
    const float* const columns[3] = {m, m + 4, m + 8};
    for (int i = 0; i < 3; ++i) {
        const float* const a = columns[(i + 1) % 3];
        const float* const b = columns[(i + 2) % 3];
        for (int row = 0; row < 3; ++row)
            normal[3 * i + row] =
                a[(row + 1) % 3] * b[(row + 2) % 3] - a[(row + 2) % 3] * b[(row + 1) % 3];
    }
    const float determinant = m[0] * normal[0] + m[1] * normal[1] + m[2] * normal[2];
    for (int i = 0; i < 9; ++i)
        normal[i] /= determinant;
}

} // namespace

// The programs that were asked for lately, the last one first.
struct ProgramsOfAContext
{
    const PlacedProgram* find(ProgramTexts texts)
    {
        const std::size_t many = 8;
        auto found = std::find_if(programs.begin(), programs.end(), [&](const auto& program) {
            return program->texts.vertex == texts.vertex &&
                   program->texts.fragment == texts.fragment;
        });
        if (found == programs.end()) {
            if (programs.size() == many) {
                glDeleteProgram(programs.back()->name);
                programs.pop_back();
            }
            programs.emplace_back(new PlacedProgram(std::move(texts)));
            found = programs.end() - 1;
        }
        std::rotate(programs.begin(), found, found + 1);
        return programs.front()->name ? programs.front().get() : nullptr;
    }

    std::vector<std::unique_ptr<PlacedProgram>> programs;
};

const PlacedProgram* PlacedProgram::find(std::uint32_t context)
{
    // Never destroyed: contexts may outlive whatever else is static.
    static auto* const programs = new PerContext<ProgramsOfAContext>;
    if (!cc_glglue_glversion_matches_at_least(cc_glglue_instance(int(context)), 3, 3, 0))
        return nullptr;
    GLint inUse = 0;
    glGetIntegerv(GL_CURRENT_PROGRAM, &inUse);
    auto read = inUse ? readProgramTexts(GLuint(inUse)) : std::nullopt;
    return read ? (*programs)[context].find(std::move(*read)) : nullptr;
}

PlacedProgram::PlacedProgram(ProgramTexts newTexts) : texts(std::move(newTexts))
{
    link();
    if (name && !findUniforms()) {
        glDeleteProgram(name);
        name = 0;
    }
}

void PlacedProgram::link()
{
    const std::string vertex = makePlaced(texts.vertex);
    if (vertex.empty())
        return;
    name = glCreateProgram();
    GLint linked = GL_FALSE;
    if (attach(name, GL_VERTEX_SHADER, vertex) &&
        attach(name, GL_FRAGMENT_SHADER, texts.fragment)) {
        glLinkProgram(name);
        glGetProgramiv(name, GL_LINK_STATUS, &linked);
    }
    if (linked == GL_TRUE) {
        modelView = glGetAttribLocation(name, "placedModelView");
        projected = glGetAttribLocation(name, "placedProjected");
        normal = glGetAttribLocation(name, "placedNormal");
    } else {
        glDeleteProgram(name);
        name = 0;
    }
}

// Whether all of them can be copied.
bool PlacedProgram::findUniforms()
{
    GLint count = 0, longest = 0;
    glGetProgramiv(name, GL_ACTIVE_UNIFORMS, &count);
    glGetProgramiv(name, GL_ACTIVE_UNIFORM_MAX_LENGTH, &longest);
    std::vector<char> characters(std::size_t(std::max(longest, 1)));
    for (GLint i = 0; i < count; ++i) {
        GLint size = 0;
        GLenum type = 0;
        glGetActiveUniform(name, GLuint(i), GLsizei(characters.size()), nullptr, &size, &type,
                           characters.data());
        std::string uniform = characters.data();
        if (uniform.rfind("gl_", 0) == 0)
            continue;
        if (!copyFloats(type) && !copyIntegers(type))
            return false;
        const std::size_t bracket = uniform.rfind("[0]");
        const bool isArray = bracket != std::string::npos && bracket + 3 == uniform.size();
        if (isArray)
            uniform.resize(bracket);
        for (GLint element = 0; element < size; ++element)
            uniforms.push_back(
                {isArray ? uniform + "[" + std::to_string(element) + "]" : uniform, type});
    }
    return true;
}

void PlacedProgram::copyUniforms(GLuint from) const
{
    for (const Uniform& uniform : uniforms) {
        const GLint source = glGetUniformLocation(from, uniform.name.c_str());
        const GLint target = glGetUniformLocation(name, uniform.name.c_str());
        if (source < 0)
            continue; // its default stays
        if (const CopyFloats copy = copyFloats(uniform.type)) {
            GLfloat values[16];
            glGetUniformfv(from, source, values);
            copy(target, values);
        } else {
            GLint values[4];
            glGetUniformiv(from, source, values);
            copyIntegers(uniform.type)(target, values);
        }
    }
}

PlacedProgram::Use::Use(const PlacedProgram& program)
{
    glGetIntegerv(GL_CURRENT_PROGRAM, &before);
    glUseProgram(program.name);
    program.copyUniforms(GLuint(before));
}

PlacedProgram::Use::~Use() { glUseProgram(GLuint(before)); }

void PlacedProgram::enablePlaces() const
{
    const auto enable = [](GLint first, GLuint columns, GLint rows, std::size_t offset) {
        for (GLuint i = 0; first >= 0 && i < columns; ++i) {
            const GLuint location = GLuint(first) + i;
            glEnableVertexAttribArray(location);
            glVertexAttribPointer(location, rows, GL_FLOAT, GL_FALSE, sizeof(Place),
                                  GLBuffer::offset(offset + i * GLuint(rows) * sizeof(float)));
            glVertexAttribDivisor(location, 1);
        }
    };
    enable(modelView, 4, 4, offsetof(Place, modelView));
    enable(projected, 4, 4, offsetof(Place, projected));
    enable(normal, 3, 3, offsetof(Place, normal));
}

void PlacedProgram::disablePlaces() const
{
    const auto disable = [](GLint first, GLuint columns) {
        for (GLuint i = 0; first >= 0 && i < columns; ++i) {
            glVertexAttribDivisor(GLuint(first) + i, 0);
            glDisableVertexAttribArray(GLuint(first) + i);
        }
    };
    disable(modelView, 4);
    disable(projected, 4);
    disable(normal, 3);
}

PlaceReader::PlaceReader()
{
    glGetFloatv(GL_MODELVIEW_MATRIX, modelView);
    glGetFloatv(GL_PROJECTION_MATRIX, projection);
}

PlacedProgram::Place PlaceReader::read(const SbMatrix& matrix, const SbVec3f& translation) const
{
    PlacedProgram::Place place;
    multiply(modelView, matrix[0], place.modelView);
    if (translation != SbVec3f(0, 0, 0))
        multiplyTranslation(place.modelView, translation);
    multiply(projection, place.modelView, place.projected);
    invertTransposed(place.modelView, place.normal);
    return place;
}
