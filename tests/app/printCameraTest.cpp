// SPDX-License-Identifier: GPL-3.0-or-later
#include "camera/printCamera.h"

#include <fstream>
#include <iostream>

#include <gmock/gmock.h>

namespace strandview {

namespace {

const CameraNumbers CAMERA{false, {1, 2.5f, -3}, {0, 0, 0, 1}, 4, 5};

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

TEST(PrintCamera, PrintsALineThatGivesTheCameraBack)
{
    std::ostringstream output;
    {
        const Redirection redirection(output.rdbuf());
        EXPECT_EQ(printCamera(CAMERA), "");
    }
    ASSERT_EQ(output.str(), formatCamera(CAMERA) + "\n");
    EXPECT_EQ(parseCamera(formatCamera(CAMERA)), CAMERA);
}

TEST(PrintCamera, TellsWhyTheOutputTookNothing)
{
    std::ofstream full("/dev/full");
    ASSERT_TRUE(full);
    const Redirection redirection(full.rdbuf());
    EXPECT_EQ(printCamera(CAMERA), "standard output: No space left on device");
}

} // namespace

} // namespace strandview
