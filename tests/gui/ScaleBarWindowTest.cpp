// SPDX-License-Identifier: GPL-3.0-or-later
// The scale bar in the window: it is as long as the view says, which the mouse and keys change.
#include <algorithm>

#include <QCheckBox>
#include <QScrollArea>
#include <gmock/gmock.h>

#include "DataWindowTest.h"
#include "request/settings.h"
#include "scene/ScaleBar.h"
#include "support/realInput.h"

namespace strandview {

namespace {

bool isInk(const QColor& c) { return c.value() < 60; }

class ScaleBarWindowTest : public DataWindowTest
{
protected:
    // The bar's pixels: the longest run of black ones in a row, low in the left half of the view.
    int barLength() const
    {
        const QImage image = screen();
        int longest = 0;
        for (int y = image.height() * 4 / 5; y < image.height(); ++y)
            for (int x = 0, run = 0; x < image.width() / 2; ++x) {
                run = isInk(image.pixelColor(x, y)) ? run + 1 : 0;
                longest = std::max(longest, run);
            }
        return longest;
    }
    double pixelsPerUnit() const
    {
        return double(onScreen(1, 0).x() - onScreen(0, 0).x()) * view()->devicePixelRatioF();
    }
    void expectRightLength() const
    {
        const int bar = barLength();
        const QImage image = screen();
        const double most = LONGEST_SCALE_BAR * std::min(image.width(), image.height());
        EXPECT_NEAR(bar, roundLength(most / pixelsPerUnit()) * pixelsPerUnit(), 2);
    }
};

} // namespace

TEST_F(ScaleBarWindowTest, ATickShowsItAndItFollowsTheZoom)
{
    options.camera.side = Side::Z;
    ASSERT_NO_FATAL_FAILURE(openText("-1 0 0\n0 0.1 0\n1 0 0\n", "rod.txt"));
    ASSERT_TRUE(comesToBePainted());
    EXPECT_LT(barLength(), 20);
    pressRealKey("o");
    auto* const tick = window->findChild<QCheckBox*>("scale-bar");
    ASSERT_NE(tick, nullptr);
    ASSERT_TRUE(comesTo([&] { return tick->isVisible(); }));
    for (QScrollArea* area : window->findChildren<QScrollArea*>()) {
        if (area->isAncestorOf(tick))
            area->ensureWidgetVisible(tick);
    }
    click(*tick, {8, tick->height() / 2});
    ASSERT_TRUE(comesTo([this] { return window->getStyle().scaleBar; }));
    ASSERT_TRUE(comesTo([this] { return !window->isRestyling(); }));
    ASSERT_TRUE(comesToBePainted());
    expectRightLength();
    const double before = pixelsPerUnit();
    view()->setFocus();
    for (int i = 0; i < 3; ++i)
        pressRealKey("Alt+w");
    ASSERT_TRUE(comesTo([&] { return pixelsPerUnit() > 1.05 * before; }));
    ASSERT_TRUE(comesToBePainted());
    expectRightLength();
}

TEST_F(ScaleBarWindowTest, InPerspectiveItGoesWhichIsTold)
{
    options.scaleBar = true;
    ASSERT_NO_FATAL_FAILURE(openText("-1 0 0\n0 0.1 0\n1 0 0\n", "rod.txt"));
    ASSERT_TRUE(comesToBePainted());
    ASSERT_GT(barLength(), 20);
    pressRealKey("p");
    ASSERT_TRUE(comesTo([this] { return window->getCameraNumbers().perspective; }));
    ASSERT_TRUE(comesToBePainted());
    EXPECT_LT(barLength(), 20);
    EXPECT_THAT(statusText(), testing::HasSubstr("No scale bar"));
}

} // namespace strandview
