// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_FORMATS_H
#define STRANDVIEW_FORMATS_FORMATS_H

#include <string>
#include <string_view>
#include <vector>

#include <strandview/formats/Format.h>
#include <strandview/formatsExport.h>

namespace strandview {

/// Every format that is read, each once. All may be called from any thread.
STRANDVIEW_FORMATS_EXPORT const std::vector<Format>& formats();

/// The first format whose ending a path has, but for an ending of packed files (".gz"); null if
/// none has it.
STRANDVIEW_FORMATS_EXPORT const Format* formatOfEnding(const std::string& path);

/// The likeliest format by the beginning of the bytes; null if none is as likely as asked. Of
/// several it is the last one of the list: what comes first in it is tables, which take any text.
STRANDVIEW_FORMATS_EXPORT const Format* formatOfContent(std::string_view beginning,
                                                        Likeness atLeast = Likeness::POSSIBLE);

/// By the content where that is certain, else by the ending, else by what the content can be. No
/// more is read than the beginning: a device may have no end. Null and report.error if nothing
/// tells one, or if nothing can be read.
STRANDVIEW_FORMATS_EXPORT const Format* formatOf(Source& source, const ReadOptions& options,
                                                 ReadReport& report);

/// "a table or JSON".
STRANDVIEW_FORMATS_EXPORT std::string expectedFormats();

/// ".txt .dat .csv": of one format, separated by blanks, or with another text before each.
STRANDVIEW_FORMATS_EXPORT std::string endingsOf(const Format& format,
                                                const std::string& before = "");

} // namespace strandview

#endif
