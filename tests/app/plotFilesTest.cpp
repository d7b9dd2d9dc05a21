// SPDX-License-Identifier: GPL-3.0-or-later
#include "plotting/plotFiles.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <sstream>

#include <QImage>
#include <QXmlStreamReader>
#include <gmock/gmock.h>

#include "support/TemporaryFolder.h"
#include "support/runProgram.h"

namespace strandview {

namespace {

using testing::Contains;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::Not;
using testing::StartsWith;

namespace fs = std::filesystem;

// Two rods beside each other, the scalar of one of which has a gap.
const char* const RODS = R"({"strandview": 1, "rods": [
    {"points": [[0,0,0],[1,0,0],[2,0,0],[3,0,0],[4,0,0],[5,0,0]], "colour": "#ff0000",
     "scalars": {"k": [1, 2, null, 3, 4, 5]}},
    {"points": [[0,1,0],[1,1,0],[2,1,0]], "colour": "#0000ff", "scalars": {"k": [2, 1, 2]}}]})";

const char* const SERIES = R"({"strandview": 1, "series": [
    {"time": 0, "rods": [{"points": [[0,0,0],[1,0,0],[2,0,0]]}]},
    {"time": 10, "rods": [{"points": [[0,0,0],[1,0,0],[1,1,0]]}]},
    {"time": 20, "rods": [{"points": [[0,0,0],[1,0,0],[1,3,0]]}]}]})";

std::string contentOf(const std::string& file)
{
    std::ifstream stream(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

// What a plot shows, as an SVG has it.
struct Shown
{
    std::multiset<std::string> texts;
    std::map<std::string, std::vector<int>> polylines; ///< by colour, how many points each has
};

Shown shownIn(const std::string& file)
{
    Shown shown;
    QXmlStreamReader xml(QByteArray::fromStdString(contentOf(file)));
    std::vector<std::string> strokes;
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isEndElement() && xml.name() == "g")
            strokes.pop_back();
        if (!xml.isStartElement())
            continue;
        if (xml.name() == "g")
            strokes.push_back(xml.attributes().value("stroke").toString().toStdString());
        if (xml.name() == "text")
            shown.texts.insert(xml.readElementText().trimmed().toStdString());
        if (xml.name() == "polyline")
            shown.polylines[strokes.back()].push_back(
                xml.attributes().value("points").toString().count(','));
    }
    EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
    return shown;
}

class PlotFilesTest : public testing::Test
{
protected:
    // Without a display.
    ProgramRun run(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.begin(), "--plot");
        return runProgram(STRANDVIEW_PROGRAM, arguments);
    }

    Shown plotted(std::vector<std::string> arguments) const
    {
        const std::string file = folder.path("plot.svg");
        arguments.insert(arguments.begin(), file);
        const ProgramRun done = run(arguments);
        EXPECT_EQ(done.status, 0) << done.error;
        std::istringstream lines(done.error); // nothing of Qt's, which misses a display
        for (std::string line; std::getline(lines, line);)
            EXPECT_THAT(line, StartsWith("strandview: "));
        return shownIn(file);
    }

    std::string refused(std::vector<std::string> arguments) const
    {
        const std::string file = folder.path("refused.svg");
        arguments.insert(arguments.begin(), file);
        const ProgramRun done = run(arguments);
        EXPECT_EQ(done.status, 2);
        EXPECT_FALSE(fs::exists(file));
        return done.error;
    }

    TemporaryFolder folder;
    const std::string rods = folder.write("rods.json", RODS);
    const std::string series = folder.write("series.json", SERIES);
};

} // namespace

TEST_F(PlotFilesTest, APanelHasItsTitleWithTheUnitAndAllShareOneAxis)
{
    const Shown shown = plotted({"--scalars", "k,curvature", rods});
    EXPECT_THAT(shown.texts, IsSupersetOf({"k", "curvature [1/length]", "rod 1", "rod 2"}));
    EXPECT_EQ(shown.texts.count("arc length"), 1u);
}

TEST_F(PlotFilesTest, ACurveHasTheColourOfItsRodAndAGapWhereThereIsNoNumber)
{
    const Shown shown = plotted({"--scalars", "k", rods});
    EXPECT_THAT(shown.polylines.at("#ff0000"), testing::ElementsAre(2, 3));
    EXPECT_THAT(shown.polylines.at("#0000ff"), testing::ElementsAre(3));
}

TEST_F(PlotFilesTest, ASingleRodHasNoLegend)
{
    const Shown shown = plotted({series, "--frame", "1"});
    EXPECT_EQ(shown.texts.count("rod 1"), 0u);
    EXPECT_EQ(shown.texts.count("torsion [1/length]"), 1u);
}

TEST_F(PlotFilesTest, NumbersOfWholeLinesAreOverTime)
{
    const Shown shown =
        plotted({"--against", "time", "--scalars", "endToEnd,length", "--frames", "1:", series});
    EXPECT_THAT(shown.texts, IsSupersetOf({"endToEnd [length]", "length [length]", "time"}));
    EXPECT_EQ(shown.texts.count("20"), 1u) << "the last frame's time";
    EXPECT_EQ(shown.texts.count("0"), 0u) << "the first frame's is left out";
}

TEST_F(PlotFilesTest, TheScalarsOfAPlaceAreOverTime)
{
    const Shown shown =
        plotted({"--against", "time", "--at", "2", "--scalars", "arclength", series});
    EXPECT_THAT(shown.texts, Contains("arclength [length]"));
}

TEST_F(PlotFilesTest, OfASeriesItIsTheFirstFrameAndANoticeSaysSo)
{
    const ProgramRun done = run({folder.path("plot.svg"), series});
    EXPECT_EQ(done.status, 0);
    EXPECT_THAT(done.error, HasSubstr("the first of 3 frames"));
}

TEST_F(PlotFilesTest, APngHasTheSizeThatIsAskedForAndTheCurvesColours)
{
    const std::string file = folder.path("plot.png");
    const ProgramRun done = run({file, "--size", "1500x800", "--scalars", "k", rods});
    EXPECT_EQ(done.status, 0) << done.error;
    const QImage image(QString::fromStdString(file));
    ASSERT_EQ(image.size(), QSize(1500, 800));
    int red = 0, blue = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            red += image.pixel(x, y) == qRgb(255, 0, 0);
            blue += image.pixel(x, y) == qRgb(0, 0, 255);
        }
    }
    EXPECT_GT(red, 1000);
    EXPECT_GT(blue, 500);
    EXPECT_EQ(image.pixel(0, 0), qRgb(255, 255, 255));
}

TEST_F(PlotFilesTest, APdfIsOne)
{
    const std::string file = folder.path("plot.pdf");
    EXPECT_EQ(run({file, rods}).status, 0);
    const std::string text = contentOf(file);
    EXPECT_THAT(text, StartsWith("%PDF-1."));
    EXPECT_THAT(text, EndsWith("%%EOF\n"));
}

TEST_F(PlotFilesTest, ManyPointsAreAFewThousandInAFile)
{
    std::string table = "x y z k\n";
    for (int i = 0; i < 50'000; ++i)
        table += std::to_string(i) + " 0 0 " + std::to_string(i % 977) + "\n";
    const Shown shown = plotted({"--scalars", "k", folder.write("long.txt", table)});
    int points = 0;
    for (const auto& [colour, polylines] : shown.polylines)
        for (const int count : polylines)
            points += count;
    EXPECT_GT(points, 1000);
    EXPECT_LT(points, 5000);
}

TEST_F(PlotFilesTest, MoreLinesThanALegendHoldsHaveNone)
{
    std::string text;
    for (int rod = 0; rod < 20; ++rod)
        text += std::string(rod == 0 ? "" : "\n") + "0 0 " + std::to_string(rod) + "\n1 0 " +
                std::to_string(rod) + "\n";
    const std::string file = folder.path("plot.svg");
    const ProgramRun done = run({file, folder.write("many.txt", text)});
    EXPECT_EQ(done.status, 0);
    EXPECT_THAT(done.error, HasSubstr("no legend: found 20 lines"));
    EXPECT_THAT(shownIn(file).texts, Not(Contains("rod 1")));
}

TEST_F(PlotFilesTest, AFrameThatCannotBeReadIsAGapThatIsTold)
{
    std::string broken = SERIES;
    broken.replace(broken.find("[1,1,0]"), 7, "[1,\"\",0]");
    const std::string file = folder.path("plot.svg");
    const ProgramRun done = run({file, "--against", "time", folder.write("broken.json", broken)});
    EXPECT_EQ(done.status, 1);
    EXPECT_THAT(done.error, HasSubstr("strandview: frame 1: "));
    EXPECT_THAT(shownIn(file).texts, Contains("endToEnd [length]"));
}

TEST_F(PlotFilesTest, BadRequestsAreRefusedInALine)
{
    EXPECT_THAT(refused({"--scalars", "foo", rods}),
                StartsWith("strandview: --scalars: found 'foo', expected some of k, arclength, "));
    EXPECT_THAT(refused({"--scalars", "k,", rods}),
                HasSubstr("expected different names with commas between them"));
    EXPECT_THAT(refused({"--against", "foo", rods}), HasSubstr("arclength, number or time"));
    EXPECT_THAT(refused({"--at", "1", rods}), HasSubstr("found no --against time"));
    EXPECT_THAT(refused({"--frames", "1:", series}), HasSubstr("found no --against time"));
    EXPECT_THAT(refused({"--against", "time", "--frame", "1", series}),
                HasSubstr("found --against time, expected --frames"));
    EXPECT_THAT(refused({"--against", "time", "--frames", "7:", series}),
                HasSubstr("found none of 3 frames"));
    EXPECT_THAT(refused({"--against", "time", "--scalars", "curvature", series}),
                HasSubstr("found 'curvature', expected some of length, "));
    const ProgramRun done = run({folder.path("plot.gif"), rods});
    EXPECT_EQ(done.status, 2);
    EXPECT_THAT(done.error, EndsWith("expected a name that ends in .svg, .pdf or .png\n"));
}

TEST_F(PlotFilesTest, WhatCannotBeWrittenIsToldAndLeavesNothing)
{
    const std::string file = folder.path("no such folder/plot.svg");
    const ProgramRun done = run({file, rods});
    EXPECT_EQ(done.status, 1);
    EXPECT_THAT(done.error, HasSubstr("no such folder"));
}

// Of such a file no more is read than where the second frame begins.
TEST_F(PlotFilesTest, OfFramesThatWereNotCountedNoNumberIsTold)
{
    const std::string frame = "3\n\nC 0 0 0\nC 1 0 0\nC 2 1 0\n";
    const ProgramRun done =
        run({folder.path("plot.svg"), folder.write("run.xyz", frame + frame + frame)});
    EXPECT_EQ(done.status, 0);
    EXPECT_THAT(done.error, HasSubstr("run.xyz: the first of several frames; --frame N takes"));
    EXPECT_THAT(done.error, HasSubstr("strandview: --against time plots all frames\n"));
    EXPECT_EQ(done.error.find("the first of"), done.error.rfind("the first of")) << done.error;
}

TEST_F(PlotFilesTest, WhatAComparisonAddsIsPlottedWithItsUnit)
{
    const std::string file = folder.path("plot.svg");
    const ProgramRun done = run(
        {file, "--compare", "first", "--frame", "2", "--scalars", "reference_distance", series});
    EXPECT_EQ(done.status, 0);
    EXPECT_THAT(done.error, Not(HasSubstr("--compare")));
    EXPECT_THAT(shownIn(file).texts, Contains("reference_distance [length]"));
}

TEST_F(PlotFilesTest, OptionsOfPicturesHaveNoEffectAndANoticeSaysSo)
{
    const ProgramRun done = run({folder.path("plot.svg"), "--radius", "2", rods});
    EXPECT_EQ(done.status, 0);
    EXPECT_THAT(done.error, HasSubstr("--radius has no effect: --plot draws curves alone"));
}

} // namespace strandview
