// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/AllocationCount.h"

#include <atomic>
#include <cstdlib>
#include <new>

#include <malloc.h>

namespace {

std::atomic<std::size_t> allocations{0}; // Mesa compiles on threads of its own
std::atomic<std::size_t> largestAllocation{0};
std::atomic<std::ptrdiff_t> bytesHeld{0};
std::atomic<std::ptrdiff_t> mostBytesHeld{0};

void* allocate(std::size_t size, std::size_t alignment)
{
    const std::size_t rounded = (size / alignment + 1) * alignment;
    void* const block = std::aligned_alloc(alignment, rounded);
    if (!block)
        std::abort();
    ++allocations;
    if (size > largestAllocation)
        largestAllocation = size;
    const std::ptrdiff_t usable = std::ptrdiff_t(malloc_usable_size(block));
    const std::ptrdiff_t held = bytesHeld += usable;
    if (held > mostBytesHeld)
        mostBytesHeld = held;
    return block;
}

void* allocate(std::size_t size) { return allocate(size, alignof(std::max_align_t)); }

void release(void* block)
{
    bytesHeld -= std::ptrdiff_t(malloc_usable_size(block));
    std::free(block);
}

} // namespace

AllocationCount::AllocationCount() : blocksBefore(allocations), heldBefore(bytesHeld)
{
    largestAllocation = 0;
    mostBytesHeld = heldBefore;
}

std::size_t AllocationCount::blocks() const { return allocations - blocksBefore; }

std::size_t AllocationCount::largest() const { return largestAllocation; }

std::ptrdiff_t AllocationCount::held() const { return bytesHeld - heldBefore; }

std::ptrdiff_t AllocationCount::mostHeld() const { return mostBytesHeld - heldBefore; }

void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void* operator new(std::size_t size, std::align_val_t alignment)
{
    return allocate(size, std::size_t(alignment));
}
void operator delete(void* block) noexcept { release(block); }
void operator delete[](void* block) noexcept { release(block); }
void operator delete(void* block, std::size_t) noexcept { release(block); }
void operator delete[](void* block, std::size_t) noexcept { release(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { release(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { release(block); }
void operator delete(void* block, std::align_val_t) noexcept { release(block); }
void operator delete(void* block, std::size_t, std::align_val_t) noexcept { release(block); }
