// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DRAWING_MESHVISITORS_H
#define STRANDVIEW_DRAWING_MESHVISITORS_H

#include <GL/gl.h>
#include <Inventor/SoPrimitiveVertex.h>
#include <Inventor/bundles/SoMaterialBundle.h>

#include <Mesh.h>
#include <MeshVisitor.h>
#include <SoMeshShape.h>

#include "drawing/GLVertexState.h"
#include "drawing/sendMaterial.h"

/// Sends a mesh to OpenGL in immediate mode. Making one begins the drawing.
class ImmediateDrawing final : public MeshVisitor
{
public:
    ImmediateDrawing(Mesh& drawnMesh, SoGLRenderAction* action, int offset)
        : mesh(drawnMesh), materialOffset(offset), bundle(action), state(action, bundle, offset)
    {}

    // A fan's material is sent once, even where it is the overall one.
    void begin(Kind kind, int material) override
    {
        isFan = kind == FAN;
        if (isFan)
            sendMaterial(bundle, materialOffset + (state.materialOverall ? 0 : material));
        glBegin(isFan ? GL_TRIANGLE_FAN : GL_TRIANGLE_STRIP);
    }
    void vertex(const Vertex& v) override
    {
        mesh.addGLVertex(state.texture, v.s, v.t, isFan || state.materialOverall, bundle,
                         v.material + materialOffset, state.sendNormal, v.point, v.normal);
    }
    void end() override { glEnd(); }

private:
    Mesh& mesh;
    const int materialOffset;
    SoMaterialBundle bundle;
    const GLVertexState state;
    bool isFan = false;
};

/// Emits a mesh through the shape that owns it.
class PrimitiveGeneration final : public MeshVisitor
{
public:
    PrimitiveGeneration(SoMeshShape& owner, SoAction* shapeAction)
        : shape(owner), action(shapeAction)
    {}

    void begin(Kind kind, int /*material*/) override
    {
        isFan = kind == FAN;
        shape.beginShape(action, isFan ? SoShape::TRIANGLE_FAN : SoShape::TRIANGLE_STRIP, nullptr);
    }
    // A cap in the material of its ring, whatever it is drawn in: kept on purpose.
    void vertex(const Vertex& v) override
    {
        corner.setPoint(toSbVec3f(v.point));
        corner.setNormal(toSbVec3f(v.normal));
        corner.setMaterialIndex(isFan ? v.row : v.material);
        shape.shapeVertex(&corner);
    }
    void end() override { shape.endShape(); }

private:
    SoMeshShape& shape;
    SoAction* const action;
    SoPrimitiveVertex corner;
    bool isFan = false;
};

#endif
