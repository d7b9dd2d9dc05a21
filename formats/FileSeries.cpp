// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/FileSeries.h>

#include <utility>

#include <strandview/formats/readFile.h>

namespace strandview {

FileSeries::FileSeries(std::vector<std::string> paths, bool shallNormalise)
    : files(std::move(paths)), normalise(shallNormalise)
{}

std::size_t FileSeries::count() const { return files.size(); }

LoadedFrame FileSeries::loadFrame(std::size_t frame, const GoOn& goOn)
{
    ReadReport report;
    std::optional<Configuration> read = readFile(files[frame], {normalise, goOn}, report);
    return {std::move(read), std::move(report.notices), std::move(report.error)};
}

} // namespace strandview
