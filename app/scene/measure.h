// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_MEASURE_H
#define STRANDVIEW_APP_SCENE_MEASURE_H

#include <optional>
#include <string>
#include <vector>

#include <algebra3d/Vector3.h>

#include <strandview/model/Configuration.h>

#include "request/Measurement.h"
#include "scene/PickedPlace.h"
#include "scene/placeNumbers.h"

namespace strandview {

// What is measured between places, in data that need not be those that they were picked in. Lengths
// are in the data's unit, `angstrom` is that of an ångström in it. Any thread.

/// A place that was picked, as it is kept; and that place again, without its name.
MeasuredPlace measuredPlaceOf(const PickedPlace& place);
PickedPlace pickedPlaceOf(const MeasuredPlace& place);

/// That of what is measured: lengths are in ångström, "Å", where there is DNA, else in the data's
/// unit, "length", angles in degrees, "°".
std::string unitOf(MeasureKind kind, const Configuration& data);

/// What was measured, in that unit.
struct MeasuredValue
{
    double value; ///< not a number where the places determine none
    std::string unit;
    std::vector<algebra3d::Vector3<double>> points; ///< of the places, in the data's coordinates
};

/// Nothing where the data do not have all of the places, or what is measured of two is not of both:
/// an arc length of two lines, a rotation of what has no frames.
std::optional<MeasuredValue> measure(const Measurement& measurement, const Configuration& data,
                                     double angstrom);

/// That of an angle or a dihedral angle, and of the ways between its places; of two places
/// numbersBetween(). Empty of other numbers of places, or if the data do not have all of them.
std::optional<NumberTable> numbersOf(const std::vector<PickedPlace>& places,
                                     const Configuration& data, double angstrom);

/// "12.3 Å", "2.5", "104.5°": six digits, and no unit where nobody knows it.
std::string readable(const MeasuredValue& value);

} // namespace strandview

#endif
