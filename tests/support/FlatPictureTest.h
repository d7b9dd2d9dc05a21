// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_FLATPICTURETEST_H
#define STRANDVIEW_TESTS_FLATPICTURETEST_H

#include <Inventor/nodes/SoLightModel.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoSeparator.h>

#include "CoinEnvironment.h"
#include "renderPicture.h"

/// A scene of 100 x 100 pixels, 50 to a unit, the origin in the middle, seen along -z;
/// unlit, so that colours are those of the materials: the first red, the second green.
class FlatPictureTest : public CoinTest
{
protected:
    NodeRef<SoSeparator> scene{new SoSeparator};
    SoOrthographicCamera* camera = new SoOrthographicCamera;
    SoMaterial* material = new SoMaterial;

    void SetUp() override
    {
        camera->position = SbVec3f(0, 0, 5);
        camera->nearDistance = 1;
        camera->farDistance = 10;
        camera->height = 2;
        scene->addChild(camera);
        auto* lightModel = new SoLightModel;
        lightModel->model = SoLightModel::BASE_COLOR;
        scene->addChild(lightModel);
        material->diffuseColor.set1Value(0, 1, 0, 0);
        material->diffuseColor.set1Value(1, 0, 1, 0);
        scene->addChild(material);
    }

    /// From a unit vector's side, that up in the picture.
    void lookFrom(const SbVec3f& side, const SbVec3f& up)
    {
        camera->position = side * 5;
        camera->pointAt(SbVec3f(0, 0, 0), up);
    }

    Picture render() { return renderPicture(scene, 100, 100); }
};

/// An area in pixels, off by less than one along each of its edges.
inline void expectArea(int actual, double width, double height)
{
    EXPECT_GE(actual, (width - 2) * (height - 2));
    EXPECT_LE(actual, (width + 2) * (height + 2));
}

#endif
