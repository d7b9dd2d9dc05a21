// SPDX-License-Identifier: GPL-3.0-or-later
// What a window shows while its data change: a running simulation, and a series that is played.
#include <algorithm>
#include <cstdio>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QElapsedTimer>
#include <QTimer>

#include "measuring.h"
#include "request/Options.h"
#include "sampleDna.h"
#include "sampleTables.h"
#include "scene/Progress.h"
#include "scene/SceneBuilder.h"
#include "scene/SceneLoader.h"
#include "scene/readFiles.h"
#include "temporary.h"
#include "window/MainWindow.h"
#include "window/PlayBar.h"
#include "window/Player.h"
#include "window/runWindow.h"

using namespace strandview;

namespace {

const int PLAYED_FRAMES = 60;
const int SECONDS = 8;

std::string power(int points)
{
    return points == 1000 ? "10³ points" : points == 10000 ? "10⁴ points" : "10⁵ points";
}

// What the example tells of its last seconds; nothing if it fails.
std::optional<double> framesOfSimulation(int points)
{
    const std::string command = std::string(RUNNING_SIMULATION) + " " + std::to_string(points) +
                                " " + std::to_string(SECONDS) + " 2>/dev/null";
    FILE* output = popen(command.c_str(), "r");
    if (!output)
        return {};
    std::optional<double> last;
    char line[256];
    double frames = 0;
    while (std::fgets(line, sizeof line, output)) {
        if (std::sscanf(line, "%*d points: %lf frames/s", &frames) == 1)
            last = frames;
    }
    return pclose(output) == 0 ? last : std::nullopt;
}

void addSimulation(Table& table, int points, double goal)
{
    const std::string what = "A running simulation of " + power(points);
    const std::optional<double> frames = framesOfSimulation(points);
    if (!frames)
        table.missing(what, "it failed");
    else if (goal > 0)
        table.rate(what, *frames, "goal", goal, "frames/s", 1);
    else
        table.value(what, *frames, "frames/s");
}

bool waitFor(const std::function<bool()>& holds, double seconds)
{
    QElapsedTimer clock;
    clock.start();
    while (!holds() && clock.elapsed() < 1000 * seconds)
        QApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 10);
    return holds();
}

struct Played
{
    double framesPerSecond;
    double longestWait; ///< of an event, in seconds
};

// Every frame, round after round, as fast as they come.
std::optional<Played> play(const std::string& file)
{
    Options options;
    options.windowSize = {900, 700};
    options.series.framesPerSecond = 1000;
    MainWindow window(
        options,
        [&options](const std::vector<std::string>& files, const Options& /*asked*/,
                   ReadReport& report, Progress& progress) {
            return prepareScene(files, options, report, progress, Opening::AT_ONCE);
        },
        [&options](const std::vector<std::string>& files, const Options& /*asked*/,
                   ReadReport& report, Progress& progress) {
            return openFiles(files, options, report, progress, Opening::AT_ONCE).series;
        });
    window.show();
    window.openFiles({QString::fromStdString(file)});
    const auto isReady = [&window] {
        return !window.isLoading() && window.getPlayer() && window.getPlayer()->isStaged();
    };
    if (!waitFor(isReady, 60))
        return {};
    auto& bar = *window.findChild<PlayBar*>();
    bar.findChild<QCheckBox*>("everyFrameBox")->setChecked(true);
    bar.findChild<QComboBox*>("repeatBox")->setCurrentIndex(PlayOrder::LOOP);

    int frames = 0;
    QObject::connect(window.getPlayer(), &Player::frameShown, [&frames] { ++frames; });
    window.getPlayer()->setPlaying(true);
    waitFor([&frames] { return frames >= PLAYED_FRAMES; }, 60); // then all of them are kept
    frames = 0;
    double longest = 0;
    QElapsedTimer all, wait;
    QTimer tick;
    QObject::connect(&tick, &QTimer::timeout, [&] {
        longest = std::max(longest, 1e-9 * double(wait.nsecsElapsed()));
        wait.start();
    });
    all.start();
    wait.start();
    tick.start(1);
    waitFor([&all] { return all.elapsed() >= 1000 * SECONDS; }, 2 * SECONDS);
    return Played{frames / (1e-9 * double(all.nsecsElapsed())), longest};
}

void addPlaying(Table& table, const std::string& what, const std::string& file)
{
    const std::string whole = "A series of " + what + " that is played";
    const std::optional<Played> played = play(file);
    if (!played)
        return table.missing(whole, "it was not shown within a minute");
    table.rate(whole, played->framesPerSecond, "as fast as films are", 25, "frames/s", 0);
    table.compare("– the longest time without an answer", 1e3 * played->longestWait, "a frame",
                  1e3 / played->framesPerSecond, "ms", Table::Goal::AtMost, 3);
}

void addRods(Table& table, int points)
{
    const TemporaryFile file("-series.txt");
    writeSeries(file.path, PLAYED_FRAMES, points);
    addPlaying(table, power(points), file.path);
}

// Which winds and unwinds.
void addDna(Table& table, int pairs)
{
    const TemporaryFile file("-series.txt");
    writeTable(file.path, [pairs](std::ostream& rows) {
        for (int frame = 0; frame < PLAYED_FRAMES; ++frame) {
            writeDna(rows, pairs, 34.3 * breathing(frame));
            rows << "\n\n";
        }
    });
    addPlaying(table, std::to_string(pairs) + " base pairs", file.path);
}

void addOpening(Table& table, int points)
{
    const TemporaryFile file("-knot.txt"), picture("-window.png");
    writeKnot(file.path, points);
    const std::string what = "A window of " + power(points) + ", painted and closed again";
    const std::vector<double> seconds =
        mediansInTurn({[&] {
                          return secondsOf({STRANDVIEW_PROGRAM, "--screenshot-after", "0",
                                            picture.path, file.path});
                      }},
                      3);
    if (seconds.empty())
        table.missing(what, "strandview failed");
    else
        table.value(what, 1e3 * seconds.front(), "ms");
}

} // namespace

int main()
{
    const TemporaryFolder settings;
    setenv("XDG_CONFIG_HOME", settings.path.c_str(), 1);
    Table table("Windows",
                "What is shown a second by a window of 900 x 600 pixels on a server without a "
                "screen, drawn by Mesa's software\ndriver on all cores: the example "
                "`running_simulation`, a tube and a ribbon with new data in every frame, and\n"
                "`strandview` itself, which plays every frame of a series of tubes that it has "
                "read. An answer waits for no\nmore than frames that are drawn; reading and "
                "geometry are another thread's.");
    addSimulation(table, 1000, 0);
    addSimulation(table, 10000, 30);
    addSimulation(table, 100000, 10);
    addOpening(table, 1000);
    initialiseWindows("strandview");
    initialiseScene();
    for (const int points : {1000, 10000, 100000})
        addRods(table, points);
    for (const int pairs : {44, 200, 2000})
        addDna(table, pairs);
    table.print();
}
