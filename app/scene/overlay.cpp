// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/overlay.h"

#include <cstdint>

#include <Inventor/nodes/SoCoordinate3.h>
#include <Inventor/nodes/SoDepthBuffer.h>
#include <Inventor/nodes/SoFaceSet.h>
#include <Inventor/nodes/SoLightModel.h>

#include <ColourMapper.h>

#include "request/conversions.h"
#include "scene/SoLegendCamera.h"
#include "scene/SoOverlay.h"

namespace strandview {

SoSeparator* makeOverlay()
{
    auto* overlay = new SoOverlay;
    overlay->addChild(new SoLegendCamera);
    auto* depth = new SoDepthBuffer;
    depth->test = FALSE;
    depth->write = FALSE;
    overlay->addChild(depth);
    auto* lightModel = new SoLightModel;
    lightModel->model = SoLightModel::BASE_COLOR;
    overlay->addChild(lightModel);
    return overlay;
}

SoLegendCamera& cameraOf(SoSeparator& overlay)
{
    return *static_cast<SoLegendCamera*>(overlay.getChild(0));
}

Quadrilaterals::Quadrilaterals(SoSeparator& overlay)
    : coordinates(new SoCoordinate3), faces(new SoFaceSet)
{
    overlay.addChild(coordinates);
    overlay.addChild(faces);
}

void Quadrilaterals::set(const std::vector<SbVec3f>& corners)
{
    setPoints(*coordinates, corners);
    const std::vector<int32_t> counts(corners.size() / 4, 4);
    faces->numVertices.setNum(int(counts.size()));
    faces->numVertices.setValues(0, int(counts.size()), counts.data());
}

void setPoints(SoCoordinate3& coordinates, const std::vector<SbVec3f>& points)
{
    coordinates.point.setNum(int(points.size()));
    coordinates.point.setValues(0, int(points.size()), points.data());
}

Colour inkOn(const Colour& background)
{
    const ColourMapper::Colour ink = ColourMapper::getForeground(toVector(background));
    return {float(ink.x), float(ink.y), float(ink.z)};
}

} // namespace strandview
