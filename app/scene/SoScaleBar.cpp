// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/SoScaleBar.h"

#include <algorithm>

#include <Inventor/SoPrimitiveVertex.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/bundles/SoMaterialBundle.h>
#include <Inventor/elements/SoViewVolumeElement.h>
#include <Inventor/system/gl.h>

#include "scene/SoLegendCamera.h"

namespace strandview {

namespace {

// In the overlay's view, whose shorter side is 2.
const float MARGIN = 0.06f;
const float THICKNESS = 0.014f;
const float ABOVE_BAR = 0.02f; // below the letters
const float ASCENT = 0.8f;     // letters

void addBox(float left, float right, float low, float high, std::vector<SbVec3f>& corners)
{
    corners.insert(corners.end(),
                   {{left, low, 0}, {right, low, 0}, {right, high, 0}, {left, high, 0}});
}

} // namespace

SO_NODE_SOURCE(SoScaleBar);

void SoScaleBar::initClass() { SO_NODE_INIT_CLASS(SoScaleBar, SoShape, "Shape"); }

SoScaleBar::SoScaleBar() { SO_NODE_CONSTRUCTOR(SoScaleBar); }

SoScaleBar::SoScaleBar(const SoLegendCamera& cameraBefore) : camera(&cameraBefore)
{
    SO_NODE_CONSTRUCTOR(SoScaleBar);
}

SoScaleBar::~SoScaleBar() = default;

void SoScaleBar::set(const ScaleBarLook& next)
{
    if (next == look)
        return;
    look = next;
    touch();
}

// A part of the view has the same part of both views, as of a picture that is drawn in tiles.
std::vector<SbVec3f> SoScaleBar::findCorners(SoState* state)
{
    if (!camera || camera->getViewBefore().getProjectionType() != SbViewVolume::ORTHOGRAPHIC)
        return {};
    const double width = double(camera->getViewBefore().getWidth()) /
                         double(SoViewVolumeElement::get(state).getWidth());
    const double perUnit = width * look.perUnit; // of the overlay
    if (!(perUnit > 0))
        return {};
    const double round = roundLength(2 * LONGEST_SCALE_BAR * perUnit);
    const auto length = float(round / perUnit);
    const std::string next = scaleText(round, look.unit);
    if (next != text) {
        text = next;
        shape = lettering.getShape(text);
        this->width = float(lettering.getWidth(text));
    }

    const float ofText = this->width * look.textSize, widest = std::max(length, ofText);
    const float border = camera->getStretch() - MARGIN;
    const bool isLeft = look.corner == ScaleBarCorner::LOWER_LEFT;
    const float middle = (isLeft ? -1 : 1) * (border - widest / 2);
    const bool isAbove = look.corner == ScaleBarCorner::UPPER_RIGHT;
    const float low =
        isAbove ? 1 - MARGIN - ASCENT * look.textSize - ABOVE_BAR - THICKNESS : -1 + MARGIN;
    std::vector<SbVec3f> corners;
    addBox(middle - length / 2, middle + length / 2, low, low + THICKNESS, corners);
    const SbVec3f begin(middle - ofText / 2, low + THICKNESS + ABOVE_BAR, 0);
    for (const SbVec2f& corner : shape)
        corners.push_back(begin + look.textSize * SbVec3f(corner[0], corner[1], 0));
    return corners;
}

void SoScaleBar::GLRender(SoGLRenderAction* action)
{
    if (!shouldGLRender(action))
        return;
    const std::vector<SbVec3f> corners = findCorners(action->getState());
    SoMaterialBundle material(action);
    material.sendFirst();
    glBegin(GL_QUADS);
    glNormal3f(0, 0, 1);
    for (const SbVec3f& corner : corners)
        glVertex3fv(corner.getValue());
    glEnd();
}

void SoScaleBar::generatePrimitives(SoAction* action)
{
    const std::vector<SbVec3f> corners = findCorners(action->getState());
    SoPrimitiveVertex vertex;
    vertex.setNormal(SbVec3f(0, 0, 1));
    beginShape(action, QUADS);
    for (const SbVec3f& corner : corners) {
        vertex.setPoint(corner);
        shapeVertex(&vertex);
    }
    endShape();
}

void SoScaleBar::computeBBox(SoAction* /*action*/, SbBox3f& /*box*/, SbVec3f& /*centre*/) {}

} // namespace strandview
