// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_DRAWINGCOMPARISON_H
#define STRANDVIEW_TESTS_DRAWINGCOMPARISON_H

#include <memory>

#include <Inventor/SoOffscreenRenderer.h>
#include <Inventor/nodes/SoPerspectiveCamera.h>
#include <Inventor/nodes/SoSeparator.h>
#include <gtest/gtest.h>

#include "CoinEnvironment.h"
#include "renderPicture.h"

/// The calls of glDrawArrays and glDrawElements so far, and of those that draw at many places;
/// for a test to set to zero. A program that links the source has these functions of its own,
/// which count. Coin itself draws in
/// immediate mode.
extern int drawCount;
/// The indices that these were given so far.
extern int indexCount;
/// The places that draws of many places were given so far.
extern int placeCount;

/// A node that draws from buffers looks like its graph traversed: its children, under a plain
/// separator and an override, with which nothing is drawn from buffers.
class DrawingComparison : public CoinTest
{
protected:
    static const int SIZE = 200;

    DrawingComparison();
    /// The node that is to be compared, once it has its children.
    void compareDrawing(SoGroup* node);

    void setUnlit();

    /// The picture of the scene, or of another one above the place, in either way.
    Picture draw() { return draw(scene); }
    Picture draw(SoNode* root);
    Picture traverse() { return traverse(scene); }
    Picture traverse(SoNode* root);
    /// The number of draws from buffers in a frame.
    int countDraws();
    /// Both pictures are the same, and the node drew from its buffers, or did not.
    void expectSame(bool fromBuffers = true);

    NodeRef<SoSeparator> scene{new SoSeparator};
    SoPerspectiveCamera* camera = new SoPerspectiveCamera;
    SoGroup* settings = new SoGroup;      // for what a test puts before the node
    SoSeparator* place = new SoSeparator; // of the node, or of its children
    std::unique_ptr<SoOffscreenRenderer> renderer =
        std::make_unique<SoOffscreenRenderer>(SbViewportRegion(SIZE, SIZE));

    ~DrawingComparison() override;

private:
    SoNode* drawn = nullptr;
    NodeRef<SoSeparator> plain{new SoSeparator};
    const int initialCaches = SoSeparator::getNumRenderCaches();
};

#endif
