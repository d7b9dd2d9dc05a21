// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_THINGLOOK_H
#define STRANDVIEW_APP_REQUEST_THINGLOOK_H

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>

#include "request/Colour.h"
#include "request/ThingKind.h"

namespace strandview {

/// A thing of the data, or one of its strands, by what it is and its number among those of all
/// files, from 0. In other frames it is the one there.
struct ThingId
{
    ThingKind kind = ThingKind::OTHER;
    std::size_t index = 0;
    ThingPart part = ThingPart::WHOLE;
};

inline bool operator<(const ThingId& a, const ThingId& b)
{
    return std::tie(a.kind, a.part, a.index) < std::tie(b.kind, b.part, b.index);
}
inline bool operator==(const ThingId& a, const ThingId& b)
{
    return a.kind == b.kind && a.index == b.index && a.part == b.part;
}

/// How one thing is to look. What is left open is as of all others.
struct ThingLook
{
    std::optional<bool> hidden;
    bool isDeleted = false;          ///< from view: as hidden, and in no list
    std::optional<std::string> name; ///< instead of its own, also where a pick is told
    std::optional<Colour> colour;    ///< instead of its own

    // Of curves; lengths in the data's unit.
    std::optional<double> radius;
    std::optional<double> ribbonWidth;
    std::optional<int> slices;
    std::optional<int> subsegments;
    std::optional<bool> showTube;
    std::optional<bool> showRibbon;
    std::optional<bool> twoSidedRibbon;
    std::optional<Colour> ribbonColour;

    std::optional<double> transparency; ///< up to 1

    bool isHidden() const { return hidden.value_or(false); }
    bool isOutOfView() const { return isHidden() || isDeleted; }
};

/// Whether both say the same in the same words.
bool operator==(const ThingLook& a, const ThingLook& b);

/// How single things are to look, also in frames to come and in those after one that has fewer.
/// What is said of a strand goes before what is said of its thing, and that before what is said of
/// all others.
struct ThingLooks
{
    std::map<ThingId, ThingLook> ofThings;
    bool areOthersHidden = false; ///< also of frames to come

    /// Of any thing or strand; whether it is hidden is said in any case. A thing is hidden, or
    /// deleted, if all its strands are.
    ThingLook of(const ThingId& thing) const;
    /// Of a strand, with what its thing has: its name and colour unless it has its own.
    ThingLook withThings(const ThingId& strand) const;
    /// Shows or hides a thing with all its strands, or one of those.
    void show(const ThingId& thing, bool shown);
    /// Lets all others be hidden. What was deleted stays so.
    void showOnly(const std::set<ThingId>& things);
    /// Also what was deleted from view.
    void showAll();
};

/// Whether both say the same in the same words: others may look alike, too, as textsOf() tells.
inline bool operator==(const ThingLooks& a, const ThingLooks& b)
{
    return a.areOthersHidden == b.areOthersHidden && a.ofThings == b.ofThings;
}

} // namespace strandview

#endif
