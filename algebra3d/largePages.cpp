// SPDX-License-Identifier: GPL-3.0-or-later
#include <algebra3d/largePages.h>

#ifdef __linux__
#include <cstdint>

#include <sys/mman.h>
#include <unistd.h>
#endif

namespace algebra3d {

void useLargePages([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t bytes)
{
#if defined(__linux__) && defined(MADV_HUGEPAGE)
    constexpr std::size_t largePage = 2 * 1024 * 1024;
    if (bytes < largePage)
        return;
    const auto page = std::uintptr_t(sysconf(_SC_PAGESIZE));
    const std::uintptr_t begin = (std::uintptr_t(memory) + page - 1) / page * page;
    const std::uintptr_t end = (std::uintptr_t(memory) + bytes) / page * page;
    madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
#endif
}

} // namespace algebra3d
