// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/SceneBuilder.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include <Inventor/SoDB.h>
#include <Inventor/SoInteraction.h>
#include <Inventor/nodes/SoSeparator.h>
#include <QString>

#include <global.h>

#include <strandview/formats/text/wording.h>
#include <strandview/model/Extent.h>

#include "scene/Colouring.h"
#include "scene/DataScene.h"
#include "scene/Ghost.h"
#include "scene/Progress.h"
#include "scene/SoLabels.h"
#include "scene/SoLegendCamera.h"
#include "scene/SoMeasured.h"
#include "scene/SoOverlay.h"
#include "scene/SoPlacedSolids.h"
#include "scene/SoScaleBar.h"
#include "scene/SoSeeThrough.h"
#include "scene/SoStretchChoice.h"
#include "scene/backbones.h"
#include "scene/builders/ArrowBuilder.h"
#include "scene/builders/BirodBuilder.h"
#include "scene/builders/DnaBuilder.h"
#include "scene/builders/FrameBuilder.h"
#include "scene/builders/LoneBaseBuilder.h"
#include "scene/builders/MarkerBuilder.h"
#include "scene/builders/RodBuilder.h"
#include "scene/ghostCurves.h"

namespace strandview {

namespace {

const char* const STOPPED = "building the scene was stopped";

using Builders = std::vector<std::unique_ptr<DatumBuilder>>;

template <typename... Kinds>
Builders makeAll(const FrameToShow& frame)
{
    Builders builders;
    (builders.push_back(std::make_unique<Kinds>(frame)), ...);
    return builders;
}

// In the order in which their kinds are drawn.
Builders makeBuilders(const FrameToShow& frame)
{
    return makeAll<RodBuilder, BirodBuilder, MarkerBuilder, ArrowBuilder, DnaBuilder,
                   LoneBaseBuilder, FrameBuilder>(frame);
}

// Of the curves that it is drawn as.
std::size_t countPoints(const Configuration& data, const ThingId& thing)
{
    const std::size_t i = thing.index;
    if (thing.kind == ThingKind::ROD)
        return i < data.rods.size() ? data.rods[i].points.size() : 0;
    if (thing.kind == ThingKind::BIROD)
        return i < data.birods.size() ? 3 * data.birods[i].points.size() : 0;
    return thing.kind == ThingKind::DNA && i < data.dnas.size() ? 2 * data.dnas[i].bases.size() : 0;
}

// Refuses what would take more memory than any machine of our users has: a vertex
// takes 64 bytes.
std::string checkSize(const Configuration& configuration, const Style& style)
{
    const double largest = 1e9, vertices = countVertices(configuration, style);
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

// "Building rod 2 of 7".
std::string whichOf(const char* what, std::size_t index, std::size_t count)
{
    return what + (" " + std::to_string(index + 1)) + " of " + std::to_string(count);
}

// Whether to go on after telling what is worked at.
bool tell(Progress& progress, const char* work, std::size_t index, std::size_t count)
{
    progress.show(whichOf(work, index, count));
    return !progress.isStopped();
}

// One of `computed` for each item, up to the first error.
template <typename Item, typename Computed, typename Compute>
std::string computeAll(const char* work, const std::vector<Item>& items,
                       std::vector<Computed>& computed, Compute compute, Progress& progress)
{
    std::string error;
    computed.reserve(items.size());
    for (std::size_t i = 0; i < items.size() && error.empty(); ++i) {
        progress.show(whichOf(work, i, items.size()));
        computed.push_back(compute(items[i], i, error));
        if (progress.isStopped())
            error = STOPPED;
    }
    return error;
}

SceneGeometry compute(const Configuration& configuration, const Extent& extent, const Style& style,
                      const Placement& placement, Progress& progress, std::string& error)
{
    SceneGeometry geometry;
    error = checkSize(configuration, style);
    if (!error.empty())
        return geometry;
    geometry.placement = placement;
    geometry.side = std::array{Side::X, Side::Y, Side::Z}[std::size_t(thinnestAxis(extent))];
    error = computeAll(
        "Building rod", configuration.rods, geometry.rods,
        [&](const Rod& rod, std::size_t i, std::string& fault) {
            return RodBuilder::compute(rod, styleOf(style, {ThingKind::ROD, i}), placement, fault);
        },
        progress);
    if (error.empty())
        error = computeAll(
            "Building birod", configuration.birods, geometry.birods,
            [&](const Birod& birod, std::size_t i, std::string& fault) {
                return BirodBuilder::compute(birod, i, style, placement, fault);
            },
            progress);
    const Molecules molecules(configuration);
    if (error.empty())
        error = computeAll(
            "Building DNA", configuration.dnas, geometry.dnas,
            [&](const Dna& dna, std::size_t i, std::string& /*fault*/) {
                return DnaBuilder::compute(dna, i, molecules, style, placement);
            },
            progress);
    if (error.empty()) {
        geometry.ghost =
            computeGhost(configuration, style, placement, progress, geometry.ghostFaults);
        error = progress.isStopped() ? STOPPED : "";
    }
    return geometry;
}

// Lets a scene show a frame, in two steps: what may fail or be stopped leaves the scene as it is.
class FrameChange
{
public:
    enum Nodes { OF_LAST_FRAME, NEW };

    FrameChange(DataScene& changedScene, const FrameToShow& frame, Nodes nodesToShowIt)
        : scene(changedScene),
          builders(makeBuilders(frame)),
          nodes(nodesToShowIt),
          added(builders.size()),
          ghost(std::move(frame.geometry.ghost))
    {}
    ~FrameChange()
    {
        for (const std::vector<ShownDatum>& data : added) {
            for (const ShownDatum& datum : data)
                datum.group->unref();
        }
    }
    FrameChange(const FrameChange&) = delete;
    FrameChange& operator=(const FrameChange&) = delete;

    // Makes the nodes that are not there yet; one line that says why not, or nothing.
    std::string prepare(Progress& progress)
    {
        SbBox3f box;
        for (std::size_t kind = 0; kind < builders.size(); ++kind) {
            DatumBuilder& builder = *builders[kind];
            for (std::size_t i = 0; i < builder.count(); ++i) {
                if (!tell(progress, builder.getWork(), i, builder.count()))
                    return STOPPED;
                const std::string error = builder.check(i);
                if (!error.empty())
                    return error;
                if (i >= countKept(kind)) {
                    added[kind].push_back(builder.build(i));
                    added[kind].back().group->ref();
                    box.extendBy(added[kind].back().box);
                } else {
                    box.extendBy(builder.getReach(i));
                }
            }
        }
        box.extendBy(boxOfGhost(ghost, scene.getLooks()));
        return checkReach(box);
    }

    // Only after prepare() went well.
    void commit()
    {
        for (std::size_t kind = 0; kind < builders.size(); ++kind) {
            const std::size_t kept = countKept(kind);
            scene.keepFirst(kind, kept);
            for (std::size_t i = 0; i < kept; ++i) {
                ShownDatum datum = scene.getShown(kind)[i];
                builders[kind]->update(i, datum);
                scene.change(kind, i, datum);
            }
            for (const ShownDatum& datum : added[kind])
                scene.add(kind, datum);
        }
        scene.showGhost(std::move(ghost));
    }

private:
    // The nodes that go on to show data.
    std::size_t countKept(std::size_t kind) const
    {
        return nodes == NEW ? 0 : std::min(scene.getShown(kind).size(), builders[kind]->count());
    }

    DataScene& scene;
    const Builders builders;
    const Nodes nodes;
    std::vector<std::vector<ShownDatum>> added; // to each kind, with a reference
    std::vector<SceneGeometry::GhostCurve> ghost;
};

std::string showFrame(DataScene& scene, const Configuration& data, const Style& style,
                      const Colouring* colouring, SceneGeometry& geometry, FrameChange::Nodes nodes,
                      Progress& progress)
{
    assert(geometry.rods.size() == data.rods.size());
    assert(geometry.birods.size() == data.birods.size());
    assert(geometry.dnas.size() == data.dnas.size());
    assert(!colouring ||
           (colouring->rods == data.rods.size() && colouring->birods == data.birods.size()));
    assert(nodes == FrameChange::NEW || !scene.isMirror());
    FrameChange change(
        scene, {data, style, geometry.placement, colouring, scene.areColoursShown(), geometry},
        nodes);
    std::string error = change.prepare(progress);
    if (!error.empty())
        return error;
    if (nodes == FrameChange::NEW) {
        scene.endMirror();
        scene.restyle(geometry.placement, style);
    }
    change.commit();
    return "";
}

// Of a scene whose data have it already.
void show(DataScene& scene, const Colouring* colouring)
{
    if (colouring)
        scene.setColouring(*colouring);
    else
        scene.dropColouring();
}

} // namespace

void initialiseScene()
{
    SoDB::init();
    SoInteraction::init();
    initStrandviewClasses();
    SoOverlay::initClass();
    SoLegendCamera::initClass();
    SoScaleBar::initClass();
    SoStretchChoice::initClass();
    SoPlacedSolids::initClass();
    SoSeeThrough::initClass();
    SoLabels::initClass();
    SoMeasured::initClass();
}

double countVertices(const Configuration& configuration, const Style& style)
{
    const double rows = double(countSegments(configuration, style.dna)) * style.subsegments + 1;
    double vertices = rows * (style.slices + 1);
    for (const auto& [thing, look] : style.things.ofThings) {
        const ThingStyle own = styleOf(style, thing);
        if (look.slices || look.subsegments)
            vertices +=
                double(countPoints(configuration, thing)) * own.subsegments * (own.slices + 1);
    }
    if (style.showGhost && configuration.reference) {
        DnaLook withStrands;
        withStrands.backbone = true;
        vertices += double(countSegments(*configuration.reference, withStrands)) *
                    style.subsegments * (style.slices + 1);
    }
    return vertices;
}

SceneGeometry computeGeometry(const Configuration& configuration, const Style& style,
                              Progress& progress, std::string& error)
{
    const Extent extent = measure(configuration);
    return compute(configuration, extent, style, choosePlacement(extent, style.radius), progress,
                   error);
}

SceneGeometry computeGeometry(const Configuration& next, const Style& style,
                              const Placement& placement, Progress& progress, std::string& error)
{
    return compute(next, measure(next), style, placement, progress, error);
}

Reach findReach(const Configuration& configuration, const Style& style, SceneGeometry& geometry,
                const Progress& progress)
{
    Reach reach;
    for (const auto& builder :
         makeBuilders({configuration, style, geometry.placement, nullptr, false, geometry})) {
        for (std::size_t i = 0; i < builder->count() && !progress.isStopped(); ++i) {
            const SbBox3f box = builder->getReach(i);
            const ThingLook look = style.things.of({builder->getKind(), i});
            reach.all.extendBy(box);
            if (!look.isHidden() && !look.isDeleted)
                reach.shown.extendBy(box);
        }
    }
    reach.all.extendBy(boxOfGhost(geometry.ghost, {}));
    reach.shown.extendBy(boxOfGhost(geometry.ghost, style.things));
    return reach;
}

DataScene* buildScene(const Configuration& configuration, const Style& style,
                      const Colouring* colouring, SceneGeometry geometry, Progress& progress,
                      std::string& error)
{
    auto* scene = new DataScene(geometry.placement, style);
    scene->ref();
    scene->setSide(geometry.side);
    error =
        showFrame(*scene, configuration, style, colouring, geometry, FrameChange::NEW, progress);
    if (!error.empty()) {
        scene->unref();
        return nullptr;
    }
    if (colouring)
        scene->setColouring(*colouring);
    scene->setBackground(style.background); // what is over the data comes last
    scene->unrefNoDelete();
    return scene;
}

DataScene* buildScene(const Configuration& configuration, const Style& style,
                      const Colouring* colouring, Progress& progress, std::string& error)
{
    SceneGeometry geometry = computeGeometry(configuration, style, progress, error);
    return error.empty()
               ? buildScene(configuration, style, colouring, std::move(geometry), progress, error)
               : nullptr;
}

std::string restyleScene(DataScene& scene, const Configuration& data, const Style& style,
                         const Colouring* colouring, SceneGeometry geometry, Progress& progress)
{
    std::string error =
        showFrame(scene, data, style, colouring, geometry, FrameChange::NEW, progress);
    if (!error.empty())
        return error;
    show(scene, colouring);
    return "";
}

RowsOfData rowsOf(const DataScene& scene)
{
    RowsOfData rows;
    for (const Thing& thing : scene.getThings()) {
        const ShownDatum& shown = scene.getShown(thing.kind)[thing.index];
        if (shown.kind == ThingKind::ROD)
            rows.rods.push_back(RodBuilder::rowsOf(shown));
        else if (shown.kind == ThingKind::BIROD)
            rows.birods.push_back(BirodBuilder::rowsOf(shown));
    }
    return rows;
}

void recolourScene(DataScene& scene, const Style& style, const Colouring* colouring,
                   SceneGeometry made)
{
    const Configuration& data = *scene.getData();
    assert(!colouring ||
           (colouring->rods == data.rods.size() && colouring->birods == data.birods.size()));
    const Builders builders =
        makeBuilders({data, style, scene.getPlacement(), colouring, scene.areColoursShown(), made});
    scene.restyle(scene.getPlacement(), style);
    for (std::size_t kind = 0; kind < builders.size(); ++kind) {
        for (std::size_t i = 0; i < scene.getShown(kind).size(); ++i) {
            ShownDatum datum = scene.getShown(kind)[i];
            builders[kind]->recolour(i, datum);
            scene.change(kind, i, datum);
        }
    }
    show(scene, colouring);
}

std::string updateScene(DataScene& scene, const Configuration& next, const Colouring* colouring,
                        SceneGeometry geometry, Progress& progress)
{
    std::string error = showFrame(scene, next, scene.getStyle(), colouring, geometry,
                                  FrameChange::OF_LAST_FRAME, progress);
    if (error.empty() && colouring)
        scene.updateLegend(*colouring);
    return error;
}

std::string updateScene(DataScene& scene, const Configuration& next, Progress& progress)
{
    std::string error;
    SceneGeometry geometry =
        computeGeometry(next, scene.getStyle(), scene.getPlacement(), progress, error);
    if (!error.empty())
        return error;
    std::optional<Colouring> colouring;
    if (scene.getColouring())
        colouring = followColouring(*scene.getColouring(), next, progress);
    return updateScene(scene, next, colouring ? &*colouring : nullptr, std::move(geometry),
                       progress);
}

} // namespace strandview
