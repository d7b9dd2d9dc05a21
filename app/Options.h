// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_OPTIONS_H
#define STRANDVIEW_APP_OPTIONS_H

#include <optional>
#include <string>
#include <vector>

#include "Colour.h"

/// What the command line asks for. What is not given is chosen from the data.
struct Options
{
    std::vector<std::string> files;
    bool normalise = false;

    /// The picture to write; without one a window opens.
    std::optional<std::string> picture;
    int pictureWidth = 1200;
    int pictureHeight = 900;
    int samples = 3; ///< the picture is rendered this many times wider and higher

    // Lengths in the data's unit.
    std::optional<double> radius;
    std::optional<double> ribbonWidth;
    std::optional<int> slices;
    std::optional<int> subsegments;
    bool showTube = true;
    bool showRibbon = true;
    bool twoSidedRibbon = false;

    std::optional<Colour> tubeColour;
    std::optional<Colour> ribbonColour;
    Colour background{1, 1, 1};

    /// The scalar that colours tubes and ribbons; without one they have colours of their own.
    std::optional<std::string> colourBy;
    std::optional<double> rangeMin;
    std::optional<double> rangeMax;
    std::vector<Colour> ramp; ///< the mapper's own if empty
};

/// The options, or the status to exit with: 0 after --help and --version, which go
/// to standard output, 2 after one line on standard error.
struct ParsedOptions
{
    std::optional<Options> options;
    int exitStatus = 0;
};

ParsedOptions parseOptions(int argc, const char* const* argv);

#endif
