// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/elements.h>

#include <cmath>
#include <limits>

#include <gmock/gmock.h>

#include <algebra3d/rotations.h>

namespace strandview {

namespace {

using testing::ElementsAre;
using Quaternion = algebra3d::Quaternion<double>;
using Vector = algebra3d::Vector3<double>;

Quaternion aboutZ(double angle) { return algebra3d::about(Vector(0, 0, 1), angle); }

void expectAnglesAboutZ(const std::vector<Quaternion>& rotations, const std::vector<double>& angles)
{
    ASSERT_EQ(rotations.size(), angles.size());
    for (std::size_t i = 0; i < angles.size(); ++i) {
        EXPECT_NEAR(std::abs(algebra3d::dot(rotations[i], aboutZ(angles[i]))), 1, 1e-15) << i;
        EXPECT_NEAR(rotations[i].getNorm(), 1, 1e-15) << i;
    }
}

} // namespace

TEST(Elements, APointHasTheMeanOfTheValuesBesideIt)
{
    EXPECT_THAT(valuesAtPoints({1, 3, 7}, false), ElementsAre(1, 2, 5, 7));
    EXPECT_THAT(valuesAtPoints({4}, false), ElementsAre(4, 4));
}

TEST(Elements, WhereAClosedRodsEndsMeetTheLastAndTheFirstDo)
{
    EXPECT_THAT(valuesAtPoints({1, 3, 7}, true), ElementsAre(4, 2, 5, 4));
}

TEST(Elements, TheMeanOfLargeValuesIsFinite)
{
    const double largest = std::numeric_limits<double>::max();
    EXPECT_THAT(valuesAtPoints({largest, largest}, false), ElementsAre(largest, largest, largest));
}

TEST(Elements, APointHasTheRotationHalfWayAndAnEndTurnsOn)
{
    expectAnglesAboutZ(rotationsAtPoints({aboutZ(0.2), aboutZ(0.6), aboutZ(0.8)}, false),
                       {0, 0.4, 0.7, 0.9});
}

TEST(Elements, EvenTwistStaysEven)
{
    expectAnglesAboutZ(rotationsAtPoints({aboutZ(0.1), aboutZ(0.3), aboutZ(0.5)}, false),
                       {0, 0.2, 0.4, 0.6});
}

TEST(Elements, ASingleElementGivesItsRotationToBothPoints)
{
    expectAnglesAboutZ(rotationsAtPoints({aboutZ(0.5)}, false), {0.5, 0.5});
    expectAnglesAboutZ(rotationsAtPoints({aboutZ(0.5)}, true), {0.5, 0.5});
}

TEST(Elements, AClosedRodHasOneRotationWhereItsEndsMeet)
{
    expectAnglesAboutZ(rotationsAtPoints({aboutZ(0), aboutZ(0.4), aboutZ(0.6)}, true),
                       {0.3, 0.2, 0.5, 0.3});
}

TEST(Elements, TheSignAndTheNormOfAQuaternionDoNotMatter)
{
    const Quaternion q = aboutZ(0.6);
    const Quaternion opposite(-1.005 * q[0], -1.005 * q[1], -1.005 * q[2], -1.005 * q[3]);
    expectAnglesAboutZ(rotationsAtPoints({aboutZ(0.2), opposite}, false), {0, 0.4, 0.8});
}

TEST(Elements, AnySignsOfNeighboursGiveTheSameRotations)
{
    for (int signs = 0; signs < 16; ++signs) {
        SCOPED_TRACE(signs);
        std::vector<Quaternion> elements;
        for (int i = 0; i < 4; ++i) {
            Quaternion q = aboutZ(0.2 * i * i);
            if (signs >> i & 1)
                q = Quaternion(-q[0], -q[1], -q[2], -q[3]);
            elements.push_back(q);
        }
        expectAnglesAboutZ(rotationsAtPoints(elements, false), {-0.1, 0.1, 0.5, 1.3, 2.3});
        expectAnglesAboutZ(rotationsAtPoints(elements, true), {0.9, 0.1, 0.5, 1.3, 0.9});
    }
}

} // namespace strandview
