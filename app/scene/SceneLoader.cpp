// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/SceneLoader.h"

#include <memory>
#include <new>
#include <optional>
#include <utility>

#include "scene/Colouring.h"
#include "scene/DataScene.h"
#include "scene/Progress.h"
#include "scene/SceneBuilder.h"
#include "scene/Style.h"
#include "scene/idleOptions.h"
#include "scene/readFiles.h"

namespace strandview {

namespace {

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
