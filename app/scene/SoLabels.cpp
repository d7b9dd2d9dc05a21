// SPDX-License-Identifier: GPL-3.0-or-later
#define GL_GLEXT_PROTOTYPES
#include "scene/SoLabels.h"

#include <cmath>
#include <optional>

#include <GL/gl.h>
#include <GL/glext.h>
#include <Inventor/SbViewVolume.h>
#include <Inventor/SbViewportRegion.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/elements/SoCacheElement.h>
#include <Inventor/elements/SoModelMatrixElement.h>
#include <Inventor/elements/SoViewVolumeElement.h>
#include <Inventor/elements/SoViewportRegionElement.h>
#include <QColor>
#include <QImage>

#include "scene/Lettering.h"

namespace strandview {

namespace {

// In the desktop's pixels.
const float FONT_SIZE = 13, GAP = 7;

const QColor PLATE_COLOUR(0, 0, 0, 205);

// Of a direction that no line on the screen has.
const float SHORTEST = 1e-3f;

// To the right above.
const SbVec2f USUAL(0.707f, 0.707f);

SbVec2f unitOr(SbVec2f direction, const SbVec2f& otherwise)
{
    if (!(direction.length() > SHORTEST))
        return otherwise;
    direction.normalize();
    return direction;
}

SbVec2f outwardsOf(const std::vector<SbVec2f>& points)
{
    if (points.size() == 3) {
        const SbVec2f inwards =
            unitOr(points[0] - points[1], {0, 0}) + unitOr(points[2] - points[1], {0, 0});
        if (inwards.length() > 0.1f) // otherwise it is as good as straight
            return unitOr(-inwards, USUAL);
    }
    if (points.size() < 2)
        return USUAL;
    const std::size_t last = points.size() == 2 ? 1 : 2;
    const SbVec2f along = points[last] - points[last - 1];
    const SbVec2f across = unitOr({-along[1], along[0]}, USUAL);
    const bool isUpright = std::abs(across[1]) < 0.1f;
    return (isUpright ? across[0] < 0 : across[1] < 0) ? -across : across;
}

// In pixels of the viewport; nothing of what is behind the camera.
std::optional<SbVec2f> projected(const SbVec3f& point, const SbViewVolume& view,
                                 const SbVec2s& size)
{
    const bool isPerspective = view.getProjectionType() == SbViewVolume::PERSPECTIVE;
    if (isPerspective &&
        !((point - view.getProjectionPoint()).dot(view.getProjectionDirection()) > 0))
        return std::nullopt;
    SbVec3f seen;
    view.projectToScreen(point, seen);
    return SbVec2f(seen[0] * float(size[0]), seen[1] * float(size[1]));
}

void prepareGl()
{
    for (const GLenum off : {GL_DEPTH_TEST, GL_LIGHTING, GL_TEXTURE_2D, GL_ALPHA_TEST, GL_FOG,
                             GL_STENCIL_TEST, GL_COLOR_LOGIC_OP})
        glDisable(off);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glPixelZoom(1, 1);
}

} // namespace

SbVec2f labelPlace(const std::vector<SbVec2f>& points, const SbVec2f& size, float gap)
{
    const SbVec2f outwards = outwardsOf(points);
    SbVec2f anchor = points[points.size() > 2 ? 1 : 0];
    if (points.size() == 2)
        anchor = (points[0] + points[1]) / 2;
    else if (points.size() == 4)
        anchor = (points[1] + points[2]) / 2;
    const float half = (std::abs(outwards[0]) * size[0] + std::abs(outwards[1]) * size[1]) / 2;
    return anchor + (half + gap) * outwards;
}

// With the first row below, as OpenGL has pictures.
struct SoLabels::Plate
{
    QImage image;
};

SO_NODE_SOURCE(SoLabels);

void SoLabels::initClass() { SO_NODE_INIT_CLASS(SoLabels, SoNode, "Node"); }

SoLabels::SoLabels() { SO_NODE_CONSTRUCTOR(SoLabels); }

SoLabels::~SoLabels() = default;

void SoLabels::setLabels(const std::vector<Label>& newLabels)
{
    labels = newLabels;
    paint();
    touch();
}

void SoLabels::setScale(float newScale)
{
    if (newScale == scale)
        return;
    scale = newScale;
    paint();
    touch();
}

void SoLabels::paint()
{
    plates.clear();
    for (const Label& label : labels) {
        if (!lettering)
            lettering = std::make_unique<Lettering>();
        const QColor ink = QColor::fromRgbF(double(label.colour[0]), double(label.colour[1]),
                                            double(label.colour[2]));
        plates.push_back({label.text.empty()
                              ? QImage()
                              : lettering
                                    ->getPlate(label.text, int(std::lround(FONT_SIZE * scale)), ink,
                                               PLATE_COLOUR)
                                    .mirrored()});
    }
}

void SoLabels::GLRender(SoGLRenderAction* action)
{
    if (plates.empty())
        return;
    SoState* const state = action->getState();
    SoCacheElement::invalidate(state); // the places depend on the view
    const SbViewVolume& view = SoViewVolumeElement::get(state);
    const SbMatrix& model = SoModelMatrixElement::get(state);
    const SbViewportRegion& region = SoViewportRegionElement::get(state);
    const SbVec2s origin = region.getViewportOriginPixels(), size = region.getViewportSizePixels();
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
    prepareGl();
    for (std::size_t i = 0; i < labels.size(); ++i) {
        const QImage& image = plates[i].image;
        std::vector<SbVec2f> seen;
        for (SbVec3f point : labels[i].points) {
            model.multVecMatrix(point, point);
            if (const auto place = projected(point, view, size))
                seen.push_back(*place);
        }
        if (image.isNull() || seen.empty() || seen.size() != labels[i].points.size())
            continue;
        const SbVec2f extent(float(image.width()), float(image.height()));
        const SbVec2f corner = labelPlace(seen, extent, GAP * scale) - extent / 2;
        glWindowPos2f(std::round(float(origin[0]) + corner[0]),
                      std::round(float(origin[1]) + corner[1]));
        glDrawPixels(image.width(), image.height(), GL_RGBA, GL_UNSIGNED_BYTE, image.constBits());
    }
    glPopClientAttrib();
    glPopAttrib();
}

} // namespace strandview
