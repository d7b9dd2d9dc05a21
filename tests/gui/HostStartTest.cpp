// SPDX-License-Identifier: GPL-3.0-or-later
// The example hosts, started as a user starts them and left alone: their views are painted.
#include <QApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QPixmap>
#include <QProcess>
#include <QScreen>
#include <QTest>
#include <gtest/gtest.h>

#include "support/keepPictures.h"

namespace {

const int STARTS = 4;
// A view that is not painted by itself stays so; the machine may be busy.
const int PATIENCE = 15000; // milliseconds

struct Host
{
    const char* name;
    const char* program;
};

void PrintTo(const Host& host, std::ostream* stream) { *stream << host.name; }

// The frame of the only window on the screen; empty if there is none yet.
QRect findWindow()
{
    QProcess list;
    list.start("wmctrl", {"-lG"});
    if (!list.waitForFinished())
        return {};
    const QStringList fields =
        QString(list.readAllStandardOutput()).section('\n', -2, -2).simplified().split(' ');
    if (fields.size() < 6)
        return {};
    return QRect(fields[2].toInt(), fields[3].toInt(), fields[4].toInt(), fields[5].toInt());
}

// The number of pixels that are not black in the middle of a rectangle of the screen.
int countPainted(const QRect& window)
{
    const QRect middle(window.x() + window.width() / 4, window.y() + window.height() / 4,
                       window.width() / 2, window.height() / 2);
    const QImage image =
        keepIfFailed(QGuiApplication::primaryScreen()
                         ->grabWindow(0, middle.x(), middle.y(), middle.width(), middle.height())
                         .toImage());
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += (image.pixel(x, y) & 0xffffff) != 0;
    }
    return count;
}

class HostStartTest : public testing::TestWithParam<Host>
{
};

} // namespace

TEST_P(HostStartTest, ItsViewIsPaintedThoughNothingHappens)
{
    int count = 0;
    char name[] = "host_start_tests";
    char* arguments[] = {name, nullptr};
    QApplication application(++count, arguments);
    for (int start = 0; start < STARTS; ++start) {
        SCOPED_TRACE(start);
        QProcess host;
        host.start(GetParam().program, QStringList());
        ASSERT_TRUE(host.waitForStarted());
        QElapsedTimer timer;
        timer.start();
        int painted = 0;
        while (painted < 500 && timer.elapsed() < PATIENCE) {
            QTest::qWait(100);
            const QRect window = findWindow();
            painted = window.isEmpty() ? 0 : countPainted(window);
        }
        EXPECT_GE(painted, 500);
        host.kill();
        host.waitForFinished();
        while (!findWindow().isEmpty() && timer.elapsed() < 2 * PATIENCE)
            QTest::qWait(50);
    }
}

INSTANTIATE_TEST_SUITE_P(Hosts, HostStartTest,
                         testing::Values(Host{"TwistedRod", TWISTED_ROD},
                                         Host{"ViewerWindow", VIEWER_WINDOW},
                                         Host{"RunningSimulation", RUNNING_SIMULATION}),
                         testing::PrintToStringParamName());
