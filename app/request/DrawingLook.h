// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_DRAWINGLOOK_H
#define STRANDVIEW_APP_REQUEST_DRAWINGLOOK_H

namespace strandview {

/// How surfaces are drawn: lit, in their own colours alone, or as the edges of their faces.
enum class Shading { LIT, PLAIN, WIREFRAME };

/// How all shapes are drawn, whatever they are.
struct DrawingLook
{
    Shading shading = Shading::LIT;
    bool boundingBoxes = false; ///< instead of shapes
    double lineWidth = 1;       ///< of a wireframe, in pixels
};

inline bool operator==(const DrawingLook& a, const DrawingLook& b)
{
    return a.shading == b.shading && a.boundingBoxes == b.boundingBoxes &&
           a.lineWidth == b.lineWidth;
}
inline bool operator!=(const DrawingLook& a, const DrawingLook& b) { return !(a == b); }

} // namespace strandview

#endif
