// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/SceneBuilder.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <Inventor/SoDB.h>
#include <Inventor/SoInteraction.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/actions/SoSearchAction.h>
#include <Inventor/nodes/SoCube.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoMaterialBinding.h>
#include <Inventor/nodes/SoScale.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoShapeHints.h>
#include <Inventor/nodes/SoTransform.h>
#include <QString>

#include <SoArrow.h>
#include <SoBirod.h>
#include <SoDNA.h>
#include <SoFrame.h>
#include <SoMarker.h>
#include <SoRod.h>
#include <global.h>

#include <strandview/formats/text/wording.h>
#include <strandview/model/Extent.h>

#include "scene/Colouring.h"
#include "scene/DataScene.h"
#include "scene/Legend.h"
#include "scene/Progress.h"
#include "scene/SoLegendCamera.h"
#include "scene/SoOverlay.h"
#include "scene/curveFaults.h"

namespace strandview {

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

const Colour GLYPH_COLOUR{0.80f, 0.20f, 0.15f};

// Dark enough to be seen on white where a highlight is added, and on black in the shade.
const Colour PAIR_COLOUR{0.30f, 0.42f, 0.58f};

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

// One material per row: those of the tube, then those of the ribbon.
SoGroup* makeColours(const SoRod& rod, const Colouring& colouring, std::size_t rodIndex)
{
    const std::vector<double>& places = colouring.places[rodIndex];
    auto* material = new SoMaterial;
    const BiarcTubeMesh& tube = *rod.getTubeMesh();
    const BiarcRibbonMesh& ribbon = *rod.getRibbonMesh();
    colourRows(colouring.ramp, tube.getParamValues(), places, tube.getInterpParamValues(), 0,
               material);
    if (isFinite(ribbon)) // a hidden one need not be
        colourRows(colouring.ramp, ribbon.getParamValues(), places, ribbon.getInterpParamValues(),
                   tube.getHeight(), material);
    auto* binding = new SoMaterialBinding;
    binding->value = SoMaterialBinding::PER_VERTEX;
    auto* group = new SoGroup;
    group->addChild(material);
    group->addChild(binding);
    return group;
}

// The data's own coordinates, unless they do not suit the meshes. Single precision
// loses what is small and far from the origin, and the thinnest tube and the shortest
// arc that the formulas tell from a point are fixed lengths near 1e-4 and 1e-7.
Placement choosePlacement(const Extent& extent, const Style& style)
{
    const double farAway = 100;       // diagonals
    const double thin = 1e-3;         // a radius
    const double shortSegment = 1e-2; // on average
    Placement placement;
    if (extent.centre.getNorm() > farAway * extent.sides.getNorm())
        placement.origin = extent.centre;
    if (extent.segments == 0)
        return placement;
    const double needed =
        std::max(thin / style.radius, shortSegment * extent.segments / extent.length);
    if (needed > 1)
        placement.scale = std::pow(10, std::ceil(std::log10(needed)));
    return placement;
}

// Refuses what would take more memory than any machine of our users has: a vertex
// takes 64 bytes.
std::string checkSize(const Extent& extent, const Style& style)
{
    const double largest = 1e9;
    const double rows = double(extent.segments) * style.subsegments + 1;
    const double vertices = rows * (style.slices + 1);
    if (vertices <= largest)
        return "";
    return "found " + formatted(vertices) +
           " vertices to draw, expected at most 1e+09: fewer --subsegments or --slices";
}

// Refuses what no camera can be placed before: squares of distances have to be finite in
// single precision.
std::string checkReach(const SbBox3f& box)
{
    const float largest = 1e19f;
    const float across = std::max({box.getSize()[0], box.getSize()[1], box.getSize()[2]});
    if (across <= largest)
        return "";
    return "found a scene that is " + QString::number(double(across), 'g', 3).toStdString() +
           " across, expected at most 1e+19: a smaller --radius, --ribbon-width or unit";
}

SbVec3f toSbVec3f(const Vector3<double>& v) { return SbVec3f(float(v.x), float(v.y), float(v.z)); }

SbRotation toSbRotation(const algebra3d::Quaternion<double>& q)
{
    return SbRotation(float(q[0]), float(q[1]), float(q[2]), float(q[3]));
}

Vector3<double> toVector(const Colour& colour)
{
    return Vector3<double>(double(colour.red), double(colour.green), double(colour.blue));
}

// Makes of the box that all pairs share a plate: thinner than the boxes of the bases, with
// which it would share faces otherwise, and as much wider that its rim is seen around them.
void makePlate(SoDNA& dna)
{
    const float rim = 0.8f, thickness = 0.5f; // in ångström
    SoSearchAction search;
    search.setType(SoCube::getClassTypeId());
    search.setSearchingAll(TRUE);
    search.apply(dna.getChild(0));
    auto* box = static_cast<SoCube*>(search.getPath()->getTail());
    box->width = box->width.getValue() + 2 * rim;
    box->height = box->height.getValue() + 2 * rim;
    box->depth = thickness;
}

std::vector<Vector3<double>> toScene(const std::vector<Vector3<double>>& points,
                                     const Placement& placement)
{
    std::vector<Vector3<double>> placed;
    placed.reserve(points.size());
    for (const Vector3<double>& point : points)
        placed.push_back(placement.toScene(point));
    return placed;
}

// "Building rod 2 of 7".
std::string whichOf(const char* what, std::size_t index, std::size_t count)
{
    return what + (" " + std::to_string(index + 1)) + " of " + std::to_string(count);
}

const char* const STOPPED = "building the scene was stopped";

// What is wrong with a tube, or with its ribbon if that is shown, or nothing.
std::string findFaultOf(BiarcTubeMesh& tube, const BiarcRibbonMesh* shownRibbon, const Style& style,
                        const NamedCurve& curve)
{
    const std::string fault = findFault(tube, style.subsegments, curve);
    return fault.empty() && shownRibbon ? findFault(*shownRibbon, style.ribbonWidth, curve) : fault;
}

// Made frames are shown only if somebody asks for a ribbon.
bool showsRibbon(const Style& style, const Rod& rod)
{
    return style.showRibbon && (rod.hasFrames || style.showMadeFrames);
}

// Builds one scene. An add...() that can fail returns one line that says why, or nothing.
class Builder
{
public:
    Builder(const Configuration& shownData, SceneGeometry dataGeometry, const Style& shownStyle,
            const Colouring* rodColouring, Progress& shownProgress)
        : data(shownData),
          style(shownStyle),
          colouring(rodColouring),
          progress(shownProgress),
          placement(dataGeometry.placement),
          geometry(std::move(dataGeometry)),
          scene(new DataScene(placement))
    {
        scene->ref();
        scene->setSide(geometry.side);
    }
    ~Builder()
    {
        if (taken)
            scene->unrefNoDelete();
        else
            scene->unref();
    }
    Builder(const Builder&) = delete;
    Builder& operator=(const Builder&) = delete;

    std::string build()
    {
        for (const auto add : {&Builder::addRods, &Builder::addBirods, &Builder::addMarkers,
                               &Builder::addArrows, &Builder::addDnas, &Builder::addFrames}) {
            const std::string error = (this->*add)();
            if (!error.empty())
                return error;
        }
        const std::string error = checkReach(scene->getBox());
        if (!error.empty())
            return error;
        if (colouring)
            scene->addLegend(makeLegend(*colouring, style.background, style.legendTextSize));
        return "";
    }

    /// The scene, which outlives the builder then.
    DataScene* take()
    {
        taken = true;
        return scene;
    }

private:
    std::string addRods()
    {
        for (std::size_t i = 0; i < data.rods.size(); ++i) {
            if (!tell("Showing rod", i, data.rods.size()))
                return STOPPED;
            const Rod& rod = data.rods[i];
            auto* node = new SoRod(scaled(style.radius), scaled(style.ribbonWidth), style.slices,
                                   style.subsegments, style.showTube, showsRibbon(style, rod),
                                   style.twoSidedRibbon);
            node->setData(std::move(geometry.rods[i].points), rod.rotations,
                          std::move(geometry.rods[i].meshes));
            auto* group = new SoSeparator;
            SoMaterial* material = makeMaterial(style, i);
            if (colouring && !colouring->places[i].empty())
                group->addChild(scene->addColours(material, makeColours(*node, *colouring, i)));
            else
                group->addChild(material);
            add(group, node, rod.origin);
        }
        return "";
    }

    // The strands are drawn through their own points, the average thinner between them.
    std::string addBirods()
    {
        for (std::size_t i = 0; i < data.birods.size(); ++i) {
            if (!tell("Building birod", i, data.birods.size()))
                return STOPPED;
            const Birod& birod = data.birods[i];
            auto* node = new SoBirod(scaled(0.6 * style.radius), scaled(style.radius),
                                     scaled(style.ribbonWidth), scaled(style.ribbonWidth), 0, 0,
                                     style.slices, style.subsegments, style.showTube,
                                     style.showTube, style.showRibbon, false, style.twoSidedRibbon);
            node->setData(toScene(birod.points), birod.rotations, toScene(birod.points1),
                          birod.rotations1, toScene(birod.points2), birod.rotations2);
            auto* group = new SoSeparator;
            addBirodColours(group, *node, i);
            add(group, node, birod.origin);
            for (BiarcTubeMesh* tube :
                 {node->getAvgTubeMesh(), node->getTube1Mesh(), node->getTube2Mesh()})
                tube->forgetCurve();
            for (BiarcRibbonMesh* ribbon :
                 {node->getAvgRibbonMesh(), node->getRibbon1Mesh(), node->getRibbon2Mesh()})
                ribbon->forgetCurves();
            const std::string error = findFault(birod, *node);
            if (!error.empty())
                return error;
        }
        return "";
    }

    // What is wrong with one of a birod's three curves.
    std::string findFault(const Birod& birod, const SoBirod& node) const
    {
        const auto named = [&birod](const std::string& member) {
            return [&birod, member](std::size_t i) { return nameOfPoint(birod, member, i); };
        };
        const auto ribbon = [this](const BiarcRibbonMesh* mesh) {
            return style.showRibbon ? mesh : nullptr;
        };
        std::string fault = findFaultOf(*node.getAvgTubeMesh(), ribbon(node.getAvgRibbonMesh()),
                                        style, {birod.points, &birod.rotations, named("average")});
        if (fault.empty())
            fault = findFaultOf(*node.getTube1Mesh(), ribbon(node.getRibbon1Mesh()), style,
                                {birod.points1, nullptr, named("strand1")});
        if (fault.empty())
            fault = findFaultOf(*node.getTube2Mesh(), ribbon(node.getRibbon2Mesh()), style,
                                {birod.points2, nullptr, named("strand2")});
        return fault;
    }

    // A DNA is built in ångström, the unit of its atoms, and scaled to the scene.
    std::string addDnas()
    {
        for (std::size_t i = 0; i < data.dnas.size(); ++i) {
            if (!tell("Building DNA", i, data.dnas.size()))
                return STOPPED;
            const Dna& dna = data.dnas[i];
            auto* node = new SoDNA;
            node->drawAtomsRound(true);
            node->showAtoms(style.dna.atoms);
            node->showBaseBoxes(style.dna.baseBoxes);
            node->showBasePairBoxes(style.dna.pairBoxes);
            node->setData(dna.bases, toAngstrom(dna.pairPoints), dna.pairRotations,
                          toAngstrom(dna.points1), dna.rotations1, toAngstrom(dna.points2),
                          dna.rotations2);
            node->generate();
            node->setBasepairColour(toVector(PAIR_COLOUR));
            if (style.dna.baseBoxes && style.dna.pairBoxes)
                makePlate(*node);
            auto* group = new SoSeparator;
            auto* scale = new SoScale;
            const float factor = float(scaled(style.dna.angstrom));
            scale->scaleFactor = SbVec3f(factor, factor, factor);
            group->addChild(scale);
            group->addChild(node);
            scene->addNamed(group, node, dna.origin);
            scene->extendBox(boxOfDna(dna));
        }
        return "";
    }

    std::string addMarkers()
    {
        auto* scale = new SoScale; // one for all
        scale->ref();
        std::string error;
        for (const Marker& marker : data.markers) {
            if (!tell("Building marker", std::size_t(&marker - data.markers.data()),
                      data.markers.size())) {
                error = STOPPED;
                break;
            }
            Colour colour = GLYPH_COLOUR;
            error = readColour(marker.colour, marker.origin, colour);
            if (!error.empty())
                break;
            auto* node = new SoMarker(marker.id, toVector(colour),
                                      scaled(marker.size.value_or(style.glyphSize)),
                                      marker.transparency, SoMarker::Shape(marker.shape));
            // Shapes that are closed: of a transparent one the far side does not show.
            auto* hints = new SoShapeHints;
            hints->vertexOrdering = SoShapeHints::COUNTERCLOCKWISE;
            hints->shapeType = SoShapeHints::SOLID;
            auto* group = new SoSeparator;
            group->addChild(hints);
            group->addChild(SoMarker::wrap(node, scale, placement.toScene(marker.point)));
            show(group, node, marker.origin + ": id " + std::to_string(marker.id));
        }
        scale->unref();
        return error;
    }

    std::string addArrows()
    {
        for (const Arrow& arrow : data.arrows) {
            if (!tell("Building arrow", std::size_t(&arrow - data.arrows.data()),
                      data.arrows.size()))
                return STOPPED;
            Colour colour = GLYPH_COLOUR;
            const std::string error = readColour(arrow.colour, arrow.origin, colour);
            if (!error.empty())
                return error;
            const Vector3<double> from = placement.toScene(arrow.from);
            const Vector3<double> to = placement.toScene(arrow.to);
            // A head of the usual form, but of at most half the arrow.
            const double radius = scaled(arrow.radius.value_or(style.glyphSize / 8));
            const double headLength = std::min(5 * radius, 0.5 * (to - from).getNorm());
            auto* group = new SoSeparator;
            group->addChild(createMaterial(toVector(colour), toVector(colour), {1, 1, 1}));
            add(group, new SoArrow(from, to, radius, 2.2 * radius, headLength), arrow.origin);
        }
        return "";
    }

    std::string addFrames()
    {
        for (const Frame& frame : data.frames) {
            if (!tell("Building frame", std::size_t(&frame - data.frames.data()),
                      data.frames.size()))
                return STOPPED;
            auto* group = new SoSeparator;
            auto* transform = new SoTransform;
            const float size = float(scaled(frame.size.value_or(2 * style.glyphSize)));
            transform->translation = toSbVec3f(placement.toScene(frame.point));
            transform->rotation = toSbRotation(frame.rotation);
            transform->scaleFactor = SbVec3f(size, size, size);
            group->addChild(transform);
            add(group, new SoFrame({1, 0, 0}, {0, 0.8, 0}, {0, 0, 1}), frame.origin);
        }
        return "";
    }

    // Says what is being built, in a file's order; whether to go on.
    bool tell(const char* what, std::size_t index, std::size_t count)
    {
        progress.show(whichOf(what, index, count));
        return !progress.isStopped();
    }

    void add(SoSeparator* group, SoNode* node, const std::string& name)
    {
        group->addChild(node);
        show(group, node, name);
    }

    void show(SoSeparator* group, SoNode* node, const std::string& name)
    {
        scene->addNamed(group, node, name);
        SoGetBoundingBoxAction bounds(SbViewportRegion(1, 1));
        bounds.apply(group);
        scene->extendBox(bounds.getBoundingBox());
    }

    // Around all that its frames can place: no atom of a base is farther from its frame.
    SbBox3f boxOfDna(const Dna& dna) const
    {
        const double reach = scaled(9 * style.dna.angstrom);
        const Vector3<double> margin(reach, reach, reach);
        SbBox3f box;
        for (const auto* points : {&dna.pairPoints, &dna.points1, &dna.points2}) {
            for (const Vector3<double>& point : *points) {
                box.extendBy(toSbVec3f(placement.toScene(point) - margin));
                box.extendBy(toSbVec3f(placement.toScene(point) + margin));
            }
        }
        return box;
    }

    // A colour for each of the three tubes, and one for all ribbons. A birod finds the
    // material of a mesh behind those of the rows of all meshes before.
    void addBirodColours(SoSeparator* group, const SoBirod& birod, std::size_t index) const
    {
        const std::size_t next = data.rods.size() + 3 * index;
        std::vector<SbColor> colours;
        const auto append = [&colours](const Mesh& mesh, const Colour& colour) {
            colours.insert(colours.end(), std::size_t(mesh.getHeight()), toSbColor(colour));
        };
        const auto appendBoth = [&](const Mesh& tube, const Mesh& ribbon, std::size_t i) {
            append(tube, style.tubeColour.value_or(TUBE_COLOURS[i % TUBE_COLOURS.size()]));
            append(ribbon, style.ribbonColour);
        };
        appendBoth(*birod.getAvgTubeMesh(), *birod.getAvgRibbonMesh(), next + 2);
        appendBoth(*birod.getTube1Mesh(), *birod.getRibbon1Mesh(), next);
        appendBoth(*birod.getTube2Mesh(), *birod.getRibbon2Mesh(), next + 1);
        auto* material = new SoMaterial;
        material->diffuseColor.setValues(0, int(colours.size()), colours.data());
        group->addChild(material);
        auto* binding = new SoMaterialBinding;
        binding->value = SoMaterialBinding::PER_PART;
        group->addChild(binding);
    }

    static std::string readColour(const std::optional<std::string>& text, const std::string& origin,
                                  Colour& colour)
    {
        if (!text)
            return "";
        const std::optional<Colour> parsed = parseColour(*text);
        if (!parsed) {
            return origin + ".colour: found " + inQuotes(*text) +
                   ", expected #rrggbb or an SVG colour name";
        }
        colour = *parsed;
        return "";
    }

    double scaled(double length) const { return placement.scale * length; }

    std::vector<Vector3<double>> toScene(const std::vector<Vector3<double>>& points) const
    {
        return strandview::toScene(points, placement);
    }

    std::vector<Vector3<double>> toAngstrom(const std::vector<Vector3<double>>& points) const
    {
        std::vector<Vector3<double>> placed;
        placed.reserve(points.size());
        for (const Vector3<double>& point : points)
            placed.push_back((point - placement.origin) * (1 / style.dna.angstrom));
        return placed;
    }

    const Configuration& data;
    const Style& style;
    const Colouring* colouring;
    Progress& progress;
    const Placement placement;
    SceneGeometry geometry; // goes over into the nodes
    DataScene* const scene;
    bool taken = false;
};

} // namespace

void initialiseScene()
{
    SoDB::init();
    SoInteraction::init();
    initStrandviewClasses();
    SoOverlay::initClass();
    SoLegendCamera::initClass();
}

SceneGeometry computeGeometry(const Configuration& configuration, const Style& style,
                              Progress& progress, std::string& error)
{
    SceneGeometry geometry;
    const Extent extent = measure(configuration);
    error = checkSize(extent, style);
    if (!error.empty())
        return geometry;
    geometry.placement = choosePlacement(extent, style);
    geometry.side = std::array{Side::X, Side::Y, Side::Z}[std::size_t(thinnestAxis(extent))];
    const double scale = geometry.placement.scale;
    const std::vector<Rod>& rods = configuration.rods;
    geometry.rods.reserve(rods.size());
    for (std::size_t i = 0; i < rods.size() && error.empty(); ++i) {
        progress.show(whichOf("Building rod", i, rods.size()));
        SceneGeometry::Rod rod;
        rod.points = toScene(rods[i].points, geometry.placement);
        rod.meshes = SoRod::makeMeshes(rod.points, rods[i].rotations, scale * style.radius,
                                       scale * style.ribbonWidth, style.slices, style.subsegments,
                                       style.twoSidedRibbon);
        const auto named = [&source = rods[i]](std::size_t point) {
            return nameOfPoint(source, point);
        };
        const BiarcRibbonMesh* const shownRibbon =
            showsRibbon(style, rods[i]) ? rod.meshes.ribbon.get() : nullptr;
        error = progress.isStopped() ? STOPPED
                                     : findFaultOf(*rod.meshes.tube, shownRibbon, style,
                                                   {rods[i].points, &rods[i].rotations, named});
        geometry.rods.push_back(std::move(rod));
    }
    return geometry;
}

DataScene* buildScene(const Configuration& configuration, const Style& style,
                      const Colouring* colouring, SceneGeometry geometry, Progress& progress,
                      std::string& error)
{
    Builder builder(configuration, std::move(geometry), style, colouring, progress);
    error = builder.build();
    return error.empty() ? builder.take() : nullptr;
}

DataScene* buildScene(const Configuration& configuration, const Style& style,
                      const Colouring* colouring, Progress& progress, std::string& error)
{
    SceneGeometry geometry = computeGeometry(configuration, style, progress, error);
    return error.empty()
               ? buildScene(configuration, style, colouring, std::move(geometry), progress, error)
               : nullptr;
}

} // namespace strandview
