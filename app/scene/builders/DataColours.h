// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_BUILDERS_DATACOLOURS_H
#define STRANDVIEW_APP_SCENE_BUILDERS_DATACOLOURS_H

#include <vector>

class BiarcRibbonMesh;
class BiarcTubeMesh;
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

/// Lets a material have no colours, then one for each row of the tube and the ribbon of a curve
/// whose points have these places; again for the next curve, behind the rows of those before.
/// Returns the number of rows of all.
void clearRowColours(SoMaterial* material);
int addRowColours(const Colouring& colouring, const std::vector<double>& places,
                  const BiarcTubeMesh& tube, const BiarcRibbonMesh& ribbon, int rowsBefore,
                  SoMaterial* material);

/// The head of a strand, which has the colour of the tube's end where colours of data are shown.
/// Without a reference.
SoSeparator* makeHead();
SoArrow* arrowOf(const SoSeparator& head);
/// Lets the head follow the choice of its rod's colours, or without one have its own.
void setHeadColours(const SoSeparator& head, const SoRod& rod, SoSwitch* choice);

} // namespace strandview

#endif
