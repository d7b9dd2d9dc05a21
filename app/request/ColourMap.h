// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_COLOURMAP_H
#define STRANDVIEW_APP_REQUEST_COLOURMAP_H

#include <optional>
#include <string>
#include <vector>

#include "request/Colour.h"

namespace strandview {

/// What values are shown in: two colours or more at even steps from the least value to the
/// greatest, in sRGB, straight between them.
struct ColourMap
{
    std::vector<Colour> colours;
    bool isDiverging = false; ///< from one hue through a neutral middle, that of 0, to another
    std::string text = {};    ///< its name, or its colours with commas, as --colours takes it
};

/// A published map by its name, in any case, or the other way round by its name and "_r";
/// nothing for any other text.
std::optional<ColourMap> findColourMap(const std::string& name);

/// The names of all maps, each once and in lower case, without "_r".
std::vector<std::string> namesOfColourMaps();

/// Of values for which none is asked: those that grow from nothing, or those that can have either
/// sign by their nature.
ColourMap defaultColourMap(bool ofSigned);

/// The names of the two.
constexpr const char* DEFAULT_MAP = "viridis";
constexpr const char* DEFAULT_SIGNED_MAP = "coolwarm";

} // namespace strandview

#endif
