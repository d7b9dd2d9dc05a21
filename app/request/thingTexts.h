// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_THINGTEXTS_H
#define STRANDVIEW_APP_REQUEST_THINGTEXTS_H

#include <optional>
#include <string>
#include <vector>

#include "request/ThingLook.h"

namespace strandview {

// What is said of single things as text: "rod 2: hidden", "rods 3-5: colour=#ff0000, name=arm",
// "rod 2: radius=0.3, no ribbon", "DNA 1 strand 2: hidden", "others: hidden". A name with a comma
// or the like stands between quotation marks: name="a, b", with a backslash before one of its own.
// Elsewhere than where a value begins a mark is none: name=3" arm.

/// As users type it: "rod 2", "DNA 1", "birod 1 average"; "bases" of those without a partner, which
/// are one together.
std::string nameOf(const ThingId& thing);

/// A text of each, with neighbours that look alike in one; what is said in them is the same again
/// when they are read. Whether two look alike can be told by them.
std::vector<std::string> textsOf(const ThingLooks& looks);

/// Adds what a text says, several with semicolons between, to what is said already. Nothing, or
/// "found 'x', expected a colour" and the looks are as they were.
std::string readThings(const std::string& text, ThingLooks& looks);
/// The same of several texts one after the other, of which each is read by itself.
std::string readThings(const std::vector<std::string>& texts, ThingLooks& looks);

// Settings that a thing may have of its own, by the names that they have for all.

/// Whether such a thing or strand may.
bool canHaveOwn(const std::string& setting, const ThingId& thing);
/// What a look says of it; nothing if it leaves it to that of all things.
std::optional<std::string> ownValue(const std::string& setting, const ThingLook& look);
/// Lets a look say it, or leave it open: of a setting that a thing may have, a text that it takes.
void setOwn(const std::string& setting, const std::optional<std::string>& text, ThingLook& look);

/// Whether a scene that shows one can show the other by showing, hiding, naming and colouring what
/// it has.
bool areOfSameNodes(const ThingLooks& shown, const ThingLooks& next);

} // namespace strandview

#endif
