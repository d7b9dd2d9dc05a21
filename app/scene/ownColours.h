// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_OWNCOLOURS_H
#define STRANDVIEW_APP_SCENE_OWNCOLOURS_H

#include <cstddef>

#include <strandview/analysis/tracks.h>
#include <strandview/model/Configuration.h>

#include "request/Colour.h"
#include "scene/Style.h"
#include "scene/backbones.h"

namespace strandview {

// The colours of lines that have none of data.

/// The tubes' colours, one after the other unless the style has one for all.
Colour tubeColour(const Style& style, std::size_t index);

/// Those of strands, from grey on, beside which the colours of bases are seen.
Colour strandColour(const Style& style, std::size_t index);

/// Of a rod: that of its file, unless the style has one for all, or that of its place.
Colour rodColour(const Rod& rod, std::size_t index, const Style& style, const Molecules& molecules);

/// Of the average of a birod, which is strand 0, or of one of its strands; its data have so many
/// rods.
Colour birodColour(std::size_t index, int strand, std::size_t rods, const Style& style);

/// Of any line of a configuration; that of a DNA's pairs is its strands'.
Colour colourOf(const Track& track, const Configuration& configuration, const Style& style,
                const Molecules& molecules);

} // namespace strandview

#endif
