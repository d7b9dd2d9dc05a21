// SPDX-License-Identifier: GPL-3.0-or-later
// The curves beside the view as the user of a window sees them: with the X server's keys and mouse.
#include "window/CurvePanel.h"

#include <fstream>
#include <iterator>

#include <Inventor/Qt/SoQtGLWidget.h>
#include <QComboBox>
#include <QCursor>
#include <QImage>
#include <QListWidget>
#include <QPointer>
#include <QTest>
#include <gmock/gmock.h>

#include "DataWindowTest.h"
#include "scene/DataScene.h"
#include "support/realInput.h"
#include "window/PlaceMarks.h"
#include "window/PlacePanel.h"
#include "window/Player.h"
#include "window/ThingsPanel.h"

namespace strandview {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsNan;
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

// Along x, y from it.
std::string straightText(int points, int y)
{
    std::string text;
    for (int i = 0; i < points; ++i)
        text += std::to_string(i) + " " + std::to_string(y) + " 0\n";
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
    std::vector<double> shownValues() const
    {
        const Plot& plot = stack().getPlot();
        return plot.panels.size() == 1 && plot.lines.size() == 1 ? plot.panels[0].values[0]
                                                                 : std::vector<double>();
    }
    bool comesToShowFrame(std::size_t frame) const
    {
        player()->goTo(frame);
        return comesTo([&] { return player()->getFrame() == frame; });
    }
    // Of that place of the only curve.
    void plotOverFrames(std::size_t place)
    {
        const QPoint there = ofPlace(0, place);
        clickRealButton(there.x(), there.y());
        ASSERT_TRUE(comesTo([&] {
            return panel()->getPlaceText() ==
                   "Over frames: rod 1, point " + QString::number(place) + " (from 0)";
        }));
        panel()->findChild<QComboBox*>("plotAxis")->setCurrentIndex(2);
    }

    // What the view is drawn by.
    SoQtGLWidget* drawing() const
    {
        SoQtComponent* component = nullptr;
        for (QWidget* part = view(); part && !component; part = part->parentWidget())
            component = SoQtComponent::getComponent(part);
        return dynamic_cast<SoQtGLWidget*>(component);
    }
    QListWidgetItem* entry(const char* name) const
    {
        return panel()
            ->findChild<QListWidget*>("plotScalars")
            ->findItems(name, Qt::MatchExactly)
            .value(0);
    }
    // The row of a list entry, in the middle of its check box.
    void tick(const char* name) const
    {
        auto* list = panel()->findChild<QListWidget*>("plotScalars");
        QListWidgetItem* item = entry(name);
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

TEST_F(CurvePanelTest, AClickInACurveTellsTheNumbersThereAndMarksThePlace)
{
    openWithPanel(rodText(1), "rod.txt");
    pressRealKey("n");
    auto* const numbers = window->findChild<PlacePanel*>();
    ASSERT_TRUE(comesTo([&] { return numbers->isVisible(); }));
    QTest::qWait(300); // panels slide into their places
    untickAllBut("k");
    const QPoint there = ofPlace(0, 3);
    clickRealButton(there.x(), there.y());
    EXPECT_TRUE(comesTo([&] { return numbers->getText().contains("k\t9"); }))
        << numbers->getText().toStdString();
    EXPECT_THAT(statusText(), HasSubstr("point 3 0 0"));
    EXPECT_EQ(window->getMarks().countPlaces(), 1);
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
    ASSERT_NO_FATAL_FAILURE(plotOverFrames(3));
    for (const std::size_t frame : {1, 2})
        ASSERT_TRUE(comesToShowFrame(frame));
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

TEST_F(CurvePanelTest, AFrameThatCannotBeReadIsAGapOverTheFramesSeen)
{
    std::string text = seriesText();
    text.replace(text.find("[1,0,0]", text.find("}]}") + 1), 7, "[1,\"\",0]"); // of frame 1
    openWithPanel(text, "broken.json");
    untickAllBut("k");
    ASSERT_NO_FATAL_FAILURE(plotOverFrames(3));
    ASSERT_TRUE(comesToShowFrame(1));
    EXPECT_TRUE(comesTo([this] { return shownValues().size() == 2; }));
    EXPECT_THAT(shownValues(), ElementsAre(3, IsNan()));
    ASSERT_TRUE(comesToShowFrame(2));
    EXPECT_TRUE(comesTo([this] { return shownValues().size() == 3; }));
    EXPECT_THAT(stack().getPlot().lines.at(0).x, ElementsAre(0, 1, 2));
    EXPECT_THAT(shownValues(), ElementsAre(3, IsNan(), 300));
}

// They begin with the first, and go on to the one that is asked for.
TEST_F(CurvePanelTest, FramesBetweenAreThemselvesOverTheFramesSeen)
{
    options.series.between = 1;
    options.frame = 2; // the data's frame 1
    start(folder.write("rods.json", seriesText()));
    ASSERT_NE(player(), nullptr);
    ASSERT_TRUE(comesTo([this] { return player()->isStaged() && player()->getFrame() == 2; }));
    pressRealKey("g");
    ASSERT_TRUE(comesTo([this] { return panel()->isVisible() && panel()->isUpToDate(); }));
    untickAllBut("k");
    ASSERT_NO_FATAL_FAILURE(plotOverFrames(3));
    ASSERT_TRUE(comesTo([this] { return !shownValues().empty() && panel()->isUpToDate(); }));
    EXPECT_THAT(stack().getPlot().lines[0].x, ElementsAre(0, 2));
    ASSERT_TRUE(comesToShowFrame(0));
    EXPECT_TRUE(comesTo([this] { return shownValues() == std::vector<double>{3, 30}; }));
}

TEST_F(CurvePanelTest, AMarkStaysWhileOtherFramesAreShown)
{
    openWithPanel(seriesText(), "rods.json");
    untickAllBut("k");
    QCursor::setPos(ofPlace(0, 3));
    ASSERT_TRUE(comesTo([this] { return stack().getMark() == PlotPlace{0, 3}; }));
    ASSERT_TRUE(comesToShowFrame(2));
    ASSERT_TRUE(comesTo([this] { return shownValues().back() == 400; }));
    EXPECT_EQ(stack().getMark(), (PlotPlace{0, 3}));
    // A place of a curve is none of the frames.
    panel()->findChild<QComboBox*>("plotAxis")->setCurrentIndex(2);
    EXPECT_TRUE(comesTo([this] { return !stack().getMark(); }));
}

TEST_F(CurvePanelTest, NamesColoursAndHidingOfThingsAreThoseOfTheirCurves)
{
    openWithPanel(rodText(1), "rod.txt");
    untickAllBut("k");
    setThings("rod 1: name=arm, colour=red");
    ASSERT_TRUE(comesTo([this] { return stack().getPlot().lines.at(0).title == "arm"; }));
    EXPECT_EQ(stack().getPlot().lines[0].colour.red, 1);
    EXPECT_EQ(stack().getPlot().lines[0].colour.blue, 0);
    setThings("rod 1: hidden");
    EXPECT_TRUE(comesTo([this] { return stack().getPlot().lines.empty(); }));
    EXPECT_THAT(stack().getPlot().panels.at(0).values, IsEmpty());
    setThings("");
    EXPECT_TRUE(comesTo([this] { return stack().getPlot().lines.size() == 1; }));
}

// SoQt makes another widget for another kind of context.
TEST_F(CurvePanelTest, APlaceInTheSceneIsMarkedUntilTheMouseLeavesTheViewWhateverDrawsIt)
{
    openWithPanel(rodText(1), "rod.txt");
    const QPointer<QWidget> before = drawing()->getGLWidget();
    drawing()->setAccumulationBuffer(TRUE);
    ASSERT_NE(drawing()->getGLWidget(), before);
    ASSERT_TRUE(comesToBePainted());
    QCursor::setPos(onScreen(2.1, 0));
    ASSERT_TRUE(comesTo([this] { return stack().getMark() == PlotPlace{0, 2}; }));
    QCursor::setPos(window->mapToGlobal({200, 5})); // the menus
    EXPECT_TRUE(comesTo([this] { return !stack().getMark(); }));
}

TEST_F(CurvePanelTest, TitlesAreWholeInASmallWindowWithAllPanels)
{
    options.windowSize = {900, 600};
    openWithPanel(rodText(1), "rod.txt");
    for (const char* key : {"n", "t"})
        pressRealKey(key);
    ASSERT_TRUE(comesTo([this] {
        return window->findChild<PlacePanel*>()->isVisible() &&
               window->findChild<ThingsPanel*>()->isVisible();
    }));
    ASSERT_TRUE(comesToBePainted());
    std::vector<QRect> cut;
    int titles = 0;
    for (const QWidget* part : stack().findChildren<QWidget*>()) {
        if (!part->inherits("QwtTextLabel") || !part->isVisible())
            continue;
        ++titles;
        if (part->width() < part->sizeHint().width() || part->height() < part->sizeHint().height())
            cut.push_back(part->geometry());
    }
    EXPECT_EQ(titles, 2) << "curvature and torsion";
    EXPECT_THAT(cut, IsEmpty());
    const QWidget* const scrolled = stack().parentWidget();
    EXPECT_GE(scrolled->height(), 100) << "a panel with its title";
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
    openWithPanel(straightText(2500, 0), "long.txt");
    const QListWidgetItem* item = entry("writhe_density");
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

TEST_F(CurvePanelTest, NorCanThatOfManyRodsThatAreLongTogether)
{
    std::string text;
    for (int rod = 0; rod < 20; ++rod)
        text += straightText(500, rod) + "\n";
    openWithPanel(text, "many.txt");
    EXPECT_FALSE(entry("writhe_density")->flags() & Qt::ItemIsUserCheckable);
}

TEST_F(CurvePanelTest, ASlowScalarIsLeftOutOfFramesThatAreTooLong)
{
    openWithPanel(straightText(100, 0) + "\n\n" + straightText(2500, 0), "grows.txt");
    untickAllBut("writhe_density");
    ASSERT_TRUE(comesToShowFrame(1));
    EXPECT_TRUE(comesTo([this] { return shownPanels().empty(); }));
    EXPECT_FALSE(entry("writhe_density")->flags() & Qt::ItemIsUserCheckable);
    ASSERT_TRUE(comesToShowFrame(0));
    EXPECT_TRUE(
        comesTo([this] { return shownPanels() == std::vector<std::string>{"writhe_density"}; }));
}

} // namespace strandview
