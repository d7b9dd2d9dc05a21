// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/readFiles.h"

#include <cmath>
#include <cstddef>
#include <iterator>
#include <memory>
#include <utility>

#include <strandview/formats/groupFiles.h>
#include <strandview/formats/openSeries.h>
#include <strandview/formats/readFile.h>
#include <strandview/formats/text/wording.h>

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

} // namespace

ReadOptions readOptionsOf(const Options& options, std::function<bool(double share)> goOn)
{
    return {options.normalise, std::move(goOn), options.closed};
}

std::optional<Configuration> readFiles(const std::vector<std::string>& files,
                                       const Options& options, ReadReport& report,
                                       Progress& progress)
{
    Configuration all;
    const std::vector<FileGroup> groups = groupFiles(files);
    FrameReader reader(std::size_t(options.frame.value_or(0)), groups.size() > 1, report);
    for (std::size_t i = 0; i < groups.size(); ++i) {
        progress.announce(readingText(groups, i, 0));
        ReadOptions asked = readOptionsOf(options, [&](double share) {
            progress.show(readingText(groups, i, share));
            return !progress.isStopped();
        });
        asked.topology = groups[i].topology;
        std::optional<Configuration> read = options.frame ? reader.read(groups[i].path, asked)
                                                          : readFile(groups[i].path, asked, report);
        if (!read)
            return std::nullopt;
        append(all, std::move(*read));
    }
    if (options.frame.value_or(0) > 0 && !reader.hasSeenSeries())
        report.notices.push_back("--frame has no effect: found no series");
    return all;
}

} // namespace strandview
