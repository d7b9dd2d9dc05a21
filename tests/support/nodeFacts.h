// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_NODEFACTS_H
#define STRANDVIEW_TESTS_NODEFACTS_H

#include <Inventor/SbBox3f.h>
#include <Inventor/SbVec3f.h>
#include <Inventor/SoPickedPoint.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <gtest/gtest.h>

#include <algebra3d/Vector3.h>

#include "drawing.h"
#include "triangles.h"

const SbViewportRegion viewport(100, 100);

inline SbBox3f boxOf(SoNode* node)
{
    SoGetBoundingBoxAction action(viewport);
    action.apply(node);
    return action.getBoundingBox();
}

inline void expectSameVector(const algebra3d::Vector3<double>& actual,
                             const algebra3d::Vector3<double>& expected)
{
    EXPECT_EQ(actual.x, expected.x);
    EXPECT_EQ(actual.y, expected.y);
    EXPECT_EQ(actual.z, expected.z);
}

/// For lengths of about 1, a few roundings of a float apart.
inline void expectNear(const SbVec3f& actual, const SbVec3f& expected)
{
    for (int axis = 0; axis < 3; ++axis)
        EXPECT_NEAR(actual[axis], expected[axis], 1e-6f) << "axis " << axis;
}

/// The shape draws, bounds, counts and generates nothing and is not hit by a ray along -x
/// at z = 0.7.
inline void expectNothingShown(SoNode* shape)
{
    EXPECT_TRUE(generatedTriangles(shape).empty());
    EXPECT_EQ(countedTriangles(shape), 0);
    SoGetBoundingBoxAction action(viewport);
    action.apply(shape);
    EXPECT_TRUE(action.getBoundingBox().isEmpty());
    EXPECT_FALSE(action.isCenterSet());
    for (const DrawingState& state : allDrawingStates())
        EXPECT_FALSE(containsStrips(recordDrawing(shape, state))) << state;
    SoRayPickAction pick(viewport);
    pick.setRay(SbVec3f(9, 0, 0.7f), SbVec3f(-1, 0, 0));
    pick.apply(shape);
    EXPECT_EQ(pick.getPickedPoint(), nullptr);
}

#endif
