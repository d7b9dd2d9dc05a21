// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/ColourMap.h"

#include <cmath>
#include <set>

#include <ColourMapper.h>
#include <gmock/gmock.h>

namespace strandview {

using testing::ElementsAre;

namespace {

struct Rgb
{
    int red, green, blue; ///< of 255
};

// As it is shown: what is between the colours is the mapper's.
ColourMapper mapperOf(const std::string& name)
{
    const std::optional<ColourMap> map = findColourMap(name);
    EXPECT_TRUE(map) << name;
    std::vector<ColourMapper::Colour> colours;
    for (const Colour& colour : map.value_or(ColourMap()).colours)
        colours.emplace_back(double(colour.red), double(colour.green), double(colour.blue));
    return ColourMapper(0, 1, colours);
}

ColourMapper::Colour colourAt(const ColourMapper& mapper, double place)
{
    ColourMapper::Colour colour;
    mapper.getColour(place, colour);
    return colour;
}

void expectColour(const ColourMapper::Colour& colour, const Rgb& expected, double tolerance)
{
    EXPECT_NEAR(255 * colour.x, expected.red, tolerance);
    EXPECT_NEAR(255 * colour.y, expected.green, tolerance);
    EXPECT_NEAR(255 * colour.z, expected.blue, tolerance);
}

struct Published
{
    const char* name;
    int entries; ///< of the published table, evenly spaced
    std::vector<std::pair<int, Rgb>> some;
};

// viridis, magma: the tables of S. van der Walt and N. J. Smith, bids.github.io/colormap, 2015.
// cividis: J. R. Nuñez, C. R. Anderton, R. S. Renslow, PLoS ONE 13(7), e0199239, 2018.
// batlow, vik: F. Crameri, Scientific colour maps 7.0.1, doi.org/10.5281/zenodo.5501399, 2021.
// coolwarm: CoolWarmFloat33 of K. Moreland, Diverging color maps for scientific visualization,
// ISVC 2009.
// rainbow: Turbo, A. Mikhailov, 2019.
const std::vector<Published> TABLES{
    {"viridis",
     256,
     {{0, {68, 1, 84}},
      {23, {72, 33, 115}},
      {64, {59, 82, 139}},
      {101, {42, 119, 142}},
      {128, {33, 145, 140}},
      {167, {49, 181, 123}},
      {203, {119, 209, 83}},
      {232, {194, 223, 35}},
      {255, {253, 231, 37}}}},
    {"cividis",
     256,
     {{0, {0, 34, 78}},
      {23, {1, 50, 113}},
      {64, {67, 78, 108}},
      {101, {101, 104, 112}},
      {128, {125, 124, 120}},
      {167, {162, 153, 117}},
      {203, {199, 183, 103}},
      {232, {231, 209, 80}},
      {255, {254, 232, 56}}}},
    {"batlow",
     256,
     {{0, {1, 25, 89}},
      {23, {15, 57, 95}},
      {64, {34, 96, 97}},
      {101, {85, 117, 72}},
      {128, {130, 130, 49}},
      {167, {205, 146, 63}},
      {203, {250, 165, 135}},
      {232, {253, 186, 199}},
      {255, {250, 204, 250}}}},
    {"magma",
     256,
     {{0, {0, 0, 4}},
      {23, {18, 13, 49}},
      {64, {81, 18, 124}},
      {101, {139, 41, 129}},
      {128, {183, 55, 121}},
      {167, {238, 91, 94}},
      {203, {254, 157, 108}},
      {232, {254, 211, 149}},
      {255, {252, 253, 191}}}},
    {"coolwarm",
     33,
     {{0, {59, 76, 192}},
      {8, {141, 176, 254}},
      {16, {221, 221, 221}},
      {24, {244, 154, 123}},
      {32, {180, 4, 38}}}},
    {"vik",
     256,
     {{0, {0, 18, 97}},
      {23, {2, 54, 120}},
      {64, {48, 125, 166}},
      {101, {163, 199, 217}},
      {128, {236, 229, 224}},
      {167, {214, 157, 124}},
      {203, {184, 92, 40}},
      {232, {129, 31, 6}},
      {255, {89, 0, 8}}}},
    {"rainbow",
     256,
     {{0, {48, 18, 59}},
      {23, {68, 84, 195}},
      {64, {40, 188, 235}},
      {101, {67, 247, 135}},
      {128, {164, 252, 60}},
      {167, {247, 193, 58}},
      {203, {241, 93, 19}},
      {232, {190, 33, 2}},
      {255, {122, 4, 3}}}},
};

TEST(ColourMap, ShowsThePublishedColoursWithinTwoOf255)
{
    for (const Published& table : TABLES) {
        const ColourMapper mapper = mapperOf(table.name);
        for (const auto& [entry, colour] : table.some) {
            SCOPED_TRACE(testing::Message() << table.name << " " << entry);
            expectColour(colourAt(mapper, entry / (table.entries - 1.0)), colour, 2);
        }
    }
}

// The lightness L* of CIE 1976 of a grey in sRGB.
double lightness(double grey)
{
    const double linear = grey <= 0.04045 ? grey / 12.92 : std::pow((grey + 0.055) / 1.055, 2.4);
    return 116 * std::cbrt(linear) - 16;
}

TEST(ColourMap, GreyHasEqualStepsOfLightness)
{
    const ColourMapper mapper = mapperOf("grey");
    for (int i = 0; i <= 40; ++i) {
        const ColourMapper::Colour colour = colourAt(mapper, i / 40.0);
        EXPECT_EQ(colour.x, colour.y);
        EXPECT_EQ(colour.x, colour.z);
        EXPECT_NEAR(lightness(colour.x), 10 + 2 * i, 0.3) << i;
    }
}

TEST(ColourMap, IsFoundByItsNameInAnyCase)
{
    EXPECT_THAT(namesOfColourMaps(), ElementsAre("viridis", "cividis", "batlow", "magma",
                                                 "coolwarm", "vik", "grey", "rainbow"));
    for (const std::string& name : namesOfColourMaps())
        EXPECT_TRUE(findColourMap(name)) << name;
    EXPECT_TRUE(findColourMap("Batlow"));
    EXPECT_TRUE(findColourMap("GRAY_R"));
    for (const char* text : {"", "_r", "viridis_", "viridis_r_r", "virid", "viridis ", "red"})
        EXPECT_FALSE(findColourMap(text)) << text;
}

TEST(ColourMap, IsReversedByItsNameWithR)
{
    for (const std::string& name : namesOfColourMaps()) {
        const ColourMapper mapper = mapperOf(name), reversed = mapperOf(name + "_r");
        EXPECT_EQ(findColourMap(name + "_r")->isDiverging, findColourMap(name)->isDiverging);
        for (int i = 0; i <= 10; ++i) {
            const ColourMapper::Colour there = colourAt(reversed, 1 - i / 10.0);
            EXPECT_NEAR((colourAt(mapper, i / 10.0) - there).getNorm(), 0, 1e-6) << name << i;
        }
    }
}

TEST(ColourMap, IsDivergingIfItsMiddleIsNeutral)
{
    std::set<std::string> diverging;
    for (const std::string& name : namesOfColourMaps()) {
        if (!findColourMap(name)->isDiverging)
            continue;
        diverging.insert(name);
        const ColourMapper::Colour middle = colourAt(mapperOf(name), 0.5);
        EXPECT_NEAR(middle.x, middle.y, 0.05) << name;
        EXPECT_NEAR(middle.x, middle.z, 0.05) << name;
    }
    EXPECT_THAT(diverging, ElementsAre("coolwarm", "vik"));
}

TEST(ColourMap, OfSignedValuesIsADivergingOneUnlessAskedFor)
{
    EXPECT_FALSE(defaultColourMap(false).isDiverging);
    EXPECT_TRUE(defaultColourMap(true).isDiverging);
    const auto expectEnds = [](const ColourMap& map, const Rgb& first, const Rgb& last) {
        const auto expectEnd = [](const Colour& colour, const Rgb& expected) {
            expectColour({double(colour.red), double(colour.green), double(colour.blue)}, expected,
                         1);
        };
        expectEnd(map.colours.front(), first);
        expectEnd(map.colours.back(), last);
    };
    expectEnds(defaultColourMap(false), {68, 1, 84}, {253, 231, 37}); // viridis
    expectEnds(defaultColourMap(true), {59, 76, 192}, {180, 4, 38});  // coolwarm
}

} // namespace

} // namespace strandview
