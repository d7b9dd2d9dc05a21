// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_PLACETELLER_H
#define STRANDVIEW_APP_WINDOW_PLACETELLER_H

#include <optional>
#include <vector>

#include "scene/PickedPlace.h"
#include "scene/Told.h"

namespace strandview {

class DataScene;
class PlaceMarks;
class PlacePanel;

/// The places that were clicked, which are marked in the view and told in a panel: of the data that
/// are shown, which may become others.
class PlaceTeller
{
public:
    /// Both outlive it.
    PlaceTeller(PlaceMarks& placeMarks, PlacePanel& placePanel);

    /// What is shown; the places stay where they are in it. Null for nothing.
    void setScene(const DataScene* shown);
    /// Other data are shown, or the panel is: numbers are computed for a panel that is seen.
    void follow();

    /// Instead of the places before; or, measuring, beside the first of them, where there is one.
    void add(const PickedPlace& place, bool measures);
    void forget();
    /// The last place in a line, and its distance from the first.
    std::vector<Told> getTold() const;

private:
    void mark();

    PlaceMarks& marks;
    PlacePanel& panel;
    const DataScene* scene = nullptr;
    std::vector<PickedPlace> places; ///< two at most
};

} // namespace strandview

#endif
