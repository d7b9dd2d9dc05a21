// SPDX-License-Identifier: GPL-3.0-or-later
// The host program as its user sees it: arguments, files, lines and exit statuses.
#include <atomic>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <functional>
#include <set>
#include <sstream>
#include <thread>
#include <tuple>

#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>
#include <SoGeneralScene.h>
#include <gmock/gmock.h>

#include "camera/Camera.h"
#include "support/keepPictures.h"
#include "support/runProgram.h"
#include <algebra3d/Matrix3.h>

#include <strandview/formats/formats.h>

namespace strandview {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

const char* const HELIX = "0 0 0\n1 0 0.2\n1 1 0.4\n0 1 0.6\n0 0 0.8\n";

class StrandviewTest : public testing::Test
{
protected:
    std::string path(const std::string& name) const
    {
        return folder.filePath(QString::fromStdString(name)).toStdString();
    }

    std::string write(const std::string& name, const std::string& text) const
    {
        std::ofstream(path(name)) << text;
        return path(name);
    }

    ProgramRun run(const std::vector<std::string>& arguments, const std::string& input = "",
                   const std::vector<std::pair<std::string, std::string>>& environment = {}) const
    {
        return runProgram(STRANDVIEW_PROGRAM, arguments, input, environment);
    }

    QImage picture(const std::string& name) const
    {
        return keepIfFailed(QImage(QString::fromStdString(path(name))));
    }

    QStringList files() const
    {
        return QDir(folder.path())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    QTemporaryDir folder;
};

void expectOneLine(const std::string& text)
{
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1) << text;
    EXPECT_THAT(text, StartsWith("strandview: "));
    EXPECT_THAT(text, EndsWith("\n"));
}

int countPixels(const QImage& image, const std::function<bool(QColor)>& holds)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += holds(image.pixelColor(x, y));
    }
    return count;
}

int distance(const QColor& a, const QColor& b)
{
    return std::max({std::abs(a.red() - b.red()), std::abs(a.green() - b.green()),
                     std::abs(a.blue() - b.blue())});
}

int countCovered(const QImage& image)
{
    return countPixels(image, [](const QColor& colour) { return colour != QColor(Qt::white); });
}

TEST_F(StrandviewTest, RendersATableToAPictureOfTheAskedSizeWithoutADisplay)
{
    const ProgramRun result =
        run({"--render", path("rod.png"), "--size", "161x93", write("rod.txt", HELIX)});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "");
    expectOneLine(result.error);
    EXPECT_THAT(result.error, HasSubstr("parallel transport"));

    const QImage image = picture("rod.png");
    EXPECT_EQ(image.size(), QSize(161, 93));
    EXPECT_GT(countCovered(image), 500);
    EXPECT_EQ(image.pixelColor(0, 0), QColor(Qt::white));
}

TEST_F(StrandviewTest, APictureIsLitPlainOrOfLinesAsWideAsAskedOrOfBoxes)
{
    const std::string rod = write("rod.txt", HELIX);
    const auto shown = [&](const std::string& name, const std::vector<std::string>& how) {
        std::vector<std::string> arguments{
            "--render",      path(name), "--size",   "200x150", rod,      "--slices", "8",
            "--subsegments", "2",        "--radius", "0.2",     "--view", "z",        "--ribbon",
            "--tube-colour", "#204080"};
        arguments.insert(arguments.end(), how.begin(), how.end());
        const ProgramRun result = run(arguments);
        EXPECT_EQ(result.status, 0) << result.error;
        return picture(name);
    };
    const auto isOfTube = [](const QColor& c) { return c == QColor(0x20, 0x40, 0x80); };
    const QImage lit = shown("lit.png", {});
    EXPECT_EQ(shown("lit.png", {"--shading", "lit", "--line-width", "1", "--no-bounding-boxes"}),
              lit);
    const QImage plain = shown("plain.png", {"--shading", "plain"});
    EXPECT_GT(countPixels(plain, isOfTube), 10 * (countPixels(lit, isOfTube) + 10));
    EXPECT_EQ(countCovered(plain), countCovered(lit));
    const QImage thin = shown("thin.png", {"--shading", "wireframe"});
    const QImage thick = shown("thick.png", {"--shading", "wireframe", "--line-width", "3"});
    const auto isInk = [](const QColor& c) { return c.lightness() < 128; };
    EXPECT_LT(countPixels(thin, isInk), 0.6 * countPixels(plain, isInk));
    EXPECT_GT(countPixels(thick, isInk), 1.5 * countPixels(thin, isInk));
    const QImage boxes = shown("boxes.png", {"--bounding-boxes"});
    EXPECT_NE(boxes, lit);
    EXPECT_GT(countCovered(boxes), 0);
}

// The bytes as PNG has them: pixels per metre, twice, and 1 for metres.
TEST_F(StrandviewTest, APictureInMillimetresIsAsLargeAsAskedInPrint)
{
    const std::string rod = write("rod.txt", "0 0 0 0 0 0 1\n0 0 1 0 0 0 1\n");
    const auto resolutionOf = [this, &rod](std::vector<std::string> more) {
        more.insert(more.end(), {"--samples", "1", "--render", path("rod.png"), rod});
        EXPECT_EQ(run(more).status, 0);
        QFile file(QString::fromStdString(path("rod.png")));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        return bytes.mid(bytes.indexOf("pHYs") + 4, 9);
    };
    EXPECT_EQ(resolutionOf({"--size", "85x60mm"}), QByteArray("\0\0\x2e\x23\0\0\x2e\x23\1", 9));
    EXPECT_EQ(picture("rod.png").size(), QSize(1004, 709));
    EXPECT_EQ(resolutionOf({"--size", "20x10mm", "--dpi", "600"}),
              QByteArray("\0\0\x5c\x46\0\0\x5c\x46\1", 9)); // 23622
    EXPECT_EQ(picture("rod.png").size(), QSize(472, 236));
    EXPECT_EQ(resolutionOf({"--size", "40x30", "--dpi", "600", "--frame", "0"}),
              QByteArray("\0\0\x5c\x46\0\0\x5c\x46\1", 9));
    EXPECT_EQ(picture("rod.png").size(), QSize(40, 30));
}

TEST_F(StrandviewTest, TheCameraThatAPictureTellsMakesItAgainByteForByte)
{
    const std::string rod = write("rod.txt", HELIX);
    const std::vector<std::string> looks[] = {
        {}, {"--perspective"}, {"--azimuth", "33", "--elevation", "20", "--zoom", "1.7"}};
    const auto bytesOf = [this](const char* name) {
        QFile file(QString::fromStdString(path(name)));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    };
    for (std::vector<std::string> look : looks) {
        look.insert(look.end(), {"--print-camera", "--size", "60x40", "--render"});
        look.insert(look.end(), {path("told.png"), rod});
        const ProgramRun told = run(look);
        const QImage image = picture("told.png");
        EXPECT_THAT(image.text("Software").toStdString(), testing::StartsWith("strandview "));
        const std::string camera = image.text("Camera").toStdString();
        EXPECT_EQ(camera + "\n", told.output);
        run({"--camera", camera, "--size", "60x40", "--render", path("again.png"), rod});
        EXPECT_TRUE(bytesOf("told.png") == bytesOf("again.png")) << camera;
    }
}

// Run as the text has it, but for the program's folder, where the files are.
TEST_F(StrandviewTest, TheCommandThatAPictureTellsMakesItAgainByteForByte)
{
    ASSERT_TRUE(QDir(folder.path()).mkdir("my data"));
    const std::string rod = write("my data/the rod.txt", HELIX);
    const std::vector<std::string> looks[] = {
        {"--size", "60x40"},
        {"--size", "12.5x8mm", "--dpi", "150", "--transparent", "--samples", "1"},
        {"--size", "5x4mm", "--colour-by", "arclength", "--legend-title", "it's", "--view", "x"},
        {"--size", "60x40", "--shading", "wireframe", "--line-width", "2.5", "--bounding-boxes"},
        {"--size", "60x40", "--stamp", "--frame", "0", "--no-tube", "--background", "black"}};
    const auto bytesOf = [this](const std::string& name) {
        QFile file(QString::fromStdString(path(name)));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
        return file.readAll();
    };
    for (std::vector<std::string> look : looks) {
        look.insert(look.end(), {"--render", path("told.png"), rod});
        ASSERT_EQ(run(look).status, 0);
        std::string line = picture("told.png").text("Command").toStdString();
        SCOPED_TRACE(line);
        ASSERT_THAT(line, StartsWith("strandview "));
        line.replace(0, std::string("strandview").size(), STRANDVIEW_PROGRAM);
        const ProgramRun again =
            runProgram("/bin/sh", {"-c", "cd '" + path("my data") + "' && " + line});
        EXPECT_EQ(again.status, 0) << again.error;
        // What tells a series' pictures from others is of the options as they were given.
        if (look[2] == "--stamp")
            EXPECT_TRUE(picture("told.png").convertToFormat(QImage::Format_RGB888) ==
                        picture("my data/picture.png").convertToFormat(QImage::Format_RGB888));
        else
            EXPECT_TRUE(bytesOf("told.png") == bytesOf("my data/picture.png"));
    }
}

TEST_F(StrandviewTest, APictureTellsWhatItWasMadeFromWhenItIsAskedAbout)
{
    const std::string rod = write("rod.txt", HELIX);
    for (const char* name : {"told.png", "told.jpg"}) {
        SCOPED_TRACE(name);
        ASSERT_EQ(run({"--size", "60x40", "--dpi", "150", "--render", path(name), rod}).status, 0);
        const ProgramRun info = run({"--info", path(name)});
        EXPECT_EQ(info.status, 0);
        EXPECT_EQ(info.error, "");
        const QImage image = picture(name);
        EXPECT_THAT(info.output,
                    StartsWith(path(name) + ": a picture, 60 x 40 pixels, 150 to the inch\n"));
        EXPECT_THAT(info.output, HasSubstr("\n  shows: rod.txt\n  made by: strandview "));
        const std::string command = image.text("Command").toStdString();
        EXPECT_THAT(command, StartsWith("strandview --no-defaults --camera "));
        EXPECT_THAT(info.output, EndsWith("\n  command: " + command + "\n"));
        const ProgramRun json = run({"--info", "--json", path(name)});
        EXPECT_THAT(json.output, HasSubstr("\"width\": 60,\n  \"height\": 40,\n  \"dpi\": 150,"));
        EXPECT_THAT(json.output, HasSubstr("\"command\": \"" + command + "\""));
    }
}

TEST_F(StrandviewTest, APictureOnAPageIsAsLargeAsAskedInPrint)
{
    const std::string rod = write("rod.txt", HELIX);
    const auto textOf = [this, &rod](const char* name) {
        EXPECT_EQ(run({"--size", "12.7x25.4mm", "--render", path(name), rod}).status, 0);
        QFile file(QString::fromStdString(path(name)));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
        return file.readAll().toStdString();
    };
    EXPECT_THAT(textOf("page.pdf"), HasSubstr("/MediaBox[0 0 36.000"));
    EXPECT_THAT(textOf("page.svg"), HasSubstr("width=\"12.7"));
    EXPECT_EQ(textOf("page.pdf"), textOf("other.pdf")) << "whatever its name";
    EXPECT_EQ(textOf("page.svg"), textOf("other.svg")) << "whatever its name";
}

TEST_F(StrandviewTest, SaysNothingWhenThereIsNothingToSay)
{
    const std::string rod = write("rod.txt", "0 0 0 0 0 0 1\n0 0 1 0 0 0 1\n");
    const ProgramRun result = run({"--render", path("rod.png"), rod});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output + result.error, "");
}

TEST_F(StrandviewTest, WritesTheSamePictureEveryTime)
{
    const std::string rod = write("rod.txt", HELIX);
    run({"--render", path("a.png"), "--size", "200x150", rod});
    run({"--render", path("b.png"), "--size", "200x150", rod});
    ASSERT_FALSE(picture("a.png").isNull());
    EXPECT_EQ(picture("a.png"), picture("b.png"));
}

TEST_F(StrandviewTest, ReadsStandardInputAsTableOrJson)
{
    const std::string json = R"({"strandview": 1, "rods": [{"points": [[0,0,0],[1,0,0.2],[1,1,0.4],
                               [0,1,0.6],[0,0,0.8]]}]})";
    EXPECT_EQ(run({"--render", path("table.png"), "-"}, HELIX).status, 0);
    EXPECT_EQ(run({"--render", path("json.png"), "-"}, json).status, 0);
    ASSERT_FALSE(picture("table.png").isNull());
    EXPECT_EQ(picture("table.png"), picture("json.png"));
}

TEST_F(StrandviewTest, ReadsAPipeAndStandardInputByItsDevice)
{
    const std::string pipe = path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    std::thread writer([&pipe] { std::ofstream(pipe) << HELIX; });
    EXPECT_EQ(run({"--render", path("pipe.png"), "--size", "200x150", pipe}).status, 0);
    writer.join();
    EXPECT_EQ(
        run({"--render", path("device.png"), "--size", "200x150", "/dev/stdin"}, HELIX).status, 0);
    ASSERT_FALSE(picture("pipe.png").isNull());
    EXPECT_EQ(picture("pipe.png"), picture("device.png"));
}

TEST_F(StrandviewTest, AmericanSpellingsOfOptionsDoTheSame)
{
    const std::string rod = write("rod.txt", "0 0 0 0 0 0 2\n1 0 1 0 0 0 2\n1 1 1 0 0 0 2\n");
    const std::vector<std::string> common = {"--size", "100x80", rod};
    const auto pictureOf = [&](const std::vector<std::string>& own) {
        std::vector<std::string> arguments = {"--render", path("out.png")};
        arguments.insert(arguments.end(), own.begin(), own.end());
        arguments.insert(arguments.end(), common.begin(), common.end());
        const ProgramRun result = run(arguments);
        EXPECT_EQ(result.status, 0) << result.error;
        return picture("out.png");
    };
    const QImage british =
        pictureOf({"--normalise", "--colour-by", "curvature", "--colours", "red,blue"});
    ASSERT_FALSE(british.isNull());
    EXPECT_EQ(pictureOf({"--normalize", "--color-by", "curvature", "--colors=red,blue"}), british);
    EXPECT_EQ(pictureOf({"--normalize", "--tube-color", "red", "--ribbon-color=lime"}),
              pictureOf({"--normalise", "--tube-colour", "red", "--ribbon-colour=lime"}));
}

TEST_F(StrandviewTest, ARodWithoutFramesHasARibbonOnlyIfThatIsAskedFor)
{
    const auto pictureOf = [&](const std::string& rod, const std::vector<std::string>& own) {
        std::vector<std::string> arguments = {"--render", path("out.png"), "--size", "200x150"};
        arguments.insert(arguments.end(), own.begin(), own.end());
        arguments.push_back(rod);
        EXPECT_EQ(run(arguments).status, 0);
        return picture("out.png");
    };
    const std::string bare = write("bare.txt", HELIX);
    const QImage tube = pictureOf(bare, {"--no-ribbon"});
    ASSERT_FALSE(tube.isNull());
    EXPECT_EQ(pictureOf(bare, {}), tube);
    const QImage ribbon = pictureOf(bare, {"--ribbon"});
    EXPECT_NE(ribbon, tube);
    EXPECT_EQ(pictureOf(bare, {"--ribbon-colour", "#ed991a"}), ribbon);
    EXPECT_NE(pictureOf(bare, {"--ribbon-width", "0.3"}), tube);
    EXPECT_NE(pictureOf(bare, {"--two-sided"}), tube);

    const std::string framed =
        write("framed.txt", "0 0 0 0 0 0 1\n0 0 1 0 0 0 1\n0 0 2 0 0 0.6 0.8\n");
    EXPECT_EQ(pictureOf(framed, {"--view", "x"}), pictureOf(framed, {"--view", "x", "--ribbon"}));
    EXPECT_NE(pictureOf(framed, {"--view", "x"}),
              pictureOf(framed, {"--view", "x", "--no-ribbon"}));
}

TEST_F(StrandviewTest, AnEdgeThatShrinksToAPointIsNoFaultOfAHiddenRibbon)
{
    const std::string rod = write("rod.txt", "1 0 0 0.5 -0.5 -0.5 -0.5\n"
                                             "0 1 0 0.7071067811865476 0 -0.7071067811865476 0\n"
                                             "-1 0 0 0.5 0.5 -0.5 0.5\n");
    const ProgramRun result =
        run({"--render", path("out.png"), "--size", "60x60", "--ribbon-width", "1", "--no-ribbon",
             "--colour-by", "arclength", "--colours", "blue,cyan,yellow,red", rod});
    EXPECT_EQ(result.status, 0) << result.error;
    // The tube has its colours, from blue to red.
    const QImage image = picture("out.png");
    EXPECT_GT(countPixels(image, [](QColor c) { return c.red() > 2 * c.blue() + 50; }), 20);
    EXPECT_GT(countPixels(image, [](QColor c) { return c.blue() > 2 * c.red() + 50; }), 20);
}

TEST_F(StrandviewTest, AfterTwoDashesEverythingIsAFile)
{
    const ProgramRun result = run({"--render", path("out.png"), "--", "--color.txt"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.error, HasSubstr("--color.txt: cannot be read"));
}

TEST_F(StrandviewTest, ShowsAllFilesTogetherEachRodInAColourOfItsOwn)
{
    const std::string lower = write("lower.txt", "0 0 0 0 0.70710678 0 0.70710678\n"
                                                 "4 0 0 0 0.70710678 0 0.70710678\n");
    const std::string upper = write("upper.txt", "0 2 0 0 0.70710678 0 0.70710678\n"
                                                 "4 2 0 0 0.70710678 0 0.70710678\n");
    ASSERT_EQ(run({"--render", path("both.png"), "--size", "200x150", "--no-ribbon", lower, upper})
                  .status,
              0);
    const QImage image = picture("both.png");
    int upperMiddle = 0;
    while (upperMiddle < 150 && image.pixelColor(100, upperMiddle) == QColor(Qt::white))
        ++upperMiddle;
    int lowerMiddle = 149;
    while (lowerMiddle > 0 && image.pixelColor(100, lowerMiddle) == QColor(Qt::white))
        --lowerMiddle;
    ASSERT_LT(upperMiddle + 10, lowerMiddle);
    EXPECT_NE(image.pixelColor(100, upperMiddle + 1).hue() / 20,
              image.pixelColor(100, lowerMiddle - 1).hue() / 20);
}

TEST_F(StrandviewTest, TakesColoursForTubeRibbonAndBackground)
{
    // A straight rod across the view; its d2 is y.
    const std::string rod = write("rod.txt", "0 0 0 0 0.70710678 0 0.70710678\n"
                                             "4 0 0 0 0.70710678 0 0.70710678\n");
    ASSERT_EQ(run({"--render", path("rod.png"), "--size", "200x150", "--radius", "0.2",
                   "--ribbon-width", "1", "--tube-colour", "red", "--ribbon-colour", "#00ff00",
                   "--background", "#00f", rod})
                  .status,
              0);
    const QImage image = picture("rod.png");
    const auto reddish = [](const QColor& c) { return c.red() > 80 && c.red() > 2 * c.green(); };
    const auto greenish = [](const QColor& c) { return c.green() > 80 && c.green() > 2 * c.red(); };
    EXPECT_EQ(image.pixelColor(0, 0), QColor(Qt::blue));
    EXPECT_GT(countPixels(image, reddish), 1000);
    EXPECT_GT(countPixels(image, greenish), 2000);

    ASSERT_EQ(run({"--render", path("tube.png"), "--size", "200x150", "--tube-colour", "red",
                   "--ribbon-colour", "#00ff00", "--no-ribbon", rod})
                  .status,
              0);
    EXPECT_EQ(countPixels(picture("tube.png"), greenish), 0);
    EXPECT_GT(countPixels(picture("tube.png"), reddish), 500);

    ASSERT_EQ(run({"--render", path("ribbon.png"), "--size", "200x150", "--tube-colour", "red",
                   "--ribbon-colour", "#00ff00", "--no-tube", rod})
                  .status,
              0);
    EXPECT_EQ(countPixels(picture("ribbon.png"), reddish), 0);
    EXPECT_GT(countPixels(picture("ribbon.png"), greenish), 500);
}

TEST_F(StrandviewTest, SamplesSmoothTheEdges)
{
    const std::string rod =
        write("rod.txt", "0 0 0 -0.0863966143 0.7018088237 0.0863966143 0.7018088237\n"
                         "4 1 0 -0.0863966143 0.7018088237 0.0863966143 0.7018088237\n");
    const auto colours = [&](const std::string& samples) {
        EXPECT_EQ(run({"--render", path("rod.png"), "--size", "200x150", "--no-tube",
                       "--ribbon-width", "1", "--samples", samples, rod})
                      .status,
                  0);
        const QImage image = picture("rod.png");
        std::set<QRgb> seen;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                seen.insert(image.pixel(x, y));
        }
        return seen.size();
    };
    // A flat ribbon in one light: its colour and the background, then the shares of
    // a pixel that nine samples tell apart.
    EXPECT_EQ(colours("1"), 2u);
    EXPECT_GE(colours("3"), 8u);
    EXPECT_LE(colours("3"), 10u);
}

TEST_F(StrandviewTest, RendersARodOfAHundredThousandPoints)
{
    std::ostringstream table;
    for (int i = 0; i < 100000; ++i)
        table << std::cos(0.01 * i) << ' ' << std::sin(0.01 * i) << ' ' << 1e-4 * i << '\n';
    const ProgramRun result =
        run({"--render", path("rod.png"), "--size", "400x300", "--ribbon", "-"}, table.str());
    EXPECT_EQ(result.status, 0) << result.error;
    EXPECT_GT(countCovered(picture("rod.png")), 10000);
}

TEST_F(StrandviewTest, ShowsDataInAnyUnitAndAnywhereAlike)
{
    const auto helix = [](double scale, double offset) {
        std::ostringstream table;
        table.precision(17);
        for (int i = 0; i < 60; ++i) {
            table << scale * (std::cos(0.2 * i) + offset) << ' ' << scale * std::sin(0.2 * i) << ' '
                  << scale * 0.05 * i << '\n';
        }
        return table.str();
    };
    const auto render = [&](const std::string& name, const std::string& table) {
        EXPECT_EQ(run({"--render", path(name), "--size", "200x150", "-"}, table).status, 0);
        return picture(name);
    };
    const QImage metres = render("metres.png", helix(1, 0));
    ASSERT_GT(countCovered(metres), 2000);
    const std::vector<std::pair<double, double>> others = {{1e-10, 0}, {1e12, 0}, {1, 1e8}};
    for (const auto& [scale, offset] : others) {
        SCOPED_TRACE(scale);
        SCOPED_TRACE(offset);
        const QImage other = render("other.png", helix(scale, offset));
        ASSERT_EQ(other.size(), metres.size());
        int differing = 0;
        for (int y = 0; y < 150; ++y) {
            for (int x = 0; x < 200; ++x)
                differing +=
                    other.pixelColor(x, y) != metres.pixelColor(x, y) &&
                    std::abs(other.pixelColor(x, y).green() - metres.pixelColor(x, y).green()) > 10;
        }
        EXPECT_LT(differing, 60); // a few along edges
    }
}

const char* const SCALARS = "x y z qx qy qz qw heat\n"
                            "0 0 0 0 0.70710678 0 0.70710678 10\n"
                            "1 0 0 0 0.70710678 0 0.70710678 15\n"
                            "2 0 0 0 0.70710678 0 0.70710678 20\n"
                            "3 0 0 0 0.70710678 0 0.70710678 25\n"
                            "4 0 0 0 0.70710678 0 0.70710678 30\n";

// The published map at its ends and half-way.
const std::vector<QColor> VIRIDIS{{68, 1, 84}, {33, 145, 140}, {253, 231, 37}};

TEST_F(StrandviewTest, ColoursByAScalarOfTheFileAlongTheRodAndShowsALegend)
{
    const std::string rod = write("rod.txt", SCALARS);
    const auto render = [&](std::vector<std::string> more) {
        more.insert(more.end(), {"--render", path("rod.png"), "--size", "400x300", rod});
        const ProgramRun result = run(more);
        EXPECT_EQ(result.status, 0) << result.error;
        return picture("rod.png");
    };
    const QImage plain = render({});
    const QImage image = render({"--colour-by", "heat"});
    // The legend at the bottom: the ends, inside the frame, and the middle of the ramp, unlit.
    const auto barAt = [&image](int x) { return image.pixelColor(x, 276); };
    EXPECT_LE(distance(barAt(200 - 103), VIRIDIS.front()), 12);
    EXPECT_LE(distance(barAt(200), VIRIDIS[1]), 12);
    EXPECT_LE(distance(barAt(200 + 103), VIRIDIS.back()), 12);
    EXPECT_GT(countPixels(image, [](const QColor& c) { return c.lightness() < 60; }),
              countPixels(plain, [](const QColor& c) { return c.lightness() < 60; }));

    // On the rod: violet on the left, green and blue in the middle, yellow on the right.
    const auto hueAt = [&image](int x) {
        int y = 0;
        while (y < 200 && image.pixelColor(x, y) == QColor(Qt::white))
            ++y;
        return image.pixelColor(x, y + 2).hsvHue();
    };
    EXPECT_NEAR(hueAt(20), VIRIDIS.front().hsvHue(), 25);
    EXPECT_NEAR(hueAt(200), VIRIDIS[1].hsvHue(), 15);
    EXPECT_NEAR(hueAt(380), VIRIDIS.back().hsvHue(), 15);
}

// Five flat ribbons or thick tubes side by side, turned to the scene's light as it is seen from
// a side, with one value each: 0 to 4.
std::string fiveTurnedToTheLight(Side side)
{
    const auto toVector = [](const SbVec3f& v) {
        return algebra3d::Vector3<double>(double(v[0]), double(v[1]), double(v[2]));
    };
    const ViewAxes axes = axesOf(side);
    const auto up = toVector(axes.up), back = toVector(axes.direction) * -1.0;
    const auto right = up.cross(back);
    const auto toLight = SoGeneralScene::LIGHT_DIRS[0] * -1.0;
    const auto d1 = (right * toLight.x + up * toLight.y + back * toLight.z).getUnit();
    const auto d3 = up.cross(d1).getUnit();
    const auto d2 = d3.cross(d1);
    const auto q = algebra3d::Matrix3<double>(d1, d2, d3).getQuaternion();
    std::ostringstream table;
    table.precision(17);
    table << "x y z qx qy qz qw value\n";
    for (int rod = 0; rod < 5; ++rod) {
        for (int i = 0; i < 4; ++i) {
            const auto point = d2 * (1.5 * rod) + d3 * (2.0 * i);
            table << point.x << ' ' << point.y << ' ' << point.z << ' ' << q[0] << ' ' << q[1]
                  << ' ' << q[2] << ' ' << q[3] << ' ' << rod << '\n';
        }
        table << '\n';
    }
    return table.str();
}

// What a ramp of evenly spaced colours shows at t from 0 to 1.
QColor onRamp(const std::vector<QColor>& ramp, double t)
{
    const double step = t * double(ramp.size() - 1);
    const std::size_t i = std::min(std::size_t(step), ramp.size() - 2);
    const double u = step - double(i);
    const auto mix = [u](int a, int b) { return int(std::lround((1 - u) * a + u * b)); };
    const QColor &a = ramp[i], &b = ramp[i + 1];
    return QColor(mix(a.red(), b.red()), mix(a.green(), b.green()), mix(a.blue(), b.blue()));
}

const std::vector<std::vector<QColor>> RAMPS{{Qt::blue, Qt::cyan, Qt::green, Qt::yellow, Qt::red},
                                             {QColor(255, 10, 0), QColor(0, 10, 255)},
                                             {QColor(0, 0, 128), Qt::white, QColor(139, 0, 0)}};

std::string listOf(const std::vector<QColor>& ramp)
{
    std::string list;
    for (const QColor& colour : ramp)
        list += (list.empty() ? "" : ",") + colour.name().toStdString();
    return list;
}

TEST_F(StrandviewTest, WhatIsTurnedToTheLightHasTheRampsColoursInEveryView)
{
    const std::vector<std::pair<std::string, Side>> sides{{"x", Side::X}, {"-x", Side::MINUS_X},
                                                          {"y", Side::Y}, {"-y", Side::MINUS_Y},
                                                          {"z", Side::Z}, {"-z", Side::MINUS_Z}};
    std::size_t next = 0;
    for (const auto& [name, side] : sides) {
        const std::string rods = write("rods.txt", fiveTurnedToTheLight(side));
        const std::vector<QColor>& ramp = RAMPS[next++ % RAMPS.size()];
        for (const bool perspective : {false, true}) {
            for (const char* part : {"--no-tube", "--no-ribbon"}) {
                SCOPED_TRACE("--view " + name + " --colours " + listOf(ramp) + " " + part);
                SCOPED_TRACE(perspective);
                std::vector<std::string> arguments{"--render",
                                                   path("rods.png"),
                                                   "--view",
                                                   name,
                                                   "--size",
                                                   "240x180",
                                                   "--samples",
                                                   "1",
                                                   "--colour-by",
                                                   "value",
                                                   "--range",
                                                   "0:4",
                                                   "--colours",
                                                   listOf(ramp),
                                                   "--background",
                                                   "#204060",
                                                   "--ribbon-width",
                                                   "1",
                                                   "--radius",
                                                   "0.6",
                                                   "--slices",
                                                   "64",
                                                   part,
                                                   rods};
                if (perspective)
                    arguments.push_back("--perspective");
                ASSERT_EQ(run(arguments).status, 0);
                const QImage scene = picture("rods.png").copy(0, 0, 240, 145); // no legend
                for (int rod = 0; rod < 5; ++rod) {
                    const QColor expected = onRamp(ramp, rod / 4.0);
                    const auto is = [&](const QColor& c) { return distance(c, expected) <= 2; };
                    EXPECT_GT(countPixels(scene, is), 60) << expected.name().toStdString();
                }
            }
        }
    }
}

TEST_F(StrandviewTest, TheBarOfALegendHasTheRampsColours)
{
    const std::string rods = write("rods.txt", fiveTurnedToTheLight(Side::Z));
    for (const std::vector<QColor>& ramp : RAMPS) {
        SCOPED_TRACE(listOf(ramp));
        ASSERT_EQ(run({"--render", path("rods.png"), "--size", "800x600", "--colour-by", "value",
                       "--colours", listOf(ramp), "--samples", "1", rods})
                      .status,
                  0);
        const QImage image = picture("rods.png");
        // The bar is 0.7 of the height wide, and its middle 0.0775 of it above the bottom.
        for (int x = 195; x < 605; ++x) {
            const double t = 0.5 + (x + 0.5 - 400) / (0.7 * 600);
            EXPECT_LE(distance(image.pixelColor(x, 553), onRamp(ramp, t)), 2) << x;
        }
    }
}

TEST_F(StrandviewTest, ALegendsLettersNeedNoDisplayAndSayNothing)
{
    const std::string rod = write("rod.txt", SCALARS);
    const ProgramRun result =
        run({"--render", path("rod.png"), "--colour-by", "heat", rod}, "",
            {{"QT_QPA_PLATFORM", "none"}, {"XDG_RUNTIME_DIR", ""}, {"LC_ALL", "de_DE.UTF-8"}});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output + result.error, "");
}

TEST_F(StrandviewTest, ALegendIsAtTheBottomOfAPictureOfAnyForm)
{
    const std::string rod = write("rod.txt", SCALARS);
    for (const auto& [width, height] : {std::pair(150, 300), {150, 600}, {200, 200}, {900, 200}}) {
        SCOPED_TRACE(width);
        SCOPED_TRACE(height);
        const std::string size = std::to_string(width) + "x" + std::to_string(height);
        ASSERT_EQ(
            run({"--render", path("rod.png"), "--size", size, "--colour-by", "heat", rod}).status,
            0);
        const QImage image = picture("rod.png");
        const double unit = std::min(width, height) / 2.0;
        const int bar = int(height - 0.155 * unit), ramp = int(0.6 * unit);
        EXPECT_LE(distance(image.pixelColor(width / 2, bar), VIRIDIS[1]), 20);
        EXPECT_LT(image.pixelColor(width / 2 - ramp, bar).green(), 60);
        EXPECT_GT(image.pixelColor(width / 2 + ramp, bar).red(), 200);
        // Between the legend and the rod there is nothing.
        const QImage between = image.copy(0, int(height - 0.36 * unit), width, 2);
        EXPECT_EQ(countCovered(between), 0);
    }
}

TEST_F(StrandviewTest, ALegendStandsAtTheTopOfAPictureOfAnyFormOrIsLeftOut)
{
    const std::string rod = write("rod.txt", SCALARS);
    for (const auto& [width, height] : {std::pair(150, 300), {150, 600}, {200, 200}, {900, 200}}) {
        SCOPED_TRACE(width);
        SCOPED_TRACE(height);
        const std::string size = std::to_string(width) + "x" + std::to_string(height);
        const auto render = [&](const std::string& place) {
            EXPECT_EQ(run({"--render", path("rod.png"), "--size", size, "--colour-by", "heat",
                           "--legend", place, rod})
                          .status,
                      0);
            return picture("rod.png");
        };
        const QImage image = render("top");
        const double unit = std::min(width, height) / 2.0;
        const int bar = int(0.165 * unit), ramp = int(0.6 * unit);
        EXPECT_LE(distance(image.pixelColor(width / 2, bar), VIRIDIS[1]), 20);
        EXPECT_LT(image.pixelColor(width / 2 - ramp, bar).green(), 60);
        EXPECT_GT(image.pixelColor(width / 2 + ramp, bar).red(), 200);
        const QImage between = image.copy(0, int(0.32 * unit) + 1, width, 2);
        EXPECT_EQ(countCovered(between), 0);
        const QImage without = render("off");
        const int strip = int(0.3 * unit);
        EXPECT_EQ(countCovered(without.copy(0, 0, width, strip)), 0);
        EXPECT_EQ(countCovered(without.copy(0, height - strip, width, strip)), 0);
        EXPECT_GT(countCovered(without), 0);
    }
}

TEST_F(StrandviewTest, DataHaveAllRoomThatALegendLeaves)
{
    const std::string ring = write("ring.txt", "x y z\n0 -1 0\n1 0 0\n0 1 0\n-1 0 0\n0 -1 0\n");
    const int height = 300, legend = 48, margin = 15;
    for (const bool perspective : {false, true}) {
        for (const auto& [place, above, below] :
             {std::tuple("off", 0, 0), {"top", legend, 0}, {"bottom", 0, legend}}) {
            SCOPED_TRACE(place);
            std::vector<std::string> arguments{
                "--render",    path("ring.png"), "--size",   "600x300",
                "--colour-by", "arclength",      "--legend", place,
                "--margin",    "0.05",           ring};
            if (perspective)
                arguments.push_back("--perspective");
            ASSERT_EQ(run(arguments).status, 0);
            const QImage data = picture("ring.png").copy(0, above, 600, height - above - below);
            EXPECT_EQ(countCovered(data.copy(0, 0, 600, margin - 2)), 0);
            EXPECT_GT(countCovered(data.copy(0, 0, 600, margin + 2)), 0);
            EXPECT_EQ(countCovered(data.copy(0, data.height() - margin + 2, 600, margin - 2)), 0);
            EXPECT_GT(countCovered(data.copy(0, data.height() - margin - 2, 600, margin + 2)), 0);
        }
    }
}

TEST_F(StrandviewTest, ColoursOfDataStillShowTheShape)
{
    const std::string rods = write("rods.txt", fiveTurnedToTheLight(Side::Z));
    ASSERT_EQ(run({"--render", path("rods.png"), "--size", "240x180", "--colour-by", "value",
                   "--colours", "white,white", "--no-ribbon", "--radius", "0.6", rods})
                  .status,
              0);
    const auto isShade = [](const QColor& c) { return c.value() > 60 && c.value() < 200; };
    EXPECT_GT(countPixels(picture("rods.png"), isShade), 2000) << "white tubes on white";
}

TEST_F(StrandviewTest, TheTicksOfALegendAreTwoPixelsWideWithAnySamples)
{
    const std::string rod = write("rod.txt", SCALARS);
    for (const char* samples : {"1", "2", "3", "5"}) {
        SCOPED_TRACE(samples);
        EXPECT_EQ(run({"--render", path("rod.png"), "--size", "800x600", "--colour-by", "heat",
                       "--samples", samples, rod})
                      .status,
                  0);
        // A row between the bar and the numbers: nothing but ticks, at 10, 15, 20, 25 and 30.
        const QImage image = picture("rod.png");
        double pixels = 0;
        for (int x = 0; x < image.width(); ++x)
            pixels += 1 - image.pixelColor(x, 563).lightnessF();
        EXPECT_NEAR(pixels, 5 * 2, 0.1);
    }
}

TEST_F(StrandviewTest, RangeAndColoursChangeTheRamp)
{
    const std::string rod = write("rod.txt", SCALARS);
    ASSERT_EQ(run({"--render", path("rod.png"), "--size", "400x300", "--colour-by", "heat",
                   "--range", "100:200", "--colours", "red,#0000ff", rod})
                  .status,
              0);
    // All values are below the range, so the rod is of the first colour from end to end.
    const QImage image = picture("rod.png");
    int rodPixels = 0;
    for (int y = 0; y < 200; ++y) {
        for (int x = 0; x < 400; ++x) {
            const QColor colour = image.pixelColor(x, y);
            if (colour == QColor(Qt::white))
                continue;
            ++rodPixels;
            EXPECT_LE(colour.blue(), colour.red()) << x << ", " << y;
        }
    }
    EXPECT_GT(rodPixels, 1000);
    EXPECT_GT(countPixels(image, [](const QColor& c) { return c.blue() > 250 && c.red() < 40; }),
              10); // the legend's right end
}

TEST_F(StrandviewTest, ColoursByEveryBuiltInScalarOfAnyRod)
{
    const std::string two = write("two.txt", "0 0 0\n1 0 1\n");
    const std::string helix = write("helix.txt", HELIX);
    for (const char* name : {"arclength", "curvature", "torsion", "twist"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(run({"--render", path("rod.png"), "--colour-by", name, two, helix}).status, 0);
    }
}

TEST_F(StrandviewTest, EveryLookOfADnaIsSeenOnWhiteAndOnBlack)
{
    for (const char* look : {"atoms", "bases", "backbone", "backbone,bases", "boxes", "pairs",
                             "boxes,pairs", "atoms,pairs"}) {
        for (const char* view : {"x", "y", "z"}) {
            SCOPED_TRACE(look);
            SCOPED_TRACE(view);
            EXPECT_EQ(
                run({"--render", path("dna.png"), "--size", "200x150", "--samples", "1", "--dna",
                     look, "--view", view, "--transparent", SAMPLES_FOLDER "/dna_bent.txt"})
                    .status,
                0);
            const QImage dna = picture("dna.png");
            ASSERT_EQ(dna.size(), QSize(200, 150));
            int covered = 0, seenOnWhite = 0, seenOnBlack = 0;
            for (int y = 0; y < 150; ++y) {
                for (int x = 0; x < 200; ++x) {
                    const QColor colour = dna.pixelColor(x, y);
                    if (colour.alpha() < 255)
                        continue;
                    ++covered;
                    seenOnWhite += distance(colour, Qt::white) > 60;
                    seenOnBlack += distance(colour, Qt::black) > 30;
                }
            }
            EXPECT_GT(covered, 500);
            EXPECT_GT(seenOnWhite, 0.95 * covered); // all but the atoms' highlights
            EXPECT_GT(seenOnBlack, 0.85 * covered);
        }
    }
}

// One pair whose three frames are one, in the plane of x and y.
const char* const FLAT_PAIR = "C 0 0 0 0 0 0 1 0 0 0 0 0 0 1 0 0 0 0 0 0 1\n";

TEST_F(StrandviewTest, APairsPlateIsSeenAroundItsBasesAndShinesThroughNowhere)
{
    const std::string pair = write("pair.txt", FLAT_PAIR);
    const std::string camera = "orthographic,0,0,40,0,0,0,1,40,16";
    for (const std::string& from : {camera, std::string("orthographic,0,0,-40,0,1,0,0,40,16"),
                                    std::string("perspective,0,0,40,0,0,0,1,40,0.4")}) {
        SCOPED_TRACE(from);
        const auto render = [&](const char* look) {
            EXPECT_EQ(run({"--render", path("pair.png"), "--size", "200x200", "--samples", "1",
                           "--dna", look, "--camera", from, pair})
                          .status,
                      0);
            return picture("pair.png");
        };
        const QImage bases = render("boxes"), both = render("boxes,pairs");
        int plate = 0;
        for (int y = 0; y < 200; ++y) {
            for (int x = 0; x < 200; ++x) {
                if (bases.pixelColor(x, y) == QColor(Qt::white))
                    plate += both.pixelColor(x, y) != QColor(Qt::white);
                else
                    EXPECT_EQ(both.pixel(x, y), bases.pixel(x, y)) << x << ", " << y;
            }
        }
        EXPECT_GT(plate, 1000);
    }
}

// A flat cross of three arms that differ: along x to 1, along y to 2, along z to 4.
const char* const ARMS_JSON = R"({"strandview": 1, "rods": [
    {"points": [[0.3,0,0],[1,0,0]]}, {"points": [[0,0.3,0],[0,2,0]]},
    {"points": [[0,0,0.3],[0,0,4]]}]})";

TEST_F(StrandviewTest, EveryStandardViewShowsItsOwnSide)
{
    struct View
    {
        std::string side;
        // Where the ends of the long arms are seen: 1 right or up, -1 left or down, 0 end on.
        int yRight, yUp, zRight, zUp;
    };
    const std::string rods = write("arms.json", ARMS_JSON);
    for (const View& view :
         {View{"x", 1, 0, 0, 1}, View{"-x", -1, 0, 0, 1}, View{"y", 0, 0, 0, 1},
          View{"-y", 0, 0, 0, 1}, View{"z", 0, 1, 0, 0}, View{"-z", 0, 1, 0, 0}}) {
        SCOPED_TRACE(view.side);
        ASSERT_EQ(run({"--render", path("view.png"), "--size", "300x300", "--no-ribbon", "--radius",
                       "0.1", "--view", view.side, rods})
                      .status,
                  0);
        // The boxes of the first, second and third rod's colours.
        const QImage image = picture("view.png");
        const auto middleOf = [&image](int hueFrom, int hueTo) {
            QRect box;
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 0; x < image.width(); ++x) {
                    const QColor c = image.pixelColor(x, y);
                    if (c.hsvSaturation() > 60 && c.hsvHue() > hueFrom && c.hsvHue() < hueTo)
                        box |= QRect(x, y, 1, 1);
                }
            }
            return box;
        };
        const QRect alongX = middleOf(190, 220), alongY = middleOf(150, 180),
                    alongZ = middleOf(300, 345);
        const auto isLong = [](int a, int b) { return a > 2 * b; };
        EXPECT_EQ(isLong(alongY.width(), alongY.height()), view.yRight != 0);
        EXPECT_EQ(isLong(alongY.height(), alongY.width()), view.yUp != 0);
        EXPECT_EQ(isLong(alongZ.height(), alongZ.width()), view.zUp != 0);
        EXPECT_FALSE(isLong(alongZ.width(), alongZ.height()));
        if (view.yRight) {
            EXPECT_GT(view.yRight * (alongY.center().x() - alongZ.center().x()), 20);
        }
        if (view.zUp) {
            EXPECT_LT(alongZ.center().y(), 160);
        }
        // From the opposite sides x points the other way.
        if (view.side == "z" || view.side == "-y") {
            EXPECT_GT(alongX.center().x(), (view.side == "z" ? alongY : alongZ).center().x());
        }
        if (view.side == "-z" || view.side == "y") {
            EXPECT_LT(alongX.center().x(), (view.side == "-z" ? alongY : alongZ).center().x());
        }
    }
}

TEST_F(StrandviewTest, WithoutAViewItLooksAlongTheShortestSideOfTheData)
{
    const auto cameraOf = [&](const std::string& table, std::vector<std::string> view) {
        view.insert(view.end(), {"--print-camera", "--size", "40x30", "--render", path("rod.png"),
                                 write("rod.txt", table)});
        const ProgramRun result = run(view);
        EXPECT_EQ(result.status, 0) << result.error;
        return result.output;
    };
    // Arcs in the planes across x, y and z, and a straight rod along z.
    const std::pair<const char*, const char*> tables[] = {{"0 0 0\n0 1 1\n0 2 1\n0 3 0\n", "x"},
                                                          {"0 0 0\n1 0 1\n2 0 1\n3 0 0\n", "y"},
                                                          {"0 0 0\n1 1 0\n2 1 0\n3 0 0\n", "z"},
                                                          {"0 0 0\n0 0 1\n0 0 2\n", "x"}};
    for (const auto& [table, side] : tables) {
        SCOPED_TRACE(table);
        for (const std::vector<std::string>& type :
             {std::vector<std::string>{}, std::vector<std::string>{"--perspective"}}) {
            std::vector<std::string> asked = type;
            asked.insert(asked.end(), {"--view", side});
            EXPECT_NE(cameraOf(table, type), "");
            EXPECT_EQ(cameraOf(table, type), cameraOf(table, asked));
        }
    }
}

TEST_F(StrandviewTest, ComparesWithAnotherFileOrTheFirstFrame)
{
    const std::string straight = write("straight.txt", "0 0 0\n0 0 1\n0 0 2\n0 0 3\n");
    const std::string bent = write("bent.txt", "0 0 0\n0 0 1\n0 1 2\n0 1 4\n");
    const auto exported = [&](const std::vector<std::string>& arguments) {
        std::vector<std::string> all{"--export", path("out.json")};
        all.insert(all.end(), arguments.begin(), arguments.end());
        const ProgramRun result = run(all);
        EXPECT_EQ(result.status, 0) << result.error;
        std::ifstream written(path("out.json"));
        return std::string(std::istreambuf_iterator<char>(written), {});
    };
    EXPECT_EQ(exported({bent}).find("reference_distance"), std::string::npos);
    EXPECT_NE(exported({"--compare", straight, bent}).find("reference_distance"),
              std::string::npos);
    const ProgramRun same = run({"--render", path("a.png"), "--size", "60x40", "--compare",
                                 straight, "--colour-by", "reference_distance", straight});
    EXPECT_THAT(same.error, HasSubstr("found 0 everywhere"));
    const std::string series =
        write("series.txt", "0 0 0\n0 0 1\n0 0 2\n\n\n0 0 0\n0 0 1\n0 1 2\n");
    const ProgramRun first = run({"--render", path("b.png"), "--size", "60x40", "--compare",
                                  "first", "--colour-by", "reference_distance", series});
    EXPECT_EQ(first.status, 0) << first.error;
}

TEST_F(StrandviewTest, TheCameraThatItPrintsGivesTheSamePicturePixelByPixel)
{
    const std::string rod = write("rod.txt", HELIX);
    for (const std::vector<std::string>& view :
         {std::vector<std::string>{"--view", "-x"}, {"--view", "y", "--perspective"}, {}}) {
        std::vector<std::string> arguments{"--render",       path("a.png"), "--size", "200x150",
                                           "--print-camera", "--colour-by", "twist",  rod};
        arguments.insert(arguments.begin(), view.begin(), view.end());
        const ProgramRun first = run(arguments);
        ASSERT_EQ(first.status, 0) << first.error;
        ASSERT_EQ(std::count(first.output.begin(), first.output.end(), '\n'), 1);
        const std::string numbers = first.output.substr(0, first.output.size() - 1);
        const ProgramRun again = run({"--render", path("b.png"), "--size", "200x150", "--colour-by",
                                      "twist", "--print-camera", "--camera", numbers, rod});
        ASSERT_EQ(again.status, 0) << again.error;
        EXPECT_EQ(again.output, first.output);
        EXPECT_GT(countCovered(picture("a.png")), 1000);
        EXPECT_EQ(picture("a.png"), picture("b.png"));
    }
}

// A rod along x, and a red ball beside its middle; moved along x.
std::string rodWithBall(double x)
{
    std::ostringstream json;
    json.precision(17);
    json << R"({"strandview": 1, "rods": [{"points": [[)" << x << ", 0, 0], [" << x + 10
         << R"(, 0, 0]], "radius": 0.5, "colour": "blue"}], "markers": [{"point": [)" << x + 4
         << R"(, 2, 0], "shape": "sphere", "size": 1, "colour": "red"}]})";
    return json.str();
}

QRect boxOf(const QImage& image, const std::function<bool(QColor)>& holds)
{
    QRect box;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (holds(image.pixelColor(x, y)))
                box |= QRect(x, y, 1, 1);
    return box;
}

QRect ballIn(const QImage& image)
{
    return boxOf(image, [](const QColor& c) { return c.red() > c.blue() + 60; });
}

TEST_F(StrandviewTest, AnglesAreCountedFromTheFrontOrFromTheSideThatIsNamed)
{
    const std::string file = write("ball.json", rodWithBall(0));
    const auto seen = [&](std::vector<std::string> view) {
        view.insert(view.end(), {"--size", "160x120", "--render", path("seen.png"), file});
        const ProgramRun result = run(view);
        EXPECT_EQ(result.status, 0) << result.error;
        return picture("seen.png");
    };
    const QImage front = seen({"--view", "-y"}), right = seen({"--view", "x"});
    EXPECT_GT(countCovered(front), 1000);
    EXPECT_NE(front, right);
    EXPECT_EQ(seen({"--azimuth", "0", "--elevation", "0"}), front);
    EXPECT_EQ(seen({"--up", "z", "--azimuth", "0"}), front);
    EXPECT_EQ(seen({"--azimuth", "90"}), right);
    EXPECT_EQ(seen({"--azimuth", "-180"}), seen({"--view", "y"}));
    EXPECT_EQ(seen({"--elevation", "90"}), seen({"--view", "z"}));
    EXPECT_EQ(seen({"--view", "y", "--azimuth", "-90"}), right);
    EXPECT_EQ(seen({"--view", "z", "--azimuth", "90"}), seen({"--view", "x", "--up", "y"}));
    EXPECT_EQ(seen({"--up", "0,5,0"}), seen({"--view", "z"})) << "as without it";
    EXPECT_EQ(seen({"--up", "z"}), front) << "the usual side is along that";
}

TEST_F(StrandviewTest, ZoomMarginAndCentreAreMeasuredInPixels)
{
    const double far = 1e7; // where the scene has an origin of its own
    for (const double x : {0.0, far})
        for (const char* projection : {"", "--perspective"}) {
            const std::string file = write("ball.json", rodWithBall(x));
            const auto seen = [&](std::vector<std::string> view) {
                view.insert(view.end(), {"--view", "z", "--size", "400x300", "--render",
                                         path("seen.png"), file});
                if (*projection)
                    view.emplace_back(projection);
                const ProgramRun result = run(view);
                EXPECT_EQ(result.status, 0) << result.error;
                return picture("seen.png");
            };
            const QRect once = ballIn(seen({}));
            ASSERT_GT(once.width(), 20);
            const QString centre = QString("%1,2,0").arg(x + 4, 0, 'f', 1);
            for (const int zoom : {2, 4}) {
                const QRect ball = ballIn(
                    seen({"--zoom", std::to_string(zoom), "--centre", centre.toStdString()}));
                EXPECT_NEAR(ball.width(), zoom * once.width(), zoom + 1);
                EXPECT_NEAR(ball.height(), zoom * once.height(), zoom + 1);
                EXPECT_NEAR(ball.left() + ball.right(), 399, 2);
                EXPECT_NEAR(ball.top() + ball.bottom(), 299, 2);
            }
            if (*projection)
                continue;
            for (const double margin : {0.0, 0.1, 0.3}) {
                const QImage image = seen({"--margin", QString::number(margin).toStdString()});
                const QRect all =
                    boxOf(image, [](const QColor& c) { return c != QColor(Qt::white); });
                EXPECT_NEAR(all.left(), 300 * margin, 1);
                EXPECT_NEAR(399 - all.right(), 300 * margin, 1);
            }
        }
}

TEST_F(StrandviewTest, TheCameraOfTheGuideShowsAllOfTheKnot)
{
    // The printed camera and the command that is given it.
    std::ifstream guide(GUIDE_FILE);
    std::string printed, command;
    const std::string start = "$ strandview --render knot.png --camera ";
    for (std::string line, before; std::getline(guide, line); before = line) {
        if (line.rfind(start, 0) == 0) {
            printed = before;
            command = line;
        }
    }
    ASSERT_EQ(command, start + printed + " data/trefoil.txt");
    const ProgramRun result = run({"--render", path("knot.png"), "--camera", printed,
                                   "--print-camera", std::string(SAMPLES_FOLDER) + "/trefoil.txt"});
    EXPECT_EQ(result.status, 0) << result.error;
    EXPECT_EQ(result.output, printed + "\n") << "as it was told by a real run";
    const QImage image = picture("knot.png");
    EXPECT_GT(countCovered(image), 100000);
    const QRect inner = image.rect().adjusted(1, 1, -1, -1);
    EXPECT_EQ(countCovered(image), countCovered(image.copy(inner))) << "nothing at the edges";
}

TEST_F(StrandviewTest, TransparentPicturesHaveTheCoverageAsAlphaWhateverTheColours)
{
    // A rod across the view, a tenth of it high, its ribbon slanted beside it.
    const std::string rod =
        write("rod.txt", "0 0 0 -0.0863966143 0.7018088237 0.0863966143 0.7018088237\n"
                         "4 1 0 -0.0863966143 0.7018088237 0.0863966143 0.7018088237\n");
    const auto render = [&](const std::string& colour, const std::string& background,
                            const std::string& samples) {
        EXPECT_EQ(run({"--render", path("rod.png"), "--size", "200x150", "--no-ribbon", "--radius",
                       "0.2", "--tube-colour", colour, "--background", background, "--samples",
                       samples, "--transparent", rod})
                      .status,
                  0);
        return picture("rod.png");
    };
    const QImage black = render("black", "white", "3");
    ASSERT_TRUE(black.hasAlphaChannel());
    EXPECT_EQ(black.pixelColor(0, 0).alpha(), 0);
    EXPECT_EQ(black.pixelColor(100, 75).alpha(), 255);
    std::set<int> shares;
    int edge = 0;
    for (const char* colour : {"black", "white", "#00f"}) {
        for (const char* background : {"white", "black", "blue"}) {
            SCOPED_TRACE(std::string(colour) + " on " + background);
            const QImage other = render(colour, background, "3");
            ASSERT_EQ(other.size(), black.size());
            for (int y = 0; y < black.height(); ++y) {
                for (int x = 0; x < black.width(); ++x) {
                    const int alpha = qAlpha(other.pixel(x, y));
                    ASSERT_EQ(alpha, qAlpha(black.pixel(x, y))) << x << ", " << y;
                    shares.insert(alpha);
                    edge += alpha > 0 && alpha < 255;
                }
            }
        }
    }
    // Thin edges: the shares that nine samples tell apart.
    EXPECT_GT(edge, 100);
    EXPECT_GE(shares.size(), 8u);
    for (const int share : shares)
        EXPECT_NEAR(share * 9 / 255.0, std::round(share * 9 / 255.0), 0.04) << share;
    const QImage single = render("white", "white", "1");
    EXPECT_EQ(countPixels(single, [](const QColor& c) { return c.alpha() % 255 != 0; }), 0);
}

TEST_F(StrandviewTest, ATransparentPictureOnItsBackgroundIsThePlainPicture)
{
    const std::string rod = write("rod.txt", SCALARS);
    const std::vector<std::string> common{
        "--size", "400x300", "--background", "#fffff0", "--colour-by", "heat", rod};
    const auto render = [&](std::vector<std::string> arguments) {
        arguments.insert(arguments.end(), common.begin(), common.end());
        EXPECT_EQ(run(arguments).status, 0);
    };
    render({"--render", path("plain.png")});
    render({"--render", path("clear.png"), "--transparent"});
    QImage laid(400, 300, QImage::Format_RGB32);
    laid.fill(QColor("#fffff0"));
    QPainter(&laid).drawImage(0, 0, picture("clear.png"));
    const QImage plain = picture("plain.png");
    int text = 0;
    for (int y = 0; y < 300; ++y) {
        for (int x = 0; x < 400; ++x) {
            ASSERT_LE(distance(laid.pixelColor(x, y), plain.pixelColor(x, y)), 4) << x << ", " << y;
            text += y > 280 && plain.pixelColor(x, y).lightness() < 160;
        }
    }
    EXPECT_GT(text, 20); // the legend's numbers
}

TEST_F(StrandviewTest, PicturesOfOnePixelAndOfOneLineAreWritten)
{
    const std::string rod = write("rod.txt", HELIX);
    for (const auto& [text, size] : std::vector<std::pair<std::string, QSize>>{
             {"1x1", {1, 1}}, {"2000x1", {2000, 1}}, {"1x2000", {1, 2000}}}) {
        for (const char* type : {"--no-ribbon", "--perspective", "--transparent"}) {
            SCOPED_TRACE(text + type);
            EXPECT_EQ(run({"--render", path("rod.png"), "--size", text, type, rod}).status, 0);
            EXPECT_EQ(picture("rod.png").size(), size);
        }
    }
}

TEST_F(StrandviewTest, ExtremeCamerasAreHarmless)
{
    const std::string rod = write("rod.txt", HELIX);
    for (const char* numbers :
         {"orthographic,1e38,1e38,1e38,0,0,0,1,1e38,1e38", "orthographic,0,0,0,0,0,0,1,1e-38,1e-38",
          "perspective,0,0,0,0,0,0,1,1e-38,3.14", "perspective,0,0,1e38,0,0,0,1,1e38,1e-6"}) {
        EXPECT_EQ(
            run({"--render", path("rod.png"), "--size", "50x50", "--camera", numbers, rod}).status,
            0)
            << numbers;
        EXPECT_EQ(picture("rod.png").size(), QSize(50, 50));
    }
}

TEST_F(StrandviewTest, HelpAndVersionGoToStandardOutput)
{
    const ProgramRun help = run({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.error, "");
    for (const char* option :
         {"--render",      "--size",        "--radius",    "--ribbon-width", "--slices",
          "--subsegments", "--no-tube",     "--no-ribbon", "--tube-colour",  "--ribbon-colour",
          "--background",  "--normalise",   "--closed",    "--samples",      "--transparent",
          "--view",        "--perspective", "--camera",    "--print-camera", "--screenshot-after",
          "--export",      "--frame",       "--info",      "--json",         "--frames",
          "--series",      "--shard",       "--overwrite", "--stamp",        "--list-frames",
          "--jobs",        "--fps",         "--align",     "--between",      "--turn",
          "--pairs",       "--frame-rows",  "--cache",     "--follow",       "--list-scalars",
          "--all-numbers", "--up",          "--azimuth",   "--elevation",    "--zoom",
          "--centre",      "--margin"})
        EXPECT_THAT(help.output, HasSubstr(option));

    const ProgramRun version = run({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_THAT(version.output, testing::MatchesRegex("strandview [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

// The help's lines as one, with one blank wherever it has some.
std::string onOneLineOf(const std::string& help)
{
    std::istringstream words(help);
    std::string line;
    for (std::string word; words >> word;)
        line += (line.empty() ? "" : " ") + word;
    return line;
}

TEST_F(StrandviewTest, HelpNamesEveryFormatWithItsEndings)
{
    std::string named;
    for (const Format& format : formats())
        named += format.name + " (" + endingsOf(format) + "), ";
    EXPECT_THAT(onOneLineOf(run({"--help"}).output),
                HasSubstr(named + "or others known by their content; - is standard input"));
}

// What the program says of options that change nothing, and its status 0.
struct IdleCall
{
    std::string name;
    std::vector<std::string> arguments;
    std::string input;
    std::vector<std::string> lines; // without "strandview: "
};

void PrintTo(const IdleCall& call, std::ostream* stream) { *stream << call.name; }

class StrandviewIdleOptionTest : public StrandviewTest, public testing::WithParamInterface<IdleCall>
{
};

TEST_P(StrandviewIdleOptionTest, IsToldInALine)
{
    std::vector<std::string> arguments = {"--render", path("out.png"), "--size", "40x30"};
    arguments.insert(arguments.end(), GetParam().arguments.begin(), GetParam().arguments.end());
    arguments.push_back("-");
    const ProgramRun result = run(arguments, GetParam().input);
    EXPECT_EQ(result.status, 0);
    std::string expected;
    for (const std::string& line : GetParam().lines)
        expected += "strandview: " + line + "\n";
    EXPECT_EQ(result.error, expected);
}

const char* const FRAMED = "0 0 0 0 0 0 1\n0 0 1 0 0 0 1\n";
const char* const PAIR = "A 0 0 0 0 0 0 1\n";
const std::string BARE_NOTICE = "standard input: 1 rod without frames: made by parallel transport, "
                                "for a ribbon where one is asked for (--ribbon)";

INSTANTIATE_TEST_SUITE_P(
    , StrandviewIdleOptionTest,
    testing::Values(
        IdleCall{"Dna",
                 {"--dna", "bases", "--dna-unit", "nm"},
                 FRAMED,
                 {"--dna has no effect: found no DNA", "--dna-unit has no effect: found no DNA"}},
        IdleCall{"DnaOfDna", {"--dna", "bases", "--dna-unit", "nm"}, PAIR, {}},
        IdleCall{
            "RodsOfDna",
            {"--dna", "bases", "--radius", "1", "--ribbon-width", "1", "--slices", "4",
             "--subsegments", "2", "--no-tube", "--no-ribbon", "--two-sided", "--tube-colour",
             "red", "--ribbon-colour", "red"},
            PAIR,
            {"--radius has no effect: found no rods", "--ribbon-width has no effect: found no rods",
             "--slices has no effect: found no rods", "--subsegments has no effect: found no rods",
             "--no-tube has no effect: found no rods", "--no-ribbon has no effect: found no rods",
             "--two-sided has no effect: found no rods",
             "--tube-colour has no effect: found no rods",
             "--ribbon-colour has no effect: found no rods"}},
        IdleCall{"TubesWithoutTubes",
                 {"--slices", "4", "--tube-color", "red", "--no-tube"},
                 FRAMED,
                 {"--slices has no effect: --no-tube hides the tubes",
                  "--tube-colour has no effect: --no-tube hides the tubes"}},
        IdleCall{"LinesOfSurfaces",
                 {"--line-width", "3", "--shading", "plain"},
                 FRAMED,
                 {"--line-width has no effect: only --shading wireframe has lines"}},
        IdleCall{"TransparencyOfGlyphs",
                 {"--transparency", "0.5"},
                 R"({"strandview": 1, "markers": [{"point": [0, 0, 0]}, {"point": [1, 0, 0]}]})",
                 {"--transparency has no effect: found no rods and no DNA"}},
        IdleCall{"TransparencyOfDna", {"--transparency", "0.5"}, PAIR, {}},
        IdleCall{"APlaneBeyondTheData",
                 {"--clip", "x:3", "--radius", "0.25"},
                 FRAMED,
                 {"--clip has no effect: found data from -0.25 to 0.25 along its normal"}},
        IdleCall{"APlaneBeforeTheData",
                 {"--clip", "x:-3", "--radius", "0.25"},
                 FRAMED,
                 {"--clip leaves nothing to see: found data from -0.25 to 0.25 along its normal"}},
        IdleCall{"RibbonsWithoutRibbons",
                 {"--ribbon-width", "1", "--two-sided", "--ribbon-colour", "red", "--no-ribbon"},
                 FRAMED,
                 {"--ribbon-width has no effect: --no-ribbon hides the ribbons",
                  "--two-sided has no effect: --no-ribbon hides the ribbons",
                  "--ribbon-colour has no effect: --no-ribbon hides the ribbons"}},
        IdleCall{"ColoursOfHiddenTubesBesideThoseOfData",
                 {"--no-tube", "--tube-colour", "red", "--colour-by", "arclength"},
                 FRAMED,
                 {"--tube-colour has no effect: --no-tube hides the tubes"}},
        IdleCall{"ColoursOfHiddenRibbonsBesideThoseOfData",
                 {"--no-ribbon", "--ribbon-colour", "red", "--colour-by", "arclength"},
                 FRAMED,
                 {"--ribbon-colour has no effect: --no-ribbon hides the ribbons"}},
        IdleCall{"NeitherTubeNorRibbon",
                 {"--no-tube", "--no-ribbon"},
                 FRAMED,
                 {"--no-tube --no-ribbon: nothing of the rods is left to see"}},
        IdleCall{"NoTubeOfRodsWithoutFrames",
                 {"--no-tube"},
                 "0 0 0\n0 0 1\n",
                 {BARE_NOTICE,
                  "--no-tube: nothing is left to see of rods without frames; --ribbon shows a "
                  "ribbon"}},
        IdleCall{"NoTubeButARibbon", {"--no-tube", "--ribbon"}, "0 0 0\n0 0 1\n", {BARE_NOTICE}},
        IdleCall{"NormaliseWithoutFrames",
                 {"--normalise"},
                 "0 0 0\n0 0 1\n",
                 {BARE_NOTICE, "--normalise has no effect: found no frames"}},
        IdleCall{"NormaliseWithFrames", {"--normalise"}, FRAMED, {}},
        IdleCall{"ClosedOfDna", {"--closed"}, PAIR, {"--closed has no effect: found no rods"}},
        IdleCall{"ClosedOfAClosedRod",
                 {"--closed"},
                 "0 0 0\n1 0 0\n0 1 0\n0 0 0\n",
                 {"standard input: --closed has no effect: found no rod whose ends are apart",
                  BARE_NOTICE}},
        IdleCall{"ClosedOfAnOpenRod",
                 {"--closed"},
                 "0 0 0\n1 0 0\n0 1 0\n",
                 {"standard input: 1 rod closed: the ends were apart", BARE_NOTICE}},
        IdleCall{"BackgroundThatIsLeftOut",
                 {"--transparent", "--background", "red"},
                 FRAMED,
                 {"--background has no effect: --transparent leaves it out"}},
        IdleCall{"BackgroundOfALegend",
                 {"--transparent", "--background", "red", "--colour-by", "arclength"},
                 FRAMED,
                 {}}),
    [](const auto& test) { return test.param.name; });

std::string longTable(int points)
{
    std::ostringstream table;
    for (int i = 0; i < points; ++i)
        table << std::cos(0.1 * i) << ' ' << std::sin(0.1 * i) << ' ' << 0.01 * i << '\n';
    return table.str();
}

const char* const WITH_SCALAR = "x y z k\n0 0 0 1\n0 0 1 2\n0 1 2 3\n";

struct BadCall
{
    std::string name;
    std::vector<std::string> arguments; // GOOD and BAD stand for files, OUT for a picture
    std::string input;
    std::string expected;
};

void PrintTo(const BadCall& call, std::ostream* stream) { *stream << call.name; }

class StrandviewBadInputTest : public StrandviewTest, public testing::WithParamInterface<BadCall>
{
};

TEST_P(StrandviewBadInputTest, GivesOneLineAndStatus2AndKeepsTheOldPicture)
{
    const std::string good = write("good.txt", HELIX);
    const std::string out = write("out.png", "the old picture");
    std::vector<std::string> arguments = GetParam().arguments;
    for (std::string& argument : arguments) {
        if (argument == "GOOD")
            argument = good;
        if (argument == "OUT")
            argument = out;
    }
    const QStringList before = files();
    const ProgramRun result = run(arguments, GetParam().input);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.output, "");
    expectOneLine(result.error);
    EXPECT_THAT(result.error, HasSubstr(GetParam().expected));
    EXPECT_EQ(files(), before);
    QFile old(QString::fromStdString(out));
    ASSERT_TRUE(old.open(QIODevice::ReadOnly));
    EXPECT_TRUE(old.readAll() == "the old picture");
}

INSTANTIATE_TEST_SUITE_P(
    , StrandviewBadInputTest,
    testing::Values(
        BadCall{"NoFile", {"--render", "OUT"}, "", "FILE"},
        BadCall{"UnknownOption",
                {"--frobnicate", "--render", "OUT", "GOOD"},
                "",
                "found the option '--frobnicate', expected one of --help\n"},
        BadCall{"MisspeltOption",
                {"--render", "OUT", "--ribon-width", "0.5", "GOOD"},
                "",
                "found the option '--ribon-width', expected one of --help; did you mean "
                "--ribbon-width?\n"},
        BadCall{"MisspeltOptionWithItsValue",
                {"--render", "OUT", "--raduis=0.5", "GOOD"},
                "",
                "found the option '--raduis', expected one of --help; did you mean --radius?\n"},
        BadCall{
            "MisspeltOptionThatAnotherNeeds",
            {"--render", "OUT", "--color-bye", "twist", "--range", "0:1", "GOOD"},
            "",
            "found the option '--color-bye', expected one of --help; did you mean --colour-by?"},
        BadCall{"OneDash", {"-render", "OUT", "GOOD"}, "", "did you mean --render?"},
        BadCall{"TextThatIsNoTable",
                {"--render", "OUT", "OUT"},
                "",
                "expected a number, or a header that names x y z"},
        BadCall{"MissingFile", {"--render", "OUT", "no/such.txt"}, "", "no/such.txt"},
        BadCall{"GoodThenMissing", {"--render", "OUT", "GOOD", "none.txt"}, "", "none.txt"},
        BadCall{"NotANumber", {"--render", "OUT", "-"}, "0 0 0\n0 zero 1\n", "zero"},
        BadCall{"NotFinite", {"--render", "OUT", "-"}, "0 0 0\n0 0 inf\n", "inf"},
        BadCall{"Empty", {"--render", "OUT", "-"}, "", "expected"},
        BadCall{"OnePoint", {"--render", "OUT", "-"}, "1 2 3\n1 2 3\n", "at least 2"},
        BadCall{"StraightBack",
                {"--render", "OUT", "-"},
                "0 0 0\n1 0 0\n0 0 0\n0 1 0\n",
                "standard input:1: rod 1, line 2: found edges that turn straight back, expected "
                "another angle between them\n"},
        BadCall{"StraightBackBelowCommentsAndDoublePoints",
                {"--render", "OUT", "-"},
                "# c\n0 1 0\n0 0 1\n\n0 0 0\n0 0 0\n1 0 0\n# d\n2 0 0\n1.5 0 0\n",
                "standard input:5: rod 2, line 9: found edges that turn straight back"},
        BadCall{"StraightBackInJson",
                {"--render", "OUT", "-"},
                R"({"strandview": 1, "rods": [{"points": [[0, 0, 0], [1, 0, 0], [1, 0, 0],
                    [2, 0, 0], [1, 0, 0]]}]})",
                "standard input: rods[0].points[3]: found edges that turn straight back"},
        BadCall{"PastItself",
                {"--render", "OUT", "-"},
                "0 0 0\n1 0 0\n-1 0 0\n",
                "rod 1, line 2: found edges that turn straight back"},
        BadCall{"ThereBackAndThere",
                {"--render", "OUT", "-"},
                "0 0 0\n2 0 0\n1 0 0\n3 0 0\n",
                "rod 1, line 2: found edges that turn straight back"},
        BadCall{"FramesAcrossTheRod",
                {"--render", "OUT", "-"},
                "0 0 0 0 0 0 1\n1 0 0 0 0 0 1\n",
                "rod 1, line 1: found a frame with d3 across the end's edge, expected d3 along it"},
        BadCall{"MirroredTangents",
                {"--render", "OUT", "-"},
                "0.4 -0.8 0\n0 0 0\n1 0 0\n-0.6 0.8 0\n",
                "rod 1, line 2: found an edge that no smooth curve follows, expected smaller "
                "angles to the edges beside it\n"},
        BadCall{"PointsTooNearForDoubles",
                {"--render", "OUT", "-"},
                "0 0 0\n1e-300 0 0\n2e-300 0 0\n",
                "standard input:1: found points nearer than 1.5e-154 to one another, expected a "
                "unit in which they are apart\n"},
        BadCall{"ALengthOfLetters",
                {"--render", "OUT", "--radius", "thin", "GOOD"},
                "",
                "--radius: found 'thin', expected a length above 0\n"},
        BadCall{"ALengthThatIsInfinite",
                {"--render", "OUT", "--ribbon-width", "inf", "GOOD"},
                "",
                "--ribbon-width: found 'inf', expected a length above 0\n"},
        BadCall{"ATubeTooThin",
                {"--render", "OUT", "--radius", "1e-300", "-"},
                "0 0 0\n3 0 0\n3 4 0\n",
                "--radius: found 1e-300, expected 5e-06 to 5e+06, a millionth to a million times "
                "the size of the data\n"},
        BadCall{"ATubeTooThick",
                {"--render", "OUT", "--radius", "1e300", "-"},
                "0 0 0\n3 0 0\n3 4 0\n",
                "--radius: found 1e+300, expected 5e-06 to 5e+06"},
        BadCall{"ARibbonTooWide",
                {"--render", "OUT", "--ribbon-width", "1e300", "-"},
                "0 0 0\n3 0 0\n3 4 0\n",
                "--ribbon-width: found 1e+300, expected 5e-06 to 5e+06"},
        BadCall{"RibbonToAPoint",
                {"--render", "OUT", "--ribbon-width", "1", "-"},
                "1 0 0 0.5 -0.5 -0.5 -0.5\n0 1 0 0.7071067811865476 0 -0.7071067811865476 0\n"
                "-1 0 0 0.5 0.5 -0.5 0.5\n",
                "standard input:1: rod 1, line 2: found a ribbon of width 1 whose edge shrinks to "
                "a point or turns back, expected another --ribbon-width\n"},
        BadCall{"StandardInputTwice", {"--render", "OUT", "-", "-"}, "0 0 0\n", "twice"},
        BadCall{"PictureWithoutName", {"--render", ".png", "GOOD"}, "", ".png"},
        BadCall{"TooManyVertices",
                {"--render", "OUT", "--subsegments", "1000", "--slices", "1000", "-"},
                longTable(2000),
                "--subsegments"},
        BadCall{"NoSuchScalar",
                {"--render", "OUT", "--colour-by", "speed", "GOOD"},
                "",
                "expected one of arclength, curvature, torsion, twist"},
        BadCall{"NothingToCompareWith",
                {"--render", "OUT", "--compare", "/no/such/file", "GOOD"},
                "",
                "/no/such/file"},
        BadCall{"RangeBackwards",
                {"--render", "OUT", "--colour-by", "twist", "--range", "2:1", "GOOD"},
                "",
                "2:1"},
        BadCall{"AnOptionTwice",
                {"--view", "x", "--view", "y", "--render", "OUT", "GOOD"},
                "",
                "--view: found 2 values, expected 1\n"},
        BadCall{"TooFewValues",
                {"--screenshot-after", "1"},
                "",
                "--screenshot-after: found 1 value, expected 2\n"},
        BadCall{"RangeOfNeighbours",
                {"--render", "OUT", "--colour-by", "arclength", "--range",
                 "100000000000000000:100000000000000016", "GOOD"},
                "",
                "'100000000000000000:100000000000000016', expected limits that are a 1e-12th"},
        BadCall{
            "RangeBeyondDouble",
            {"--render", "OUT", "--colour-by", "arclength", "--range", "-1.7e308:1.7e308", "GOOD"},
            "",
            "up to 1e+307"},
        BadCall{"ARangeFromBeyondWhatCanBeNumbered",
                {"--colour-by", "k", "--range", "1e308:", "--render", "OUT", "-"},
                WITH_SCALAR,
                "--range: found '1e+308:', expected a magnitude up to 1e+307"},
        BadCall{"RangeAboveTheData",
                {"--render", "OUT", "--colour-by", "k", "--range", "5:", "-"},
                WITH_SCALAR,
                "--range: found '5:', expected MIN below 3, the largest value of 'k'"},
        BadCall{"RangeBelowTheData",
                {"--render", "OUT", "--colour-by", "k", "--range", ":0", "-"},
                WITH_SCALAR,
                "--range: found ':0', expected MAX above 1, the smallest value of 'k'"},
        BadCall{"ScalarBeyondDouble",
                {"--render", "OUT", "--colour-by", "k", "-"},
                "x y z k\n0 0 0 -1.7e308\n0 0 1 1.7e308\n",
                "found values from -1.7e+308 to 1.7e+308, expected magnitudes up to 1e+307"},
        BadCall{"ScalarOfNoNumber",
                {"--render", "OUT", "--colour-by", "k", "-"},
                "x y z k\n0 0 0 nan\n0 0 1 nan\n",
                "--colour-by k: found no value that is a number"},
        BadCall{"RangeOfWords",
                {"--render", "OUT", "--colour-by", "twist", "--range", "low:high", "GOOD"},
                "",
                "MIN:MAX"},
        BadCall{
            "RangeWithoutScalar", {"--render", "OUT", "--range", "1:2", "GOOD"}, "", "--colour-by"},
        BadCall{"OneColour",
                {"--render", "OUT", "--colour-by", "twist", "--colours", "red", "GOOD"},
                "",
                "--colours"},
        BadCall{"NotUnit", {"--render", "OUT", "-"}, "0 0 0 0 0 0 2\n0 0 1 0 0 0 1\n", "norm"},
        BadCall{"BadJson", {"--render", "OUT", "-"}, "{\"strandview\": 1,}", "1:"},
        BadCall{"UnknownKey", {"--render", "OUT", "-"}, "{\"strandview\": 1, \"rds\": []}", "rds"},
        BadCall{"PictureEnding", {"--render", "out.xyz", "GOOD"}, "", "out.xyz"},
        BadCall{"PictureWithoutEnding", {"--render", "out", "GOOD"}, "", "'out'"},
        BadCall{"SideTooLarge",
                {"--render", "OUT", "--size", "32768x10", "GOOD"},
                "",
                "from 1 to 32767 and at most 700000000 pixels in all: 32767x9 fits"},
        BadCall{"TooManyPixels",
                {"--render", "OUT", "--size", "32767x32767", "GOOD"},
                "",
                "pixels in all: 26457x26457 fits"},
        BadCall{"ZeroSide", {"--render", "OUT", "--size", "0x10", "GOOD"}, "", "0x10"},
        BadCall{"SizeHalf", {"--render", "OUT", "--size", "640", "GOOD"}, "", "640"},
        BadCall{"SizeWithRest", {"--render", "OUT", "--size", "640x480px", "GOOD"}, "", "480px"},
        BadCall{"SizeOverflow", {"--render", "OUT", "--size", "99999999999x1", "GOOD"}, "", "WxH"},
        BadCall{"DnaLook", {"--render", "OUT", "--dna", "atoms,helix", "GOOD"}, "", "'helix'"},
        BadCall{"DnaWithoutLook",
                {"--render", "OUT", "--dna", "", "GOOD"},
                "",
                "found '', expected some of backbone, bases, boxes, pairs and atoms"},
        BadCall{"DnaUnit", {"--render", "OUT", "--dna-unit", "pm", "GOOD"}, "", "'pm'"},
        BadCall{"MarkerColour",
                {"--render", "OUT", "-"},
                R"({"strandview": 1, "markers": [{"point": [0, 0, 0], "colour": "bluish"}]})",
                "standard input: markers[0].colour: found 'bluish'"},
        BadCall{"ColourByWithoutRods",
                {"--render", "OUT", "--colour-by", "twist", "-"},
                R"({"strandview": 1, "markers": [{"point": [0, 0, 0]}]})",
                "no rod to colour"},
        BadCall{"NoSamples", {"--render", "OUT", "--samples", "0", "GOOD"}, "", "--samples"},
        BadCall{"NegativeRadius", {"--render", "OUT", "--radius", "-1", "GOOD"}, "", "--radius"},
        BadCall{"NanRadius", {"--render", "OUT", "--radius", "nan", "GOOD"}, "", "--radius"},
        BadCall{"TwoSlices", {"--render", "OUT", "--slices", "2", "GOOD"}, "", "--slices"},
        BadCall{"TooManySamplesEver", {"--render", "OUT", "--samples", "9", "GOOD"}, "", "1 to 8"},
        BadCall{"HalfASample",
                {"--render", "OUT", "--samples", "2.5", "GOOD"},
                "",
                "found '2.5', expected a whole number from 1 to 8"},
        BadCall{"HalfASlice",
                {"--render", "OUT", "--slices", "8.5", "GOOD"},
                "",
                "found '8.5', expected a whole number from 3 to 1000"},
        BadCall{"NoRows",
                {"--render", "OUT", "--subsegments", "", "GOOD"},
                "",
                "expected a whole number from 1 to 1000"},
        BadCall{"SceneWithoutCamera",
                {"--render", "OUT", "--print-camera", "--radius", "1e20", "-"},
                "0 0 0\n0 0 1e15\n",
                "across, expected at most 1e+19"},
        BadCall{"InfoOfNothing", {"--info"}, "", "FILE"},
        BadCall{"InfoOfABadFile", {"--info", "-"}, "0 0\n", "found 2 columns"},
        BadCall{"JsonOfNothing", {"--json", "--render", "OUT", "GOOD"}, "", "--json"},
        BadCall{"NumbersOfNothing", {"--all-numbers", "GOOD"}, "", "--all-numbers: found none of"},
        BadCall{"ListAndInfo", {"--list-scalars", "--info", "GOOD"}, "", "--list-scalars"},
        BadCall{"ListOfNothing", {"--list-scalars"}, "", "FILE"},
        BadCall{"ListAndPlot", {"--list-scalars", "--plot", "a.svg", "GOOD"}, "", "--plot"},
        BadCall{"InfoAndAPicture", {"--info", "--render", "OUT", "GOOD"}, "", "--info"},
        BadCall{"CameraQuaternion",
                {"--render", "OUT", "--camera", "orthographic,0,0,0,0,0,0,2,1,1", "GOOD"},
                "",
                "expected a unit quaternion in the numbers 4 to 7, theirs has the norm 2"},
        BadCall{"CameraDistance",
                {"--render", "OUT", "--camera", "orthographic,0,0,0,0,0,0,1,-1,1", "GOOD"},
                "",
                "expected a focal distance, number 8, above 0"},
        BadCall{"CameraSize",
                {"--render", "OUT", "--camera", "orthographic,0,0,0,0,0,0,1,1,0", "GOOD"},
                "",
                "expected a size, number 9, above 0"},
        BadCall{"CameraAngle",
                {"--render", "OUT", "--camera", "perspective,0,0,0,0,0,0,1,1,4", "GOOD"},
                "",
                "expected an angle, number 9, below pi"},
        BadCall{"SamplesOfNoPicture", {"--samples", "3", "GOOD"}, "", "--render"},
        BadCall{"TransparentWindow", {"--transparent", "GOOD"}, "", "--render"},
        BadCall{"TransparentJpeg", {"--render", "out.jpg", "--transparent", "GOOD"}, "", ".png"},
        BadCall{"Background", {"--render", "OUT", "--background", "#12", "GOOD"}, "", "'#12'"},
        BadCall{"NoSuchSide", {"--render", "OUT", "--view", "w", "GOOD"}, "", "x -x y -y z -z"},
        BadCall{"TwoSides", {"--render", "OUT", "--view", "xy", "GOOD"}, "", "'xy'"},
        BadCall{"CameraOfWords", {"--render", "OUT", "--camera", "front", "GOOD"}, "", "'front'"},
        BadCall{"CameraTooShort",
                {"--render", "OUT", "--camera", "orthographic,0,0,0,0,0,0,1,1,", "GOOD"},
                "",
                "9 numbers"},
        BadCall{"CameraAndView",
                {"--render", "OUT", "--view", "x", "--camera", "orthographic,0,0,0,0,0,0,1,1,1",
                 "GOOD"},
                "",
                "--view"},
        BadCall{"CameraAndPerspective",
                {"--render", "OUT", "--perspective", "--camera", "orthographic,0,0,0,0,0,0,1,1,1",
                 "GOOD"},
                "",
                "--perspective"},
        BadCall{"ScreenshotAndRender",
                {"--render", "OUT", "--screenshot-after", "1", "OUT", "GOOD"},
                "",
                "--screenshot-after"},
        BadCall{"ScreenshotInThePast", {"--screenshot-after", "-1", "OUT", "GOOD"}, "", "'-1'"},
        BadCall{"ScreenshotSometime", {"--screenshot-after", "soon", "OUT", "GOOD"}, "", "'soon'"},
        BadCall{"ScreenshotNever", {"--screenshot-after", "inf", "OUT", "GOOD"}, "", "'inf'"},
        BadCall{"ScreenshotWithoutName", {"--screenshot-after", "1"}, "", "--screenshot-after"},
        BadCall{"ScreenshotEnding", {"--screenshot-after", "1", "w.xyz", "GOOD"}, "", "w.xyz"},
        BadCall{"Colour", {"--render", "OUT", "--tube-colour", "bluish", "GOOD"}, "", "bluish"}),
    [](const auto& test) { return test.param.name; });

TEST_F(StrandviewTest, AnUnwritablePictureGivesOneLineAndStatus1AndLeavesNothing)
{
    const std::string rod = write("rod.txt", "0 0 0 0 0 0 1\n0 0 1 0 0 0 1\n");
    ASSERT_TRUE(QDir(folder.path()).mkdir("folder.png"));
    const QStringList before = files();
    for (const char* name : {"missing/rod.png", "folder.png"}) {
        SCOPED_TRACE(name);
        const ProgramRun result = run({"--render", path(name), rod});
        EXPECT_EQ(result.status, 1);
        expectOneLine(result.error);
        EXPECT_THAT(result.error, HasSubstr(name));
        EXPECT_EQ(files(), before);
    }
}

TEST_F(StrandviewTest, AnOutputThatCannotBeWrittenIsToldBeforeAnythingIsRead)
{
    ASSERT_TRUE(QDir(folder.path()).mkdir("folder.png"));
    write("file", "");
    const std::string outputs[] = {path("missing/rod.png"), path("folder.png"),
                                   path("file/rod.png"), "/proc/rod.png"};
    for (const std::string& output : outputs) {
        for (const std::vector<std::string>& option :
             {std::vector<std::string>{"--render"}, {"--screenshot-after", "0"}}) {
            SCOPED_TRACE(option[0] + " " + output);
            std::vector<std::string> arguments = option;
            arguments.insert(arguments.end(), {output, path("no such input.txt")});
            const ProgramRun result = run(arguments);
            EXPECT_EQ(result.status, 1);
            expectOneLine(result.error);
            EXPECT_THAT(result.error, StartsWith("strandview: " + output + ": "));
        }
    }
}

std::string inQuotes(const std::string& argument) { return "'" + argument + "'"; }

// Runs strandview from a shell, which sets up what no argument can.
ProgramRun runInShell(const std::string& before, const std::string& arguments)
{
    return runProgram("/bin/sh", {"-c", before + inQuotes(STRANDVIEW_PROGRAM) + " " + arguments});
}

TEST_F(StrandviewTest, TellsWhatItFoundInsteadOfShowingIt)
{
    const std::string rod = write("rod.txt", "0 0 0 0 0 0 1\n0 0 1 0 0 0 1\n");
    const ProgramRun inWords = run({"--info", rod});
    EXPECT_EQ(inWords.status, 0) << inWords.error;
    EXPECT_EQ(inWords.output,
              rod + ": Tables\nrod 1: 2 points, length 1, end to end 1, with frames\n"
                    "    radius of gyration 0.5\n    Tw 0 turns, Gauss integral 0 turns\n");
    EXPECT_EQ(inWords.error, "");
    const ProgramRun asJson = run({"--info", "--json", "-"}, "0 0 0\n0 0 1\n");
    EXPECT_EQ(asJson.status, 0) << asJson.error;
    EXPECT_THAT(asJson.output, StartsWith("{\n  \"files\": [\n"));
    EXPECT_THAT(asJson.output, HasSubstr("\"file\": \"standard input\""));
    EXPECT_THAT(asJson.output, EndsWith("\n}\n"));
    EXPECT_EQ(asJson.error, "") << "notices are among the findings";
}

TEST_F(StrandviewTest, ListsTheScalarsThatColoursAndTablesHave)
{
    const std::string rod =
        write("rod.txt", "x y z load\n0 0 0 1\n0 0 1 2\n\n\n0 0 0 5\n0 0 1 7\n");
    const ProgramRun inWords = run({"--list-scalars", "--frame", "1", rod});
    EXPECT_EQ(inWords.status, 0) << inWords.error;
    EXPECT_THAT(inWords.output, StartsWith("rods:\n"));
    EXPECT_THAT(inWords.output, HasSubstr("load                      point  5 to 7"));
    const ProgramRun asJson = run({"--list-scalars", "--json", rod});
    EXPECT_EQ(asJson.status, 0) << asJson.error;
    EXPECT_THAT(asJson.output, StartsWith("{\n  \"frame\": 0,\n  \"scalars\": [\n"));
}

TEST_F(StrandviewTest, ListsTheScalarsOfAComparison)
{
    const std::string rod = write("rod.txt", "0 0 0 0 0 0 1\n0 0 1 0 0 0 1\n\n\n"
                                             "0 0 0 0 0 0 1\n0 0 3 0 0 0 1\n");
    const ProgramRun first =
        run({"--list-scalars", "--frame", "1", "--compare", "first", "--radius", "1", rod});
    EXPECT_EQ(first.status, 0) << first.error;
    EXPECT_THAT(first.output, HasSubstr("\n  extension                     point  2 to 2"));
    EXPECT_EQ(first.error,
              "strandview: --radius has no effect: --list-scalars tells the scalars alone\n");
    const ProgramRun other = run({"--list-scalars", "--compare", rod, "-"}, "0 0 0\n0 0 2\n");
    EXPECT_THAT(other.output, HasSubstr("\n  reference_distance  length    point  0.5 to 0.5"));
    const ProgramRun missing = run({"--list-scalars", "--compare", path("none"), rod});
    EXPECT_EQ(missing.status, 2);
    EXPECT_THAT(missing.error, HasSubstr("cannot be read"));
}

TEST_F(StrandviewTest, WhatIsToldIsNotChangedByOptionsOfPicturesWhichAreTold)
{
    const std::string rod = write("rod.txt", "0 0 0 0 0 0 1\n0 0 1 0 0 0 1\n");
    const ProgramRun result = run({"--info", "--compare", "first", "--frame-rows", "2", rod});
    EXPECT_EQ(result.status, 0) << result.error;
    EXPECT_EQ(result.output, run({"--info", rod}).output);
    EXPECT_EQ(result.error,
              "strandview: --compare has no effect: --info tells what is in the files alone\n");
}

TEST_F(StrandviewTest, WhatCannotBePrintedIsToldAndStatus1)
{
    const std::string rod = write("rod.txt", "0 0 0 0 0 0 1\n0 0 1 0 0 0 1\n");
    for (const std::string& arguments :
         {"--print-camera --render " + inQuotes(path("rod.png")) + " " + inQuotes(rod),
          "--info " + inQuotes(rod), std::string("--help"), std::string("--version")}) {
        const ProgramRun result = runInShell("", arguments + " >/dev/full");
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.error, "strandview: standard output: No space left on device\n");
    }
}

TEST_F(StrandviewTest, ADiskThatDoesNotTakeThePictureIsToldWithItsReason)
{
    const std::string arguments = "--render " + inQuotes(path("rod.png")) + " " +
                                  inQuotes(write("rod.txt", "0 0 0 0 0 0 1\n0 0 1 0 0 0 1\n"));
    const QStringList before = files();
    const ProgramRun limited = runInShell("ulimit -f 1; ", arguments);
    EXPECT_EQ(limited.status, 1);
    EXPECT_EQ(limited.error, "strandview: " + path("rod.png") + ": File too large\n");
    EXPECT_EQ(files(), before);

    // A full disk, where the system lets us have one of our own.
    const auto runOnSmallDisk = [&](const std::string& command) {
        return runProgram("/bin/sh", {"-c", "mkdir -p " + inQuotes(path("disk")) + "; cd " +
                                                inQuotes(folder.path().toStdString()) +
                                                "; exec unshare -rm sh -c \"mount -t tmpfs -o "
                                                "size=4k none disk && " +
                                                command + "\""});
    };
    if (runOnSmallDisk("true").status != 0)
        GTEST_SKIP() << "no disk of our own";
    const ProgramRun full =
        runOnSmallDisk(inQuotes(STRANDVIEW_PROGRAM) + " --render disk/rod.png rod.txt");
    EXPECT_EQ(full.status, 1);
    EXPECT_EQ(full.error, "strandview: disk/rod.png: No space left on device\n");
}

// 192 million samples, 2 GB if they were in memory at once; then 1.4 GB of pixels.
TEST_F(StrandviewTest, BigPicturesTakeLittleMemoryAndTooLittleIsTold)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "The sanitizer reserves more than any limit.";
#endif
    const std::string rod = inQuotes(write("rod.txt", "0 0 0 0 0 0 1\n0 0 1 0 0 0 1\n"));
    const std::string arguments = rod + " --render " + inQuotes(path("rod.png"));
    const ProgramRun big =
        runInShell("ulimit -v 1200000; ", arguments + " --size 2000x1500 --samples 8");
    EXPECT_EQ(big.status, 0) << big.error;
    EXPECT_EQ(picture("rod.png").size(), QSize(2000, 1500));
    const ProgramRun tooBig =
        runInShell("ulimit -v 1200000; ", arguments + " --size 26000x26000 --samples 1");
    EXPECT_EQ(tooBig.status, 1);
    EXPECT_EQ(tooBig.error, "strandview: found too little memory for so many pixels\n");
}

TEST_F(StrandviewTest, OnlyFilesAreReplaced)
{
    const std::string rod = write("rod.txt", "0 0 0 0 0 0 1\n0 0 1 0 0 0 1\n");
    ASSERT_EQ(mkfifo(path("fifo.png").c_str(), 0600), 0);
    ASSERT_TRUE(QFile::link("fifo.png", folder.filePath("link.png")));
    for (const char* name : {"fifo.png", "link.png"}) {
        SCOPED_TRACE(name);
        const ProgramRun result = run({"--render", path(name), rod});
        EXPECT_EQ(result.status, 1);
        expectOneLine(result.error);
        struct stat status;
        ASSERT_EQ(stat(path("fifo.png").c_str(), &status), 0);
        EXPECT_TRUE(S_ISFIFO(status.st_mode));
    }
}

TEST_F(StrandviewTest, WithoutAnOpenGLContextARenderFailsInOneLine)
{
    const std::string rod = write("rod.txt", "0 0 0 0 0 0 1\n0 0 1 0 0 0 1\n");
    const ProgramRun result = run({"--render", path("rod.png"), rod}, "",
                                  {{"__EGL_VENDOR_LIBRARY_FILENAMES", "/dev/null"}});
    EXPECT_EQ(result.status, 1);
    expectOneLine(result.error);
    EXPECT_THAT(result.error, HasSubstr("OpenGL"));
    EXPECT_FALSE(QFile::exists(folder.filePath("rod.png")));
}

TEST_F(StrandviewTest, AWindowWithoutADisplayIsRefusedInOneLine)
{
    const ProgramRun result = run({write("rod.txt", HELIX)});
    EXPECT_EQ(result.status, 1);
    expectOneLine(result.error);
    EXPECT_THAT(result.error, HasSubstr("DISPLAY"));
    EXPECT_THAT(result.error, HasSubstr("--render"));
}

// An X server that lets nobody in, and says why. It serves one client.
class RefusingServer
{
public:
    RefusingServer() : listener(socket(AF_INET, SOCK_STREAM, 0))
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        // Display N is port 6000 + N.
        for (number = 2000; number < 2100; ++number) {
            address.sin_port = htons(std::uint16_t(6000 + number));
            if (bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0)
                break;
        }
        listen(listener, 1);
        server = std::thread([this] { serve(); });
    }
    ~RefusingServer()
    {
        shutdown(listener, SHUT_RDWR);
        server.join();
        close(listener);
    }

    std::string getDisplay() const { return "127.0.0.1:" + std::to_string(number); }
    bool wasAsked() const { return asked; }

private:
    void serve()
    {
        const int client = accept(listener, nullptr, nullptr);
        if (client < 0)
            return;
        char request[12];
        asked = read(client, request, sizeof request) == sizeof request;
        // Failed, 20 letters, version 11.0, 5 words to follow.
        const char reply[] = "\0\24\13\0\0\0\5\0No one is let in her";
        asked = asked && write(client, reply, sizeof reply - 1) == sizeof reply - 1;
        close(client);
    }

    int listener;
    int number = 0;
    std::atomic<bool> asked{false};
    std::thread server;
};

TEST_F(StrandviewTest, ADisplayThatLetsNobodyInIsToldInOneLineOfOurs)
{
    const RefusingServer server;
    const ProgramRun result =
        run({write("rod.txt", HELIX)}, "", {{"DISPLAY", server.getDisplay()}});
    EXPECT_TRUE(server.wasAsked());
    EXPECT_EQ(result.status, 1);
    expectOneLine(result.error);
    EXPECT_THAT(result.error, HasSubstr("DISPLAY=" + server.getDisplay()));
}

TEST_F(StrandviewTest, AWaylandPlatformWithoutADisplayIsRefusedInOneLine)
{
    const ProgramRun result =
        run({write("rod.txt", HELIX)}, "",
            {{"QT_QPA_PLATFORM", "wayland"}, {"WAYLAND_DISPLAY", "wayland-0"}});
    EXPECT_EQ(result.status, 1);
    expectOneLine(result.error);
    EXPECT_THAT(result.error, HasSubstr("Xwayland"));
}

} // namespace

} // namespace strandview
