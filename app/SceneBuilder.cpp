// SPDX-License-Identifier: GPL-3.0-or-later
#include "SceneBuilder.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <Inventor/SoDB.h>
#include <Inventor/SoInteraction.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoMaterialBinding.h>
#include <Inventor/nodes/SoSeparator.h>

#include <SoRod.h>

#include "Colouring.h"
#include "DataScene.h"
#include "Extent.h"
#include "Legend.h"
#include "Progress.h"
#include "SoOverlay.h"
#include "readers/wording.h"

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
SoMaterial* makeMaterial(const Style& style, std::size_t rodIndex)
{
    auto* material = new SoMaterial;
    material->diffuseColor.set1Value(
        0, toSbColor(style.tubeColour.value_or(TUBE_COLOURS[rodIndex % TUBE_COLOURS.size()])));
    material->diffuseColor.set1Value(1, toSbColor(style.ribbonColour));
    return material;
}

// The colours of one mesh's rows, from entry `offset` on: the scalar along the arc
// length, smooth through the points' values, straight where they are two.
template <typename MeshType>
void colourRows(const Colouring& colouring, const std::vector<double>& values, const MeshType& mesh,
                int offset, SoMaterial* material)
{
    ColourMapper mapper = colouring.mapper;
    const std::vector<double>& at = mesh.getInterpParamValues();
    if (values.size() >= 3) {
        SoGeneralScene::interpolateMaterial(&mapper, material, offset, mesh.getParamValues(),
                                            values, at);
        return;
    }
    std::vector<double> rows;
    for (double s : at)
        rows.push_back(values[0] + (values[1] - values[0]) * s / at.back());
    SoGeneralScene::generateMaterial(&mapper, material, offset, rows);
}

// One material per row: those of the tube, then those of the ribbon.
void addColours(SoSeparator* group, const SoRod& rod, const Colouring& colouring,
                std::size_t rodIndex)
{
    const std::vector<double>& values = colouring.values[rodIndex];
    auto* material = new SoMaterial;
    colourRows(colouring, values, *rod.getTubeMesh(), 0, material);
    colourRows(colouring, values, *rod.getRibbonMesh(), rod.getTubeMesh()->getHeight(), material);
    group->addChild(material);
    auto* binding = new SoMaterialBinding;
    binding->value = SoMaterialBinding::PER_VERTEX;
    group->addChild(binding);
}

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
        points.push_back(placement.toScene(point));
    rod->setData(points, data.rotations);
    return rod;
}

// Refuses what would take more memory than any machine of our users has: a vertex
// takes 64 bytes.
std::string checkSize(const Configuration& configuration, const Style& style)
{
    const double largest = 1e9;
    const double rows = double(measure(configuration).segments) * style.subsegments + 1;
    const double vertices = rows * (style.slices + 1);
    if (vertices <= largest)
        return "";
    return "found " + formatted(vertices) +
           " vertices to draw, expected at most 1e+09: fewer --subsegments or --slices";
}

// Where neighbouring tangents are opposite or edge points coincide the formulas give
// numbers that are not finite, and with them the length of the whole curve.
std::string checkInterpolation(const SoRod& rod, const std::string& name, double ribbonWidth)
{
    TubeMesh& tube = *rod.getTubeMesh();
    // A frame that is not finite stays so from ring to ring.
    const double lastNormal = tube.getNormals()[tube.getHeight() - 1][0].getNorm();
    if (!std::isfinite(rod.getTubeMesh()->getParamValues().back() + lastNormal))
        return name + ": found points that turn straight back, or end frames with d3 across them";
    if (!std::isfinite(rod.getRibbonMesh()->getParamValues().back())) {
        return name + ": found a ribbon of width " + formatted(ribbonWidth) +
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
    SoGeneralScene::initClass();
    SoOverlay::initClass();
}

DataScene* buildScene(const Configuration& configuration, const Style& style,
                      const Colouring* colouring, Progress& progress, std::string& error)
{
    error = checkSize(configuration, style);
    if (!error.empty())
        return nullptr;
    const Placement placement = choosePlacement(configuration, style);
    auto* scene = new DataScene(placement);
    scene->ref();
    for (std::size_t i = 0; i < configuration.rods.size(); ++i) {
        progress.show("Building rod " + std::to_string(i + 1) + " of " +
                      std::to_string(configuration.rods.size()));
        const Rod& data = configuration.rods[i];
        SoRod* rod = makeRod(data, style, placement);
        auto* group = new SoSeparator;
        if (colouring)
            addColours(group, *rod, *colouring, i);
        else
            group->addChild(makeMaterial(style, i));
        group->addChild(rod);
        scene->addRod(group, rod, data.origin);

        error = checkInterpolation(*rod, data.origin, style.ribbonWidth);
        if (!error.empty()) {
            scene->unref();
            return nullptr;
        }
    }
    if (colouring)
        scene->addLegend(makeLegend(colouring->name, colouring->mapper, style.background));
    scene->unrefNoDelete();
    return scene;
}
