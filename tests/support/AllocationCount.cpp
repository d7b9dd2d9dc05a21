// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/AllocationCount.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> allocations{0}; // Mesa compiles on threads of its own
std::atomic<std::size_t> largestAllocation{0};

void* allocate(std::size_t size, std::size_t alignment)
{
    const std::size_t rounded = (size / alignment + 1) * alignment;
    void* const block = std::aligned_alloc(alignment, rounded);
    if (!block)
        std::abort();
    ++allocations;
    if (size > largestAllocation)
        largestAllocation = size;
    return block;
}

void* allocate(std::size_t size) { return allocate(size, alignof(std::max_align_t)); }

} // namespace

AllocationCount::AllocationCount() : before(allocations) { largestAllocation = 0; }

std::size_t AllocationCount::blocks() const { return allocations - before; }

std::size_t AllocationCount::largest() const { return largestAllocation; }

void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void* operator new(std::size_t size, std::align_val_t alignment)
{
    return allocate(size, std::size_t(alignment));
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { std::free(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { std::free(block); }
void operator delete(void* block, std::align_val_t) noexcept { std::free(block); }
void operator delete(void* block, std::size_t, std::align_val_t) noexcept { std::free(block); }
