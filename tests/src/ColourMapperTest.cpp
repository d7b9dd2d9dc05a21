// SPDX-License-Identifier: GPL-3.0-or-later
#include <ColourMapper.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <random>

#include <QApplication>
#include <QLabel>
#include <QPalette>
#include <QString>
#include <gtest/gtest.h>

namespace {

using Rgb = ColourMapper::Colour;

const double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
const double INFINITE = std::numeric_limits<double>::infinity();

const Rgb WHITE(1, 1, 1), NIGHT(0, 0, 0);
const Rgb BLUE(0, 0, 1), CYAN(0, 1, 1), GREEN(0, 1, 0), YELLOW(1, 1, 0), RED(1, 0, 0);

// Not a colour that any ramp here has, to see that it is always written.
const Rgb UNTOUCHED(7, 7, 7);

Rgb colourOf(const ColourMapper& mapper, double value)
{
    Rgb colour = UNTOUCHED;
    mapper.getColour(value, colour);
    return colour;
}

void expectColour(const Rgb& actual, const Rgb& expected, double tolerance = 0)
{
    EXPECT_NEAR(actual.x, expected.x, tolerance) << "red";
    EXPECT_NEAR(actual.y, expected.y, tolerance) << "green";
    EXPECT_NEAR(actual.z, expected.z, tolerance) << "blue";
}

std::vector<Rgb> greys(int count)
{
    std::vector<Rgb> colours;
    for (int k = 0; k < count; ++k) {
        const double grey = k / 255.0 + 1e-3; // k once truncated
        colours.emplace_back(grey, grey, grey);
    }
    return colours;
}

} // namespace

// Limits

TEST(ColourMapper, MapsZeroToOneThroughFiveColoursByDefault)
{
    EXPECT_EQ(ColourMapper::DEFAULT_MIN, 0.0);
    EXPECT_EQ(ColourMapper::DEFAULT_MAX, 1.0);
    const ColourMapper mapper;
    EXPECT_EQ(mapper.getMin(), 0);
    EXPECT_EQ(mapper.getMax(), 1);
    EXPECT_EQ(mapper.getNumSteps(), 5.0);
    const std::vector<Rgb> ramp = {BLUE, CYAN, GREEN, YELLOW, RED};
    for (int k = 0; k < 5; ++k) {
        SCOPED_TRACE(k);
        expectColour(colourOf(mapper, 0.25 * k), ramp[std::size_t(k)]);
    }
}

TEST(ColourMapper, DefaultColoursAreOneListSharedByAll)
{
    const std::vector<Rgb>& colours = ColourMapper::getDefaultColours();
    ASSERT_EQ(colours.size(), 5u);
    expectColour(colours[0], BLUE);
    expectColour(colours[1], CYAN);
    expectColour(colours[2], GREEN);
    expectColour(colours[3], YELLOW);
    expectColour(colours[4], RED);
    EXPECT_EQ(&ColourMapper::getDefaultColours(), &colours);
}

TEST(ColourMapper, LimitsAreTakenInEitherOrder)
{
    ColourMapper mapper;
    mapper.setMapping(5, 1);
    EXPECT_EQ(mapper.getMin(), 1);
    EXPECT_EQ(mapper.getMax(), 5);
    EXPECT_EQ(mapper.zeroOneToMinMax(1) - mapper.zeroOneToMinMax(0), 4); // the range
    mapper.setMapping(-2, 3);
    EXPECT_EQ(mapper.getMin(), -2);
    EXPECT_EQ(mapper.getMax(), 3);
    EXPECT_EQ(mapper.zeroOneToMinMax(1) - mapper.zeroOneToMinMax(0), 5);

    const ColourMapper limited(5, 1);
    EXPECT_EQ(limited.getMin(), 1);
    EXPECT_EQ(limited.getMax(), 5);
    EXPECT_EQ(limited.getNumSteps(), 5);
    expectColour(colourOf(limited, 3), GREEN);

    const ColourMapper coloured(5, 1, {RED, GREEN});
    EXPECT_EQ(coloured.getMin(), 1);
    EXPECT_EQ(coloured.getMax(), 5);
    EXPECT_EQ(coloured.getNumSteps(), 2);
    expectColour(colourOf(coloured, 2), Rgb(0.75, 0.25, 0));
}

TEST(ColourMapper, ItsOwnLimitsSwappedChangeNothing)
{
    ColourMapper mapper(-3, 8);
    mapper.setMapping(mapper.getMax(), mapper.getMin());
    EXPECT_EQ(mapper.getMin(), -3);
    EXPECT_EQ(mapper.getMax(), 8);
    mapper.setMapping(mapper.getMax(), {-1, 0, 1}, mapper.getMin());
    EXPECT_EQ(mapper.getMin(), -3);
    EXPECT_EQ(mapper.getMax(), 8);
    expectColour(colourOf(mapper, 0), GREEN, 1e-12);
}

// Only a second argument that is greater than the first is the maximum.
TEST(ColourMapper, ALimitThatIsNotANumberStaysOne)
{
    ColourMapper mapper;
    mapper.setMapping(NOT_A_NUMBER, 3);
    EXPECT_EQ(mapper.getMin(), 3);
    EXPECT_TRUE(std::isnan(mapper.getMax()));
    mapper.setMapping(3, NOT_A_NUMBER);
    EXPECT_TRUE(std::isnan(mapper.getMin()));
    EXPECT_EQ(mapper.getMax(), 3);
    expectColour(colourOf(mapper, 1), NIGHT); // no stop is at or above it
}

TEST(ColourMapper, ConvertsBothWaysWithoutClamping)
{
    const ColourMapper mapper(2, 6);
    EXPECT_EQ(mapper.minMaxToZeroOne(2), 0);
    EXPECT_EQ(mapper.minMaxToZeroOne(3), 0.25);
    EXPECT_EQ(mapper.minMaxToZeroOne(6), 1);
    EXPECT_EQ(mapper.minMaxToZeroOne(10), 2);
    EXPECT_EQ(mapper.minMaxToZeroOne(-2), -1);
    EXPECT_EQ(mapper.zeroOneToMinMax(0), 2);
    EXPECT_EQ(mapper.zeroOneToMinMax(0.25), 3);
    EXPECT_EQ(mapper.zeroOneToMinMax(2), 10);
    EXPECT_EQ(mapper.zeroOneToMinMax(-1), -2);
}

TEST(ColourMapper, EqualLimitsDivideByZero)
{
    const ColourMapper mapper(2, 2);
    EXPECT_TRUE(std::isnan(mapper.minMaxToZeroOne(2)));
    EXPECT_EQ(mapper.minMaxToZeroOne(3), INFINITE);
    EXPECT_EQ(mapper.minMaxToZeroOne(1), -INFINITE);
    EXPECT_EQ(mapper.zeroOneToMinMax(0.5), 2);
}

// Colours

struct ColourCase
{
    const char* name;
    double value;
    Rgb colour;
};

class ColourMapperValueTest : public testing::TestWithParam<ColourCase>
{
};

TEST_P(ColourMapperValueTest, HasItsColourOnTheDefaultRamp)
{
    expectColour(colourOf(ColourMapper(), GetParam().value), GetParam().colour);
}

INSTANTIATE_TEST_SUITE_P(
    ColourMapper, ColourMapperValueTest,
    testing::Values(
        ColourCase{"Middle", 0.5, GREEN}, ColourCase{"BetweenStops", 0.625, Rgb(0.5, 1, 0)},
        ColourCase{"FirstQuarterOfAStep", 0.0625, Rgb(0, 0.25, 1)},
        ColourCase{"LastQuarterOfAStep", 0.9375, Rgb(1, 0.25, 0)}, ColourCase{"Minimum", 0, BLUE},
        ColourCase{"Maximum", 1, RED}, ColourCase{"Below", -3, BLUE}, ColourCase{"Above", 7, RED},
        ColourCase{"FarAbove", std::numeric_limits<double>::max(), RED},
        ColourCase{"MinusInfinity", -INFINITE, BLUE}, // clamped like any other
        ColourCase{"PlusInfinity", INFINITE, WHITE}, ColourCase{"NotANumber", NOT_A_NUMBER, WHITE}),
    [](const auto& paramInfo) { return std::string(paramInfo.param.name); });

TEST(ColourMapper, EqualLimitsAreBlueForEveryValueAndRamp) // on purpose
{
    for (const std::vector<Rgb>& ramp :
         {ColourMapper::getDefaultColours(), std::vector<Rgb>{RED, GREEN}, std::vector<Rgb>{RED},
          std::vector<Rgb>{}}) {
        const ColourMapper mapper(2, 2, ramp);
        for (double value : {2.0, 1.0, 3.0, NOT_A_NUMBER, INFINITE, -INFINITE}) {
            SCOPED_TRACE(value);
            expectColour(colourOf(mapper, value), BLUE);
        }
    }
}

TEST(ColourMapper, RampOfNoOrOneColourIsBlack)
{
    for (const std::vector<Rgb>& ramp : {std::vector<Rgb>{}, std::vector<Rgb>{RED}}) {
        const ColourMapper mapper(0, 1, ramp);
        EXPECT_EQ(mapper.getNumSteps(), double(ramp.size()));
        for (double value : {-1.0, 0.0, 0.5, 1.0, 2.0, -INFINITE}) {
            SCOPED_TRACE(value);
            expectColour(colourOf(mapper, value), NIGHT);
        }
        expectColour(colourOf(mapper, NOT_A_NUMBER), WHITE);
        expectColour(colourOf(mapper, INFINITE), WHITE);
    }
}

TEST(ColourMapper, StopsOfALongRampAreEvenlySpaced)
{
    const std::vector<Rgb> ramp = greys(100);
    const ColourMapper mapper(-50, 148, ramp); // a step is 2 long
    EXPECT_EQ(mapper.getNumSteps(), 100);
    for (std::size_t k = 0; k < ramp.size(); ++k) {
        SCOPED_TRACE(k);
        expectColour(colourOf(mapper, -50 + 2.0 * double(k)), ramp[k], 1e-12);
        if (k > 0)
            expectColour(colourOf(mapper, -51 + 2.0 * double(k)), 0.5 * (ramp[k - 1] + ramp[k]),
                         1e-12);
    }
}

// Stops

TEST(ColourMapper, InnerStopsStandAtTheValuesGiven)
{
    ColourMapper mapper;
    mapper.setMapping(0, {2, 4, 6}, 10); // stops 0, 0.2, 0.4, 0.6, 1
    EXPECT_EQ(mapper.getMax(), 10);
    expectColour(colourOf(mapper, 0), BLUE);
    expectColour(colourOf(mapper, 2), CYAN);
    expectColour(colourOf(mapper, 4), GREEN);
    expectColour(colourOf(mapper, 6), YELLOW);
    expectColour(colourOf(mapper, 10), RED);
    expectColour(colourOf(mapper, 1), Rgb(0, 0.5, 1), 1e-12);
    expectColour(colourOf(mapper, 8), Rgb(1, 0.5, 0), 1e-12);
    EXPECT_EQ(mapper.getStyleSheet().toStdString(),
              "background-color: qlineargradient(x1:0, y1:0, x2:1, y2:0,stop:0 #0000ff, "
              "stop:0.2 #00ffff, stop:0.4 #00ff00, stop:0.6 #ffff00, stop:1 #ff0000);");

    ColourMapper turned;
    turned.setMapping(10, {2, 4, 6}, 0);
    EXPECT_EQ(turned.getMin(), 0);
    EXPECT_EQ(turned.getStyleSheet(), mapper.getStyleSheet());
}

TEST(ColourMapper, SurplusValuesAreIgnored)
{
    ColourMapper mapper;
    mapper.setMapping(0, {2, 4, 6, 7, 8, 9}, 10);
    EXPECT_EQ(mapper.getNumSteps(), 5);
    expectColour(colourOf(mapper, 6), YELLOW);
    expectColour(colourOf(mapper, 10), RED);
    expectColour(colourOf(mapper, 8), Rgb(1, 0.5, 0), 1e-12);

    // Without inner stops there is nowhere to put one.
    ColourMapper two(0, 1, {RED, GREEN});
    two.setMapping(0, {1, 2}, 10);
    expectColour(colourOf(two, 5), Rgb(0.5, 0.5, 0));
    ColourMapper one(0, 1, {RED});
    one.setMapping(0, {1, 2}, 10);
    expectColour(colourOf(one, 5), NIGHT);
    ColourMapper none(0, 1, {});
    none.setMapping(0, {1, 2}, 10);
    EXPECT_EQ(none.getNumSteps(), 0);
    expectColour(colourOf(none, 5), NIGHT);
}

TEST(ColourMapper, StopsWithoutAValueStay)
{
    ColourMapper mapper;
    mapper.setMapping(0, {1}, 10); // stops 0, 0.1, 0.5, 0.75, 1
    expectColour(colourOf(mapper, 1), CYAN);
    expectColour(colourOf(mapper, 5), GREEN);
    expectColour(colourOf(mapper, 7.5), YELLOW);
    mapper.setMapping(0, std::vector<double>{}, 10);
    expectColour(colourOf(mapper, 1), CYAN);
}

// Also where stops stand twice at a place, or out of order.
TEST(ColourMapper, AValueIsBeforeTheFirstStopThatIsNotBelowIt)
{
    std::mt19937 engine(7);
    std::uniform_int_distribution<int> place(0, 40);
    for (int round = 0; round < 20; ++round) {
        const std::vector<Rgb> ramp = greys(30);
        std::vector<double> stops{0};
        for (std::size_t k = 1; k + 1 < ramp.size(); ++k)
            stops.push_back(place(engine));
        stops.push_back(40);
        if (round % 2 == 0)
            std::sort(stops.begin(), stops.end());
        ColourMapper mapper(0, 40, ramp);
        mapper.setMapping(0, std::vector<double>(stops.begin() + 1, stops.end() - 1), 40);
        for (double value = 0.3; value < 40; value += 0.7) {
            std::size_t k = 1;
            while (stops[k] < value)
                ++k;
            const double u = (value - stops[k - 1]) / (stops[k] - stops[k - 1]);
            expectColour(colourOf(mapper, value), (1 - u) * ramp[k - 1] + u * ramp[k], 1e-12);
        }
    }
}

TEST(ColourMapper, NewLimitsLeaveTheStopsAlone)
{
    ColourMapper mapper;
    mapper.setMapping(0, {2, 4, 6}, 10);
    mapper.setMapping(100, 0);
    expectColour(colourOf(mapper, 20), CYAN);
    expectColour(colourOf(mapper, 60), YELLOW);
}

TEST(ColourMapper, NewColoursAreEvenlySpacedAgain)
{
    ColourMapper mapper;
    mapper.setMapping(0, {2, 4, 6}, 10);
    mapper.setColours({RED, GREEN, BLUE});
    EXPECT_EQ(mapper.getNumSteps(), 3);
    EXPECT_EQ(mapper.getMax(), 10);
    expectColour(colourOf(mapper, 5), GREEN);
    expectColour(colourOf(mapper, 2.5), Rgb(0.5, 0.5, 0));
    mapper.setColours(ColourMapper::getDefaultColours());
    expectColour(colourOf(mapper, 2.5), CYAN);
    mapper.setColours({});
    EXPECT_EQ(mapper.getNumSteps(), 0);
}

TEST(ColourMapper, CopiesAreIndependent)
{
    ColourMapper original;
    ColourMapper copy = original;
    original.setMapping(0, {2, 4, 6}, 10);
    original.setColours({RED, GREEN});
    EXPECT_EQ(copy.getMax(), 1);
    EXPECT_EQ(copy.getNumSteps(), 5);
    expectColour(colourOf(copy, 0.25), CYAN);
    EXPECT_EQ(ColourMapper::getDefaultColours().size(), 5u);
}

// The style sheet

TEST(ColourMapper, StyleSheetShowsTheDefaultRamp)
{
    EXPECT_EQ(ColourMapper().getStyleSheet().toStdString(),
              "background-color: qlineargradient(x1:0, y1:0, x2:1, y2:0,stop:0 #0000ff, "
              "stop:0.25 #00ffff, stop:0.5 #00ff00, stop:0.75 #ffff00, stop:1 #ff0000);");
}

TEST(ColourMapper, StyleSheetOfTwoColoursHasNoInnerStop)
{
    EXPECT_EQ(ColourMapper(0, 1, {RED, GREEN}).getStyleSheet().toStdString(),
              "background-color: qlineargradient(x1:0, y1:0, x2:1, y2:0,stop:0 #ff0000, "
              "stop:1 #00ff00);");
}

TEST(ColourMapper, StyleSheetTruncatesComponentsAndHasSixDigits)
{
    // 0.999 * 255 = 254.7, 0.1 * 255 = 25.5, 0.5 * 255 = 127.5
    EXPECT_EQ(
        ColourMapper(0, 1, {Rgb(0.999, 0.1, 0.5), RED, GREEN, BLUE}).getStyleSheet().toStdString(),
        "background-color: qlineargradient(x1:0, y1:0, x2:1, y2:0,stop:0 #fe197f, "
        "stop:0.333333 #ff0000, stop:0.666667 #00ff00, stop:1 #0000ff);");
}

TEST(ColourMapper, StyleSheetShowsAtMostSixColours)
{
    EXPECT_EQ(ColourMapper(0, 1, greys(6)).getStyleSheet().toStdString(),
              "background-color: qlineargradient(x1:0, y1:0, x2:1, y2:0,stop:0 #000000, "
              "stop:0.2 #010101, stop:0.4 #020202, stop:0.6 #030303, stop:0.8 #040404, "
              "stop:1 #050505);");
    // Of a longer ramp the first five, where they stand, and the last.
    EXPECT_EQ(ColourMapper(0, 1, greys(7)).getStyleSheet().toStdString(),
              "background-color: qlineargradient(x1:0, y1:0, x2:1, y2:0,stop:0 #000000, "
              "stop:0.166667 #010101, stop:0.333333 #020202, stop:0.5 #030303, "
              "stop:0.666667 #040404, stop:1 #060606);");
    EXPECT_EQ(ColourMapper(0, 1, greys(101)).getStyleSheet().toStdString(),
              "background-color: qlineargradient(x1:0, y1:0, x2:1, y2:0,stop:0 #000000, "
              "stop:0.01 #010101, stop:0.02 #020202, stop:0.03 #030303, stop:0.04 #040404, "
              "stop:1 #646464);");
}

TEST(ColourMapper, StyleSheetOfFewerThanTwoColoursIsEmpty)
{
    EXPECT_TRUE(ColourMapper(0, 1, {}).getStyleSheet().isEmpty());
    EXPECT_TRUE(ColourMapper(0, 1, {RED}).getStyleSheet().isEmpty());
}

// For host programs

namespace {

// The usual conversion, hue in [0, 1].
Rgb fromHsv(double hue, double saturation, double value)
{
    const double sector = 6 * hue;
    const auto component = [&](double shift) {
        const double k = std::fmod(shift + sector, 6);
        return value - value * saturation * std::max(0.0, std::min({k, 4 - k, 1.0}));
    };
    return Rgb(component(5), component(3), component(1));
}

QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED
void seed(uint value) { qsrand(value); }
int nextRandom() { return qrand(); }
QT_WARNING_POP

} // namespace

TEST(ColourMapper, RandomColourIsThatOfTheNextRandomNumber)
{
    bool wrapped = false, unwrapped = false;
    for (uint i = 1; i <= 200; ++i) {
        const uint start = i * 2654435761u; // spread out: neighbours begin alike
        SCOPED_TRACE(start);
        seed(start);
        double hue = nextRandom() % 2147483647 / 2147483647.0 + 0.6180339887498948;
        wrapped |= hue > 1;
        unwrapped |= hue <= 1;
        if (hue > 1)
            hue -= 1;
        seed(start);
        // Through a hue of single precision: six times its rounding error.
        expectColour(ColourMapper::getRandomColour(), fromHsv(hue, 0.9, 0.9), 1e-6);
        // One number was used.
        const int following = nextRandom();
        seed(start);
        nextRandom();
        EXPECT_EQ(following, nextRandom());
    }
    EXPECT_TRUE(wrapped);
    EXPECT_TRUE(unwrapped);
}

TEST(ColourMapper, TextIsWhiteOnDarkAndBlackOnBrightBackgrounds)
{
    const Rgb dark[] = {{0.2, 0.2, 0.2},    {0, 0, 0},    {1, 0, 0},    {0, 0, 1},   {1, 0, 1},
                        {0.54, 0.54, 0.54}, {0, 0.93, 0}, {1, 0.42, 0}, {0, 0.74, 1}};
    const Rgb bright[] = {{1, 1, 0},          {1, 1, 1},    {0, 1, 0},    {0, 1, 1},
                          {0.56, 0.56, 0.56}, {0, 0.94, 0}, {1, 0.43, 0}, {0, 0.75, 1}};
    for (const Rgb& background : dark) {
        SCOPED_TRACE(testing::Message()
                     << background.x << " " << background.y << " " << background.z);
        expectColour(ColourMapper::getForeground(background), WHITE);
    }
    for (const Rgb& background : bright) {
        SCOPED_TRACE(testing::Message()
                     << background.x << " " << background.y << " " << background.z);
        expectColour(ColourMapper::getForeground(background), NIGHT);
    }
}

// Widgets without a display.
class ColourMapperWidgetTest : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        qputenv("QT_QPA_PLATFORM", "minimal");
        static int count = 1;
        static char name[] = "colours";
        static char* arguments[] = {name, nullptr};
        application = std::make_unique<QApplication>(count, arguments);
    }
    static void TearDownTestSuite() { application.reset(); }

    static std::unique_ptr<QApplication> application;
};

std::unique_ptr<QApplication> ColourMapperWidgetTest::application;

namespace {

const QPalette::ColorGroup GROUPS[] = {QPalette::Active, QPalette::Inactive, QPalette::Disabled};

void expectBrush(const QPalette& palette, QPalette::ColorRole role, const QColor& colour)
{
    for (QPalette::ColorGroup group : GROUPS) {
        SCOPED_TRACE(group);
        EXPECT_EQ(palette.brush(group, role).style(), Qt::SolidPattern);
        EXPECT_EQ(palette.color(group, role), colour);
    }
}

} // namespace

TEST_F(ColourMapperWidgetTest, NoWidgetIsIgnored)
{
    const QPalette before = QApplication::palette();
    ColourMapper::updateWidgetColour(nullptr, WHITE, NIGHT, true);
    EXPECT_EQ(QApplication::palette(), before);
}

TEST_F(ColourMapperWidgetTest, WidgetGetsBothColoursInEveryGroup)
{
    QLabel label("text");
    const QPalette before = label.palette();
    ASSERT_FALSE(label.autoFillBackground());
    ColourMapper::updateWidgetColour(&label, Rgb(0.999, 0.1, 0.5), Rgb(0, 1, 0.25), true);
    // 254.7, 25.5 and 127.5; 63.75: all truncated
    expectBrush(label.palette(), QPalette::WindowText, QColor(254, 25, 127, 255));
    expectBrush(label.palette(), QPalette::Window, QColor(0, 255, 63, 255));
    EXPECT_TRUE(label.autoFillBackground());
    for (QPalette::ColorGroup group : GROUPS) {
        SCOPED_TRACE(group);
        EXPECT_EQ(label.palette().brush(group, QPalette::Base),
                  before.brush(group, QPalette::Base));
        EXPECT_EQ(label.palette().brush(group, QPalette::Highlight),
                  before.brush(group, QPalette::Highlight));
    }

    ColourMapper::updateWidgetColour(&label, NIGHT, WHITE, false);
    expectBrush(label.palette(), QPalette::WindowText, QColor(0, 0, 0, 255));
    expectBrush(label.palette(), QPalette::Window, QColor(255, 255, 255, 255));
    EXPECT_FALSE(label.autoFillBackground());
}

TEST_F(ColourMapperWidgetTest, WidgetsOwnRolesDecide)
{
    QLabel label("text");
    const QPalette before = label.palette();
    label.setForegroundRole(QPalette::Link);
    label.setBackgroundRole(QPalette::Highlight);
    ColourMapper::updateWidgetColour(&label, RED, CYAN, true);
    expectBrush(label.palette(), QPalette::Link, QColor(255, 0, 0));
    expectBrush(label.palette(), QPalette::Highlight, QColor(0, 255, 255));
    EXPECT_EQ(label.palette().color(QPalette::WindowText), before.color(QPalette::WindowText));
    EXPECT_EQ(label.palette().color(QPalette::Window), before.color(QPalette::Window));
}
