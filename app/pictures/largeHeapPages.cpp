// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/largeHeapPages.h"

#include <cstddef>
#include <cstdlib>
#include <limits>

#include <malloc.h>
#include <unistd.h>

#include <algebra3d/largePages.h>

namespace strandview {

void useLargeHeapPages()
{
#ifdef __GLIBC__
    const int reserved = 1 << 28, usualPad = 1 << 17, largestOfHeap = 1 << 25; // bytes
    mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
    mallopt(M_MMAP_THRESHOLD, largestOfHeap); // the most that there may be
    mallopt(M_ARENA_MAX, 1); // a thread's own would be small pages, new for each thread that writes
    mallopt(M_TOP_PAD, reserved);
    auto* const begin = static_cast<char*>(sbrk(0));
    // More than can be left at the heap's end; compilers leave out what nobody looks at.
    void* const volatile block = std::malloc(std::size_t(largestOfHeap) / 2);
    std::free(block);
    auto* const end = static_cast<char*>(sbrk(0));
    mallopt(M_TOP_PAD, usualPad);
    if (begin < end)
        algebra3d::useLargePages(begin, std::size_t(end - begin));
#endif
}

} // namespace strandview
