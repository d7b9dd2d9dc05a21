// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_DRAWINGLOOK_H
#define STRANDVIEW_APP_REQUEST_DRAWINGLOOK_H

#include <optional>

#include "request/Light.h"

namespace strandview {

/// How surfaces are drawn: lit, in their own colours alone, or as the edges of their faces.
enum class Shading { LIT, PLAIN, WIREFRAME };

/// How all shapes are drawn, whatever they are, and lit.
struct DrawingLook
{
    Shading shading = Shading::LIT;
    bool boundingBoxes = false; ///< instead of shapes
    double lineWidth = 1;       ///< of a wireframe, in pixels
    // Else each light as it is by itself, and highlights where data do not give the colours.
    std::optional<Light> light1, light2, light3;
    std::optional<Shininess> shininess;
};

inline bool operator==(const DrawingLook& a, const DrawingLook& b)
{
    return a.shading == b.shading && a.boundingBoxes == b.boundingBoxes &&
           a.lineWidth == b.lineWidth && a.light1 == b.light1 && a.light2 == b.light2 &&
           a.light3 == b.light3 && a.shininess == b.shininess;
}
inline bool operator!=(const DrawingLook& a, const DrawingLook& b) { return !(a == b); }

} // namespace strandview

#endif
