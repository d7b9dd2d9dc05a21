// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_FILESOFOTHERS_H
#define STRANDVIEW_TESTS_FILESOFOTHERS_H

#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

namespace strandview {

/// Tests of files that others wrote, in the folder that STRANDVIEW_TEST_DATA names; skipped where
/// it names none.
class FilesOfOthers : public testing::Test
{
protected:
    void SetUp() override
    {
        const char* const named = std::getenv("STRANDVIEW_TEST_DATA");
        if (!named)
            GTEST_SKIP() << "skipped: STRANDVIEW_TEST_DATA is not set";
        folder = std::string(named) + "/";
    }

    std::string folder; ///< with a slash at its end
};

} // namespace strandview

#endif
