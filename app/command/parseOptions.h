// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_COMMAND_PARSEOPTIONS_H
#define STRANDVIEW_APP_COMMAND_PARSEOPTIONS_H

#include <optional>
#include <string>

#include "request/Options.h"

namespace strandview {

/// The options, or the status to exit with: 0 after --help and --version, which go
/// to standard output, 2 after one line on standard error.
struct ParsedOptions
{
    std::optional<Options> options;
    int exitStatus = 0;
};

ParsedOptions parseOptions(int argc, const char* const* argv);

/// What a command line with that session alone asks for; or nothing, and one line in `fault`.
std::optional<Options> optionsOfSession(const std::string& name, std::string& fault);

} // namespace strandview

#endif
