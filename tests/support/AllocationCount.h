// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_ALLOCATIONCOUNT_H
#define STRANDVIEW_TESTS_ALLOCATIONCOUNT_H

#include <cstddef>

/// What operator new has been asked for since this was made. A program that links the
/// source has an operator new of its own, which counts.
class AllocationCount
{
public:
    AllocationCount();
    /// The number of blocks.
    std::size_t blocks() const;
    /// The bytes of the largest one, 0 without any.
    std::size_t largest() const;

private:
    std::size_t before;
};

#endif
