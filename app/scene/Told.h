// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_TOLD_H
#define STRANDVIEW_APP_SCENE_TOLD_H

#include <cstddef>
#include <string>
#include <vector>

namespace strandview {

/// Something to tell in a line: first what, then of what, a name that may be long.
struct Told
{
    std::string what; ///< "point 0.1 2 3, arc length 1.5 of 8"
    std::string name; ///< "helix.txt:1: rod 1"; empty if there is none
};

/// A reader's notice of one of these files, "FILE: text", with the text first.
Told toldOf(const std::string& notice, const std::vector<std::string>& files);

/// The same of a frame of a series: "frame 3: what", unless it says so already.
Told toldOfFrame(std::size_t frame, Told told);

/// A notice without what differs from file to file and from frame to frame of a series: the name of
/// one of these files, and the number of the frame at its beginning.
std::string withoutPlace(const std::string& notice, const std::vector<std::string>& files);

/// "what – name", or what alone.
std::string toLine(const Told& told);

} // namespace strandview

#endif
