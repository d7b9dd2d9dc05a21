// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/ScreenFitter.h"

#include <memory>

#include <QScreen>
#include <QTest>
#include <QWidget>
#include <gtest/gtest.h>

#include "windows.h"

namespace strandview {

namespace {

class ScreenFitterTest : public testing::Test
{
protected:
    static void SetUpTestSuite() { initWindowsOnce(); }

    void show(const QRect& wanted)
    {
        window.setGeometry(wanted);
        fitter = std::make_unique<ScreenFitter>(window);
        window.show();
        const int patience = 30'000; // a busy machine has been seen to need more than Qt's 5 s
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&window, patience));
        // The window manager frames it in its own time.
        ASSERT_TRUE(
            QTest::qWaitFor([this] { return window.frameGeometry() != window.geometry(); }));
    }

    QRect room() const { return window.screen()->availableGeometry(); }
    bool comesToLieOnTheScreen() const
    {
        return QTest::qWaitFor([this] { return room().contains(window.frameGeometry()); });
    }

    QWidget window;
    std::unique_ptr<ScreenFitter> fitter;
};

TEST_F(ScreenFitterTest, AWindowThatIsTooLargeIsMadeAsLargeAsTheScreenWithItsTitleBar)
{
    show(QRect(0, 0, 3000, 2000));
    EXPECT_TRUE(comesToLieOnTheScreen());
    EXPECT_GT(window.width(), room().width() * 9 / 10);
    EXPECT_GT(window.height(), room().height() * 8 / 10);
}

TEST_F(ScreenFitterTest, AWindowThatIsAsLargeAsTheScreenHasRoomForItsTitleBar)
{
    show(room());
    EXPECT_TRUE(comesToLieOnTheScreen());
}

TEST_F(ScreenFitterTest, AWindowBesideTheScreenIsBroughtThere)
{
    const QPoint corner = room().bottomRight() - QPoint(100, 60);
    show(QRect(corner, QSize(400, 300)));
    EXPECT_TRUE(comesToLieOnTheScreen());
    EXPECT_EQ(window.size(), QSize(400, 300));
}

TEST_F(ScreenFitterTest, AWindowThatFitsStaysAsItIs)
{
    show(QRect(60, 70, 400, 300));
    EXPECT_TRUE(comesToLieOnTheScreen());
    EXPECT_EQ(window.size(), QSize(400, 300));
    EXPECT_EQ(window.geometry().topLeft(), QPoint(60, 70));
}

TEST_F(ScreenFitterTest, WhereTheUserMovesItLaterItStays)
{
    show(QRect(60, 70, 400, 300));
    const QPoint place(room().right() - 50, 100);
    window.move(place);
    ASSERT_TRUE(QTest::qWaitFor([&] { return window.frameGeometry().x() == place.x(); }));
    QTest::qWait(200);
    EXPECT_EQ(window.frameGeometry().x(), place.x());
}

} // namespace

} // namespace strandview
