// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/readFile.h>

#include <memory>

#include <strandview/formats/Source.h>
#include <strandview/formats/formats.h>

namespace strandview {

std::optional<Configuration> readFile(const std::string& path, const ReadOptions& options,
                                      ReadReport& report)
{
    report.error.clear();
    const std::unique_ptr<Source> source = Source::open(path, report);
    return source ? readSource(*source, options, report) : std::nullopt;
}

std::optional<Configuration> readSource(Source& source, const ReadOptions& options,
                                        ReadReport& report)
{
    report.error.clear();
    report.frames = 1;
    const Format* const format = formatOf(source, options, report);
    if (!format)
        return {};
    std::optional<Configuration> first = format->read(source, options, report);
    if (first && report.frames > 1 && !options.atOnce)
        report.notices.push_back(
            source.getName() + ": the first of " +
            (report.frames == SEVERAL_FRAMES ? "several" : std::to_string(report.frames)) +
            " frames; --frame N takes another, counted from 0");
    return first;
}

} // namespace strandview
