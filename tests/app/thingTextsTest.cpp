// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/thingTexts.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "command/parseOptions.h"
#include "request/settings.h"

namespace strandview {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

const ThingId ROD_2{ThingKind::ROD, 1};

ThingLooks read(const std::string& text)
{
    ThingLooks looks;
    EXPECT_EQ(readThings(text, looks), "") << text;
    return looks;
}

std::string faultOf(const std::string& text)
{
    ThingLooks looks;
    std::string fault = readThings(text, looks);
    EXPECT_THAT(textsOf(looks), IsEmpty()) << text;
    return fault;
}

} // namespace

TEST(ThingTextsTest, AThingIsNamedByItsKindAndItsNumberFromOneOn)
{
    EXPECT_EQ(nameOf({ThingKind::ROD, 0}), "rod 1");
    EXPECT_EQ(nameOf({ThingKind::DNA, 11}), "DNA 12");
    EXPECT_EQ(nameOf({ThingKind::LONE_BASES, 0}), "bases");
}

TEST(ThingTextsTest, WhatIsSaidOfAThingIsReadByItem)
{
    const ThingLook look = read("rod 2: hidden, colour=steelblue, name=Left strand").of(ROD_2);
    EXPECT_TRUE(look.isHidden());
    EXPECT_FALSE(look.isDeleted);
    EXPECT_EQ(look.name, "Left strand");
    ASSERT_TRUE(look.colour);
    EXPECT_FLOAT_EQ(look.colour->blue, 180.0f / 255);
    EXPECT_TRUE(read("rod 2: deleted").of(ROD_2).isDeleted);
}

TEST(ThingTextsTest, BlanksTheCaseOfAKindAndItsPluralDoNotMatter)
{
    for (const char* text : {"rod 2:hidden", " Rods 2 :  hidden ", "ROD  2: hidden",
                             "rods 2-2: hidden", "rod 2 - 2 : hidden"})
        EXPECT_THAT(textsOf(read(text)), ElementsAre("rod 2: hidden"));
    EXPECT_THAT(textsOf(read("dna 1: color=red")), ElementsAre("DNA 1: colour=#ff0000"));
}

TEST(ThingTextsTest, ANameBetweenQuotationMarksMayHaveEveryCharacter)
{
    const std::string name = R"(a, "b"; c\d: e=f)";
    ThingLooks looks;
    looks.ofThings[ROD_2].name = name;
    const std::vector<std::string> texts = textsOf(looks);
    ASSERT_EQ(texts.size(), 1u);
    EXPECT_EQ(read(texts[0]).of(ROD_2).name, name);
    for (const char* odd : {"", " ", "\"", "\\", "\"\\\""}) {
        looks.ofThings[ROD_2].name = odd;
        EXPECT_EQ(read(textsOf(looks).at(0)).of(ROD_2).name, odd);
    }
}

TEST(ThingTextsTest, AQuotationMarkElsewhereThanWhereAValueBeginsIsACharacterAsOthersAre)
{
    const ThingLooks looks =
        read("rod 1: name=3\" arm, hidden; rod 2: name=a=\"b; rod 3: name= \"; \" , hidden");
    EXPECT_EQ(looks.of({ThingKind::ROD, 0}).name, "3\" arm");
    EXPECT_TRUE(looks.of({ThingKind::ROD, 0}).isHidden());
    EXPECT_EQ(looks.of(ROD_2).name, "a=\"b");
    EXPECT_EQ(looks.of({ThingKind::ROD, 2}).name, "; ");
    EXPECT_TRUE(looks.of({ThingKind::ROD, 2}).isHidden());
}

TEST(ThingTextsTest, AQuotationEndsWithItsValue)
{
    for (const char* value : {"\"arm; rod 2: hidden", "\"", "\"a\" b", "\"a\\\"", "\"a\"b\""})
        EXPECT_EQ(faultOf("rod 1: name=" + std::string(value)),
                  "name: found '" + std::string(value) +
                      "', expected a second quotation mark, at the end");
}

TEST(ThingTextsTest, NeighboursThatLookAlikeAreOneText)
{
    EXPECT_THAT(textsOf(read("rod 3: hidden; rod 5: hidden; rod 4: hidden; birod 6: hidden")),
                ElementsAre("rods 3-5: hidden", "birod 6: hidden"));
    EXPECT_THAT(textsOf(read("rods 1-3: hidden; rod 2: shown")),
                ElementsAre("rod 1: hidden", "rod 3: hidden"));
}

TEST(ThingTextsTest, OthersMayBeHiddenBeforeOrAfterWhatIsShown)
{
    for (const char* text : {"others: hidden; rod 2: shown", "rod 2: shown; others: hidden"}) {
        const ThingLooks looks = read(text);
        EXPECT_FALSE(looks.of(ROD_2).isHidden());
        EXPECT_TRUE(looks.of({ThingKind::ROD, 0}).isHidden());
        EXPECT_TRUE(looks.of({ThingKind::DNA, 1}).isHidden());
        EXPECT_THAT(textsOf(looks), ElementsAre("rod 2: shown", "others: hidden"));
    }
}

TEST(ThingTextsTest, ANameAloneDoesNotShowWhatIsHiddenWithOthers)
{
    EXPECT_TRUE(read("rod 2: name=arm; others: hidden").of(ROD_2).isHidden());
}

TEST(ThingTextsTest, WhatIsNoThingOrNoLookIsToldWithWhatIs)
{
    EXPECT_THAT(faultOf("rob 2: hidden"), StartsWith("found 'rob 2', expected a thing and how it "
                                                     "looks, such as rod 2: hidden"));
    for (const char* text :
         {"rod 0: hidden", "rod: hidden", "rod 3-2: hidden", "rod 1.5: hidden", "rod 2",
          "bases 2: hidden", "rod 99999999: hidden", ": hidden", "rod 2 hidden"})
        EXPECT_THAT(faultOf(text), HasSubstr("expected a thing and how it looks")) << text;
    EXPECT_THAT(faultOf("rod 2: hiden"),
                StartsWith("found 'hiden', expected hidden, shown, deleted, name=TEXT"));
    for (const char* text : {"rod 2:", "rod 2: hidden,", "rod 2: name", "rod 2: size=3"})
        EXPECT_THAT(faultOf(text), HasSubstr("expected hidden, shown")) << text;
    EXPECT_EQ(faultOf("rod 2: colour=reddish"),
              "colour: found 'reddish', expected #rrggbb or an SVG colour name");
    EXPECT_THAT(faultOf("others: colour=red"), StartsWith("found 'colour=red', expected hidden"));
}

TEST(ThingTextsTest, ASwitchIsSaidByItsNameOrWithNoBeforeIt)
{
    const ThingLook look = read("rod 2: no ribbon, no-tube, two-sided").of(ROD_2);
    EXPECT_EQ(look.showRibbon, false);
    EXPECT_EQ(look.showTube, false);
    EXPECT_EQ(look.twoSidedRibbon, true);
    EXPECT_FALSE(look.radius);
}

TEST(ThingTextsTest, AKindTakesWhatItHas)
{
    EXPECT_EQ(read("DNA 1: radius=0.5").of({ThingKind::DNA, 0}).radius, 0.5);
    for (const char* text : {"marker 1: radius=1", "DNA 1: ribbon", "frame 1: colour=red",
                             "bases: colour=red", "arrow 2: no tube"})
        EXPECT_THAT(faultOf(text), HasSubstr("expected hidden, shown, deleted, name=TEXT")) << text;
    EXPECT_THAT(faultOf("marker 1: radius=1"), Not(HasSubstr("ribbon")));
    EXPECT_EQ(faultOf("rod 1: radius=0"), "radius: found '0', expected a length above 0");
    EXPECT_EQ(faultOf("rod 1: slices=2"),
              "slices: found '2', expected a whole number from 3 to 1000");
}

TEST(ThingTextsTest, AStrandIsNamedBehindItsThing)
{
    const ThingId second{ThingKind::DNA, 0, ThingPart::STRAND_2};
    EXPECT_EQ(nameOf(second), "DNA 1 strand 2");
    EXPECT_EQ(nameOf({ThingKind::BIROD, 3, ThingPart::AVERAGE}), "birod 4 average");
    const ThingLooks looks = read("DNA 1 strand 2: hidden, name=Crick");
    EXPECT_TRUE(looks.of(second).isHidden());
    EXPECT_EQ(looks.of(second).name, "Crick");
    EXPECT_FALSE(looks.of({ThingKind::DNA, 0, ThingPart::STRAND_1}).isHidden());
    for (const char* text : {"DNA 1 strand 2:hidden", "dnas 1  Strand  2 : hidden",
                             " DNA 1-1 strand 2: hidden", "DNA 1strand 2: hidden"})
        EXPECT_THAT(textsOf(read(text)), ElementsAre("DNA 1 strand 2: hidden")) << text;
}

TEST(ThingTextsTest, NeighboursWhoseStrandsLookAlikeAreOneText)
{
    EXPECT_THAT(textsOf(read("birods 1-3 strand 1: colour=red; birods 1-3 average: hidden; "
                             "birod 4: name=a")),
                ElementsAre("birod 4: name=a", "birods 1-3 strand 1: colour=#ff0000",
                            "birods 1-3 average: hidden"));
}

TEST(ThingTextsTest, WhatIsSaidOfAStrandIsToldWhereItDiffersFromItsThing)
{
    EXPECT_THAT(textsOf(read("DNA 1 strand 1: shown")), IsEmpty());
    EXPECT_THAT(textsOf(read("DNA 1: hidden; DNA 1 strand 1: hidden")),
                ElementsAre("DNA 1: hidden"));
    EXPECT_THAT(textsOf(read("DNA 1: hidden; DNA 1 strand 1: shown")),
                ElementsAre("DNA 1: hidden", "DNA 1 strand 1: shown"));
    EXPECT_THAT(textsOf(read("DNA 2: hidden; DNA 1-3 strand 1: shown")),
                ElementsAre("DNA 2: hidden", "DNA 2 strand 1: shown"));
    EXPECT_THAT(textsOf(read("DNA 1: shown; DNA 1 strand 1: hidden; others: hidden")),
                ElementsAre("DNA 1: shown", "DNA 1 strand 1: hidden", "others: hidden"));
}

TEST(ThingTextsTest, StrandsAreOfBirodsAndDnaAndHaveNameColourRadiusAndTransparencyAlone)
{
    for (const char* text :
         {"rod 1 strand 1: hidden", "DNA 1 average: hidden", "birod 1 strand 3: hidden",
          "bases strand 1: hidden", "DNA strand 1: hidden", "DNA 1 strand: hidden"})
        EXPECT_THAT(faultOf(text), HasSubstr("strands, such as DNA 1 strand 2")) << text;
    EXPECT_THAT(faultOf("birod 1 strand 1: tube"),
                HasSubstr("expected hidden, shown, deleted, name=TEXT, colour="));
    EXPECT_THAT(faultOf("birod 1 strand 1: tube"), Not(HasSubstr("slices")));
    const ThingId strand{ThingKind::BIROD, 0, ThingPart::STRAND_1};
    EXPECT_TRUE(canHaveOwn("tube-colour", strand));
    EXPECT_TRUE(canHaveOwn("radius", strand));
    EXPECT_FALSE(canHaveOwn("slices", strand));
    EXPECT_TRUE(canHaveOwn("transparency", strand));
    EXPECT_THAT(textsOf(read("DNA 1 strand 2: transparency=0.5")),
                ElementsAre("DNA 1 strand 2: transparency=0.5"));
}

TEST(ThingTextsTest, ASettingThatAThingHasOfItsOwnIsSetReadAndClearedByItsName)
{
    ThingLook look;
    EXPECT_TRUE(canHaveOwn("tube-colour", {ThingKind::ROD, 0}));
    EXPECT_FALSE(canHaveOwn("ribbon-width", {ThingKind::DNA, 0}));
    EXPECT_FALSE(canHaveOwn("background", {ThingKind::ROD, 0}));
    setOwn("tube-colour", "red", look);
    setOwn("ribbon", "off", look);
    EXPECT_EQ(ownValue("tube-colour", look), "#ff0000");
    EXPECT_EQ(ownValue("ribbon", look), "off");
    EXPECT_EQ(ownValue("radius", look), std::nullopt);
    setOwn("tube-colour", std::nullopt, look);
    EXPECT_EQ(ownValue("tube-colour", look), std::nullopt);
}

TEST(ThingTextsTest, WhatIsSaidLaterIsAddedToEachThingOfARange)
{
    const ThingLooks looks =
        read("rods 2-4: hidden, name=arm, radius=2, no tube; birod 1: name=leg; rods 1-3: shown, "
             "radius=3, colour=red; rods 4-5: deleted; rods 3-5: two-sided");
    EXPECT_THAT(textsOf(looks),
                ElementsAre("rod 1: colour=#ff0000, radius=3",
                            "rod 2: name=arm, colour=#ff0000, radius=3, no tube",
                            "rod 3: name=arm, colour=#ff0000, radius=3, no tube, two-sided",
                            "rod 4: hidden, deleted, name=arm, radius=2, no tube, two-sided",
                            "rod 5: deleted, two-sided", "birod 1: name=leg"));
    EXPECT_EQ(looks.ofThings.size(), 6u);
}

TEST(ThingTextsTest, OfTextsOfWhichOneIsWrongNothingIsTaken)
{
    ThingLooks looks = read("rod 2: hidden");
    EXPECT_NE(readThings("rod 1: hidden; rod 2: nothing", looks), "");
    EXPECT_THAT(textsOf(looks), ElementsAre("rod 2: hidden"));
}

TEST(ThingTextsTest, TheOptionIsGivenForEachAndTakesNoFile)
{
    const char* line[] = {"strandview",         "--thing", "rod 2: hidden",    "rod.txt", "--thing",
                          "rod 1: name=[a, b]", "--thing", "rod 2: colour=red"};
    EXPECT_FALSE(parseOptions(8, line).options) << "found 'b]'";
    line[5] = "rod 1: name=\"[a, b]\"";
    const ParsedOptions parsed = parseOptions(8, line);
    ASSERT_TRUE(parsed.options);
    EXPECT_THAT(parsed.options->files, ElementsAre("rod.txt"));
    EXPECT_THAT(textsOf(parsed.options->things),
                ElementsAre("rod 1: name=\"[a, b]\"", "rod 2: hidden, colour=#ff0000"));
}

TEST(ThingTextsTest, EachOptionIsReadByItself)
{
    const char* line[] = {"strandview", "--thing", "rod 1: name=3\" arm", "--thing",
                          "rod 2: hidden, name=4\""};
    const ParsedOptions parsed = parseOptions(5, line);
    ASSERT_TRUE(parsed.options);
    EXPECT_EQ(parsed.options->things.of({ThingKind::ROD, 0}).name, "3\" arm");
    EXPECT_EQ(parsed.options->things.of(ROD_2).name, "4\"");
    line[2] = "rod 1: name=\"arm";
    line[4] = "rod 2: name=hand\"";
    EXPECT_FALSE(parseOptions(5, line).options);
}

TEST(ThingTextsTest, AColourThatGoesAndWhatCurvesHaveOfTheirOwnNeedOtherNodes)
{
    const ThingLooks none, red = read("rod 2: colour=red");
    EXPECT_TRUE(areOfSameNodes(none, red));
    EXPECT_TRUE(areOfSameNodes(red, read("rod 2: colour=blue, name=a, hidden; others: hidden")));
    EXPECT_FALSE(areOfSameNodes(red, none));
    for (const char* own : {"rod 2: radius=1", "rod 2: no tube", "rod 2: ribbon-colour=red"}) {
        EXPECT_FALSE(areOfSameNodes(none, read(own))) << own;
        EXPECT_FALSE(areOfSameNodes(read(own), none)) << own;
        EXPECT_TRUE(areOfSameNodes(read(own), read(own))) << own;
    }
}

} // namespace strandview
