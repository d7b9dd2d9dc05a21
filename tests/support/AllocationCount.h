// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_ALLOCATIONCOUNT_H
#define STRANDVIEW_TESTS_ALLOCATIONCOUNT_H

#include <cstddef>

/// What operator new has been asked for since this was made. A program that links the
/// source has an operator new of its own, which counts; one of them at a time is asked.
class AllocationCount
{
public:
    AllocationCount();
    /// The number of blocks.
    std::size_t blocks() const;
    /// The bytes of the largest one, 0 without any.
    std::size_t largest() const;
    /// The bytes of what is there and was not before, less those of what is there no more.
    std::ptrdiff_t held() const;
    /// The most that held() was.
    std::ptrdiff_t mostHeld() const;

private:
    std::size_t blocksBefore;
    std::ptrdiff_t heldBefore;
};

#endif
