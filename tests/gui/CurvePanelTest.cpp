// SPDX-License-Identifier: GPL-3.0-or-later
// The curves beside the view as the user of a window sees them: with the X server's keys and mouse.
#include "window/CurvePanel.h"

#include <fstream>
#include <iterator>

#include <QComboBox>
#include <QCursor>
#include <QImage>
#include <QListWidget>
#include <QTest>
#include <gmock/gmock.h>

#include "DataWindowTest.h"
#include "support/realInput.h"
#include "window/Player.h"

namespace strandview {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

// Along x from 0 to 4, with a column.
std::string rodText(int factor)
{
    std::string text = "x y z k\n";
    for (int i = 0; i < 5; ++i)
        text += std::to_string(i) + " 0 0 " + std::to_string(factor * i * i) + "\n";
    return text;
}

// The same in three frames, k ten times larger in each.
std::string seriesText()
{
    std::string frames;
    for (int factor : {1, 10, 100}) {
        std::string points, values;
        for (int i = 0; i < 5; ++i) {
            points += (i == 0 ? "" : ",") + ("[" + std::to_string(i) + ",0,0]");
            values += (i == 0 ? "" : ",") + std::to_string(factor * i);
        }
        frames += (factor == 1 ? "" : ",") + ("{\"rods\": [{\"points\": [" + points) +
                  "], \"scalars\": {\"k\": [" + values + "]}}]}";
    }
    return "{\"strandview\": 1, \"series\": [" + frames + "]}";
}

std::string contentOf(const std::string& file)
{
    std::ifstream stream(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

class CurvePanelTest : public DataWindowTest
{
protected:
    CurvePanelTest()
    {
        options.windowSize = {1000, 560};
        options.radius = 0.3;
        options.tubeColour = Colour{0, 0, 1};
        options.showRibbon = false;
        options.camera.side = Side::Z;
    }

    void openWithPanel(const std::string& text, const std::string& name)
    {
        openText(text, name);
        pressRealKey("g");
        ASSERT_TRUE(comesTo([this] { return panel()->isVisible() && panel()->isUpToDate(); }));
        ASSERT_TRUE(comesToBePainted());
    }

    CurvePanel* panel() const { return window->findChild<CurvePanel*>(); }
    const PlotStack& stack() const { return panel()->getStack(); }
    std::vector<std::string> shownPanels() const
    {
        std::vector<std::string> names;
        for (const PlotPanel& shown : stack().getPlot().panels)
            names.push_back(shown.name);
        return names;
    }

    QPoint ofPlace(std::size_t plotPanel, std::size_t place) const
    {
        return stack().mapToGlobal(stack().positionOf(plotPanel, {0, place}));
    }
    // The row of a list entry, in the middle of its check box.
    void tick(const char* name) const
    {
        auto* list = panel()->findChild<QListWidget*>("plotScalars");
        QListWidgetItem* item = list->findItems(name, Qt::MatchExactly).value(0);
        ASSERT_TRUE(item);
        list->scrollToItem(item);
        const QRect row = list->visualItemRect(item);
        const QPoint box = list->viewport()->mapToGlobal({row.left() + 10, row.center().y()});
        clickRealButton(box.x(), box.y());
    }
    void untickAllBut(const char* name) const
    {
        auto* list = panel()->findChild<QListWidget*>("plotScalars");
        for (int i = 0; i < list->count(); ++i)
            list->item(i)->setCheckState(list->item(i)->text() == name ? Qt::Checked
                                                                       : Qt::Unchecked);
        ASSERT_TRUE(comesTo([&] { return shownPanels() == std::vector<std::string>{name}; }));
        ASSERT_TRUE(comesTo([this] { return panel()->isUpToDate(); }));
        QTest::qWait(0); // laid out
    }
};

} // namespace

TEST_F(CurvePanelTest, AKeyShowsTheCurvesAndHidesThem)
{
    openText(rodText(1), "rod.txt");
    EXPECT_FALSE(panel()->isVisible());
    EXPECT_THAT(shownPanels(), IsEmpty());
    pressRealKey("g");
    EXPECT_TRUE(comesTo([this] { return panel()->isVisible(); }));
    EXPECT_TRUE(comesTo([this] {
        return shownPanels() == std::vector<std::string>{"curvature", "torsion"};
    }));
    pressRealKey("g");
    EXPECT_TRUE(comesTo([this] { return !panel()->isVisible(); }));
}

TEST_F(CurvePanelTest, ATickedScalarIsPlottedAndAnUntickedOneGoes)
{
    openWithPanel(rodText(1), "rod.txt");
    tick("k");
    EXPECT_TRUE(comesTo([this] {
        return shownPanels() == std::vector<std::string>{"k", "curvature", "torsion"};
    }));
    EXPECT_THAT(stack().getPlot().panels.at(0).values.at(0), ElementsAre(0, 1, 4, 9, 16));
    tick("curvature");
    EXPECT_TRUE(comesTo([this] {
        return shownPanels() == std::vector<std::string>{"k", "torsion"};
    }));
}

TEST_F(CurvePanelTest, APlaceUnderTheMouseInACurveIsMarkedInTheScene)
{
    openWithPanel(rodText(1), "rod.txt");
    untickAllBut("k");
    QCursor::setPos(ofPlace(0, 3) + QPoint(0, 3));
    ASSERT_TRUE(comesTo([this] { return stack().getMark() == PlotPlace{0, 3}; }));
    ASSERT_TRUE(comesToBePainted());
    EXPECT_TRUE(comesTo(
        [this] { return isYellow(screen().pixelColor(view()->mapFromGlobal(onScreen(3, 0)))); }));
    QCursor::setPos(view()->mapToGlobal({5, 5}));
    EXPECT_TRUE(comesTo([this] { return countPixels(screen(), isYellow) == 0; }));
    EXPECT_FALSE(stack().getMark());
}

TEST_F(CurvePanelTest, APlaceUnderTheMouseInTheSceneIsMarkedInTheCurves)
{
    openWithPanel(rodText(1), "rod.txt");
    QCursor::setPos(onScreen(2.1, 0));
    EXPECT_TRUE(comesTo([this] { return stack().getMark() == PlotPlace{0, 2}; }));
    QCursor::setPos(onScreen(0.9, 0));
    EXPECT_TRUE(comesTo([this] { return stack().getMark() == PlotPlace{0, 1}; }));
    QCursor::setPos(onScreen(2, 1.5));
    EXPECT_TRUE(comesTo([this] { return !stack().getMark(); }));
}

TEST_F(CurvePanelTest, TheMarkIsInNoSavedPicture)
{
    openWithPanel(rodText(1), "rod.txt");
    untickAllBut("k");
    QCursor::setPos(ofPlace(0, 3));
    ASSERT_TRUE(comesTo([this] { return stack().getMark().has_value(); }));
    ASSERT_TRUE(comesTo([this] { return countPixels(screen(), isYellow) > 0; }));
    const std::string picture = folder.path("picture.png");
    window->savePicture(QString::fromStdString(picture));
    EXPECT_EQ(countPixels(QImage(QString::fromStdString(picture)), isYellow), 0);
}

TEST_F(CurvePanelTest, CurvesAreThoseOfTheFrameThatIsShown)
{
    openWithPanel(seriesText(), "rods.json");
    untickAllBut("k");
    EXPECT_THAT(stack().getPlot().panels.at(0).values.at(0), ElementsAre(0, 1, 2, 3, 4));
    player()->goTo(2);
    EXPECT_TRUE(
        comesTo([this] { return stack().getPlot().panels.at(0).values.at(0).back() == 400; }));
}

TEST_F(CurvePanelTest, TheClickedPlaceIsPlottedOverTheFramesSeen)
{
    openWithPanel(seriesText(), "rods.json");
    untickAllBut("k");
    const QPoint place = ofPlace(0, 3);
    clickRealButton(place.x(), place.y());
    ASSERT_TRUE(
        comesTo([this] { return panel()->getPlaceText() == "Over frames: rod 1, point 3"; }));
    panel()->findChild<QComboBox*>("plotAxis")->setCurrentIndex(2);
    for (const std::size_t frame : {1, 2}) {
        player()->goTo(frame);
        ASSERT_TRUE(comesTo([&] { return player()->getFrame() == frame; }));
    }
    ASSERT_TRUE(comesTo([this] {
        return !stack().getPlot().lines.empty() && stack().getPlot().lines[0].x.size() == 3;
    }));
    EXPECT_THAT(stack().getPlot().lines[0].x, ElementsAre(0, 1, 2));
    EXPECT_THAT(stack().getPlot().panels.at(0).values.at(0), ElementsAre(3, 30, 300));
    ASSERT_TRUE(comesTo([this] { return panel()->isUpToDate(); }));
    QTest::qWait(0);
    const QPoint second = ofPlace(0, 1); // a click goes to that frame
    clickRealButton(second.x(), second.y());
    EXPECT_TRUE(comesTo([this] { return player()->getFrame() == 1; }));
}

TEST_F(CurvePanelTest, CurvesAreSavedAsAFile)
{
    openWithPanel(rodText(1), "rod.txt");
    const std::string saved = folder.path("curves.svg");
    panel()->save(QString::fromStdString(saved));
    EXPECT_THAT(contentOf(saved), HasSubstr("curvature [1/length]"));
}

TEST_F(CurvePanelTest, OtherFilesHaveTheirOwnScalars)
{
    openWithPanel(rodText(1), "rod.txt");
    tick("k");
    ASSERT_TRUE(comesTo([this] { return shownPanels().size() == 3; }));
    const std::string other = folder.write("other.txt", "0 0 0\n1 0 0\n1 1 0\n");
    window->openFiles({QString::fromStdString(other)});
    EXPECT_TRUE(comesTo([this] {
        return shownPanels() == std::vector<std::string>{"curvature", "torsion"};
    }));
    EXPECT_THAT(stack().getPlot().lines.at(0).x, SizeIs(3));
}

TEST_F(CurvePanelTest, ASlowScalarOfALongRodCannotBeTicked)
{
    std::string text;
    for (int i = 0; i < 2500; ++i)
        text += std::to_string(i) + " 0 0\n";
    openWithPanel(text, "long.txt");
    auto* list = panel()->findChild<QListWidget*>("plotScalars");
    const QListWidgetItem* item = list->findItems("writhe_density", Qt::MatchExactly).value(0);
    ASSERT_TRUE(item);
    EXPECT_FALSE(item->flags() & Qt::ItemIsUserCheckable);
    EXPECT_FALSE(item->toolTip().isEmpty());
}

TEST_F(CurvePanelTest, AScalarOfAFileWithTheNameOfASlowOneIsTicked)
{
    std::string text = "x y z writhe_density\n";
    for (int i = 0; i < 2500; ++i)
        text += std::to_string(i) + " 0 0 " + std::to_string(i % 7) + "\n";
    openWithPanel(text, "long.txt");
    auto* list = panel()->findChild<QListWidget*>("plotScalars");
    const QListWidgetItem* item = list->findItems("writhe_density", Qt::MatchExactly).value(0);
    ASSERT_TRUE(item);
    EXPECT_TRUE(item->flags() & Qt::ItemIsUserCheckable);
}

} // namespace strandview
