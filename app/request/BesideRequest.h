// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_BESIDEREQUEST_H
#define STRANDVIEW_APP_REQUEST_BESIDEREQUEST_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "request/CameraNumbers.h"
#include "request/CameraRequest.h"

namespace strandview {

/// That of a further view which goes its own way.
struct BesideCamera
{
    CameraNumbers numbers;
    // Which make it no other one
    bool isFitted = false;                   ///< and is fitted anew in another size
    std::optional<CameraRequest> start = {}; ///< from where it began to move
};

inline bool operator==(const BesideCamera& a, const BesideCamera& b)
{
    return a.numbers == b.numbers;
}

/// What a window shows in further views beside the first.
struct BesideRequest
{
    static constexpr const char* FIRST_FRAME = "first"; ///< of the series that is shown
    static constexpr const char* SAME = "same"; ///< what the first view shows, from another side
    static constexpr std::size_t MOST = 3;      ///< further views

    std::vector<std::string> what; ///< in each of them: one of these, or a file
    bool isTied = true;            ///< all views are seen from the same place
    /// Of each of them, unless they are tied: the usual one where it is left open, or all are.
    std::vector<std::optional<BesideCamera>> cameras = {};
};

inline bool operator==(const BesideRequest& a, const BesideRequest& b)
{
    return a.what == b.what && a.isTied == b.isTied && a.cameras == b.cameras;
}

/// "first view" of all that a window shows; "second view" is the first further one.
std::string nameOfView(std::size_t index);

/// Whether it is neither the first frame nor the same.
bool isFile(const std::string& what);

/// As it is usual: two views of the same thing from one place would be one.
BesideRequest besideOf(std::vector<std::string> what);

/// Three further views of the same.
BesideRequest fourOfTheSame();

/// With a view more, behind the others, of which there are fewer than MOST. They stay tied unless
/// it is of the same.
BesideRequest withView(BesideRequest request, const std::string& what);

/// Without that one of them.
BesideRequest withoutView(BesideRequest request, std::size_t index);

} // namespace strandview

#endif
