// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_SCALEBAR_H
#define STRANDVIEW_APP_SCENE_SCALEBAR_H

#include <string>

#include "request/Colour.h"
#include "request/LegendLook.h"

class SoBaseColor;
class SoNode;
class SoSeparator;

namespace strandview {

class SoScaleBar;

/// The part of a view's shorter side that a scale bar takes at most, and more than two fifths of
/// which it takes.
constexpr double LONGEST_SCALE_BAR = 0.25;

/// The longest of 1, 2 and 5 times a power of ten that is no longer than a length above 0.
double roundLength(double most);

/// "50 nm", "2×10⁻⁷", of a round length.
std::string scaleText(double length, const std::string& unit);

enum class ScaleBarCorner { LOWER_LEFT, UPPER_RIGHT };

/// One that a legend at this place leaves free, and a window's axes, which are at the lower right.
ScaleBarCorner cornerBeside(LegendPlace legend);

struct ScaleBarLook
{
    double perUnit = 1;     ///< of the scene, in the data's unit
    std::string unit = {};  ///< empty for none
    float textSize = 0.05f; ///< of letters, where the view's shorter side is 2
    ScaleBarCorner corner = ScaleBarCorner::LOWER_LEFT;
};

inline bool operator==(const ScaleBarLook& a, const ScaleBarLook& b)
{
    return a.perUnit == b.perUnit && a.unit == b.unit && a.textSize == b.textSize &&
           a.corner == b.corner;
}

/// A bar that tells how long things are, in a corner of whatever parallel view it is drawn in; see
/// SoScaleBar. Black or white, as is read on the background. In the thread that Coin is used in.
class ScaleBar
{
public:
    ScaleBar();
    ~ScaleBar();
    ScaleBar(const ScaleBar&) = delete;
    ScaleBar& operator=(const ScaleBar&) = delete;

    /// All of it; the scale bar has one of its references.
    SoNode* getNode() const;
    void set(const ScaleBarLook& look, const Colour& background);

private:
    SoSeparator* root;
    SoBaseColor* ink;
    SoScaleBar* bar;
};

} // namespace strandview

#endif
