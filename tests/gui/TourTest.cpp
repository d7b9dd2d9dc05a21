// SPDX-License-Identifier: GPL-3.0-or-later
// The pictures of the window that docs/window.md shows are what the window shows. With
// STRANDVIEW_TOUR=renew in the environment they are taken anew instead.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <QApplication>
#include <QCursor>
#include <QDir>
#include <QDockWidget>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPixmap>
#include <QRect>
#include <QScreen>
#include <QTest>
#include <QTreeView>
#include <gtest/gtest.h>

#include "DataWindowTest.h"
#include "User.h"
#include "plotting/PlotStack.h"
#include "scene/DataScene.h"
#include "scene/backbones.h"
#include "support/keepPictures.h"
#include "support/realInput.h"
#include "window/CurvePanel.h"
#include "window/MeasurementKeeper.h"
#include "window/PictureDialog.h"
#include "window/PlaceMarks.h"

namespace strandview {

namespace {

QString fileOf(const std::string& part)
{
    return QString(PROJECT_FOLDER) + "/docs/pictures/window_" + QString::fromStdString(part) +
           ".png";
}

// Of squares of some pixels, in which letters of another font are as grey as these.
QImage inSquares(const QImage& picture)
{
    return picture.convertToFormat(QImage::Format_RGB32)
        .scaled(picture.width() / 20, picture.height() / 20, Qt::IgnoreAspectRatio,
                Qt::SmoothTransformation);
}

// The share of squares that look otherwise.
double shareOfOthers(const QImage& first, const QImage& second)
{
    if (first.size() != second.size())
        return 1;
    const QImage a = inSquares(first), b = inSquares(second);
    int others = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QColor one = a.pixelColor(x, y), other = b.pixelColor(x, y);
            others += std::abs(one.red() - other.red()) > 40 ||
                      std::abs(one.green() - other.green()) > 40 ||
                      std::abs(one.blue() - other.blue()) > 40;
        }
    }
    return double(others) / (a.width() * a.height());
}

const double MOST_OTHERS = 0.03;

const QRect ROOM_OF_MENU(0, 0, 480, 240);

class TourTest : public DataWindowTest
{
protected:
    static void SetUpTestSuite()
    {
        QDir::setCurrent(PROJECT_FOLDER); // files are told by the names that they are opened by
        DataWindowTest::SetUpTestSuite();
    }
    TourTest() { options.windowSize = {960, 640}; }

    void openSample(const std::string& name)
    {
        open("data/" + name);
        ASSERT_TRUE(comesToBePainted());
    }
    // A key that opens a panel.
    void press(const char* key, const char* part) const
    {
        pressRealKey(key);
        ASSERT_TRUE(comesTo([&] { return window->findChild<QWidget*>(part)->isVisible(); }));
        ASSERT_TRUE(comesToRest());
    }
    bool comesToRest() const
    {
        std::vector<QRect> last;
        int same = 0;
        return comesTo([&] {
                   std::vector<QRect> now{QRect(view()->mapToGlobal({0, 0}), view()->size())};
                   for (const QDockWidget* dock : window->findChildren<QDockWidget*>())
                       now.emplace_back(dock->mapToGlobal({0, 0}), dock->size());
                   same = std::exchange(last, now) == now && !window->isRestyling() ? same + 1 : 0;
                   return same > 5;
               }) &&
               comesToBePainted();
    }
    // The window, and what is in front of it.
    QImage seen() const
    {
        const QPoint corner = window->mapToGlobal({0, 0});
        return window->screen()
            ->grabWindow(0, corner.x(), corner.y(), window->width(), window->height())
            .toImage();
    }
    // Moves the mouse away, and compares.
    void compareWithoutMouse(const std::string& part, const QRect& room = {}) const
    {
        QCursor::setPos(window->mapToGlobal({window->width() / 2, window->height() - 3}));
        compare(part, room);
    }
    // All of the window, or that part of it.
    void compare(const std::string& part, const QRect& room = {}) const
    {
        QTest::qWait(600); // nothing is told at the mouse any more
        const QImage picture = room.isNull() ? seen() : seen().copy(room);
        const char* const wish = std::getenv("STRANDVIEW_TOUR");
        if (wish && std::string(wish) == "renew") {
            ASSERT_TRUE(picture.save(fileOf(part), nullptr, 0));
            return;
        }
        const QImage expected(fileOf(part));
        ASSERT_FALSE(expected.isNull()) << fileOf(part).toStdString();
        keepIfFailed(picture.convertToFormat(QImage::Format_RGB32),
                     expected.convertToFormat(QImage::Format_RGB32));
        EXPECT_LE(shareOfOthers(picture, expected), MOST_OTHERS);
    }
    void type(const char* field, const std::vector<std::string>& keys) const
    {
        ASSERT_NO_FATAL_FAILURE(typeInto(*window->findChild<QLineEdit*>(field), keys));
        pressRealKey("Return");
        ASSERT_TRUE(comesToRest());
    }
};

} // namespace

TEST_F(TourTest, TheLookOfThings)
{
    openSample("trefoil.txt");
    press("o", "radius");
    type("radiusField", {"0", "period", "2", "2"});
    compareWithoutMouse("look");
}

TEST_F(TourTest, TheColoursOfData)
{
    options.colourBy = "curvature";
    options.showRibbon = false;
    openSample("trefoil.txt");
    press("c", "colour-by");
    compareWithoutMouse("colours");
}

TEST_F(TourTest, TheHandlesOfAClippingPlane)
{
    options.clip = parseClipPlane("x");
    openSample("supercoil.txt");
    pressRealKey("slash");
    ASSERT_TRUE(comesToRest());
    compareWithoutMouse("clip");
}

TEST_F(TourTest, TheListOfThings)
{
    openSample("rods.json");
    press("t", "thingsList");
    auto* const list = window->findChild<QTreeView*>("thingsList");
    const QModelIndex file = list->model()->index(0, 0);
    click(*list->viewport(), list->visualRect(list->model()->index(1, 0, file)).center());
    ASSERT_TRUE(comesTo([&] { return list->selectionModel()->hasSelection(); }));
    ASSERT_TRUE(comesToRest());
    compareWithoutMouse("things");
}

TEST_F(TourTest, MeasurementsThatAreKept)
{
    options.camera.side = Side::Z;
    options.camera.zoom = 3;
    openSample("dna.txt");
    press("n", "measurementList");
    const Dna& dna = scene->getData()->dnas.at(0);
    // On the side that is seen, in the middle, and what is opposite it across a groove.
    const auto nearest = [&](Strand strand, double from, double to) {
        auto all = idealBackbone(dna, strand, 1);
        all.erase(std::remove_if(all.begin(), all.end(),
                                 [=](const auto& p) { return p.x < from || p.x > to; }),
                  all.end());
        return *std::max_element(all.begin(), all.end(),
                                 [](const auto& a, const auto& b) { return a.z < b.z; });
    };
    const double middle = window->getCameraNumbers().position[0];
    const auto first = nearest(Strand::FIRST, middle - 20, middle + 20);
    const auto second = nearest(Strand::SECOND, first.x, first.x + 30);
    click(first.x, first.y);
    ASSERT_TRUE(comesTo([this] { return window->getMarks().countPlaces() == 1; }));
    shiftClick(second.x, second.y);
    ASSERT_TRUE(comesTo([this] { return window->getMarks().countPlaces() == 2; }));
    pressRealKey("m");
    ASSERT_TRUE(comesTo([this] { return window->getMeasurements().get().size() == 1; }));
    compareWithoutMouse("measurements");
}

TEST_F(TourTest, TheCurvesOfNumbers)
{
    openSample("trefoil.txt");
    press("g", "plotScalars");
    auto* const panel = window->findChild<CurvePanel*>();
    ASSERT_TRUE(comesTo([&] { return panel->isUpToDate(); }));
    const QPoint place = panel->getStack().mapToGlobal(panel->getStack().positionOf(0, {0, 60}));
    clickRealButton(place.x(), place.y());
    ASSERT_TRUE(comesTo([this] { return window->getMarks().countPlaces() == 1; }));
    compare("curves");
}

TEST_F(TourTest, FourViews)
{
    openSample("trefoil.txt");
    pressRealKey("Control+F3");
    ASSERT_TRUE(comesTo([this] { return sceneBeside(2) && sceneBeside(1) && sceneBeside(0); }));
    ASSERT_TRUE(comesToRest());
    compareWithoutMouse("views");
}

TEST_F(TourTest, TheMenuOfWhatCanBeTakenBack)
{
    openSample("trefoil.txt");
    press("o", "radius");
    type("radiusField", {"0", "period", "2", "2"});
    pressRealKey("Escape");
    ASSERT_TRUE(comesTo([this] { return view()->hasFocus(); }));
    pressRealKey("Alt+e");
    ASSERT_TRUE(comesTo([] { return QApplication::activePopupWidget() != nullptr; }));
    compareWithoutMouse("undo", ROOM_OF_MENU);
    pressRealKey("Escape");
    EXPECT_TRUE(comesTo([] { return QApplication::activePopupWidget() == nullptr; }));
}

TEST_F(TourTest, TheDialogOfAPicture)
{
    openSample("trefoil.txt");
    const auto dialog = [] {
        return qobject_cast<PictureDialog*>(QApplication::activeModalWidget());
    };
    const User user(
        {{[&] { return dialog() && dialog()->isActiveWindow(); },
          [&] {
              for (const char* key : {"8", "5", "space", "m", "m", "Tab"})
                  pressRealKey(key);
              auto* const preview = dialog()->findChild<QLabel*>("picturePreview");
              EXPECT_TRUE(comesTo([&] { return preview->pixmap(Qt::ReturnByValue).width() > 0; }));
              compareWithoutMouse("picture");
              pressRealKey("Escape");
          }}});
    pressRealKey("Control+p");
    ASSERT_TRUE(comesTo([&] { return user.isDone() && !dialog(); }));
}

// Of one part each, and the same without its menu.
TEST(TourPictures, OfOtherPartsAreNotTakenForAlike)
{
    const QImage look(fileOf("look"));
    EXPECT_GT(shareOfOthers(look, QImage(fileOf("colours"))), MOST_OTHERS);
    EXPECT_GT(shareOfOthers(look.copy(ROOM_OF_MENU), QImage(fileOf("undo"))), MOST_OTHERS);
    EXPECT_EQ(shareOfOthers(look, look), 0);
}

} // namespace strandview
