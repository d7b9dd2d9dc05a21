// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_SHOWNDATUM_H
#define STRANDVIEW_APP_SCENE_SHOWNDATUM_H

#include <map>
#include <set>
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

struct DnaLook;
struct PickedPlace;
struct ShownDatum;
struct ThingStyle;

/// How the parts of a datum are drawn beside each other.
struct PartLooks
{
    std::set<ThingPart> hidden;
    /// Of each part that is seen through and, as that of the whole, of what is no part's.
    std::map<ThingPart, double> transparencies;

    bool areUsual() const { return hidden.empty() && transparencies.empty(); }
    bool isShown(ThingPart part) const { return hidden.count(part) == 0; }
    double transparencyOf(ThingPart part) const
    {
        const auto known = transparencies.find(part);
        return known == transparencies.end() ? 0 : known->second;
    }
};

/// What can be done with each part of a datum that has some.
struct PartsOfDatum
{
    /// Lets them be drawn so; not asked for where all are hidden, and again where they are drawn so
    /// already once nodes show other data or have other colours.
    void (*show)(const ShownDatum& shown, const PartLooks& looks, const ThingStyle& style,
                 const DnaLook& dna);
    /// As those of a whole datum.
    void (*setColour)(const ShownDatum& shown, ThingPart part, const SbColor& colour);
    SbColor (*getColour)(const ShownDatum& shown, ThingPart part);
    /// In the scene; empty where there is nothing of it.
    SbBox3f (*findBox)(const ShownDatum& shown, ThingPart part);
    /// New nodes that draw it alone as it is now, in any colours. Without a reference.
    SoNode* (*makeAlone)(const ShownDatum& shown, ThingPart part, const ThingStyle& style,
                         const DnaLook& dna);
};

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
    /// Lets it be drawn as what is seen through so around it should be, or as what is not; null for
    /// what has parts, and for what is the same.
    void (*setTransparency)(const ShownDatum& shown, double transparency,
                            const DnaLook& dna) = nullptr;
    const PartsOfDatum* ofParts = nullptr; ///< null of what has none
    PartLooks partLooks;                   ///< as they are drawn
    /// Lets it be drawn without the faces that are turned away, or with them, as what is cut open;
    /// null for what is always drawn with them.
    void (*setSolid)(const ShownDatum& shown, bool solid) = nullptr;
};

} // namespace strandview

#endif
