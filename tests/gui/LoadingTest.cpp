// SPDX-License-Identifier: GPL-3.0-or-later
// Loading as the user of a window sees it. What is read waits at a gate that the test
// opens, so that nothing depends on how fast the machine is.
#include "window/LoadJob.h"

#include <condition_variable>
#include <mutex>

#include <QAction>
#include <QApplication>
#include <QGLWidget>
#include <QLabel>
#include <QMessageBox>
#include <QSettings>
#include <QStatusBar>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <gmock/gmock.h>

#include "programWindows.h"
#include "scene/Progress.h"
#include "scene/SceneLoader.h"
#include "support/TemporaryFolder.h"
#include "support/runProgram.h"
#include "window/MainWindow.h"
#include "window/runWindow.h"

namespace strandview {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

const char* const ROD = "0 0 0\n0 0 1\n0 1 2\n";

// Keeps the reading thread waiting until it is opened, or the reading is stopped.
class Gate
{
public:
    void open()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        isOpen = true;
        changed.notify_all();
    }
    void pass(Progress& progress)
    {
        std::unique_lock<std::mutex> lock(mutex);
        while (!isOpen && !progress.isStopped())
            changed.wait_for(lock, std::chrono::milliseconds(5));
        stops += progress.isStopped();
    }
    /// How many times it was passed because reading was stopped.
    int countStops()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return stops;
    }

private:
    std::mutex mutex;
    std::condition_variable changed;
    bool isOpen = false;
    int stops = 0;
};

// Notes every window that is shown while it lives.
class ShownWindows : public QObject
{
public:
    ShownWindows() { qApp->installEventFilter(this); }

    int count = 0;

    bool eventFilter(QObject* object, QEvent* event) override
    {
        count += object->isWidgetType() && event->type() == QEvent::Show &&
                 static_cast<QWidget*>(object)->isWindow();
        return false;
    }
};

class LoadingTest : public testing::Test
{
protected:
    static void SetUpTestSuite() { initialiseProgramOnce("LoadingTest"); }

    LoadingTest()
    {
        QSettings().clear();
        options.windowSize = {520, 420};
        first = folder.write("first.txt", ROD);
        second = folder.write("second.txt", ROD);
        slow = folder.write("slow.txt", ROD);
    }
    ~LoadingTest() override
    {
        gate.open();
        window.reset();
    }

    // A file of which the nodes alone take a while.
    std::string writeMarkers() const
    {
        std::string text = R"({"strandview": 1, "markers": [)";
        for (int i = 0; i < 30000; ++i)
            text += (i == 0 ? "" : ",") + (R"({"point": [)" + std::to_string(i)) + ", 0, 0]}";
        return folder.write("many.json", text + "]}");
    }

    // Of a file whose name begins with "slow" it says "Reading behind the gate", and reads it
    // when the gate is open.
    MainWindow::Loader loader()
    {
        return [this](const std::vector<std::string>& files, const Options& /*asked*/,
                      ReadReport& report, Progress& progress) {
            if (files.front().find("/slow") != std::string::npos) {
                progress.announce("Reading behind the gate");
                gate.pass(progress);
            }
            return prepareScene(files, options, report, progress);
        };
    }

    // A window that shows the first file.
    void open()
    {
        window = std::make_unique<MainWindow>(options, loader());
        window->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
        window->openFiles({QString::fromStdString(first)});
        ASSERT_TRUE(comesTo([this] { return !window->isLoading(); }));
        ASSERT_EQ(title(), first + " - strandview");
    }
    void beginToOpen(const std::string& file) { window->openFiles({QString::fromStdString(file)}); }

    QWidget* view() const { return window->findChild<QGLWidget*>(); }
    QToolButton* stopButton() const
    {
        return window->findChild<QStatusBar*>()->findChild<QToolButton*>();
    }
    std::string title() const { return window->windowTitle().toStdString(); }

    // What the status bar shows about loading; nothing if it is hidden.
    std::string loadingText() const
    {
        const QWidget* bar = stopButton()->parentWidget();
        return bar->isVisible() ? bar->findChild<QLabel*>()->text().toStdString() : "";
    }

    const TemporaryFolder folder;
    Options options;
    Gate gate;
    std::string first, second, slow;
    std::unique_ptr<MainWindow> window;
};

// While it is under way

TEST_F(LoadingTest, TheWindowAnswersAndSaysWhatItDoes)
{
    open();
    beginToOpen(slow);
    EXPECT_TRUE(window->isLoading());
    EXPECT_TRUE(comesTo([this] { return loadingText() == "Reading behind the gate"; }));

    int ticks = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] { ++ticks; });
    timer.start(1);
    EXPECT_TRUE(comesTo([&] { return ticks >= 50; }));
    const CameraNumbers before = window->getCameraNumbers();
    QTest::keyClick(view(), Qt::Key_A);
    EXPECT_FALSE(window->getCameraNumbers() == before);
    EXPECT_EQ(title(), first + " - strandview");
    ASSERT_TRUE(window->isLoading());

    gate.open();
    EXPECT_TRUE(comesTo([this] { return !window->isLoading(); }));
    EXPECT_EQ(title(), slow + " - strandview");
    EXPECT_TRUE(comesTo([this] { return loadingText().empty(); }));
}

TEST_F(LoadingTest, AnotherFileThatIsOpenedTakesItsPlace)
{
    open();
    beginToOpen(slow);
    beginToOpen(second);
    EXPECT_TRUE(comesTo([this] { return !window->isLoading(); }));
    EXPECT_EQ(title(), second + " - strandview");
    EXPECT_TRUE(comesTo([this] { return gate.countStops() == 1; }));
    QTest::qWait(100);
    EXPECT_EQ(title(), second + " - strandview");
    EXPECT_EQ(QSettings().value("recentFiles").toStringList().size(), 2);
}

TEST_F(LoadingTest, ClosingTheWindowEndsIt)
{
    open();
    beginToOpen(slow);
    window->close();
    EXPECT_FALSE(window->isLoading());
    EXPECT_TRUE(comesTo([this] { return gate.countStops() == 1; }));
}

TEST_F(LoadingTest, AWindowThatGoesTakesTheThreadWithIt)
{
    open();
    beginToOpen(slow);
    window.reset();
    EXPECT_EQ(gate.countStops(), 1);
}

// Stopping

TEST_F(LoadingTest, EscStopsItAndWhatWasShownStays)
{
    open();
    const CameraNumbers before = window->getCameraNumbers();
    beginToOpen(slow);
    QTest::keyClick(view(), Qt::Key_Escape);
    EXPECT_FALSE(window->isLoading());
    EXPECT_EQ(loadingText(), "");
    EXPECT_TRUE(comesTo([this] { return gate.countStops() == 1; }));
    QTest::qWait(100);
    EXPECT_TRUE(window->hasScene());
    EXPECT_EQ(title(), first + " - strandview");
    EXPECT_TRUE(window->getCameraNumbers() == before);
    EXPECT_EQ(QSettings().value("recentFiles").toStringList().size(), 1);
}

TEST_F(LoadingTest, TheButtonAndTheMenuStopItOnlyWhileThereIsSomething)
{
    open();
    EXPECT_FALSE(stopButton()->isEnabled());
    beginToOpen(slow);
    ASSERT_TRUE(comesTo([this] { return stopButton()->isVisible(); }));
    QTest::mouseClick(stopButton(), Qt::LeftButton);
    EXPECT_FALSE(window->isLoading());

    beginToOpen(slow);
    ASSERT_TRUE(window->isLoading());
    stopButton()->defaultAction()->trigger();
    EXPECT_FALSE(window->isLoading());
    EXPECT_FALSE(stopButton()->isEnabled());
    EXPECT_EQ(title(), first + " - strandview");
}

TEST_F(LoadingTest, TheStatusBarIsNoHigherForIt)
{
    open();
    bool isPainted = false; // then the window has its places
    window->whenPainted([&isPainted] { isPainted = true; });
    ASSERT_TRUE(comesTo([&] { return isPainted; }));
    const QSize before = view()->size();
    beginToOpen(slow);
    ASSERT_TRUE(comesTo([this] { return !loadingText().empty(); }));
    EXPECT_EQ(view()->size(), before);
}

// Nodes, which are made in the window's thread

TEST_F(LoadingTest, NodesAreMadeWhileTheWindowAnswers)
{
    const std::string many = writeMarkers();
    open();
    std::vector<std::string> seen;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        const std::string text = loadingText();
        if (text.rfind("Building marker", 0) == 0 && (seen.empty() || seen.back() != text))
            seen.push_back(text);
    });
    timer.start(0);
    beginToOpen(many);
    EXPECT_TRUE(comesTo([this] { return !window->isLoading(); }));
    EXPECT_EQ(title(), many + " - strandview");
    EXPECT_GE(seen.size(), 3u);
    for (const std::string& text : seen)
        EXPECT_THAT(text, HasSubstr(" of 30000"));
}

TEST_F(LoadingTest, NothingIsShownIfTheMakingOfNodesIsStopped)
{
    const std::string many = writeMarkers();
    open();
    // From within: the making processes events.
    bool stopped = false;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        if (loadingText().rfind("Building marker", 0) != 0 || stopped)
            return;
        stopped = true;
        QTest::keyClick(view(), Qt::Key_Escape);
    });
    timer.start(0);
    beginToOpen(many);
    EXPECT_TRUE(comesTo([this] { return !window->isLoading(); }));
    EXPECT_TRUE(stopped);
    QTest::qWait(50);
    EXPECT_EQ(title(), first + " - strandview");
}

TEST_F(LoadingTest, TheMakingOfNodesGivesWayToAnotherFile)
{
    const std::string many = writeMarkers();
    open();
    bool opened = false;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        if (loadingText().rfind("Building marker", 0) != 0 || opened)
            return;
        opened = true;
        beginToOpen(second);
    });
    timer.start(0);
    beginToOpen(many);
    EXPECT_TRUE(comesTo([&] { return opened && !window->isLoading(); }));
    QTest::qWait(50);
    EXPECT_EQ(title(), second + " - strandview");
}

// Failure

TEST_F(LoadingTest, AFailureIsToldAndWhatWasShownStays)
{
    const std::string bad = folder.write("slow-bad.txt", "0 0 0\n0 0 zero\n");
    open();
    beginToOpen(bad);
    std::string told;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            told = box->text().toStdString();
            box->close();
        }
    });
    timer.start(20);
    gate.open();
    EXPECT_TRUE(comesTo([&] { return !told.empty(); }));
    EXPECT_THAT(told, StartsWith(bad + ":2:"));
    EXPECT_FALSE(window->isLoading());
    EXPECT_EQ(title(), first + " - strandview");
}

// At the start

TEST_F(LoadingTest, WhatIsRefusedSoonOpensNoWindow)
{
    options.files = {folder.write("bad.txt", "0 0 zero\n")};
    const ShownWindows shown;
    ReadReport report;
    EXPECT_EQ(runWindow(options, loader(), report), "");
    EXPECT_THAT(report.error, StartsWith(options.files[0] + ":1:"));
    EXPECT_EQ(shown.count, 0);
}

TEST_F(LoadingTest, AWindowIsThereWhileItReadsAndGoesIfThatFails)
{
    options.files = {folder.write("slow-bad.txt", "0 0 zero\n")};
    const ShownWindows shown;
    bool answered = false;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        answered = shown.count > 0;
        if (answered)
            gate.open();
    });
    timer.start(20);
    ReadReport report;
    EXPECT_EQ(runWindow(options, loader(), report), "");
    EXPECT_TRUE(answered);
    EXPECT_THAT(report.error, StartsWith(options.files[0] + ":1:"));
    for (const QWidget* widget : QApplication::topLevelWidgets())
        EXPECT_FALSE(widget->isVisible());
}

TEST_F(LoadingTest, APictureOfTheWindowWaitsForIt)
{
    options.files = {slow};
    options.windowPicture = folder.path("window.png");
    QTimer::singleShot(1000, [this] {
        EXPECT_FALSE(QFile::exists(QString::fromStdString(folder.path("window.png"))));
        gate.open();
    });
    ReadReport report;
    EXPECT_EQ(runWindow(options, loader(), report), "");
    EXPECT_EQ(report.error, "");
    EXPECT_TRUE(QFile::exists(QString::fromStdString(folder.path("window.png"))));
}

TEST_F(LoadingTest, TheProgramEndsWithOneLineHoweverLateItFails)
{
    std::string text;
    for (int i = 0; i < 400000; ++i)
        text += std::to_string(i) + " 0 0\n";
    const std::string file = folder.write("long.txt", text + "0 0 zero\n");
    const ProgramRun run =
        runProgram(STRANDVIEW_PROGRAM, {file}, "", {{"DISPLAY", qgetenv("DISPLAY").toStdString()}});
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.error, HasSubstr("strandview: " + file + ":400001: column 3 (z): found"));
    EXPECT_EQ(run.output, "");
}

} // namespace

} // namespace strandview
