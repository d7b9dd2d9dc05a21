// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_FILESTAMPS_H
#define STRANDVIEW_APP_WINDOW_FILESTAMPS_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace strandview {

/// What becomes another when a file is written to, or replaced by one of the same name.
struct FileStamp
{
    std::uint64_t device = 0, inode = 0;
    std::int64_t size = 0;    ///< bytes
    std::int64_t written = 0; ///< nanoseconds since 1970
};

bool operator==(const FileStamp& a, const FileStamp& b);

/// Those of some files at one time.
struct FileStamps
{
    std::map<std::string, FileStamp> files; ///< by path
    std::optional<std::string> missing;     ///< the first of the paths that is not there
};

bool operator==(const FileStamps& a, const FileStamps& b);

/// The stamps of files, and of the files in folders that seriesFiles() finds there. In any thread:
/// the disk of another machine can take long to answer.
FileStamps stampsOf(const std::vector<std::string>& paths);

/// Whether these are the same files, each as long as it was or longer.
bool haveOnlyGrown(const FileStamps& before, const FileStamps& now);

/// Of frames that are a file each, those whose files are as they were: their numbers before, with
/// their numbers now.
std::map<std::size_t, std::size_t> sameFrames(const std::vector<std::string>& filesBefore,
                                              const FileStamps& before,
                                              const std::vector<std::string>& filesNow,
                                              const FileStamps& now);

} // namespace strandview

#endif
