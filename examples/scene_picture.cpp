// SPDX-License-Identifier: GPL-3.0-or-later
// The three groups of a scene, their lights and the colouring by a scalar, each as a
// picture, without a display: scene_picture FOLDER
#include <cmath>
#include <iostream>
#include <string>

#include <Inventor/SoDB.h>
#include <Inventor/SoOffscreenRenderer.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoMaterialBinding.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoShaderParameter.h>
#include <Inventor/nodes/SoTranslation.h>
#include <OffscreenContext.h>
#include <SoGeneralScene.h>
#include <SoRod.h>
#include <algebra3d/rotations.h>
#include <global.h>

namespace {

// A twisted rod along x.
SoRod* makeRod()
{
    using Vector = algebra3d::Vector3<double>;
    using algebra3d::about;
    std::vector<Vector> points;
    std::vector<algebra3d::Quaternion<double>> rotations;
    for (int i = 0; i <= 40; ++i) {
        const double a = 0.1 * i;
        points.emplace_back(a, 0, 0);
        rotations.push_back(about(Vector(1, 0, 0), 2 * a) * about(Vector(0, 1, 0), M_PI / 2));
    }
    auto* rod = new SoRod(0.25, 1.2, 24, 4, true, true, true);
    rod->setData(points, rotations);
    return rod;
}

// A rod in blue and orange, `y` above the x axis.
SoSeparator* makeContent(float y)
{
    auto* content = new SoSeparator;
    auto* place = new SoTranslation;
    place->translation = SbVec3f(0, y, 0);
    content->addChild(place);
    auto* material = new SoMaterial;
    material->diffuseColor.set1Value(0, 0.34f, 0.61f, 0.82f); // tube
    material->diffuseColor.set1Value(1, 0.93f, 0.60f, 0.10f); // ribbon
    content->addChild(material);
    content->addChild(makeRod());
    return content;
}

// Shaded on top, solid in the middle, changing below, after so many strokes of the
// space bar: lit, unlit, unlit wireframe. Its wireframe is the solid content's too.
SoGeneralScene* makeGroups(int strokes)
{
    auto* scene = new SoGeneralScene;
    scene->addShaded(makeContent(1.4f));
    scene->addSolid(makeContent(0));
    scene->addChanging(makeContent(-1.4f));
    for (int i = 0; i < strokes; ++i)
        scene->toggleDrawStyle(false);
    return scene;
}

// One light, two lights, and one without a highlight.
SoGeneralScene* makeLights(int which)
{
    auto* scene = new SoGeneralScene;
    scene->addShaded(makeContent(0));
    SoShaderParameterArray3f* directions;
    SoShaderParameterArray1f* intensities;
    SoShaderParameterArray1f* shininess;
    scene->getLightingParameters(directions, intensities, shininess);
    if (which == 1) {
        directions->value.set1Value(1, 0, 1, -0.3f); // light 1 from below
        intensities->value.set1Value(1, 0.7f);
    }
    if (which == 2)
        shininess->value.set1Value(0, 0); // light 0 without a highlight
    return scene;
}

// The height of the ribbon's edge above the x axis, as colours of both meshes' rows.
SoGeneralScene* makeColours()
{
    SoRod* rod = makeRod();
    std::vector<double> values; // one for each of the rod's points
    for (double s : rod->getTubeMesh()->getParamValues())
        values.push_back(std::cos(2 * s));
    ColourMapper mapper(-1, 1);
    auto* material = new SoMaterial;
    SoGeneralScene::interpolateMaterial(&mapper, material, 0, rod->getTubeMesh()->getParamValues(),
                                        values, rod->getTubeMesh()->getInterpParamValues());
    SoGeneralScene::interpolateMaterial(&mapper, material, rod->getTubeMesh()->getHeight(),
                                        rod->getRibbonMesh()->getParamValues(), values,
                                        rod->getRibbonMesh()->getInterpParamValues());
    auto* content = new SoSeparator;
    content->addChild(material);
    auto* binding = new SoMaterialBinding;
    binding->value = SoMaterialBinding::PER_VERTEX; // one material per row
    content->addChild(binding);
    content->addChild(rod);
    auto* scene = new SoGeneralScene;
    scene->addShaded(content);
    return scene;
}

bool write(SoGeneralScene* scene, const std::string& file, short height)
{
    const short width = 500;
    const SbViewportRegion region(width, height);
    auto* root = new SoSeparator;
    root->ref();
    auto* camera = new SoOrthographicCamera;
    root->addChild(camera);
    root->addChild(scene);
    camera->viewAll(root, region);
    camera->height = 4.4f * float(height) / float(width); // the rod is 4 long
    SoOffscreenRenderer renderer(region);
    renderer.setBackgroundColor(SbColor(1, 1, 1));
    const bool written = renderer.render(root) && renderer.writeToFile(file.c_str(), "png");
    root->unref();
    if (!written)
        std::cerr << "scene_picture: " << file << " could not be written\n";
    return written;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "usage: scene_picture FOLDER\n";
        return 2;
    }
    SoDB::init();
    SoMeshShape::initClass();
    SoRod::initClass();
    SoGeneralScene::initClass();
    OffscreenContext::install();

    const std::string folder = argv[1];
    const bool written = write(makeGroups(0), folder + "/scene-groups.png", 480) &&
                         write(makeGroups(2), folder + "/scene-wireframe.png", 480) &&
                         write(makeLights(0), folder + "/scene-one-light.png", 180) &&
                         write(makeLights(1), folder + "/scene-two-lights.png", 180) &&
                         write(makeLights(2), folder + "/scene-no-highlight.png", 180) &&
                         write(makeColours(), folder + "/scene-colours.png", 180);
    return written ? 0 : 1;
}
