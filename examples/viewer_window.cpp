// SPDX-License-Identifier: GPL-3.0-or-later
// A host with a window of its own around the viewer: a scene that hears of picks, a
// callback that counts keys, one that follows the view's size, and the zoom field.
#include <cmath>

#include <Inventor/Qt/SoQt.h>
#include <Inventor/SoPickedPoint.h>
#include <Inventor/events/SoKeyboardEvent.h>
#include <Inventor/nodes/SoMaterial.h>
#include <QStatusBar>
#include <QVBoxLayout>
#include <SoGeneralScene.h>
#include <SoQtGeneralViewer.h>
#include <SoQtGeneralViewerDialog.h>
#include <SoRod.h>
#include <algebra3d/rotations.h>

namespace {

// Right click, or left click after Esc.
class PickedScene : public SoGeneralScene
{
public:
    explicit PickedScene(QStatusBar* whereToTell) : statusBar(whereToTell) {}

    bool processPickEvent(const SoPickedPoint* picked) override
    {
        const SbVec3f& point = picked->getPoint();
        statusBar->showMessage(
            QString("picked %1 %2 %3").arg(point[0]).arg(point[1]).arg(point[2]));
        return true;
    }

private:
    QStatusBar* statusBar;
};

SoRod* makeHelix()
{
    using Vector = algebra3d::Vector3<double>;
    using algebra3d::about;
    using algebra3d::between;
    std::vector<Vector> points;
    std::vector<algebra3d::Quaternion<double>> rotations;
    const double pitch = 0.5; // the tangent is (-sin t, cos t, pitch), normalised
    for (double t = 0; t < 20; t += 0.2) {
        points.emplace_back(std::cos(t), std::sin(t), pitch * t);
        // From z to the first tangent, then about z with the helix.
        rotations.push_back(about(Vector(0, 0, 1), t) * between(Vector(0, 0, 1), {0, 1, pitch}));
    }
    auto* rod = new SoRod(0.1, 0.4, 24, 4, true, true, false);
    rod->setData(points, rotations);
    return rod;
}

void countKeys(void* count, SoQtGeneralViewer* /*viewer*/, const SoEvent* event)
{
    if (SoKeyboardEvent::isKeyPressEvent(event, SoKeyboardEvent::ANY))
        ++*static_cast<int*>(count);
}

void tellSize(void* window, SoQtGeneralViewer* /*viewer*/, const SbVec2s& size)
{
    static_cast<QWidget*>(window)->setWindowTitle(
        QString("Helix, %1 x %2").arg(size[0]).arg(size[1]));
}

class Window : public SoQtGeneralViewerDialog
{
public:
    Window() : SoQtGeneralViewerDialog(nullptr)
    {
        resize(800, 600);
        auto* layout = new QVBoxLayout(this);
        auto* area = new QWidget(this);
        layout->addWidget(area, 1);
        layout->addWidget(statusBar);

        viewer = new SoQtGeneralViewer(area);
        viewer->addPreEventProcessCB(countKeys, &keyCount);
        viewer->addResizeCB(tellSize, this);
        auto* colours = new SoMaterial;
        colours->diffuseColor.set1Value(0, SbColor(0.2f, 0.5f, 0.8f)); // tubes
        colours->diffuseColor.set1Value(1, SbColor(0.9f, 0.6f, 0.1f)); // ribbons
        auto* scene = new PickedScene(statusBar);
        scene->addShaded(colours);
        scene->addShaded(makeHelix());
        viewer->setSceneGraph(scene);                             // seen along -z, all of it
        viewer->setupCamera(SbVec3f(-1, 0, 0), SbVec3f(0, 1, 0)); // the helix lies across
        viewer->setCameraZoom(60);                                // pixels per unit
        viewer->setBackgroundColor(SbColor(1, 1, 1));
        viewer->show();
        setupUi(); // the zoom field
    }

    ~Window() override { delete viewer; } // before the dialog that it calls back

    int keyCount = 0;
};

} // namespace

int main(int, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "xcb");                 // Coin speaks X11 alone, under Wayland, too
    SoQtGeneralViewer::setDefaultAntialiasingLevel(4); // before the viewer is made
    SoQt::init(argv[0]);
    SoQtGeneralViewer::initClass();
    SoMeshShape::initClass();
    SoRod::initClass();
    SoGeneralScene::initClass();

    Window window;
    window.show();
    SoQt::mainLoop();
    qInfo("%d keys", window.keyCount);
}
