// SPDX-License-Identifier: GPL-3.0-or-later
#include <algebra3d/largePages.h>

#include <cstdint>
#include <fstream>
#include <numeric>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace algebra3d {

namespace {

/// What the system keeps of the memory that an address is in; empty where it tells nothing.
std::string flagsAt(const void* address)
{
    std::ifstream maps("/proc/self/smaps");
    bool isThere = false;
    for (std::string line; std::getline(maps, line);) {
        std::istringstream words(line);
        std::uintptr_t begin = 0, end = 0;
        char dash = 0;
        if (words >> std::hex >> begin >> dash >> end && dash == '-')
            isThere = std::uintptr_t(address) >= begin && std::uintptr_t(address) < end;
        else if (isThere && line.rfind("VmFlags:", 0) == 0)
            return line + " ";
    }
    return {};
}

} // namespace

TEST(LargePages, OfManyNumbersAreAskedFor)
{
    std::vector<double> numbers;
    reserveMany(numbers, 10'000'000);
    ASSERT_GE(numbers.capacity(), 10'000'000u);
    const std::string flags = flagsAt(numbers.data() + 5'000'000);
    if (flags.empty())
        GTEST_SKIP() << "the system does not tell";
    EXPECT_NE(flags.find(" hg "), std::string::npos) << flags;
}

TEST(LargePages, RoomLeavesWhatIsThereAlone)
{
    std::vector<int> numbers(1'000'000);
    std::iota(numbers.begin(), numbers.end(), 0);
    const std::vector<int> before = numbers;
    reserveMany(numbers, 9'000'000);
    EXPECT_GE(numbers.capacity(), 9'000'000u);
    EXPECT_EQ(numbers, before);
    const int* const place = numbers.data();
    reserveMany(numbers, 8'000'000); // there is more
    EXPECT_EQ(numbers.data(), place);
}

TEST(LargePages, WhatGrowsByOneDoublesItsRoom)
{
    std::vector<int> numbers;
    std::size_t moves = 0;
    for (int i = 0; i < 1'000'000; ++i) {
        const int* const place = numbers.data();
        reserveNext(numbers);
        moves += place != numbers.data();
        numbers.push_back(i);
    }
    EXPECT_LT(moves, 20u);
    EXPECT_EQ(numbers[999'999], 999'999);
}

} // namespace algebra3d
