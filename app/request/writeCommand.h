// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_WRITECOMMAND_H
#define STRANDVIEW_APP_REQUEST_WRITECOMMAND_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "request/CameraNumbers.h"
#include "request/Options.h"
#include "request/PictureRequest.h"

namespace strandview {

/// A picture of data, as it was or is to be drawn.
struct ShownPicture
{
    std::vector<std::string> files;
    std::optional<std::size_t> frame = {}; ///< of a series
    CameraNumbers camera;
    PictureRequest size;
    bool stamp = false;
    std::string name = "picture.png"; ///< to write it to
};

/// The command line that makes the same picture, byte for byte, of what the options say of reading
/// and style; for a POSIX shell in the folder that the files' names are of.
std::string writeCommand(const Options& options, const ShownPicture& picture);

/// The same for a shell in the folder of the files, and a picture of the usual name: what a
/// picture's file can tell whoever gets it, wherever it was made.
std::string writeCommandToKeep(Options options, ShownPicture picture);

/// What was shown, without folders: "rod.txt", "rod.txt and 2 more".
std::string titleOf(const std::vector<std::string>& files);

/// The options that ask for it, {"--size", "85x60mm", "--dpi", "600"}; what is usual is left out,
/// but for the size.
std::vector<std::string> argumentsOf(const PictureRequest& size);

/// {"--measure", "distance rod 1:10,rod 1:40"}, for each of them.
std::vector<std::string> argumentsOf(const std::vector<Measurement>& measurements);

/// A word as a POSIX shell takes it: between quotation marks where it has to be.
std::string inShell(const std::string& word);

} // namespace strandview

#endif
