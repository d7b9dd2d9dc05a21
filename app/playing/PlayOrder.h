// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_PLAYING_PLAYORDER_H
#define STRANDVIEW_APP_PLAYING_PLAYORDER_H

#include <cstddef>
#include <cstdint>

namespace strandview {

/// In which order the frames of a series are played. Frames are counted from 0.
struct PlayOrder
{
    enum Repeat { ONCE, LOOP, TO_AND_FRO };

    /// Where playing is at.
    struct Place
    {
        std::size_t frame = 0;
        bool isForward = true; ///< to and fro changes it
        bool isAtEnd = false;  ///< played once, nothing comes after it
    };

    std::size_t first = 0, last = 0; ///< the range; last is not below first
    std::size_t every = 1;           ///< this many frames further with each step; not 0
    Repeat repeat = ONCE;

    /// Where so many steps lead to. A place beside the range is as its nearest end.
    ///
    /// Once: to the last frame that a step leads to, and no further. A loop goes on with the first
    /// frame of the range. To and fro turns at the last frame that a step leads to, and again at
    /// the last before the first.
    Place after(Place from, std::uint64_t steps) const;

    /// A frame so many beside another, within the range.
    std::size_t beside(std::size_t frame, long long distance) const;
};

} // namespace strandview

#endif
