// SPDX-License-Identifier: GPL-3.0-or-later
// A session that the window saves brings all of it back, in a window and in a picture.
#include "window/SessionKeeper.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QTest>
#include <QTimer>
#include <gmock/gmock.h>

#include "DataWindowTest.h"
#include "User.h"
#include "request/settings.h"
#include "scene/DataScene.h"
#include "support/realInput.h"
#include "support/runProgram.h"
#include "window/MeasurementKeeper.h"
#include "window/NamedViews.h"
#include "window/Player.h"
#include "window/SideBySide.h"

namespace strandview {

namespace fs = std::filesystem;

using testing::HasSubstr;
using testing::StartsWith;

namespace {

const char* const RODS = "-1 0 0\n0 0.3 0\n1 0 0\n\n-1 1 0\n0 1.1 0\n1 1 0\n";
const char* const FRAMES = "t x y z\n0 0 0 0\n0 1 0 0\n0 2 0.3 0\n1 0 0 0\n1 1 0.2 0\n1 2 0 0\n"
                           "2 0 0 0\n2 1 0.4 0\n2 2 0 0\n";

const std::string SAVED = "Saved \xe2\x80\x93 ";

int countDifferent(const QImage& a, const QImage& b)
{
    EXPECT_EQ(a.size(), b.size());
    int pixels = 0;
    for (int y = 0; y < std::min(a.height(), b.height()); ++y)
        for (int x = 0; x < std::min(a.width(), b.width()); ++x)
            pixels += a.pixel(x, y) != b.pixel(x, y);
    return pixels;
}

class SessionKeeperTest : public DataWindowTest
{
protected:
    void save(const std::string& name) const
    {
        window->saveSession(QString::fromStdString(name));
        ASSERT_TRUE(comesTo([&] { return statusText() == SAVED + name; })) << statusText();
    }
    // In a window of its own, as File > Open does.
    void openSession(const std::string& name)
    {
        ASSERT_NO_FATAL_FAILURE(openText("0 0 0\n1 0 0\n2 0 1\n", "before.txt"));
        window->openFiles({QString::fromStdString(name)});
        ASSERT_TRUE(comesTo([this] { return !window->isLoading(); }));
        ASSERT_TRUE(comesTo([this] { return !window->isRestyling(); }));
    }
    std::string bytesOf(const std::string& name) const
    {
        std::ifstream file(folder.path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }
    // Of the window, and of the command line with the session that it saves.
    void expectSamePictures() const
    {
        window->savePicture(QString::fromStdString(folder.path("window.png")));
        ASSERT_NO_FATAL_FAILURE(save(work()));
        const ProgramRun run =
            runProgram(STRANDVIEW_PROGRAM, {"--render", folder.path("command.png"), work()});
        EXPECT_EQ(run.status, 0) << run.error;
        EXPECT_NE(bytesOf("window.png"), "");
        EXPECT_EQ(bytesOf("command.png"), bytesOf("window.png"));
    }
    std::string work() const { return folder.path("work.strandview"); }
};

} // namespace

TEST_F(SessionKeeperTest, TheOtherDayTheWindowShowsTheSame)
{
    options.windowSize = {700, 500};
    ASSERT_NO_FATAL_FAILURE(openText(RODS, "rods.txt"));
    ASSERT_TRUE(comesToBePainted());
    StyleRequest style = window->getStyle();
    style.radius = 0.12;
    style.colourBy = "curvature";
    style.background = {0, 0, 0.2F};
    window->setStyle(style);
    ASSERT_TRUE(comesTo([this] { return !window->isRestyling(); }));
    for (const char* key : {"Control+1", "w", "d"})
        pressRealKey(key);
    ASSERT_TRUE(comesToBePainted());
    const CameraNumbers camera = window->getCameraNumbers();
    const QImage seen = screen();
    ASSERT_NO_FATAL_FAILURE(save(work()));

    ASSERT_NO_FATAL_FAILURE(openSession(work()));
    ASSERT_TRUE(comesToBePainted());
    EXPECT_EQ(window->getCameraNumbers(), camera);
    EXPECT_TRUE(window->getStyle() == style);
    EXPECT_EQ(window->windowTitle().toStdString(), work() + " - strandview");
    // Whichever was there before; a few pixels of edges may be rounded otherwise.
    EXPECT_LE(countDifferent(screen(), seen), 10);
}

TEST_F(SessionKeeperTest, TheCommandLineMakesThePictureThatTheWindowSaves)
{
    ASSERT_NO_FATAL_FAILURE(openText(RODS, "rods.txt"));
    StyleRequest style = window->getStyle();
    for (const auto& [setting, text] : std::vector<std::pair<const char*, const char*>>{
             {"colour-by", "curvature"},
             {"thing", "rod 1: radius=0.05, colour=red; rod 2: transparency=0.5, name=upper"},
             {"clip", "x:0.9"},
             {"scale-bar", "on"},
             {"legend", "right"}})
        ASSERT_EQ(settingOf(setting).read(text, style), "");
    window->setStyle(style);
    ASSERT_TRUE(comesTo([this] { return !window->isRestyling(); }));
    pressRealKey("Control+3");
    ASSERT_TRUE(comesToBePainted());
    ASSERT_NO_FATAL_FAILURE(expectSamePictures());
}

TEST_F(SessionKeeperTest, WhatWasHiddenMeasuredKeptAndComparedComesBack)
{
    ASSERT_NO_FATAL_FAILURE(openText(RODS, "rods.txt"));
    ASSERT_NO_FATAL_FAILURE(setThings("rod 2: hidden, name=upper"));
    std::vector<Measurement> measurements{*parseMeasurement("rod 1:0,rod 1:2"),
                                          *parseMeasurement("angle rod 1:0,rod 1:1,rod 1:2")};
    measurements[1].name = "bend";
    window->getMeasurements().set(measurements);
    const std::vector<NamedView> views{{"front", window->getCameraNumbers()}};
    window->getViews().set(views);
    window->setBeside({{folder.write("beside.txt", RODS)}, false});
    ASSERT_TRUE(comesTo([this] { return sceneBeside(); }));
    ASSERT_NO_FATAL_FAILURE(save(work()));

    fs::create_directories(folder.path("moved"));
    for (const char* file : {"rods.txt", "beside.txt", "work.strandview"})
        fs::rename(folder.path(file), folder.path(std::string("moved/") + file));
    window->setBeside({});
    ASSERT_NO_FATAL_FAILURE(openSession(folder.path("moved/work.strandview")));
    EXPECT_TRUE(scene->getLook({0, 1}).isHidden());
    EXPECT_EQ(scene->getLook({0, 1}).name, std::string("upper"));
    EXPECT_EQ(window->getMeasurements().get(), measurements);
    EXPECT_EQ(window->getViews().get(), views);
    EXPECT_EQ(window->getBeside().what, std::vector{folder.path("moved/beside.txt")});
    EXPECT_FALSE(window->getBeside().isTied);
    EXPECT_TRUE(comesTo([this] { return sceneBeside(); }));
}

TEST_F(SessionKeeperTest, EachOfSeveralViewsIsSeenAsItWas)
{
    options.beside = {{"same", folder.write("beside.txt", RODS), "same"}, false};
    ASSERT_NO_FATAL_FAILURE(openText(RODS, "rods.txt"));
    const auto cameras = [this] {
        std::vector<CameraNumbers> all{window->getCameraNumbers()};
        for (const BesideView* view : window->getSideBySide().getViews())
            all.push_back(view->getCameraNumbers());
        return all;
    };
    const auto areShown = [this] {
        return sceneBeside(0) && sceneBeside(1) && sceneBeside(2) &&
               !window->getSideBySide().isAtWork();
    };
    ASSERT_TRUE(comesTo(areShown));
    const auto turnFurther = [this](std::size_t index) {
        const BesideView& view = *window->getSideBySide().getViews()[index];
        return turn(*view.getViewer().getGLWidget(), [&view] { return view.getCameraNumbers(); });
    };
    for (std::size_t i = 0; i < 3; ++i)
        ASSERT_TRUE(turnFurther(i));
    pressRealKey("p"); // of the last one
    ASSERT_TRUE(comesTo([&] { return cameras().back().perspective; }));
    const auto before = cameras();
    ASSERT_NO_FATAL_FAILURE(save(work()));
    ASSERT_NO_FATAL_FAILURE(openSession(work()));
    ASSERT_TRUE(comesTo(areShown));
    EXPECT_EQ(cameras(), before);
    EXPECT_FALSE(action("&Undo")->isEnabled());
    ASSERT_TRUE(turnFurther(1));
    window->openFiles({QString::fromStdString(work())}); // where there are such views already
    ASSERT_TRUE(comesTo([&] { return !window->isLoading(); }) && comesTo(areShown));
    EXPECT_EQ(cameras(), before);
}

TEST_F(SessionKeeperTest, WhatIsTakenBackAfterItIsOpenedIsNothingOfIt)
{
    ASSERT_NO_FATAL_FAILURE(openText(RODS, "rods.txt"));
    window->getMeasurements().set({*parseMeasurement("rod 1:0,rod 1:2")});
    window->getViews().set({{"front", window->getCameraNumbers()}});
    ASSERT_NO_FATAL_FAILURE(save(work()));
    ASSERT_NO_FATAL_FAILURE(openSession(work()));
    window->activateWindow();
    ASSERT_TRUE(comesToBePainted());
    const CameraNumbers camera = window->getCameraNumbers();
    pressRealKey("Control+1");
    ASSERT_TRUE(comesTo([&] { return !(window->getCameraNumbers() == camera); }));
    pressRealKey("Control+z");
    ASSERT_TRUE(comesTo([&] { return window->getCameraNumbers() == camera; }));
    EXPECT_EQ(window->getMeasurements().get().size(), 1u);
    EXPECT_EQ(window->getViews().get().size(), 1u);
}

TEST_F(SessionKeeperTest, OneThatIsSavedWhenOthersAreShownIsNotTheirs)
{
    ASSERT_NO_FATAL_FAILURE(openText(RODS, "rods.txt"));
    window->saveSession(QString::fromStdString(work()));
    window->openFiles({QString::fromStdString(folder.write("other.txt", RODS))});
    ASSERT_TRUE(comesTo([&] { return fs::exists(work()) && !window->isLoading(); }));
    QTest::qWait(200); // until it has told that it is saved
    EXPECT_EQ(window->windowTitle().toStdString(), folder.path("other.txt") + " - strandview");
    EXPECT_EQ(window->getSession().name, "");
}

TEST_F(SessionKeeperTest, OfAFileThatIsGoneItTellsThatAndSavesNothing)
{
    ASSERT_NO_FATAL_FAILURE(openText(RODS, "rods.txt"));
    fs::remove(folder.path("rods.txt"));
    std::string told;
    const auto box = [] { return qobject_cast<QMessageBox*>(QApplication::activeModalWidget()); };
    const User user({{[&] { return box() && box()->isActiveWindow(); },
                      [&] {
                          told = box()->text().toStdString();
                          pressRealKey("Return");
                      }}});
    window->saveSession(QString::fromStdString(work()));
    ASSERT_TRUE(comesTo([&] { return user.isDone() && !QApplication::activeModalWidget(); }));
    EXPECT_THAT(told, testing::HasSubstr(folder.path("rods.txt") + ": No such file or directory"));
    EXPECT_FALSE(fs::exists(work()));
}

TEST_F(SessionKeeperTest, WhatIsBeingSavedWhenItIsClosedIsSaved)
{
    Session session;
    session.files = {{folder.write("rods.txt", RODS), 0, ""}};
    {
        SessionKeeper keeper;
        for (const char* name : {"first.strandview", "last.strandview"}) {
            session.name = folder.path(name);
            keeper.save(session);
        }
    }
    EXPECT_TRUE(fs::exists(folder.path("first.strandview")));
    EXPECT_TRUE(fs::exists(folder.path("last.strandview")));
}

TEST_F(SessionKeeperTest, WhatCannotBeSavedWhenItIsClosedIsTold)
{
    Session session;
    session.files = {{folder.path("missing.txt"), 0, ""}};
    testing::internal::CaptureStderr();
    {
        SessionKeeper keeper;
        for (const char* name : {"first.strandview", "last.strandview"}) {
            session.name = folder.path(name);
            keeper.save(session);
        }
    }
    const std::string line = "strandview: the session is not saved: " + folder.path("missing.txt");
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                testing::MatchesRegex(line + ": [^\n]*\n" + line + ": [^\n]*\n"));
}

TEST_F(SessionKeeperTest, APictureWithoutTheColoursThatAreSwitchedOffIsThatOfSessionAndCommand)
{
    options.colourBy = "curvature";
    ASSERT_NO_FATAL_FAILURE(openText(RODS, "rods.txt"));
    for (QAction* const entry : window->findChildren<QAction*>()) {
        if (entry->text() == "&Colours of data")
            entry->trigger();
    }
    ASSERT_FALSE(scene->areColoursShown());
    ASSERT_TRUE(comesToBePainted());
    ASSERT_NO_FATAL_FAILURE(expectSamePictures());
    window->copyCommand();
    EXPECT_THAT(QApplication::clipboard()->text().toStdString(),
                testing::Not(HasSubstr("curvature")));

    ASSERT_NO_FATAL_FAILURE(openSession(work()));
    EXPECT_FALSE(scene->areColoursShown());
    EXPECT_EQ(window->getStyle().colourBy, "curvature");
}

TEST_F(SessionKeeperTest, WhatIsSavedWhileAnotherIsBeingSavedIsSavedThen)
{
    Session session;
    session.files = {{folder.write("rods.txt", RODS), 0, ""}};
    SessionKeeper keeper;
    std::vector<std::string> told;
    QObject::connect(&keeper, &SessionKeeper::saved,
                     [&](const Session& one, const std::string& failure) {
                         EXPECT_EQ(failure, "");
                         told.push_back(fs::path(one.name).filename().string());
                     });
    for (const char* name : {"a.strandview", "b.strandview", "c.strandview"}) {
        session.name = folder.path(name);
        keeper.save(session);
    }
    ASSERT_TRUE(comesTo([&] { return told.size() == 2; }));
    EXPECT_THAT(told, testing::ElementsAre("a.strandview", "c.strandview"));
    EXPECT_TRUE(fs::exists(folder.path("a.strandview")));
    EXPECT_FALSE(fs::exists(folder.path("b.strandview")));
    EXPECT_TRUE(fs::exists(folder.path("c.strandview")));
}

TEST_F(SessionKeeperTest, TheFrameOfASeriesComesBack)
{
    options.colourBy = "arclength";
    ASSERT_NO_FATAL_FAILURE(openText(FRAMES, "frames.txt"));
    ASSERT_TRUE(player());
    ASSERT_TRUE(comesToBePainted());
    for (const std::size_t frame : {1, 2}) {
        pressRealKey("period");
        ASSERT_TRUE(comesTo([&] { return player()->getFrame() == frame; }));
    }
    const Session session = window->getSession();
    EXPECT_EQ(session.frame, 2U);
    ASSERT_NO_FATAL_FAILURE(save(work()));
    options.colourBy.reset();
    ASSERT_NO_FATAL_FAILURE(openSession(work()));
    ASSERT_TRUE(player());
    EXPECT_EQ(player()->getFrame(), 2U);
    EXPECT_EQ(window->getStyle().colourBy, "arclength");
}

TEST_F(SessionKeeperTest, ItsKeyAsksForANameOnceAndSavesUnderThatOneFromThenOn)
{
    ASSERT_NO_FATAL_FAILURE(openText(RODS, "rods.txt"));
    ASSERT_TRUE(comesToBePainted());
    QString offered;
    QTimer answer;
    QObject::connect(&answer, &QTimer::timeout, [&] {
        if (auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget())) {
            offered = dialog->selectedFiles().constFirst();
            static_cast<QDialog*>(dialog)->accept();
        }
    });
    answer.start(20);
    pressRealKey("Control+s");
    const std::string name = folder.path("rods.strandview");
    ASSERT_TRUE(comesTo([&] { return fs::exists(name); })) << offered.toStdString();
    ASSERT_TRUE(comesTo([&] { return statusText() == SAVED + name; }));
    const std::string before = bytesOf("rods.strandview");
    // Without a window manager nobody gives the keyboard back once the dialog is gone.
    const auto press = [this](const char* key) {
        window->activateWindow();
        pressRealKey(key);
    };
    const CameraNumbers camera = window->getCameraNumbers();
    ASSERT_TRUE(comesTo([&] {
        press("Control+1");
        return !(window->getCameraNumbers() == camera);
    }));
    EXPECT_TRUE(comesTo([&] {
        press("Control+s");
        return bytesOf("rods.strandview") != before;
    })) << statusText();
    EXPECT_FALSE(QApplication::activeModalWidget());
    EXPECT_EQ(offered.toStdString(), name);
}

TEST_F(SessionKeeperTest, AFileThatHasChangedSinceIsTold)
{
    ASSERT_NO_FATAL_FAILURE(openText(RODS, "rods.txt"));
    ASSERT_NO_FATAL_FAILURE(save(work()));
    folder.append("rods.txt", "2 0 0\n");
    ASSERT_NO_FATAL_FAILURE(openSession(work()));
    EXPECT_TRUE(comesTo([&] {
        return statusText().find("has changed since the session was saved") != std::string::npos;
    })) << statusText();
}

TEST_F(SessionKeeperTest, WhatCannotBeOpenedIsToldAndWhatIsShownStays)
{
    ASSERT_NO_FATAL_FAILURE(openText(RODS, "rods.txt"));
    const CameraNumbers camera = window->getCameraNumbers();
    const auto refusalOf = [this](const std::string& name) {
        std::string told;
        QTimer answer;
        QObject::connect(&answer, &QTimer::timeout, [&] {
            if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
                told = box->text().toStdString();
                box->accept();
            }
        });
        answer.start(10);
        window->openFiles({QString::fromStdString(name)});
        EXPECT_TRUE(comesTo([&] { return !told.empty(); }));
        return told;
    };
    EXPECT_THAT(refusalOf(folder.write("none.strandview", "{}")), HasSubstr("expected a session"));
    ASSERT_NO_FATAL_FAILURE(save(work()));
    fs::remove(folder.path("rods.txt"));
    EXPECT_THAT(refusalOf(work()), HasSubstr("rods.txt"));
    EXPECT_EQ(window->getCameraNumbers(), camera);
    EXPECT_TRUE(window->hasScene());
}

TEST_F(SessionKeeperTest, OtherFilesAreNoSessionAnyMore)
{
    ASSERT_NO_FATAL_FAILURE(openText(RODS, "rods.txt"));
    ASSERT_NO_FATAL_FAILURE(save(work()));
    EXPECT_THAT(window->windowTitle().toStdString(), StartsWith(work()));
    const std::string other = folder.write("other.txt", "0 0 0\n1 0 0\n2 1 0\n");
    window->openFiles({QString::fromStdString(other)});
    ASSERT_TRUE(comesTo([this] { return !window->isLoading(); }));
    EXPECT_EQ(window->windowTitle().toStdString(), other + " - strandview");
    EXPECT_EQ(window->getSession().name, "");
}

} // namespace strandview
