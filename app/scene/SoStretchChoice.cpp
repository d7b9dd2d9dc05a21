// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/SoStretchChoice.h"

#include <algorithm>
#include <utility>

#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/misc/SoChildList.h>

#include "scene/SoLegendCamera.h"

namespace strandview {

SO_NODE_SOURCE(SoStretchChoice);

void SoStretchChoice::initClass() { SO_NODE_INIT_CLASS(SoStretchChoice, SoGroup, "Group"); }

SoStretchChoice::SoStretchChoice() { SO_NODE_CONSTRUCTOR(SoStretchChoice); }

SoStretchChoice::SoStretchChoice(const SoLegendCamera& cameraBefore,
                                 std::vector<float> stretchesOfChildren)
    : camera(&cameraBefore), stretches(std::move(stretchesOfChildren))
{
    SO_NODE_CONSTRUCTOR(SoStretchChoice);
}

SoStretchChoice::~SoStretchChoice() = default;

void SoStretchChoice::doAction(SoAction* action)
{
    const float slack = 1e-4f; // of an aspect that is rounded
    const float stretch = camera ? camera->getStretch() + slack : 1;
    const auto longer = std::upper_bound(stretches.begin(), stretches.end(), stretch);
    const int chosen = std::max(0, int(longer - stretches.begin()) - 1);
    if (chosen < getNumChildren())
        getChildren()->traverse(action, chosen);
}

void SoStretchChoice::GLRender(SoGLRenderAction* action) { doAction(action); }

void SoStretchChoice::callback(SoCallbackAction* action) { doAction(action); }

} // namespace strandview
