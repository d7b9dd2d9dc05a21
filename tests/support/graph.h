// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_GRAPH_H
#define STRANDVIEW_TESTS_GRAPH_H

#include <Inventor/SbBox3f.h>
#include <Inventor/SbViewportRegion.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/nodes/SoGroup.h>
#include <algebra3d/Vector3.h>
#include <gtest/gtest.h>

/// The child of a group with that index, which is to be of exactly that class.
template <typename Node>
Node* child(SoNode* group, int index)
{
    auto* const node = static_cast<SoGroup*>(group)->getChild(index);
    EXPECT_EQ(node->getTypeId(), Node::getClassTypeId());
    return static_cast<Node*>(node);
}

inline SbBox3f boxOf(SoNode* node)
{
    SoGetBoundingBoxAction action(SbViewportRegion(100, 100));
    action.apply(node);
    return action.getBoundingBox();
}

/// A colour as it is read back from Coin, which keeps floats.
inline void expectColour(const algebra3d::Vector3<double>& actual, double red, double green,
                         double blue)
{
    EXPECT_EQ(actual.x, float(red));
    EXPECT_EQ(actual.y, float(green));
    EXPECT_EQ(actual.z, float(blue));
}

#endif
