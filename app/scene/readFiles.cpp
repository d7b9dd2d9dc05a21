// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/readFiles.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <memory>
#include <system_error>
#include <utility>

#include <strandview/analysis/comparison.h>
#include <strandview/analysis/interpolate.h>
#include <strandview/analysis/superpose.h>
#include <strandview/formats/groupFiles.h>
#include <strandview/formats/openSeries.h>
#include <strandview/formats/readFile.h>
#include <strandview/formats/seriesFiles.h>
#include <strandview/formats/text/wording.h>
#include <strandview/model/JointSeries.h>

#include "scene/Progress.h"

namespace strandview {

namespace {

std::string nameOf(const std::string& file) { return file == "-" ? "standard input" : file; }

// "Reading helix.txt (2 of 3): 40 %"
std::string readingText(const std::vector<FileGroup>& files, std::size_t index, double share)
{
    const std::string file = nameOf(files[index].path);
    std::string text = "Reading " + file.substr(file.find_last_of('/') + 1);
    if (files.size() > 1)
        text += " (" + std::to_string(index + 1) + " of " + std::to_string(files.size()) + ")";
    const long percent = std::lround(100 * share);
    return percent > 0 ? text + ": " + std::to_string(percent) + " %" : text;
}

// What one file is read with, and what is said meanwhile.
ReadOptions readingOptions(const std::vector<FileGroup>& groups, std::size_t index,
                           const Options& options, Progress& progress, Opening opening)
{
    ReadOptions asked = readOptionsOf(options, [&, index](double share) {
        progress.show(readingText(groups, index, share));
        return !progress.isStopped();
    });
    asked.topology = groups[index].topology;
    asked.atOnce = opening == Opening::AT_ONCE;
    asked.growing = options.series.follow && asked.atOnce;
    return asked;
}

// Tells of series that have more frames than are shown.
void noteLonger(const std::vector<FileGroup>& groups, const std::vector<std::size_t>& counts,
                std::size_t count, ReadReport& report)
{
    for (std::size_t i = 0; i < groups.size(); ++i) {
        if (counts[i] > count && counts[i] > 1)
            report.notices.push_back(onOneLine(nameOf(groups[i].path)) + ": the first " +
                                     std::to_string(count) + " of " + std::to_string(counts[i]) +
                                     " frames, as many as another file has");
    }
}

// Each file beside the others.
OpenedFiles openBeside(const std::vector<std::string>& files, const Options& options,
                       ReadReport& report, Progress& progress, Opening opening)
{
    const std::vector<FileGroup> groups = groupFiles(files);
    std::vector<std::unique_ptr<Series>> parts;
    std::vector<std::size_t> counts;
    for (std::size_t i = 0; i < groups.size(); ++i) {
        progress.announce(readingText(groups, i, 0));
        parts.push_back(openSeries({groups[i].path},
                                   readingOptions(groups, i, options, progress, opening), report));
        if (!parts.back())
            return {};
        counts.push_back(parts.back()->count());
    }
    if (parts.size() == 1)
        return {std::move(parts.front()), groups.front().path};
    auto joint = std::make_unique<JointSeries>(std::move(parts));
    const std::size_t count = joint->count();
    if (opening == Opening::WHOLE)
        noteLonger(groups, counts, count, report);
    const auto shortest = std::find(counts.begin(), counts.end(), count) - counts.begin();
    return {std::move(joint), count == 1 ? "" : groups[std::size_t(shortest)].path};
}

const char* const OF_SERIES = "first";

// The same series, compared where that is asked for.
OpenedFiles compared(OpenedFiles opened, const Options& options, ReadReport& report,
                     Progress& progress)
{
    std::optional<Configuration> reference;
    if (!opened.series || !options.compare)
        return opened;
    if (!readReference(options, report, progress, reference))
        return {};
    opened.series =
        std::make_unique<ComparedSeries>(std::move(opened.series), std::move(reference));
    return opened;
}

// The first frame of each file is compared.
bool compare(Configuration& all, const Options& options, ReadReport& report, Progress& progress)
{
    std::optional<Configuration> reference;
    if (!options.compare)
        return true;
    if (!readReference(options, report, progress, reference))
        return false;
    all.reference = std::make_shared<const Configuration>(reference ? std::move(*reference) : all);
    const std::string notice = addComparison(all, *all.reference);
    if (!notice.empty())
        report.notices.push_back(notice);
    return true;
}

// The frame that is asked for.
std::optional<Configuration> readFrame(const std::vector<std::string>& files,
                                       const Options& options, ReadReport& report,
                                       Progress& progress, Opening opening)
{
    const std::size_t toldBefore = report.notices.size();
    const OpenedFiles opened = openFiles(files, options, report, progress);
    if (!opened.series)
        return {};
    // Of frames that are not whole yet the series that follows them tells.
    if (options.series.follow && opening == Opening::AT_ONCE)
        report.notices.resize(toldBefore);
    const std::optional<std::size_t> frame = shownFrame(opened, options, report);
    if (!frame)
        return {};
    LoadedFrame loaded =
        opened.series->load(*frame, [&progress](double) { return !progress.isStopped(); });
    report.error = loaded.error;
    report.frames = opened.series->count();
    std::move(loaded.notices.begin(), loaded.notices.end(), std::back_inserter(report.notices));
    return std::move(loaded.configuration);
}

} // namespace

std::optional<std::string> findReadOnce(const std::vector<std::string>& files)
{
    const auto found = std::find_if(files.begin(), files.end(), [](const std::string& file) {
        std::error_code unknown;
        const std::filesystem::file_status status = std::filesystem::status(file, unknown);
        return file == "-" ||
               (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status) &&
                !std::filesystem::is_directory(status));
    });
    return found == files.end() ? std::nullopt : std::optional(*found);
}

ReadOptions readOptionsOf(const Options& options, std::function<bool(double share)> goOn)
{
    ReadOptions asked = {options.normalise, std::move(goOn), options.closed};
    asked.frameRows = std::size_t(options.frameRows);
    asked.ownPairs = options.series.ownPairs;
    return asked;
}

bool readReference(const Options& options, ReadReport& report, Progress& progress,
                   std::optional<Configuration>& reference)
{
    if (!options.compare || *options.compare == OF_SERIES)
        return true;
    ReadReport ofReference;
    const auto goOn = [&progress](double) { return !progress.isStopped(); };
    reference = readFile(*options.compare, readOptionsOf(options, goOn), ofReference);
    report.error = ofReference.error;
    return reference.has_value();
}

OpenedFiles openFiles(const std::vector<std::string>& files, const Options& options,
                      ReadReport& report, Progress& progress, Opening opening)
{
    if (!options.series.isOfFiles)
        return compared(openBeside(files, options, report, progress, opening), options, report,
                        progress);
    const std::vector<std::string> frames = seriesFiles(files, report);
    if (frames.empty())
        return {};
    const auto goOn = [&progress](double) { return !progress.isStopped(); };
    return compared({openSeries(frames, readOptionsOf(options, goOn), report),
                     files.size() == 1 ? files.front() : "--frame"},
                    options, report, progress);
}

std::unique_ptr<Series> moveFrames(std::unique_ptr<Series> series, const Options& options)
{
    if (series && options.series.align)
        series = std::make_unique<SuperposedSeries>(std::move(series));
    if (series && options.series.between > 0)
        series = std::make_unique<InterpolatedSeries>(std::move(series),
                                                      std::size_t(options.series.between));
    return series;
}

std::optional<std::size_t> shownFrame(const OpenedFiles& opened, const Options& options,
                                      ReadReport& report)
{
    const auto frame = std::size_t(options.frame.value_or(0));
    const std::size_t count = opened.series->count();
    if (frame < count)
        return frame;
    if (opened.shortest.empty()) {
        report.notices.push_back("--frame has no effect: found no series");
        return 0;
    }
    report.error = onOneLine(nameOf(opened.shortest)) + ": found frame " + std::to_string(frame) +
                   ", expected 0 to " + std::to_string(count - 1);
    return {};
}

std::optional<Configuration> readFiles(const std::vector<std::string>& files,
                                       const Options& options, ReadReport& report,
                                       Progress& progress, Opening opening)
{
    if (options.frame || options.series.isOfFiles)
        return readFrame(files, options, report, progress, opening);
    Configuration all;
    const std::vector<FileGroup> groups = groupFiles(files);
    std::size_t most = 1;
    for (std::size_t i = 0; i < groups.size(); ++i) {
        progress.announce(readingText(groups, i, 0));
        std::optional<Configuration> read =
            readFile(groups[i].path, readingOptions(groups, i, options, progress, opening), report);
        if (!read)
            return {};
        append(all, std::move(*read));
        most = std::max(most, report.frames);
    }
    report.frames = most;
    if (!compare(all, options, report, progress))
        return {};
    return all;
}

} // namespace strandview
