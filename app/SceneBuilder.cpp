// SPDX-License-Identifier: GPL-3.0-or-later
#include "SceneBuilder.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <Inventor/SoDB.h>
#include <Inventor/SoInteraction.h>
#include <Inventor/nodes/SoEnvironment.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoShapeHints.h>

#include <SoRod.h>

#include "Extent.h"
#include "Progress.h"

using algebra3d::Vector3;

namespace {

// Colours that are told apart with every kind of colour vision, the ribbon's left out
// (M. Okabe and K. Ito, Color universal design, 2008).
const std::array<Colour, 7> TUBE_COLOURS{{{0.34f, 0.61f, 0.82f},
                                          {0.00f, 0.62f, 0.45f},
                                          {0.80f, 0.47f, 0.65f},
                                          {0.84f, 0.37f, 0.00f},
                                          {0.00f, 0.45f, 0.70f},
                                          {0.94f, 0.89f, 0.26f},
                                          {0.55f, 0.55f, 0.55f}}};

SbColor toSbColor(const Colour& colour) { return SbColor(colour.red, colour.green, colour.blue); }

// Material 0 is the tube's, material 1 the ribbon's.
SoMaterial* makeMaterial(const Colour& tube, const Colour& ribbon)
{
    auto* material = new SoMaterial;
    material->diffuseColor.set1Value(0, toSbColor(tube));
    material->diffuseColor.set1Value(1, toSbColor(ribbon));
    material->ambientColor = SbColor(0.2f, 0.2f, 0.2f);
    material->specularColor = SbColor(0.12f, 0.12f, 0.12f);
    material->shininess = 0.4f;
    return material;
}

// Where data points lie in the scene: (point - origin) * scale.
struct Placement
{
    Vector3<double> origin;
    double scale = 1;
};

// The data's own coordinates, unless they do not suit the meshes. Single precision
// loses what is small and far from the origin, and the thinnest tube and the shortest
// arc that the formulas tell from a point are fixed lengths near 1e-4 and 1e-7.
Placement choosePlacement(const Configuration& configuration, const Style& style)
{
    const double farAway = 100;       // diagonals
    const double thin = 1e-3;         // a radius
    const double shortSegment = 1e-2; // on average
    const Extent extent = measure(configuration);
    Placement placement;
    if (extent.centre.getNorm() > farAway * extent.sides.getNorm())
        placement.origin = extent.centre;
    const double needed =
        std::max(thin / style.radius, shortSegment * extent.segments / extent.length);
    if (needed > 1)
        placement.scale = std::pow(10, std::ceil(std::log10(needed)));
    return placement;
}

SoRod* makeRod(const Rod& data, const Style& style, const Placement& placement)
{
    auto* rod =
        new SoRod(placement.scale * style.radius, placement.scale * style.ribbonWidth, style.slices,
                  style.subsegments, style.showTube, style.showRibbon, style.twoSidedRibbon);
    std::vector<Vector3<double>> points;
    points.reserve(data.points.size());
    for (const Vector3<double>& point : data.points)
        points.push_back((point - placement.origin) * placement.scale);
    rod->setData(points, data.rotations);
    return rod;
}

// Where neighbouring tangents are opposite or edge points coincide the formulas give
// numbers that are not finite, and with them the length of the whole curve.
std::string checkInterpolation(const SoRod& rod, const std::string& name, double ribbonWidth)
{
    if (!std::isfinite(rod.getTubeMesh()->getParamValues().back()))
        return name + ": found points that turn straight back, or end frames with d3 across them";
    if (!std::isfinite(rod.getRibbonMesh()->getParamValues().back())) {
        return name + ": found a ribbon of width " + std::to_string(ribbonWidth) +
               " whose edge shrinks to a point or turns back, expected another --ribbon-width";
    }
    return "";
}

} // namespace

void initialiseScene()
{
    SoDB::init();
    SoInteraction::init();
    SoMeshShape::initClass();
    SoRod::initClass();
}

SoSeparator* buildScene(const Configuration& configuration, const Style& style, Progress& progress,
                        std::string& error)
{
    auto* scene = new SoSeparator;
    scene->ref();
    // Ribbons are seen from both sides and the upper caps from behind: an order
    // without a shape type makes Coin light both sides of a face.
    auto* hints = new SoShapeHints;
    hints->vertexOrdering = SoShapeHints::COUNTERCLOCKWISE;
    scene->addChild(hints);
    auto* surroundings = new SoEnvironment;
    surroundings->ambientIntensity = 0.6f; // so that silhouettes are dark but not black
    scene->addChild(surroundings);

    const Placement placement = choosePlacement(configuration, style);
    for (std::size_t i = 0; i < configuration.rods.size(); ++i) {
        progress.show("Building rod " + std::to_string(i + 1) + " of " +
                      std::to_string(configuration.rods.size()));
        const Colour tube = style.tubeColour.value_or(TUBE_COLOURS[i % TUBE_COLOURS.size()]);
        auto* group = new SoSeparator;
        scene->addChild(group);
        group->addChild(makeMaterial(tube, style.ribbonColour));
        SoRod* rod = makeRod(configuration.rods[i], style, placement);
        group->addChild(rod);
        error = checkInterpolation(*rod, configuration.rods[i].origin, style.ribbonWidth);
        if (!error.empty()) {
            scene->unref();
            return nullptr;
        }
    }
    scene->unrefNoDelete();
    return scene;
}

SbVec3f getLightDirection() { return SbVec3f(0.15f, -0.2f, -1); }
