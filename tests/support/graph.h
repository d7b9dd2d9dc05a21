// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_GRAPH_H
#define STRANDVIEW_TESTS_GRAPH_H

#include <vector>

#include <Inventor/SbBox3f.h>
#include <Inventor/SbViewportRegion.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/actions/SoSearchAction.h>
#include <Inventor/misc/SoChildList.h>
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

/// All nodes of a class, or of those derived from it, in a graph, hidden ones too: once for each
/// path that leads there, in the order of the graph.
template <typename Node>
std::vector<Node*> allOf(SoNode* graph)
{
    SoSearchAction search;
    search.setType(Node::getClassTypeId());
    search.setInterest(SoSearchAction::ALL);
    search.setSearchingAll(TRUE);
    search.apply(graph);
    std::vector<Node*> found;
    for (int i = 0; i < search.getPaths().getLength(); ++i)
        found.push_back(static_cast<Node*>(search.getPaths()[i]->getTail()));
    return found;
}

/// All nodes of a graph, those that no search finds, too, in its order.
inline std::vector<const SoNode*> everyNodeOf(const SoNode* graph)
{
    std::vector<const SoNode*> all{graph};
    const SoChildList* const children = graph->getChildren();
    for (int i = 0; children && i < children->getLength(); ++i) {
        const std::vector<const SoNode*> below = everyNodeOf((*children)[i]);
        all.insert(all.end(), below.begin(), below.end());
    }
    return all;
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
