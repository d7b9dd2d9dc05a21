// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/ownColours.h"

#include <array>
#include <optional>

namespace strandview {

namespace {

// Colours that are told apart with every kind of colour vision, the ribbon's left out
// (M. Okabe and K. Ito, Color universal design, 2008).
const std::array<Colour, 7> TUBE_COLOURS{{{0.34f, 0.61f, 0.82f},
                                          {0.00f, 0.62f, 0.45f},
                                          {0.80f, 0.47f, 0.65f},
                                          {0.84f, 0.37f, 0.00f},
                                          {0.00f, 0.45f, 0.70f},
                                          {0.94f, 0.89f, 0.26f},
                                          {0.55f, 0.55f, 0.55f}}};

} // namespace

Colour tubeColour(const Style& style, std::size_t index)
{
    return style.tubeColour.value_or(TUBE_COLOURS[index % TUBE_COLOURS.size()]);
}

Colour strandColour(const Style& style, std::size_t index)
{
    return tubeColour(style, TUBE_COLOURS.size() - 1 + index);
}

Colour rodColour(const Rod& rod, std::size_t index, const Style& style, const Molecules& molecules)
{
    const std::optional<Colour> ofFile = rod.colour ? parseColour(*rod.colour) : std::nullopt;
    if (ofFile && !style.tubeColour)
        return *ofFile;
    return rod.isBackbone ? strandColour(style, molecules.colourOf(rod.molecule, index))
                          : tubeColour(style, index);
}

// The colours of rods go on, strands first.
Colour birodColour(std::size_t index, int strand, std::size_t rods, const Style& style)
{
    const std::size_t part = strand == 0 ? 2 : std::size_t(strand) - 1;
    return tubeColour(style, rods + 3 * index + part);
}

Colour colourOf(const Track& track, const Configuration& configuration, const Style& style,
                const Molecules& molecules)
{
    if (track.rod)
        return rodColour(*track.rod, track.datum, style, molecules);
    if (track.dna)
        return strandColour(style, molecules.colourOf(track.dna->molecule, track.datum));
    return birodColour(track.datum, track.strand, configuration.rods.size(), style);
}

} // namespace strandview
