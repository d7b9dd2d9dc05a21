// SPDX-License-Identifier: GPL-3.0-or-later
#include "playing/PlayOrder.h"

#include <algorithm>

namespace strandview {

namespace {

using Place = PlayOrder::Place;
using Steps = std::uint64_t;

// On from a frame, which begins a round after the last one that there is.
Place inLoop(const PlayOrder& order, std::size_t frame, Steps steps)
{
    const Steps left = (order.last - frame) / order.every;
    if (steps <= left)
        return {frame + std::size_t(steps) * order.every};
    const Steps round = (order.last - order.first) / order.every + 1;
    return {order.first + std::size_t((steps - left - 1) % round) * order.every};
}

// On from a frame in its direction, and back where no step is left.
Place toAndFro(const PlayOrder& order, Place from, Steps steps)
{
    const Steps up = (order.last - from.frame) / order.every;
    const Steps down = (from.frame - order.first) / order.every;
    const Steps there = from.isForward ? up : down, span = up + down;
    const auto stepped = [&](bool forward, Steps count) {
        const std::size_t distance = std::size_t(count) * order.every;
        return Place{forward ? from.frame + distance : from.frame - distance, forward};
    };
    if (steps <= there)
        return stepped(from.isForward, steps);
    if (span == 0)
        return from;
    // From the end where it turns first, to the other and back.
    const Steps rest = (steps - there) % (2 * span);
    const Steps fromTurn = rest <= span ? rest : 2 * span - rest;
    const bool goesBack = rest > 0 && rest <= span;
    Place place = fromTurn <= there ? stepped(from.isForward, there - fromTurn)
                                    : stepped(!from.isForward, fromTurn - there);
    place.isForward = goesBack ? !from.isForward : from.isForward;
    return place;
}

} // namespace

Place PlayOrder::after(Place from, std::uint64_t steps) const
{
    from.frame = std::clamp(from.frame, first, last);
    if (repeat == LOOP)
        return inLoop(*this, from.frame, steps);
    if (repeat == TO_AND_FRO)
        return toAndFro(*this, from, steps);
    const Steps left = (last - from.frame) / every;
    return {from.frame + std::size_t(std::min(steps, left)) * every, true, steps >= left};
}

std::size_t PlayOrder::beside(std::size_t frame, long long distance) const
{
    frame = std::clamp(frame, first, last);
    const auto below = (long long)(frame - first), above = (long long)(last - frame);
    return std::size_t((long long)(frame) + std::clamp(distance, -below, above));
}

} // namespace strandview
