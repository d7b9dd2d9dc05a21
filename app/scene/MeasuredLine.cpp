// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/MeasuredLine.h"

#include <algorithm>

#include <Inventor/nodes/SoBaseColor.h>
#include <Inventor/nodes/SoSeparator.h>

#include <toCoin.h>

#include "request/conversions.h"
#include "scene/DataScene.h"
#include "scene/SoMeasured.h"
#include "scene/overlay.h"

namespace strandview {

std::optional<MeasuredLine> lineOf(const Measurement& measurement, const MeasuredValue& value,
                                   const DataScene& scene)
{
    const auto isHidden = [&scene](const MeasuredPlace& kept) {
        const PickedPlace place = pickedPlaceOf(kept);
        return scene.lookOf(place.kind, place.datum, partOf(place.kind, place.strand))
            .isOutOfView();
    };
    const std::vector<MeasuredPlace>& places = measurement.places;
    if (!measurement.isShown || std::any_of(places.begin(), places.end(), isHidden))
        return std::nullopt;
    MeasuredLine line;
    for (const auto& point : value.points)
        line.points.push_back(toSbVec3f(scene.getPlacement().toScene(point)));
    line.text = (measurement.name.empty() ? "" : measurement.name + " ") + readable(value);
    return line;
}

SoNode* makeMeasured(const std::vector<Measurement>& measurements, const Configuration& data,
                     const DataScene& scene)
{
    const Style& style = scene.getStyle();
    std::vector<MeasuredLine> lines;
    for (const Measurement& measurement : measurements) {
        const auto value = measure(measurement, data, style.dna.angstrom);
        const auto line = value ? lineOf(measurement, *value, scene) : std::nullopt;
        if (line)
            lines.push_back(*line);
    }
    if (lines.empty())
        return nullptr;
    SoSeparator* const overlay = makeOverlay();
    overlay->renderCaching = SoSeparator::OFF; // where it is depends on the camera before
    auto* const colours = new SoBaseColor;
    colours->rgb.setNum(2);
    colours->rgb.set1Value(SoMeasured::PLATE, toSbColor(style.background));
    colours->rgb.set1Value(SoMeasured::INK, toSbColor(inkOn(style.background)));
    overlay->addChild(colours);
    overlay->addChild(new SoMeasured(cameraOf(*overlay), lines, style.legendTextSize));
    return overlay;
}

} // namespace strandview
