// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/SceneLoader.h"

#include <cmath>
#include <memory>
#include <new>
#include <optional>
#include <utility>

#include <strandview/formats/readFile.h>

#include "scene/Colouring.h"
#include "scene/DataScene.h"
#include "scene/Progress.h"
#include "scene/SceneBuilder.h"
#include "scene/Style.h"
#include "scene/idleOptions.h"

namespace strandview {

namespace {

// "Reading helix.txt (2 of 3): 40 %"
std::string readingText(const std::vector<std::string>& files, std::size_t index, double share)
{
    const std::string& file = files[index];
    std::string text =
        "Reading " + (file == "-" ? "standard input" : file.substr(file.find_last_of('/') + 1));
    if (files.size() > 1)
        text += " (" + std::to_string(index + 1) + " of " + std::to_string(files.size()) + ")";
    const long percent = std::lround(100 * share);
    return percent > 0 ? text + ": " + std::to_string(percent) + " %" : text;
}

// Nothing after the first file that cannot be read.
std::optional<Configuration> readFiles(const std::vector<std::string>& files,
                                       const Options& options, ReadReport& report,
                                       Progress& progress)
{
    Configuration all;
    for (std::size_t i = 0; i < files.size(); ++i) {
        progress.announce(readingText(files, i, 0));
        const auto goOn = [&](double share) {
            progress.show(readingText(files, i, share));
            return !progress.isStopped();
        };
        std::optional<Configuration> read =
            readFile(files[i], {options.normalise, goOn, options.closed}, report);
        if (!read)
            return std::nullopt;
        append(all, std::move(*read));
    }
    return all;
}

// All that buildScene() needs.
struct Prepared
{
    Configuration configuration;
    Style style;
    std::optional<Colouring> colouring;
    SceneGeometry geometry;
};

std::shared_ptr<Prepared> prepare(const std::vector<std::string>& files, const Options& options,
                                  ReadReport& report, Progress& progress)
{
    std::optional<Configuration> configuration = readFiles(files, options, report, progress);
    if (!configuration)
        return nullptr;
    report.error = checkLengths(options, *configuration);
    if (!report.error.empty())
        return nullptr;
    for (const std::string& line : findIdleOptions(options, *configuration))
        report.notices.push_back(line);
    std::optional<Colouring> colouring;
    if (options.colourBy) {
        colouring = makeColouring(options, *configuration, report);
        if (!colouring && !options.colourIfPossible)
            return nullptr;
        if (!colouring)
            report.notices.push_back("not coloured: " + std::exchange(report.error, ""));
    }
    const Style style = makeStyle(options, *configuration);
    SceneGeometry geometry = computeGeometry(*configuration, style, progress, report.error);
    if (!report.error.empty())
        return nullptr;
    return std::make_shared<Prepared>(
        Prepared{std::move(*configuration), style, std::move(colouring), std::move(geometry)});
}

// What `load` gives, or nothing and an error if the memory is too little.
template <typename Load>
auto withinMemory(ReadReport& report, Load load) -> decltype(load())
{
    try {
        return load();
    } catch (const std::bad_alloc&) {
        report.error = "found too little memory for so many points, rows or pixels";
        return nullptr;
    }
}

} // namespace

SceneMaker prepareScene(const std::vector<std::string>& files, const Options& options,
                        ReadReport& report, Progress& progress)
{
    const auto prepared =
        withinMemory(report, [&] { return prepare(files, options, report, progress); });
    if (!prepared)
        return nullptr;
    return [prepared](ReadReport& makeReport, Progress& makeProgress) {
        return withinMemory(makeReport, [&] {
            return buildScene(prepared->configuration, prepared->style,
                              prepared->colouring ? &*prepared->colouring : nullptr,
                              std::move(prepared->geometry), makeProgress, makeReport.error);
        });
    };
}

DataScene* loadScene(const std::vector<std::string>& files, const Options& options,
                     ReadReport& report)
{
    TerminalProgress progress;
    const SceneMaker make = prepareScene(files, options, report, progress);
    return make ? make(report, progress) : nullptr;
}

} // namespace strandview
