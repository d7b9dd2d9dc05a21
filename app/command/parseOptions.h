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

/// The look begins with what a file says (readDefaults()), if there is one and the command line
/// does not leave it aside, and goes on with what the command line says.
ParsedOptions parseOptions(int argc, const char* const* argv, const std::string& defaultsFile = "");

/// What a command line with that session alone asks for; or nothing, and one line in `fault`.
std::optional<Options> optionsOfSession(const std::string& name, std::string& fault);

} // namespace strandview

#endif
