// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_SHOWNDATUM_H
#define STRANDVIEW_APP_SCENE_SHOWNDATUM_H

#include <string>
#include <vector>

#include <Inventor/SbBox3f.h>
#include <Inventor/SbColor.h>

#include "request/ThingKind.h"

class BiarcTubeMesh;
class SoNode;
class SoPickedPoint;
class SoSeparator;
class SoSwitch;

namespace strandview {

struct PickedPlace;

/// The nodes of one datum, which the scene graph owns, and what is known of them.
struct ShownDatum
{
    ThingKind kind = ThingKind::OTHER;
    SoSeparator* group = nullptr; ///< all of them; a pick of any is told
    SoNode* node = nullptr;       ///< the one among them that shows the datum; may be the group
    std::string name;             ///< by which picks are told
    SbBox3f box;                  ///< in the scene
    /// Its own colours and those of data, if it has both.
    SoSwitch* colours = nullptr;
    std::string bases; ///< the letters of those that picks are told with
    std::vector<std::string>
        parts; ///< the names of its parts, if those are told instead of its own
    /// Sets datum, strand and row of a place that a point below the node of that index in
    /// its path, which is `group`, was picked for; null where there is nothing to set.
    void (*placeIn)(const ShownDatum& shown, const SoPickedPoint& picked, int index,
                    PickedPlace& place) = nullptr;
    /// Whose centreline tells arc lengths; null for what is no rod.
    BiarcTubeMesh* (*centralTube)(const SoNode& node) = nullptr;
    /// Those of strand 1 and 2; null for what has none with centrelines.
    BiarcTubeMesh* (*strandTube)(const SoNode& node, int strand) = nullptr;
    /// Sets and tells the colour of its own, which colours of data may cover; null for what has
    /// none.
    void (*setColour)(const ShownDatum& shown, const SbColor& colour) = nullptr;
    SbColor (*getColour)(const ShownDatum& shown) = nullptr;
    /// Lets it be drawn without the faces that are turned away, or with them, as what is cut open;
    /// null for what is always drawn with them.
    void (*setSolid)(const ShownDatum& shown, bool solid) = nullptr;
};

} // namespace strandview

#endif
