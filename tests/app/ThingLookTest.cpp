// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/ThingLook.h"

#include <gtest/gtest.h>

namespace strandview {

namespace {

const ThingId FIRST{ThingKind::ROD, 0}, SECOND{ThingKind::ROD, 1}, DNA{ThingKind::DNA, 0};

} // namespace

TEST(ThingLook, WhatNothingIsSaidOfIsAsOthersAre)
{
    ThingLooks looks;
    EXPECT_FALSE(looks.of(FIRST).isHidden());
    looks.areOthersHidden = true;
    EXPECT_TRUE(looks.of(FIRST).isHidden());
    looks.ofThings[FIRST].name = "arm";
    EXPECT_TRUE(looks.of(FIRST).isHidden());
    looks.ofThings[FIRST].hidden = false;
    EXPECT_FALSE(looks.of(FIRST).isHidden());
}

TEST(ThingLook, ThoseThatAreShownAloneHideAllOthers)
{
    ThingLooks looks;
    looks.ofThings[FIRST].hidden = false;
    looks.showOnly({SECOND, DNA});
    EXPECT_TRUE(looks.of(FIRST).isHidden());
    EXPECT_FALSE(looks.of(SECOND).isHidden());
    EXPECT_FALSE(looks.of(DNA).isHidden());
    EXPECT_TRUE(looks.of({ThingKind::ROD, 7}).isHidden());
}

TEST(ThingLook, AllAreShownWithTheNamesThatTheyHave)
{
    ThingLooks looks;
    looks.ofThings[FIRST].name = "arm";
    looks.ofThings[FIRST].isDeleted = true;
    looks.showOnly({});
    EXPECT_TRUE(looks.of(FIRST).isDeleted);
    looks.showAll();
    EXPECT_FALSE(looks.of(FIRST).isDeleted);
    EXPECT_FALSE(looks.of(FIRST).isHidden());
    EXPECT_FALSE(looks.of(DNA).isHidden());
    EXPECT_EQ(looks.of(FIRST).name, "arm");
}

} // namespace strandview
