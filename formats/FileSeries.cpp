// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/FileSeries.h>

#include <utility>

#include <strandview/formats/readFile.h>

namespace strandview {

FileSeries::FileSeries(std::vector<std::string> paths, ReadOptions readOptions)
    : files(std::move(paths)), options(std::move(readOptions))
{}

std::size_t FileSeries::count() const { return files.size(); }

LoadedFrame FileSeries::loadFrame(std::size_t frame, const GoOn& goOn)
{
    ReadReport report;
    options.goOn = goOn;
    std::optional<Configuration> read = readFile(files[frame], options, report);
    options.goOn = {};
    return {std::move(read), std::move(report.notices), std::move(report.error)};
}

} // namespace strandview
