// SPDX-License-Identifier: GPL-3.0-or-later
#define GL_GLEXT_PROTOTYPES
#include "support/DrawingComparison.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <Inventor/nodes/SoDirectionalLight.h>
#include <Inventor/nodes/SoLightModel.h>
#include <Inventor/nodes/SoShapeHints.h>
#include <dlfcn.h>

int drawCount = 0;
int indexCount = 0;
int placeCount = 0;

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
    indexCount += count;
    real(mode, count, type, indices);
}

extern "C" __attribute__((visibility("default"))) void
glDrawArraysInstanced(GLenum mode, GLint first, GLsizei count, GLsizei places)
{
    static const auto real = REAL(glDrawArraysInstanced);
    ++drawCount;
    placeCount += places;
    real(mode, first, count, places);
}

extern "C" __attribute__((visibility("default"))) void
glDrawElementsInstanced(GLenum mode, GLsizei count, GLenum type, const void* indices,
                        GLsizei places)
{
    static const auto real = REAL(glDrawElementsInstanced);
    ++drawCount;
    indexCount += count;
    placeCount += places;
    real(mode, count, type, indices, places);
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

Picture DrawingComparison::draw(SoNode* root)
{
    place->replaceChild(0, drawn);
    return renderPicture(*renderer, root);
}

Picture DrawingComparison::traverse(SoNode* root)
{
    place->replaceChild(0, plain);
    drawCount = 0;
    Picture picture = renderPicture(*renderer, root);
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
    const Picture picture = draw();
    EXPECT_EQ(drawCount > 0, fromBuffers);
    const Difference difference = compare(picture, traverse());
    EXPECT_EQ(difference.pixels, 0) << difference;
    EXPECT_GT(difference.covered, 500);
}
