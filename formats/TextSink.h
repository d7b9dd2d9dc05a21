// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_TEXTSINK_H
#define STRANDVIEW_FORMATS_TEXTSINK_H

#include <array>
#include <charconv>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace strandview {

/// Takes the next piece of a text, 64 KiB or somewhat more; false if it cannot, which ends the
/// text.
using TextSink = std::function<bool(std::string_view piece)>;

/// Collects a text and hands it on in such pieces, until the sink takes no more. The sink must
/// outlive it.
class PieceText
{
public:
    explicit PieceText(const TextSink& textSink) : sink(textSink) {}

    void put(std::string_view text)
    {
        constexpr std::size_t enough = 64 * 1024;
        pending += text;
        if (pending.size() >= enough)
            flush();
    }

    /// The shortest text that std::from_chars() reads back as this double, in 24 characters at
    /// most.
    void putDigits(double number)
    {
        std::array<char, 32> digits;
        const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
        put({digits.data(), std::size_t(end - digits.data())});
    }

    /// Whether all so far was taken.
    bool flush()
    {
        taken = taken && (pending.empty() || sink(pending));
        pending.clear();
        return taken;
    }
    bool isTaken() const { return taken; }

private:
    const TextSink& sink;
    std::string pending;
    bool taken = true;
};

} // namespace strandview

#endif
