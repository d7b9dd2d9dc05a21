// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/openSeries.h>

#include <utility>

#include <strandview/formats/FileSeries.h>
#include <strandview/formats/Source.h>
#include <strandview/formats/formats.h>
#include <strandview/model/MemorySeries.h>

namespace strandview {

std::unique_ptr<Series> openSeries(const std::vector<std::string>& paths,
                                   const ReadOptions& options, ReadReport& report)
{
    report.error = paths.empty() ? "found no file, expected at least one" : "";
    if (paths.empty())
        return nullptr;
    if (paths.size() > 1)
        return std::make_unique<FileSeries>(paths, options);
    std::unique_ptr<Source> source = Source::open(paths.front(), report);
    const Format* const format = source ? formatOf(*source, options, report) : nullptr;
    return format ? openSeries(std::move(source), *format, options, report) : nullptr;
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
