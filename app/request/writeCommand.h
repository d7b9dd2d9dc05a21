// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_WRITECOMMAND_H
#define STRANDVIEW_APP_REQUEST_WRITECOMMAND_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "request/CameraNumbers.h"
#include "request/Options.h"

namespace strandview {

/// A picture as a window shows it.
struct ShownPicture
{
    std::vector<std::string> files;
    std::optional<std::size_t> frame; ///< of a series
    CameraNumbers camera;
    int width, height;
    std::string name; ///< to write it to
};

/// The command line that makes the same picture, byte for byte, of what the options say of reading
/// and style; for a POSIX shell in the folder that the files' names are of.
std::string writeCommand(const Options& options, const ShownPicture& picture);

/// A word as a POSIX shell takes it: between quotation marks where it has to be.
std::string inShell(const std::string& word);

} // namespace strandview

#endif
