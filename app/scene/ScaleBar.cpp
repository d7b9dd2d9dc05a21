// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/ScaleBar.h"

#include <cmath>

#include <Inventor/nodes/SoBaseColor.h>
#include <Inventor/nodes/SoSeparator.h>

#include "request/conversions.h"
#include "scene/SoLegendCamera.h"
#include "scene/SoScaleBar.h"
#include "scene/Ticks.h"
#include "scene/overlay.h"

namespace strandview {

double roundLength(double most)
{
    const double slack = 1 + 1e-9; // of what is rounded
    const int exponent = int(std::floor(std::log10(most * slack)));
    double longest = 0;
    for (const int power : {exponent - 1, exponent, exponent + 1}) {
        for (const double digit : {1.0, 2.0, 5.0}) {
            // Exact where powers of ten are.
            const double length =
                power < 0 ? digit / std::pow(10, -power) : digit * std::pow(10, power);
            if (length <= most * slack)
                longest = length;
        }
    }
    return longest;
}

std::string scaleText(double length, const std::string& unit)
{
    const int digits = 1;
    return numberText(length, digits) + (unit.empty() ? "" : " " + unit);
}

ScaleBarCorner cornerBeside(LegendPlace legend)
{
    const bool isTaken = legend == LegendPlace::BOTTOM || legend == LegendPlace::LEFT;
    return isTaken ? ScaleBarCorner::UPPER_RIGHT : ScaleBarCorner::LOWER_LEFT;
}

ScaleBar::ScaleBar()
    : root(makeOverlay()), ink(new SoBaseColor), bar(new SoScaleBar(cameraOf(*root)))
{
    root->ref();
    root->addChild(ink);
    root->addChild(bar);
}

ScaleBar::~ScaleBar() { root->unref(); }

SoNode* ScaleBar::getNode() const { return root; }

void ScaleBar::set(const ScaleBarLook& look, const Colour& background)
{
    const SbColor colour = toSbColor(inkOn(background));
    if (ink->rgb.getNum() != 1 || ink->rgb[0] != colour)
        ink->rgb = colour;
    cameraOf(*root).standAt(look.corner == ScaleBarCorner::UPPER_RIGHT ? LegendPlace::TOP
                                                                       : LegendPlace::BOTTOM);
    bar->set(look);
}

} // namespace strandview
