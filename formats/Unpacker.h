// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_UNPACKER_H
#define STRANDVIEW_FORMATS_UNPACKER_H

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include <strandview/formatsExport.h>

namespace strandview {

/// Turns packed bytes, of gzip or Zstandard, back into what was packed, piece by piece. Several
/// that are packed one behind the other are one, as their own programs have it.
class STRANDVIEW_FORMATS_EXPORT Unpacker
{
public:
    /// How many of the first bytes tell whether a file is packed.
    static constexpr std::size_t BYTES_TO_KNOW_BY = 4;

    /// By the first bytes; null if they are of nothing packed.
    static std::unique_ptr<Unpacker> of(std::string_view beginning);

    virtual ~Unpacker();

    /// Takes bytes off the front of `packed` and gives at most `room`, at least one of either if
    /// there is any way on. What is wrong with the bytes, if anything is; else nothing.
    virtual std::string unpack(std::string_view& packed, char* to, std::size_t room,
                               std::size_t& given) = 0;

    /// Whether what was taken so far is whole.
    virtual bool isWhole() const = 0;
};

/// Of packed files.
constexpr std::array<const char*, 2> PACKED_ENDINGS = {".gz", ".zst"};

/// The path without a last one of these endings, in small or capital letters.
STRANDVIEW_FORMATS_EXPORT std::string withoutPackedEnding(const std::string& path);

} // namespace strandview

#endif
