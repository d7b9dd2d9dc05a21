// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/readFiles.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <memory>
#include <utility>

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

// One frame of each of some files.
class FrameReader
{
public:
    FrameReader(std::size_t askedFrame, bool areSeveralFiles, ReadReport& readReport)
        : frame(askedFrame), areSeveral(areSeveralFiles), report(readReport)
    {}

    bool hasSeenSeries() const { return seenSeries; }

    std::optional<Configuration> read(const std::string& file, const ReadOptions& options)
    {
        const std::unique_ptr<Series> series = openSeries({file}, options, report);
        if (!series)
            return {};
        const bool isStill = series->count() == 1;
        seenSeries = seenSeries || !isStill;
        LoadedFrame loaded = series->load(isStill && areSeveral ? 0 : frame, options.goOn);
        std::move(loaded.notices.begin(), loaded.notices.end(), std::back_inserter(report.notices));
        const bool isBeyond = frame >= series->count();
        report.error = (isBeyond ? onOneLine(nameOf(file)) + ": " : "") + loaded.error;
        if (loaded.configuration)
            report.error.clear();
        return std::move(loaded.configuration);
    }

private:
    const std::size_t frame;
    const bool areSeveral;
    bool seenSeries = false;
    ReadReport& report;
};

// What one file is read with, and what is said meanwhile.
ReadOptions readingOptions(const std::vector<FileGroup>& groups, std::size_t index,
                           const Options& options, Progress& progress)
{
    ReadOptions asked = readOptionsOf(options, [&, index](double share) {
        progress.show(readingText(groups, index, share));
        return !progress.isStopped();
    });
    asked.topology = groups[index].topology;
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
std::unique_ptr<Series> openBeside(const std::vector<std::string>& files, const Options& options,
                                   ReadReport& report, Progress& progress)
{
    const std::vector<FileGroup> groups = groupFiles(files);
    std::vector<std::unique_ptr<Series>> parts;
    std::vector<std::size_t> counts;
    for (std::size_t i = 0; i < groups.size(); ++i) {
        progress.announce(readingText(groups, i, 0));
        parts.push_back(
            openSeries({groups[i].path}, readingOptions(groups, i, options, progress), report));
        if (!parts.back())
            return nullptr;
        counts.push_back(parts.back()->count());
    }
    if (parts.size() == 1)
        return std::move(parts.front());
    auto joint = std::make_unique<JointSeries>(std::move(parts));
    noteLonger(groups, counts, joint->count(), report);
    return joint;
}

// The frame that is shown of a series of files.
std::optional<Configuration> readOneOf(const std::vector<std::string>& files,
                                       const Options& options, ReadReport& report,
                                       Progress& progress)
{
    const std::unique_ptr<Series> series = openFiles(files, options, report, progress);
    if (!series)
        return {};
    LoadedFrame loaded = series->load(std::size_t(options.frame.value_or(0)),
                                      [&progress](double) { return !progress.isStopped(); });
    report.error = loaded.error;
    for (std::string& notice : loaded.notices)
        report.notices.push_back(std::move(notice));
    return std::move(loaded.configuration);
}

} // namespace

ReadOptions readOptionsOf(const Options& options, std::function<bool(double share)> goOn)
{
    return {options.normalise, std::move(goOn), options.closed};
}

std::unique_ptr<Series> openFiles(const std::vector<std::string>& files, const Options& options,
                                  ReadReport& report, Progress& progress)
{
    if (!options.series.isOfFiles)
        return openBeside(files, options, report, progress);
    const std::vector<std::string> frames = seriesFiles(files, report);
    if (frames.empty())
        return nullptr;
    const auto goOn = [&progress](double) { return !progress.isStopped(); };
    return openSeries(frames, readOptionsOf(options, goOn), report);
}

std::optional<Configuration> readFiles(const std::vector<std::string>& files,
                                       const Options& options, ReadReport& report,
                                       Progress& progress)
{
    if (options.series.isOfFiles)
        return readOneOf(files, options, report, progress);
    Configuration all;
    const std::vector<FileGroup> groups = groupFiles(files);
    std::size_t most = 1;
    FrameReader reader(std::size_t(options.frame.value_or(0)), groups.size() > 1, report);
    for (std::size_t i = 0; i < groups.size(); ++i) {
        progress.announce(readingText(groups, i, 0));
        const ReadOptions asked = readingOptions(groups, i, options, progress);
        std::optional<Configuration> read = options.frame ? reader.read(groups[i].path, asked)
                                                          : readFile(groups[i].path, asked, report);
        if (!read)
            return std::nullopt;
        append(all, std::move(*read));
        most = std::max(most, report.frames);
    }
    if (options.frame.value_or(0) > 0 && !reader.hasSeenSeries())
        report.notices.push_back("--frame has no effect: found no series");
    report.frames = most;
    return all;
}

} // namespace strandview
