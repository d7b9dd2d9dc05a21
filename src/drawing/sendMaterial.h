// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DRAWING_SENDMATERIAL_H
#define STRANDVIEW_DRAWING_SENDMATERIAL_H

#include <algorithm>

#include <Inventor/bundles/SoMaterialBundle.h>
#include <Inventor/elements/SoLazyElement.h>

/// Sends a material, or the last one where there are not so many: Coin does not look and
/// would read past the end of its colours.
inline void sendMaterial(SoMaterialBundle& bundle, int index)
{
    // A bundle keeps the traversal state, which knows how many there are, to itself.
    struct Opened : SoMaterialBundle
    {
        static SoState* stateOf(const SoMaterialBundle& other) { return other.*(&Opened::state); }
    };
    const int count = SoLazyElement::getInstance(Opened::stateOf(bundle))->getNumDiffuse();
    bundle.send(std::max(std::min(index, count - 1), 0), TRUE);
}

#endif
