// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/Stamp.h"

#include <algorithm>
#include <vector>

#include <Inventor/nodes/SoBaseColor.h>
#include <Inventor/nodes/SoSeparator.h>

#include "request/conversions.h"
#include "scene/Lettering.h"
#include "scene/Ticks.h"
#include "scene/overlay.h"

namespace strandview {

std::string stampText(std::size_t frame, const std::optional<double>& time)
{
    std::string text = "frame " + std::to_string(frame);
    return time ? text + ", t = " + numberText(*time, 6) : text;
}

SoNode* makeStamp(const std::string& text, const Colour& background, float textSize, float aspect,
                  StampPlace place)
{
    const float width = 2 * std::max(aspect, 1.0f), height = 2 * std::max(1 / aspect, 1.0f);
    const float margin = textSize / 2, ascent = 0.8f * textSize, descent = 0.25f * textSize;
    const Lettering letters;
    const std::string shown = letters.elide(text, double((width - 2 * margin) / textSize));
    const float baseline =
        place == StampPlace::UPPER_LEFT ? height - 1 - margin - ascent : margin + descent - 1;
    const float left = place == StampPlace::LOWER_RIGHT
                           ? width - margin - textSize * float(letters.getWidth(shown))
                           : margin;
    const SbVec3f begin(left - width / 2, baseline, 0);
    std::vector<SbVec3f> corners;
    for (const SbVec2f& corner : letters.getShape(shown))
        corners.push_back(begin + textSize * SbVec3f(corner[0], corner[1], 0));
    SoSeparator* stamp = makeOverlay();
    auto* ink = new SoBaseColor;
    ink->rgb = toSbColor(inkOn(background));
    stamp->addChild(ink);
    Quadrilaterals(*stamp).set(corners);
    return stamp;
}

} // namespace strandview
