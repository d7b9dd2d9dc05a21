// SPDX-License-Identifier: GPL-3.0-or-later
#include "command/optionNames.h"

#include <gmock/gmock.h>

namespace strandview {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::vector<std::string> NAMES = {"--help",      "--ribbon-width", "--radius",      "--range",
                                        "--colour-by", "--colours",      "--tube-colour", "--tube",
                                        "--no-tube",   "--print-camera", "--camera"};

TEST(OptionNames, AmericanSpellingsOfLongOptionsBecomeBritish)
{
    EXPECT_EQ(inBritishSpelling("--color-by"), "--colour-by");
    EXPECT_EQ(inBritishSpelling("--tube-color=red"), "--tube-colour=red");
    EXPECT_EQ(inBritishSpelling("--normalize"), "--normalise");
}

TEST(OptionNames, NothingElseChangesItsSpelling)
{
    for (const char* text : {"--colour-by", "--radius", "color.txt", "-color", "-", "--", "",
                             "--render=color-normalize.png"})
        EXPECT_EQ(inBritishSpelling(text), text);
}

TEST(OptionNames, TheNearestNameHasTheFewestLettersWrong)
{
    EXPECT_THAT(nearestNames("--ribon-width", NAMES), ElementsAre("--ribbon-width"));
    EXPECT_THAT(nearestNames("--raduis", NAMES), ElementsAre("--radius"));
    EXPECT_THAT(nearestNames("--notube", NAMES), ElementsAre("--no-tube"));
    EXPECT_THAT(nearestNames("--colour", NAMES), ElementsAre("--colour-by", "--colours"));
}

TEST(OptionNames, ANameCutShortIsNear)
{
    EXPECT_THAT(nearestNames("--print", NAMES), ElementsAre("--print-camera"));
    EXPECT_THAT(nearestNames("--ribbon", NAMES), ElementsAre("--ribbon-width"));
}

TEST(OptionNames, TheNumberOfDashesDoesNotMatter)
{
    EXPECT_THAT(nearestNames("-radius", NAMES), ElementsAre("--radius"));
}

TEST(OptionNames, NothingIsNearWhereMostLettersAreWrong)
{
    for (const char* text : {"--verbose", "--x", "-q", "--", ""})
        EXPECT_THAT(nearestNames(text, NAMES), IsEmpty()) << text;
}

} // namespace

} // namespace strandview
