// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/print.h"

#include <fstream>
#include <iostream>

#include <gmock/gmock.h>

namespace strandview {

namespace {

// Standard output goes elsewhere as long as it lives.
class Redirection
{
public:
    explicit Redirection(std::streambuf* where) : before(std::cout.rdbuf(where)) {}
    ~Redirection()
    {
        std::cout.rdbuf(before);
        std::cout.clear();
    }

private:
    std::streambuf* before;
};

TEST(Print, PrintsTheTextAsItIs)
{
    std::ostringstream output;
    {
        const Redirection redirection(output.rdbuf());
        EXPECT_EQ(print("1 %s\n2"), "");
    }
    EXPECT_EQ(output.str(), "1 %s\n2");
}

TEST(Print, TellsWhyTheOutputTookNothing)
{
    std::ofstream full("/dev/full");
    ASSERT_TRUE(full);
    const Redirection redirection(full.rdbuf());
    EXPECT_EQ(print("text"), "standard output: No space left on device");
}

} // namespace

} // namespace strandview
