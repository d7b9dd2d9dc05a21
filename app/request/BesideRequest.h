// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_BESIDEREQUEST_H
#define STRANDVIEW_APP_REQUEST_BESIDEREQUEST_H

#include <optional>
#include <string>

namespace strandview {

/// What a window shows in a second view beside the first.
struct BesideRequest
{
    static constexpr const char* FIRST_FRAME = "first"; ///< of the series that is shown
    static constexpr const char* SAME = "same"; ///< what the first view shows, from another side

    std::optional<std::string> what; ///< one of these, or a file; nothing: there is one view
    bool isTied = true;              ///< both views are seen from the same place
};

inline bool operator==(const BesideRequest& a, const BesideRequest& b)
{
    return a.what == b.what && a.isTied == b.isTied;
}

/// As it is usual: two views of the same thing from one place would be one.
inline BesideRequest besideOf(const std::string& what)
{
    return {what, what != BesideRequest::SAME};
}

} // namespace strandview

#endif
