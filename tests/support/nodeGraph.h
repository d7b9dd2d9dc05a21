// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_NODEGRAPH_H
#define STRANDVIEW_TESTS_NODEGRAPH_H

#include <string>

#include <Inventor/lists/SoFieldList.h>
#include <Inventor/nodes/SoGroup.h>
#include <Inventor/nodes/SoSeparator.h>
#include <gtest/gtest.h>

#include "CoinEnvironment.h"

/// A child that must be there and of that very class; a fresh node otherwise.
template <typename Node>
Node* childOf(SoNode* group, int index)
{
    auto* parent = static_cast<SoGroup*>(group);
    if (index < parent->getNumChildren() &&
        parent->getChild(index)->getTypeId() == Node::getClassTypeId())
        return static_cast<Node*>(parent->getChild(index));
    ADD_FAILURE() << "child " << index << " is not a "
                  << Node::getClassTypeId().getName().getString();
    return static_cast<Node*>(Node::getClassTypeId().createInstance());
}

/// The classes of a node and everything below: "Separator(Cube Separator(Sphere))".
inline std::string outline(SoNode* node)
{
    std::string text = node->getTypeId().getName().getString();
    if (!node->isOfType(SoGroup::getClassTypeId()))
        return text;
    auto* group = static_cast<SoGroup*>(node);
    for (int i = 0; i < group->getNumChildren(); ++i)
        text += (i == 0 ? "(" : " ") + outline(group->getChild(i));
    return group->getNumChildren() > 0 ? text + ")" : text;
}

/// The node is of a class registered under that name whose parent is the separator, and
/// which adds no fields.
inline void expectSeparatorClass(SoSeparator* node, const char* name)
{
    const SoType type = node->getTypeId();
    EXPECT_EQ(type, SoType::fromName(name));
    EXPECT_EQ(type.getName(), SbName(name));
    EXPECT_EQ(type.getParent(), SoSeparator::getClassTypeId());
    EXPECT_TRUE(type.canCreateInstance());
    NodeRef<SoSeparator> separator(new SoSeparator);
    SoFieldList own, inherited;
    EXPECT_EQ(node->getFields(own), separator->getFields(inherited));
}

#endif
