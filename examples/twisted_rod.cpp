// SPDX-License-Identifier: GPL-3.0-or-later
#include <cmath>

#include <Inventor/Qt/SoQt.h>
#include <SoQtGeneralViewer.h>
#include <SoRod.h>

int main(int, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "xcb"); // Coin speaks X11 alone, under Wayland, too
    QWidget* window = SoQt::init(argv[0]);
    SoQtGeneralViewer::initClass();
    SoMeshShape::initClass(); // parents first
    SoRod::initClass();

    std::vector<algebra3d::Vector3<double>> points;
    std::vector<algebra3d::Quaternion<double>> rotations;
    for (double x = 0; x < 12; x += 0.1) { // along x, with a twist of one radian per length
        const double s = std::sqrt(0.5) * std::sin(x / 2), c = std::sqrt(0.5) * std::cos(x / 2);
        points.emplace_back(x, 0, 0);
        rotations.emplace_back(s, c, s, c);
    }
    auto* rod = new SoRod(0.1, 0.8, 24, 4, true, true, true); // radius, ribbon, how fine, what
    rod->setData(points, rotations);

    SoQtGeneralViewer viewer(window); // or any viewer of SoQt
    viewer.setSceneGraph(rod);
    viewer.show();
    SoQt::show(window);
    SoQt::mainLoop();
}
