// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_STRUCTURES_READATOMS_H
#define STRANDVIEW_FORMATS_STRUCTURES_READATOMS_H

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <strandview/formats/ReadReport.h>
#include <strandview/formats/structures/ResidueCollector.h>
#include <strandview/formats/structures/pdbLines.h>
#include <strandview/formatsExport.h>

namespace strandview {

/// Told of every model of a structure when it is complete; whether to read on.
using TakeModel = std::function<bool(StructureModel model)>;

// All of these read the models of a text, one after another: whether all of it could be read, or as
// much as was wanted. Else report.error is "fileName:line: found ..., expected ...".

/// PDB. Models end with ENDMDL, and with END, which some programs write instead.
STRANDVIEW_FORMATS_EXPORT bool readPdb(std::string_view text, const std::string& fileName,
                                       const ReadOptions& options, const TakeModel& take,
                                       ReadReport& report);

/// Lines of PDB that stand in their file from a line on, and what those before tell of residues.
struct PdbPart
{
    std::string_view text;
    std::size_t line = 1;
    ModifiedResidues modified = {};
};
STRANDVIEW_FORMATS_EXPORT bool readPdbPart(const PdbPart& part, const std::string& fileName,
                                           const ReadOptions& options, const TakeModel& take,
                                           ReadReport& report);

/// mmCIF, of which the first data block that has atoms is read. A model ends where an atom of
/// another one follows.
STRANDVIEW_FORMATS_EXPORT bool readMmcif(std::string_view text, const std::string& fileName,
                                         const ReadOptions& options, const TakeModel& take,
                                         ReadReport& report);

/// The atoms of one model of mmCIF, from the first value of its first row on: what stands there in
/// its file, and what those values are by the text before.
struct CifPart
{
    std::string_view text;
    std::size_t line = 1, column = 1; ///< in bytes
    std::vector<std::string> tags = {};
    std::size_t lineOfTags = 1; ///< of the last one
    ModifiedResidues modified = {};
};
STRANDVIEW_FORMATS_EXPORT bool readMmcifPart(const CifPart& part, const std::string& fileName,
                                             const ReadOptions& options, const TakeModel& take,
                                             ReadReport& report);

/// By its name alone, in files of the wwPDB and of programs for molecular dynamics.
STRANDVIEW_FORMATS_EXPORT ResidueType typeOfResidue(const std::string& name);

} // namespace strandview

#endif
