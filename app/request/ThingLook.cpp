// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/ThingLook.h"

#include <algorithm>

namespace strandview {

namespace {

const ThingLook& said(const std::map<ThingId, ThingLook>& ofThings, const ThingId& thing)
{
    static const ThingLook nothing;
    const auto known = ofThings.find(thing);
    return known == ofThings.end() ? nothing : known->second;
}

auto members(const ThingLook& look)
{
    return std::tie(look.hidden, look.isDeleted, look.name, look.colour, look.radius,
                    look.ribbonWidth, look.slices, look.subsegments, look.showTube, look.showRibbon,
                    look.twoSidedRibbon, look.ribbonColour, look.transparency);
}

} // namespace

bool operator==(const ThingLook& a, const ThingLook& b) { return members(a) == members(b); }

ThingLook ThingLooks::of(const ThingId& thing) const
{
    ThingLook look = said(ofThings, thing);
    if (thing.part != ThingPart::WHOLE) {
        const ThingLook& whole = said(ofThings, {thing.kind, thing.index});
        look.hidden = look.hidden.value_or(whole.hidden.value_or(areOthersHidden));
        look.isDeleted = look.isDeleted || whole.isDeleted;
        return look;
    }
    look.hidden = look.hidden.value_or(areOthersHidden);
    const std::vector<ThingPart>& parts = partsOf(thing.kind);
    if (parts.empty())
        return look;
    const auto haveAll = [&](auto holds) {
        return std::all_of(parts.begin(), parts.end(), [&](ThingPart part) {
            return holds(of({thing.kind, thing.index, part}));
        });
    };
    look.hidden = haveAll([](const ThingLook& part) { return part.isHidden() || part.isDeleted; });
    look.isDeleted = haveAll([](const ThingLook& part) { return part.isDeleted; });
    return look;
}

ThingLook ThingLooks::withThings(const ThingId& strand) const
{
    ThingLook look = of(strand);
    const ThingLook& whole = said(ofThings, {strand.kind, strand.index});
    look.name = look.name ? look.name : whole.name;
    look.colour = look.colour ? look.colour : whole.colour;
    return look;
}

void ThingLooks::show(const ThingId& thing, bool shown)
{
    ofThings[thing].hidden = !shown;
    if (thing.part != ThingPart::WHOLE)
        return;
    for (const ThingPart part : partsOf(thing.kind)) {
        const auto known = ofThings.find({thing.kind, thing.index, part});
        if (known != ofThings.end())
            known->second.hidden.reset();
    }
}

void ThingLooks::showOnly(const std::set<ThingId>& things)
{
    areOthersHidden = true;
    for (auto& [thing, look] : ofThings)
        look.hidden.reset();
    for (const ThingId& thing : things)
        ofThings[thing].hidden = false;
}

void ThingLooks::showAll()
{
    areOthersHidden = false;
    for (auto& [thing, look] : ofThings) {
        look.hidden.reset();
        look.isDeleted = false;
    }
}

} // namespace strandview
