// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_STRUCTURES_STRUCTUREREADER_H
#define STRANDVIEW_FORMATS_STRUCTURES_STRUCTUREREADER_H

#include <memory>
#include <optional>
#include <string_view>

#include <strandview/formats/Format.h>
#include <strandview/formats/ReadReport.h>
#include <strandview/formatsExport.h>
#include <strandview/model/Configuration.h>
#include <strandview/model/Series.h>

namespace strandview {

class Source;

/// Certain of text that begins with lines of PDB, of which those of atoms have coordinates in their
/// columns, or with a data block of mmCIF.
STRANDVIEW_FORMATS_EXPORT Likeness likenessToStructure(std::string_view beginning);

/// The first model of a PDB or mmCIF file: its DNA, as makeNucleicAcid() has it. What begins with
/// "data_" is mmCIF, all else PDB.
STRANDVIEW_FORMATS_EXPORT std::optional<Configuration>
readStructure(Source& source, const ReadOptions& options, ReadReport& report);

/// All models, one a frame; models without DNA are frames with nothing in them. They are found by
/// one pass and read when they are loaded (IndexedSeries.h, PdbFrames.h, CifIndex.h).
STRANDVIEW_FORMATS_EXPORT std::unique_ptr<Series>
openStructures(std::unique_ptr<Source> source, const ReadOptions& options, ReadReport& report);

} // namespace strandview

#endif
