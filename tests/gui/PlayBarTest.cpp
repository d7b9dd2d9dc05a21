// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/PlayBar.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QSlider>
#include <QSpinBox>
#include <gtest/gtest.h>

#include "windows.h"

namespace strandview {

namespace {

class PlayBarTest : public testing::Test
{
protected:
    static void SetUpTestSuite() { initWindowsOnce(); }

    PlayBarTest()
    {
        bar.reset();
        QObject::connect(&bar, &PlayBar::frameChosen, [this](int frame) { chosen = frame; });
        QObject::connect(&bar, &PlayBar::orderChanged, [this] { ++changes; });
    }
    std::string label() const { return bar.findChild<QLabel*>("frameLabel")->text().toStdString(); }
    QSpinBox& field(const char* name) const { return *bar.findChild<QSpinBox*>(name); }

    QAction action;
    PlayBar bar{{&action}, 25, nullptr};
    int chosen = -1, changes = 0;
};

} // namespace

TEST_F(PlayBarTest, TellsFrameCountAndTime)
{
    bar.setCount(250, false);
    bar.showFrame(12, 0.48);
    EXPECT_EQ(label(), "frame 12 of 250, t = 0.48");
    bar.showFrame(13, {});
    EXPECT_EQ(label(), "frame 13 of 250");
    bar.setCount(300, true);
    EXPECT_EQ(label(), "frame 13 of 300 so far");
    EXPECT_EQ(chosen, -1) << "nobody chose a frame";
}

TEST_F(PlayBarTest, TheRangeGrowsWithTheSeriesUnlessItEndsBefore)
{
    bar.setCount(10, true);
    EXPECT_EQ(bar.getOrder().last, 9u);
    bar.setCount(20, true);
    EXPECT_EQ(bar.getOrder().last, 19u);
    bar.setRange(3, 8);
    bar.setCount(30, false);
    EXPECT_EQ(bar.getOrder().first, 3u);
    EXPECT_EQ(bar.getOrder().last, 8u);
    bar.reset();
    bar.setCount(4, false);
    EXPECT_EQ(bar.getOrder().first, 0u);
    EXPECT_EQ(bar.getOrder().last, 3u);
}

TEST_F(PlayBarTest, ARangeIsKeptForWhatThereWillBeOfIt)
{
    bar.setCount(100, false);
    bar.setRange(20, 60);
    const PlayBar::Range kept = bar.getRange();
    const auto expectRange = [this](std::size_t first, std::size_t last) {
        EXPECT_EQ(bar.getOrder().first, first);
        EXPECT_EQ(bar.getOrder().last, last);
    };
    bar.reset(kept);
    bar.setCount(10, true);
    expectRange(9, 9);
    bar.setCount(40, true);
    expectRange(20, 39);
    bar.setCount(41, false);
    expectRange(20, 40);
    bar.reset(bar.getRange()); // not what it was cut to
    bar.setCount(100, false);
    expectRange(20, 60);

    bar.reset(kept);
    bar.setCount(20, false); // nothing of it
    expectRange(0, 19);
    bar.setRange(5, 19);
    bar.reset(bar.getRange()); // to the end
    bar.setCount(30, false);
    expectRange(5, 29);
}

TEST_F(PlayBarTest, AnEndOfTheRangeTakesTheOtherAlong)
{
    bar.setCount(100, false);
    field("toField").setValue(40);
    field("fromField").setValue(60);
    EXPECT_EQ(bar.getOrder().first, 60u);
    EXPECT_EQ(bar.getOrder().last, 60u);
    field("toField").setValue(20);
    EXPECT_EQ(bar.getOrder().first, 20u);
    EXPECT_EQ(bar.getOrder().last, 20u);
    EXPECT_GE(changes, 3);
}

TEST_F(PlayBarTest, SliderAndFieldChooseFrames)
{
    bar.setCount(100, false);
    bar.findChild<QSlider*>("frameSlider")->setValue(40);
    EXPECT_EQ(chosen, 40);
    field("frameField").setValue(41);
    EXPECT_EQ(chosen, 41);
}

TEST_F(PlayBarTest, WhatIsBeingTypedStaysWhileFramesAreShown)
{
    bar.setCount(100, false);
    auto* typed = field("toField").findChild<QLineEdit*>();
    typed->setText("7");
    bar.setCount(100, false);
    bar.showFrame(5, {});
    EXPECT_EQ(typed->text(), "7");
}

TEST_F(PlayBarTest, FitsIntoANarrowWindow)
{
    bar.setCount(1'000'000, false);
    bar.showFrame(999'999, 123456.789);
    EXPECT_LT(bar.minimumSizeHint().width(), 300);
}

TEST_F(PlayBarTest, CountsNoFurtherThanItsFieldsCan)
{
    bar.setCount(std::size_t(1) << 40, false);
    bar.showFrame(std::size_t(1) << 35, {});
    EXPECT_EQ(label(), "frame 34359738368 of 1099511627776");
    EXPECT_GT(bar.getOrder().last, 2'000'000'000u);
}

TEST_F(PlayBarTest, OrderAndRateAreThoseOfItsFields)
{
    bar.setCount(100, false);
    field("everyField").setValue(7);
    EXPECT_EQ(bar.getOrder().every, 7u);
    EXPECT_EQ(bar.getOrder().repeat, PlayOrder::ONCE);
    EXPECT_EQ(bar.getFramesPerSecond(), 25);
    EXPECT_FALSE(bar.isEveryFrameShown());
    bar.findChild<QComboBox*>("repeatBox")->setCurrentIndex(PlayOrder::TO_AND_FRO);
    EXPECT_EQ(bar.getOrder().repeat, PlayOrder::TO_AND_FRO);
    bar.findChild<QDoubleSpinBox*>("rateField")->setValue(2.5);
    EXPECT_EQ(bar.getFramesPerSecond(), 2.5);
    bar.findChild<QCheckBox*>("everyFrameBox")->setChecked(true);
    EXPECT_TRUE(bar.isEveryFrameShown());
    EXPECT_EQ(changes, 4) << "each is told";
}

} // namespace strandview
