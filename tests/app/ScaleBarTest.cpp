// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/ScaleBar.h"

#include <array>
#include <cmath>
#include <fstream>
#include <random>
#include <set>

#include <QColor>
#include <QImage>
#include <QTemporaryDir>
#include <gmock/gmock.h>

#include "support/keepPictures.h"
#include "support/runProgram.h"

namespace strandview {

namespace {

// 1, 2 or 5 in front of the zeros.
bool isRound(double length)
{
    const double digit = length / std::pow(10, std::floor(std::log10(length * (1 + 1e-9))));
    return std::abs(digit - 1) < 1e-6 || std::abs(digit - 2) < 1e-6 || std::abs(digit - 5) < 1e-6;
}

TEST(ScaleBar, HasTheLongestRoundLengthThatThereIsRoomFor)
{
    EXPECT_EQ(roundLength(1), 1);
    EXPECT_EQ(roundLength(4.99), 2);
    EXPECT_EQ(roundLength(0.5), 0.5);
    EXPECT_EQ(roundLength(0.09), 0.05);
    EXPECT_EQ(roundLength(99), 50);
    EXPECT_EQ(roundLength(1e-7), 1e-7);
    std::mt19937 engine(2);
    std::uniform_real_distribution<double> exponent(-12, 12);
    for (int i = 0; i < 1000; ++i) {
        const double most = std::pow(10, exponent(engine)), length = roundLength(most);
        EXPECT_TRUE(isRound(length)) << length;
        EXPECT_LE(length, most);
        EXPECT_GT(length, 0.4 * most * (1 - 1e-9)) << "hardly shorter";
    }
}

TEST(ScaleBar, TellsItsLengthWithTheUnit)
{
    EXPECT_EQ(scaleText(50, "nm"), "50 nm");
    EXPECT_EQ(scaleText(0.2, ""), "0.2");
    EXPECT_EQ(scaleText(20000, "Å"), "20000 Å");
    EXPECT_EQ(scaleText(2e-7, "m"), "2×10⁻⁷ m");
}

TEST(ScaleBar, StandsWhereTheLegendIsNot)
{
    EXPECT_EQ(cornerBeside(LegendPlace::BOTTOM), ScaleBarCorner::UPPER_RIGHT);
    EXPECT_EQ(cornerBeside(LegendPlace::LEFT), ScaleBarCorner::UPPER_RIGHT);
    EXPECT_EQ(cornerBeside(LegendPlace::TOP), ScaleBarCorner::LOWER_LEFT);
    EXPECT_EQ(cornerBeside(LegendPlace::RIGHT), ScaleBarCorner::LOWER_LEFT);
    EXPECT_EQ(cornerBeside(LegendPlace::OFF), ScaleBarCorner::LOWER_LEFT);
}

class ScaleBarPicture : public testing::Test
{
protected:
    // Of a straight rod along x, 8 units long, with flat ends, in red; the bar is black.
    QImage render(const std::vector<std::string>& options)
    {
        const std::string rod = folder.filePath("rod.txt").toStdString();
        const QString picture = folder.filePath("picture.png");
        std::ofstream file(rod);
        for (int i = 0; i <= 8; ++i)
            file << i - 2 << " 0.5 0\n";
        file.close();
        std::vector<std::string> arguments{
            "--view",    "z", "--no-ribbon", "--tube-colour",       "red", "--radius", "0.2",
            "--samples", "1", "--render",    picture.toStdString(), rod};
        arguments.insert(arguments.begin(), options.begin(), options.end());
        const ProgramRun run = runProgram(STRANDVIEW_PROGRAM, arguments);
        EXPECT_EQ(run.status, 0) << run.error;
        told = run.error;
        const QImage image(picture);
        keepIfFailed(image);
        return image;
    }

    QTemporaryDir folder;
    std::string told;
};

bool isRed(const QColor& c) { return c.red() > c.green() + 30; }
bool isBlack(const QColor& c) { return c.value() < 10; }

// The longest run of such pixels in a row of the picture.
int longestRun(const QImage& image, bool (*isSuch)(const QColor&))
{
    int longest = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0, run = 0; x < image.width(); ++x) {
            run = isSuch(image.pixelColor(x, y)) ? run + 1 : 0;
            longest = std::max(longest, run);
        }
    return longest;
}

// Left, right, upper and lower end of the black pixels.
std::array<int, 4> boxOfInk(const QImage& image)
{
    std::array<int, 4> box{image.width(), -1, image.height(), -1};
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (isBlack(image.pixelColor(x, y)))
                box = {std::min(box[0], x), std::max(box[1], x), std::min(box[2], y),
                       std::max(box[3], y)};
    return box;
}

} // namespace

// The rod measures it: 8 units.
TEST_F(ScaleBarPicture, IsAsManyPixelsLongAsItSaysAtEveryZoom)
{
    std::set<double> lengths;
    for (const char* size : {"900x600", "500x800"}) {
        for (const char* zoom : {"0.04", "0.1", "0.33", "0.5", "0.9"}) {
            SCOPED_TRACE(std::string(size) + " zoom " + zoom);
            const QImage image = render({"--scale-bar", "--size", size, "--zoom", zoom});
            const double rod = longestRun(image, isRed), bar = longestRun(image, isBlack);
            ASSERT_GT(rod, 10);
            const double shorter = std::min(image.width(), image.height());
            EXPECT_LE(bar, LONGEST_SCALE_BAR * shorter + 1);
            EXPECT_GT(bar, 0.4 * LONGEST_SCALE_BAR * shorter - 1);
            // Each end of both may be off by a pixel's half.
            const double unit = rod / 8, slack = 1 + bar / rod;
            const double length = roundLength(bar / unit * (1 + 0.15));
            EXPECT_NEAR(bar, length * unit, slack) << length;
            lengths.insert(length);
        }
    }
    EXPECT_GT(lengths.size(), 4u);
}

// Of which each is a part of the same view.
TEST_F(ScaleBarPicture, IsTheSameInAPictureThatIsDrawnInTiles)
{
    const QImage small = render({"--scale-bar", "--size", "1500x400"});
    const QImage large = render({"--scale-bar", "--size", "6000x1600"});
    EXPECT_NEAR(longestRun(large, isBlack), 4 * longestRun(small, isBlack), 4);
    EXPECT_NEAR(longestRun(large, isRed), 4 * longestRun(small, isRed), 4);
}

TEST_F(ScaleBarPicture, IsInItsCorner)
{
    const auto [left, right, top, bottom] =
        boxOfInk(render({"--scale-bar", "--size", "900x600", "--scale-unit", "µm"}));
    EXPECT_GT(left, 10);
    EXPECT_LT(right, 200);
    EXPECT_GT(top, 520);
    EXPECT_LT(bottom, 590);
    const auto without = boxOfInk(render({"--size", "900x600"}));
    EXPECT_EQ(without[1], -1);
}

TEST_F(ScaleBarPicture, HasTheUnitThatIsAskedFor)
{
    const QImage bare = render({"--scale-bar"});
    EXPECT_NE(bare, render({"--scale-bar", "--scale-unit", "nm"}));
    EXPECT_EQ(bare, render({"--scale-bar", "--scale-unit", ""}));
}

TEST_F(ScaleBarPicture, InPerspectiveIsNotThereWhichIsTold)
{
    const QImage without = render({"--perspective"});
    EXPECT_EQ(render({"--perspective", "--scale-bar"}), without);
    EXPECT_THAT(told, testing::HasSubstr(
                          "--scale-bar has no effect: a view in perspective has no one scale"));
}

} // namespace strandview
