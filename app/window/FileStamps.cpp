// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/FileStamps.h"

#include <algorithm>
#include <tuple>

#include <sys/stat.h>

#include <strandview/formats/seriesFiles.h>

namespace strandview {

namespace {

auto asTuple(const FileStamp& stamp)
{
    return std::tie(stamp.device, stamp.inode, stamp.size, stamp.written);
}

FileStamp stampOf(const struct stat& status)
{
    return {std::uint64_t(status.st_dev), std::uint64_t(status.st_ino),
            std::int64_t(status.st_size),
            std::int64_t(status.st_mtim.tv_sec) * 1'000'000'000 + status.st_mtim.tv_nsec};
}

} // namespace

bool operator==(const FileStamp& a, const FileStamp& b) { return asTuple(a) == asTuple(b); }

bool operator==(const FileStamps& a, const FileStamps& b)
{
    return a.files == b.files && a.missing == b.missing;
}

FileStamps stampsOf(const std::vector<std::string>& paths)
{
    FileStamps stamps;
    const auto add = [&stamps](const std::string& path) {
        struct stat status = {};
        if (::stat(path.c_str(), &status) != 0)
            stamps.missing = stamps.missing.value_or(path);
        else if (!S_ISDIR(status.st_mode))
            stamps.files[path] = stampOf(status);
        return S_ISDIR(status.st_mode);
    };
    for (const std::string& path : paths) {
        ReadReport untold;
        if (!add(path))
            continue;
        for (const std::string& file : seriesFiles({path}, untold))
            add(file);
    }
    return stamps;
}

bool haveOnlyGrown(const FileStamps& before, const FileStamps& now)
{
    const auto isSameFile = [](const auto& one, const auto& other) {
        return one.first == other.first && one.second.device == other.second.device &&
               one.second.inode == other.second.inode && one.second.size <= other.second.size;
    };
    return !now.missing && std::equal(before.files.begin(), before.files.end(), now.files.begin(),
                                      now.files.end(), isSameFile);
}

std::map<std::size_t, std::size_t> sameFrames(const std::vector<std::string>& filesBefore,
                                              const FileStamps& before,
                                              const std::vector<std::string>& filesNow,
                                              const FileStamps& now)
{
    std::map<std::string, std::size_t> numbersNow;
    for (std::size_t i = 0; i < filesNow.size(); ++i)
        numbersNow.emplace(filesNow[i], i);
    std::map<std::size_t, std::size_t> same;
    for (std::size_t i = 0; i < filesBefore.size(); ++i) {
        const auto number = numbersNow.find(filesBefore[i]);
        const auto stampBefore = before.files.find(filesBefore[i]);
        const auto stampNow = now.files.find(filesBefore[i]);
        if (number != numbersNow.end() && stampBefore != before.files.end() &&
            stampNow != now.files.end() && stampBefore->second == stampNow->second)
            same.emplace(i, number->second);
    }
    return same;
}

} // namespace strandview
