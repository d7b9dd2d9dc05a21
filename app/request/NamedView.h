// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_NAMEDVIEW_H
#define STRANDVIEW_APP_REQUEST_NAMEDVIEW_H

#include <string>

#include "request/CameraNumbers.h"

namespace strandview {

/// A camera that a user keeps by a name.
struct NamedView
{
    std::string name;
    CameraNumbers camera;
};

inline bool operator==(const NamedView& a, const NamedView& b)
{
    return a.name == b.name && a.camera == b.camera;
}
inline bool operator!=(const NamedView& a, const NamedView& b) { return !(a == b); }

} // namespace strandview

#endif
