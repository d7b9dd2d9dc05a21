// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/UnpackedFile.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <filesystem>
#include <limits>
#include <system_error>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <strandview/formats/numpy/npyHeader.h>

namespace strandview {

namespace {

constexpr std::size_t PIECE = 256 * 1024;
constexpr std::uint64_t LARGEST_RATIO = 1000;

std::string cannotBeUnpacked(int reason)
{
    return "cannot be unpacked into a temporary file: " + std::generic_category().message(reason);
}

/// Negative, and errno, if that fails.
int openWithoutName()
{
    std::error_code ignored;
    const std::filesystem::path folder = std::filesystem::temp_directory_path(ignored);
    std::string name = ((folder.empty() ? "/tmp" : folder) / "strandview-XXXXXX").string();
    const int descriptor = mkostemp(name.data(), O_CLOEXEC);
    if (descriptor >= 0)
        unlink(name.c_str());
    return descriptor;
}

} // namespace

UnpackedFile::UnpackedFile(std::unique_ptr<Unpacker> ofFormat, std::string firstBytes,
                           std::uint64_t sizeOfAnyRatio)
    : unpacker(std::move(ofFormat)),
      packed(std::move(firstBytes)),
      end(packed.size()),
      packedSize(packed.size()),
      allowed(sizeOfAnyRatio),
      descriptor(openWithoutName())
{
    if (descriptor < 0)
        openFault = cannotBeUnpacked(errno);
}

UnpackedFile::~UnpackedFile()
{
    if (descriptor >= 0)
        close(descriptor);
}

bool UnpackedFile::read(std::uint64_t offset, char* to, std::size_t count, std::size_t& got,
                        const ReadPacked& readPacked, std::string& fault)
{
    got = 0;
    fault = openFault;
    const std::uint64_t wanted =
        offset + std::min(std::uint64_t(count), std::numeric_limits<std::uint64_t>::max() - offset);
    if (!fault.empty() || !unpackTo(wanted, readPacked, fault))
        return false;
    if (offset >= size)
        return true;
    const std::size_t there = std::size_t(std::min(std::uint64_t(count), size - offset));
    const ssize_t result = pread(descriptor, to, there, off_t(offset));
    if (result < 0)
        fault = cannotBeUnpacked(errno);
    got = std::size_t(std::max(result, ssize_t(0)));
    return fault.empty();
}

bool UnpackedFile::unpackTo(std::uint64_t wanted, const ReadPacked& readPacked, std::string& fault)
{
    while (size < wanted && !isComplete) {
        const std::uint64_t before = size;
        const std::size_t left = end - begin;
        if (!unpackPiece(fault))
            return false;
        if (size > before || end - begin < left)
            continue;
        packed.resize(PIECE);
        begin = end = 0;
        if (!readPacked(packed.data(), packed.size(), end))
            return false;
        packedSize += end;
        isComplete = end == 0;
        if (isComplete && !unpacker->isWhole())
            fault = "found the end of the packed data too early, expected all of it";
        if (!fault.empty())
            return false;
    }
    return true;
}

/// Some of what is left of the piece.
bool UnpackedFile::unpackPiece(std::string& fault)
{
    std::vector<char> bytes(PIECE);
    std::string_view rest(packed.data() + begin, end - begin);
    std::size_t given = 0;
    fault = unpacker->unpack(rest, bytes.data(), bytes.size(), given);
    begin = end - rest.size();
    if (!fault.empty())
        return false;
    if (size + given > allowed && (size + given) / LARGEST_RATIO > packedSize)
        fault = "found data more than 1000 times as large as they are packed, expected less";
    else if (!holdsSomething({bytes.data(), given}))
        fault = "found more than 1 MiB on end without a letter or digit, expected data";
    return fault.empty() && append(bytes.data(), given, fault);
}

/// Whether there is anything to read, now that these bytes come.
bool UnpackedFile::holdsSomething(std::string_view bytes)
{
    const auto isSomething = [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte >= 0x80 || std::isalnum(byte); // of UTF-8, or of ASCII
    };
    // A pipe may give it byte by byte.
    beginning += bytes.substr(0, NPY_MAGIC.size() - beginning.size());
    const bool isOfNumbers = beginning == NPY_MAGIC || beginning.compare(0, 2, "PK") == 0;
    const auto last = std::find_if(bytes.rbegin(), bytes.rend(), isSomething);
    if (last != bytes.rend())
        something = size + std::uint64_t(bytes.rend() - last);
    return isOfNumbers || size + bytes.size() <= something + LONGEST_NOTHING;
}

bool UnpackedFile::append(const char* bytes, std::size_t count, std::string& fault)
{
    for (std::size_t done = 0; done < count;) {
        const ssize_t written = pwrite(descriptor, bytes + done, count - done, off_t(size));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0) {
            fault = cannotBeUnpacked(written < 0 ? errno : ENOSPC);
            return false;
        }
        done += std::size_t(written);
        size += std::uint64_t(written);
    }
    return true;
}

} // namespace strandview
