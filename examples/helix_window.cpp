// SPDX-License-Identifier: GPL-3.0-or-later
// A rod in a window, with nothing but what the library needs.
#include <cmath>

#include <Inventor/Qt/SoQt.h>
#include <Inventor/Qt/viewers/SoQtExaminerViewer.h>
#include <SoRod.h>
#include <algebra3d/Matrix3.h>

int main(int, char** argv)
{
    QWidget* window = SoQt::init(argv[0]);
    SoMeshShape::initClass(); // parents first
    SoRod::initClass();

    std::vector<algebra3d::Vector3<double>> points;
    std::vector<algebra3d::Quaternion<double>> rotations;
    for (double a = 0; a < 19; a += 0.2) {
        points.emplace_back(std::cos(a), std::sin(a), 0.2 * a);
        const algebra3d::Vector3<double> inwards(-std::cos(a), -std::sin(a), 0); // d2
        const auto tangent = algebra3d::Vector3<double>(-std::sin(a), std::cos(a), 0.2).getUnit();
        rotations.push_back(
            algebra3d::Matrix3<double>(inwards.cross(tangent), inwards, tangent).getQuaternion());
    }
    auto* rod = new SoRod(0.08, 0.3, 24, 8, true, true, false);
    rod->setData(points, rotations);

    SoQtExaminerViewer viewer(window);
    viewer.setSceneGraph(rod);
    viewer.show();
    SoQt::show(window);
    SoQt::mainLoop();
}
