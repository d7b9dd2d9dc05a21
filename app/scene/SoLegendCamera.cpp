// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/SoLegendCamera.h"

#include <algorithm>

#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/elements/SoViewVolumeElement.h>

namespace strandview {

SO_NODE_SOURCE(SoLegendCamera);

void SoLegendCamera::initClass()
{
    SO_NODE_INIT_CLASS(SoLegendCamera, SoOrthographicCamera, "OrthographicCamera");
}

SoLegendCamera::SoLegendCamera()
{
    SO_NODE_CONSTRUCTOR(SoLegendCamera);
    position = SbVec3f(0, 0, 1);
    height = 2;
    nearDistance = 0.5f;
    farDistance = 1.5f;
}

SoLegendCamera::~SoLegendCamera() = default;

void SoLegendCamera::standAt(LegendPlace at)
{
    if (at == place)
        return;
    place = at;
    touch();
}

void SoLegendCamera::doAction(SoAction* action)
{
    before = SoViewVolumeElement::get(action->getState());
    SoOrthographicCamera::doAction(action);
}

void SoLegendCamera::GLRender(SoGLRenderAction* action)
{
    before = SoViewVolumeElement::get(action->getState());
    SoOrthographicCamera::GLRender(action);
}

void SoLegendCamera::callback(SoCallbackAction* action)
{
    before = SoViewVolumeElement::get(action->getState());
    SoOrthographicCamera::callback(action);
}

void SoLegendCamera::copyContents(const SoFieldContainer* from, SbBool copyConnections)
{
    SoOrthographicCamera::copyContents(from, copyConnections);
    place = static_cast<const SoLegendCamera*>(from)->place;
}

SbViewVolume SoLegendCamera::getViewVolume(float useaspectratio) const
{
    SbViewVolume volume = SoOrthographicCamera::getViewVolume(useaspectratio);
    const float aspect = useaspectratio > 0 ? useaspectratio : aspectRatio.getValue();
    const bool isUpright = place == LegendPlace::LEFT || place == LegendPlace::RIGHT;
    stretch = std::max(1.0f, isUpright ? 1 / aspect : aspect);
    extent = 2 * SbVec2f(std::max(1.0f, aspect), std::max(1.0f, 1 / aspect));
    // A view that is higher than wide grows about its middle until it is 2 wide.
    if (aspect < 1 && !isUpright)
        volume.translateCamera(
            SbVec3f(0, (place == LegendPlace::TOP ? -1 : 1) * (1 / aspect - 1), 0));
    if (aspect > 1 && isUpright)
        volume.translateCamera(
            SbVec3f((place == LegendPlace::RIGHT ? -1 : 1) * (aspect - 1), 0, 0));
    return volume;
}

} // namespace strandview
