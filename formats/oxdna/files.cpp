// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/oxdna/files.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <functional>
#include <system_error>
#include <vector>

#include <strandview/formats/IndexedText.h>
#include <strandview/formats/RowScanner.h>
#include <strandview/formats/Source.h>
#include <strandview/formats/Unpacker.h>
#include <strandview/formats/text/encoding.h>
#include <strandview/formats/text/wording.h>

namespace strandview {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t BEGINNING = 4096;
constexpr char TOPOLOGY[] = ".top";
constexpr std::array<const char*, 3> CONFIGURATIONS = {".oxdna", ".conf", ".dat"};
constexpr std::size_t HEADER_LINES = 3;

/// "t = 0" for 't'.
bool isHeaderLine(std::string_view line, char key)
{
    line = trimmed(line);
    return !line.empty() && line[0] == key &&
           trimmed(line.substr(1)).substr(0, 1) == std::string_view("=");
}

/// Counts the rows of the first configuration and reads nothing.
class RowCounter : public TextFrames
{
public:
    void see(std::string_view line, FrameIndex& index) override
    {
        if (isHeaderLine(line, 't'))
            index.begin();
        else if (index.count() == 1 && !trimmed(line).empty())
            ++lines;
    }
    FrameRead read(const FrameText&, const std::string&, const ReadOptions&, ReadReport&) override
    {
        return {};
    }

    std::size_t lines = 0;
};

/// The path of a source without its ending, nor one of compression.
fs::path stemOf(const Source& source)
{
    return fs::path(withoutPackedEnding(source.getPath())).replace_extension();
}

/// The file of that path, or the first that is that one packed; empty if there is none.
std::string packedOrNot(const std::string& path)
{
    std::error_code ignored;
    if (fs::exists(path, ignored))
        return path;
    for (const char* ending : PACKED_ENDINGS)
        if (fs::exists(path + ending, ignored))
            return path + ending;
    return {};
}

/// The files in the folder of a source with one of the endings, packed or not, in the order of
/// their names.
template <std::size_t count>
std::vector<std::string> filesBeside(const Source& source,
                                     const std::array<const char*, count>& endings)
{
    const fs::path folder = fs::path(source.getPath()).parent_path();
    std::vector<std::string> files;
    std::error_code error;
    fs::directory_iterator entry(folder.empty() ? "." : folder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        const fs::path unpacked = withoutPackedEnding(entry->path().string());
        const std::string ending = inSmallLetters(unpacked.extension().string());
        const bool isOne = std::find(endings.begin(), endings.end(), ending) != endings.end();
        std::error_code ignored;
        if (isOne && entry->is_regular_file(ignored))
            files.push_back((folder / entry->path().filename()).string());
    }
    std::sort(files.begin(), files.end());
    return files;
}

/// The only one of the files that has so many nucleotides; empty if none has, or several.
std::string onlyOneOf(const std::vector<std::string>& files, std::size_t nucleotides,
                      const std::function<std::optional<std::size_t>(Source&)>& countIn)
{
    std::string found;
    for (const std::string& file : files) {
        ReadReport ignored;
        const std::unique_ptr<Source> source = Source::open(file, ignored);
        if (!source || countIn(*source) != nucleotides)
            continue;
        if (!found.empty())
            return {};
        found = file;
    }
    return found;
}

std::optional<OxdnaTopology> readTopology(const std::string& path, const ReadOptions& options,
                                          ReadReport& report)
{
    const std::unique_ptr<Source> source = Source::open(path, report);
    const auto text = source ? source->readAll(options, report) : std::nullopt;
    return text ? readOxdnaTopology(*text, source->getName(), options, report) : std::nullopt;
}

} // namespace

bool isOxdnaConfiguration(std::string_view beginning)
{
    if (isUtf16(beginning) || isBinary(beginning))
        return false;
    ReadReport ignored;
    const std::string name;
    RowScanner rows(withoutByteOrderMark(beginning), name, ignored);
    for (const char key : {'t', 'b', 'E'})
        if (!rows.nextRow() || !isHeaderLine(rows.getRestOfLine(), key))
            return false;
    return true;
}

std::optional<std::size_t> countInOxdnaConfiguration(Source& source, const ReadOptions& options,
                                                     ReadReport& report)
{
    RowCounter counter;
    // Two frames: with the second the first one is counted.
    if (!IndexedText(counter).lookFor(2, source, options, report))
        return {};
    return counter.lines < HEADER_LINES ? 0 : counter.lines - (HEADER_LINES - 1);
}

std::optional<OxdnaTopology> findOxdnaTopology(Source& configuration, const ReadOptions& options,
                                               ReadReport& report)
{
    if (!options.topology.empty())
        return readTopology(options.topology, options, report);
    const std::string expected = ", expected the topology of the configuration";
    if (configuration.getPath().empty()) {
        report.error = configuration.getName() + ": found no folder" + expected + " in it";
        return {};
    }
    const std::string sameName = stemOf(configuration).string() + TOPOLOGY;
    if (const std::string there = packedOrNot(sameName); !there.empty())
        return readTopology(there, options, report);
    const auto nucleotides = countInOxdnaConfiguration(configuration, options, report);
    if (!nucleotides)
        return {};
    const std::string found =
        onlyOneOf(filesBeside(configuration, std::array<const char*, 1>{TOPOLOGY}), *nucleotides,
                  [&](Source& source) -> std::optional<std::size_t> {
                      ReadReport none;
                      const auto beginning = source.readBeginning(BEGINNING, options, none);
                      return beginning ? countInOxdnaTopology(*beginning) : std::nullopt;
                  });
    if (!found.empty())
        return readTopology(found, options, report);
    report.error = configuration.getName() + ": found no topology beside it, expected " +
                   inQuotes(fs::path(sameName).filename().string()) + ", or one other of " +
                   counted(*nucleotides, "nucleotide");
    return {};
}

std::unique_ptr<Source> findOxdnaConfiguration(Source& topology, const ReadOptions& options,
                                               ReadReport& report)
{
    const auto beginning = topology.readBeginning(BEGINNING, options, report);
    if (!beginning)
        return nullptr;
    const std::size_t nucleotides = countInOxdnaTopology(*beginning).value_or(0);
    const std::string stem = topology.getPath().empty() ? "" : stemOf(topology).string();
    for (const char* ending : CONFIGURATIONS) {
        const std::string there = stem.empty() ? "" : packedOrNot(stem + ending);
        if (!there.empty())
            return Source::open(there, report);
    }
    const auto countIn = [&](Source& source) -> std::optional<std::size_t> {
        ReadReport none;
        const auto text = source.readBeginning(BEGINNING, options, none);
        return text && isOxdnaConfiguration(*text)
                   ? countInOxdnaConfiguration(source, options, none)
                   : std::nullopt;
    };
    const std::string found =
        stem.empty() ? "" : onlyOneOf(filesBeside(topology, CONFIGURATIONS), nucleotides, countIn);
    if (!found.empty())
        return Source::open(found, report);
    report.error = topology.getName() + ": found a topology and no configuration beside it, " +
                   "expected one of " + counted(nucleotides, "nucleotide");
    return nullptr;
}

} // namespace strandview
