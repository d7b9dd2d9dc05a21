// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_STRUCTURES_NUCLEICACID_H
#define STRANDVIEW_FORMATS_STRUCTURES_NUCLEICACID_H

#include <cstddef>
#include <optional>
#include <string>

#include <strandview/formats/IndexedText.h>
#include <strandview/formats/ReadReport.h>
#include <strandview/formats/structures/ResidueCollector.h>
#include <strandview/formatsExport.h>
#include <strandview/model/Configuration.h>

namespace strandview {

class KeptPairs;

/// The DNA of a model: double strands, bases in no pair, and backbones, each strand's through its
/// phosphorus atoms. Lengths are in ångström.
///
/// Residues are neighbours on a strand where O3' and P are bonded, or, where one of these is
/// missing, by their numbers. Of what has several places that of the highest occupancy is taken, of
/// equal ones the first. A base is fitted to the atoms that it has, at least 4 of its ring's; the
/// notices tell which were left out, what is shown as its parent base, and U as T.
///
/// Where `pairs` are given, they have those of another model, or keep those of this one.
///
/// Nothing and report.error, "fileName: found protein alone, expected DNA", if there is none.
STRANDVIEW_FORMATS_EXPORT std::optional<Configuration> makeNucleicAcid(StructureModel model,
                                                                       const std::string& fileName,
                                                                       ReadReport& report,
                                                                       KeptPairs* pairs = nullptr);

/// The same as the frame of that number, counted from 0, of a file of models, with the pairs of
/// ReadOptions::pairs: empty where there is none, and told if it has other nucleotides than those
/// are of.
STRANDVIEW_FORMATS_EXPORT FrameRead makeFrame(StructureModel model, const std::string& fileName,
                                              std::size_t number, const ReadOptions& options,
                                              ReadReport& report);

} // namespace strandview

#endif
