// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_OXDNA_OXDNAREADER_H
#define STRANDVIEW_FORMATS_OXDNA_OXDNAREADER_H

#include <memory>
#include <optional>
#include <string_view>

#include <strandview/formats/Format.h>
#include <strandview/formats/IndexedText.h>
#include <strandview/formats/oxdna/Topology.h>
#include <strandview/formatsExport.h>

namespace strandview {

/// Reads configurations of oxDNA: for each
///
///     t = 1000
///     b = 20 20 20
///     E = 0 0 0
///
/// and a line for each nucleotide: its position r and its axes a1, to the base, and a3, to the 5'
/// end; velocities behind them count for nothing. The topology is another file
/// (files.h); or the source is a topology, and the configuration another file.
///
/// All becomes ångström, of which a unit of length has 8.518. A base is at r + 0.6 a1 with
/// d1 = a1 x a3, d2 = -a1 and d3 = -a3. Two bases are a pair where each is the nearest to the
/// other, by r + 0.4 a1, of those of complementary letters with a1.a1' < -0.5, and nearer than 0.6
/// units. Every helix (analysis/helices.h) is a Dna, every other base a LoneBase, and every strand
/// a backbone through r - 0.4 a1, from its 5' end on. Periodic images are as the file has them.
///
/// Nothing and report.error if that fails.
STRANDVIEW_FORMATS_EXPORT std::optional<Configuration>
readOxdna(Source& source, const ReadOptions& options, ReadReport& report);

/// The configurations of a trajectory, with their times in steps of the simulation
/// (IndexedSeries.h). Pairs and helices are those that options.pairs has.
STRANDVIEW_FORMATS_EXPORT std::unique_ptr<Series>
openOxdna(std::unique_ptr<Source> source, const ReadOptions& options, ReadReport& report);

/// What IndexedText has to know of configurations of this topology.
STRANDVIEW_FORMATS_EXPORT std::unique_ptr<TextFrames> makeOxdnaFrames(OxdnaTopology topology);

/// Certain of configurations and of topologies.
STRANDVIEW_FORMATS_EXPORT Likeness likenessToOxdna(std::string_view beginning);

} // namespace strandview

#endif
