// SPDX-License-Identifier: GPL-3.0-or-later
#include <global.h>

#include <algorithm>
#include <cmath>

#include <Inventor/Qt/viewers/SoQtExaminerViewer.h>
#include <Inventor/nodes/SoMaterial.h>

#include <SoArrow.h>
#include <SoBirod.h>
#include <SoDNA.h>
#include <SoFrame.h>
#include <SoGeneralScene.h>
#include <SoMarker.h>
#include <SoMeshShape.h>
#include <SoNucleobase.h>
#include <SoQtGeneralViewer.h>
#include <SoRod.h>
#include <toCoin.h>

using Rotation = algebra3d::Quaternion<double>;
using Vector = algebra3d::Vector3<double>;

namespace {

template <typename Class>
void initOnce()
{
    if (Class::getClassTypeId() == SoType::badType())
        Class::initClass();
}

template <typename... Classes>
void initEachOnce()
{
    (initOnce<Classes>(), ...);
}

} // namespace

void initStrandviewClasses()
{
    initEachOnce<SoMeshShape, SoRod, SoBirod, SoArrow, SoFrame, SoMarker, SoNucleobase, SoDNA,
                 SoGeneralScene>();
    if (SoQtExaminerViewer::getClassTypeId() != SoType::badType())
        initOnce<SoQtGeneralViewer>();
}

bool isPointRotCorrect(const Vector& /*point*/, const Rotation& rot, double tolerance)
{
    for (int i = 0; i < 4; ++i) {
        if (rot[i] != rot[i])
            return false;
    }
    return std::abs(rot.getNorm() - 1) <= tolerance;
}

bool isDataCorrect(const std::vector<Vector>& points, const std::vector<Rotation>& rots,
                   double tolerance)
{
    const std::size_t n = std::min(points.size(), rots.size());
    if (n < 2)
        return true;
    for (std::size_t i = 0; i < n; ++i) {
        if (!isPointRotCorrect(points[i], rots[i], tolerance))
            return false;
    }
    return true;
}

SoMaterial* createMaterial(const Vector& ambient, const Vector& diffuse, const Vector& specular)
{
    auto* material = new SoMaterial;
    material->ambientColor = toSbColor(ambient);
    material->diffuseColor = toSbColor(diffuse);
    material->specularColor = toSbColor(specular);
    return material;
}
