// SPDX-License-Identifier: GPL-3.0-or-later
// The numbers of what is clicked as the user of a window sees them: with the X server's keys and
// mouse.
#include "window/PlacePanel.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <set>

#include <QApplication>
#include <QClipboard>
#include <QImage>
#include <QPushButton>
#include <QTest>
#include <QTextEdit>
#include <gmock/gmock.h>

#include "DataWindowTest.h"
#include "scene/DataScene.h"
#include "scene/backbones.h"
#include "support/realInput.h"
#include "window/PlaceMarks.h"
#include "window/PlaceTeller.h"
#include "window/Player.h"

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

class PlacePanelTest : public DataWindowTest
{
protected:
    PlacePanelTest()
    {
        options.windowSize = {900, 520};
        options.radius = 0.3;
        options.tubeColour = Colour{0, 0, 1};
        options.showRibbon = false;
        options.camera.side = Side::Z;
    }

    void openRod(const std::string& text)
    {
        openText(text, "rod.txt");
        ASSERT_TRUE(comesToBePainted());
    }
    void openWithPanel(const std::string& text)
    {
        ASSERT_NO_FATAL_FAILURE(openText(text, "rod.txt"));
        showNumbers();
    }

    PlacePanel* panel() const { return window->findChild<PlacePanel*>(); }
    // Of the places that are clicked.
    const PlaceMarks& marks() const { return window->getMarks(); }
    QTextEdit* page() const { return panel()->findChild<QTextEdit*>("placeText"); }
    std::string told() const { return panel()->getText().toStdString(); }
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
};

} // namespace

TEST_F(PlacePanelTest, IsClosedUntilItsKeyIsPressedAndAgainThen)
{
    openRod(rodText(0));
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
    EXPECT_EQ(valueOf("points of the line"), "5");
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
    ASSERT_TRUE(comesToTell("rod 1"));
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
    EXPECT_GT(countPixels(screen(), isYellow), 0) << "the place stays marked";
}

TEST_F(PlacePanelTest, AClickMayMoveTheMouseALittle)
{
    openWithPanel(rodText(0));
    const QPoint place = onScreen(3, 0);
    dragRealPointer(place.x(), place.y(), place.x() + 1, place.y() + 2);
    EXPECT_TRUE(comesToTell("rod 1"));
    EXPECT_EQ(valueOf("index from 0"), "3");
}

TEST_F(PlacePanelTest, WithoutThePanelTheLeftButtonTellsNothingAndTheRightOneWhatThePanelTellsThen)
{
    openRod(rodText(0));
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
    // A click alone begins anew.
    click(3, 0);
    EXPECT_TRUE(comesTo([this] { return told().find("distance") == std::string::npos; }));
}

TEST_F(PlacePanelTest, AThirdPlaceMakesAnAngleAndAFourthADihedralOneWhichStandInTheView)
{
    openWithPanel("0 -1 0\n0 0 0\n1 0 0\n1 1 0\n2 1 0\n3 1 0.5\n4 1 0.5\n");
    const auto texts = [this] { return marks().getTexts(); };
    click(0, 0);
    ASSERT_TRUE(comesToTell("rod 1"));
    EXPECT_THAT(texts(), testing::IsEmpty());
    shiftClick(1, 0);
    ASSERT_TRUE(comesToTell("from 1 to 2"));
    EXPECT_THAT(texts(), testing::ElementsAre("1"));
    shiftClick(1, 1);
    ASSERT_TRUE(comesToTell("angle at 2"));
    EXPECT_EQ(valueOf("angle"), "90\t°");
    EXPECT_THAT(texts(), testing::ElementsAre("90°"));
    EXPECT_THAT(statusText(), StartsWith("angle 90°\n"));
    shiftClick(2, 1);
    ASSERT_TRUE(comesToTell("dihedral angle about 2 to 3"));
    const auto isFlat = [this] { return std::abs(std::stod(valueOf("dihedral angle"))) > 172; };
    EXPECT_TRUE(isFlat()) << valueOf("dihedral angle");
    // A fifth one stands for the fourth, which was a wrong click, say.
    shiftClick(3, 1);
    EXPECT_TRUE(comesTo([&] { return !isFlat(); }));
    EXPECT_THAT(told(), HasSubstr("4: rod 1\n"));
    EXPECT_THAT(told(), Not(HasSubstr("5: rod 1\n")));
    EXPECT_EQ(marks().countPlaces(), 4);
}

TEST_F(PlacePanelTest, TheNumberInTheViewIsAsLargeAtAnyZoom)
{
    openWithPanel(rodText(0));
    click(1, 0);
    ASSERT_TRUE(comesToTell("rod 1"));
    shiftClick(3, 0);
    ASSERT_TRUE(comesToTell("from 1 to 2"));
    ASSERT_TRUE(comesToBePainted());
    // The plate of the number, in the middle above the line: the rod behind it is bright.
    const auto isDark = [](const QColor& c) {
        return std::max({c.red(), c.green(), c.blue()}) < 70;
    };
    const auto aboveTheLine = [this] {
        const QPoint middle = view()->mapFromGlobal(onScreen(2, 0));
        return screen().copy(middle.x() - 30, middle.y() - 32, 60, 26);
    };
    const auto plate = [&] { return countPixels(aboveTheLine(), isDark); };
    ASSERT_TRUE(comesTo([&] { return plate() > 50; }));
    const int before = plate();
    pressRealKey("Alt+w"); // zooms in
    ASSERT_TRUE(comesToBePainted());
    EXPECT_NEAR(plate(), before, 0.15 * before);
    pressRealKey("b");
    ASSERT_TRUE(comesTo([this] { return screen().pixelColor(3, 3) == QColor(0, 0, 0); }));
    EXPECT_GT(countPixels(aboveTheLine(), isYellow), 5) << "its letters are bright";
}

TEST_F(PlacePanelTest, AClickOnABackboneIsItsNearestPhosphorus)
{
    options.dna.bases = false;
    options.windowSize = {900, 700};
    open(std::string(SAMPLES_FOLDER) + "/dna.txt");
    ASSERT_TRUE(comesToBePainted());
    pressRealKey("n");
    ASSERT_TRUE(comesTo([this] { return panel()->isVisible(); }));
    ASSERT_TRUE(comesToBePainted());
    const Dna& dna = scene->getData()->dnas.at(0);
    const auto backbone = idealBackbone(dna, Strand::FIRST, scene->getStyle().dna.angstrom);
    // That nearest to the eye: nothing is before it.
    const auto nearest = std::max_element(backbone.begin(), backbone.end() - 1,
                                          [](const auto& a, const auto& b) { return a.z < b.z; });
    click(nearest->x, nearest->y);
    ASSERT_TRUE(comesToTell("phosphorus"));
    EXPECT_EQ(valueOf("phosphorus"),
              readable(nearest->x) + "\t" + readable(nearest->y) + "\t" + readable(nearest->z));
    EXPECT_EQ(valueOf("index from 0"), std::to_string(nearest - backbone.begin()));
}

TEST_F(PlacePanelTest, AClickBesideEverythingTakesThemBack)
{
    openWithPanel(rodText(0));
    click(3, 0);
    ASSERT_TRUE(comesToTell("rod 1"));
    click(2, 1);
    EXPECT_TRUE(comesTo([this] { return told().empty(); }));
    EXPECT_THAT(page()->toPlainText().toStdString(), StartsWith("Click on something"));
    QTextCursor first(page()->document());
    first.movePosition(QTextCursor::Right);
    EXPECT_LT(first.charFormat().fontWeight(), QFont::Bold) << "it is no title";
}

TEST_F(PlacePanelTest, BesideEverythingAClickWithShiftTakesNothingBack)
{
    openWithPanel(rodText(0));
    click(1, 0);
    ASSERT_TRUE(comesToTell("rod 1"));
    shiftClick(2, 1);
    QTest::qWait(100);
    shiftClick(3, 0);
    EXPECT_TRUE(comesToTell("from 1 to 2"));
    EXPECT_EQ(valueOf("distance"), "2\tlength");
}

TEST_F(PlacePanelTest, APlaceOfWhatIsHiddenHasNoMark)
{
    openWithPanel(rodText(0));
    click(1, 0);
    ASSERT_TRUE(comesTo([this] { return countPixels(screen(), isYellow) > 20; }));
    setThings("rod 1: hidden");
    EXPECT_TRUE(comesTo([this] { return countPixels(screen(), isYellow) == 0; }));
    setThings("");
    EXPECT_TRUE(comesTo([this] { return countPixels(screen(), isYellow) > 20; }));
}

TEST_F(PlacePanelTest, WhatIsSelectedStaysSoWhileItsNumbersAreTheSame)
{
    openWithPanel(rodText(0) + "\n\n" + rodText(0.5));
    ASSERT_NE(player(), nullptr);
    ASSERT_TRUE(comesTo([this] { return player()->isStaged(); }));
    ASSERT_TRUE(comesToBePainted());
    click(3, 0);
    ASSERT_TRUE(comesToTell("rod 1"));
    page()->selectAll();
    setThings("rod 1: colour=red");
    QTest::qWait(500); // until it would be told again
    EXPECT_TRUE(page()->textCursor().hasSelection());
    pressRealKey("period");
    EXPECT_TRUE(comesToTell("point\t3\t0.5\t0\n"));
    EXPECT_FALSE(page()->textCursor().hasSelection());
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
    click(*panel()->findChild<QPushButton*>("copyPlaceAsJsonButton"));
    ASSERT_TRUE(comesTo([] { return QApplication::clipboard()->text().startsWith("["); }));
    EXPECT_THAT(QApplication::clipboard()->text().toStdString(), HasSubstr("\"title\": \"rod 1\""));
    click(*page()->viewport());
    // Selecting goes on being the panel's, other keys the window's.
    pressRealKey("n");
    EXPECT_TRUE(comesTo([this] { return !panel()->isVisible(); }));
}

TEST_F(PlacePanelTest, PlacesAreMarkedInTheViewAndInNoPictureOfIt)
{
    openWithPanel(rodText(0));
    ASSERT_EQ(countPixels(screen(), isYellow), 0);
    click(1, 0);
    EXPECT_TRUE(comesTo([this] { return countPixels(screen(), isYellow) > 20; }));
    const int ofOne = countPixels(screen(), isYellow);
    shiftClick(3, 0);
    EXPECT_TRUE(comesTo([&] { return countPixels(screen(), isYellow) > 2 * ofOne; }));
    const std::string picture = folder.path() + "/view.png";
    window->savePicture(QString::fromStdString(picture));
    EXPECT_EQ(countPixels(QImage(QString::fromStdString(picture)), isYellow), 0);
    click(2, 1);
    EXPECT_TRUE(comesTo([this] { return countPixels(screen(), isYellow) == 0; }));
}

TEST_F(PlacePanelTest, OfAnotherFrameTheSamePlaceHasItsNumbers)
{
    openWithPanel(rodText(0) + "\n\n" + rodText(0.5) + "\n\n" + rodText(1).substr(0, 3 * 13));
    ASSERT_NE(player(), nullptr);
    ASSERT_TRUE(comesTo([this] { return player()->isStaged(); }));
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

// As while frames are played; a text costs more than a frame where its numbers do.
TEST_F(PlacePanelTest, NumbersThatNobodyCouldReadAreNotTold)
{
    openRod(rodText(0));
    PlacePanel told(nullptr);
    told.show();
    PlaceMarks marks;
    PlaceTeller teller(marks, told);
    teller.setScene(scene);
    PickedPlace place;
    place.kind = ThingKind::ROD;
    place.row = 3;
    teller.add(place, false);
    Configuration data = *scene->getData();
    std::set<QString> texts;
    const int frames = 5000;
    for (int frame = 1; frame <= frames; ++frame) {
        data.rods[0].points[3].y = frame;
        scene->setData(std::make_shared<Configuration>(data));
        teller.follow();
        texts.insert(told.getText());
    }
    EXPECT_LT(texts.size(), frames / 10);
    EXPECT_TRUE(comesTo([&] { return told.getText().contains("point\t3\t5000\t0\n"); }));
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
