// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <iostream>
#include <iterator>
#include <new>
#include <optional>
#include <string>

#include <SoGeneralScene.h>

#include "Colouring.h"
#include "Legend.h"
#include "MainWindow.h"
#include "Options.h"
#include "PictureWriter.h"
#include "Progress.h"
#include "SceneBuilder.h"
#include "Style.h"
#include "checkDisplay.h"
#include "readers/readFile.h"

namespace {

enum ExitStatus { SUCCESS = 0, CANNOT_WRITE = 1, BAD_INPUT = 2 };

int fail(ExitStatus status, const std::string& message)
{
    std::cerr << "strandview: " << message << "\n";
    return status;
}

// All files together, or nothing after the first one that cannot be read.
std::optional<Configuration> readFiles(const Options& options, ReadReport& report,
                                       Progress& progress)
{
    Configuration all;
    for (const std::string& file : options.files) {
        progress.announce("Reading " + file);
        std::optional<Configuration> read = readFile(file, {options.normalise}, report);
        if (!read)
            return std::nullopt;
        std::move(read->rods.begin(), read->rods.end(), std::back_inserter(all.rods));
    }
    return all;
}

int renderPicture(const Options& options, SoGeneralScene* scene, float bottom, Progress& progress)
{
    progress.announce("Rendering " + *options.picture);
    const std::string failure =
        writePicture(scene, {*options.picture, options.pictureWidth, options.pictureHeight,
                             options.samples, options.background, bottom});
    progress.hide();
    return failure.empty() ? SUCCESS : fail(CANNOT_WRITE, failure);
}

std::string windowTitle(const Options& options)
{
    const std::string& first = options.files.front();
    std::string title = first == "-" ? "standard input" : first;
    if (options.files.size() > 1)
        title += " and " + std::to_string(options.files.size() - 1) + " more";
    return title + " - strandview";
}

int showScene(const Options& options, SoGeneralScene* scene, Progress& progress)
{
    const float bottom = options.colourBy ? LEGEND_HEIGHT : 0;
    scene->ref();
    int status = SUCCESS;
    if (options.picture)
        status = renderPicture(options, scene, bottom, progress);
    else
        showWindow(scene, windowTitle(options), options.background, bottom);
    scene->unref();
    return status;
}

// The scene, or null and a line in report.error.
SoGeneralScene* makeScene(const Options& options, ReadReport& report, Progress& progress)
{
    const std::optional<Configuration> configuration = readFiles(options, report, progress);
    if (!configuration)
        return nullptr;
    std::optional<Colouring> colouring;
    if (options.colourBy) {
        colouring = makeColouring(options, *configuration, report.error);
        if (!colouring)
            return nullptr;
    }
    if (!options.picture)
        initialiseWindows("strandview");
    initialiseScene();
    return buildScene(*configuration, makeStyle(options, *configuration),
                      colouring ? &*colouring : nullptr, progress, report.error);
}

int run(int argc, char** argv)
{
    const ParsedOptions parsed = parseOptions(argc, argv);
    if (!parsed.options)
        return parsed.exitStatus;
    const Options& options = *parsed.options;

    // What can be refused is refused before a long file is read.
    if (options.picture) {
        const std::string refusal = checkPictureName(*options.picture);
        if (!refusal.empty())
            return fail(BAD_INPUT, refusal);
    } else {
        const std::string refusal = checkDisplay();
        if (!refusal.empty())
            return fail(CANNOT_WRITE, refusal);
    }

    Progress progress;
    ReadReport report;
    SoGeneralScene* scene = makeScene(options, report, progress);
    progress.hide();
    if (!scene)
        return fail(BAD_INPUT, report.error);
    // A refusal stays one line: notices are told only when all is well.
    for (const std::string& notice : report.notices)
        std::cerr << "strandview: " << notice << "\n";
    return showScene(options, scene, progress);
}

} // namespace

int main(int argc, char** argv)
{
    try {
        return run(argc, argv);
    } catch (const std::bad_alloc&) {
        return fail(BAD_INPUT, "found too little memory for so many points, rows or pixels");
    }
}
