// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_SESSION_H
#define STRANDVIEW_APP_REQUEST_SESSION_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "request/BesideRequest.h"
#include "request/CameraNumbers.h"
#include "request/Measurement.h"
#include "request/NamedView.h"
#include "request/PictureChoice.h"
#include "request/StyleRequest.h"

namespace strandview {

/// A file, or a folder of them, as it was when a session was saved.
struct SessionFile
{
    std::string name;        ///< as the command line takes it
    std::uint64_t bytes = 0; ///< of all that is in it
    std::string digest;      ///< of its content, see app/session/fingerprint.h; empty if unknown
};

/// What a user comes back to: the files that a window shows, how they are read, and all that was
/// chosen of them.
struct Session
{
    std::string name; ///< its own file's, as the command line takes it
    std::vector<SessionFile> files;
    std::vector<std::string> reading; ///< options with their values, as Options::reading
    StyleRequest style;
    bool areColoursShown = true; ///< those of data
    std::optional<CameraNumbers> camera;
    std::optional<std::size_t> frame;               ///< of a series
    std::optional<std::pair<int, int>> pictureSize; ///< of the view, in pixels
    PictureChoice picture;                          ///< how pictures of the view are saved
    std::vector<Measurement> measurements;          ///< that are kept
    std::vector<NamedView> views;
    BesideRequest beside;
};

} // namespace strandview

#endif
