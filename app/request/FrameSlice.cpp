// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/FrameSlice.h"

#include <algorithm>
#include <charconv>
#include <string_view>

namespace strandview {

namespace {

std::optional<long long> parseNumber(std::string_view text)
{
    long long number = 0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), number);
    if (parsed.ec != std::errc() || parsed.ptr != text.data() + text.size())
        return {};
    return number;
}

// A bound, or what an empty text stands for; false if it is neither.
bool parseBound(std::string_view text, std::optional<long long>& bound)
{
    bound = text.empty() ? std::nullopt : parseNumber(text);
    return text.empty() || bound;
}

// A bound as a place among so many, as Python clamps it: from `lowest` to `lowest + count`.
long long placeOf(const std::optional<long long>& bound, long long count, long long lowest,
                  long long otherwise)
{
    if (!bound)
        return otherwise;
    const long long fromBegin = *bound < 0 ? std::max(*bound, -count - 1) + count : *bound;
    return std::clamp(fromBegin, lowest, lowest + count);
}

} // namespace

std::optional<FrameSlice> parseFrameSlice(const std::string& text)
{
    const std::size_t first = text.find(':');
    if (first == text.npos)
        return {};
    const std::string_view all = text;
    const std::size_t second = all.find(':', first + 1);
    std::optional<long long> step;
    FrameSlice slice;
    if (!parseBound(all.substr(0, first), slice.begin) ||
        !parseBound(all.substr(first + 1, second == all.npos ? second : second - first - 1),
                    slice.end) ||
        !parseBound(second == all.npos ? "" : all.substr(second + 1), step))
        return {};
    slice.step = step.value_or(1);
    return slice.step == 0 ? std::nullopt : std::optional(slice);
}

std::optional<Shard> parseShard(const std::string& text)
{
    const std::size_t slash = text.find('/');
    if (slash == text.npos)
        return {};
    const std::string_view all = text;
    const std::optional<long long> index = parseNumber(all.substr(0, slash));
    const std::optional<long long> count = parseNumber(all.substr(slash + 1));
    if (!index || !count || *index < 0 || *index >= *count)
        return {};
    return Shard{std::size_t(*index), std::size_t(*count)};
}

std::vector<std::size_t> framesOf(const FrameSlice& slice, std::size_t frameCount)
{
    const auto count = (long long)frameCount;
    const bool isForward = slice.step > 0;
    const long long lowest = isForward ? 0 : -1; // backwards, -1 is before the first
    const long long begin = placeOf(slice.begin, count, lowest, isForward ? 0 : count - 1);
    const long long end = placeOf(slice.end, count, lowest, isForward ? count : -1);
    // A step beyond all is as good as any: nothing overflows.
    const long long step = std::clamp(slice.step, -count - 1, count + 1);
    std::vector<std::size_t> frames;
    for (long long i = begin; isForward ? i < end : i > end; i += step)
        frames.push_back(std::size_t(i));
    return frames;
}

std::vector<std::size_t> framesOf(const Shard& shard, const std::vector<std::size_t>& frames)
{
    std::vector<std::size_t> part;
    for (std::size_t i = shard.index; i < frames.size(); i += shard.count)
        part.push_back(frames[i]);
    return part;
}

} // namespace strandview
