// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_BUILDERS_DATACOLOURS_H
#define STRANDVIEW_APP_SCENE_BUILDERS_DATACOLOURS_H

#include <vector>

#include "scene/RowColours.h"

class SoArrow;
class SoMaterial;
class SoNode;
class SoRod;
class SoSeparator;
class SoSwitch;

namespace strandview {

struct Colouring;

// Nodes of what has colours of its own and those of data, of which one is chosen.

/// Child 0 gives its own colours, child 1 those of data, one for each row. Without a reference.
SoSwitch* makeColourChoice(SoNode* own);
/// The material of child 1.
SoMaterial* dataMaterial(const SoSwitch& choice);

/// Puts a choice in the place of a group's child, which it takes as its first.
SoSwitch* putColourChoice(SoSeparator& group, int child);
/// Puts the choice's first child back.
void dropColourChoice(SoSeparator& group, int child);

/// Lets a material have one colour for each row of some curves whose points have these places:
/// those that were made of the same rows, whose memory it takes over, or new ones.
void setRowColours(const Colouring& colouring,
                   const std::vector<const std::vector<double>*>& places,
                   std::vector<CurveRows> curves, RowColours* made, SoMaterial* material);

/// The head of a strand, which has the colour of the tube's end where colours of data are shown.
/// Without a reference.
SoSeparator* makeHead();
SoArrow* arrowOf(const SoSeparator& head);
/// Lets the head follow the choice of its rod's colours, or without one have its own.
void setHeadColours(const SoSeparator& head, const SoRod& rod, SoSwitch* choice);

} // namespace strandview

#endif
