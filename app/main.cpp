// SPDX-License-Identifier: GPL-3.0-or-later
#include <csignal>
#include <filesystem>
#include <limits>
#include <new>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include <strandview/formats/text/wording.h>

#include "command/parseOptions.h"
#include "info/Findings.h"
#include "info/ScalarList.h"
#include "output/OutputFile.h"
#include "output/exportFiles.h"
#include "output/saveDefaults.h"
#include "pictures/PictureWriter.h"
#include "pictures/describePicture.h"
#include "pictures/largeHeapPages.h"
#include "plotting/plotFiles.h"
#include "rendering/Film.h"
#include "rendering/renderSeries.h"
#include "request/ExitStatus.h"
#include "request/PictureName.h"
#include "request/defaults.h"
#include "request/limits.h"
#include "request/print.h"
#include "request/settings.h"
#include "request/writeCommand.h"
#include "scene/DataScene.h"
#include "scene/MeasuredLine.h"
#include "scene/Progress.h"
#include "scene/SceneBuilder.h"
#include "scene/SceneLoader.h"
#include "scene/idleOptions.h"
#include "scene/measure.h"
#include "scene/readFiles.h"
#include "session/fingerprint.h"
#include "window/checkDisplay.h"
#include "window/runWindow.h"

namespace strandview {

namespace {

int fail(ExitStatus status, const std::string& message)
{
    tell(message);
    return status;
}

// A refusal stays one line: notices are told only when all is well.
void tellAll(const std::vector<std::string>& notices)
{
    for (const std::string& notice : notices)
        tell(notice);
}

int renderPicture(const Options& options, DataScene* scene)
{
    TerminalProgress progress;
    progress.announce("Rendering " + *options.picture);
    CameraNumbers camera;
    Picture picture{*options.picture,
                    options.pictureWidth,
                    options.pictureHeight,
                    options.samples,
                    options.background,
                    options.transparent,
                    scene->settle(options.camera),
                    scene->getLegendRoom(),
                    options.dpi.value_or(DPI_OF_PIXELS)};
    picture.title = titleOf(options.files);
    picture.command = [&options](const CameraNumbers& used) {
        return writeCommandToKeep(options, {options.files, {}, used, options.getPictureSize()});
    };
    const std::string failure = writePicture(scene, picture, &camera);
    progress.hide();
    if (!failure.empty())
        return fail(CANNOT_WRITE, failure);
    const std::string unprinted = options.printCamera ? print(formatCamera(camera) + "\n") : "";
    return unprinted.empty() ? SUCCESS : fail(CANNOT_WRITE, unprinted);
}

// Of a series that can be read again it is the picture of the first frame, as among all of them.
int renderStill(const Options& options)
{
    ReadReport report;
    TerminalProgress progress;
    std::optional<Configuration> data = readFiles(options.files, options, report, progress);
    if (data && report.frames > 1 && !findReadOnce(options.files))
        return renderSeries(options);
    // The end of the process gives its memory back at once, a long DNA's nodes one by one: a
    // seventh of the time.
    static DataScene* scene = nullptr;
    if (data)
        scene = makeScene(std::move(*data), options, report, progress);
    progress.hide();
    if (!scene)
        return fail(BAD_INPUT, report.error);
    tellAll(report.notices);
    scene->ref();
    if (scene->getData())
        scene->setMeasured(makeMeasured(options.measurements, *scene->getData(), *scene));
    return renderPicture(options, scene);
}

// What says which data are told, and how.
const std::set<std::string> OF_INFO{"--info",     "--json",      "--all-numbers", "--frame",
                                    "--closed",   "--normalise", "--pairs",       "--frame-rows",
                                    "--dna-unit", "--measure"};

std::vector<std::string> idleOptionsOf(const Options& options)
{
    std::set<std::string> meant = OF_INFO;
    if (options.listScalars) {
        meant.insert({"--list-scalars", "--compare"});
        meant.erase("--measure");
    }
    return findIdleOptions(options, meant,
                           options.listScalars ? "--list-scalars tells the scalars alone"
                                               : "--info tells what is in the files alone");
}

// Whether it was a picture that was asked about.
bool tellPicture(const Options& options, int& status)
{
    if (options.files.size() != 1 || !options.info)
        return false;
    const std::optional<std::string> told =
        (options.asJson ? pictureToJson : describePicture)(options.files.front());
    if (!told)
        return false;
    const std::string untold = print(*told);
    status = untold.empty() ? SUCCESS : fail(CANNOT_WRITE, untold);
    return true;
}

std::vector<Findings::Measured> measureAll(const Options& options, const Configuration& data)
{
    std::vector<Findings::Measured> all;
    for (const Measurement& measurement : options.measurements) {
        const auto value = measure(measurement, data, options.dna.angstrom);
        all.push_back({measurement, value ? std::optional(value->value) : std::nullopt,
                       unitOf(measurement.kind, data), value ? readable(*value) : "not here"});
    }
    return all;
}

int tellFindings(const Options& options)
{
    int status = SUCCESS;
    if (tellPicture(options, status))
        return status;
    ReadReport report;
    Progress silent;
    std::optional<Comparison> comparison;
    if (options.listScalars && options.compare &&
        !readReference(options, report, silent, comparison.emplace().reference))
        return fail(BAD_INPUT, report.error);
    std::optional<Findings> findings = findIn(options.files, std::size_t(options.frame.value_or(0)),
                                              readOptionsOf(options, {}), report, comparison);
    if (!findings)
        return fail(BAD_INPUT, report.error);
    findings->measured = measureAll(options, findings->data);
    const auto tell = options.listScalars ? (options.asJson ? scalarsToJson : describeScalars)
                                          : (options.asJson ? toJson : describe);
    const double most =
        options.allNumbers ? std::numeric_limits<double>::infinity() : MOST_EDGE_PAIRS;
    const std::string untold = print(tell(*findings, options.dna.angstrom, most));
    if (!untold.empty())
        return fail(CANNOT_WRITE, untold);
    tellAll(idleOptionsOf(options));
    return SUCCESS;
}

int exportData(const Options& options)
{
    ReadReport report;
    const std::string failure = exportFiles(options, report);
    if (!report.error.empty())
        return fail(BAD_INPUT, report.error);
    if (!failure.empty())
        return fail(CANNOT_WRITE, failure);
    tellAll(report.notices);
    return SUCCESS;
}

int plotData(const Options& options)
{
    ReadReport report;
    bool isWhole = true;
    const std::string failure = plotFiles(options, report, isWhole);
    if (!report.error.empty())
        return fail(BAD_INPUT, report.error);
    if (!failure.empty())
        return fail(CANNOT_WRITE, failure);
    tellAll(report.notices);
    return isWhole ? SUCCESS : CANNOT_WRITE;
}

int showWindow(const Options& options)
{
    const auto load = [](const std::vector<std::string>& files, const Options& asked,
                         ReadReport& report, Progress& progress) {
        return prepareScene(files, asked, report, progress,
                            findReadOnce(files) ? Opening::WHOLE : Opening::AT_ONCE);
    };
    const auto open = [](const std::vector<std::string>& files, const Options& asked,
                         ReadReport& report, Progress& progress) {
        return moveFrames(openFiles(files, asked, report, progress, Opening::AT_ONCE).series,
                          asked);
    };
    ReadReport report;
    const std::string failure = runWindow(options, load, report, open, optionsOfSession);
    if (!report.error.empty())
        return fail(BAD_INPUT, report.error);
    return failure.empty() ? SUCCESS : fail(CANNOT_WRITE, failure);
}

// One line if pictures of this name, or of these, are none that can be written.
std::string checkPicture(const std::string& name, bool transparent)
{
    if (PictureName(name).countNumbers() > 1)
        return "--render: found " + inQuotes(name) + ", expected one place for the frame's number";
    if (isFilm(name) && transparent)
        return "--render: found " + inQuotes(name) + ", expected a picture with --transparent";
    if (!isFilm(name))
        return checkPictureName("--render", name, transparent);
    return PictureName(name).countNumbers() == 0
               ? ""
               : "--render: found " + inQuotes(name) + ", expected one film of all frames";
}

bool opensWindow(const Options& options)
{
    return !options.picture && !options.exportFile && !options.plot.file && !options.info &&
           !options.listScalars && !options.series.listFrames;
}

// What can be refused before a long file is read.
int checkOutput(const Options& options)
{
    std::string refusal;
    if (options.picture)
        refusal = checkPicture(*options.picture, options.transparent);
    else if (options.exportFile)
        refusal = checkExportName(*options.exportFile);
    else if (options.plot.file)
        refusal = checkPlotName("--plot", *options.plot.file);
    else if (options.windowPicture)
        refusal = checkPictureName("--screenshot-after", *options.windowPicture, false);
    if (!refusal.empty())
        return fail(BAD_INPUT, refusal);
    const std::optional<std::string>& output = options.picture      ? options.picture
                                               : options.exportFile ? options.exportFile
                                               : options.plot.file  ? options.plot.file
                                                                    : options.windowPicture;
    if (output)
        refusal = checkWritable(options.picture ? PictureName(*output).of(0) : *output);
    if (refusal.empty() && opensWindow(options))
        refusal = checkDisplay();
    return refusal.empty() ? SUCCESS : fail(CANNOT_WRITE, refusal);
}

int keepLook(const Options& options)
{
    const std::string file = usualDefaultsFile();
    StyleRequest kept = options;
    if (kept.compare && *kept.compare != BesideRequest::FIRST_FRAME)
        kept.compare = std::filesystem::absolute(*kept.compare).lexically_normal().string();
    const std::string failure = saveDefaults(kept, file);
    if (!failure.empty())
        return fail(CANNOT_WRITE, failure);
    std::set<std::string> meant{"--save-defaults"};
    for (const Setting& setting : settings())
        meant.insert("--" + std::string(setting.name));
    tellAll(findIdleOptions(options, meant, "--save-defaults keeps the look alone"));
    const std::string unprinted = print("wrote " + file + "\n");
    return unprinted.empty() ? SUCCESS : fail(CANNOT_WRITE, unprinted);
}

int perform(const Options& options)
{
    if (options.saveDefaults)
        return keepLook(options);
    if (options.info || options.listScalars)
        return tellFindings(options);
    if (options.series.listFrames)
        return renderSeries(options);
    const int refused = checkOutput(options);
    if (refused)
        return refused;
    if (options.exportFile)
        return exportData(options);
    if (options.plot.file)
        return plotData(options);
    if (options.picture)
        useLargeHeapPages();
    else
        initialiseWindows("strandview");
    initialiseScene();
    if (!options.picture)
        return showWindow(options);

    if (asksForSeries(options))
        return renderSeries(options);
    Options still = options;
    if (options.session && options.session->frame && !options.frame)
        still.frame = int(*options.session->frame);
    return renderStill(still);
}

int run(int argc, char** argv)
{
    const ParsedOptions parsed = parseOptions(argc, argv, usualDefaultsFile());
    if (!parsed.options)
        return parsed.exitStatus;
    const int status = perform(*parsed.options);
    // A window tells it itself.
    if (status == SUCCESS && parsed.options->session && !opensWindow(*parsed.options))
        tellAll(findChanged(parsed.options->session->files, {}));
    return status;
}

} // namespace

int runProgram(int argc, char** argv)
{
    try {
        return run(argc, argv);
    } catch (const std::bad_alloc&) {
        return fail(BAD_INPUT, TOO_LITTLE_MEMORY_FOR_DATA);
    }
}

} // namespace strandview

int main(int argc, char** argv)
{
    // So that a file larger than is allowed is told as any other that cannot be written.
    std::signal(SIGXFSZ, SIG_IGN);
    return strandview::runProgram(argc, argv);
}
