// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/UnpackedFile.h>

#include <algorithm>
#include <filesystem>

#include <gmock/gmock.h>

#include "support/TemporaryFolder.h"
#include "support/pack.h"

namespace strandview {

namespace {

class UnpackedFileTest : public testing::Test
{
protected:
    void give(const std::string& bytes, const std::string& firstBytes = {})
    {
        packed = bytes;
        file = std::make_unique<UnpackedFile>(Unpacker::of(firstBytes + bytes), firstBytes);
    }
    std::string at(std::uint64_t offset, std::size_t count)
    {
        std::string bytes(count, '?');
        std::size_t got = 0;
        const bool isRead = file->read(
            offset, bytes.data(), count, got,
            [this](char* to, std::size_t room, std::size_t& given) {
                given = std::min({room, atATime, packed.size() - taken});
                std::copy_n(packed.begin() + std::ptrdiff_t(taken), given, to);
                taken += given;
                return !isBroken;
            },
            fault);
        return isRead ? bytes.substr(0, got) : "failed";
    }

    std::string packed, fault;
    std::size_t taken = 0, atATime = 1000;
    bool isBroken = false;
    std::unique_ptr<UnpackedFile> file;
};

std::string numbers(int count)
{
    std::string text;
    for (int i = 0; i < count; ++i)
        text += std::to_string(100000 + i);
    return text;
}

} // namespace

TEST_F(UnpackedFileTest, IsReadAtAnyPlaceAndUnpackedNoFurtherThanThat)
{
    give(packedByGzip(numbers(300000)));
    EXPECT_EQ(at(6, 6), "100001");
    EXPECT_LT(taken, packed.size() / 2);
    EXPECT_EQ(at(6 * 299999, 100), "399999");
    EXPECT_EQ(taken, packed.size());
    EXPECT_EQ(at(6 * 1000, 6), "101000");
    EXPECT_EQ(at(6 * 300000, 6), "");
    EXPECT_EQ(at(std::uint64_t(-1), 6), "");
    EXPECT_EQ(fault, "");
}

TEST_F(UnpackedFileTest, GoesOnFromBytesThatWereReadAlready)
{
    const std::string whole = packedByZstandard("some text");
    give(whole.substr(4), whole.substr(0, 4));
    EXPECT_EQ(at(5, 100), "text");
}

TEST_F(UnpackedFileTest, IsNoFileThatAnybodySees)
{
    const TemporaryFolder folder;
    const char* const before = std::getenv("TMPDIR");
    const std::string kept = before ? before : "";
    ::setenv("TMPDIR", folder.path().c_str(), 1);
    give(packedByGzip(numbers(1000)));
    EXPECT_EQ(at(0, 6), "100000");
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
    before ? ::setenv("TMPDIR", kept.c_str(), 1) : ::unsetenv("TMPDIR");
}

TEST_F(UnpackedFileTest, FaultsAreTold)
{
    const std::string whole = packedByGzip(numbers(10000));
    give(whole.substr(0, whole.size() - 5));
    EXPECT_EQ(at(0, 6), "100000") << "as long as it is not reached";
    EXPECT_EQ(at(0, 100000), "failed");
    EXPECT_EQ(fault, "found the end of the packed data too early, expected all of it");
    taken = 0;
    give(whole.substr(0, 20) + std::string(2000, '\xff'));
    EXPECT_EQ(at(0, 1000), "failed");
    EXPECT_EQ(fault, "found damaged data, packed by gzip");
    taken = 0;
    isBroken = true;
    give(whole);
    EXPECT_EQ(at(0, 6), "failed");
    EXPECT_EQ(fault, "") << "whoever reads knows";
}

TEST_F(UnpackedFileTest, AMebibyteWithoutALetterOrDigitIsRefusedAtOnce)
{
    constexpr std::size_t most = 1 << 20;
    const std::string points = "0 0 0\n0 0 1\n";
    for (const char nothing : {'\0', '\n', ' ', '['}) {
        taken = 0;
        give(packedByGzip(points + std::string(most, nothing) + points));
        EXPECT_EQ(at(points.size() + most, points.size()), points);
        taken = 0;
        give(packedByGzip(points + std::string(50 * most, nothing)));
        EXPECT_EQ(at(0, 5), "0 0 0");
        EXPECT_EQ(at(40 * most, 1), "failed");
        EXPECT_EQ(fault, "found more than 1 MiB on end without a letter or digit, expected data");
        EXPECT_LT(taken, packed.size() / 4);
    }
}

TEST_F(UnpackedFileTest, ArraysAndArchivesMayHaveManyZeros)
{
    for (const std::string& beginning : {std::string("\x93NUMPY\x01"), std::string("PK\x03")}) {
        taken = 0;
        give(packedByGzip(beginning + std::string(3 << 20, '\0') + "end"));
        EXPECT_EQ(at(beginning.size() + (3 << 20), 3), "end") << fault;
    }
    atATime = 1; // as a slow pipe gives it
    taken = 0;
    give(packedByGzip("\x93NUMPY\x01" + std::string(3 << 20, '\0') + "end"));
    EXPECT_EQ(at(7 + (3 << 20), 3), "end") << fault;
}

TEST_F(UnpackedFileTest, WhatIsMadeToFillTheDiskIsRefused)
{
    // 128 KiB of digits in a few bytes, a hundred times.
    const std::string zeros = packedByZstandard(std::string(128 * 1024, '0'));
    for (int i = 0; i < 100; ++i)
        packed += zeros;
    file = std::make_unique<UnpackedFile>(Unpacker::of(packed), "", 10 * 1024 * 1024);
    EXPECT_EQ(at(9 * 1024 * 1024, 1), "0");
    EXPECT_EQ(at(12 * 1024 * 1024, 1), "failed");
    EXPECT_EQ(fault, "found data more than 1000 times as large as they are packed, expected less");
}

} // namespace strandview
