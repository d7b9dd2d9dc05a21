// SPDX-License-Identifier: GPL-3.0-or-later
// What memory the readers take beyond the data that they return.
#include <strandview/formats/formats.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <strandview/formats/readFile.h>

#include "support/AllocationCount.h"
#include "support/TemporaryFolder.h"
#include "support/largeFiles.h"

namespace strandview {

namespace {

/// For each byte of a file, and as much again for pieces of any file.
constexpr double MOST = 8;
constexpr std::size_t PIECES = 2 << 20;

std::size_t sizeOfFilesIn(const std::string& folder)
{
    std::size_t sum = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        sum += entry.file_size();
    return sum;
}

void expectLittleMemoryBeside(const TemporaryFolder& folder, const std::string& name)
{
    ReadReport report;
    const AllocationCount count;
    const std::optional<Configuration> data = readFile(folder.path(name), {}, report);
    const std::ptrdiff_t beyond = count.mostHeld() - count.held();
    ASSERT_TRUE(data) << report.error;
    const double bytes = double(sizeOfFilesIn(folder.path()));
    EXPECT_LE(double(beyond), MOST * bytes + double(PIECES)) << double(beyond) / bytes;
    testing::Test::RecordProperty("memoryPerByte", std::to_string(double(beyond) / bytes));
}

class ReaderMemory : public testing::TestWithParam<LargeFile>
{
};

TEST_P(ReaderMemory, IsAtMostEightBytesForEachOfTheFile)
{
    const TemporaryFolder folder;
    GetParam().write(folder.path(), 6000000);
    expectLittleMemoryBeside(folder, GetParam().name);
}

template <typename File>
std::string nameOfFile(const testing::TestParamInfo<File>& info)
{
    std::string name = info.param.name;
    for (char& c : name)
        c = std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
    return name;
}

INSTANTIATE_TEST_SUITE_P(OfUsualFiles, ReaderMemory, testing::ValuesIn(largeFiles()),
                         nameOfFile<LargeFile>);

constexpr std::size_t ROWS = 200000;

/// As many points, pairs or nucleotides as a file of some bytes can have.
struct DenseFile
{
    std::string name;
    std::string begin, row1, row2, end; ///< rows 1 and 2 by turns, with their number for "@"
    std::string otherName = {};         ///< of a file beside it
    std::string otherBegin = {}, otherRow = {};
};

/// As many letters as a file has rows.
std::string letters(const std::string& two)
{
    std::string text;
    while (text.size() < ROWS)
        text += two;
    return text + "\n";
}

class ReaderMemoryOfDenseFiles : public testing::TestWithParam<DenseFile>
{
};

TEST_P(ReaderMemoryOfDenseFiles, IsAtMostEightBytesForEachOfTheFile)
{
    const DenseFile& file = GetParam();
    const TemporaryFolder folder;
    std::string text = file.begin, other = file.otherBegin;
    for (std::size_t i = 0; i < ROWS; ++i) {
        std::string row = i % 2 == 0 ? file.row1 : file.row2;
        const std::size_t mark = row.find('@');
        text += mark == row.npos ? row : row.replace(mark, 1, std::to_string(i));
        other += file.otherRow;
    }
    folder.write(file.name, text + file.end);
    if (!file.otherName.empty())
        folder.write(file.otherName, other);
    expectLittleMemoryBeside(folder, file.name);
}

INSTANTIATE_TEST_SUITE_P(
    OfShortRows, ReaderMemoryOfDenseFiles,
    testing::Values(
        DenseFile{"points.raw", "", "0 0 0\n", "0 0 1\n", ""},
        DenseFile{"frames.txt", "", "0 0 0 0 0 0 1\n", "0 0 1 0 0 0 1\n", ""},
        DenseFile{"rod.json", R"({"strandview":1,"rods":[{"points":[[0,0,2])", ",[0,0,0]",
                  ",[0,0,1]", "]}]}"},
        DenseFile{"atoms.xyz", "200000\n\n", "C 0 0 0\n", "C 0 0 1\n", ""},
        DenseFile{"curve.vect", "VECT\n1 200000 0\n200000\n0\n", "0 0 0\n", "0 0 1\n", ""},
        DenseFile{"fibres.txt", "% frame 0\n% fiber\n", "1 0 0 0\n", "1 0 0 1\n", "% end\n"},
        DenseFile{"pairs.bplist", "", "{{0,0,0},{{1,0,0},{0,1,0},{0,0,1}}}\n",
                  "{{0,0,1},{{1,0,0},{0,1,0},{0,0,1}}}\n", ""},
        DenseFile{"pairs.dat", "200000\n", "1 A-T\n0 0 0\n1 0 0\n0 1 0\n0 0 1\n",
                  "1 A-T\n0 0 1\n1 0 0\n0 1 0\n0 0 1\n", ""},
        DenseFile{"steps.par", "200000\n0 step parameters\n", "A-T 0 0 0 0 0 0 0 0 0 0 0 0\n",
                  "A-T 0 0 0 0 0 0 0 0 3 0 0 0\n", ""},
        DenseFile{"strands.oxdna", "t = 0\nb = 9 9 9\nE = 0 0 0\n",
                  "0.00 0.00 @.00 1.00 0.00 0.00 0.00 0.00 1.00\n",
                  "0.00 0.00 @.00 1.00 0.00 0.00 0.00 0.00 1.00\n", "", "strands.top",
                  "200000 1 5->3\n" + letters("AA")},
        DenseFile{"strand.oxdna", "t = 0\nb = 9 9 9\nE = 0 0 0\n", "0 0 0 1 0 0 0 0 1\n",
                  "0 0 9 1 0 0 0 0 1\n", "", "strand.top", "200000 1 5->3\n" + letters("AA")},
        DenseFile{"alone.oxdna", "t = 0\nb = 9 9 9\nE = 0 0 0\n", "0 0 0 1 0 0 0 0 1\n",
                  "0 0 9 1 0 0 0 0 1\n", "", "alone.top", "200000 200000 5->3\n", "A\n"},
        DenseFile{"pairs.oxdna", "t = 0\nb = 9 9 9\nE = 0 0 0\n", "@ 0 0 1 0 0 0 0 1\n",
                  "@ 0 0 -1 0 0 0 0 -1\n", "", "pairs.top", "200000 1 5->3\n" + letters("AT")}),
    nameOfFile<DenseFile>);

} // namespace

} // namespace strandview
