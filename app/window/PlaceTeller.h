// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_PLACETELLER_H
#define STRANDVIEW_APP_WINDOW_PLACETELLER_H

#include <functional>
#include <optional>
#include <vector>

#include <QElapsedTimer>
#include <QTimer>

#include "scene/PickedPlace.h"
#include "scene/Told.h"
#include "scene/measure.h"

namespace strandview {

class DataScene;
class PlaceMarks;
class PlacePanel;

/// The places that were clicked, which are marked in the view and told in a panel: of the data that
/// are shown, which may become others. What is hidden has no marks. Of the window's thread.
class PlaceTeller
{
public:
    /// As a dihedral angle needs.
    static constexpr std::size_t MOST = 4;

    /// Both outlive it.
    PlaceTeller(PlaceMarks& placeMarks, PlacePanel& placePanel);

    /// What is shown; the places stay where they are in it. Null for nothing.
    void setScene(const DataScene* shown);
    /// Other data are shown, or the panel is: numbers are computed for a panel that is seen, at
    /// most a few times a second and a fifth of the time, and at last for what is shown then.
    void follow();

    /// Instead of the places before; or, measuring, behind them: the fifth instead of the fourth.
    void add(const PickedPlace& place, bool measures);
    /// Called after each change of the places and of the data that they are of, if set.
    std::function<void()> onPlaces;
    void forget();
    const std::vector<PickedPlace>& getPlaces() const { return places; }
    /// The last place in a line, and what is measured between all of them.
    std::vector<Told> getTold() const;

private:
    void renew(); ///< names, and marks
    void mark();
    void tellNow();
    std::vector<NumberTable> tables() const;
    /// What is usual of so many places, if all are shown.
    std::optional<MeasuredValue> measured() const;

    PlaceMarks& marks;
    PlacePanel& panel;
    const DataScene* scene = nullptr;
    std::vector<PickedPlace> places; ///< MOST at most
    QTimer timer;                    ///< until the next time that they are told
    QElapsedTimer sinceTold;
    long long costOfTelling = 0; ///< milliseconds
};

} // namespace strandview

#endif
