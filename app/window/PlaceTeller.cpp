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

// "distance 2.5 length" without the unit of the points, which nobody knows.
std::string textOf(const NumberRow& row)
{
    const bool isKnown = !row.unit.empty() && row.unit != "length";
    return row.name + " " + row.value + (isKnown ? " " + row.unit : "");
}

} // namespace

PlaceTeller::PlaceTeller(PlaceMarks& placeMarks, PlacePanel& placePanel)
    : marks(placeMarks), panel(placePanel)
{}

void PlaceTeller::setScene(const DataScene* shown)
{
    scene = shown;
    follow();
}

void PlaceTeller::follow()
{
    mark();
    if (!panel.isVisible())
        return;
    std::vector<NumberTable> tables;
    if (scene && scene->getData() && !places.empty()) {
        const Configuration& data = *scene->getData();
        const double angstrom = scene->getStyle().dna.angstrom;
        if (places.size() > 1) {
            if (const auto measured = numbersBetween(places[0], places[1], data, angstrom))
                tables.push_back(*measured);
        }
        for (std::size_t i = 0; i < places.size(); ++i) {
            for (NumberTable& table : numbersAt(places[i], data, angstrom)) {
                if (places.size() > 1)
                    table.title = std::to_string(i + 1) + ": " + table.title;
                tables.push_back(std::move(table));
            }
        }
    }
    panel.tell(tables);
}

void PlaceTeller::add(const PickedPlace& place, bool measures)
{
    places.resize(std::min<std::size_t>(places.size(), measures ? 1 : 0));
    places.push_back(place);
    follow();
}

void PlaceTeller::forget()
{
    places.clear();
    follow();
}

std::vector<Told> PlaceTeller::getTold() const
{
    std::vector<Told> told;
    if (places.size() > 1 && scene && scene->getData()) {
        if (const auto measured = numbersBetween(places[0], places[1], *scene->getData(),
                                                 scene->getStyle().dna.angstrom))
            told.push_back({textOf(measured->rows.front()), ""});
    }
    if (!places.empty())
        told.push_back(tell(places.back()));
    return told;
}

void PlaceTeller::mark()
{
    std::vector<SbVec3f> points;
    for (const PickedPlace& place : places) {
        if (!scene || !scene->getData())
            continue;
        if (const auto at = findPoint(place, *scene->getData()))
            points.push_back(toSbVec3f(scene->getPlacement().toScene(at->point)));
    }
    marks.setPlaces(points);
}

} // namespace strandview
