// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DRAWING_PLACEDPROGRAM_H
#define STRANDVIEW_DRAWING_PLACEDPROGRAM_H

#include <cstdint>
#include <string>
#include <vector>

#include <GL/gl.h>
#include <Inventor/SbMatrix.h>
#include <Inventor/SbVec3f.h>

#include "drawing/ProgramTexts.h"

/// A copy of the program in use that draws at many places at once: its vertex stage is the same
/// text, with the matrices of each place where it asks OpenGL for those of the model and the view.
/// Its fragment stage is that of the program in use.
class PlacedProgram
{
public:
    /// What the vertex stage is given of a place; matrices column by column.
    struct Place
    {
        float modelView[16];
        float projected[16]; ///< modelView, then the projection
        float normal[9];     ///< of modelView's first three rows and columns, inverted, transposed
    };

    /// Of the program in use in the current context, which has that name. Null if none is in use,
    /// if it has other stages, matrices or uniforms than are understood, or if the context cannot
    /// draw so. It lives as long as its context, or until many others were asked for.
    static const PlacedProgram* find(std::uint32_t context);

    PlacedProgram(const PlacedProgram&) = delete;
    PlacedProgram& operator=(const PlacedProgram&) = delete;

    /// Takes the place of the program in use, with the values of its uniforms, and gives it back.
    class Use
    {
    public:
        explicit Use(const PlacedProgram& program);
        ~Use();
        Use(const Use&) = delete;
        Use& operator=(const Use&) = delete;

    private:
        GLint before = 0;
    };

    /// While it is used: has the next instanced draws read their places from the buffer that is
    /// bound for vertices; and no draws.
    void enablePlaces() const;
    void disablePlaces() const;

private:
    struct Uniform
    {
        std::string name;
        GLenum type;
    };

    explicit PlacedProgram(ProgramTexts newTexts);
    void link();
    bool findUniforms();
    void copyUniforms(GLuint from) const;

    const ProgramTexts texts; // of the program in use
    GLuint name = 0;          // none if it could not be made; goes with its context
    GLint modelView = -1, projected = -1, normal = -1;
    std::vector<Uniform> uniforms;

    friend struct ProgramsOfAContext;
};

/// Finds what a PlacedProgram is given of places, in floats rounded as OpenGL's matrices are.
class PlaceReader
{
public:
    /// Under OpenGL's matrices as they are now.
    PlaceReader();
    /// Of something translated within a place.
    PlacedProgram::Place read(const SbMatrix& matrix, const SbVec3f& translation) const;

private:
    float modelView[16], projection[16];
};

#endif
