// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/openSeries.h>

#include <utility>

#include <strandview/analysis/keptPairs.h>
#include <strandview/formats/FileSeries.h>
#include <strandview/formats/Source.h>
#include <strandview/formats/formats.h>
#include <strandview/formats/groupFiles.h>
#include <strandview/model/MemorySeries.h>

namespace strandview {

namespace {

// Lets the readers of a series keep its pairs.
void keepPairs(ReadOptions& options)
{
    options.pairs = options.ownPairs ? nullptr : std::make_shared<KeptPairs>();
}

std::unique_ptr<Series> withPairs(std::unique_ptr<Series> series, const ReadOptions& options)
{
    if (!series || !options.pairs)
        return series;
    return std::make_unique<PairKeepingSeries>(std::move(series), options.pairs);
}

} // namespace

std::unique_ptr<Series> openSeries(const std::vector<std::string>& paths,
                                   const ReadOptions& options, ReadReport& report)
{
    report.error = paths.empty() ? "found no file, expected at least one" : "";
    if (paths.empty())
        return nullptr;
    std::vector<FileGroup> groups = groupFiles(paths);
    ReadOptions asked = options;
    if (groups.size() > 1) {
        keepPairs(asked);
        return withPairs(std::make_unique<FileSeries>(std::move(groups), asked), asked);
    }
    if (!groups.front().topology.empty())
        asked.topology = groups.front().topology;
    std::unique_ptr<Source> source = Source::open(groups.front().path, report);
    const Format* const format = source ? formatOf(*source, asked, report) : nullptr;
    return format ? openSeries(std::move(source), *format, asked, report) : nullptr;
}

std::unique_ptr<Series> openSeries(std::unique_ptr<Source> source, const Format& format,
                                   const ReadOptions& options, ReadReport& report)
{
    if (format.openSeries) {
        ReadOptions asked = options;
        keepPairs(asked);
        return withPairs(format.openSeries(std::move(source), asked, report), asked);
    }
    std::optional<Configuration> only = format.read(*source, options, report);
    if (!only)
        return nullptr;
    std::vector<Configuration> frames;
    frames.push_back(std::move(*only));
    return std::make_unique<MemorySeries>(std::move(frames));
}

} // namespace strandview
