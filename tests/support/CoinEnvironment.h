// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_COINENVIRONMENT_H
#define STRANDVIEW_TESTS_COINENVIRONMENT_H

#include <gtest/gtest.h>

/// Initialises Coin, its off-screen contexts and the nodes of rods and DNA, once per program.
/// Not done before a test asks for it: what happens without it is tested too, in
/// processes of its own.
void initCoinOnce();

/// The same and SoGeneralScene.
void initScenesOnce();

/// The base of the test suites that use nodes.
class CoinTest : public testing::Test
{
protected:
    static void SetUpTestSuite() { initCoinOnce(); }
};

/// Holds one reference of a node while a test uses it.
template <typename Node>
class NodeRef
{
public:
    explicit NodeRef(Node* heldNode) : node(heldNode) { node->ref(); }
    ~NodeRef() { node->unref(); }
    NodeRef(const NodeRef&) = delete;
    NodeRef& operator=(const NodeRef&) = delete;

    Node* operator->() const { return node; }
    operator Node*() const { return node; }

private:
    Node* node;
};

#endif
