// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/ghostCurves.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <BiarcTubeMesh.h>

#include <strandview/analysis/parallelTransport.h>
#include <strandview/analysis/superpose.h>

#include "request/thingTexts.h"
#include "scene/Progress.h"
#include "scene/backbones.h"
#include "scene/builders/RodBuilder.h"
#include "scene/curveFaults.h"

namespace strandview {

namespace {

using Points = std::vector<algebra3d::Vector3<double>>;
using Rotations = std::vector<algebra3d::Quaternion<double>>;

// Of the radius of what is compared: less than the smallest of a tube of six slices, cos(pi / 6),
// so that no corner of the ghost is outside of a tube that has its corners elsewhere.
const double THINNER = 0.8;

// A curve of the reference, in its own coordinates.
struct Curve
{
    ThingId like;
    Rod rod;                 // its points, rotations, and whether it is closed
    double radius;           // in the data's unit
    bool areEndsOfItsFrames; // or of its points alone
};

Rod lineThrough(Points points, Rotations rotations)
{
    Rod rod;
    rod.points = std::move(points);
    rod.rotations = std::move(rotations);
    return rod;
}

void addRods(const Configuration& reference, const Style& style, std::vector<Curve>& curves)
{
    for (std::size_t i = 0; i < reference.rods.size(); ++i) {
        const Rod& rod = reference.rods[i];
        const ThingId like{ThingKind::ROD, i};
        Curve curve{like, lineThrough(rod.points, rod.rotations),
                    RodBuilder::radiusOf(rod, styleOf(style, like)), true};
        curve.rod.isClosed = rod.isClosed;
        curves.push_back(std::move(curve));
    }
}

void addBirods(const Configuration& reference, const Style& style, std::vector<Curve>& curves)
{
    for (std::size_t i = 0; i < reference.birods.size(); ++i) {
        const Birod& birod = reference.birods[i];
        const auto add = [&](ThingPart part, const Points& points, const Rotations& rotations) {
            const ThingId like{ThingKind::BIROD, i, part};
            curves.push_back({like, lineThrough(points, rotations), styleOf(style, like).radius,
                              part == ThingPart::AVERAGE});
        };
        add(ThingPart::AVERAGE, birod.points, birod.rotations);
        add(ThingPart::STRAND_1, birod.points1, birod.rotations1);
        add(ThingPart::STRAND_2, birod.points2, birod.rotations2);
    }
}

void addStrands(const Configuration& reference, const Style& style, std::vector<Curve>& curves)
{
    const Molecules molecules(reference);
    for (std::size_t i = 0; i < reference.dnas.size(); ++i) {
        const Dna& dna = reference.dnas[i];
        if (molecules.hasBackbone(dna.molecule))
            continue;
        for (const auto& [strand, part] : {std::pair(Strand::FIRST, ThingPart::STRAND_1),
                                           {Strand::SECOND, ThingPart::STRAND_2}}) {
            const ThingId like{ThingKind::DNA, i, part};
            Points points = withoutCoincident(idealBackbone(dna, strand, style.dna.angstrom));
            if (points.size() < 2)
                continue;
            Rotations rotations = parallelTransport(points);
            curves.push_back({like, lineThrough(std::move(points), std::move(rotations)),
                              styleOf(style, like).backboneRadius, true});
        }
    }
}

// Nothing and a line if no tube can be drawn through its points.
std::optional<SceneGeometry::GhostCurve> compute(Curve curve, const Style& style,
                                                 const Placement& placement, std::string& fault)
{
    const ThingStyle own = styleOf(style, {curve.like.kind, curve.like.index});
    const double radius = placement.scale * THINNER * curve.radius;
    const double hiddenWidth = radius / 2; // of a ribbon within the tube
    SceneGeometry::GhostCurve computed;
    computed.like = curve.like;
    computed.slices = own.slices;
    computed.subsegments = own.subsegments;
    computed.points = placement.toScene(curve.rod.points);
    computed.rotations = std::move(curve.rod.rotations);
    computed.meshes = SoRod::makeMeshes(computed.points, computed.rotations, radius, hiddenWidth,
                                        own.slices, own.subsegments, false, curve.rod.isClosed);
    if (!computed.meshes.tube) {
        fault = nameOf(curve.like) + ": found no curve through its points, expected a smooth one";
        return {};
    }
    if (!curve.areEndsOfItsFrames) {
        computed.meshes.tube = std::make_unique<BiarcTubeMesh>(computed.points, radius, own.slices,
                                                               own.subsegments, false, false);
        computed.meshes.tube->forgetCurve();
    }
    const NamedCurve named{
        computed.points, curve.areEndsOfItsFrames ? &computed.rotations : nullptr,
        [&curve](std::size_t point) {
            return nameOf(curve.like) + ", points[" + std::to_string(point) + "]";
        }};
    fault = findFault(*computed.meshes.tube, own.subsegments, named);
    if (!fault.empty())
        return {};
    return computed;
}

} // namespace

std::vector<SceneGeometry::GhostCurve> computeGhost(const Configuration& data, const Style& style,
                                                    const Placement& placement,
                                                    const Progress& progress,
                                                    std::vector<std::string>& faults)
{
    if (!style.showGhost || !data.reference)
        return {};
    const std::optional<FittedFrame> there = findSuperposition(data, *data.reference);
    if (!there)
        return {};
    std::vector<Curve> curves;
    addRods(*data.reference, style, curves);
    addBirods(*data.reference, style, curves);
    addStrands(*data.reference, style, curves);
    const FittedFrame back = inverse(*there);
    std::vector<SceneGeometry::GhostCurve> ghost;
    for (Curve& curve : curves) {
        if (progress.isStopped())
            break;
        Configuration alone{{std::move(curve.rod)}};
        move(alone, back);
        curve.rod = std::move(alone.rods.front());
        std::string fault;
        if (auto computed = compute(std::move(curve), style, placement, fault))
            ghost.push_back(std::move(*computed));
        else
            faults.push_back("--ghost leaves out " + fault + " (of the reference)");
    }
    return ghost;
}

} // namespace strandview
