// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_LEGEND_H
#define STRANDVIEW_APP_LEGEND_H

#include <string>
#include <vector>

#include "Colour.h"

class ColourMapper;
class SoNode;

/// The part of a view's height, at its bottom, that a legend takes.
constexpr float LEGEND_HEIGHT = 0.16f;

/// Round numbers from min to max, both included if round: three to nine of them, in
/// steps of 1, 2 or 5 times a power of ten.
std::vector<double> roundTicks(double min, double max);

/// A bar with the mapper's ramp, ticks with their numbers, and the scalar's name, at the
/// bottom of whatever view it is drawn in. The text is black or white, as is read on
/// the background.
SoNode* makeLegend(const std::string& name, const ColourMapper& mapper, const Colour& background);

/// Gives a legend's text the colour that is read on another background.
void setLegendBackground(SoNode& legend, const Colour& background);

#endif
