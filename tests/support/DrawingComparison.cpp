// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/DrawingComparison.h"

#include <algorithm>
#include <cstdlib>

#include <GL/gl.h>
#include <Inventor/nodes/SoDirectionalLight.h>
#include <Inventor/nodes/SoLightModel.h>
#include <Inventor/nodes/SoShapeHints.h>
#include <dlfcn.h>

int drawCount = 0;

#define REAL(function) reinterpret_cast<decltype(&function)>(dlsym(RTLD_NEXT, #function))

extern "C" __attribute__((visibility("default"))) void glDrawArrays(GLenum mode, GLint first,
                                                                    GLsizei count)
{
    static const auto real = REAL(glDrawArrays);
    ++drawCount;
    real(mode, first, count);
}

extern "C" __attribute__((visibility("default"))) void
glDrawElements(GLenum mode, GLsizei count, GLenum type, const void* indices)
{
    static const auto real = REAL(glDrawElements);
    ++drawCount;
    real(mode, count, type, indices);
}

std::ostream& operator<<(std::ostream& stream, const Difference& difference)
{
    return stream << difference.pixels << " of " << difference.covered << " pixels, "
                  << difference.strong << " by more than one level, at most by "
                  << difference.largest;
}

Bytes renderBytes(SoOffscreenRenderer& renderer, SoNode* scene)
{
    renderer.setBackgroundColor(SbColor(0, 0, 0));
    if (!renderer.render(scene))
        return {};
    const SbVec2s size = renderer.getViewportRegion().getViewportSizePixels();
    return Bytes(renderer.getBuffer(), renderer.getBuffer() + 3 * size[0] * size[1]);
}

Difference compare(const Bytes& a, const Bytes& b)
{
    Difference result;
    EXPECT_FALSE(a.empty());
    EXPECT_EQ(b.size(), a.size());
    for (std::size_t i = 0; i + 2 < std::min(a.size(), b.size()); i += 3) {
        int largest = 0, brightest = 0;
        for (std::size_t k = i; k < i + 3; ++k) {
            largest = std::max(largest, std::abs(int(a[k]) - int(b[k])));
            brightest = std::max({brightest, int(a[k]), int(b[k])});
        }
        result.pixels += largest > 0;
        result.strong += largest > 1;
        result.covered += brightest > 0;
        result.largest = std::max(result.largest, largest);
    }
    return result;
}

DrawingComparison::DrawingComparison()
{
    // Lists divide quadrilaterals otherwise than immediate mode: where boxes are coplanar,
    // Coin's traversal differs from itself once it has made some.
    SoSeparator::setNumRenderCaches(0);
    camera->nearDistance = 10;
    camera->farDistance = 100;
    scene->renderCaching = SoSeparator::OFF;
    scene->addChild(camera);
    auto* light = new SoDirectionalLight;
    light->direction = SbVec3f(-0.3f, -0.5f, -0.8f);
    scene->addChild(light);
    scene->addChild(settings);
    scene->addChild(place);
    auto* override = new SoShapeHints;
    override->setOverride(TRUE);
    plain->addChild(override);
}

DrawingComparison::~DrawingComparison() { SoSeparator::setNumRenderCaches(initialCaches); }

void DrawingComparison::compareDrawing(SoGroup* node)
{
    drawn = node;
    place->addChild(node);
    for (int i = 0; i < node->getNumChildren(); ++i)
        plain->addChild(node->getChild(i));
}

void DrawingComparison::setUnlit()
{
    auto* model = new SoLightModel;
    model->model = SoLightModel::BASE_COLOR;
    settings->addChild(model);
}

Bytes DrawingComparison::draw(SoNode* root)
{
    place->replaceChild(0, drawn);
    return renderBytes(*renderer, root);
}

Bytes DrawingComparison::traverse(SoNode* root)
{
    place->replaceChild(0, plain);
    drawCount = 0;
    Bytes picture = renderBytes(*renderer, root);
    EXPECT_EQ(drawCount, 0);
    return picture;
}

int DrawingComparison::countDraws()
{
    drawCount = 0;
    draw();
    return drawCount;
}

void DrawingComparison::expectSame(bool fromBuffers)
{
    drawCount = 0;
    const Bytes picture = draw();
    EXPECT_EQ(drawCount > 0, fromBuffers);
    const Difference difference = compare(picture, traverse());
    EXPECT_EQ(difference.pixels, 0) << difference;
    EXPECT_GT(difference.covered, 500);
}
