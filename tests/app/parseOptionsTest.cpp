// SPDX-License-Identifier: GPL-3.0-or-later
// What a command line becomes. What the program says to bad ones, and does with good ones, is in
// StrandviewTest.cpp.
#include "command/parseOptions.h"

#include <iostream>
#include <sstream>

#include <gmock/gmock.h>

namespace strandview {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::StartsWith;

struct Parsed
{
    ParsedOptions result;
    std::string output, error;
};

Parsed parse(std::vector<const char*> arguments)
{
    arguments.insert(arguments.begin(), "strandview");
    std::ostringstream output, error;
    std::streambuf* const outputBefore = std::cout.rdbuf(output.rdbuf());
    std::streambuf* const errorBefore = std::cerr.rdbuf(error.rdbuf());
    ParsedOptions result = parseOptions(int(arguments.size()), arguments.data());
    std::cout.rdbuf(outputBefore);
    std::cerr.rdbuf(errorBefore);
    return {std::move(result), output.str(), error.str()};
}

Options accepted(const std::vector<const char*>& arguments)
{
    const Parsed parsed = parse(arguments);
    EXPECT_EQ(parsed.error, "");
    EXPECT_TRUE(parsed.result.options);
    return parsed.result.options.value_or(Options());
}

void expectRefused(const std::vector<const char*>& arguments, const std::string& what)
{
    const Parsed parsed = parse(arguments);
    EXPECT_FALSE(parsed.result.options) << what;
    EXPECT_EQ(parsed.result.exitStatus, 2) << what;
    EXPECT_EQ(parsed.output, "");
    EXPECT_THAT(parsed.error, StartsWith("strandview: "));
    EXPECT_THAT(parsed.error, HasSubstr(what));
    EXPECT_EQ(parsed.error.find('\n'), parsed.error.size() - 1) << "one line";
}

TEST(ParseOptions, AValueOfSeveralLinesIsToldInOne)
{
    for (const char* option : {"--view", "--size", "--dpi", "--camera", "--up", "--measure"})
        expectRefused({"--render", "a.png", option, "a\nb", "rod.txt"},
                      "found 'a\\x0ab', expected");
    expectRefused({"--screenshot-after", "a\nb", "a.png", "rod.txt"}, "found 'a\\x0ab', expected");
}

TEST(ParseOptions, WhatIsNotGivenIsLeftToTheData)
{
    const Options options = accepted({"rod.txt", "-"});
    EXPECT_THAT(options.files, ElementsAre("rod.txt", "-"));
    EXPECT_THAT(options.given, IsEmpty());
    EXPECT_FALSE(options.picture || options.windowSize || options.windowPicture);
    EXPECT_FALSE(options.frame || options.exportFile);
    EXPECT_FALSE(options.radius || options.ribbonWidth || options.slices || options.subsegments);
    EXPECT_FALSE(options.showRibbon || options.tubeColour || options.ribbonColour);
    EXPECT_FALSE(options.colourBy || options.rangeMin || options.rangeMax);
    EXPECT_FALSE(options.camera.side || options.camera.numbers);
    EXPECT_TRUE(options.showTube);
}

TEST(ParseOptions, FlagsOfReadingAreOffUnlessGiven)
{
    const Options none = accepted({"rod.txt"}), both = accepted({"--closed", "--normalize", "a"});
    EXPECT_FALSE(none.closed || none.normalise);
    EXPECT_TRUE(both.closed && both.normalise);
}

TEST(ParseOptions, RowsOfAFrameAreCountedWhereThatIsAsked)
{
    EXPECT_EQ(accepted({"rod.txt"}).frameRows, 0);
    EXPECT_EQ(accepted({"--frame-rows", "20", "rod.txt"}).frameRows, 20);
}

TEST(ParseOptions, LengthsCountsAndColoursAreTaken)
{
    const Options options = accepted({"--radius", "0.25", "--ribbon-width=2", "--slices", "12",
                                      "--subsegments", "3", "--tube-colour", "#f00", "rod.txt"});
    EXPECT_EQ(options.radius, 0.25);
    EXPECT_EQ(options.ribbonWidth, 2);
    EXPECT_EQ(options.slices, 12);
    EXPECT_EQ(options.subsegments, 3);
    ASSERT_TRUE(options.tubeColour);
    EXPECT_EQ(options.tubeColour->red, 1);
    EXPECT_EQ(options.tubeColour->green, 0);
}

TEST(ParseOptions, TheNamesGivenAreKeptAsTheHelpCallsThem)
{
    EXPECT_THAT(accepted({"--no-tube", "--color-by", "twist", "--radius", "1", "rod.txt"}).given,
                testing::UnorderedElementsAre("--tube", "--colour-by", "--radius"));
}

TEST(ParseOptions, TheSizeIsOfThePictureOrElseOfTheWindow)
{
    const Options picture = accepted({"--render", "rod.png", "--size", "640x480", "rod.txt"});
    EXPECT_EQ(picture.pictureWidth, 640);
    EXPECT_EQ(picture.pictureHeight, 480);
    EXPECT_THAT(accepted({"--size", "640x480", "rod.txt"}).windowSize.value_or(std::pair(0, 0)),
                Pair(640, 480));
}

TEST(ParseOptions, MillimetresArePixelsByTheResolutionWhereverThatStands)
{
    struct Asked
    {
        const char *size, *dpi;
        int width, height;
    };
    // 25.4 mm are an inch.
    for (const Asked& asked :
         {Asked{"254x127mm", "100", 1000, 500}, Asked{"85x60mm", "300", 1004, 709},
          Asked{"85.5X60.25mm", "600", 2020, 1423}, Asked{"25.4x2.54mm", "10", 10, 1}}) {
        for (const bool isFirst : {true, false}) {
            std::vector<const char*> line{"--size", asked.size, "--render", "a.png", "rod.txt"};
            line.insert(isFirst ? line.begin() : line.end(), {"--dpi", asked.dpi});
            const Options options = accepted(line);
            EXPECT_EQ(options.pictureWidth, asked.width) << asked.size;
            EXPECT_EQ(options.pictureHeight, asked.height) << asked.size;
            EXPECT_EQ(std::to_string(options.dpi.value_or(0)), asked.dpi);
        }
    }
    const Options usual = accepted({"--size", "85x60mm", "--render", "a.png", "rod.txt"});
    EXPECT_EQ(usual.pictureWidth, 1004);
    EXPECT_EQ(usual.dpi.value_or(0), 300);
}

TEST(ParseOptions, TheResolutionOfASizeInPixelsChangesNoPixels)
{
    const Options options = accepted({"--dpi", "600", "--render", "a.png", "rod.txt"});
    EXPECT_EQ(options.pictureWidth, Options().pictureWidth);
    EXPECT_EQ(options.pictureHeight, Options().pictureHeight);
    EXPECT_EQ(options.dpi.value_or(0), 600);
}

TEST(ParseOptions, SizesAndResolutionsBeyondTheLimitsAreRefused)
{
    const auto expectNoSize = [](const char* size, const char* dpi, const std::string& what) {
        expectRefused({"--render", "a.png", "--size", size, "--dpi", dpi, "rod.txt"}, what);
    };
    expectNoSize("3000x2000mm", "300",
                 "--size: found '3000x2000mm' at --dpi 300: 35433 x 23622 pixels, expected sides "
                 "from 1 to 32767 and at most 700000000 pixels in all: --dpi 274 fits");
    expectNoSize("3000x10mm", "300", ": --dpi 277 fits");
    expectNoSize("1e6x10mm", "300", "expected sides from 1 to 32767");
    expectNoSize("0.01x10mm", "300", "0 x 118 pixels, expected sides from 1 to 32767");
    for (const char* size : {"85x60m", "85x60cm", "85mm", "x60mm", "85xmm", "-85x60mm", "0x60mm",
                             "85x60 mm", "nanx60mm", "mmxmm", "85mmx60mm", "85x60.5"})
        expectNoSize(size, "300", "expected WxH or, in millimetres, WxHmm");
    for (const char* dpi : {"9", "10001", "72.5", "-300", "many"})
        expectNoSize("85x60mm", dpi, "expected a whole number from 10 to 10000");
}

TEST(ParseOptions, MillimetresAreOfPicturesAlone)
{
    expectRefused({"--size", "85x60mm", "rod.txt"},
                  "--size: found '85x60mm' without --render, expected pixels, WxH");
    expectRefused({"--plot", "a.pdf", "--size", "85x60mm", "rod.txt"}, "without --render");
    expectRefused({"--dpi", "300", "rod.txt"}, "--dpi requires --render");
    expectRefused({"--ghost", "rod.txt"}, "--ghost requires --compare");
    expectRefused({"--compare", "first", "--ghost-transparency", "0.5", "rod.txt"},
                  "--ghost-transparency requires --ghost");
}

TEST(ParseOptions, WhatIsExportedAndOfWhichFrameIsTaken)
{
    const Options options = accepted({"--export", "-", "--frame", "7", "run.json"});
    EXPECT_EQ(options.exportFile, "-");
    EXPECT_EQ(options.frame, 7);
}

TEST(ParseOptions, WhatIsOfAWindowIsRefusedWhereThereIsNone)
{
    EXPECT_TRUE(accepted({"--watch", "rod.txt"}).watch);
    EXPECT_TRUE(accepted({"--beside", "first", "run.txt"}).beside == besideOf({"first"}));
    EXPECT_TRUE(accepted({"--beside", "b.txt", "a.txt"}).beside.isTied);
    EXPECT_FALSE(accepted({"--beside", "same", "a.txt"}).beside.isTied);
    EXPECT_TRUE(accepted({"--beside", "same", "--beside", "b.txt", "a.txt"}).beside ==
                (BesideRequest{{"same", "b.txt"}, false}));
    expectRefused({"--beside", "a", "--beside", "b", "--beside", "c", "--beside", "d", "e.txt"},
                  "--beside: found 4 further views, expected up to 3");
    using Line = std::vector<const char*>;
    for (Line line : {Line{"--render", "a.png"},
                      {"--export", "a.csv"},
                      {"--plot", "a.svg"},
                      {"--info"},
                      {"--list-scalars"},
                      {"--list-frames"}}) {
        line.push_back("rod.txt");
        for (const Line& ofWindow : {Line{"--watch"}, Line{"--beside", "first"}}) {
            Line both = line;
            both.insert(both.end(), ofWindow.begin(), ofWindow.end());
            expectRefused(both, ofWindow.front());
        }
    }
}

TEST(ParseOptions, ScalarsAreListedForPeopleOrScripts)
{
    EXPECT_TRUE(accepted({"--list-scalars", "rod.txt"}).listScalars);
    const Options options = accepted({"--list-scalars", "--json", "--all-numbers", "rod.txt"});
    EXPECT_TRUE(options.asJson);
    EXPECT_TRUE(options.allNumbers);
    EXPECT_TRUE(accepted({"--export", "a.csv", "--all-numbers", "rod.txt"}).allNumbers);
    expectRefused({"--json", "rod.txt"},
                  "--json: found neither --info nor --list-scalars, expected one");
    expectRefused({"--all-numbers", "rod.txt"},
                  "--all-numbers: found none of --info, --list-scalars and --export, expected one");
    for (const char* other : {"--info", "--series", "--follow", "--list-frames"})
        expectRefused({"--list-scalars", other, "rod.txt"}, other);
}

TEST(ParseOptions, APartCanBeShownOrHiddenInSoManyWords)
{
    EXPECT_FALSE(accepted({"--no-tube", "rod.txt"}).showTube);
    EXPECT_EQ(accepted({"--ribbon", "rod.txt"}).showRibbon, true);
    EXPECT_EQ(accepted({"--no-ribbon", "rod.txt"}).showRibbon, false);
}

TEST(ParseOptions, ALookOfDnaIsAllThatIsNamed)
{
    const DnaLook usual = accepted({"dna.txt"}).dna;
    EXPECT_TRUE(usual.backbone);
    EXPECT_TRUE(usual.bases);
    EXPECT_FALSE(usual.baseBoxes);
    EXPECT_FALSE(usual.pairBoxes);
    EXPECT_FALSE(usual.atoms);
    const std::pair<const char*, bool DnaLook::*> parts[] = {{"backbone", &DnaLook::backbone},
                                                             {"bases", &DnaLook::bases},
                                                             {"boxes", &DnaLook::baseBoxes},
                                                             {"pairs", &DnaLook::pairBoxes},
                                                             {"atoms", &DnaLook::atoms}};
    for (const auto& [name, shown] : parts) {
        SCOPED_TRACE(name);
        const DnaLook look = accepted({"--dna", name, "--dna-unit", "nm", "dna.txt"}).dna;
        for (const auto& [other, otherShown] : parts)
            EXPECT_EQ(look.*otherShown, otherShown == shown) << other;
        EXPECT_EQ(look.angstrom, 0.1);
    }
    const DnaLook two = accepted({"--dna", "atoms,backbone", "dna.txt"}).dna;
    EXPECT_TRUE(two.atoms);
    EXPECT_TRUE(two.backbone);
    EXPECT_FALSE(two.bases);
}

TEST(ParseOptions, EitherEndOfARangeMayBeLeftOpen)
{
    const Options from = accepted({"--colour-by", "twist", "--range", "-2:", "rod.txt"});
    EXPECT_EQ(from.rangeMin, -2);
    EXPECT_FALSE(from.rangeMax);
    const Options to = accepted({"--colour-by", "twist", "--range", ":1e3", "rod.txt"});
    EXPECT_FALSE(to.rangeMin);
    EXPECT_EQ(to.rangeMax, 1000);
}

TEST(ParseOptions, EachSideHasItsName)
{
    for (const NamedSide& side : SIDES)
        EXPECT_EQ(accepted({"--view", side.name, "rod.txt"}).camera.side, side.side) << side.name;
}

TEST(ParseOptions, AViewMayBeTurnedMovedAndMadeLarger)
{
    const CameraRequest plain = accepted({"rod.txt"}).camera;
    EXPECT_FALSE(plain.up || plain.hasAngles() || plain.isFramed() || plain.margin);
    const CameraRequest camera =
        accepted({"--up", "-x", "--azimuth", "-30.5", "--elevation", "-90", "--zoom", "2",
                  "--center", "-1,2e2,.5", "--margin", "0.1", "--view", "y", "rod.txt"})
            .camera;
    EXPECT_EQ(camera.up->x, -1);
    EXPECT_EQ(camera.azimuth, -30.5);
    EXPECT_EQ(camera.elevation, -90);
    EXPECT_EQ(camera.zoom, 2);
    EXPECT_EQ(camera.centre->x, -1);
    EXPECT_EQ(camera.centre->y, 200);
    EXPECT_EQ(camera.centre->z, 0.5);
    EXPECT_EQ(camera.margin, 0.1);
}

TEST(ParseOptions, AViewThatContradictsItselfIsRefused)
{
    const char* const numbers = "orthographic,1,2,3,0,0,0,1,4,0.5";
    for (const auto& [name, value] : {std::pair("--up", "z"),
                                      {"--azimuth", "1"},
                                      {"--elevation", "1"},
                                      {"--zoom", "2"},
                                      {"--centre", "1,2,3"},
                                      {"--margin", "0"}})
        expectRefused({"--camera", numbers, name, value, "rod.txt"}, name);
    expectRefused({"--view", "-x", "--up", "2,0,0", "rod.txt"},
                  "--up: found the direction of --view, expected one across that");
    expectRefused({"--up", "0,0,0", "rod.txt"}, "--up: found '0,0,0', expected a direction");
    expectRefused({"--azimuth", "east", "rod.txt"}, "--azimuth: found 'east', expected a number");
    expectRefused({"--elevation", "90.1", "rod.txt"}, "from -90 to 90");
    expectRefused({"--zoom", "0", "rod.txt"}, "--zoom: found '0', expected a number from 0.001");
    expectRefused({"--centre", "1,2", "rod.txt"}, "--centre: found '1,2', expected a point x,y,z");
    expectRefused({"--margin", "0.41", "rod.txt"}, "--margin: found '0.41', expected a number");
}

TEST(ParseOptions, ACameraIsTakenAsItIsPrinted)
{
    const char* const text = "perspective,1,2,3,0,0,0,1,4,0.5";
    const Options options = accepted({"--camera", text, "rod.txt"});
    ASSERT_TRUE(options.camera.numbers);
    EXPECT_EQ(formatCamera(*options.camera.numbers), text);
    EXPECT_TRUE(options.camera.isPerspective());
}

TEST(ParseOptions, WhatIsFoundAndExpectedIsToldInOneLine)
{
    expectRefused({"--radius", "-1", "rod.txt"}, "--radius: found '-1', expected a length above 0");
    expectRefused({"--slices", "2", "rod.txt"}, "--slices: found '2', expected a whole number");
    expectRefused({"--view", "up", "rod.txt"}, "--view: found 'up', expected one of x -x y");
    expectRefused({"--range", "2:1", "--colour-by", "twist", "rod.txt"}, "--range: found '2:1'");
    expectRefused({"--no-such", "rod.txt"}, "found the option '--no-such'");
    expectRefused({"--render", "rod.png"}, "FILE");
    expectRefused({"-", "-"}, "found - twice, expected standard input once");
}

TEST(ParseOptions, ColoursAreAMapByItsNameOrAList)
{
    const auto colours = [](const char* text) {
        return accepted({"--colour-by", "twist", "--colours", text, "rod.txt"}).colours.value();
    };
    EXPECT_GT(colours("Viridis_R").colours.size(), 10u);
    EXPECT_TRUE(colours("coolwarm").isDiverging);
    EXPECT_EQ(colours("navy,white,#f00").colours.size(), 3u);
    EXPECT_EQ(colours("grey,red").colours.size(), 2u);
    EXPECT_FALSE(accepted({"--colour-by", "twist", "rod.txt"}).colours);
}

TEST(ParseOptions, ColoursThatAreNoneAreToldWithAllMapsThereAre)
{
    const auto refused = [](const char* text, const std::string& what) {
        expectRefused({"--colour-by", "twist", "--colours", text, "rod.txt"}, what);
    };
    refused("virdis", "--colours: found 'virdis', expected viridis, cividis, batlow, magma, "
                      "coolwarm, vik, grey, rainbow, each also reversed as NAME_r, or two colours "
                      "or more: C1,C2,...");
    refused("red", "found 'red', expected viridis, ");
    refused("", "found '', expected viridis, ");
    refused("red,", "found 'red,', expected two colours or more");
    refused("red,viridis", "found 'viridis', expected #rrggbb or an SVG colour name");
}

TEST(ParseOptions, HelpAndVersionAreNoOptionsButEndWell)
{
    for (const char* const name : {"--help", "--version"}) {
        const Parsed parsed = parse({name});
        EXPECT_FALSE(parsed.result.options);
        EXPECT_EQ(parsed.result.exitStatus, 0);
        EXPECT_THAT(parsed.output, HasSubstr("strandview"));
        EXPECT_EQ(parsed.error, "");
    }
}

} // namespace

} // namespace strandview
