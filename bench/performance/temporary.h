// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_BENCH_TEMPORARY_H
#define STRANDVIEW_BENCH_TEMPORARY_H

#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <string>

#include <unistd.h>

/// A file that goes with the program.
class TemporaryFile
{
public:
    explicit TemporaryFile(const std::string& ending)
        : path(std::filesystem::temp_directory_path() /
               ("strandview-" + std::to_string(getpid()) + ending))
    {}
    ~TemporaryFile() { std::filesystem::remove(path); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::string path;
};

/// A folder that goes with the program.
class TemporaryFolder
{
public:
    TemporaryFolder()
    {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "strandview-XXXXXX").string();
        const char* const made = mkdtemp(pattern.data());
        if (!made)
            std::abort();
        path = made;
    }
    ~TemporaryFolder() { std::filesystem::remove_all(path); }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// Of all files in it.
    std::size_t bytes() const
    {
        std::size_t sum = 0;
        for (const auto& entry : std::filesystem::directory_iterator(path))
            sum += entry.file_size();
        return sum;
    }

    std::string path;
};

#endif
