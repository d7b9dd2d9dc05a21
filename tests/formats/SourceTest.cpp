// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/Source.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <optional>

#include <gmock/gmock.h>

#include "support/TemporaryFolder.h"
#include "support/WrittenPipe.h"
#include "support/pack.h"

namespace strandview {

namespace {

/// The numbers from 0 on, of six digits and a line end each: what stands at 7 i is i.
std::string numberedLines(int count)
{
    std::string text;
    for (int i = 0; i < count; ++i) {
        const std::string number = std::to_string(i);
        text += std::string(6 - number.size(), '0') + number + "\n";
    }
    return text;
}

constexpr std::uint64_t lineLength = 7;

class SourceTest : public testing::Test
{
protected:
    std::unique_ptr<Source> open(const std::string& path) { return Source::open(path, report); }

    std::optional<std::string> at(Source& source, std::uint64_t offset, std::size_t count)
    {
        return source.readAt(offset, count, {}, report);
    }

    std::unique_ptr<Source> openPipe(const std::string& text)
    {
        pipe.emplace(folder.path("pipe"), text);
        return open(folder.path("pipe"));
    }

    TemporaryFolder folder;
    ReadReport report;
    std::optional<WrittenPipe> pipe;
};

} // namespace

TEST_F(SourceTest, AFileHasItsPathForANameAndItsSize)
{
    const std::string path = folder.write("a\nb.txt", "12345");
    const auto source = open(path);
    ASSERT_TRUE(source);
    EXPECT_EQ(source->getPath(), path);
    EXPECT_EQ(source->getName(), folder.path("a\\x0ab.txt"));
    EXPECT_EQ(source->getSize(), 5u);
    EXPECT_EQ(source->readAll({}, report), "12345");
}

TEST_F(SourceTest, AFileIsReadAtAnyPlace)
{
    const int lines = 1000000;
    const auto source = open(folder.write("long", numberedLines(lines)));
    ASSERT_TRUE(source);
    for (const int line : {999999, 0, 500000, 3})
        EXPECT_EQ(at(*source, line * lineLength, 6)->substr(0, 6),
                  numberedLines(lines).substr(line * lineLength, 6));
    const std::uint64_t end = lines * lineLength;
    EXPECT_EQ(at(*source, end - 3, 100), "99\n");
    EXPECT_EQ(at(*source, end, 100), "");
    EXPECT_EQ(at(*source, end + 5, 100), "");
    EXPECT_EQ(at(*source, 10, 0), "");
    // More than is made room for at once.
    EXPECT_TRUE(at(*source, 1, end) == numberedLines(lines).substr(1)) << "megabytes";
}

TEST_F(SourceTest, ReadingAtAPlaceLeavesTheBeginningToBeRead)
{
    const auto source = open(folder.write("a", "0123456789"));
    EXPECT_EQ(at(*source, 4, 3), "456");
    EXPECT_EQ(source->readBeginning(3, {}, report), "012");
    EXPECT_EQ(source->readBeginning(2, {}, report), "01");
    EXPECT_EQ(at(*source, 1, 2), "12");
    EXPECT_EQ(at(*source, 2, 6), "234567");
    EXPECT_EQ(source->readAll({}, report), "0123456789");
    EXPECT_EQ(source->readBeginning(100, {}, report), "0123456789");
    EXPECT_EQ(at(*source, 8, 6), "89");
}

TEST_F(SourceTest, AFileThatGrewIsReadToItsNewEnd)
{
    const std::string path = folder.write("growing", "01234");
    const auto source = open(path);
    std::ofstream(path, std::ios::app) << "56789";
    EXPECT_EQ(at(*source, 3, 100), "3456789");
    EXPECT_EQ(source->readAll({}, report), "0123456789");
}

TEST_F(SourceTest, APipeIsReadAtAnyPlaceThoughItHasNone)
{
    const int lines = 300000; // more than a pipe holds, and than is made room for at once
    const auto source = openPipe(numberedLines(lines));
    ASSERT_TRUE(source);
    EXPECT_EQ(source->getSize(), std::nullopt);
    EXPECT_EQ(source->readBeginning(6, {}, report), "000000");
    EXPECT_EQ(at(*source, 1000 * lineLength, 6), "001000");
    EXPECT_EQ(at(*source, 7 * lineLength, 6), "000007") << "before what was read";
    EXPECT_EQ(at(*source, lines * lineLength - 3, 50), "99\n");
    EXPECT_EQ(at(*source, lines * lineLength + 3, 50), "");
    EXPECT_TRUE(source->readAll({}, report) == numberedLines(lines)) << "megabytes";
}

TEST_F(SourceTest, StandardInputHasItsNameAndNoPath)
{
    ASSERT_TRUE(std::freopen(folder.write("input", "0123456789").c_str(), "rb", stdin));
    const auto source = open("-");
    ASSERT_TRUE(source);
    EXPECT_EQ(source->getName(), "standard input");
    EXPECT_EQ(source->getPath(), "");
    EXPECT_EQ(at(*source, 5, 2), "56");
    EXPECT_EQ(source->readAll({}, report), "0123456789");
}

TEST_F(SourceTest, StandardInputIsLeftOpen)
{
    ASSERT_TRUE(std::freopen(folder.write("input", "0").c_str(), "rb", stdin));
    EXPECT_EQ(open("-")->readAll({}, report), "0");
    EXPECT_EQ(open("-")->readAll({}, report), "") << report.error;
    EXPECT_EQ(report.error, "");
}

TEST_F(SourceTest, BytesAreASourceOfAnyName)
{
    const auto source = Source::ofBytes("a\nb", "0123");
    EXPECT_EQ(source->getName(), "a\\x0ab");
    EXPECT_EQ(source->getSize(), 4u);
    EXPECT_EQ(at(*source, 1, 9), "123");
    EXPECT_EQ(source->readBeginning(2, {}, report), "01");
    EXPECT_EQ(source->readAll({}, report), "0123");
    EXPECT_EQ(Source::ofBytes("", "")->readAll({}, report), "");
}

TEST_F(SourceTest, WhatTheSystemGivesNoSizeOfIsReadAllTheSame)
{
    if (!std::filesystem::exists("/proc/self/status"))
        GTEST_SKIP() << "skipped: no /proc/self/status";
    const auto source = open("/proc/self/status");
    EXPECT_EQ(source->getSize(), std::nullopt);
    EXPECT_EQ(at(*source, 0, 5), "Name:");
    EXPECT_THAT(std::string(*source->readAll({}, report)), testing::HasSubstr("VmPeak"));
}

TEST_F(SourceTest, GivesTheSystemsReasonForWhatCannotBeRead)
{
    const std::string missing = folder.path("none");
    EXPECT_FALSE(open(missing));
    EXPECT_EQ(report.error, missing + ": cannot be read: No such file or directory");

    const auto directory = open(folder.path(""));
    ASSERT_TRUE(directory);
    const std::string expected = directory->getName() + ": cannot be read: Is a directory";
    report.error.clear();
    EXPECT_FALSE(directory->readAll({}, report));
    EXPECT_EQ(report.error, expected);
    report.error.clear();
    EXPECT_FALSE(directory->readBeginning(5, {}, report));
    EXPECT_EQ(report.error, expected);
    report.error.clear();
    EXPECT_FALSE(at(*directory, 5, 5));
    EXPECT_EQ(report.error, expected);
}

TEST_F(SourceTest, GivesTheSystemsReasonForAPlaceThatCannotBeRead)
{
    // The memory of this process opens, but nothing can be read at its address 0.
    if (!std::filesystem::exists("/proc/self/mem"))
        GTEST_SKIP() << "skipped: no /proc/self/mem";
    const auto source = open("/proc/self/mem");
    ASSERT_TRUE(source);
    EXPECT_FALSE(at(*source, 0, 5));
    EXPECT_EQ(report.error, "/proc/self/mem: cannot be read: Input/output error");
}

TEST_F(SourceTest, AsksWhetherToGoOnBeforeEveryPiece)
{
    const std::string path = folder.write("a", "0123456789");
    ReadOptions stopped;
    std::vector<double> shares;
    stopped.goOn = [&](double share) {
        shares.push_back(share);
        return false;
    };
    const std::string expected = path + ": reading was stopped";
    EXPECT_FALSE(open(path)->readAll(stopped, report));
    EXPECT_EQ(report.error, expected);
    report.error.clear();
    EXPECT_FALSE(open(path)->readAt(2, 3, stopped, report));
    EXPECT_EQ(report.error, expected);
    EXPECT_EQ(shares, std::vector<double>({0, 0}));
}

TEST_F(SourceTest, OpensAnotherFileOfItsFolder)
{
    const auto source = open(folder.write("run.traj", "frames"));
    folder.write("run.top", "topology");
    folder.write("masses", "numbers");
    for (const auto& [companion, expected] :
         {std::pair(source->openWithEnding(".top", report), "topology"),
          std::pair(source->openBeside("masses", report), "numbers")}) {
        ASSERT_TRUE(companion) << report.error;
        EXPECT_EQ(companion->readAll({}, report), expected);
    }
    EXPECT_EQ(source->openWithEnding(".top", report)->getName(), folder.path("run.top"));
    EXPECT_FALSE(source->openBeside("none", report));
    EXPECT_EQ(report.error, folder.path("none") + ": cannot be read: No such file or directory");
}

TEST_F(SourceTest, NothingLiesBesideWhatHasNoFolder)
{
    EXPECT_FALSE(open("-")->openBeside("masses", report));
    EXPECT_EQ(report.error, "standard input: found no folder, expected 'masses' beside it");
    EXPECT_FALSE(Source::ofBytes("text", "")->openWithEnding(".top", report));
    EXPECT_EQ(report.error, "text: found no folder, expected '*.top' beside it");
}

TEST_F(SourceTest, WhatIsPackedIsReadAsWhatWasPacked)
{
    const std::string text = numberedLines(200000);
    for (const auto pack : {packedByGzip, packedByZstandard}) {
        const std::string path = folder.write("lines.txt.any", pack(text));
        EXPECT_TRUE(open(path)->readAll({}, report) == text);
        const auto source = open(path);
        EXPECT_EQ(source->readBeginning(9, {}, report), "000000\n00");
        EXPECT_EQ(source->getSize(), std::nullopt);
        EXPECT_EQ(at(*source, 199999 * lineLength, 100), "199999\n");
        EXPECT_EQ(at(*source, 3 * lineLength, 6), "000003");
        EXPECT_TRUE(source->readAll({}, report) == text);
        EXPECT_EQ(at(*source, 7 * lineLength, 6), "000007");
    }
    EXPECT_EQ(report.error, "");
}

TEST_F(SourceTest, APackedPipeIsReadAtAnyPlace)
{
    const auto source = openPipe(packedByGzip(numberedLines(200000)));
    ASSERT_TRUE(source);
    EXPECT_EQ(at(*source, 199999 * lineLength, 100), "199999\n");
    EXPECT_EQ(at(*source, 3 * lineLength, 6), "000003");
    EXPECT_EQ(source->readBeginning(6, {}, report), "000000");
}

TEST_F(SourceTest, PackedFaultsAreOneLineWithTheName)
{
    const std::string packed = packedByGzip(numberedLines(1000));
    const std::string path = folder.write("cut.gz", packed.substr(0, packed.size() / 2));
    EXPECT_FALSE(open(path)->readAll({}, report));
    EXPECT_EQ(report.error,
              path + ": found the end of the packed data too early, expected all of it");
}

TEST_F(SourceTest, WhatIsShorterThanAMarkOfPackedDataIsReadAsItIs)
{
    for (const std::string& text : {std::string(), std::string("\x1f"), std::string("abc")}) {
        EXPECT_EQ(open(folder.write("short", text))->readAll({}, report), text);
        EXPECT_EQ(at(*open(folder.path("short")), 0, 9), text);
    }
    EXPECT_EQ(openPipe("ab")->readAll({}, report), "ab");
}

TEST_F(SourceTest, AnotherEndingIsThatBehindAPackedOne)
{
    folder.write("run.top", "beside");
    const auto beside = open(folder.write("run.dat.zst", ""))->openWithEnding(".top", report);
    ASSERT_TRUE(beside) << report.error;
    EXPECT_EQ(beside->readAll({}, report), "beside");
}

} // namespace strandview
