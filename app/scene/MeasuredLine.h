// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_MEASUREDLINE_H
#define STRANDVIEW_APP_SCENE_MEASUREDLINE_H

#include <optional>
#include <string>
#include <vector>

#include <Inventor/SbVec3f.h>

#include "scene/measure.h"

class SoNode;

namespace strandview {

class DataScene;

/// A measurement as it is drawn: a line through its places, with its value beside it.
struct MeasuredLine
{
    std::vector<SbVec3f> points; ///< in the scene
    std::string text;            ///< "arm 12.3 Å", "104.5°"
};

/// Nothing of one that is not shown, or one of whose places is of something hidden.
std::optional<MeasuredLine> lineOf(const Measurement& measurement, const MeasuredValue& value,
                                   const DataScene& scene);

/// Measurements of the data that a scene shows, to be drawn over it (DataScene::setMeasured()) with
/// letters as large as a legend's, black or white as is read on the background, on plates of that.
/// Those that the data do not have, or whose places are hidden, are left out. Its reference count
/// is zero; null if there is nothing to draw. In the thread that Coin is used in.
SoNode* makeMeasured(const std::vector<Measurement>& measurements, const Configuration& data,
                     const DataScene& scene);

} // namespace strandview

#endif
