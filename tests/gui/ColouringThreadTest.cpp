// SPDX-License-Identifier: GPL-3.0-or-later
// Which thread of the program makes the colours of rows: see app/scene/RowColours.h.
#include <atomic>
#include <string>
#include <thread>

#include <dlfcn.h>
#include <gsl/gsl_spline.h>
#include <gtest/gtest.h>

#include "DataWindowTest.h"
#include "request/BesideRequest.h"
#include "request/ColourMap.h"
#include "scene/DataScene.h"
#include "window/Player.h"

namespace {

std::thread::id windowThread;
std::atomic<int> inWindow{0}, beside{0}; // splines through the places of points

} // namespace

// The program's own, which the libraries find before GSL's.
extern "C" __attribute__((visibility("default"))) int
gsl_spline_init(gsl_spline* spline, const double* x, const double* y, size_t size)
{
    ++(std::this_thread::get_id() == windowThread ? inWindow : beside);
    static const auto next =
        reinterpret_cast<decltype(&gsl_spline_init)>(dlsym(RTLD_NEXT, "gsl_spline_init"));
    return next(spline, x, y, size);
}

namespace strandview {

namespace {

class ColouringThreadTest : public DataWindowTest
{
protected:
    ColouringThreadTest()
    {
        windowThread = std::this_thread::get_id();
        options.colourBy = "curvature";
    }

    static std::string rod(int points)
    {
        std::string text;
        for (int i = 0; i < points; ++i)
            text += std::to_string(i) + " " + std::to_string(i * i % 7) + " 0\n";
        return text;
    }

    void show(const StyleRequest& style)
    {
        window->setStyle(style);
        EXPECT_TRUE(comesTo([this] { return !window->isRestyling(); }));
    }

    static void expectBeside()
    {
        EXPECT_EQ(inWindow, 0);
        EXPECT_GT(beside.exchange(0), 0);
    }
};

TEST_F(ColouringThreadTest, IsNotThatOfTheWindow)
{
    inWindow = beside = 0;
    ASSERT_NO_FATAL_FAILURE(openText(rod(200), "rod.txt"));
    expectBeside();
    StyleRequest style = window->getStyle();
    style.colours = findColourMap("cividis");
    show(style);
    expectBeside();
    style.colourBy = "arclength";
    show(style);
    expectBeside();
    style.rangeMin = 0;
    style.rangeMax = 50;
    show(style);
    expectBeside();
    style.radius = 0.5;
    show(style);
    expectBeside();
}

TEST_F(ColouringThreadTest, OfFurtherViewsIsNeither)
{
    ASSERT_NO_FATAL_FAILURE(openText(rod(200), "rod.txt"));
    inWindow = beside = 0;
    window->setBeside(besideOf({folder.write("other.txt", rod(150))}));
    ASSERT_TRUE(comesTo([this] { return sceneBeside(); }));
    expectBeside();
}

TEST_F(ColouringThreadTest, OfFurtherViewsOfTheSameIsNone)
{
    ASSERT_NO_FATAL_FAILURE(openText(rod(200), "rod.txt"));
    inWindow = beside = 0;
    window->setBeside(fourOfTheSame());
    ASSERT_TRUE(comesTo([this] { return sceneBeside(2); }));
    EXPECT_EQ(inWindow + beside, 0);
}

TEST_F(ColouringThreadTest, OfFramesThatPlayIsNeither)
{
    for (const bool isOwn : {false, true}) {
        options.ownRange = isOwn;
        ASSERT_NO_FATAL_FAILURE(openText(rod(50) + "\n\n" + rod(60) + "\n\n" + rod(70), "run.txt"));
        ASSERT_TRUE(comesTo([this] { return player()->isStaged() && player()->isUpToDate(); }));
        inWindow = beside = 0;
        player()->goTo(2);
        ASSERT_TRUE(comesTo([this] { return player()->getFrame() == 2; }));
        EXPECT_EQ(scene->getData()->rods.front().points.size(), 70u);
        expectBeside();
    }
}

} // namespace

} // namespace strandview
