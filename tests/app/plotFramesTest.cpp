// SPDX-License-Identifier: GPL-3.0-or-later
#include "plotting/plotFrames.h"

#include <cmath>

#include <gmock/gmock.h>

#include <strandview/analysis/scalars.h>
#include <strandview/analysis/shape.h>

#include "support/IdealDna.h"
#include "support/straightRod.h"

namespace strandview {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsNan;
using testing::SizeIs;
using testing::StartsWith;

Configuration rodsAndDna()
{
    Configuration data = straightRod(2);
    data.rods.push_back(data.rods.front());
    data.rods.back().scalars.push_back({"energy", {1, 2, 3, 4, 5}});
    const IdealDna ideal("ATGC");
    Dna dna;
    dna.bases = ideal.sequence;
    dna.pairPoints = dna.points1 = dna.points2 = ideal.points;
    dna.pairRotations = dna.rotations1 = dna.rotations2 = ideal.rotations;
    data.dnas.push_back(dna);
    return data;
}

Plot plotted(const Configuration& data, const PlotRequest& request)
{
    std::string error;
    const auto plot = plotOf(data, makeStyle({}, data), request, error);
    EXPECT_TRUE(plot) << error;
    return plot.value_or(Plot());
}

std::string refused(const Configuration& data, const PlotRequest& request)
{
    std::string error;
    EXPECT_FALSE(plotOf(data, makeStyle({}, data), request, error));
    return error;
}

PlotRequest asking(const std::vector<std::string>& scalars)
{
    PlotRequest request;
    request.scalars = scalars;
    return request;
}

} // namespace

TEST(PlotFrames, HaveACurveForEachLineThatHasTheScalar)
{
    const Plot plot = plotted(rodsAndDna(), asking({"energy", "curvature"}));
    ASSERT_THAT(plot.lines, SizeIs(3));
    EXPECT_EQ(plot.lines[0].title, "rod 1");
    EXPECT_EQ(plot.lines[2].title, "DNA 1, pairs");
    ASSERT_THAT(plot.panels, SizeIs(2));
    EXPECT_THAT(plot.panels[0].values,
                ElementsAre(IsEmpty(), ElementsAre(1, 2, 3, 4, 5), IsEmpty()));
    EXPECT_EQ(plot.panels[0].unit, "");
    EXPECT_EQ(plot.panels[1].unit, "1/length");
    EXPECT_THAT(plot.panels[1].values[2], SizeIs(4));
}

TEST(PlotFrames, KnowTheUnitsOfAComparisonAndOfNothingElseThatTheDataBring)
{
    Configuration data = straightRod(2);
    for (const char* const name : {"reference_distance", "reference_rotation", "curvature"})
        data.rods[0].scalars.push_back({name, {1, 2, 3, 4, 5}});
    const Plot plot =
        plotted(data, asking({"reference_distance", "reference_rotation", "curvature", "kappa3"}));
    ASSERT_THAT(plot.panels, SizeIs(4));
    EXPECT_EQ(plot.panels[0].unit, "length");
    EXPECT_EQ(plot.panels[1].unit, "°");
    EXPECT_EQ(plot.panels[2].unit, "");
    EXPECT_EQ(plot.panels[3].unit, "1/length");
}

TEST(PlotFrames, HaveAnOutlineOfEachLine)
{
    const Configuration data = rodsAndDna();
    const auto outline =
        outlineOf({Track::Kind::ROD, 1, 0}, data, makeStyle({}, data), {"energy", "curvature"});
    ASSERT_TRUE(outline);
    ASSERT_THAT(outline->lines, SizeIs(1));
    EXPECT_EQ(outline->lines[0].title, "rod 2");
    ASSERT_THAT(outline->panels, SizeIs(2));
    EXPECT_EQ(outline->panels[0].unit, "");
    EXPECT_EQ(outline->panels[1].unit, "1/length");
    EXPECT_GT(outline->panels[1].rounding, 0);
    EXPECT_THAT(outline->panels[1].values, ElementsAre(IsEmpty()));
    EXPECT_FALSE(outlineOf({Track::Kind::ROD, 2, 0}, data, makeStyle({}, data), {"curvature"}));
}

TEST(PlotFrames, LeaveOutLinesThatHaveNone)
{
    const Plot plot = plotted(rodsAndDna(), asking({"roll"}));
    ASSERT_THAT(plot.lines, SizeIs(1));
    EXPECT_EQ(plot.lines[0].id, (LineId{Track::Kind::DNA_PAIRS, 0, 0}));
    EXPECT_EQ(plot.panels[0].unit, "°");
    EXPECT_THAT(plot.panels[0].values[0].back(), IsNan()); // behind the last pair is no step
}

TEST(PlotFrames, AreOverArcLengthOfRodsAndNumbersOfPairs)
{
    const Plot ofRods = plotted(straightRod(2), {});
    EXPECT_EQ(ofRods.xName, "arc length");
    EXPECT_THAT(ofRods.lines[0].x, ElementsAre(0, 1, 2, 3, 4));
    const Plot ofPairs = plotted(rodsAndDna(), asking({"roll"}));
    EXPECT_EQ(ofPairs.xName, "pair (from 1)");
    EXPECT_THAT(ofPairs.lines[0].x, ElementsAre(1, 2, 3, 4));
}

TEST(PlotFrames, AreOverTheLengthOfTheLineWhateverAFileCallsThat)
{
    Configuration data = straightRod(2);
    data.rods[0].scalars.push_back(
        {"arclength", std::vector<double>(data.rods[0].points.size(), std::nan(""))});
    EXPECT_THAT(plotted(data, {}).lines[0].x, ElementsAre(0, 1, 2, 3, 4));
}

TEST(PlotFrames, AreOverWhatIsAskedFor)
{
    PlotRequest request;
    request.against = PlotAxis::NUMBER;
    const Plot plot = plotted(straightRod(2), request);
    EXPECT_EQ(plot.xName, "point (from 0)");
    EXPECT_THAT(plot.lines[0].x, ElementsAre(0, 1, 2, 3, 4));
    request = asking({"roll"});
    request.against = PlotAxis::ARC_LENGTH;
    EXPECT_NEAR(plotted(rodsAndDna(), request).lines[0].x.back(), 3 * 3.4, 1e-9);
}

TEST(PlotFrames, ShowCurvatureAndTwistUnlessAskedForOthers)
{
    Configuration data = straightRod(2);
    EXPECT_THAT(standardScalars(data), ElementsAre("curvature", "kappa3"));
    data.rods[0].hasFrames = false;
    EXPECT_THAT(standardScalars(data), ElementsAre("curvature", "torsion"));
    data = rodsAndDna();
    data.rods.clear();
    EXPECT_THAT(standardScalars(data), ElementsAre("roll", "twist"));
}

TEST(PlotFrames, ShowBackbonesWhereThereIsNothingElse)
{
    Configuration data = straightRod(2);
    data.rods[0].isBackbone = true;
    EXPECT_THAT(plotted(data, {}).lines, SizeIs(1));
    data.rods.push_back(straightRod(1).rods[0]);
    const Plot plot = plotted(data, {});
    ASSERT_THAT(plot.lines, SizeIs(1));
    EXPECT_EQ(plot.lines[0].title, "rod 2");
}

TEST(PlotFrames, HaveTheColoursOfTheView)
{
    Configuration data = straightRod(2);
    data.rods.push_back(data.rods[0]);
    data.rods[1].colour = "#ff0000";
    const Plot plot = plotted(data, {});
    EXPECT_EQ(plot.lines[1].colour.red, 1);
    EXPECT_EQ(plot.lines[1].colour.green, 0);
    EXPECT_NE(plot.lines[0].colour.red, 1);
}

TEST(PlotFrames, OfAnUnknownScalarTellThoseThatThereAre)
{
    EXPECT_THAT(refused(rodsAndDna(), asking({"curvature", "foo"})),
                StartsWith("--scalars: found 'foo', expected some of arclength, curvature, "));
    EXPECT_THAT(refused(rodsAndDna(), asking({"foo"})), HasSubstr("energy"));
    EXPECT_EQ(refused({}, {}), "--plot: found no rod, birod or DNA, expected one");
}

// Time

namespace {

// A rod of the length 2 * reach in each frame.
void add(TimePlot& plot, double reach, std::size_t frame, std::optional<double> time)
{
    const Configuration data = straightRod(reach);
    plot.add(data, makeStyle({}, data), frame, time);
}

Plot finished(const TimePlot& plot)
{
    std::string error;
    const auto whole = plot.finish(error);
    EXPECT_TRUE(whole) << error;
    return whole.value_or(Plot());
}

std::string refusal(const TimePlot& plot)
{
    std::string error;
    EXPECT_FALSE(plot.finish(error));
    return error;
}

} // namespace

TEST(TimePlot, OfTimesThatGoBackIsOverTheFrames)
{
    TimePlot plot(asking({"length"}));
    add(plot, 1, 0, 0.0);
    add(plot, 2, 1, 1.0);
    add(plot, 3, 2, 0.5);
    const Plot made = finished(plot);
    EXPECT_EQ(made.xName, "frame");
    EXPECT_THAT(made.lines[0].x, ElementsAre(0, 1, 2));
}

TEST(TimePlot, HasOneNumberOfEachLineInEachFrame)
{
    TimePlot plot(asking({"length", "endToEnd"}));
    add(plot, 1, 0, 0.5);
    add(plot, 2, 1, 0.75);
    const Plot whole = finished(plot);
    EXPECT_EQ(whole.xName, "time");
    EXPECT_EQ(whole.panels[0].unit, "length");
    EXPECT_THAT(whole.lines[0].x, ElementsAre(0.5, 0.75));
    EXPECT_THAT(whole.panels[0].values[0], ElementsAre(2, 4));
    EXPECT_THAT(whole.panels[1].values[0], ElementsAre(2, 4));
}

TEST(TimePlot, IsOverFramesUnlessEachHasItsTime)
{
    TimePlot plot(asking({"length"}));
    add(plot, 1, 3, 0.5);
    add(plot, 2, 5, std::nullopt);
    const Plot whole = finished(plot);
    EXPECT_EQ(whole.xName, "frame");
    EXPECT_THAT(whole.lines[0].x, ElementsAre(3, 5));
}

TEST(TimePlot, HasGapsWhereAFrameOrALineIsMissing)
{
    TimePlot plot(asking({"length"}));
    add(plot, 1, 0, std::nullopt);
    plot.addMissing(1, std::nullopt);
    Configuration two = straightRod(2);
    two.rods.push_back(two.rods[0]);
    plot.add(two, makeStyle({}, two), 2, std::nullopt);
    add(plot, 3, 3, std::nullopt);
    const Plot whole = finished(plot);
    EXPECT_THAT(whole.panels[0].values[0], ElementsAre(2, IsNan(), 4, 6));
    EXPECT_THAT(whole.panels[0].values[1], ElementsAre(IsNan(), IsNan(), 4, IsNan()));
}

TEST(TimePlot, OfOnePlaceHasItsScalars)
{
    PlotRequest request = asking({"arclength"});
    request.at = 3;
    TimePlot plot(request);
    add(plot, 2, 0, std::nullopt);
    add(plot, 4, 1, std::nullopt);
    const Plot whole = finished(plot);
    EXPECT_EQ(whole.panels[0].unit, "length");
    EXPECT_THAT(whole.panels[0].values[0], ElementsAre(3, 6));
}

TEST(TimePlot, CountsPairsFromOne)
{
    PlotRequest request = asking({"rise"});
    request.at = 1;
    TimePlot plot(request);
    Configuration data = rodsAndDna();
    plot.add(data, makeStyle({}, data), 0, std::nullopt);
    EXPECT_NEAR(finished(plot).panels[0].values[0][0], 3.4, 1e-9);
    request.at = 5;
    TimePlot beyond(request);
    beyond.add(data, makeStyle({}, data), 0, std::nullopt);
    EXPECT_EQ(refusal(beyond), "--at: found 5, expected 1 to 4");
}

TEST(TimePlot, OfWhatNoFrameHasIsRefused)
{
    TimePlot writhe(asking({"writhe"}));
    add(writhe, 1, 0, std::nullopt);
    EXPECT_EQ(refusal(writhe), "--scalars: found 'writhe', which no line of these frames has");

    PlotRequest request = asking({"curvature", "foo"});
    request.at = 1;
    TimePlot unknown(request);
    add(unknown, 1, 0, std::nullopt);
    EXPECT_THAT(refusal(unknown), StartsWith("--scalars: found 'foo', expected some of arclength"));

    request = asking({"curvature"});
    request.at = 5;
    TimePlot beyond(request);
    add(beyond, 1, 0, std::nullopt);
    EXPECT_EQ(refusal(beyond), "--at: found 5, expected 0 to 4");
}

TEST(TimePlot, OfAnOpenLineIsItsSizeUnlessAskedForOthers)
{
    TimePlot plot{{}};
    add(plot, 1, 0, std::nullopt);
    const Plot whole = finished(plot);
    ASSERT_THAT(whole.panels, SizeIs(2));
    EXPECT_EQ(whole.panels[0].name, "endToEnd");
    EXPECT_EQ(whole.panels[1].name, "radiusOfGyration");
}

TEST(TimePlot, RefusesScalarsOfPlacesAsNumbersOfWholeLines)
{
    EXPECT_EQ(checkLineNumbers(asking({"writhe", "length"})), "");
    EXPECT_THAT(checkLineNumbers(asking({"curvature"})),
                StartsWith("--scalars: found 'curvature', expected some of length, endToEnd"));
}

} // namespace strandview
