// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/SoLegendCamera.h"

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

void SoLegendCamera::standAtTop(bool atTop)
{
    if (atTop == isAtTop)
        return;
    isAtTop = atTop;
    touch();
}

void SoLegendCamera::copyContents(const SoFieldContainer* from, SbBool copyConnections)
{
    SoOrthographicCamera::copyContents(from, copyConnections);
    isAtTop = static_cast<const SoLegendCamera*>(from)->isAtTop;
}

SbViewVolume SoLegendCamera::getViewVolume(float useaspectratio) const
{
    SbViewVolume volume = SoOrthographicCamera::getViewVolume(useaspectratio);
    // A view that is higher than wide grows about its middle until it is 2 wide.
    const float aspect = useaspectratio > 0 ? useaspectratio : aspectRatio.getValue();
    if (aspect < 1)
        volume.translateCamera(SbVec3f(0, (isAtTop ? -1 : 1) * (1 / aspect - 1), 0));
    return volume;
}

} // namespace strandview
