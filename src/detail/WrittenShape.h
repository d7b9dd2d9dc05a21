// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DETAIL_WRITTENSHAPE_H
#define STRANDVIEW_DETAIL_WRITTENSHAPE_H

#include <Inventor/SbBasic.h>

class SoOutput;
class SoSeparator;
class SoShape;
class SoWriteAction;

/// What stands in a file for a shape of a class that files cannot make: a separator with the
/// triangles that it shows, in points, normals and the first material, for any Coin program.
///
/// A file is written in two passes, and a node that stands in several places is named at the
/// first and referred to at the others: so the separator is made when the first pass counts
/// the references, and kept until that pass finds the shape changed.
class WrittenShape
{
public:
    WrittenShape() = default;
    ~WrittenShape();
    WrittenShape(const WrittenShape&) = delete;
    WrittenShape& operator=(const WrittenShape&) = delete;

    /// In place of the shape's own operations.
    void addReference(SoShape& shape, SoOutput* output, SbBool isFromField);
    void write(SoShape& shape, SoWriteAction* action);

private:
    void follow(SoShape& shape);

    SoSeparator* standIn = nullptr; // referenced
    SbUniqueId shapeId = 0;         // the shape's when it was made
};

#endif
