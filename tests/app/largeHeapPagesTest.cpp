// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/largeHeapPages.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <thread>

#include <gtest/gtest.h>

namespace strandview {

namespace {

// The bytes of the heap for which large pages are asked, as the system has it noted ("hg"). How
// many it gives depends on what it has in one piece.
std::size_t bytesAskedFor()
{
    std::ifstream mappings("/proc/self/smaps");
    std::size_t sum = 0, size = 0;
    bool isHeap = false;
    for (std::string line; std::getline(mappings, line);) {
        std::istringstream words(line);
        std::string key, flag;
        words >> key;
        if (key.find('-') != key.npos) {
            isHeap = line.find("[heap]") != line.npos;
        } else if (key == "Size:") {
            words >> size;
        } else if (key == "VmFlags:" && isHeap) {
            while (words >> flag)
                sum += flag == "hg" ? 1024 * size : 0;
        }
    }
    return sum;
}

// Where a thread of its own gets memory, from where this one does.
std::size_t distanceOfThreadsMemory()
{
    const std::size_t size = 1 << 20;
    const std::unique_ptr<char[]> own(new char[size]);
    std::unique_ptr<char[]> other;
    std::thread([&other] { other.reset(new char[size]); }).join();
    const auto placeOf = [](const void* block) { return reinterpret_cast<std::uintptr_t>(block); };
    const std::uintptr_t a = placeOf(own.get()), b = placeOf(other.get());
    return std::max(a, b) - std::min(a, b);
}

bool systemHasLargePages()
{
    std::string modes;
    std::getline(std::ifstream("/sys/kernel/mm/transparent_hugepage/enabled"), modes);
    return !modes.empty();
}

} // namespace

// In processes of their own, begun anew: what is asked for stays so, and what other tests have
// freed would be taken first.
TEST(LargeHeapPages, AreAskedForAQuarterOfAGigabyte)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "sanitizers have a heap of their own";
#endif
    if (!systemHasLargePages())
        GTEST_SKIP() << "the system has none";
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const std::size_t most = 1 << 27, asked = (1 << 28) - (1 << 22);
    EXPECT_EXIT(std::exit(bytesAskedFor() < most ? 0 : 1), testing::ExitedWithCode(0), "");
    EXPECT_EXIT(
        {
            useLargeHeapPages();
            std::exit(bytesAskedFor() > asked ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST(LargeHeapPages, AreThoseOfEveryThread)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "sanitizers have a heap of their own";
#endif
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            useLargeHeapPages();
            std::exit(distanceOfThreadsMemory() < (1 << 28) ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

} // namespace strandview
