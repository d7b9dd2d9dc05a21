// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_SOURCE_H
#define STRANDVIEW_FORMATS_SOURCE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <strandview/formats/ReadReport.h>
#include <strandview/formats/UnpackedFile.h>
#include <strandview/formatsExport.h>

namespace strandview {

/// What a reader is given: bytes with a name, and the files beside them.
///
/// Files are read at any place; of what cannot be read twice (standard input, pipes,
/// devices) everything up to the last byte that was asked for is kept. Whatever fails gives
/// nothing and report.error, one line with the source's name: "rod.txt: cannot be read: No
/// such file or directory". ReadOptions::goOn is asked, with a share of 0, before every piece
/// that is read, and every 50 ms while a pipe has nothing.
///
/// Files and pipes that are packed by gzip or Zstandard are as what was packed, told by their first
/// bytes: it is unpacked into a temporary file as far as it is asked for (UnpackedFile.h). The size
/// of what was packed is not known before.
///
/// A source is for one thread at a time, and belongs to whoever opened it; its file is closed
/// with it.
class STRANDVIEW_FORMATS_EXPORT Source
{
public:
    /// A file, or standard input for "-". Nothing is read yet, and a pipe that nobody writes
    /// to is not waited for. A folder opens, and cannot be read.
    static std::unique_ptr<Source> open(const std::string& path, ReadReport& report);

    /// Of bytes that are there already, under a name for messages.
    static std::unique_ptr<Source> ofBytes(const std::string& name, std::string bytes);

    ~Source();
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    /// For messages, on one line: the path, or "standard input".
    const std::string& getName() const { return name; }
    /// As it was opened; empty of standard input and of bytes.
    const std::string& getPath() const { return path; }
    /// In bytes, where it is known before the end is read: of bytes and of files, but for packed
    /// ones and for those that say 0, as the system's own do.
    std::optional<std::uint64_t> getSize() const { return size; }

    /// Whether it is a file that is not packed; else report.error.
    bool canGrow(const ReadOptions& options, ReadReport& report);

    /// Of such a file that may have been written to: from now on it is read up to its new end, and
    /// getSize() is up to there. False and report.error where it became shorter, or its path leads
    /// to another file or none.
    bool lookAgain(ReadReport& report);

    /// The first `count` bytes, or all where there are fewer. Valid until more is read.
    std::optional<std::string_view> readBeginning(std::size_t count, const ReadOptions& options,
                                                  ReadReport& report);

    /// All of it. Valid as long as the source.
    std::optional<std::string_view> readAll(const ReadOptions& options, ReadReport& report);

    /// `count` bytes from an offset on; fewer, or none, only where the end comes before. Of a
    /// file nothing else is read or kept.
    std::optional<std::string> readAt(std::uint64_t offset, std::size_t count,
                                      const ReadOptions& options, ReadReport& report);

    /// The same into memory that is there, of at least `count` bytes; how many were read.
    std::optional<std::size_t> readAt(std::uint64_t offset, char* to, std::size_t count,
                                      const ReadOptions& options, ReadReport& report);

    /// The file of another name in the same folder, or at a path from there on.
    std::unique_ptr<Source> openBeside(const std::string& fileName, ReadReport& report) const;

    /// The file of the same name with another ending: ".top" beside "run.traj" is "run.top", and
    /// so it is beside "run.traj.gz".
    std::unique_ptr<Source> openWithEnding(const std::string& ending, ReadReport& report) const;

private:
    Source(std::string sourceName, std::string sourcePath, int openDescriptor);

    bool look(const ReadOptions& options, ReadReport& report);
    bool fill(std::uint64_t count, const ReadOptions& options, ReadReport& report);
    std::size_t roomFor(std::uint64_t count) const;
    std::size_t roomAt(std::uint64_t offset, std::size_t before) const;
    bool readPiece(char* to, std::size_t count, std::optional<std::uint64_t> offset,
                   const ReadOptions& options, ReadReport& report, std::size_t& got);
    bool readDescriptor(char* to, std::size_t count, std::optional<std::uint64_t> offset,
                        const ReadOptions& options, ReadReport& report, std::size_t& got) const;

    std::string name;
    std::string path;
    int descriptor; ///< negative of bytes
    bool isFile = false;
    bool hasLooked = false;                 ///< whether it is packed
    std::unique_ptr<UnpackedFile> unpacked; ///< of what is
    std::uint64_t packedOffset = 0;         ///< of a file, how much of it was unpacked
    std::optional<std::uint64_t> size;
    std::string beginning;   ///< what was read of it without an offset, and room for more
    std::size_t filled = 0;  ///< how much of that was read
    bool isComplete = false; ///< whether the end came
};

} // namespace strandview

#endif
