// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_TEMPORARYFOLDER_H
#define STRANDVIEW_TESTS_TEMPORARYFOLDER_H

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

namespace strandview {

/// A folder for the files of one test, gone at its end.
class TemporaryFolder
{
public:
    TemporaryFolder()
    {
        std::string pattern = testing::TempDir() + "strandview-XXXXXX";
        const char* const made = ::mkdtemp(pattern.data());
        EXPECT_TRUE(made);
        folder = made ? made : "";
    }
    ~TemporaryFolder() { std::filesystem::remove_all(folder); }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::string& path() const { return folder; }
    std::string path(const std::string& name) const { return folder + "/" + name; }

    /// The path of the new file.
    std::string write(const std::string& name, const std::string& text) const
    {
        std::ofstream(path(name), std::ios::binary) << text;
        return path(name);
    }
    void append(const std::string& name, const std::string& text) const
    {
        std::ofstream(path(name), std::ios::binary | std::ios::app) << text;
    }

private:
    std::string folder;
};

} // namespace strandview

#endif
