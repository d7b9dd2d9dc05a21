// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DETAIL_COPYOF_H
#define STRANDVIEW_DETAIL_COPYOF_H

#include <Inventor/fields/SoFieldContainer.h>

/// What became of a node in the copy that is being made, for use in copyContents():
/// Coin copies the children, and a class that points at some follows with this.
template <typename Node>
Node* copyOf(const Node* original, SbBool copyConnections)
{
    return static_cast<Node*>(SoFieldContainer::findCopy(original, copyConnections));
}

#endif
