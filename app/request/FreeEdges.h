// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_FREEEDGES_H
#define STRANDVIEW_APP_REQUEST_FREEEDGES_H

namespace strandview {

/// What of a view is left free by what is shown: parts of its height below and above it, and parts
/// of its shorter side to its left and right. From 0 on; the opposite ones less than 1 together.
struct FreeEdges
{
    FreeEdges(float below = 0, float above = 0, float toTheLeft = 0, float toTheRight = 0)
        : bottom(below), top(above), left(toTheLeft), right(toTheRight)
    {}

    float both() const { return bottom + top; }
    /// How far the middle of what is between them lies above that of the view, in parts of its
    /// height.
    float shift() const { return (bottom - top) / 2; }

    float bottom;
    float top;
    float left;
    float right;
};

inline bool operator==(const FreeEdges& a, const FreeEdges& b)
{
    return a.bottom == b.bottom && a.top == b.top && a.left == b.left && a.right == b.right;
}
inline bool operator!=(const FreeEdges& a, const FreeEdges& b) { return !(a == b); }

} // namespace strandview

#endif
