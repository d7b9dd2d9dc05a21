// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/AxisCross.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <memory>

#include <Inventor/SbColor.h>
#include <Inventor/SoOffscreenRenderer.h>
#include <Inventor/nodes/SoCube.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoSeparator.h>
#include <OffscreenContext.h>
#include <QColor>
#include <QImage>
#include <gtest/gtest.h>

#include "support/initialiseSceneOnce.h"
#include "support/keepPictures.h"

namespace strandview {

namespace {

const int WIDTH = 200, HEIGHT = 150;

bool isRed(const QColor& c) { return c.red() > 180 && c.green() < 90 && c.blue() < 90; }
bool isGreen(const QColor& c) { return c.green() > 110 && c.red() < 60 && c.blue() < 60; }
bool isBlue(const QColor& c) { return c.blue() > 220 && c.red() < 90 && c.green() < 130; }

// Of sRGB, as accessibility guidelines compute it.
double luminance(const QColor& colour)
{
    const auto linear = [](double v) {
        return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

class AxisCrossTest : public testing::Test
{
protected:
    AxisCrossTest()
    {
        initialiseSceneOnce();
        OffscreenContext::install();
        root = new SoSeparator;
        root->ref();
        cross = std::make_unique<AxisCross>();
        cross->setView(SbVec2s(WIDTH, HEIGHT), 1);
        root->addChild(cross->getNode());
    }
    ~AxisCrossTest() override { root->unref(); }

    QImage render(const SbColor& background = SbColor(1, 1, 1))
    {
        SoOffscreenRenderer renderer(SbViewportRegion(WIDTH, HEIGHT));
        renderer.setBackgroundColor(background);
        EXPECT_TRUE(renderer.render(root));
        const QImage upsideDown(renderer.getBuffer(), WIDTH, HEIGHT, 3 * WIDTH,
                                QImage::Format_RGB888);
        return keepIfFailed(upsideDown.mirrored());
    }

    // The box of the pixels for which something holds; null if none.
    static QRect boxOf(const QImage& picture, const std::function<bool(QColor)>& holds)
    {
        QRect box;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                if (holds(picture.pixelColor(x, y)))
                    box |= QRect(x, y, 1, 1);
            }
        }
        return box;
    }

    SoSeparator* root;
    std::unique_ptr<AxisCross> cross;
};

// The middle of the cross.
const QPoint ORIGIN(WIDTH - int(AxisCross::HALF_SIDE), HEIGHT - int(AxisCross::HALF_SIDE));

TEST_F(AxisCrossTest, XIsRedToTheRightYGreenUpwardsAndZBlueAtTheOrigin)
{
    const QImage picture = render();
    const QRect red = boxOf(picture, isRed), green = boxOf(picture, isGreen),
                blue = boxOf(picture, isBlue);
    EXPECT_NEAR(red.right() - ORIGIN.x(), 40, 2) << "axis and letter";
    EXPECT_NEAR(red.center().y(), ORIGIN.y(), 2);
    EXPECT_NEAR(ORIGIN.y() - green.top(), 40, 2);
    EXPECT_NEAR(green.center().x(), ORIGIN.x(), 2);
    EXPECT_LT(std::abs(blue.center().x() - ORIGIN.x()), 15);
    EXPECT_LT(std::abs(blue.center().y() - ORIGIN.y()), 15);
}

TEST_F(AxisCrossTest, TurnsAsTheSceneIsSeen)
{
    // From the side of x with z up: y to the right.
    auto* camera = new SoOrthographicCamera;
    camera->ref();
    camera->position = SbVec3f(5, 0, 0);
    camera->pointAt(SbVec3f(0, 0, 0), SbVec3f(0, 0, 1));
    cross->setOrientation(camera->orientation.getValue());
    camera->unref();
    const QImage picture = render();
    EXPECT_NEAR(boxOf(picture, isGreen).right() - ORIGIN.x(), 40, 2);
    EXPECT_NEAR(ORIGIN.y() - boxOf(picture, isBlue).top(), 40, 2);
    EXPECT_LT(boxOf(picture, isRed).width(), 20);
}

TEST_F(AxisCrossTest, StaysInsideItsSquareInTheCornerHoweverItIsTurned)
{
    const QRect square(ORIGIN.x() - int(AxisCross::HALF_SIDE),
                       ORIGIN.y() - int(AxisCross::HALF_SIDE), 2 * int(AxisCross::HALF_SIDE),
                       2 * int(AxisCross::HALF_SIDE));
    for (int turn = 0; turn < 12; ++turn) {
        cross->setOrientation(SbRotation(SbVec3f(1, float(turn), 0.3f), 0.5f * float(turn)));
        const QImage picture = render();
        const QRect all = boxOf(picture, [](const QColor& c) { return c != QColor(Qt::white); });
        EXPECT_FALSE(all.isNull());
        EXPECT_TRUE(square.contains(all)) << turn;
    }
}

TEST_F(AxisCrossTest, EachAxisIsReadOnWhiteAndOnBlack)
{
    for (const float background : {0.0f, 1.0f}) {
        const QImage picture = render(SbColor(background, background, background));
        for (const auto& isIt : {isRed, isGreen, isBlue}) {
            const QRect box = boxOf(picture, isIt);
            ASSERT_FALSE(box.isNull());
            // The commonest of its pixels: its edges are mixed with the background.
            std::map<QRgb, int> counts;
            for (int y = box.top(); y <= box.bottom(); ++y) {
                for (int x = box.left(); x <= box.right(); ++x) {
                    if (isIt(picture.pixelColor(x, y)))
                        ++counts[picture.pixel(x, y)];
                }
            }
            const auto commonest =
                std::max_element(counts.begin(), counts.end(),
                                 [](const auto& a, const auto& b) { return a.second < b.second; });
            const double light = luminance(QColor(commonest->first));
            const double contrast = (std::max(light, double(background)) + 0.05) /
                                    (std::min(light, double(background)) + 0.05);
            EXPECT_GE(contrast, 3) << QColor(commonest->first).name().toStdString();
        }
    }
}

TEST_F(AxisCrossTest, IsTwiceAsLargeWhereThePixelsAreHalfAsLarge)
{
    cross->setView(SbVec2s(WIDTH, HEIGHT), 2);
    EXPECT_NEAR(boxOf(render(), isRed).width(), 2 * 40, 6);
}

TEST_F(AxisCrossTest, StandsBesideALegendAtTheRightThatReachesIt)
{
    const int alone = boxOf(render(), isRed).right();
    cross->setLegendRoom({0, 0, 0, 0.2f});
    EXPECT_NEAR(alone - boxOf(render(), isRed).right(), 0.2f * HEIGHT, 1);
    cross->setView(SbVec2s(WIDTH, 6 * WIDTH), 1); // high enough for both
    EXPECT_NEAR(boxOf(render(), isRed).right(), alone, 2);
}

TEST_F(AxisCrossTest, IsHiddenByTheSceneAndOnRequest)
{
    auto* camera = new SoOrthographicCamera;
    camera->position = SbVec3f(0, 0, 5);
    camera->height = 0.1f; // inside the cube's face
    root->addChild(camera);
    root->addChild(new SoCube);
    EXPECT_TRUE(boxOf(render(), isRed).isNull());
    root->removeChild(2);
    EXPECT_FALSE(boxOf(render(), isRed).isNull());
    cross->show(false);
    EXPECT_TRUE(boxOf(render(), isRed).isNull());
    EXPECT_FALSE(cross->isShown());
    cross->show(true);
    EXPECT_FALSE(boxOf(render(), isRed).isNull());
}

} // namespace

} // namespace strandview
