// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_DRAWING_H
#define STRANDVIEW_TESTS_DRAWING_H

#include <ostream>

#include <Inventor/nodes/SoMaterialBinding.h>

#include "RecordingGL.h"

class Mesh;
class SoNode;
class TubeMesh;

/// What stands before a shape when its OpenGL calls are recorded. There are 200
/// materials, told apart by their diffuse colours.
struct DrawingState
{
    SoMaterialBinding::Binding binding = SoMaterialBinding::OVERALL;
    bool textured = false;
    bool lit = true; ///< false: light model BASE_COLOR, which needs no normals

    bool isPerVertex() const
    {
        return binding == SoMaterialBinding::PER_VERTEX ||
               binding == SoMaterialBinding::PER_VERTEX_INDEXED;
    }
};

std::ostream& operator<<(std::ostream& stream, const DrawingState& state);

/// Every combination of the bindings OVERALL, PER_FACE, PER_VERTEX and
/// PER_VERTEX_INDEXED with and without texture and lighting.
std::vector<DrawingState> allDrawingStates();

/// Renders the shape off-screen, where there are no buffers, and returns its calls, without those
/// that change nothing: glMaterial, for the materials differ in their diffuse colour only, and a
/// colour that is the current one already.
RecordedCalls recordDrawing(SoNode* shape, const DrawingState& state);

/// Whether anything is drawn at all.
bool containsStrips(const RecordedCalls& calls);

/// The calls that a drawing consists of by the rules of the meshes, written down one
/// after the other. A material that is not there is the last one, or the first.
class ExpectedDrawing
{
public:
    explicit ExpectedDrawing(const DrawingState& drawingState) : state(drawingState) {}

    /// A new material bundle sends the first material.
    void startBundle() { sendMaterial(0); }
    void drawBody(Mesh& mesh, int materialOffset);
    void drawCaps(TubeMesh& tube, int materialOffset, bool lowerCapTakesLast,
                  bool upperCapTakesFirst);
    const RecordedCalls& getCalls() const { return calls; }

private:
    void sendMaterial(int index);
    void drawCap(TubeMesh& tube, int row, double t, bool upper);

    DrawingState state;
    RecordedCalls calls;
    int currentMaterial = -1;
};

#endif
