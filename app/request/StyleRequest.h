// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_STYLEREQUEST_H
#define STRANDVIEW_APP_REQUEST_STYLEREQUEST_H

#include <optional>
#include <string>

#include "request/ClipPlane.h"
#include "request/Colour.h"
#include "request/ColourMap.h"
#include "request/DrawingLook.h"
#include "request/LegendLook.h"
#include "request/ThingLook.h"

namespace strandview {

/// What is shown of a DNA, and the unit of its points.
struct DnaLook
{
    bool backbone = true; ///< of strands, ideal ones and those that the file has
    bool bases = true;    ///< as slabs
    bool baseBoxes = false;
    bool pairBoxes = false;
    bool atoms = false;
    double angstrom = 1; ///< of them in the data's unit
};

/// How data are to look, as it can be asked for: by options, by the window's panels and by a
/// session. What is left open is chosen from the data. settings() lists all of it.
struct StyleRequest
{
    // Lengths in the data's unit.
    std::optional<double> radius;
    std::optional<double> ribbonWidth;
    std::optional<int> slices;
    std::optional<int> subsegments;
    bool showTube = true;
    std::optional<bool> showRibbon;
    bool twoSidedRibbon = false;
    double transparency = 0; ///< of tubes, ribbons, bases and boxes, up to 1

    DnaLook dna;

    std::optional<Colour> tubeColour;
    std::optional<Colour> ribbonColour;
    Colour background{1, 1, 1};
    ThingLooks things; ///< single ones

    std::optional<ClipPlane> clip; ///< what lies beyond is cut away
    DrawingLook drawing;

    /// A file whose first frame others are compared with, by scalars; "first" is that of the
    /// series.
    std::optional<std::string> compare;
    bool showGhost = false;         ///< what others are compared with, superposed onto them
    double ghostTransparency = 0.6; ///< up to 1
    /// The scalar that colours tubes and ribbons; without one they have colours of their own.
    std::optional<std::string> colourBy;
    std::optional<double> rangeMin;
    std::optional<double> rangeMax;
    bool ownRange = false;            ///< each frame of a series has a range of its own
    bool symmetricRange = false;      ///< as far above 0 as below, around all values
    std::optional<ColourMap> colours; ///< else those that suit the scalar
    // Of values beyond the range, else those at its ends; and of what is no number, else grey.
    std::optional<Colour> belowColour;
    std::optional<Colour> aboveColour;
    std::optional<Colour> nanColour;
    LegendLook legend;

    bool scaleBar = false;
    std::optional<std::string> scaleUnit; ///< of the data's lengths, else DNA's if there is any
};

} // namespace strandview

#endif
