// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_STYLE_H
#define STRANDVIEW_APP_SCENE_STYLE_H

#include <optional>
#include <string>

#include <strandview/model/Configuration.h>

#include "request/Colour.h"
#include "request/Options.h"

namespace strandview {

/// How one thing is drawn. Lengths are in the data's unit.
struct ThingStyle
{
    double radius;
    double ribbonWidth;
    bool isRadiusAsked;      ///< then also of what has a radius of its own
    bool isRibbonWidthAsked; ///< otherwise as much wider as a rod's own radius is larger
    double backboneRadius;   ///< of a strand without one of its own
    int slices;
    int subsegments;
    bool showTube;
    bool showBackbones; ///< those of rods that are one, and ideal ones
    bool showRibbon;
    bool showMadeFrames; ///< a ribbon of rods without frames of their own, too
    bool twoSidedRibbon;
    Colour ribbonColour;
    double transparency; ///< from 0 to 1
};

/// How everything is drawn, but for what single things have of their own.
struct Style : ThingStyle
{
    std::optional<Colour> tubeColour; ///< of all rods; otherwise a colour each
    Colour background;
    std::optional<ClipPlane> clip; ///< with a distance
    DrawingLook drawing;
    LegendLook legend;
    float legendTextSize; ///< in the legend's own view
    bool scaleBar;
    std::string scaleUnit; ///< empty for none

    bool showGhost;           ///< of what the data are compared with, if they are
    double ghostTransparency; ///< from 0 to 1

    ThingLooks things;

    double glyphSize; ///< of markers and frames that have none of their own
    DnaLook dna;
};

/// That of one thing, or strand, as all but for what it has of its own; an average is thinner.
ThingStyle styleOf(const Style& style, const ThingId& thing);

/// Whether a ribbon is asked for, or it is said how it is to look.
bool asksForRibbon(const StyleRequest& request);

/// The style that the options ask for; what they leave open follows from the data.
///
/// The radius is a small fraction of the whole scene, smaller where the rods fill
/// their box densely: most neighbouring turns then stay apart. Rods of few points get
/// many rows per segment, long ones few rows and slices, so that the number of
/// vertices stays within what a window redraws smoothly.
Style makeStyle(const Options& options, const Configuration& configuration);

/// What is asked for of all things, or of one, with what a style of it makes of what it leaves
/// open.
StyleRequest resolve(StyleRequest request, const Style& style);
StyleRequest resolve(StyleRequest request, const ThingStyle& style);

/// One line about a length of the options that cannot be drawn beside these data, or
/// nothing.
std::string checkLengths(const Options& options, const Configuration& configuration);

} // namespace strandview

#endif
