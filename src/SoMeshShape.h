// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_SOMESHSHAPE_H
#define STRANDVIEW_SOMESHSHAPE_H

#include <Inventor/SbBasic.h>
#include <Inventor/nodes/SoShape.h>
#include <Inventor/nodes/SoSubNode.h>

#include <StrandviewExport.h>

/// The base of the shape nodes that own meshes. A mesh is no node; it emits its
/// triangles through the node that owns it.
///
/// Like every node class here it is registered by the host, parents first, after
/// Coin is initialised: SoMeshShape::initClass(), then SoRod::initClass(). Using a
/// class before, or registering it twice, fails an assertion.
///
/// Nodes, and what they give out, belong to the one thread that uses Coin (see
/// SoDB::isMultiThread()): not even making one is safe in another. They are counted by references:
/// made with a count of zero, each is deleted by its last unref(), never by its maker. All of this
/// holds for every node class of the library.
class STRANDVIEW_EXPORT SoMeshShape : public SoShape
{
    SO_NODE_ABSTRACT_HEADER(SoMeshShape);

public:
    static void initClass();

    // SoShape's own operations of these names, made public for the meshes.
    void beginShape(SoAction* action, SoShape::TriangleShape shapeType, SoDetail* detail = nullptr);
    void shapeVertex(const SoPrimitiveVertex* vertex);
    void endShape();

    /// Whether a drawing may leave out rows that are nearer to each other than half a pixel: for
    /// what changes in every frame, whose triangles, smaller than a pixel, would take longer than
    /// its data. What is seen stays within half a pixel, its colours are those of rows that are
    /// left. For drawing alone, not for other actions; from a thousand rows on, of all meshes
    /// together. At first not.
    void drawCoarsely(bool coarse);
    bool isDrawnCoarsely() const;
    /// While one lives, all rows are drawn of every shape: for pictures of what a window draws
    /// coarsely. In Coin's thread.
    class STRANDVIEW_EXPORT AllRows
    {
    public:
        AllRows();
        ~AllRows();
        AllRows(const AllRows&) = delete;
        AllRows& operator=(const AllRows&) = delete;
    };
    /// The node's id when it was changed last otherwise than by drawCoarsely(), which leaves what
    /// it draws from as it is: for whatever is kept of the meshes.
    SbUniqueId getIdOfMeshes() const;

    void copyContents(const SoFieldContainer* from, SbBool copyConnections) override;

    /// Extends the action's box by that of computeBBox and sets its centre; an empty
    /// box, or no action, adds nothing.
    void getBoundingBox(SoGetBoundingBoxAction* action) override;

protected:
    SoMeshShape();
    ~SoMeshShape() override;

    /// Whether the drawing that is begun now does so.
    bool leavesOutRows() const;

private:
    bool coarse = false;
    SbUniqueId coarseId = 0; // the node's since drawCoarsely()
    SbUniqueId meshesId = 0; // and before it
};

#endif
