// SPDX-License-Identifier: GPL-3.0-or-later
#include <cmath>

#include <Inventor/Qt/SoQt.h>
#include <SoQtGeneralViewer.h>
#include <SoRod.h>
#include <algebra3d/rotations.h>

int main(int, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "xcb"); // Coin speaks X11 alone, under Wayland, too
    QWidget* window = SoQt::init(argv[0]);
    SoQtGeneralViewer::initClass();
    SoMeshShape::initClass(); // parents first
    SoRod::initClass();

    using Vector = algebra3d::Vector3<double>;
    using algebra3d::about;
    std::vector<Vector> points;
    std::vector<algebra3d::Quaternion<double>> rotations; // from x, y, z to d1, d2, d3
    for (double x = 0; x < 12; x += 0.1) {                // along x, twisted by 1 radian per length
        points.emplace_back(x, 0, 0);
        rotations.push_back(about(Vector(1, 0, 0), x) * about(Vector(0, 1, 0), M_PI / 2));
    }
    auto* rod = new SoRod(0.1, 0.8, 24, 4, true, true, true); // radius, ribbon, how fine, what
    rod->setData(points, rotations);

    SoQtGeneralViewer viewer(window); // or any viewer of SoQt
    viewer.setSceneGraph(rod);
    viewer.show();
    SoQt::show(window);
    SoQt::mainLoop();
}
