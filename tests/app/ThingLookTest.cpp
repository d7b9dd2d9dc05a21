// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/ThingLook.h"

#include <gtest/gtest.h>

namespace strandview {

namespace {

const ThingId FIRST{ThingKind::ROD, 0}, SECOND{ThingKind::ROD, 1}, DNA{ThingKind::DNA, 0};

const ThingId STRAND_1{ThingKind::DNA, 0, ThingPart::STRAND_1},
    STRAND_2{ThingKind::DNA, 0, ThingPart::STRAND_2};

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

TEST(ThingLook, AStrandIsAsItsThingUnlessSomethingElseIsSaidOfIt)
{
    ThingLooks looks;
    looks.ofThings[DNA].hidden = true;
    EXPECT_TRUE(looks.of(STRAND_1).isHidden());
    looks.ofThings[STRAND_2].hidden = false;
    EXPECT_TRUE(looks.of(STRAND_1).isHidden());
    EXPECT_FALSE(looks.of(STRAND_2).isHidden());
    EXPECT_FALSE(looks.of(DNA).isHidden()) << "of which something is shown";
    looks.ofThings[DNA].isDeleted = true;
    EXPECT_TRUE(looks.of(STRAND_2).isDeleted);
}

TEST(ThingLook, AThingIsHiddenOrDeletedWithAllItsStrands)
{
    ThingLooks looks;
    looks.ofThings[STRAND_1].hidden = true;
    EXPECT_FALSE(looks.of(DNA).isHidden());
    looks.ofThings[STRAND_2].isDeleted = true;
    EXPECT_TRUE(looks.of(DNA).isHidden());
    EXPECT_FALSE(looks.of(DNA).isDeleted);
    looks.ofThings[STRAND_1].isDeleted = true;
    EXPECT_TRUE(looks.of(DNA).isDeleted);
    looks.showAll();
    EXPECT_FALSE(looks.of(DNA).isHidden());
    EXPECT_FALSE(looks.of(DNA).isDeleted);
}

TEST(ThingLook, AStrandThatIsShownAloneHidesTheOtherOne)
{
    ThingLooks looks;
    looks.showOnly({STRAND_2});
    EXPECT_FALSE(looks.of(DNA).isHidden());
    EXPECT_TRUE(looks.of(STRAND_1).isHidden());
    EXPECT_FALSE(looks.of(STRAND_2).isHidden());
    EXPECT_TRUE(looks.of(FIRST).isHidden());
}

TEST(ThingLook, AThingIsShownAndHiddenWithItsStrandsWhateverWasSaidOfThem)
{
    ThingLooks looks;
    looks.show(STRAND_1, false);
    EXPECT_TRUE(looks.of(STRAND_1).isHidden());
    looks.show(DNA, true);
    EXPECT_FALSE(looks.of(STRAND_1).isHidden());
    looks.show(STRAND_1, true);
    looks.show(DNA, false);
    EXPECT_TRUE(looks.of(STRAND_1).isHidden());
    looks.show(STRAND_1, true);
    EXPECT_FALSE(looks.of(STRAND_1).isHidden());
    EXPECT_TRUE(looks.of(STRAND_2).isHidden());
}

TEST(ThingLook, AStrandHasNameAndColourOfItsThingUnlessItHasItsOwn)
{
    ThingLooks looks;
    looks.ofThings[DNA].name = "plasmid";
    looks.ofThings[DNA].colour = Colour{1, 0, 0};
    EXPECT_EQ(looks.withThings(STRAND_1).name, "plasmid");
    looks.ofThings[STRAND_1].name = "Watson";
    EXPECT_EQ(looks.withThings(STRAND_1).name, "Watson");
    EXPECT_EQ(looks.withThings(STRAND_1).colour->red, 1);
    EXPECT_FALSE(looks.of(STRAND_1).colour);
}

} // namespace strandview
