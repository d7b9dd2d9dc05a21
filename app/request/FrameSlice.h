// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_FRAMESLICE_H
#define STRANDVIEW_APP_REQUEST_FRAMESLICE_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace strandview {

/// Some frames of a series, as Python slices a list: from `begin` to before `end`, both counted
/// from the end if negative; all the way where one is left out.
struct FrameSlice
{
    std::optional<long long> begin;
    std::optional<long long> end;
    long long step = 1; ///< not 0; backwards if negative
};

/// Every part-th frame of those that are asked for, beginning with the index-th.
struct Shard
{
    std::size_t index = 0; ///< below `count`
    std::size_t count = 1;
};

/// The slice of "A:B:STEP", of which any number, and the last colon, may be left out; nothing of
/// any other text.
std::optional<FrameSlice> parseFrameSlice(const std::string& text);
/// The shard of "i/n" with 0 <= i < n, or nothing.
std::optional<Shard> parseShard(const std::string& text);

/// The frames of a slice of so many, in its order.
std::vector<std::size_t> framesOf(const FrameSlice& slice, std::size_t count);
/// Those whose place is the shard's index modulo its count.
std::vector<std::size_t> framesOf(const Shard& shard, const std::vector<std::size_t>& frames);

} // namespace strandview

#endif
