// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/groupFiles.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include <strandview/formats/Source.h>
#include <strandview/formats/Unpacker.h>
#include <strandview/formats/oxdna/files.h>
#include <strandview/formats/text/encoding.h>

namespace strandview {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t BEGINNING = 4096;

struct NamedFile
{
    std::string path;
    bool isTopology = false;
    bool isConfiguration = false;
    bool isTaken = false;      ///< of a topology, by a configuration
    std::string topology = {}; ///< of a configuration
};

std::string endingOf(const std::string& path)
{
    return inSmallLetters(fs::path(withoutPackedEnding(path)).extension().string());
}

fs::path stemOf(const std::string& path)
{
    return fs::path(withoutPackedEnding(path)).replace_extension();
}

/// What `look` finds in a file that can be read again; nothing in any other.
template <typename Look>
auto lookInto(const std::string& path, Look look) -> decltype(look(std::declval<Source&>()))
{
    std::error_code ignored;
    ReadReport report;
    const std::unique_ptr<Source> source =
        fs::is_regular_file(path, ignored) ? Source::open(path, report) : nullptr;
    return source ? look(*source) : std::nullopt;
}

bool isConfiguration(const std::string& path)
{
    const std::optional<bool> told = lookInto(path, [](Source& source) -> std::optional<bool> {
        ReadReport report;
        const auto beginning = source.readBeginning(BEGINNING, {}, report);
        return beginning && isOxdnaConfiguration(*beginning);
    });
    const std::string ending = endingOf(path);
    return told.value_or(ending == ".oxdna" || ending == ".conf" || ending == ".dat");
}

std::optional<std::size_t> nucleotidesIn(const NamedFile& file)
{
    return lookInto(file.path, [&](Source& source) -> std::optional<std::size_t> {
        ReadReport report;
        if (!file.isTopology)
            return countInOxdnaConfiguration(source, {}, report);
        const auto beginning = source.readBeginning(BEGINNING, {}, report);
        return beginning ? countInOxdnaTopology(*beginning) : std::nullopt;
    });
}

using Belong = bool (*)(const NamedFile& configuration, const NamedFile& topology);

/// Gives configurations without a topology the only one that belongs to them of those that no step
/// before has taken.
void assign(std::vector<NamedFile>& files, Belong belong)
{
    std::vector<NamedFile*> left;
    for (NamedFile& file : files)
        if (file.isTopology && !file.isTaken)
            left.push_back(&file);
    for (NamedFile& file : files) {
        if (!file.isConfiguration || !file.topology.empty())
            continue;
        NamedFile* found = nullptr;
        std::size_t count = 0;
        for (NamedFile* const topology : left) {
            if (!belong(file, *topology))
                continue;
            found = topology;
            ++count;
        }
        if (count != 1)
            continue;
        file.topology = found->path;
        found->isTaken = true;
    }
}

} // namespace

std::vector<FileGroup> groupFiles(const std::vector<std::string>& paths)
{
    const auto isTopology = [](const std::string& path) { return endingOf(path) == ".top"; };
    const bool haveTopologies = std::any_of(paths.begin(), paths.end(), isTopology);
    std::vector<NamedFile> files;
    for (const std::string& path : paths)
        files.push_back(
            {path, isTopology(path), haveTopologies && !isTopology(path) && isConfiguration(path)});
    assign(files, [](const NamedFile& configuration, const NamedFile& topology) {
        return stemOf(configuration.path) == stemOf(topology.path);
    });
    const auto isLeft = [](const NamedFile& file) { return file.isTopology && !file.isTaken; };
    if (std::count_if(files.begin(), files.end(), isLeft) == 1)
        assign(files, [](const NamedFile&, const NamedFile&) { return true; });
    else
        assign(files, [](const NamedFile& configuration, const NamedFile& topology) {
            const std::optional<std::size_t> count = nucleotidesIn(configuration);
            return count && count == nucleotidesIn(topology);
        });
    std::vector<FileGroup> groups;
    for (const NamedFile& file : files)
        if (!file.isTaken)
            groups.push_back({file.path, file.topology});
    return groups;
}

} // namespace strandview
