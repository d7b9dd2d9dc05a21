// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_PLACENUMBERS_H
#define STRANDVIEW_APP_SCENE_PLACENUMBERS_H

#include <optional>
#include <string>
#include <vector>

#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>

#include <strandview/model/Configuration.h>

#include "scene/PickedPlace.h"

namespace strandview {

// The numbers of a place that was picked, in data that need not be those that it was picked in.
// Lengths are in the data's unit. A number between two points is between theirs, in a straight
// line, and a frame the shorter way. Any thread.

/// A point of a centreline, a pair, a base or a glyph.
struct PointOfPlace
{
    algebra3d::Vector3<double> point;
    std::optional<algebra3d::Quaternion<double>> rotation; ///< of what has frames
};

/// Nothing if these data have no such place. `angstrom` is the length of an ångström in the data's
/// unit, which places where DNA's phosphorus atoms would be.
std::optional<PointOfPlace> findPoint(const PickedPlace& place, const Configuration& data,
                                      double angstrom);

/// A line of what is told: "curvature", "0.5", "1/length". An empty value is told as its name
/// alone.
struct NumberRow
{
    std::string name, value, unit;
    std::vector<double> numbers = {}; ///< those of the value, with all digits, if it is made of any
};
struct NumberTable
{
    std::string title;
    std::vector<NumberRow> rows;
};

/// Name, place, point, frame, then all scalars there; of DNA those of the pair and of the strand.
/// Of what is not in the data just a table that says so; of what is no datum its point alone.
std::vector<NumberTable> numbersAt(const PickedPlace& place, const Configuration& data,
                                   double angstrom);

/// From one place to another: distance, the angles between their frames, and, where they are of one
/// line, the way along it. Empty if the data do not have both.
std::optional<NumberTable> numbersBetween(const PickedPlace& from, const PickedPlace& to,
                                          const Configuration& data, double angstrom);

/// Between two places of one line, of two strands of one along what is between them; around a
/// closed one the shorter way. Nothing of others.
std::optional<double> arcLengthBetween(const PickedPlace& from, const PickedPlace& to,
                                       const Configuration& data, double angstrom);
/// In degrees.
double angleOfRotation(const algebra3d::Quaternion<double>& from,
                       const algebra3d::Quaternion<double>& to);
/// Whether the unit of the points is known by what is shown.
bool hasDna(const Configuration& data);

/// A row for each line: its parts with tabs between them. Titles stand alone, an empty line before.
std::string textOf(const std::vector<NumberTable>& tables);
/// A list of the tables as JSON: an object each with its "title" and a member for each row that has
/// a value. That is the text, the number or the list of numbers, with all digits, and where there
/// is a unit an object of "value" and "unit". What is no finite number is null.
std::string jsonOf(const std::vector<NumberTable>& tables);

} // namespace strandview

#endif
