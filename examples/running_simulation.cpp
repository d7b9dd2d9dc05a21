// SPDX-License-Identifier: GPL-3.0-or-later
// A host whose picture follows a running simulation: a vibrating string with twist, integrated in
// the event loop. Each frame shows the newest state; the title and standard output tell how many
// frames a second are shown, and what the rod's share of each is.
//
//     running_simulation [POINTS [SECONDS]]
//
// of 1,000 points, until the window is closed, unless told otherwise.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <vector>

#include <Inventor/Qt/SoQt.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/nodes/SoCallback.h>
#include <Inventor/nodes/SoMaterial.h>
#include <QTimer>
#include <QWidget>
#include <SoGeneralScene.h>
#include <SoQtGeneralViewer.h>
#include <SoRod.h>
#include <algebra3d/rotations.h>
#include <global.h>

namespace {

using Vector = algebra3d::Vector3<double>;
using Rotation = algebra3d::Quaternion<double>;

// The wave equation for the two displacements of a string along x, fixed at its ends, by central
// differences in space and time (leapfrog; stable while a wave does not pass a whole interval
// in one step).
class VibratingString
{
public:
    explicit VibratingString(int points) : now(std::size_t(points)), before(now), next(now)
    {
        for (std::size_t i = 0; i < now.size(); ++i) {
            const double x = double(i) / double(now.size() - 1);
            now[i] = Vector(0, std::sin(M_PI * x) + 0.5 * std::sin(2 * M_PI * x),
                            0.4 * std::sin(3 * M_PI * x));
        }
        before = now;
    }

    void step()
    {
        const double courant = 0.5; // wave speed times step, in intervals
        for (std::size_t i = 1; i + 1 < now.size(); ++i)
            next[i] =
                2 * now[i] - before[i] + courant * courant * (now[i + 1] - 2 * now[i] + now[i - 1]);
        before.swap(now);
        now.swap(next);
    }

    std::vector<Vector> points() const
    {
        std::vector<Vector> result(now);
        for (std::size_t i = 0; i < result.size(); ++i)
            result[i].x = LENGTH * double(i) / double(result.size() - 1);
        return result;
    }

    // The smallest turn that takes z into the tangent, d3 of the material frame, after a twist
    // about z of half a radian per length.
    static std::vector<Rotation> frames(const std::vector<Vector>& points)
    {
        std::vector<Rotation> result;
        result.reserve(points.size());
        for (std::size_t i = 0; i < points.size(); ++i) {
            const Vector& from = points[i == 0 ? 0 : i - 1];
            const Vector& to = points[i + 1 == points.size() ? i : i + 1];
            const Vector tangent = to - from;
            const Vector z(0, 0, 1);
            result.push_back(algebra3d::between(z, tangent) * algebra3d::about(z, points[i].x / 2));
        }
        return result;
    }

private:
    static constexpr double LENGTH = 8;
    std::vector<Vector> now, before, next; // of the displacements; x is not used
};

void countFrame(void* frames, SoAction* action)
{
    if (action->isOfType(SoGLRenderAction::getClassTypeId()))
        ++*static_cast<int*>(frames);
}

double secondsNow()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

} // namespace

int main(int count, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "xcb"); // Coin speaks X11 alone, under Wayland, too
    QWidget* window = SoQt::init(argv[0]);
    initStrandviewClasses();

    const int pointCount = count > 1 ? std::max(std::atoi(argv[1]), 3) : 1000;
    const double duration = count > 2 ? std::atof(argv[2]) : 0;
    VibratingString string(pointCount);
    auto* rod = new SoRod(0.05, 0.4, 12, pointCount < 5000 ? 2 : 1, true, true, false);
    rod->drawCoarsely(true); // more rows than pixels are not seen
    int rebuilds = 0, frames = 0;
    double rebuilding = 0; // seconds
    const auto show = [&] {
        const std::vector<Vector> points = string.points();
        const std::vector<Rotation> rotations = VibratingString::frames(points);
        const double start = secondsNow();
        rod->setData(points, rotations); // the next frame shows it
        rebuilding += secondsNow() - start;
        ++rebuilds;
    };
    show();

    auto* scene = new SoGeneralScene;
    auto* colours = new SoMaterial;
    colours->diffuseColor.set1Value(0, SbColor(0.2f, 0.5f, 0.8f)); // tubes
    colours->diffuseColor.set1Value(1, SbColor(0.9f, 0.6f, 0.1f)); // ribbons
    scene->addShaded(colours);
    scene->addShaded(rod);
    auto* counter = new SoCallback;
    counter->setCallback(countFrame, &frames);
    scene->addShaded(counter);
    auto* viewer = new SoQtGeneralViewer(window);
    viewer->setSceneGraph(scene);
    viewer->setBackgroundColor(SbColor(1, 1, 1));
    viewer->show();
    window->resize(900, 600);

    const double begin = secondsNow();
    double told = begin;
    int framesTold = 0;
    const auto tell = [&](double now) {
        const QString text = QString("%1 points: %2 frames/s, %3 ms of each rebuild the rod")
                                 .arg(pointCount)
                                 .arg((frames - framesTold) / (now - told), 0, 'f', 1)
                                 .arg(1e3 * rebuilding / std::max(rebuilds, 1), 0, 'f', 2);
        window->setWindowTitle(text);
        std::cout << text.toStdString() << std::endl;
        told = now;
        framesTold = frames;
        rebuilds = 0;
        rebuilding = 0;
    };
    int framesBefore = 0; // the newest state
    QTimer timer;         // of no interval: as often as the event loop is idle
    QObject::connect(&timer, &QTimer::timeout, [&] {
        if (frames == framesBefore)
            return; // it is not drawn yet
        framesBefore = frames;
        for (int i = 0; i < 10; ++i)
            string.step();
        show();
        const double now = secondsNow();
        if (now - told > 2)
            tell(now);
        if (duration > 0 && now - begin > duration)
            SoQt::exitMainLoop();
    });
    timer.start();
    SoQt::show(window);
    SoQt::mainLoop();
    delete viewer;
}
