// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_INFO_FINDINGS_H
#define STRANDVIEW_APP_INFO_FINDINGS_H

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <strandview/formats/ReadReport.h>
#include <strandview/model/Configuration.h>

#include "request/Measurement.h"
#include "request/limits.h"

namespace strandview {

/// What was found in files.
struct Findings
{
    struct File
    {
        std::string name;
        std::string format; ///< of formats()
        std::size_t frames = 1;
    };
    struct Measured
    {
        Measurement measurement;
        std::optional<double> value; ///< nothing where the data do not have its places
        std::string unit;            ///< "Å", "°", or "length" for that of the data
        std::string words;           ///< of the value, for people
    };
    std::vector<File> files;
    std::size_t frame = 0;            ///< that the data are of, counted from 0
    Configuration data;               ///< of all files
    std::vector<std::string> notices; ///< of what was done to the data
    std::set<std::string> compared;   ///< the names of scalars that a comparison added
    std::vector<Measured> measured;   ///< what was asked for
};

/// That scalars of a comparison (comparison.h) are added to what is found, and with what.
struct Comparison
{
    std::optional<Configuration> reference; ///< none: the first frame of each file
};

/// Reads a frame of each file; of several one that has a single configuration has it in every
/// frame. Nothing, and one line in report.error, if a file cannot be read or has no such frame.
std::optional<Findings> findIn(const std::vector<std::string>& files, std::size_t frame,
                               const ReadOptions& options, ReadReport& report,
                               const std::optional<Comparison>& comparison = {});

/// For people: a few lines for each thing. Lengths of DNA are in ångström, of which the unit of
/// its points has `angstrom`; other lengths are in the file's unit. Writhe and links are left out,
/// with a notice, where they would take more pairs of edges.
std::string describe(const Findings& findings, double angstrom,
                     double mostEdgePairs = MOST_EDGE_PAIRS);

/// The same as one JSON object, for scripts, with all digits; the guide lists its keys.
std::string toJson(const Findings& findings, double angstrom,
                   double mostEdgePairs = MOST_EDGE_PAIRS);

} // namespace strandview

#endif
