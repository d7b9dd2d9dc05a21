// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DRAWING_OVERALLCOLOUR_H
#define STRANDVIEW_DRAWING_OVERALLCOLOUR_H

#include <Inventor/nodes/SoMaterial.h>

#include <algebra3d/Vector3.h>
#include <toCoin.h>

/// What getters answer where there is no colour.
inline algebra3d::Vector3<double> noColour() { return {-1, -1, -1}; }

/// Makes a colour (red, green, blue) the material's ambient and diffuse one.
inline void setOverallColour(SoMaterial* material, const algebra3d::Vector3<double>& colour)
{
    const SbColor converted = toSbColor(colour);
    material->ambientColor = converted;
    material->diffuseColor = converted;
}

/// The material's first ambient colour.
inline algebra3d::Vector3<double> getOverallColour(const SoMaterial* material)
{
    if (material->ambientColor.getNum() == 0)
        return noColour();
    const SbColor& colour = *material->ambientColor.getValues(0);
    return {colour[0], colour[1], colour[2]};
}

#endif
