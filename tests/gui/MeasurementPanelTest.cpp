// SPDX-License-Identifier: GPL-3.0-or-later
// The list of measurements as the user of a window has it: with the X server's keys and mouse.
#include "window/MeasurementPanel.h"

#include <fstream>
#include <iterator>

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>
#include <gmock/gmock.h>

#include "DataWindowTest.h"
#include "User.h"
#include "scene/DataScene.h"
#include "support/realInput.h"
#include "window/MeasurementKeeper.h"
#include "window/PlaceMarks.h"
#include "window/Player.h"

namespace strandview {

using testing::HasSubstr;
using testing::IsEmpty;

namespace {

// Along x from 0 to 4, the last but one `height` above the others.
std::string rodText(double height)
{
    std::string text;
    for (int i = 0; i < 5; ++i)
        text += std::to_string(i) + " " + std::to_string(i == 3 ? height : 0.0) + " 0\n";
    return text;
}

bool isBlue(const QColor& c) { return c.red() < 160 && c.green() > 190 && c.blue() > 230; }

class MeasurementPanelTest : public DataWindowTest
{
protected:
    MeasurementPanelTest()
    {
        options.windowSize = {1000, 640};
        options.radius = 0.3;
        options.tubeColour = Colour{1, 0, 0};
        options.showRibbon = false;
        options.camera.side = Side::Z;
    }

    void openWithPanel(const std::string& text)
    {
        ASSERT_NO_FATAL_FAILURE(openText(text, "rod.txt"));
        showNumbers();
    }
    // From one point of the rod to another.
    void measure(double from, double to)
    {
        click(from, 0);
        ASSERT_TRUE(comesTo([this] { return window->getMarks().countPlaces() == 1; }));
        shiftClick(to, 0);
        ASSERT_TRUE(comesTo([this] { return window->getMarks().countPlaces() == 2; }));
    }
    void keep(double from, double to)
    {
        const std::size_t before = kept().size();
        ASSERT_NO_FATAL_FAILURE(measure(from, to));
        pressRealKey("m");
        ASSERT_TRUE(comesTo([&] { return kept().size() == before + 1; }));
    }

    MeasurementPanel* panel() const { return window->findChild<MeasurementPanel*>(); }
    QTreeWidget* list() const { return panel()->findChild<QTreeWidget*>("measurementList"); }
    QPushButton* button(const char* name) const { return panel()->findChild<QPushButton*>(name); }
    const std::vector<Measurement>& kept() const { return window->getMeasurements().get(); }
    std::string listed(int row, int column) const
    {
        const QTreeWidgetItem* const item = list()->topLevelItem(row);
        return item ? item->text(column).toStdString() : "none";
    }
    // Of an item, where its name is.
    QPoint nameOf(int row) const
    {
        const QRect place = list()->visualItemRect(list()->topLevelItem(row));
        return {place.left() + 40, place.center().y()};
    }
    bool hasBlue() const { return countPixels(screen(), isBlue) > 20; }
};

} // namespace

TEST_F(MeasurementPanelTest, WhatIsMeasuredIsKeptByAKeyAndStaysInListAndView)
{
    openWithPanel(rodText(0));
    EXPECT_FALSE(button("keepMeasurementButton")->isEnabled()) << "nothing is measured";
    ASSERT_NO_FATAL_FAILURE(keep(1, 3));
    EXPECT_EQ(textOf(kept()[0]), "distance rod 1:1,rod 1:3");
    EXPECT_EQ(listed(0, 0), "distance");
    EXPECT_EQ(listed(0, 1), "2");
    EXPECT_EQ(listed(0, 2), "rod 1:1, rod 1:3");
    EXPECT_THAT(statusText(), HasSubstr("Kept: distance 2"));
    EXPECT_EQ(window->getMarks().countPlaces(), 0) << "the next one begins anew";
    EXPECT_TRUE(comesTo([this] { return hasBlue(); }));
    pressRealKey("n");
    ASSERT_TRUE(comesTo([this] { return !panel()->isVisible(); }));
    ASSERT_TRUE(comesToBePainted());
    EXPECT_TRUE(hasBlue()) << "without the panel, too";
}

TEST_F(MeasurementPanelTest, WithoutAMeasurementTheKeySaysHowToMeasure)
{
    openWithPanel(rodText(0));
    click(1, 0);
    ASSERT_TRUE(comesTo([this] { return window->getMarks().countPlaces() == 1; }));
    pressRealKey("m");
    EXPECT_TRUE(comesTo([this] { return statusText().find("Nothing is measured") == 0; }));
    EXPECT_THAT(kept(), IsEmpty());
}

TEST_F(MeasurementPanelTest, OfTwoPlacesTheKindCanBeChosenAndTheButtonKeepsIt)
{
    openWithPanel(rodText(0));
    ASSERT_NO_FATAL_FAILURE(measure(1, 3));
    auto* const kinds = panel()->findChild<QComboBox*>("measureKind");
    ASSERT_EQ(kinds->count(), 3);
    kinds->setCurrentText("arc length");
    click(*button("keepMeasurementButton"));
    ASSERT_TRUE(comesTo([this] { return kept().size() == 1; }));
    EXPECT_EQ(kept()[0].kind, MeasureKind::ARC_LENGTH);
    EXPECT_EQ(kinds->count(), 0);
}

TEST_F(MeasurementPanelTest, ATickHidesOneAndShowsItAgain)
{
    openWithPanel(rodText(0));
    ASSERT_NO_FATAL_FAILURE(keep(1, 3));
    ASSERT_TRUE(comesTo([this] { return hasBlue(); }));
    const QRect row = list()->visualItemRect(list()->topLevelItem(0));
    const QPoint tick(row.left() + 10, row.center().y());
    click(*list()->viewport(), tick);
    ASSERT_TRUE(comesTo([this] { return !kept()[0].isShown; }));
    EXPECT_TRUE(comesTo([this] { return !hasBlue(); }));
    click(*list()->viewport(), tick);
    EXPECT_TRUE(comesTo([this] { return kept()[0].isShown && hasBlue(); }));
}

TEST_F(MeasurementPanelTest, OneThatIsChosenIsYellowInTheViewAndDelDeletesIt)
{
    openWithPanel(rodText(0));
    ASSERT_NO_FATAL_FAILURE(keep(1, 3));
    ASSERT_NO_FATAL_FAILURE(keep(1, 2));
    ASSERT_TRUE(comesTo([this] { return countPixels(screen(), isYellow) == 0; }));
    click(*list()->viewport(), nameOf(0));
    EXPECT_TRUE(comesTo([this] { return countPixels(screen(), isYellow) > 20; }));
    pressRealKey("Delete");
    ASSERT_TRUE(comesTo([this] { return kept().size() == 1; }));
    EXPECT_EQ(textOf(kept()[0]), "distance rod 1:1,rod 1:2");
    EXPECT_EQ(listed(0, 2), "rod 1:1, rod 1:2");
    EXPECT_TRUE(comesTo([this] { return countPixels(screen(), isYellow) == 0 && hasBlue(); }));
}

TEST_F(MeasurementPanelTest, ADoubleClickNamesOne)
{
    openWithPanel(rodText(0));
    ASSERT_NO_FATAL_FAILURE(keep(1, 3));
    click(*list()->viewport(), nameOf(0));
    click(*list()->viewport(), nameOf(0));
    ASSERT_TRUE(comesTo([this] { return list()->findChild<QLineEdit*>(); }));
    pressRealKey("g");
    pressRealKey("o");
    pressRealKey("Return");
    EXPECT_TRUE(comesTo([this] { return kept()[0].name == "go"; }));
    EXPECT_EQ(listed(0, 0), "go");
}

TEST_F(MeasurementPanelTest, UndoTakesBackWhatWasKeptAndDeleted)
{
    openWithPanel(rodText(0));
    ASSERT_NO_FATAL_FAILURE(keep(1, 3));
    pressRealKey("Control+z");
    EXPECT_TRUE(comesTo([this] { return kept().empty(); }));
    pressRealKey("Control+Shift+z");
    EXPECT_TRUE(comesTo([this] { return kept().size() == 1 && listed(0, 1) == "2"; }));
}

TEST_F(MeasurementPanelTest, InOtherFramesAndReadAgainTheyFollowTheirPlaces)
{
    openWithPanel(rodText(0) + "\n\n" + rodText(1.5) + "\n\n" + rodText(0).substr(0, 3 * 13));
    ASSERT_NE(player(), nullptr);
    ASSERT_TRUE(comesTo([this] { return player()->isStaged(); }));
    ASSERT_TRUE(comesToBePainted());
    ASSERT_NO_FATAL_FAILURE(keep(1, 3));
    EXPECT_EQ(listed(0, 1), "2");
    pressRealKey("period");
    EXPECT_TRUE(comesTo([this] { return listed(0, 1) == "2.5"; }));
    pressRealKey("period");
    EXPECT_TRUE(comesTo([this] { return listed(0, 1) == "not here"; })) << "of fewer points";
    EXPECT_TRUE(comesTo([this] { return !hasBlue(); }));

    const std::string table = folder.path() + "/measured.csv";
    EXPECT_EQ(window->getMeasurements().save(table), "");
    std::ifstream stream(table);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(stream), {}),
              "frame,\"distance rod 1:1,rod 1:3 [length]\"\n0,2\n1,2.5\n2,\n");

    pressRealKey("comma");
    ASSERT_TRUE(comesTo([this] { return listed(0, 1) == "2.5"; }));
    folder.write("rod.txt", rodText(0));
    pressRealKey("F5");
    EXPECT_TRUE(comesTo([this] { return listed(0, 1) == "2"; }));
    window->openFiles({QString::fromStdString(folder.write("another.txt", rodText(0)))});
    EXPECT_TRUE(comesTo([this] { return kept().empty() && list()->topLevelItemCount() == 0; }))
        << "of other files";
}

TEST_F(MeasurementPanelTest, TheListIsCopiedWithTabs)
{
    openWithPanel(rodText(0));
    ASSERT_NO_FATAL_FAILURE(keep(1, 3));
    ASSERT_NO_FATAL_FAILURE(keep(2, 3));
    click(*button("copyMeasurementsButton"));
    EXPECT_TRUE(comesTo([] {
        return QApplication::clipboard()->text() == "\tdistance\trod 1:1, rod 1:3\t2\n"
                                                    "\tdistance\trod 1:2, rod 1:3\t1\n";
    }));
    click(*list()->viewport(), nameOf(1));
    ASSERT_TRUE(comesTo([this] { return list()->hasFocus() && panel()->chosen().count(1) > 0; }));
    pressRealKey("Control+c");
    EXPECT_TRUE(comesTo(
        [] { return QApplication::clipboard()->text() == "\tdistance\trod 1:2, rod 1:3\t1\n"; }));
}

TEST_F(MeasurementPanelTest, ItsFileIsOfferedWhereTheDataAre)
{
    openWithPanel(rodText(0));
    ASSERT_NO_FATAL_FAILURE(keep(1, 3));
    const auto dialog = [] {
        return qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
    };
    std::string place;
    const User user({{[&] { return dialog() && dialog()->isActiveWindow(); },
                      [&] {
                          place = dialog()->directory().absolutePath().toStdString();
                          pressRealKey("Escape");
                      }}});
    click(*button("saveMeasurementsButton"));
    ASSERT_TRUE(comesTo([&] { return user.isDone() && !dialog(); }));
    EXPECT_EQ(place, folder.path());
}

TEST_F(MeasurementPanelTest, OfWhatIsHiddenIsNotShownAndNoneIsInAPictureOfTheView)
{
    openWithPanel(rodText(0));
    const QString picture = QString::fromStdString(folder.path("view.png"));
    window->savePicture(picture);
    const QImage without(picture);
    ASSERT_FALSE(without.isNull());
    ASSERT_NO_FATAL_FAILURE(keep(1, 3));
    ASSERT_TRUE(comesTo([this] { return hasBlue(); }));
    window->savePicture(picture);
    EXPECT_TRUE(QImage(picture) == without);
    setThings("rod 1: hidden");
    EXPECT_TRUE(comesTo([this] { return !hasBlue(); }));
    setThings("");
    EXPECT_TRUE(comesTo([this] { return hasBlue(); }));
    setThings("rod 1: deleted");
    EXPECT_TRUE(comesTo([this] { return !hasBlue(); }));
}

// Three clicks and a key: the panel, a phosphorus on either side, and it is kept.
TEST_F(MeasurementPanelTest, AGrooveIsMeasuredBetweenTwoBackbonesInAngstrom)
{
    options.tubeColour.reset();
    options.radius.reset();
    options.dna.bases = false;
    open(std::string(SAMPLES_FOLDER) + "/dna.txt");
    ASSERT_NO_FATAL_FAILURE(showNumbers());
    const auto [first, second] = acrossGroove();
    click(first.x, first.y);
    ASSERT_TRUE(comesTo([this] { return window->getMarks().countPlaces() == 1; }));
    shiftClick(second.x, second.y);
    ASSERT_TRUE(comesTo([this] { return window->getMarks().countPlaces() == 2; }));
    pressRealKey("m");
    ASSERT_TRUE(comesTo([this] { return kept().size() == 1; }));
    EXPECT_EQ(listed(0, 1), readable((first - second).getNorm()) + " Å");
    EXPECT_THAT(listed(0, 2), testing::MatchesRegex("DNA 1 backbone 1:[0-9]+, DNA 1 backbone "
                                                    "2:[0-9]+"));
}

} // namespace strandview
