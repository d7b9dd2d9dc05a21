// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_FORMAT_H
#define STRANDVIEW_FORMATS_FORMAT_H

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <strandview/formats/ReadReport.h>
#include <strandview/model/Configuration.h>
#include <strandview/model/Series.h>

namespace strandview {

class Source;

/// How sure the first bytes of a file make it that it is of a format.
enum class Likeness {
    NONE,
    POSSIBLE, ///< nothing speaks against it: the name decides before
    CERTAIN,  ///< whatever the name is
};

/// What strandview knows of one format of files: a row of formats().
struct Format
{
    /// As a list names it: "Tables". The guide has a heading of this name.
    std::string name;
    /// As a message expects one: "a table".
    std::string expected;
    /// With their dots, in small letters; a file may have them in capitals, too. The first format
    /// of several that share one is that of files whose content leaves it open.
    std::vector<std::string> endings;

    /// Whether bytes can be one, by the first 64 KiB, or by all where there are fewer.
    Likeness (*recognises)(std::string_view beginning);

    /// A configuration, of a series its first frame, with their number in report.frames; nothing
    /// and report.error if that fails.
    std::optional<Configuration> (*read)(Source& source, const ReadOptions& options,
                                         ReadReport& report);

    /// A series of frames; null and report.error if that fails. Null where a file holds one
    /// configuration.
    std::unique_ptr<Series> (*openSeries)(std::unique_ptr<Source> source,
                                          const ReadOptions& options, ReadReport& report);
};

} // namespace strandview

#endif
