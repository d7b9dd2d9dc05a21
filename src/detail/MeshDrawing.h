// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DETAIL_MESHDRAWING_H
#define STRANDVIEW_DETAIL_MESHDRAWING_H

#include <cstdint>
#include <vector>

#include <Inventor/SbBasic.h>

#include "GLBuffer.h"

class Mesh;
class SoGLRenderAction;
class SoMaterialBundle;
class SoNode;
class SoState;

/// Draws the meshes of a node so that a frame in which nothing of it changed costs the same
/// whatever their size.
///
/// What is drawn for the first time, or after a change, is drawn by the meshes themselves:
/// what changes in every frame costs nothing more. When the same is drawn again it is put
/// into vertex buffers, and drawn from them from then on; the picture is the same. The same
/// means: by the same node id, in the same OpenGL context, with materials from the same
/// place; the materials are kept as one colour per vertex. A display list that somebody
/// records gets what the meshes send.
///
/// Coin caches no extension shape unless it is told to, and gives up every cache in which a
/// shader program was traversed: what hangs beside a program keeps its own.
class MeshDrawing
{
public:
    struct Part
    {
        Mesh& mesh;
        int materialOffset;
    };

    /// Draws the parts in their order, as their render() does. They are the same until the
    /// node's id changes; their material offsets may depend on the material binding.
    void draw(const SoNode& node, SoGLRenderAction* action, const std::vector<Part>& parts);

private:
    /// What the colours of a drawing depend on.
    struct Materials
    {
        explicit Materials(SoState* state);
        bool operator==(const Materials& other) const;

        SbUniqueId diffuse, transparency; // the ids of the nodes that set them
        std::int32_t transparencyType, binding;
    };
    struct Colours
    {
        Materials materials;
        GLBuffer buffer; // none yet if they were seen once
    };
    /// In one context.
    struct Kept
    {
        GLBuffer vertices, triangles;
        int indexCount = 0;
        std::vector<Colours> colours; // those used last at the end
    };

    const Colours* find(SoGLRenderAction* action, Kept& kept, const std::vector<Part>& parts);
    static void drawKept(const Kept& kept, const Colours& colours, bool normals, SoState* state);

    SbUniqueId drawnId = 0; // the node's
    PerContext<Kept> contexts;
};

#endif
