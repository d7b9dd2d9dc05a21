// SPDX-License-Identifier: GPL-3.0-or-later
#include <biarc/trigonometry.h>

#include <cmath>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#pragma GCC diagnostic ignored "-Wpsabi"

namespace {

typedef double Four __attribute__((vector_size(32)));

// In units of the last place of a double that is rounded from it.
double errorOf(double value, long double exact)
{
    const auto rounded = double(exact);
    const double unit = std::nextafter(std::abs(rounded), std::numeric_limits<double>::infinity()) -
                        std::abs(rounded);
    return std::abs(double((value - exact) / static_cast<long double>(unit)));
}

} // namespace

TEST(CosineAndSine, AreRightToTheLastBitButOne)
{
    std::mt19937_64 random(1);
    for (const double largest : {1e-8, 0.1, 0.8, 7.0, biarc::LARGEST_ANGLE}) {
        std::uniform_real_distribution<double> angles(-largest, largest);
        for (int i = 0; i < 200000; ++i) {
            const double angle = angles(random);
            double cosine, sine;
            biarc::cosineAndSine(angle, cosine, sine);
            ASSERT_LT(errorOf(cosine, std::cos(static_cast<long double>(angle))), 1.5) << angle;
            ASSERT_LT(errorOf(sine, std::sin(static_cast<long double>(angle))), 1.5) << angle;
        }
    }
}

TEST(CosineAndSine, OfQuarterTurnsKeepTheirSigns)
{
    for (int quarter = -9; quarter < 10; ++quarter) {
        for (const double beside : {-1e-3, 0.0, 1e-3, 0.78, 0.79}) {
            const double angle = quarter * (M_PI / 2) + beside;
            double cosine, sine;
            biarc::cosineAndSine(angle, cosine, sine);
            EXPECT_NEAR(cosine, std::cos(angle), 2e-16) << angle;
            EXPECT_NEAR(sine, std::sin(angle), 2e-16) << angle;
        }
    }
    double cosine, sine;
    biarc::cosineAndSine(0.0, cosine, sine);
    EXPECT_EQ(cosine, 1);
    EXPECT_EQ(sine, 0);
}

TEST(CosineAndSine, OfSmallAnglesAreTheSeriesAlone)
{
    std::mt19937_64 random(5);
    std::uniform_real_distribution<double> angles(-biarc::SMALL_ANGLE, biarc::SMALL_ANGLE);
    for (int i = 0; i < 100000; ++i) {
        const double angle = i == 0 ? biarc::SMALL_ANGLE : angles(random);
        double cosine, sine, smallCosine, smallSine;
        biarc::cosineAndSine(angle, cosine, sine);
        biarc::ofSmallAngle(angle, smallCosine, smallSine);
        ASSERT_EQ(cosine, smallCosine);
        ASSERT_EQ(sine, smallSine);
    }
}

TEST(CosineAndSine, OfWhatIsNoAngleAreNoNumbers)
{
    for (const double angle :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        double cosine, sine;
        biarc::cosineAndSine(angle, cosine, sine);
        EXPECT_TRUE(std::isnan(cosine));
        EXPECT_TRUE(std::isnan(sine));
    }
}

TEST(CosineAndSine, OfFourAtOnceAreThoseOfOne)
{
    std::mt19937_64 random(2);
    std::uniform_real_distribution<double> angles(-8, 8);
    for (int i = 0; i < 20000; ++i) {
        const Four angle = {angles(random), angles(random), 1e-3 * angles(random),
                            100 * angles(random)};
        Four cosines, sines;
        biarc::cosineAndSine(angle, cosines, sines);
        for (int lane = 0; lane < 4; ++lane) {
            double cosine, sine;
            biarc::cosineAndSine(double(angle[lane]), cosine, sine);
            ASSERT_EQ(cosines[lane], cosine);
            ASSERT_EQ(sines[lane], sine);
        }
    }
}

namespace {

double arcCosine(double cosine)
{
    double angle;
    biarc::arcCosine(
        cosine, [](double& square) { square = std::sqrt(square); }, angle);
    return angle;
}

} // namespace

TEST(ArcCosine, IsRightToTheLastBitButTwo)
{
    std::mt19937_64 random(3);
    std::uniform_real_distribution<double> cosines(-1, 1), exponents(-16, -1);
    for (int i = 0; i < 400000; ++i) {
        const double small = std::pow(10, exponents(random));
        for (const double cosine :
             {cosines(random), 1 - small, small - 1, small, -small, 0.5 - small, 0.5 + small / 10})
            ASSERT_LT(errorOf(arcCosine(cosine), std::acos(static_cast<long double>(cosine))), 2.5)
                << cosine;
    }
}

TEST(ArcCosine, OfTheEndsIsExact)
{
    EXPECT_EQ(arcCosine(1), 0);
    EXPECT_EQ(arcCosine(-1), M_PI);
    EXPECT_EQ(arcCosine(0), M_PI / 2);
    EXPECT_TRUE(std::isnan(arcCosine(std::nextafter(1.0, 2.0))));
    EXPECT_TRUE(std::isnan(arcCosine(-2)));
    EXPECT_TRUE(std::isnan(arcCosine(std::numeric_limits<double>::quiet_NaN())));
}

TEST(ArcCosine, OfFourAtOnceAreThoseOfOne)
{
    std::mt19937_64 random(4);
    std::uniform_real_distribution<double> cosines(-1.01, 1.01);
    const auto takeRoots = [](Four& f) {
        for (int lane = 0; lane < 4; ++lane)
            f[lane] = std::sqrt(f[lane]);
    };
    for (int i = 0; i < 20000; ++i) {
        const Four cosine = {cosines(random), cosines(random), 0.1 * cosines(random), 1.0};
        Four angles;
        biarc::arcCosine(cosine, takeRoots, angles);
        for (int lane = 0; lane < 4; ++lane) {
            const double angle = arcCosine(cosine[lane]);
            ASSERT_TRUE(angles[lane] == angle || (std::isnan(angle) && std::isnan(angles[lane])));
        }
    }
}
