// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_READERS_JSONREADER_H
#define STRANDVIEW_APP_READERS_JSONREADER_H

#include <optional>
#include <string>
#include <string_view>

#include "Configuration.h"
#include "readers/ReadReport.h"

/// Reads rods from JSON, version 1:
///
///     {"strandview": 1,
///      "rods": [{"points": [[x, y, z], ...],
///                "quaternions": [[x, y, z, w], ...],
///                "scalars": {"name": [number, ...], ...}}, ...]}
///
/// "quaternions" and "scalars" may be missing; what is there has one entry per point.
/// Any other key is an error, and so is a key twice in one object. The origin of a rod
/// is "fileName: rods[0]".
///
/// Nothing and report.error if that fails. Where the text is not JSON the error is
/// "fileName:line:column: found ..., expected ...", with the character, counted from
/// 1, at which reading stopped; else "fileName: rods[0].points[2][1]: found ...,
/// expected ...", with indices counted from 0 as in JSON.
std::optional<Configuration> readJson(std::string_view text, const std::string& fileName,
                                      const ReadOptions& options, ReadReport& report);

#endif
