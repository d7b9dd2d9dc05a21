// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DETAIL_EXACTLY_H
#define STRANDVIEW_DETAIL_EXACTLY_H

/// A node as one of exactly that class, or null: subclasses may draw otherwise.
template <typename Node, typename AnyNode>
Node* exactly(AnyNode* node)
{
    return node->getTypeId() == Node::getClassTypeId() ? static_cast<Node*>(node) : nullptr;
}

#endif
