// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_FREEEDGES_H
#define STRANDVIEW_APP_REQUEST_FREEEDGES_H

namespace strandview {

/// Parts of a view's height that what is shown leaves free below it and above it: from 0 on, and
/// less than 1 together.
struct FreeEdges
{
    FreeEdges(float below = 0, float above = 0) : bottom(below), top(above) {}

    float both() const { return bottom + top; }
    /// How far the middle of what is between them lies above that of the view, in parts of its
    /// height.
    float shift() const { return (bottom - top) / 2; }

    float bottom;
    float top;
};

inline bool operator==(const FreeEdges& a, const FreeEdges& b)
{
    return a.bottom == b.bottom && a.top == b.top;
}
inline bool operator!=(const FreeEdges& a, const FreeEdges& b) { return !(a == b); }

} // namespace strandview

#endif
