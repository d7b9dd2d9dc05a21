// SPDX-License-Identifier: GPL-3.0-or-later
#include "MainWindow.h"

#include <cmath>
#include <functional>

#include <QApplication>
#include <QImage>
#include <QPixmap>
#include <QScreen>
#include <QTimer>
#include <QWidget>
#include <gtest/gtest.h>

#include "DataScene.h"
#include "Progress.h"
#include "SceneBuilder.h"
#include "checkDisplay.h"

namespace {

Configuration straightRod()
{
    // Across the view; d2 is y.
    Rod rod;
    const double s = std::sqrt(0.5);
    for (int i = 0; i < 3; ++i) {
        rod.points.emplace_back(i, 0, 0);
        rod.rotations.emplace_back(0, s, 0, s);
    }
    return {{rod}};
}

QImage screenshot(const QWidget& widget)
{
    return widget.screen()
        ->grabWindow(0, widget.x(), widget.y(), widget.width(), widget.height())
        .toImage();
}

int pixelsOf(const QImage& picture) { return picture.width() * picture.height(); }

bool isRed(const QColor& colour)
{
    return colour.red() > 100 && colour.green() < colour.red() / 2 && colour.blue() < 120;
}

int count(const QImage& picture, const std::function<bool(QColor)>& holds)
{
    int pixels = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            pixels += holds(picture.pixelColor(x, y));
    }
    return pixels;
}

TEST(MainWindow, ShowsTheSceneOnTheBackgroundUntilItIsClosed)
{
    ASSERT_EQ(checkDisplay(), "");
    initialiseWindows("MainWindowTest");
    initialiseScene();
    Options options;
    options.radius = 0.2;
    options.tubeColour = Colour{1, 0, 0};
    options.showRibbon = false;
    Progress progress;
    std::string error;
    options.background = {0, 0, 1};
    DataScene* scene =
        buildScene(straightRod(), makeStyle(options, straightRod()), nullptr, progress, error);
    ASSERT_NE(scene, nullptr) << error;

    // Looks until the rod is there, for at most a minute.
    QString title;
    QImage picture;
    QTimer timer;
    int looks = 0;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (!widget->isVisible())
                continue;
            title = widget->windowTitle();
            picture = screenshot(*widget);
            if (count(picture, isRed) > pixelsOf(picture) / 30 || ++looks == 300)
                widget->close();
        }
    });
    timer.start(200);
    options.files = {"straight.txt"};
    EXPECT_EQ(runWindow(options, scene, nullptr), "");

    EXPECT_EQ(title, "straight.txt - strandview");
    ASSERT_GE(picture.width(), 600);
    // The rod is a tenth of the view; the viewer's own decoration takes some of the rest.
    EXPECT_GT(count(picture, isRed), pixelsOf(picture) / 30);
    EXPECT_GT(count(picture, [](const QColor& c) { return c == QColor(0, 0, 255); }),
              pixelsOf(picture) / 3);
}

} // namespace
