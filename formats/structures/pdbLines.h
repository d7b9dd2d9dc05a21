// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_STRUCTURES_PDBLINES_H
#define STRANDVIEW_FORMATS_STRUCTURES_PDBLINES_H

#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include <strandview/formats/text/fields.h>

namespace strandview {

/// What a line of PDB is to who looks for models and their atoms.
enum class PdbRecord {
    ATOM,   ///< or HETATM
    TER,    ///< the end of a chain
    MODRES, ///< which residue is made from which
    MODEL,
    END, ///< of a model: ENDMDL, or END, which some programs write instead
    OTHER
};

/// The columns of a line, counted from 0, without the blanks around what is in them.
inline std::string_view pdbColumns(std::string_view line, std::size_t first, std::size_t size)
{
    return trimmed(line.substr(std::min(first, line.size()), size));
}

inline PdbRecord pdbRecordOf(std::string_view line)
{
    constexpr std::string_view beginnings = "AHTME \t"; // most other lines have none of them
    if (line.empty() || beginnings.find(line[0]) == beginnings.npos)
        return PdbRecord::OTHER;
    const std::string_view name = pdbColumns(line, 0, 6);
    if (name == "ATOM" || name == "HETATM")
        return PdbRecord::ATOM;
    if (name == "TER")
        return PdbRecord::TER;
    if (name == "ENDMDL" || name == "END")
        return PdbRecord::END;
    return name == "MODEL"    ? PdbRecord::MODEL
           : name == "MODRES" ? PdbRecord::MODRES
                              : PdbRecord::OTHER;
}

/// What the records MODRES tell: residues, and for each the one that it is made from. The first to
/// tell of a residue holds.
using ModifiedResidues = std::map<std::string, std::string>;

/// Adds what such a record tells, "MODRES 1ABC 5CM A    3   DC  ...": of which residue, if that is
/// new.
inline std::optional<std::string> addModified(std::string_view line, ModifiedResidues& modified)
{
    const std::string residue(pdbColumns(line, 12, 3)), parent(pdbColumns(line, 24, 3));
    const bool isTold = !residue.empty() && !parent.empty();
    return isTold && modified.emplace(residue, parent).second ? std::optional(residue)
                                                              : std::nullopt;
}

} // namespace strandview

#endif
