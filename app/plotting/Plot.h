// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_PLOTTING_PLOT_H
#define STRANDVIEW_APP_PLOTTING_PLOT_H

#include <cstddef>
#include <string>
#include <vector>

#include <strandview/analysis/tracks.h>

#include "request/Colour.h"

namespace strandview {

/// A line of the data: a curve in each panel that has values of it.
struct PlotLine
{
    LineId id;
    std::string title;
    Colour colour{0, 0, 0};
    std::vector<double> x; ///< ascending, one for each place or frame
};

/// One number over all x.
struct PlotPanel
{
    std::string name; ///< "curvature"
    std::string unit; ///< "1/length"; may be empty
    /// For each line as many as its x, or none if it has no such number. Not-a-number is a gap.
    std::vector<std::vector<double>> values;
    double rounding = 0; ///< values that differ by less are the same
};

/// Panels above each other with one x axis.
struct Plot
{
    std::string xName, xUnit;
    std::vector<PlotLine> lines;
    std::vector<PlotPanel> panels;
};

/// "curvature [1/length]", or the name alone.
std::string axisTitle(const std::string& name, const std::string& unit);

/// From a smallest to a largest number.
struct Span
{
    double min, max;
};

/// Of all x; from 0 to 1 if there are none, a bit to both sides of one alone.
Span xSpan(const Plot& plot);

/// Of all values of a panel that are numbers; where they are the same but for rounding, with room
/// on both sides, so that rounding does not look like a curve. From 0 to 1 if there are none.
Span ySpan(const PlotPanel& panel);

/// The places of a curve that are drawn: all of at most `most`, else in each of most / 2 equal
/// stretches of x those of the smallest and of the largest value, and those beside a gap, so that
/// it looks the same. Ascending.
std::vector<std::size_t> placesToDraw(const std::vector<double>& x, const std::vector<double>& y,
                                      std::size_t most);

/// The place whose x is nearest; x ascends and is not empty.
std::size_t nearestPlace(const std::vector<double>& x, double to);

} // namespace strandview

#endif
