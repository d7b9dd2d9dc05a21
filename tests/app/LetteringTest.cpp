// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/Lettering.h"

#include <algorithm>
#include <clocale>
#include <cmath>
#include <memory>
#include <vector>

#include <QCoreApplication>
#include <QFont>
#include <QImage>
#include <QPainter>
#include <gtest/gtest.h>

namespace strandview {

namespace {

// The area of quadrilaterals.
double inkOf(const std::vector<SbVec2f>& corners)
{
    double twice = 0;
    for (std::size_t i = 0; i + 3 < corners.size(); i += 4) {
        const SbVec2f a = corners[i + 2] - corners[i], b = corners[i + 3] - corners[i + 1];
        twice += std::abs(double(a[0] * b[1] - a[1] * b[0]));
    }
    return twice / 2;
}

TEST(Lettering, SetsDigitsOfOneWidthOnTheBaseline)
{
    const Lettering lettering;
    const double digit = lettering.getWidth("0");
    EXPECT_GT(digit, 0.4);
    EXPECT_LT(digit, 0.8);
    EXPECT_NEAR(lettering.getWidth("0123456789"), 10 * digit, 1e-3);
    const std::vector<SbVec2f> one = lettering.getShape("1");
    ASSERT_FALSE(one.empty());
    EXPECT_EQ(one.size() % 4, 0u);
    for (const SbVec2f& corner : one) {
        EXPECT_GE(corner[0], 0);
        EXPECT_LE(corner[0], digit);
        EXPECT_GE(corner[1], 0);
        EXPECT_LE(corner[1], 0.8f);
    }
}

TEST(Lettering, APointTouchesNoDigit)
{
    const Lettering lettering;
    std::vector<float> between; // the gaps of "0.5" along x
    std::vector<std::pair<float, float>> covered;
    const std::vector<SbVec2f> corners = lettering.getShape("0.5");
    for (std::size_t i = 0; i + 3 < corners.size(); i += 4) {
        const auto [left, right] =
            std::minmax({corners[i][0], corners[i + 1][0], corners[i + 2][0], corners[i + 3][0]});
        covered.emplace_back(left, right);
    }
    std::sort(covered.begin(), covered.end());
    float end = covered.front().second;
    for (const auto& [left, right] : covered) {
        if (left > end)
            between.push_back(left - end);
        end = std::max(end, right);
    }
    ASSERT_EQ(between.size(), 2u);
    EXPECT_GT(*std::min_element(between.begin(), between.end()), 0.1f);
}

TEST(Lettering, LeavesHolesOpen)
{
    const Lettering lettering;
    EXPECT_LT(inkOf(lettering.getShape("○")), 0.6 * inkOf(lettering.getShape("●")));
    EXPECT_GT(inkOf(lettering.getShape("○")), 0.01);
}

TEST(Lettering, SetsBlanksForWhatIsNotPrinted)
{
    const Lettering lettering;
    EXPECT_TRUE(lettering.getShape("\n\t ").empty());
    EXPECT_TRUE(lettering.getShape("").empty());
    EXPECT_NEAR(lettering.getWidth("a\nb"), lettering.getWidth("a b"), 1e-6);
}

TEST(Lettering, ElidesWhatIsTooWide)
{
    const Lettering lettering;
    EXPECT_EQ(lettering.elide("curvature", 100), "curvature");
    const std::string elided = lettering.elide(std::string(100, 'x'), 5);
    EXPECT_EQ(elided.substr(0, 2), "xx");
    EXPECT_EQ(elided.substr(elided.size() - 3), "…");
    EXPECT_LE(lettering.getWidth(elided), 5);
}

TEST(Lettering, ShapesAreTheSameWhateverWasDrawnOnAScreen)
{
    const Lettering lettering;
    const std::vector<SbVec2f> first = lettering.getShape("load");
    QFont small("DejaVu Sans");
    small.setPixelSize(11);
    small.setHintingPreference(QFont::PreferNoHinting);
    QImage screen(200, 20, QImage::Format_RGB32);
    for (const char* text : {"a", "b", "c", "d"}) { // letters that were drawn are kept
        for (const double x : {0.0, 0.25, 0.5, 0.75}) {
            QPainter painter(&screen);
            painter.setFont(small);
            painter.drawText(QPointF(x, 15), text);
            painter.end();
            EXPECT_TRUE(lettering.getShape("load") == first) << text << x;
        }
    }
}

TEST(Lettering, TheApplicationStaysUntilTheLastOneGoes)
{
    ASSERT_EQ(QCoreApplication::instance(), nullptr);
    auto first = std::make_unique<Lettering>();
    const Lettering second;
    const double width = second.getWidth("load");
    first.reset();
    EXPECT_NE(QCoreApplication::instance(), nullptr);
    EXPECT_EQ(second.getWidth("load"), width);
}

TEST(Lettering, LeavesNeitherAnApplicationNorALocaleBehind)
{
    ASSERT_EQ(QCoreApplication::instance(), nullptr);
    const std::string before = std::setlocale(LC_ALL, nullptr);
    {
        const Lettering lettering;
        EXPECT_NE(QCoreApplication::instance(), nullptr);
        EXPECT_EQ(std::setlocale(LC_ALL, nullptr), before);
    }
    EXPECT_EQ(QCoreApplication::instance(), nullptr);
    EXPECT_GT(Lettering().getWidth("once more"), 1);
}

} // namespace

} // namespace strandview
