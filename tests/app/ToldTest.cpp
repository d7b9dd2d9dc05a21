// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/Told.h"

#include <gtest/gtest.h>

namespace strandview {

namespace {

TEST(Told, ANoticeOfAFileTellsTheFileLast)
{
    const Told told = toldOf("/a: b/rods.txt: 2 points left out", {"other.txt", "/a: b/rods.txt"});
    EXPECT_EQ(told.what, "2 points left out");
    EXPECT_EQ(told.name, "/a: b/rods.txt");
    EXPECT_EQ(toLine(told), "2 points left out – /a: b/rods.txt");
}

TEST(Told, OfAFrameItsNumberIsToldOnce)
{
    const Told told = toldOfFrame(3, {"2 points left out", "run.txt"});
    EXPECT_EQ(toLine(told), "frame 3: 2 points left out – run.txt");
    EXPECT_EQ(toLine(toldOfFrame(3, told)), toLine(told));
}

TEST(Told, NoticesOfAnyFileAndFrameOfASeriesAreAlike)
{
    const std::vector<std::string> files{"a/run_1.txt", "a/run_2.txt"};
    const std::string alone = withoutPlace("a/run_1.txt: 1 point left out", files);
    EXPECT_EQ(withoutPlace("a/run_2.txt: 1 point left out", files), alone);
    EXPECT_EQ(withoutPlace("a/run_2.txt: frame 17: 1 point left out", files), alone);
    EXPECT_NE(withoutPlace("a/run_2.txt: 2 points left out", files), alone);
    EXPECT_NE(withoutPlace("a/run_3.txt: 1 point left out", files), alone);
    EXPECT_EQ(withoutPlace("a/run_1.txt:7: found x", files),
              withoutPlace("a/run_2.txt:7: found x", files));
    EXPECT_EQ(withoutPlace("frame 3: not superposed", files),
              withoutPlace("frame 12: not superposed", files));
    EXPECT_NE(withoutPlace("the frame 3: not superposed", files),
              withoutPlace("the frame 12: not superposed", files));
}

TEST(Told, ANoticeOfNoFileStaysAsItIs)
{
    const Told told = toldOf("3 rods: no such scalar", {"rods.txt"});
    EXPECT_EQ(told.name, "");
    EXPECT_EQ(toLine(told), "3 rods: no such scalar");
}

} // namespace

} // namespace strandview
