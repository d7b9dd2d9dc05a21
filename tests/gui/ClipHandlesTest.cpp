// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/ClipHandles.h"

#include <cmath>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QFile>
#include <gtest/gtest.h>

#include "DataWindowTest.h"
#include "scene/DataScene.h"
#include "support/keepPictures.h"
#include "support/realInput.h"

namespace strandview {

namespace {

// A rod along x, whose box is 2 long; the handles are at its middle.
const char* const ROD = "x y z\n-1 0 0\n-0.5 0 0\n0 0 0\n0.5 0 0\n1 0 0\n";

bool isFrame(const QColor& c)
{
    return std::abs(c.red() - 230) < 25 && std::abs(c.green() - 115) < 25 && c.blue() < 60;
}

QByteArray contentOf(const QString& name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

class ClipHandlesTest : public DataWindowTest
{
protected:
    ClipHandlesTest() { options.camera.side = Side::Z; }

    // Where the middle of the data's box is, of which hidden ribbons are a part.
    double middle() const { return double(scene->getBox().getCenter()[1]); }
    // With the handles of a plane, whose arrow is in the plane of the view.
    void openWithHandles(const char* plane)
    {
        options.clip = parseClipPlane(plane);
        ASSERT_NO_FATAL_FAILURE(openText(ROD, "rod.txt"));
        view()->setFocus();
        ASSERT_TRUE(comesTo([this] { return view()->hasFocus(); }));
        pressRealKey("slash");
        ASSERT_TRUE(comesToBePainted());
        keepIfFailed(screen());
    }
    // A window that goes while its handles are dragged leaves what a dragger holds of itself.
    void TearDown() override
    {
        EXPECT_TRUE(comesTo([] { return QApplication::mouseButtons() == Qt::NoButton; }));
        DataWindowTest::TearDown();
    }
    std::optional<ClipPlane> clip() const { return window->getStyle().clip; }
    void drag(double fromX, double fromY, double toX, double toY) const
    {
        const QPoint from = onScreen(fromX, middle() + fromY), to = onScreen(toX, middle() + toY);
        dragRealPointer(from.x(), from.y(), to.x(), to.y());
    }
};

} // namespace

TEST_F(ClipHandlesTest, AKeyCutsAcrossTheViewAndShowsHandlesUntilItIsPressedAgain)
{
    ASSERT_NO_FATAL_FAILURE(openText(ROD, "rod.txt"));
    view()->setFocus();
    ASSERT_TRUE(comesTo([this] { return view()->hasFocus(); }));
    window->viewFrom(Side::MINUS_Y);
    ASSERT_TRUE(comesToBePainted());
    EXPECT_EQ(countPixels(screen(), isFrame), 0);
    pressRealKey("slash");
    ASSERT_TRUE(comesTo([this] { return clip() == parseClipPlane("-y"); }));
    ASSERT_TRUE(comesToBePainted());
    EXPECT_GT(countPixels(screen(), isFrame), 500);
    pressRealKey("slash");
    ASSERT_TRUE(comesTo([this] { return countPixels(screen(), isFrame) == 0; }));
    EXPECT_EQ(clip(), parseClipPlane("-y")) << "the cut stays";
}

TEST_F(ClipHandlesTest, TheArrowMovesThePlaneAlongItsNormalAndTheCameraStays)
{
    ASSERT_NO_FATAL_FAILURE(openWithHandles("x:0"));
    const CameraNumbers camera = window->getCameraNumbers();
    const std::size_t styles = scene->countStyles();
    drag(0.35, 0, 0.65, 0);
    ASSERT_TRUE(comesTo([this] { return clip() != parseClipPlane("x:0"); }));
    ASSERT_TRUE(comesTo([this] { return std::abs(clip()->distance.value() - 0.3) < 0.03; }));
    EXPECT_EQ(formatClipPlane({clip()->normal, {}}), "x");
    EXPECT_LE(formatClipPlane(*clip()).size(), 7u) << formatClipPlane(*clip());
    EXPECT_EQ(scene->getStyle().clip, clip());
    // From where it is then.
    ASSERT_TRUE(comesTo([this] { return !window->isRestyling(); }) && comesToBePainted());
    EXPECT_EQ(scene->countStyles(), styles) << "no mesh is made anew";
    drag(0.65, 0, 0.05, 0);
    EXPECT_TRUE(comesTo([this] { return std::abs(clip()->distance.value() + 0.3) < 0.06; }));
    EXPECT_EQ(window->getCameraNumbers(), camera);
}

TEST_F(ClipHandlesTest, TheBallTurnsThePlaneAboutItsMiddle)
{
    ASSERT_NO_FATAL_FAILURE(openWithHandles("x:0"));
    drag(0, 0.06, 0.08, 0.06); // beside the arrow
    ASSERT_TRUE(comesTo([this] { return std::abs(clip()->normal.z) > 0.3; }));
    EXPECT_NEAR(clip()->normal.getNorm(), 1, 2e-3);
    const SbVec3f centre = scene->getBox().getCenter();
    EXPECT_NEAR(clip()->distance.value(),
                clip()->unitNormal().dot({double(centre[0]), double(centre[1]), double(centre[2])}),
                2e-3);
}

// The rod is made anew, and cut where it is cut now.
TEST_F(ClipHandlesTest, APlaneThatMovesWhileAFileIsReadStaysWhereItIs)
{
    ASSERT_NO_FATAL_FAILURE(openWithHandles("x:0"));
    std::string text;
    for (int i = 0; i < 300000; ++i) // takes longer than the window waits
        text += std::to_string(i % 3) + " " + std::to_string(i) + " 0\n";
    window->openFiles({QString::fromStdString(folder.write("long.txt", text))});
    ASSERT_TRUE(window->isLoading());
    StyleRequest next = window->getStyle();
    next.clip = parseClipPlane("x:0.25");
    window->setStyle(next);
    ASSERT_TRUE(comesTo([this] { return !window->isLoading() && !window->isRestyling(); }));
    EXPECT_EQ(clip(), parseClipPlane("x:0.25"));
    EXPECT_EQ(scene->getStyle().clip, clip());
}

TEST_F(ClipHandlesTest, AroundNothingThereAreNone)
{
    ASSERT_NO_FATAL_FAILURE(openWithHandles("x:0.5"));
    ASSERT_TRUE(comesTo([this] { return countPixels(screen(), isFrame) > 0; }));
    pressRealKey("slash");
    ASSERT_TRUE(comesTo([this] { return countPixels(screen(), isFrame) == 0; }));
    ASSERT_NO_FATAL_FAILURE(setThings("others: hidden"));
    pressRealKey("slash");
    ASSERT_TRUE(comesToBePainted());
    for (QAction* action : window->findChildren<QAction*>()) {
        if (action->shortcut() == QKeySequence("/")) {
            EXPECT_FALSE(action->isChecked());
        }
    }
}

TEST_F(ClipHandlesTest, BesideTheHandlesTheMouseTurnsTheSceneAsEver)
{
    ASSERT_NO_FATAL_FAILURE(openWithHandles("x:0"));
    const CameraNumbers camera = window->getCameraNumbers();
    // More than once: a window that is busy sees where a pointer is at last alone.
    for (int tries = 0; tries < 20 && window->getCameraNumbers() == camera; ++tries) {
        drag(0.7, 0.3, 0.5, 0.4);
        ASSERT_TRUE(comesToBePainted());
    }
    EXPECT_FALSE(window->getCameraNumbers() == camera);
    EXPECT_EQ(clip(), parseClipPlane("x:0"));
}

TEST_F(ClipHandlesTest, HandlesAreInNoPictureAndGoWithThePlane)
{
    ASSERT_NO_FATAL_FAILURE(openWithHandles("x:0.5"));
    const QString with = QString::fromStdString(folder.path("with.png")),
                  without = QString::fromStdString(folder.path("without.png"));
    window->savePicture(with);
    pressRealKey("slash");
    ASSERT_TRUE(comesTo([this] { return countPixels(screen(), isFrame) == 0; }));
    window->savePicture(without);
    ASSERT_FALSE(contentOf(with).isEmpty());
    EXPECT_EQ(contentOf(with), contentOf(without));

    pressRealKey("slash");
    ASSERT_TRUE(comesTo([this] { return countPixels(screen(), isFrame) > 0; }));
    StyleRequest whole = window->getStyle();
    whole.clip.reset();
    window->setStyle(whole);
    EXPECT_TRUE(comesTo([this] { return countPixels(screen(), isFrame) == 0; }));
    pressRealKey("slash"); // another
    EXPECT_TRUE(comesTo([this] { return clip() == parseClipPlane("z"); }));
}

} // namespace strandview
