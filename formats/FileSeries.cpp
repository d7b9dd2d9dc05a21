// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/FileSeries.h>

#include <utility>

#include <strandview/formats/readFile.h>

namespace strandview {

FileSeries::FileSeries(std::vector<FileGroup> groups, ReadOptions readOptions)
    : files(std::move(groups)), options(std::move(readOptions))
{}

std::size_t FileSeries::count() const { return files.size(); }

LoadedFrame FileSeries::loadFrame(std::size_t frame, const GoOn& goOn)
{
    ReadReport report;
    const FileGroup& file = files[frame];
    ReadOptions asked = options;
    asked.goOn = goOn;
    if (!file.topology.empty())
        asked.topology = file.topology;
    std::optional<Configuration> read = readFile(file.path, asked, report);
    return {std::move(read), std::move(report.notices), std::move(report.error)};
}

} // namespace strandview
