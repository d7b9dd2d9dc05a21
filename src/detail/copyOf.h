// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DETAIL_COPYOF_H
#define STRANDVIEW_DETAIL_COPYOF_H

#include <Inventor/fields/SoFieldContainer.h>

/// What became of a node, or of none, in the copy that is being made, for use in
/// copyContents(): Coin copies the children, and a class that points at some follows with this.
template <typename Node>
Node* copyOf(Node* original, SbBool copyConnections)
{
    return original ? static_cast<Node*>(SoFieldContainer::findCopy(original, copyConnections))
                    : nullptr;
}

/// The same for a node that the class references: the copy takes the place of the one held.
template <typename Node>
void holdCopyOf(Node* original, Node*& held, SbBool copyConnections)
{
    Node* const copy = copyOf(original, copyConnections);
    copy->ref();
    if (held)
        held->unref();
    held = copy;
}

#endif
