// SPDX-License-Identifier: GPL-3.0-or-later
#include "SceneLoader.h"

#include <iterator>
#include <new>
#include <optional>
#include <utility>

#include "Colouring.h"
#include "DataScene.h"
#include "Progress.h"
#include "SceneBuilder.h"
#include "Style.h"
#include "readers/readFile.h"

namespace {

template <typename Item>
void append(std::vector<Item>& all, std::vector<Item>& more)
{
    std::move(more.begin(), more.end(), std::back_inserter(all));
}

// Nothing after the first file that cannot be read.
std::optional<Configuration> readFiles(const std::vector<std::string>& files, bool normalise,
                                       ReadReport& report, Progress& progress)
{
    Configuration all;
    for (const std::string& file : files) {
        progress.announce("Reading " + file);
        std::optional<Configuration> read = readFile(file, {normalise}, report);
        if (!read)
            return std::nullopt;
        append(all.rods, read->rods);
        append(all.birods, read->birods);
        append(all.dnas, read->dnas);
        append(all.markers, read->markers);
        append(all.frames, read->frames);
        append(all.arrows, read->arrows);
    }
    return all;
}

DataScene* load(const std::vector<std::string>& files, const Options& options, ReadReport& report)
{
    Progress progress;
    const std::optional<Configuration> configuration =
        readFiles(files, options.normalise, report, progress);
    if (!configuration)
        return nullptr;
    for (std::string& line : unusedColours(options, *configuration))
        report.notices.push_back(std::move(line));
    std::optional<Colouring> colouring;
    if (options.colourBy) {
        colouring = makeColouring(options, *configuration, report);
        if (!colouring && !options.colourIfPossible)
            return nullptr;
        if (!colouring)
            report.notices.push_back("not coloured: " + std::exchange(report.error, ""));
    }
    return buildScene(*configuration, makeStyle(options, *configuration),
                      colouring ? &*colouring : nullptr, progress, report.error);
}

} // namespace

DataScene* loadScene(const std::vector<std::string>& files, const Options& options,
                     ReadReport& report)
{
    try {
        return load(files, options, report);
    } catch (const std::bad_alloc&) {
        report.error = "found too little memory for so many points, rows or pixels";
        return nullptr;
    }
}
