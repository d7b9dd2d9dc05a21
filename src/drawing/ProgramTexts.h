// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DRAWING_PROGRAMTEXTS_H
#define STRANDVIEW_DRAWING_PROGRAMTEXTS_H

#include <optional>
#include <string>

#include <GL/gl.h>

/// The texts of a program's two stages.
struct ProgramTexts
{
    std::string vertex, fragment;
};

/// Nothing of a program that has not one text for each of the two stages, and no others.
std::optional<ProgramTexts> readProgramTexts(GLuint program);

/// Whether what a program draws is where OpenGL itself would draw it, all of it.
bool drawsAllInPlace(const ProgramTexts& texts);

#endif
