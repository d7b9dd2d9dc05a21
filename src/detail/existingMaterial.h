// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DETAIL_EXISTINGMATERIAL_H
#define STRANDVIEW_DETAIL_EXISTINGMATERIAL_H

#include <algorithm>

#include <Inventor/elements/SoLazyElement.h>

/// The index, or that of the last material where there are not so many: Coin does not
/// look and would read past the end of its colours.
inline int existingMaterial(SoState* state, int index)
{
    return std::min(index, SoLazyElement::getInstance(state)->getNumDiffuse() - 1);
}

#endif
