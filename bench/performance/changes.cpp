// SPDX-License-Identifier: GPL-3.0-or-later
// How soon a window shows what its user changes, and how long it does not answer meanwhile.
#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <QApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <SoQtGeneralViewer.h>

#include "measuring.h"
#include "request/Options.h"
#include "request/settings.h"
#include "sampleTables.h"
#include "scene/Progress.h"
#include "scene/SceneBuilder.h"
#include "scene/SceneLoader.h"
#include "temporary.h"
#include "window/MainWindow.h"
#include "window/SideBySide.h"
#include "window/runWindow.h"

using namespace strandview;

namespace {

// Which frames are drawn, and whether they show what was asked for.
class WatchedWindow : public MainWindow
{
public:
    WatchedWindow(const Options& options, Loader loader) : MainWindow(options, std::move(loader))
    {
        QObject::connect(this, &MainWindow::frameDrawn, [this] {
            if (std::exchange(isNews, false))
                ++frames;
        });
        QObject::connect(this, &MainWindow::styleShown, [this] { isNews = true; });
        QObject::connect(this, &MainWindow::loadingEnded, [this] { isNews = true; });
    }
    using MainWindow::viewer;

    bool isNews = false; ///< for the next frame
    int frames = 0;      ///< that had news
};

Options optionsOf(int slices)
{
    Options options;
    options.windowSize = {900, 700};
    options.slices = slices;
    options.subsegments = 1;
    return options;
}

std::unique_ptr<WatchedWindow> makeWindow(const Options& options)
{
    auto window = std::make_unique<WatchedWindow>(
        options, [](const std::vector<std::string>& files, const Options& asked, ReadReport& report,
                    Progress& progress) {
            return prepareScene(files, asked, report, progress, Opening::AT_ONCE);
        });
    window->show();
    return window;
}

bool waitFor(const std::function<bool()>& holds, double seconds = 120)
{
    QElapsedTimer clock;
    clock.start();
    while (!holds() && clock.elapsed() < 1000 * seconds)
        QApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 10);
    return holds();
}

void rest(int milliseconds)
{
    QElapsedTimer clock;
    clock.start();
    waitFor([&] { return clock.elapsed() > milliseconds; });
}

// The longest time that the window does not come to a timer.
class Pauses
{
public:
    Pauses()
    {
        QObject::connect(&tick, &QTimer::timeout, [this] { note(); });
        tick.setTimerType(Qt::PreciseTimer);
        tick.start(5);
        clock.start();
    }
    double longest() ///< in milliseconds
    {
        note();
        return most;
    }

private:
    void note()
    {
        most = std::max(most, 1e-6 * double(clock.nsecsElapsed()) - 5);
        clock.start();
    }

    QTimer tick;
    QElapsedTimer clock;
    double most = 0;
};

// From a change to the first frame that shows it, in milliseconds.
double millisecondsToFrame(WatchedWindow& window, const std::function<void()>& change)
{
    rest(400); // what is drawn afterwards is over
    const int before = window.frames;
    QElapsedTimer clock;
    clock.start();
    change();
    waitFor([&] { return window.frames > before; });
    return 1e-6 * double(clock.nsecsElapsed());
}

bool areAllShown(const SideBySide& views)
{
    const std::vector<BesideView*>& all = views.getViews();
    return std::all_of(all.begin(), all.end(),
                       [](const BesideView* view) { return view->getScene(); });
}

using Change = std::function<void(StyleRequest& request, int round)>;

double medianOf(WatchedWindow& window, const Change& change, int rounds, double& pause)
{
    std::vector<double> all;
    for (int round = 0; round < rounds; ++round) {
        Pauses pauses;
        all.push_back(millisecondsToFrame(window, [&] {
            StyleRequest next = window.getStyle();
            change(next, round);
            window.setStyle(next);
        }));
        rest(400);
        pause = std::max(pause, pauses.longest());
    }
    return median(all);
}

struct NamedChange
{
    const char* what;
    double limit; ///< in milliseconds, of 10^5 vertices
    Change change;
};

const std::vector<NamedChange>& changes()
{
    static const std::vector<NamedChange> all{
        {"the background", 50,
         [](StyleRequest& request, int round) {
             request.background = round % 2 ? Colour{1, 1, 1} : Colour{0.9f, 0.9f, 1};
         }},
        {"the colour of a tube", 50,
         [](StyleRequest& request, int round) {
             request.tubeColour = round % 2 ? Colour{1, 0, 0} : Colour{0, 0, 1};
         }},
        {"the radius", 100,
         [](StyleRequest& request, int round) { request.radius = 0.05 + 0.001 * round; }},
        {"the scalar", 100,
         [](StyleRequest& request, int round) {
             request.colourBy = round % 2 ? "curvature" : "arclength";
         }},
        {"the colour map", 50,
         [](StyleRequest& request, int round) {
             request.colours = findColourMap(round % 2 ? "viridis" : "cividis");
         }},
        {"the range of colours", 50,
         [](StyleRequest& request, int round) {
             request.rangeMin = 0;
             request.rangeMax = 1 + round;
         }},
    };
    return all;
}

void measure(Table& table, int points, int slices, const std::string& size, int rounds,
             bool isLimited)
{
    const TemporaryFile file("-knot.txt");
    writeKnot(file.path, points);
    const auto window = makeWindow(optionsOf(slices));
    waitFor([&] { return window->isVisible(); });
    rest(500);
    {
        Pauses pauses;
        window->openFiles({QString::fromStdString(file.path)});
        waitFor([&] { return window->frames > 0; });
        rest(1000);
        table.limit(size + ": reading, the longest time without an answer", pauses.longest(), "ms",
                    100);
    }
    double pause = 0;
    std::vector<double> frames;
    for (int round = 0; round < rounds; ++round)
        frames.push_back(millisecondsToFrame(*window, [&] {
            window->isNews = true;
            window->viewer->scheduleRedraw();
        }));
    table.value(size + ": a frame without a change", median(frames), "ms");
    for (const NamedChange& change : changes()) {
        pause = 0;
        const double milliseconds = medianOf(*window, change.change, rounds, pause);
        const std::string what = size + ": " + change.what;
        if (isLimited)
            table.limit(what + ", until it is shown", milliseconds, "ms", change.limit);
        else
            table.value(what + ", until it is shown", milliseconds, "ms");
        table.limit(size + ": " + change.what + ", the longest time without an answer", pause, "ms",
                    100);
    }
    rest(400);
    Pauses pauses;
    window->setBeside(fourOfTheSame());
    waitFor([&] { return areAllShown(window->getSideBySide()); });
    rest(1000);
    table.limit(size + ": opening four views, the longest time without an answer", pauses.longest(),
                "ms", 100);
}

} // namespace

int main()
{
    const TemporaryFolder settings;
    setenv("XDG_CONFIG_HOME", settings.path.c_str(), 1);
    initialiseWindows("strandview");
    initialiseScene();
    Table table("Changes in a window",
                "From a change of the style to the first frame that shows it, in a window of 900 x "
                "700 pixels on a server\nwithout a screen, drawn by Mesa's software driver: a tube "
                "of so many vertices; and the longest time\nmeanwhile in which the window does not "
                "answer.");
    measure(table, 10000, 9, "10⁵ vertices", 7, true);
    measure(table, 1000000, 6, "10⁶ points", 1, false);
    table.print();
}
