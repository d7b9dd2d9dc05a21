// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_OXDNA_FILES_H
#define STRANDVIEW_FORMATS_OXDNA_FILES_H

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <strandview/formats/ReadReport.h>
#include <strandview/formats/oxdna/Topology.h>
#include <strandview/formatsExport.h>

namespace strandview {

class Source;

// Which files of oxDNA belong together.

/// Whether a text begins as a configuration does: "t = ", "b = " and "E = " in three lines.
STRANDVIEW_FORMATS_EXPORT bool isOxdnaConfiguration(std::string_view beginning);

/// How many nucleotides the first configuration of a file has. Nothing and report.error if it
/// cannot be read.
STRANDVIEW_FORMATS_EXPORT std::optional<std::size_t>
countInOxdnaConfiguration(Source& source, const ReadOptions& options, ReadReport& report);

/// The topology of a configuration: that of ReadOptions::topology; else the file of its name with
/// the ending ".top"; else the only ".top" in its folder that has as many nucleotides. Nothing and
/// report.error if there is none, or if it cannot be read.
STRANDVIEW_FORMATS_EXPORT std::optional<OxdnaTopology>
findOxdnaTopology(Source& configuration, const ReadOptions& options, ReadReport& report);

/// The configuration of a topology that is named alone: the file of its name with the ending
/// ".oxdna", ".conf" or ".dat", in this order, else the only one of these endings in its folder
/// that has as many nucleotides. Null and report.error if there is none.
STRANDVIEW_FORMATS_EXPORT std::unique_ptr<Source>
findOxdnaConfiguration(Source& topology, const ReadOptions& options, ReadReport& report);

} // namespace strandview

#endif
