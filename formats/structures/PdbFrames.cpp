// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/structures/PdbFrames.h>

#include <optional>
#include <utility>

#include <strandview/formats/structures/nucleicAcid.h>
#include <strandview/formats/structures/readAtoms.h>

namespace strandview {

void PdbFrames::see(std::string_view text, FrameIndex& index)
{
    ++line;
    switch (pdbRecordOf(text)) {
    case PdbRecord::ATOM:
        if (!isInModel) {
            index.begin();
            firstLine = line;
        }
        isInModel = true;
        break;
    case PdbRecord::MODEL:
        isEndExpected = !isInModel && (isEndExpected || index.count() == 0);
        isInModel = false;
        break;
    case PdbRecord::END:
        isEndExpected = isEndExpected || isInModel;
        isInModel = false;
        break;
    case PdbRecord::MODRES:
        if (const auto residue = addModified(text, modified))
            modifiedAt.emplace(*residue, line);
        break;
    case PdbRecord::TER:
    case PdbRecord::OTHER:
        break;
    }
}

/// As it is for who reads the file from its beginning.
ModifiedResidues PdbFrames::modifiedBefore(std::size_t place) const
{
    ModifiedResidues before;
    for (const auto& [residue, at] : modifiedAt)
        if (at < place)
            before.emplace(residue, modified.at(residue));
    return before;
}

bool PdbFrames::isCut(const FrameText& frame, bool isGrowing) const
{
    return isInModel && frame.line == firstLine && (isEndExpected || isGrowing);
}

FrameRead PdbFrames::read(const FrameText& frame, const std::string& fileName,
                          const ReadOptions& options, ReadReport& report)
{
    if (isCut(frame, options.growing)) {
        report.error = fileName + ":" + std::to_string(line) +
                       ": found the end of the file within a model, expected ENDMDL or END";
        return {{}, true};
    }
    StructureModel model;
    const auto take = [&model](StructureModel read) {
        model = std::move(read);
        return false;
    };
    const PdbPart part{frame.text, frame.line, modifiedBefore(frame.line)};
    if (!readPdbPart(part, fileName, options, take, report))
        return {};
    return makeFrame(std::move(model), fileName, frame.number, options, report);
}

} // namespace strandview
