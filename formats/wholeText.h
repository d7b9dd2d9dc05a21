// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_WHOLETEXT_H
#define STRANDVIEW_FORMATS_WHOLETEXT_H

#include <optional>
#include <string_view>

#include <strandview/formats/Source.h>
#include <strandview/formats/text/encoding.h>

namespace strandview {

/// All of a text in UTF-8, behind its byte order mark; nothing and report.error if it cannot be
/// read, or is UTF-16. Valid as long as the source.
inline std::optional<std::string_view> readWholeText(Source& source, const ReadOptions& options,
                                                     ReadReport& report)
{
    const std::optional<std::string_view> bytes = source.readAll(options, report);
    if (!bytes || !isUtf16(*bytes))
        return bytes ? std::optional(withoutByteOrderMark(*bytes)) : std::nullopt;
    report.error = source.getName() + ": " + FOUND_UTF16;
    return {};
}

} // namespace strandview

#endif
