// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzz/readAnything.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

#include <strandview/formats/formats.h>

namespace strandview {

namespace {

/// "PDB and mmCIF" is pdb-and-mmcif, as in script/fuzz.
std::string folderOf(const Format& format)
{
    std::string folder = format.name;
    std::transform(folder.begin(), folder.end(), folder.begin(),
                   [](unsigned char c) { return c == ' ' ? '-' : char(std::tolower(c)); });
    return folder;
}

class ReadAnything : public testing::TestWithParam<Format>
{
};

} // namespace

TEST_P(ReadAnything, FilesOfTheCorpusGiveWholeDataOrOneLine)
{
    const std::filesystem::path folder = FUZZ_FOLDER "/corpus/" + folderOf(GetParam());
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        SCOPED_TRACE(entry.path());
        std::ifstream file(entry.path(), std::ios::binary);
        readAnything(GetParam(), std::string(std::istreambuf_iterator<char>(file), {}));
        ++count;
    }
    EXPECT_GT(count, 0);
    EXPECT_TRUE(std::filesystem::exists(FUZZ_FOLDER "/" + folderOf(GetParam()) + ".dict"));
}

INSTANTIATE_TEST_SUITE_P(OfEachFormat, ReadAnything, testing::ValuesIn(formats()),
                         [](const auto& test) {
                             std::string name = folderOf(test.param);
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

} // namespace strandview
