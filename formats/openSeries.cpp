// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/openSeries.h>

#include <utility>

#include <strandview/formats/FileSeries.h>
#include <strandview/formats/Source.h>
#include <strandview/formats/formats.h>
#include <strandview/formats/groupFiles.h>
#include <strandview/model/MemorySeries.h>

namespace strandview {

std::unique_ptr<Series> openSeries(const std::vector<std::string>& paths,
                                   const ReadOptions& options, ReadReport& report)
{
    report.error = paths.empty() ? "found no file, expected at least one" : "";
    if (paths.empty())
        return nullptr;
    const std::vector<FileGroup> groups = groupFiles(paths);
    ReadOptions asked = options;
    asked.topology = groups.front().topology;
    if (groups.size() > 1) {
        std::vector<std::string> frames;
        for (const FileGroup& group : groups)
            frames.push_back(group.path);
        return std::make_unique<FileSeries>(std::move(frames), asked);
    }
    std::unique_ptr<Source> source = Source::open(groups.front().path, report);
    const Format* const format = source ? formatOf(*source, asked, report) : nullptr;
    return format ? openSeries(std::move(source), *format, asked, report) : nullptr;
}

std::unique_ptr<Series> openSeries(std::unique_ptr<Source> source, const Format& format,
                                   const ReadOptions& options, ReadReport& report)
{
    if (format.openSeries)
        return format.openSeries(std::move(source), options, report);
    std::optional<Configuration> only = format.read(*source, options, report);
    if (!only)
        return nullptr;
    std::vector<Configuration> frames;
    frames.push_back(std::move(*only));
    return std::make_unique<MemorySeries>(std::move(frames));
}

} // namespace strandview
