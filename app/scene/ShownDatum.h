// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_SHOWNDATUM_H
#define STRANDVIEW_APP_SCENE_SHOWNDATUM_H

#include <string>
#include <vector>

#include <Inventor/SbBox3f.h>

#include "scene/Told.h"

class BiarcTubeMesh;
class SoNode;
class SoPickedPoint;
class SoSeparator;
class SoSwitch;

namespace strandview {

/// The nodes of one datum, which the scene graph owns, and what is known of them.
struct ShownDatum
{
    SoSeparator* group = nullptr; ///< all of them; a pick of any is told
    SoNode* node = nullptr;       ///< the one among them that shows the datum; may be the group
    std::string name;             ///< by which picks are told
    SbBox3f box;                  ///< in the scene
    /// Its own colours and those of data, if it has both.
    SoSwitch* colours = nullptr;
    std::string bases; ///< the letters of those that picks are told with
    std::vector<std::string>
        parts; ///< the names of its parts, if those are told instead of its own
    /// What a pick is told with besides its point, and by which name: "pair 12 AT, strand 2, " of
    /// a point below the node of that index in its path, which is `group`; null if nothing.
    Told (*placeIn)(const ShownDatum& shown, const SoPickedPoint& picked, int index) = nullptr;
    /// Whose centreline tells arc lengths; null for what is no rod.
    BiarcTubeMesh* (*centralTube)(const SoNode& node) = nullptr;
};

} // namespace strandview

#endif
