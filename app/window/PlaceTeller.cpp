// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/PlaceTeller.h"

#include <algorithm>

#include "request/conversions.h"
#include "scene/DataScene.h"
#include "scene/placeNumbers.h"
#include "window/PlaceMarks.h"
#include "window/PlacePanel.h"

namespace strandview {

namespace {

// Numbers take at most this share of the time in which frames are played.
const long long SHARE = 5;         // a fifth
const long long LEAST_PAUSE = 200; // milliseconds, in which nobody reads them

} // namespace

PlaceTeller::PlaceTeller(PlaceMarks& placeMarks, PlacePanel& placePanel)
    : marks(placeMarks), panel(placePanel)
{
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, &timer, [this] { tellNow(); });
}

void PlaceTeller::setScene(const DataScene* shown)
{
    scene = shown;
    renew();
    tellNow();
}

void PlaceTeller::follow()
{
    renew();
    if (timer.isActive())
        return;
    const long long pause = std::max(LEAST_PAUSE, SHARE * costOfTelling);
    const long long passed = sinceTold.isValid() ? sinceTold.elapsed() : pause;
    if (passed >= pause)
        tellNow();
    else
        timer.start(int(pause - passed));
}

void PlaceTeller::renew()
{
    for (PickedPlace& place : places) {
        if (scene)
            place = scene->renewed(place);
    }
    mark();
}

void PlaceTeller::tellNow()
{
    timer.stop();
    if (!panel.isVisible())
        return;
    QElapsedTimer clock;
    clock.start();
    panel.tell(tables());
    costOfTelling = clock.elapsed();
    sinceTold.start();
}

std::vector<NumberTable> PlaceTeller::tables() const
{
    if (!scene || !scene->getData())
        return {};
    std::vector<NumberTable> all;
    const Configuration& data = *scene->getData();
    const double angstrom = scene->getStyle().dna.angstrom;
    if (places.size() > 1) {
        if (const auto numbers = numbersOf(places, data, angstrom))
            all.push_back(*numbers);
    }
    for (std::size_t i = 0; i < places.size(); ++i) {
        for (NumberTable& table : numbersAt(places[i], data, angstrom)) {
            if (places.size() > 1)
                table.title = std::to_string(i + 1) + ": " + table.title;
            all.push_back(std::move(table));
        }
    }
    return all;
}

void PlaceTeller::add(const PickedPlace& place, bool measures)
{
    places.resize(std::min<std::size_t>(places.size(), measures ? MOST - 1 : 0));
    places.push_back(place);
    mark();
    tellNow();
}

void PlaceTeller::forget()
{
    places.clear();
    mark();
    tellNow();
}

std::optional<MeasuredValue> PlaceTeller::measured() const
{
    const auto kind = usualKind(places.size());
    if (!kind || !scene || !scene->getData())
        return std::nullopt;
    Measurement asked;
    asked.kind = *kind;
    for (const PickedPlace& place : places)
        asked.places.push_back(measuredPlaceOf(place));
    return measure(asked, *scene->getData(), scene->getStyle().dna.angstrom);
}

std::vector<Told> PlaceTeller::getTold() const
{
    std::vector<Told> told;
    if (const auto value = measured())
        told.push_back(
            {std::string(nameOf(*usualKind(places.size()))) + " " + readable(*value), ""});
    if (!places.empty())
        told.push_back(tell(places.back()));
    return told;
}

void PlaceTeller::mark()
{
    PlaceMarks::Line line;
    for (const PickedPlace& place : places) {
        const ThingPart part = partOf(place.kind, place.strand);
        if (!scene || !scene->getData() ||
            scene->lookOf(place.kind, place.datum, part).isOutOfView())
            continue;
        if (const auto at = findPoint(place, *scene->getData(), scene->getStyle().dna.angstrom))
            line.places.push_back(toSbVec3f(scene->getPlacement().toScene(at->point)));
    }
    const bool areAllShown = line.places.size() == places.size();
    if (const auto value = areAllShown ? measured() : std::nullopt)
        line.text = readable(*value);
    marks.setLines({line});
    if (onPlaces)
        onPlaces();
}

} // namespace strandview
