// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_THING_H
#define STRANDVIEW_APP_SCENE_THING_H

#include <cstddef>
#include <tuple>

#include "request/ThingKind.h"

namespace strandview {

/// A datum of a scene, or one of its strands, by its kind, as they are numbered in the order in
/// which they are drawn, and its place among those. In other frames it is the one there.
struct Thing
{
    std::size_t kind = 0, index = 0;
    ThingPart part = ThingPart::WHOLE;

    Thing whole() const { return {kind, index}; }
};

inline bool operator<(const Thing& a, const Thing& b)
{
    return std::tie(a.kind, a.index, a.part) < std::tie(b.kind, b.index, b.part);
}
inline bool operator==(const Thing& a, const Thing& b)
{
    return a.kind == b.kind && a.index == b.index && a.part == b.part;
}

} // namespace strandview

#endif
