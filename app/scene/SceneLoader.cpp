// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/SceneLoader.h"

#include <memory>
#include <new>
#include <optional>
#include <utility>

#include "request/limits.h"
#include "scene/DataScene.h"
#include "scene/Progress.h"
#include "scene/SceneBuilder.h"
#include "scene/clipping.h"
#include "scene/prepareLook.h"
#include "scene/readFiles.h"

namespace strandview {

namespace {

// All that buildScene() needs.
struct Prepared
{
    Configuration configuration;
    PreparedLook look;
};

std::shared_ptr<Prepared> prepare(std::optional<Configuration> configuration,
                                  const Options& options, ReadReport& report, Progress& progress)
{
    if (!configuration)
        return nullptr;
    std::optional<PreparedLook> look = prepareLook(options, *configuration, report, progress);
    if (!look)
        return nullptr;
    return std::make_shared<Prepared>(Prepared{std::move(*configuration), std::move(*look)});
}

// What `load` gives, or nothing and an error if the memory is too little.
template <typename Load>
auto withinMemory(ReadReport& report, Load load) -> decltype(load())
{
    try {
        return load();
    } catch (const std::bad_alloc&) {
        report.error = TOO_LITTLE_MEMORY_FOR_DATA;
        return nullptr;
    }
}

// Makes the nodes of what was prepared, if anything was; the scene keeps the data.
SceneMaker makerOf(const std::shared_ptr<Prepared>& prepared, const Options& options)
{
    if (!prepared)
        return nullptr;
    return [prepared, options](ReadReport& report, Progress& progress) {
        return withinMemory(report, [&] {
            const auto data =
                std::make_shared<const Configuration>(std::move(prepared->configuration));
            PreparedLook& look = prepared->look;
            DataScene* const scene =
                buildScene(*data, look.style, look.colouring ? &*look.colouring : nullptr,
                           std::move(look.geometry), progress, report.error);
            if (!scene)
                return scene;
            scene->setData(data);
            const std::string idle = findIdleClip(options, scene->getBox(), scene->getPlacement());
            if (!idle.empty() && report.frames <= 1) // the plane may cut those to come
                report.notices.push_back(idle);
            return scene;
        });
    };
}

} // namespace

SceneMaker prepareScene(const std::vector<std::string>& files, const Options& options,
                        ReadReport& report, Progress& progress, Opening opening)
{
    return makerOf(withinMemory(report,
                                [&] {
                                    return prepare(
                                        readFiles(files, options, report, progress, opening),
                                        options, report, progress);
                                }),
                   options);
}

DataScene* makeScene(Configuration configuration, const Options& options, ReadReport& report,
                     Progress& progress)
{
    const SceneMaker make = makerOf(
        withinMemory(report,
                     [&] { return prepare(std::move(configuration), options, report, progress); }),
        options);
    DataScene* const scene = make ? make(report, progress) : nullptr;
    if (scene && options.measurements.empty()) // nobody asks for numbers
        scene->setData(nullptr);
    return scene;
}

DataScene* loadScene(const std::vector<std::string>& files, const Options& options,
                     ReadReport& report)
{
    TerminalProgress progress;
    const SceneMaker make = prepareScene(files, options, report, progress);
    return make ? make(report, progress) : nullptr;
}

} // namespace strandview
