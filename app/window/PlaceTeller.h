// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_PLACETELLER_H
#define STRANDVIEW_APP_WINDOW_PLACETELLER_H

#include <vector>

#include <QElapsedTimer>
#include <QTimer>

#include "scene/PickedPlace.h"
#include "scene/Told.h"

namespace strandview {

class DataScene;
class PlaceMarks;
class PlacePanel;
struct NumberTable;

/// The places that were clicked, which are marked in the view and told in a panel: of the data that
/// are shown, which may become others. What is hidden has no marks. Of the window's thread.
class PlaceTeller
{
public:
    /// Both outlive it.
    PlaceTeller(PlaceMarks& placeMarks, PlacePanel& placePanel);

    /// What is shown; the places stay where they are in it. Null for nothing.
    void setScene(const DataScene* shown);
    /// Other data are shown, or the panel is: numbers are computed for a panel that is seen, at
    /// most a few times a second and a fifth of the time, and at last for what is shown then.
    void follow();

    /// Instead of the places before; or, measuring, beside the first of them, where there is one.
    void add(const PickedPlace& place, bool measures);
    void forget();
    /// The last place in a line, and its distance from the first.
    std::vector<Told> getTold() const;

private:
    void renew(); ///< names, and marks
    void mark();
    void tellNow();
    std::vector<NumberTable> tables() const;

    PlaceMarks& marks;
    PlacePanel& panel;
    const DataScene* scene = nullptr;
    std::vector<PickedPlace> places; ///< two at most
    QTimer timer;                    ///< until the next time that they are told
    QElapsedTimer sinceTold;
    long long costOfTelling = 0; ///< milliseconds
};

} // namespace strandview

#endif
