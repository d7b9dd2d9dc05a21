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
    const Format* const format = formatOf(source, options, report);
    return format ? format->read(source, options, report) : std::nullopt;
}

} // namespace strandview
