// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/formats.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>

#include <strandview/formats/FibreReader.h>
#include <strandview/formats/JsonSeries.h>
#include <strandview/formats/PairFrameReader.h>
#include <strandview/formats/Source.h>
#include <strandview/formats/StepParameterReader.h>
#include <strandview/formats/TableReader.h>
#include <strandview/formats/Unpacker.h>
#include <strandview/formats/VectReader.h>
#include <strandview/formats/XyzReader.h>
#include <strandview/formats/numpy/NumpyReader.h>
#include <strandview/formats/oxdna/OxdnaReader.h>
#include <strandview/formats/structures/StructureReader.h>
#include <strandview/formats/text/encoding.h>
#include <strandview/formats/wholeText.h>

namespace strandview {

namespace {

constexpr std::size_t BEGINNING_TO_KNOW_BY = 64 * 1024;

template <auto readText>
std::optional<Configuration> readWhole(Source& source, const ReadOptions& options,
                                       ReadReport& report)
{
    const auto text = readWholeText(source, options, report);
    return text ? readText(*text, source.getName(), options, report) : std::nullopt;
}

bool isText(std::string_view beginning) { return !isUtf16(beginning) && !isBinary(beginning); }

Likeness likenessToTable(std::string_view beginning)
{
    return isText(beginning) ? Likeness::POSSIBLE : Likeness::NONE;
}

Likeness likenessToJson(std::string_view beginning)
{
    const std::string_view text = withoutByteOrderMark(beginning);
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    const bool isJson = isText(beginning) && first != std::string_view::npos && text[first] == '{';
    return isJson ? Likeness::POSSIBLE : Likeness::NONE;
}

} // namespace

const std::vector<Format>& formats()
{
    static const std::vector<Format> all = {
        {"Tables",
         "a table",
         {".txt", ".dat", ".csv", ".tsv", ".xyz", ".raw"},
         likenessToTable,
         readTable,
         openTable},
        {"JSON", "JSON", {".json"}, likenessToJson, readJson, openJson},
        {"PDB and mmCIF",
         "a structure",
         {".pdb", ".ent", ".cif", ".mmcif"},
         likenessToStructure,
         readStructure,
         openStructures},
        {"Step parameters",
         "step parameters",
         {".par"},
         likenessToStepParameters,
         readWhole<readStepParameters>,
         nullptr},
        {"Pair frames",
         "pair frames",
         {".bplist"},
         likenessToPairFrames,
         readWhole<readPairFrames>,
         nullptr},
        {"oxDNA",
         "an oxDNA configuration",
         {".oxdna", ".conf", ".dat", ".top"},
         likenessToOxdna,
         readOxdna,
         openOxdna},
        {"NumPy", "arrays of NumPy", {".npy", ".npz"}, likenessToNumpy, readNumpy, openNumpySeries},
        {"Fibre reports", "a fibre report", {".txt"}, likenessToFibres, readFibres, openFibres},
        {"Multi-frame XYZ", "a list of atoms", {".xyz"}, likenessToXyz, readXyz, openXyz},
        {"Geomview", "VECT", {".vect"}, likenessToVect, readWhole<readVect>, nullptr},
    };
    return all;
}

const Format* formatOfEnding(const std::string& path)
{
    const std::string ending =
        inSmallLetters(std::filesystem::path(withoutPackedEnding(path)).extension().string());
    for (const Format& format : formats())
        if (std::find(format.endings.begin(), format.endings.end(), ending) != format.endings.end())
            return &format;
    return nullptr;
}

const Format* formatOfContent(std::string_view beginning, Likeness atLeast)
{
    const Format* likeliest = nullptr;
    Likeness likeness = atLeast;
    for (const Format& format : formats()) {
        const Likeness ofThis = format.recognises(beginning);
        if (ofThis != Likeness::NONE && ofThis >= likeness) {
            likeliest = &format;
            likeness = ofThis;
        }
    }
    return likeliest;
}

const Format* formatOf(Source& source, const ReadOptions& options, ReadReport& report)
{
    const std::optional<std::string_view> beginning =
        source.readBeginning(BEGINNING_TO_KNOW_BY, options, report);
    if (!beginning)
        return nullptr;
    const Format* format = formatOfContent(*beginning, Likeness::CERTAIN);
    if (!format)
        format = formatOfEnding(source.getPath());
    if (!format)
        format = formatOfContent(*beginning);
    if (!format)
        report.error = source.getName() + ": " +
                       (isUtf16(*beginning) ? FOUND_UTF16
                                            : "found binary data, expected " + expectedFormats());
    else if (options.frameRows > 0 && format->read != readTable)
        report.notices.push_back(source.getName() + ": --frame-rows has no effect: found " +
                                 format->expected + ", expected a table");
    return format;
}

std::string expectedFormats()
{
    const std::vector<Format>& all = formats();
    std::string text = all.front().expected;
    for (std::size_t i = 1; i < all.size(); ++i)
        text += (i + 1 == all.size() ? " or " : ", ") + all[i].expected;
    return text;
}

std::string endingsOf(const Format& format, const std::string& before)
{
    std::string text;
    for (const std::string& ending : format.endings)
        text += (text.empty() ? "" : " ") + before + ending;
    return text;
}

} // namespace strandview
