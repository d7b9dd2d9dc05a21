// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/SoOverlay.h"

namespace strandview {

SO_NODE_SOURCE(SoOverlay);

void SoOverlay::initClass() { SO_NODE_INIT_CLASS(SoOverlay, SoSeparator, "SoSeparator"); }

SoOverlay::SoOverlay() { SO_NODE_CONSTRUCTOR(SoOverlay); }

SoOverlay::~SoOverlay() = default;

void SoOverlay::getBoundingBox(SoGetBoundingBoxAction* /*action*/) {}

void SoOverlay::rayPick(SoRayPickAction* /*action*/) {}

void SoOverlay::search(SoSearchAction* action) { SoNode::search(action); }

} // namespace strandview
