// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/ThingLook.h"

namespace strandview {

ThingLook ThingLooks::of(const ThingId& thing) const
{
    const auto known = ofThings.find(thing);
    ThingLook look = known == ofThings.end() ? ThingLook() : known->second;
    look.hidden = look.hidden.value_or(areOthersHidden);
    return look;
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
