// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/readFile.h>

#include <cstddef>
#include <memory>
#include <string_view>

#include <strandview/formats/Source.h>
#include <strandview/formats/formats.h>
#include <strandview/formats/text/encoding.h>

namespace strandview {

namespace {

constexpr std::size_t beginningToKnowBy = 64 * 1024;

/// By the ending, else by the content; null and report.error if neither tells one. No more than
/// the beginning is read: a device may have no end.
const Format* chooseFormat(Source& source, const ReadOptions& options, ReadReport& report)
{
    if (const Format* const format = formatOfEnding(source.getPath()))
        return format;
    const std::optional<std::string_view> beginning =
        source.readBeginning(beginningToKnowBy, options, report);
    if (!beginning)
        return nullptr;
    const Format* const format = formatOfContent(*beginning);
    if (!format)
        report.error =
            source.getName() + ": " +
            (isUtf16(*beginning) ? foundUtf16 : "found binary data, expected " + expectedFormats());
    return format;
}

} // namespace

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
    const Format* const format = chooseFormat(source, options, report);
    return format ? format->read(source, options, report) : std::nullopt;
}

} // namespace strandview
