// SPDX-License-Identifier: GPL-3.0-or-later
// What the data are compared with, seen in the window as a ghost of them.
#include <algorithm>

#include <QCheckBox>
#include <QScrollArea>
#include <gmock/gmock.h>

#include "DataWindowTest.h"
#include "scene/DataScene.h"
#include "support/realInput.h"
#include "window/Player.h"
#include "window/SideBySide.h"

namespace strandview {

namespace {

bool isGrey(const QColor& c)
{
    const auto [least, most] = std::minmax({c.red(), c.green(), c.blue()});
    return most - least < 8 && least > 60 && most < 230;
}

float topOf(const DataScene* shown) { return shown->getBox().getMax()[1]; }

class GhostWindowTest : public DataWindowTest
{
protected:
    GhostWindowTest()
    {
        options.camera.side = Side::Z;
        options.tubeColour = Colour{1, 0, 0};
        options.radius = 0.05;
        options.compare = folder.write("peak.txt", "-1 0 0\n0 1.5 0\n1 0 0\n");
    }
    // Beside the cross of axes in the corner.
    int countGrey() const
    {
        const QImage shown = screen();
        return countPixels(shown.copy(0, 0, shown.width() - 100, shown.height()), &isGrey);
    }
    QCheckBox* tick() const { return window->findChild<QCheckBox*>("ghost"); }
    void showPanel() const
    {
        pressRealKey("c");
        ASSERT_TRUE(comesTo([this] { return tick()->isVisible(); }));
        for (QScrollArea* area : window->findChildren<QScrollArea*>()) {
            if (area->isAncestorOf(tick()))
                area->ensureWidgetVisible(tick());
        }
    }
    bool comesToShow(bool ghost) const
    {
        return comesTo([&] {
            return window->getStyle().showGhost == ghost && !window->isRestyling() &&
                   (topOf(scene) > 0.5f) == ghost;
        });
    }
};

} // namespace

TEST_F(GhostWindowTest, ATickShowsItAndIsTakenBack)
{
    ASSERT_NO_FATAL_FAILURE(openText("-1 0 0\n0 0 0\n1 0 0\n", "rod.txt"));
    ASSERT_NO_FATAL_FAILURE(showPanel());
    ASSERT_TRUE(comesToBePainted());
    ASSERT_LT(countGrey(), 200);
    ASSERT_TRUE(tick()->isEnabled());
    click(*tick(), {8, tick()->height() / 2});
    ASSERT_TRUE(comesToShow(true));
    ASSERT_TRUE(comesToBePainted());
    EXPECT_TRUE(comesTo([this] { return countGrey() > 1000; }));
    view()->setFocus();
    pressRealKey("Control+z");
    ASSERT_TRUE(comesToShow(false));
    EXPECT_TRUE(comesTo([this] { return countGrey() < 200; }));
    EXPECT_FALSE(tick()->isChecked());
}

TEST_F(GhostWindowTest, ATickTellsWhatOfItCannotBeDrawn)
{
    options.compare =
        folder.write("more.txt", "-1 0 0\n0 1.5 0\n1 0 0\n\n0 0 0\n2 0 0\n1 0 0\n"); // and back
    ASSERT_NO_FATAL_FAILURE(openText("-1 0 0\n0 0 0\n1 0 0\n", "rod.txt"));
    ASSERT_NO_FATAL_FAILURE(showPanel());
    ASSERT_TRUE(comesToBePainted());
    click(*tick(), {8, tick()->height() / 2});
    ASSERT_TRUE(comesToShow(true));
    EXPECT_TRUE(comesTo([this] {
        return statusText().find("--ghost leaves out rod 2") != std::string::npos;
    })) << statusText();
}

TEST_F(GhostWindowTest, NothingIsToBeTickedWithoutAReference)
{
    options.compare.reset();
    ASSERT_NO_FATAL_FAILURE(openText("-1 0 0\n0 0 0\n1 0 0\n", "rod.txt"));
    ASSERT_NO_FATAL_FAILURE(showPanel());
    EXPECT_FALSE(tick()->isEnabled());
}

TEST_F(GhostWindowTest, TheSecondViewOfTheSameDataHasItToo)
{
    options.showGhost = true;
    options.beside = {{BesideRequest::SAME}};
    ASSERT_NO_FATAL_FAILURE(openText("-1 0 0\n0 0 0\n1 0 0\n", "rod.txt"));
    ASSERT_TRUE(comesTo([this] { return sceneBeside() != nullptr; }));
    EXPECT_GT(topOf(scene), 0.5f);
    EXPECT_EQ(topOf(sceneBeside()), topOf(scene));
}

// It stays where the shown frame is, which the reference is brought to.
TEST_F(GhostWindowTest, OfASeriesItIsTheFirstFrameOnEachThatIsShown)
{
    options.compare = "first";
    options.showGhost = true;
    ASSERT_NO_FATAL_FAILURE(
        openText("-1 0 0\n0 1.5 0\n1 0 0\n\n\n-1 0 0\n0 0 0\n1 0 0\n", "run.txt"));
    ASSERT_TRUE(comesTo([this] { return player()->isStaged(); })); // it knows the last one
    pressRealKey("Control+End");
    ASSERT_TRUE(comesTo([this] { return scene->getData()->rods.at(0).points.at(1).y == 0; }));
    ASSERT_TRUE(comesToBePainted());
    EXPECT_TRUE(comesTo([this] { return countGrey() > 1000; }));
    EXPECT_GT(topOf(scene), 0.5f);
}

} // namespace strandview
