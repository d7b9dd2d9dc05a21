// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_UNPACKEDFILE_H
#define STRANDVIEW_FORMATS_UNPACKEDFILE_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include <strandview/formats/Unpacker.h>
#include <strandview/formatsExport.h>

namespace strandview {

/// What was packed, to be read at any place: unpacked up to the last byte that was asked for into
/// a file without a name, in the folder for temporary files ($TMPDIR, else /tmp), which is gone
/// with this. In memory there is nothing but a piece.
///
/// What is more than a thousand times larger than its packed bytes, and larger than ALWAYS_ALLOWED,
/// is refused: no text or array of numbers is, and somebody has made it to fill the disk. So is,
/// at once, what has LONGEST_NOTHING without a letter or digit, unless it is an array or an
/// archive.
class STRANDVIEW_FORMATS_EXPORT UnpackedFile
{
public:
    static constexpr std::uint64_t ALWAYS_ALLOWED = std::uint64_t(1) << 30;
    static constexpr std::uint64_t LONGEST_NOTHING = 1 << 20;

    /// Gives the next packed bytes, at most so many and none at the end; whether that went well.
    using ReadPacked = std::function<bool(char* to, std::size_t count, std::size_t& got)>;

    /// From the bytes that were read already on.
    UnpackedFile(std::unique_ptr<Unpacker> ofFormat, std::string firstBytes,
                 std::uint64_t sizeOfAnyRatio = ALWAYS_ALLOWED);
    ~UnpackedFile();
    UnpackedFile(const UnpackedFile&) = delete;
    UnpackedFile& operator=(const UnpackedFile&) = delete;

    /// Reads at most `count` bytes from an offset on, none at the end. False, and why in `fault`,
    /// which is empty if readPacked failed.
    bool read(std::uint64_t offset, char* to, std::size_t count, std::size_t& got,
              const ReadPacked& readPacked, std::string& fault);

private:
    bool unpackTo(std::uint64_t end, const ReadPacked& readPacked, std::string& fault);
    bool unpackPiece(std::string& fault);
    bool holdsSomething(std::string_view bytes);
    bool append(const char* bytes, std::size_t count, std::string& fault);

    std::unique_ptr<Unpacker> unpacker;
    std::string packed;           ///< room for a piece
    std::size_t begin = 0;        ///< of what is left of it
    std::size_t end = 0;          ///< of that
    std::uint64_t packedSize = 0; ///< that was read
    std::uint64_t size = 0;       ///< that is unpacked
    std::uint64_t allowed;        ///< size without a look at the packed one
    std::string beginning;        ///< as much as tells what it is
    std::uint64_t something = 0;  ///< the size up to the last letter or digit
    bool isComplete = false;
    int descriptor = -1;
    std::string openFault; ///< why there is no file
};

} // namespace strandview

#endif
