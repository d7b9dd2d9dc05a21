// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/structures/StructureReader.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include <strandview/formats/IndexedSeries.h>
#include <strandview/formats/Source.h>
#include <strandview/formats/structures/CifIndex.h>
#include <strandview/formats/structures/PdbFrames.h>
#include <strandview/formats/structures/cifText.h>
#include <strandview/formats/text/encoding.h>
#include <strandview/formats/text/fields.h>
#include <strandview/formats/text/numbers.h>

namespace strandview {

namespace {

/// How many lines with something on them are looked at.
constexpr std::size_t LINES_TO_KNOW_BY = 8;

std::vector<std::string_view> firstLines(std::string_view text)
{
    std::vector<std::string_view> lines;
    while (!text.empty() && lines.size() < LINES_TO_KNOW_BY) {
        const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
        if (!trimmed(text.substr(0, end)).empty())
            lines.push_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

/// Whether the first words are the heading of a data block, and what may follow it.
bool isMmcif(std::string_view beginning)
{
    bool isInBlock = false;
    for (const std::string_view line : firstLines(beginning)) {
        std::size_t place = 0;
        for (CifKind kind; (kind = nextCifWord(line, place).kind) != CifKind::END;) {
            if (kind == CifKind::COMMENT)
                continue;
            if (isInBlock)
                return kind == CifKind::TAG || kind == CifKind::LOOP;
            if (kind != CifKind::DATA)
                return false;
            isInBlock = true;
        }
    }
    return isInBlock;
}

bool isLineOfPdb(std::string_view line)
{
    static const std::string_view records[] = {
        "ANISOU", "ATOM",   "AUTHOR", "CAVEAT", "CISPEP", "COMPND", "CRYST1", "DBREF",
        "DBREF1", "DBREF2", "END",    "ENDMDL", "EXPDTA", "FORMUL", "HEADER", "HELIX",
        "HET",    "HETATM", "HETNAM", "HETSYN", "JRNL",   "KEYWDS", "LINK",   "MASTER",
        "MDLTYP", "MODEL",  "MODRES", "NUMMDL", "OBSLTE", "ORIGX1", "ORIGX2", "ORIGX3",
        "REMARK", "REVDAT", "SCALE1", "SCALE2", "SCALE3", "SEQADV", "SEQRES", "SHEET",
        "SITE",   "SOURCE", "SPLIT",  "SPRSDE", "SSBOND", "TER",    "TITLE"};
    const std::string_view record = trimmed(line.substr(0, 6));
    const char next = line.size() > 6 ? line[6] : ' '; // or the first digit of a long number
    if (std::find(std::begin(records), std::end(records), record) == std::end(records) ||
        !(next == ' ' || (next >= '0' && next <= '9')))
        return false;
    if (record != "ATOM" && record != "HETATM")
        return true;
    constexpr std::size_t coordinates[] = {30, 38, 46};
    return line.size() >= 54 &&
           std::all_of(std::begin(coordinates), std::end(coordinates), [line](std::size_t first) {
               return isNumber(trimmed(line.substr(first, 8)));
           });
}

bool isPdb(std::string_view beginning)
{
    std::vector<std::string_view> lines = firstLines(beginning);
    return !lines.empty() && std::all_of(lines.begin(), lines.end(), isLineOfPdb);
}

/// Nothing and report.error if that is no text.
std::optional<bool> isMmcif(Source& source, const ReadOptions& options, ReadReport& report)
{
    constexpr std::size_t enough = 64 * 1024;
    const auto beginning = source.readBeginning(enough, options, report);
    if (!beginning)
        return {};
    if (isUtf16(*beginning) || isBinary(*beginning)) {
        report.error =
            source.getName() + ": " +
            (isUtf16(*beginning) ? FOUND_UTF16 : "found binary data, expected a structure");
        return {};
    }
    return isMmcif(withoutByteOrderMark(*beginning));
}

} // namespace

Likeness likenessToStructure(std::string_view beginning)
{
    if (isUtf16(beginning) || isBinary(beginning))
        return Likeness::NONE;
    const std::string_view text = withoutByteOrderMark(beginning);
    return isMmcif(text) || isPdb(text) ? Likeness::CERTAIN : Likeness::NONE;
}

std::optional<Configuration> readStructure(Source& source, const ReadOptions& options,
                                           ReadReport& report)
{
    const std::optional<bool> isOfWords = isMmcif(source, options, report);
    if (!isOfWords)
        return {};
    PdbFrames frames;
    return *isOfWords ? CifIndex::readFirst(source, options, report)
                      : IndexedSeries::readFirst(source, frames, options, report);
}

std::unique_ptr<Series> openStructures(std::unique_ptr<Source> source, const ReadOptions& options,
                                       ReadReport& report)
{
    const std::optional<bool> isOfWords = isMmcif(*source, options, report);
    if (!isOfWords)
        return nullptr;
    auto series = *isOfWords ? IndexedSeries::open(std::move(source), std::make_unique<CifIndex>(),
                                                   options, report)
                             : IndexedSeries::open(std::move(source), std::make_unique<PdbFrames>(),
                                                   options, report);
    return IndexedSeries::inMemoryIfAlone(std::move(series), options, report);
}

} // namespace strandview
