// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/RowColours.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <utility>

#include <BiarcRibbonMesh.h>
#include <BiarcTubeMesh.h>

#include "request/conversions.h"
#include "scene/Colouring.h"
#include "scene/SceneGeometry.h"

namespace strandview {

namespace {

// Null of meshes without rows.
const ArcLengths& lengthsOf(const std::shared_ptr<const ArcLengths>& rows)
{
    static const ArcLengths none;
    return rows ? *rows : none;
}

// Of one mesh; a hidden ribbon need not be finite.
SbColor* colour(const Colouring& colouring, const std::vector<double>& places,
                const ArcLengths& rows, SbColor* to)
{
    if (rows.ofPoints.empty() || !std::isfinite(rows.ofPoints.back()))
        return std::fill_n(to, rows.ofRows.size(), toSbColor(colouring.none));
    colourRows(colouring, rows.ofPoints, places, rows.ofRows, to);
    return to + rows.ofRows.size();
}

} // namespace

CurveRows rowsOf(const BiarcTubeMesh& tube, const BiarcRibbonMesh& ribbon)
{
    return {tube.shareArcLengths(), ribbon.shareArcLengths()};
}

RowsOfData rowsOf(const SceneGeometry& geometry)
{
    RowsOfData rows;
    for (const SceneGeometry::Rod& rod : geometry.rods)
        rows.rods.push_back(rowsOf(*rod.meshes.tube, *rod.meshes.ribbon));
    for (const SceneGeometry::Birod& birod : geometry.birods) {
        const SoBirod::Meshes& meshes = birod.meshes;
        rows.birods.push_back({rowsOf(*meshes.avgTube, *meshes.avgRibbon),
                               rowsOf(*meshes.tube1, *meshes.ribbon1),
                               rowsOf(*meshes.tube2, *meshes.ribbon2)});
    }
    return rows;
}

RowColours makeRowColours(const Colouring& colouring,
                          const std::vector<const std::vector<double>*>& places,
                          std::vector<CurveRows> curves)
{
    assert(places.size() == curves.size());
    std::size_t count = 0;
    for (const CurveRows& curve : curves)
        count += lengthsOf(curve.tube).ofRows.size() + lengthsOf(curve.ribbon).ofRows.size();
    RowColours rows;
    rows.colours.reset(new SbColor[count]); // not zeros first
    rows.count = int(count);
    SbColor* to = rows.colours.get();
    for (std::size_t i = 0; i < curves.size(); ++i) {
        to = colour(colouring, *places[i], lengthsOf(curves[i].tube), to);
        to = colour(colouring, *places[i], lengthsOf(curves[i].ribbon), to);
    }
    rows.curves = std::move(curves);
    return rows;
}

void addRowColours(const Colouring& colouring, const RowsOfData& rows, SceneGeometry& geometry)
{
    geometry.rods.resize(rows.rods.size());
    for (std::size_t i = 0; i < rows.rods.size(); ++i) {
        if (!colouring.ofRod(i).empty())
            geometry.rods[i].colours =
                makeRowColours(colouring, {&colouring.ofRod(i)}, {rows.rods[i]});
    }
    geometry.birods.resize(rows.birods.size());
    for (std::size_t i = 0; i < rows.birods.size(); ++i) {
        std::vector<const std::vector<double>*> places;
        for (std::size_t curve = 0; curve < rows.birods[i].size(); ++curve) {
            if (!colouring.ofBirod(i, curve).empty())
                places.push_back(&colouring.ofBirod(i, curve));
        }
        if (places.size() == rows.birods[i].size()) // or it was stopped on the way
            geometry.birods[i].colours =
                makeRowColours(colouring, places, {rows.birods[i].begin(), rows.birods[i].end()});
    }
}

void addRowColours(const Colouring& colouring, SceneGeometry& geometry)
{
    addRowColours(colouring, rowsOf(geometry), geometry);
}

} // namespace strandview
