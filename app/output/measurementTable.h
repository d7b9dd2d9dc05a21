// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_OUTPUT_MEASUREMENTTABLE_H
#define STRANDVIEW_APP_OUTPUT_MEASUREMENTTABLE_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "request/Measurement.h"

namespace strandview {

/// What was measured in a frame.
struct MeasuredFrame
{
    std::size_t number = 0; ///< from 0
    /// One for each measurement, in its unit; nothing where the frame does not have its places, or
    /// is not known any more.
    std::vector<std::optional<double>> values;
};

/// Comma-separated values: a row for each frame, its number and a column for each measurement,
/// "groove: distance rod 1:10,rod 1:40 [Å]" in the header. Every double is the shortest text that
/// reads back as it; what is nothing is an empty field, what is no number nan. `units` has one for
/// each measurement.
std::string measurementTable(const std::vector<Measurement>& measurements,
                             const std::vector<std::string>& units,
                             const std::vector<MeasuredFrame>& frames);

/// Writes it to a file that appears complete or not at all. Returns one line that says what failed,
/// or nothing.
std::string writeMeasurementTable(const std::string& table, const std::string& fileName);

} // namespace strandview

#endif
