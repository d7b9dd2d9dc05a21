// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/Unpacker.h>

#include <random>

#include <gmock/gmock.h>

#include "support/pack.h"

namespace strandview {

namespace {

using Pack = std::string (*)(const std::string&);

class UnpackerTest : public testing::TestWithParam<Pack>
{
protected:
    std::string pack(const std::string& bytes) const { return GetParam()(bytes); }
};

/// Digits, which are packed by no more than 2.
std::string digits(std::size_t count)
{
    std::mt19937 random(7);
    std::string text;
    for (std::size_t i = 0; i < count; ++i)
        text += char('0' + random() % 10);
    return text;
}

struct Unpacked
{
    std::string bytes, fault;
    bool isWhole = false;
};

Unpacked unpacked(const std::string& packed, std::size_t piece, std::size_t room)
{
    Unpacked result;
    const auto unpacker = Unpacker::of(packed);
    EXPECT_TRUE(unpacker);
    std::string to(room, '\0');
    for (std::size_t begin = 0; unpacker && begin < packed.size() && result.fault.empty();) {
        std::string_view rest = std::string_view(packed).substr(begin, piece);
        const std::size_t before = rest.size();
        std::size_t given = 0;
        do {
            const std::size_t left = rest.size();
            result.fault = unpacker->unpack(rest, to.data(), room, given);
            EXPECT_TRUE(given > 0 || rest.size() < left || rest.empty() || !result.fault.empty());
            result.bytes.append(to, 0, given);
        } while (result.fault.empty() && (given > 0 || !rest.empty()));
        begin += before - rest.size();
    }
    result.isWhole = unpacker && unpacker->isWhole();
    return result;
}

} // namespace

TEST_P(UnpackerTest, GivesWhatWasPackedWhateverThePieces)
{
    const std::string text = digits(100000);
    for (const std::size_t piece : {1, 7, 4096, 1000000}) {
        for (const std::size_t room : {1, 1000, 200000}) {
            if (piece == 1 && room == 1)
                continue;
            const Unpacked found = unpacked(pack(text), piece, room);
            EXPECT_EQ(found.fault, "");
            EXPECT_TRUE(found.isWhole);
            EXPECT_TRUE(found.bytes == text) << piece << " " << room;
        }
    }
}

TEST_P(UnpackerTest, SeveralOneBehindTheOtherAreOne)
{
    const Unpacked found = unpacked(pack("one ") + pack("") + pack("two"), 5, 100);
    EXPECT_EQ(found.bytes, "one two");
    EXPECT_TRUE(found.isWhole);
}

TEST_P(UnpackerTest, WhatIsCutIsNotWhole)
{
    const std::string packed = pack(digits(1000));
    for (std::size_t size = Unpacker::BYTES_TO_KNOW_BY; size < packed.size(); ++size) {
        const Unpacked found = unpacked(packed.substr(0, size), 100, 100);
        EXPECT_FALSE(found.isWhole) << size;
        EXPECT_EQ(found.fault, "") << size;
    }
}

TEST_P(UnpackerTest, WhatIsDamagedIsNotTakenForWhole)
{
    const std::string text = digits(1000), packed = pack(text);
    std::size_t seen = 0;
    for (std::size_t at = 20; at < packed.size(); at += 7) {
        std::string damaged = packed;
        damaged[at] = char(damaged[at] ^ 0x55);
        const Unpacked found = unpacked(damaged, 4096, 4096);
        seen += !found.fault.empty();
        // Zstandard has no check sum unless it is asked for one.
        EXPECT_TRUE(!found.fault.empty() || !found.isWhole || found.bytes != text);
    }
    EXPECT_GT(seen, 0u);
}

INSTANTIATE_TEST_SUITE_P(OfEachKind, UnpackerTest, testing::Values(packedByGzip, packedByZstandard),
                         [](const auto& test) {
                             return test.param == Pack(packedByGzip) ? "Gzip" : "Zstandard";
                         });

TEST(Unpacker, GzipMayBePadded)
{
    const Unpacked found = unpacked(packedByGzip("text") + std::string(1000, '\0'), 300, 100);
    EXPECT_EQ(found.bytes, "text");
    EXPECT_EQ(found.fault, "");
    EXPECT_TRUE(found.isWhole);
}

TEST(Unpacker, OfAnythingElseThereIsNone)
{
    for (const char* text : {"", "\x1f", "0 0 0", "\x28\xb5\x2f", "PK\x03\x04"})
        EXPECT_FALSE(Unpacker::of(text)) << text;
}

TEST(Unpacker, TheEndingOfAPackedFileIsLeftOut)
{
    EXPECT_EQ(withoutPackedEnding("a.b/run.dat.zst"), "a.b/run.dat");
    EXPECT_EQ(withoutPackedEnding("1BNA.CIF.GZ"), "1BNA.CIF");
    for (const char* path : {"", "-", "run.dat", "gz", ".gz", "a.gz/run"})
        EXPECT_EQ(withoutPackedEnding(path), path);
}

} // namespace strandview
