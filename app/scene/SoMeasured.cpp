// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/SoMeasured.h"

#include <algorithm>
#include <cmath>

#include <Inventor/SbViewVolume.h>
#include <Inventor/SoPrimitiveVertex.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/bundles/SoMaterialBundle.h>
#include <Inventor/elements/SoViewVolumeElement.h>
#include <Inventor/system/gl.h>

#include "scene/Lettering.h"
#include "scene/SoLabels.h"
#include "scene/SoLegendCamera.h"

namespace strandview {

namespace {

// In font sizes.
const float LINE = 0.12f, DOT = 0.4f;               // across
const float RIM = 0.09f;                            // around both, of the plates' colour
const float GAP = 0.35f;                            // between a line and a plate
const float BESIDE_TEXT = 0.2f, ABOVE_TEXT = 0.08f; // of a plate
const float ASCENT = 0.8f, DESCENT = 0.25f;         // letters

using Points = std::vector<SbVec2f>;

void addBox(const SbVec2f& low, const SbVec2f& high, Points& corners)
{
    corners.insert(corners.end(), {low, {high[0], low[1]}, high, {low[0], high[1]}});
}

// Of what joins two points, so wide.
void addSegment(const SbVec2f& a, const SbVec2f& b, float width, Points& corners)
{
    SbVec2f across(a[1] - b[1], b[0] - a[0]);
    if (!(across.length() > 0))
        return;
    across *= width / 2 / across.length();
    corners.insert(corners.end(), {a - across, b - across, b + across, a + across});
}

void addDisc(const SbVec2f& middle, float width, Points& corners)
{
    const int sides = 24; // an even number
    const auto at = [&](int i) {
        const double angle = 2 * M_PI * i / sides;
        return middle + width / 2 * SbVec2f(float(std::cos(angle)), float(std::sin(angle)));
    };
    for (int i = 0; i < sides; i += 2)
        corners.insert(corners.end(), {middle, at(i), at(i + 1), at(i + 2)});
}

// Of a line, where its text is.
SbVec2f middleOf(const Points& seen)
{
    const std::size_t half = seen.size() / 2;
    return seen.size() % 2 == 1 ? seen[half] : (seen[half - 1] + seen[half]) / 2;
}

// From the scene to the overlay. A part of a view has the same part of both, as of a picture that
// is drawn in tiles.
class Projection
{
public:
    Projection(const SbViewVolume& viewBefore, const SbViewVolume& viewOfOverlay)
        : before(viewBefore), over(viewOfOverlay)
    {}

    // Nothing if one of them is behind the eye.
    Points seen(const std::vector<SbVec3f>& points) const
    {
        Points all;
        for (const SbVec3f& point : points) {
            if (isBehindEye(point))
                return {};
            SbVec3f onScreen;
            before.projectToScreen(point, onScreen);
            const SbVec3f there = over.getPlanePoint(1, {onScreen[0], onScreen[1]});
            all.emplace_back(there[0], there[1]);
        }
        return all;
    }

private:
    bool isBehindEye(const SbVec3f& point) const
    {
        return before.getProjectionType() == SbViewVolume::PERSPECTIVE &&
               !((point - before.getProjectionPoint()).dot(before.getProjectionDirection()) > 0);
    }

    const SbViewVolume &before, &over;
};

} // namespace

SO_NODE_SOURCE(SoMeasured);

void SoMeasured::initClass() { SO_NODE_INIT_CLASS(SoMeasured, SoShape, "Shape"); }

SoMeasured::SoMeasured() { SO_NODE_CONSTRUCTOR(SoMeasured); }

SoMeasured::SoMeasured(const SoLegendCamera& cameraBefore, const std::vector<MeasuredLine>& lines,
                       float lettersSize)
    : camera(&cameraBefore), textSize(lettersSize)
{
    SO_NODE_CONSTRUCTOR(SoMeasured);
    const Lettering lettering;
    for (const MeasuredLine& line : lines)
        shownLines.push_back(
            {line.points, lettering.getShape(line.text), float(lettering.getWidth(line.text))});
}

SoMeasured::~SoMeasured() = default;

// Beside its line; of one that is in the view, within it: on the other side if there is room.
SbVec2f SoMeasured::middleOfText(const Points& seen, const SbVec2f& size) const
{
    const SbVec2f extent = camera->getExtent(); // of a view that begins at y = -1
    const SbVec2f low(-extent[0] / 2, -1), high(extent[0] / 2, extent[1] - 1);
    const auto isInView = [&](const SbVec2f& point, const SbVec2f& sizeOfIt) {
        return std::abs(2 * point[0] - low[0] - high[0]) + sizeOfIt[0] <= extent[0] &&
               std::abs(2 * point[1] - low[1] - high[1]) + sizeOfIt[1] <= extent[1];
    };
    const auto isSeen = [&](const SbVec2f& point) { return isInView(point, {0, 0}); };
    const SbVec2f usual = labelPlace(seen, size, GAP * textSize);
    const bool isSomethingSeen = isSeen(usual) || std::any_of(seen.begin(), seen.end(), isSeen);
    if (isInView(usual, size) || !isSomethingSeen)
        return usual;
    const SbVec2f opposite = 2 * middleOf(seen) - usual;
    if (isInView(opposite, size))
        return opposite;
    SbVec2f nearest;
    for (const int axis : {0, 1}) {
        const float least = low[axis] + size[axis] / 2, most = high[axis] - size[axis] / 2;
        nearest[axis] =
            least < most ? std::clamp(usual[axis], least, most) : (low[axis] + high[axis]) / 2;
    }
    return nearest;
}

std::vector<SoMeasured::Layer> SoMeasured::findLayers(SoState* state) const
{
    std::vector<Layer> layers{{PLATE, {}}, {INK, {}}, {PLATE, {}}, {INK, {}}};
    if (!camera)
        return layers;
    const Projection projection(camera->getViewBefore(), SoViewVolumeElement::get(state));
    Points &rims = layers[0].corners, &lines = layers[1].corners, &plates = layers[2].corners,
           &letters = layers[3].corners;
    for (const Line& line : shownLines) {
        const Points seen = projection.seen(line.points);
        for (std::size_t i = 0; i < seen.size(); ++i) {
            if (i > 0) {
                addSegment(seen[i - 1], seen[i], (LINE + 2 * RIM) * textSize, rims);
                addSegment(seen[i - 1], seen[i], LINE * textSize, lines);
            }
            addDisc(seen[i], (DOT + 2 * RIM) * textSize, rims);
            addDisc(seen[i], DOT * textSize, lines);
        }
        if (seen.empty())
            continue;
        const SbVec2f size =
            textSize * SbVec2f(line.width + 2 * BESIDE_TEXT, ASCENT + DESCENT + 2 * ABOVE_TEXT);
        const SbVec2f low = middleOfText(seen, size) - size / 2;
        addBox(low, low + size, plates);
        const SbVec2f begin = low + textSize * SbVec2f(BESIDE_TEXT, ABOVE_TEXT + DESCENT);
        for (const SbVec2f& corner : line.letters)
            letters.push_back(begin + textSize * corner);
    }
    return layers;
}

void SoMeasured::GLRender(SoGLRenderAction* action)
{
    if (!shouldGLRender(action))
        return;
    SoMaterialBundle material(action);
    material.sendFirst();
    glNormal3f(0, 0, 1);
    glBegin(GL_QUADS);
    for (const Layer& layer : findLayers(action->getState())) {
        material.send(layer.material, TRUE);
        for (const SbVec2f& corner : layer.corners)
            glVertex2fv(corner.getValue());
    }
    glEnd();
}

void SoMeasured::generatePrimitives(SoAction* action)
{
    SoPrimitiveVertex vertex;
    vertex.setNormal(SbVec3f(0, 0, 1));
    beginShape(action, QUADS);
    for (const Layer& layer : findLayers(action->getState())) {
        vertex.setMaterialIndex(layer.material);
        for (const SbVec2f& corner : layer.corners) {
            vertex.setPoint(SbVec3f(corner[0], corner[1], 0));
            shapeVertex(&vertex);
        }
    }
    endShape();
}

void SoMeasured::computeBBox(SoAction* /*action*/, SbBox3f& /*box*/, SbVec3f& /*centre*/) {}

} // namespace strandview
