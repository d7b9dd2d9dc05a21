// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_SOMEASURED_H
#define STRANDVIEW_APP_SCENE_SOMEASURED_H

#include <vector>

#include <Inventor/SbVec2f.h>
#include <Inventor/SbVec3f.h>
#include <Inventor/nodes/SoShape.h>
#include <Inventor/nodes/SoSubNode.h>

#include "scene/MeasuredLine.h"

namespace strandview {

class SoLegendCamera;

/// Lines in an overlay through places of the view before its camera, dots there, and their texts on
/// plates beside them, all of one size in the overlay's view. A line with a place behind the eye is
/// left out; a text whose line is in the view is all of it.
class SoMeasured : public SoShape
{
    SO_NODE_HEADER(SoMeasured);

public:
    /// Which of two materials.
    enum Material { PLATE, INK };

    static void initClass();
    SoMeasured();
    /// The camera lives as long as this. The size is that of letters, where the overlay's shorter
    /// side is 2.
    SoMeasured(const SoLegendCamera& cameraBefore, const std::vector<MeasuredLine>& lines,
               float lettersSize);

    void GLRender(SoGLRenderAction* action) override;

protected:
    ~SoMeasured() override;
    void generatePrimitives(SoAction* action) override;
    void computeBBox(SoAction* action, SbBox3f& box, SbVec3f& centre) override;

private:
    struct Line
    {
        std::vector<SbVec3f> points;
        std::vector<SbVec2f> letters; ///< four corners each, in font sizes
        float width;                  ///< of the text, in font sizes
    };
    /// Quadrilaterals of one material.
    struct Layer
    {
        Material material;
        std::vector<SbVec2f> corners;
    };

    std::vector<Layer> findLayers(SoState* state) const;
    SbVec2f middleOfText(const std::vector<SbVec2f>& seen, const SbVec2f& size) const;

    const SoLegendCamera* camera = nullptr;
    std::vector<Line> shownLines;
    float textSize = 0;
};

} // namespace strandview

#endif
