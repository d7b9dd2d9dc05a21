// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_SHOWNDATUM_H
#define STRANDVIEW_APP_SCENE_SHOWNDATUM_H

#include <string>

#include <Inventor/SbBox3f.h>

class BiarcTubeMesh;
class SoNode;
class SoPath;
class SoSeparator;
class SoSwitch;

namespace strandview {

/// The nodes of one datum, which the scene graph owns, and what is known of them.
struct ShownDatum
{
    SoSeparator* group = nullptr; ///< all of them
    SoNode* node = nullptr;       ///< the one among them whose picks are told
    std::string name;             ///< by which
    SbBox3f box;                  ///< in the scene
    /// Its own colours and those of data, if it has both.
    SoSwitch* colours = nullptr;
    /// What a pick is told with besides its point: "pair 12 AT, strand 2, " of the path's node
    /// of that index, which is `node`; null if nothing.
    std::string (*placeIn)(const SoPath& path, int index) = nullptr;
    /// Whose centreline tells arc lengths; null for what is no rod.
    BiarcTubeMesh* (*centralTube)(const SoNode& node) = nullptr;
};

} // namespace strandview

#endif
