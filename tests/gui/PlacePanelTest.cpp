// SPDX-License-Identifier: GPL-3.0-or-later
// The numbers of what is clicked as the user of a window sees them: with the X server's keys and
// mouse.
#include "window/PlacePanel.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>

#include <QApplication>
#include <QClipboard>
#include <QDockWidget>
#include <QGLWidget>
#include <QImage>
#include <QPixmap>
#include <QPushButton>
#include <QScreen>
#include <QSettings>
#include <QTest>
#include <QTextEdit>
#include <gmock/gmock.h>

#include "programWindows.h"
#include "scene/DataScene.h"
#include "scene/SceneLoader.h"
#include "scene/readFiles.h"
#include "support/TemporaryFolder.h"
#include "support/keepPictures.h"
#include "support/realInput.h"
#include "window/MainWindow.h"
#include "window/Player.h"
#include "window/StatusText.h"

namespace strandview {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

// Along x from 0 to 4, `height` above it.
std::string rodText(double height)
{
    std::string text;
    for (int i = 0; i < 5; ++i)
        text += std::to_string(i) + " " + std::to_string(height) + " 0\n";
    return text;
}

bool isYellow(const QColor& c) { return c.red() > 220 && c.green() > 180 && c.blue() < 90; }

int countYellow(const QImage& picture)
{
    int pixels = 0;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            pixels += isYellow(picture.pixelColor(x, y));
    return pixels;
}

class PlacePanelTest : public testing::Test
{
protected:
    static void SetUpTestSuite() { initialiseProgramOnce("PlacePanelTest"); }

    PlacePanelTest()
    {
        QSettings().clear();
        options.windowSize = {900, 520};
        options.radius = 0.3;
        options.tubeColour = Colour{0, 0, 1};
        options.showRibbon = false;
        options.camera.side = Side::Z;
    }

    void open(const std::string& text, const std::string& name = "rod.txt")
    {
        file = folder.write(name, text);
        window = std::make_unique<MainWindow>(
            options,
            [this](const std::vector<std::string>& files, ReadReport& report, Progress& progress) {
                return prepareScene(files, options, report, progress, Opening::AT_ONCE);
            },
            [this](const std::vector<std::string>& files, ReadReport& report, Progress& progress) {
                return moveFrames(
                    openFiles(files, options, report, progress, Opening::AT_ONCE).series, options);
            });
        window->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
        window->openFiles({QString::fromStdString(file)});
        ASSERT_TRUE(comesTo([this] { return !window->isLoading(); }));
        ASSERT_TRUE(comesToBePainted());
    }
    bool comesToBePainted() const
    {
        bool isPainted = false;
        window->whenPainted([&isPainted] { isPainted = true; });
        return comesTo([&] { return isPainted; });
    }
    void openWithPanel(const std::string& text)
    {
        open(text);
        pressRealKey("n");
        ASSERT_TRUE(comesTo([this] { return panel()->isVisible(); }));
        ASSERT_TRUE(comesToBePainted());
    }

    QWidget* view() const { return window->findChild<QGLWidget*>(); }
    PlacePanel* panel() const { return window->findChild<PlacePanel*>(); }
    QTextEdit* page() const { return panel()->findChild<QTextEdit*>("placeText"); }
    std::string told() const { return panel()->getText().toStdString(); }
    std::string statusText() const
    {
        return window->findChild<StatusText*>()->getAll().toStdString();
    }
    bool comesToTell(const std::string& text) const
    {
        return comesTo([&] { return told().find(text) != std::string::npos; });
    }
    // The text behind a name, once it is told.
    std::string valueOf(const std::string& name) const
    {
        const QString start = QString::fromStdString(name) + '\t';
        for (const QString& line : panel()->getText().split('\n')) {
            if (line.startsWith(start))
                return line.mid(start.size()).toStdString();
        }
        return "none";
    }

    // On the screen, of a point of the plane z = 0 seen along -z.
    QPoint onScreen(double x, double y) const
    {
        const CameraNumbers camera = window->getCameraNumbers();
        const double pixels = std::min(view()->width(), view()->height()) / camera.size;
        return view()->mapToGlobal(
            {int(std::lround(view()->width() / 2.0 + (x - camera.position[0]) * pixels)),
             int(std::lround(view()->height() / 2.0 - (y - camera.position[1]) * pixels))});
    }
    void click(double x, double y) const
    {
        const QPoint place = onScreen(x, y);
        clickRealButton(place.x(), place.y());
    }
    void shiftClick(double x, double y) const
    {
        const QPoint place = onScreen(x, y);
        clickRealButtonWith("Shift", place.x(), place.y());
    }
    static void click(const QWidget& widget)
    {
        const QPoint place = widget.mapToGlobal(widget.rect().center());
        clickRealButton(place.x(), place.y());
    }

    QImage shown() const
    {
        return keepIfFailed(view()->screen()->grabWindow(view()->winId()).toImage());
    }

    const TemporaryFolder folder;
    std::string file;
    Options options;
    std::unique_ptr<MainWindow> window;
};

} // namespace

TEST_F(PlacePanelTest, IsClosedUntilItsKeyIsPressedAndAgainThen)
{
    open(rodText(0));
    EXPECT_FALSE(panel()->isVisible());
    const int width = view()->width();
    pressRealKey("n");
    EXPECT_TRUE(comesTo([&] { return panel()->isVisible() && view()->width() < width; }));
    pressRealKey("n");
    EXPECT_TRUE(comesTo([&] { return !panel()->isVisible() && view()->width() == width; }));
}

TEST_F(PlacePanelTest, AClickTellsAllNumbersOfThePoint)
{
    openWithPanel(rodText(0));
    click(3, 0);
    ASSERT_TRUE(comesToTell("rod 1"));
    EXPECT_EQ(valueOf("from"), file + ":1: rod 1");
    EXPECT_EQ(valueOf("index from 0"), "3");
    EXPECT_EQ(valueOf("arclength"), "3\tlength");
    EXPECT_THAT(told(), HasSubstr("point\t4 of 5\n"));
    EXPECT_THAT(told(), HasSubstr("point\t3\t0\t0\n"));
    EXPECT_THAT(told(), HasSubstr("d3\t1\t0\t0\n"));
    EXPECT_THAT(told(), HasSubstr("writhe_density\t0\t1/length\n"));
    EXPECT_THAT(statusText(), StartsWith("point "));
    EXPECT_THAT(page()->toPlainText().toStdString(), HasSubstr("arclength\t3\tlength"));
}

TEST_F(PlacePanelTest, AClickBetweenTwoPointsTellsWhatIsThere)
{
    openWithPanel(rodText(0));
    click(1.5, 0.1);
    ASSERT_TRUE(comesToTell("between 2 and 3 of 5"));
    EXPECT_NEAR(std::stod(valueOf("index from 0")), 1.5, 0.03);
    EXPECT_NEAR(std::stod(valueOf("arclength")), 1.5, 0.03);
}

TEST_F(PlacePanelTest, ADragTurnsTheSceneAndTellsNothing)
{
    openWithPanel(rodText(0));
    click(3, 0);
    ASSERT_TRUE(comesToTell("rod 1"));
    const std::string before = told();
    const CameraNumbers camera = window->getCameraNumbers();
    const QPoint from = onScreen(1, 0), to = onScreen(2, 0.2);
    // A busy window may see no place between the first and the last: then nothing is turned.
    bool isTurned = false;
    for (int attempt = 0; attempt < 10 && !isTurned; ++attempt) {
        dragRealPointer(from.x(), from.y(), to.x(), to.y());
        QTest::qWait(300);
        isTurned = !(window->getCameraNumbers() == camera);
    }
    EXPECT_TRUE(isTurned);
    EXPECT_EQ(told(), before);
}

TEST_F(PlacePanelTest, AClickTurnsNothing)
{
    openWithPanel(rodText(0));
    const CameraNumbers camera = window->getCameraNumbers();
    click(3, 0);
    ASSERT_TRUE(comesToTell("rod 1"));
    EXPECT_TRUE(window->getCameraNumbers() == camera);
}

TEST_F(PlacePanelTest, WithoutThePanelTheLeftButtonTellsNothingAndTheRightOneWhatThePanelTellsThen)
{
    open(rodText(0));
    const std::string hint = statusText();
    click(3, 0);
    QTest::qWait(100);
    EXPECT_EQ(statusText(), hint);
    const QPoint place = onScreen(2, 0);
    clickRealRightButton(place.x(), place.y());
    EXPECT_TRUE(comesTo([&] { return statusText() != hint; }));
    pressRealKey("n");
    EXPECT_TRUE(comesToTell("rod 1"));
    EXPECT_EQ(valueOf("index from 0"), "2");
}

TEST_F(PlacePanelTest, ASecondClickWithShiftMeasuresFromTheFirst)
{
    openWithPanel(rodText(0));
    click(1, 0);
    ASSERT_TRUE(comesToTell("rod 1"));
    shiftClick(3, 0);
    ASSERT_TRUE(comesToTell("from 1 to 2"));
    EXPECT_EQ(valueOf("distance"), "2\tlength");
    EXPECT_EQ(valueOf("arc length between"), "2\tlength");
    EXPECT_THAT(told(), HasSubstr("1: rod 1\n"));
    EXPECT_THAT(told(), HasSubstr("2: rod 1\n"));
    EXPECT_THAT(statusText(), StartsWith("distance 2\npoint "));
    // From the same place to another.
    shiftClick(2, 0);
    EXPECT_TRUE(comesToTell("distance\t1\t"));
    // And a click alone begins anew.
    click(3, 0);
    EXPECT_TRUE(comesTo([this] { return told().find("distance") == std::string::npos; }));
}

TEST_F(PlacePanelTest, AClickBesideEverythingTakesThemBack)
{
    openWithPanel(rodText(0));
    click(3, 0);
    ASSERT_TRUE(comesToTell("rod 1"));
    click(2, 1);
    EXPECT_TRUE(comesTo([this] { return told().empty(); }));
    EXPECT_THAT(page()->toPlainText().toStdString(), StartsWith("Click on something"));
}

TEST_F(PlacePanelTest, TheTextIsCopiedByItsButtonAndByTheUsualKeys)
{
    openWithPanel(rodText(0));
    click(3, 0);
    ASSERT_TRUE(comesToTell("rod 1"));
    click(*panel()->findChild<QPushButton*>("copyPlaceButton"));
    EXPECT_TRUE(
        comesTo([this] { return QApplication::clipboard()->text() == panel()->getText(); }));
    QApplication::clipboard()->setText("");
    click(*page()->viewport());
    ASSERT_TRUE(comesTo([this] { return page()->hasFocus(); }));
    pressRealKey("Control+c");
    EXPECT_TRUE(
        comesTo([this] { return QApplication::clipboard()->text() == panel()->getText(); }));
    pressRealKey("Control+a");
    ASSERT_TRUE(comesTo([this] { return page()->textCursor().hasSelection(); }));
    pressRealKey("Control+c");
    EXPECT_TRUE(
        comesTo([] { return QApplication::clipboard()->text().startsWith("rod 1\nfrom\t"); }));
    // Selecting goes on being the panel's, other keys the window's.
    pressRealKey("n");
    EXPECT_TRUE(comesTo([this] { return !panel()->isVisible(); }));
}

TEST_F(PlacePanelTest, PlacesAreMarkedInTheViewAndInNoPictureOfIt)
{
    openWithPanel(rodText(0));
    ASSERT_EQ(countYellow(shown()), 0);
    click(1, 0);
    EXPECT_TRUE(comesTo([this] { return countYellow(shown()) > 20; }));
    const int ofOne = countYellow(shown());
    shiftClick(3, 0);
    EXPECT_TRUE(comesTo([&] { return countYellow(shown()) > 2 * ofOne; }));
    const std::string picture = folder.path() + "/view.png";
    window->savePicture(QString::fromStdString(picture));
    const QImage saved(QString::fromStdString(picture));
    ASSERT_FALSE(saved.isNull());
    EXPECT_EQ(countYellow(saved), 0);
    click(2, 1);
    EXPECT_TRUE(comesTo([this] { return countYellow(shown()) == 0; }));
}

TEST_F(PlacePanelTest, OfAnotherFrameTheSamePlaceHasItsNumbers)
{
    openWithPanel(rodText(0) + "\n\n" + rodText(0.5) + "\n\n" + rodText(1).substr(0, 3 * 13));
    ASSERT_NE(window->getPlayer(), nullptr);
    ASSERT_TRUE(comesTo([this] { return window->getPlayer()->isStaged(); }));
    ASSERT_TRUE(comesToBePainted());
    click(3, 0);
    ASSERT_TRUE(comesToTell("point\t3\t0\t0\n"));
    pressRealKey("period");
    EXPECT_TRUE(comesToTell("point\t3\t0.5\t0\n"));
    pressRealKey("period");
    EXPECT_TRUE(comesToTell("not in these data")) << "of fewer points";
    pressRealKey("comma");
    EXPECT_TRUE(comesToTell("point\t3\t0.5\t0\n"));
}

TEST_F(PlacePanelTest, ReadAgainTheSamePlaceHasItsNewNumbers)
{
    openWithPanel(rodText(0));
    click(3, 0);
    ASSERT_TRUE(comesToTell("point\t3\t0\t0\n"));
    folder.write("rod.txt", rodText(0.25));
    pressRealKey("F5");
    EXPECT_TRUE(comesToTell("point\t3\t0.25\t0\n"));
    window->openFiles({QString::fromStdString(folder.write("another.txt", rodText(0)))});
    EXPECT_TRUE(comesTo([this] { return told().empty(); })) << "of other files";
}

} // namespace strandview
