// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DETAIL_RUNBOTH_H
#define STRANDVIEW_DETAIL_RUNBOTH_H

#include <cstddef>
#include <future>

/// From so many points of a curve on, tubes and ribbons are built beside each other: two processors
/// need half of the time there.
constexpr std::size_t MANY_POINTS = 1000;
/// Of more, meshes for the first time are built one after the other: their curves, hundreds of
/// bytes a point, are not all there at once then.
constexpr std::size_t TOO_MANY_POINTS = 300000;

/// Calls both, the second in a thread of its own if they shall run beside each other and the system
/// has one. Returns, or throws what one of them throws, once both have ended.
template <typename First, typename Second>
void runBoth(bool beside, First first, Second second)
{
    if (!beside) {
        first();
        second();
        return;
    }
    std::future<void> other = std::async(std::launch::async | std::launch::deferred, second);
    first();
    other.get();
}

#endif
