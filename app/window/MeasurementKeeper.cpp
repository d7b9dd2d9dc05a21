// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/MeasurementKeeper.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "request/conversions.h"
#include "scene/DataScene.h"
#include "scene/MeasuredLine.h"
#include "window/MeasurementPanel.h"
#include "window/PlaceMarks.h"
#include "window/PlaceTeller.h"

namespace strandview {

namespace {

const int PAUSE = 200; // milliseconds, in which nobody reads more than one value

} // namespace

MeasurementKeeper::MeasurementKeeper(PlaceTeller& placeTeller, PlaceMarks& keptMarks,
                                     MeasurementPanel& measurementPanel)
    : places(placeTeller), marks(keptMarks), panel(measurementPanel)
{
    timer.setSingleShot(true);
    connect(&timer, &QTimer::timeout, this, &MeasurementKeeper::listNow);
    connect(&panel, &MeasurementPanel::changed, this, &MeasurementKeeper::change);
    connect(&panel, &MeasurementPanel::chosenChanged, this, &MeasurementKeeper::mark);
    places.onPlaces = [this] { offer(); };
}

void MeasurementKeeper::set(const std::vector<Measurement>& next)
{
    measurements = next;
    renew();
    remember();
    listNow();
}

void MeasurementKeeper::change(const std::vector<Measurement>& next)
{
    if (next == measurements)
        return;
    set(next);
    emit changed();
}

void MeasurementKeeper::setScene(const DataScene* shown, std::size_t frameOfSeries, Files files)
{
    scene = shown;
    frame = frameOfSeries;
    seenBefore = std::exchange(seen, {});
    set(files == SAME_FILES ? measurements : std::vector<Measurement>());
    offer();
}

void MeasurementKeeper::keepSeen(const std::map<std::size_t, std::size_t>& frames)
{
    for (const auto& [before, now] : frames) {
        const auto known = seenBefore.find(before);
        if (known != seenBefore.end())
            seen.emplace(now, known->second);
    }
    seenBefore.clear();
}

void MeasurementKeeper::follow(std::size_t frameOfSeries)
{
    frame = frameOfSeries;
    renew();
    remember();
    listSoon();
}

// A style may show another frame's data for a moment, which are none of this frame's.
void MeasurementKeeper::follow()
{
    renew();
    forgetOtherUnits();
    listSoon();
}

void MeasurementKeeper::forgetOtherUnits()
{
    if (seenAngstrom == angstrom())
        return;
    for (auto& [number, known] : seen)
        known.values.clear();
    seenAngstrom = angstrom();
}

double MeasurementKeeper::angstrom() const { return scene->getStyle().dna.angstrom; }

std::optional<MeasuredValue> MeasurementKeeper::valueOf(const Measurement& measurement) const
{
    if (!scene || !scene->getData())
        return std::nullopt;
    return measure(measurement, *scene->getData(), angstrom());
}

void MeasurementKeeper::renew()
{
    values.clear();
    for (const Measurement& measurement : measurements)
        values.push_back(valueOf(measurement));
    mark();
}

void MeasurementKeeper::remember()
{
    if (!scene || !scene->getData())
        return;
    forgetOtherUnits();
    Seen& now = seen[frame];
    now.data = scene->getData();
    now.values.clear();
    for (std::size_t i = 0; i < measurements.size(); ++i) {
        if (values[i])
            now.values[textOf(measurements[i])] = values[i]->value;
    }
}

void MeasurementKeeper::mark()
{
    const std::set<std::size_t> chosen = panel.chosen();
    std::vector<PlaceMarks::Line> lines;
    for (std::size_t i = 0; i < measurements.size(); ++i) {
        const auto line = values[i] ? lineOf(measurements[i], *values[i], *scene) : std::nullopt;
        if (line)
            lines.push_back({line->points, line->text,
                             chosen.count(i) > 0 ? PlaceMarks::YELLOW : PlaceMarks::BLUE});
    }
    marks.setLines(lines);
}

void MeasurementKeeper::listSoon()
{
    if (!timer.isActive())
        timer.start(PAUSE);
}

void MeasurementKeeper::listNow()
{
    timer.stop();
    std::vector<QString> texts;
    for (const auto& value : values)
        texts.push_back(value ? QString::fromStdString(readable(*value)) : "not here");
    panel.list(measurements, texts);
}

// The kinds of so many places that these have.
void MeasurementKeeper::offer()
{
    std::vector<MeasureKind> kinds;
    Measurement asked;
    for (const PickedPlace& place : places.getPlaces())
        asked.places.push_back(measuredPlaceOf(place));
    for (const MeasureKind kind :
         {MeasureKind::DISTANCE, MeasureKind::ARC_LENGTH, MeasureKind::ROTATION, MeasureKind::ANGLE,
          MeasureKind::DIHEDRAL}) {
        asked.kind = kind;
        if (asked.places.size() == placesOf(kind) && valueOf(asked))
            kinds.push_back(kind);
    }
    panel.offer(kinds);
}

std::string MeasurementKeeper::keep()
{
    const auto kind = panel.getKind();
    if (!kind)
        return "Nothing is measured: click a place, and more with Shift";
    Measurement kept;
    kept.kind = *kind;
    for (const PickedPlace& place : places.getPlaces())
        kept.places.push_back(measuredPlaceOf(place));
    const auto value = valueOf(kept);
    places.forget();
    std::vector<Measurement> next = measurements;
    next.push_back(kept);
    change(next);
    return std::string("Kept: ") + nameOf(*kind) + (value ? " " + readable(*value) : "");
}

std::string MeasurementKeeper::save(const std::string& fileName) const
{
    std::vector<std::string> units;
    for (const Measurement& measurement : measurements)
        units.push_back(scene && scene->getData() ? unitOf(measurement.kind, *scene->getData())
                                                  : "");
    std::vector<MeasuredFrame> frames;
    for (const auto& [number, known] : seen) {
        MeasuredFrame row{number, {}};
        const auto data = known.data.lock();
        for (std::size_t i = 0; i < measurements.size(); ++i) {
            const auto value = known.values.find(textOf(measurements[i]));
            if (value != known.values.end()) {
                row.values.emplace_back(value->second);
                continue;
            }
            const auto measured = data ? measure(measurements[i], *data, angstrom()) : std::nullopt;
            row.values.push_back(measured ? std::optional(measured->value) : std::nullopt);
        }
        frames.push_back(row);
    }
    return writeMeasurementTable(measurementTable(measurements, units, frames), fileName);
}

} // namespace strandview
