// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_BUILDERS_BIRODSTRANDS_H
#define STRANDVIEW_APP_SCENE_BUILDERS_BIRODSTRANDS_H

#include "scene/ShownDatum.h"

class SoMaterial;

namespace strandview {

// The strands and the average of a birod one by one. Its node shows both strands or none, and all
// that it shows with the same transparency, so what is to be shown otherwise is a rod beside it.

/// The child of a birod's group, behind its node, that holds these rods. Without a reference.
SoNode* makeStrandRods();

/// Forgets the rods: the birod shows other data.
void dropStrandRods(const ShownDatum& shown);

/// The birod's own colours, a material for each row of its meshes.
SoMaterial& ownMaterial(const ShownDatum& shown);

/// What birods can do with their parts.
const PartsOfDatum* strandsOfBirod();

} // namespace strandview

#endif
