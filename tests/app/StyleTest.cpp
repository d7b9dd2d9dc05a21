// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/Style.h"

#include <cmath>
#include <utility>

#include <gtest/gtest.h>

#include "scene/Legend.h"

namespace strandview {

namespace {

using algebra3d::Vector3;

Configuration helix(int points, double step, double scale = 1)
{
    Rod rod;
    for (int i = 0; i < points; ++i) {
        rod.points.emplace_back(scale * std::cos(step * i), scale * std::sin(step * i),
                                scale * 0.1 * step * i);
        rod.rotations.emplace_back();
    }
    return {{rod}};
}

TEST(Style, GivenSizesAreTaken)
{
    Options options;
    options.radius = 0.25;
    options.ribbonWidth = 2;
    options.slices = 5;
    options.subsegments = 7;
    options.showTube = false;
    options.twoSidedRibbon = true;
    const Style style = makeStyle(options, helix(20, 0.3));
    EXPECT_EQ(style.radius, 0.25);
    EXPECT_EQ(style.ribbonWidth, 2);
    EXPECT_EQ(style.slices, 5);
    EXPECT_EQ(style.subsegments, 7);
    EXPECT_FALSE(style.showTube);
    EXPECT_TRUE(style.showRibbon);
    EXPECT_TRUE(style.twoSidedRibbon);
}

TEST(Style, AutomaticSizesScaleWithTheData)
{
    const Style one = makeStyle({}, helix(100, 0.2));
    const Style thousand = makeStyle({}, helix(100, 0.2, 1000));
    EXPECT_GT(one.radius, 0);
    EXPECT_NEAR(thousand.radius, 1000 * one.radius, 1e-9 * thousand.radius);
    EXPECT_NEAR(thousand.ribbonWidth, 1000 * one.ribbonWidth, 1e-9 * thousand.ribbonWidth);
}

TEST(Style, ARibbonReachesBeyondItsTube)
{
    const Style style = makeStyle({}, helix(100, 0.2));
    EXPECT_GT(style.ribbonWidth, 2 * style.radius);
    Options wide;
    wide.radius = 3;
    EXPECT_EQ(makeStyle(wide, helix(100, 0.2)).ribbonWidth, 9);
}

TEST(Style, TheRadiusOfAStraightRodIsPositive)
{
    Rod rod;
    rod.points = {Vector3<double>(0, 0, 0), Vector3<double>(0, 0, 80)};
    rod.rotations.resize(2);
    const Style style = makeStyle({}, {{rod}});
    // A diagonal of 80, of which the radius is one part in 80.
    EXPECT_DOUBLE_EQ(style.radius, 1);
}

TEST(Style, DenseRodsAreThinnerThanSparseOnes)
{
    Configuration bundle;
    for (int i = 0; i < 400; ++i) {
        Rod rod;
        const double x = i % 20, y = i / 20;
        rod.points = {Vector3<double>(x, y, 0), Vector3<double>(x, y, 20)};
        rod.rotations.resize(2);
        bundle.rods.push_back(rod);
    }
    // Neighbours are 1 apart.
    EXPECT_LT(makeStyle({}, bundle).radius, 0.3);
}

TEST(Style, TurnsOfALongThinCoilStayApart)
{
    // A helix of radius 1 and height 100 whose turns are 0.63 apart.
    Rod rod;
    for (int i = 0; i < 10000; ++i) {
        rod.points.emplace_back(std::cos(0.1 * i), std::sin(0.1 * i), 0.01 * i);
        rod.rotations.emplace_back();
    }
    EXPECT_LT(2 * makeStyle({}, {{rod}}).radius, 0.63);
}

TEST(Style, ATwoSidedRibbonReachesAsFarOnEachSide)
{
    Options options;
    options.twoSidedRibbon = true;
    EXPECT_DOUBLE_EQ(makeStyle(options, helix(100, 0.2)).ribbonWidth,
                     2 * makeStyle({}, helix(100, 0.2)).ribbonWidth);
}

TEST(Style, FramesThatWereMadeAreShownOnlyIfARibbonIsAskedFor)
{
    const auto showsMadeFrames = [](auto ask) {
        Options options;
        ask(options);
        return makeStyle(options, helix(20, 0.3)).showMadeFrames;
    };
    EXPECT_FALSE(showsMadeFrames([](Options&) {}));
    EXPECT_TRUE(showsMadeFrames([](Options& o) { o.showRibbon = true; }));
    EXPECT_TRUE(showsMadeFrames([](Options& o) { o.ribbonWidth = 1; }));
    EXPECT_TRUE(showsMadeFrames([](Options& o) { o.ribbonColour = Colour{1, 0, 0}; }));
    EXPECT_TRUE(showsMadeFrames([](Options& o) { o.twoSidedRibbon = true; }));
    EXPECT_FALSE(showsMadeFrames([](Options& o) {
        o.ribbonWidth = 1;
        o.showRibbon = false;
    }));
}

TEST(Style, LongRodsGetFewVerticesPerPointAndShortOnesManyRows)
{
    const Style lengthy = makeStyle({}, helix(100001, 0.01));
    EXPECT_EQ(lengthy.subsegments, 1);
    EXPECT_EQ(lengthy.slices, 10);
    EXPECT_EQ(makeStyle({}, helix(300001, 0.01)).slices, 8);
    EXPECT_EQ(makeStyle({}, helix(1000001, 0.001)).slices, 6);
    const Style brief = makeStyle({}, helix(5, 0.3));
    EXPECT_EQ(brief.subsegments, 32);
    EXPECT_EQ(brief.slices, 32);
}

TEST(Style, BackbonesAreRoundEndOnAsLongAsTheyTakeNoMoreVertices)
{
    Options options;
    const auto subsegments = [&](std::size_t pairs, Configuration configuration = {}) {
        Dna dna;
        dna.bases.assign(pairs, 'A');
        for (std::size_t k = 0; k < pairs; ++k)
            dna.pairPoints.emplace_back(0, 0, 3.4 * double(k));
        dna.pairRotations.resize(pairs);
        dna.points1 = dna.points2 = dna.pairPoints;
        dna.rotations1 = dna.rotations2 = dna.pairRotations;
        configuration.dnas.push_back(std::move(dna));
        return makeStyle(options, configuration).subsegments;
    };
    EXPECT_EQ(subsegments(10), 32);
    EXPECT_EQ(subsegments(3000), 3);
    EXPECT_EQ(subsegments(10000), 2);
    EXPECT_EQ(subsegments(100000), 1);
    EXPECT_EQ(subsegments(1, helix(6001, 0.1)), 3);
    options.dna.backbone = false;
    EXPECT_EQ(subsegments(1, helix(6001, 0.1)), 1) << "of the rod alone";
}

TEST(Style, TheLegendOfASmallPictureHasLargerLetters)
{
    Options options;
    EXPECT_EQ(makeStyle(options, helix(5, 0.3)).legendTextSize, LEGEND_TEXT_SIZE);
    options.picture = "picture.png";
    EXPECT_EQ(makeStyle(options, helix(5, 0.3)).legendTextSize, LEGEND_TEXT_SIZE);
    options.pictureWidth = 400;
    options.pictureHeight = 275;
    EXPECT_FLOAT_EQ(makeStyle(options, helix(5, 0.3)).legendTextSize, 0.08f);
    options.pictureWidth = 1;
    EXPECT_EQ(makeStyle(options, helix(5, 0.3)).legendTextSize, LARGEST_LEGEND_TEXT_SIZE);
}

} // namespace

} // namespace strandview
