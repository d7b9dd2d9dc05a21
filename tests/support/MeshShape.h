// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_MESHSHAPE_H
#define STRANDVIEW_TESTS_MESHSHAPE_H

#include <SoMeshShape.h>

class Mesh;

/// The least node that can own a mesh: it hands every action on to the mesh, which
/// belongs to the test and must outlive the node. Without a mesh it has an empty box.
class MeshShape : public SoMeshShape
{
    SO_NODE_ABSTRACT_HEADER(MeshShape);

public:
    static void initClass();

    explicit MeshShape(Mesh* shownMesh, int renderedMaterialOffset = 0);

    void GLRender(SoGLRenderAction* action) override;
    void getPrimitiveCount(SoGetPrimitiveCountAction* action) override;

    int boxComputations = 0; ///< calls of computeBBox so far

protected:
    ~MeshShape() override = default;
    void generatePrimitives(SoAction* action) override;
    /// The mesh's box, and as its centre the box's maximum, which is not the middle.
    void computeBBox(SoAction* action, SbBox3f& box, SbVec3f& centre) override;

private:
    Mesh* mesh;
    int materialOffset;
};

#endif
