// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/largeHeapPages.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/resource.h>

namespace strandview {

namespace {

// Of the process, to touch so many bytes in blocks as a driver allocates them.
long faultsToTouch(std::size_t bytes)
{
    const std::size_t block = 1 << 16;
    rusage before{}, after{};
    getrusage(RUSAGE_SELF, &before);
    std::vector<void*> blocks;
    for (std::size_t i = 0; i < bytes / block; ++i) {
        blocks.push_back(std::malloc(block));
        std::memset(blocks.back(), 1, block);
    }
    getrusage(RUSAGE_SELF, &after);
    for (void* each : blocks)
        std::free(each);
    return after.ru_minflt - before.ru_minflt;
}

bool systemHasLargePages()
{
    std::string modes;
    std::getline(std::ifstream("/sys/kernel/mm/transparent_hugepage/enabled"), modes);
    return modes.find("[madvise]") != std::string::npos;
}

} // namespace

// In processes of their own: what is asked for stays so.
TEST(LargeHeapPages, AreTouchedInFarFewerFaults)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "sanitizers have a heap of their own";
#endif
    if (!systemHasLargePages())
        GTEST_SKIP() << "the system gives none to who asks for them";
    const std::size_t bytes = 100 << 20; // 25,600 small pages
    EXPECT_EXIT(std::exit(faultsToTouch(bytes) > 20000 ? 0 : 1), testing::ExitedWithCode(0), "");
    EXPECT_EXIT(
        {
            useLargeHeapPages();
            std::exit(faultsToTouch(bytes) < 5000 ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

} // namespace strandview
