// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_COLOURING_H
#define STRANDVIEW_APP_SCENE_COLOURING_H

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include <ColourMapper.h>
#include <Inventor/SbColor.h>

#include <strandview/formats/ReadReport.h>
#include <strandview/model/Configuration.h>

#include "request/Colour.h"
#include "request/ColourMap.h"
#include "request/Options.h"
#include "scene/Progress.h"

namespace strandview {

/// Of points whose value is no number; seen on white and on black.
constexpr Colour NO_VALUE_COLOUR{0.5f, 0.5f, 0.5f};

/// The colours of places on a ramp, which goes from 0 to 1.
struct PlaceColours
{
    /// Beyond the ends that of the end unless there is another; not-a-number is no place.
    Colour at(double place) const;

    ColourMapper ramp;
    std::optional<Colour> below, above;
    Colour none = NO_VALUE_COLOUR;
};

/// A scalar shown as colours: its name and unit, the ramp and the values at its ends, and where on
/// it every point of each rod is.
struct Colouring : PlaceColours
{
    std::string name;
    std::string unit; ///< of the values, if it is known
    ColourMap map;    ///< that the ramp is of
    double min = 0;   ///< the value at the ramp's 0
    double max = 1;   ///< and at its 1

    /// The number of a scalar that has only one, in words; all points are at 0.5 then, and
    /// those of other frames whose number is another one are beyond the ends.
    std::string constant;
    double constantMin = 0; ///< numbers between these are that one
    double constantMax = 0;

    /// Of each rod, then of the average and the strands of each birod, then of the pairs of each
    /// DNA, per point: below 0 or above 1 if the value lies beyond the ends, and not-a-number if it
    /// is no number. Empty for one without the scalar.
    std::vector<std::vector<double>> places;
    std::size_t rods = 0; ///< among the places
    std::size_t birods = 0;
    double angstrom = 1; ///< in the unit of the data

    const std::vector<double>& ofRod(std::size_t index) const { return places[index]; }
    /// Of the average, 0, or a strand, 1 or 2.
    const std::vector<double>& ofBirod(std::size_t index, std::size_t curve) const
    {
        return places[rods + 3 * index + curve];
    }
    const std::vector<double>& ofDna(std::size_t index) const
    {
        return places[rods + 3 * birods + index];
    }

    // What there is among the places.
    bool isBelow = false;
    bool isAbove = false;
    bool isMissing = false; ///< a value is no number
};

/// The least and the greatest of some numbers; infinite, the other way round, if there are none.
struct Limits
{
    double min = std::numeric_limits<double>::infinity();
    double max = -std::numeric_limits<double>::infinity();

    void include(double value)
    {
        min = std::min(min, value);
        max = std::max(max, value);
    }
    bool isEmpty() const { return !(min <= max); }
    double magnitude() const { return std::max(std::abs(min), std::abs(max)); }
};

/// What is known of all values of a scalar together, in one frame or in many.
struct ValueSummary
{
    /// One more, which may be off by its rounding.
    void include(double value, double rounding);
    void include(const ValueSummary& others);

    /// Whether all may be the same number.
    bool isConstant() const;
    /// Whether there is one below zero and one above it, by more than their rounding and a 1e-9th
    /// of the greatest.
    bool hasBothSigns() const;
    /// The number of a constant, with the digits that rounding leaves of it.
    std::string constantText() const;

    Limits values;
    // Every number that is off from each value by at most its rounding is between these.
    double agreedMin = -std::numeric_limits<double>::infinity();
    double agreedMax = std::numeric_limits<double>::infinity();
    bool isRounding = true;  ///< no value is more than the rounding of 0
    bool isNegative = false; ///< a value is below 0 by more than its rounding
    bool isPositive = false; ///< and one above it
    std::size_t missing = 0; ///< so many are no numbers
};

/// Of the scalar of that name of all that have it, or of fewer, if it is stopped; `angstrom` is one
/// in the unit of the data. In any thread.
ValueSummary summarise(const Configuration& configuration, const std::string& name, double angstrom,
                       const Progress& progress);

/// The names of all scalars that data can be coloured by, those of files first, each once.
std::vector<std::string> namesOfScalars(const Configuration& configuration, double angstrom);

/// The colouring that the options ask for by name. Unless given, its colours are
/// defaultColourMap(), of what is signed by its nature or of all else, also of scalars of files;
/// and its limits those of all values, but as far above 0 as below where a diverging map, whose
/// middle is for 0, shows both signs or what is signed by its nature. Values that differ by less
/// than a 1e-9th of the largest, or by what the rounding of points and frames may cause, are a
/// constant. What is a number of pairs or steps of DNA is not that of rods that are there besides.
/// A notice tells a constant, how many rods, birods or DNA have no such scalar, how many values are
/// no numbers, and which options have no effect. Nothing, and one line in report.error, if nothing
/// has the scalar, none of its values is a number, or the limits leave no room between them. The
/// values of other frames of a series, if given, count for the limits, and the constant, as the
/// configuration's own do. Nothing, and an error, once it is stopped.
std::optional<Colouring> makeColouring(const Options& options, const Configuration& configuration,
                                       ReadReport& report, const ValueSummary* ofOthers = nullptr,
                                       const Progress& progress = Progress());

/// The same colouring of another frame, in any thread: name, ramp, the values at its ends and the
/// constant stay, and the values of the frame get their places among them. What is without the
/// scalar has none, and so has what is left when it is stopped.
Colouring followColouring(const Colouring& first, const Configuration& next,
                          const Progress& progress = Progress());

std::vector<Colour> coloursOf(const PlaceColours& colours, const std::vector<double>& places);

/// One colour for each of the arc lengths `at`, along a curve whose points have these ascending arc
/// lengths and places, written to as many behind each other: smooth through the places, straight
/// where they are two, and that of none nearer to a point without a place than to one with. Colours
/// of their own beyond the ends are there where straight lines between the places are beyond them:
/// between points within the ends is none. In any thread.
void colourRows(const PlaceColours& colours, const std::vector<double>& arcLengths,
                const std::vector<double>& places, const std::vector<double>& at, SbColor* to);

} // namespace strandview

#endif
