// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_STRUCTURES_PDBFRAMES_H
#define STRANDVIEW_FORMATS_STRUCTURES_PDBFRAMES_H

#include <cstddef>
#include <map>
#include <string>
#include <string_view>

#include <strandview/formats/IndexedText.h>
#include <strandview/formats/structures/pdbLines.h>
#include <strandview/formatsExport.h>

namespace strandview {

/// How PDB has its models: each begins with its first atom, behind the end of the one before, and
/// is a frame up to the first atom of the next one, where readPdb() would take it. One without DNA
/// is empty (FrameRead::isEmpty).
///
/// The last one is cut where its end is missing that the others have, or that the record MODEL in
/// front of an only one asks for; of a file that is growing, where it has none.
class STRANDVIEW_FORMATS_EXPORT PdbFrames : public TextFrames
{
public:
    void see(std::string_view line, FrameIndex& index) override;
    FrameRead read(const FrameText& frame, const std::string& fileName, const ReadOptions& options,
                   ReadReport& report) override;
    bool mayBeEmpty() const override { return true; }
    std::string nothingFound() const override { return "found no atoms, expected DNA"; }

private:
    ModifiedResidues modifiedBefore(std::size_t place) const;
    bool isCut(const FrameText& frame, bool isGrowing) const;

    std::size_t line = 0;      ///< that was seen last, from 1
    std::size_t firstLine = 0; ///< of the last model
    bool isInModel = false;
    bool isEndExpected = false;
    ModifiedResidues modified;                     ///< by all lines that were seen
    std::map<std::string, std::size_t> modifiedAt; ///< the lines that tell of them
};

} // namespace strandview

#endif
