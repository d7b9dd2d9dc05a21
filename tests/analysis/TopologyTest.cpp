// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/topology.h>

#include <cmath>

#include <gmock/gmock.h>

#include <algebra3d/Matrix3.h>
#include <algebra3d/rotations.h>

#include <strandview/analysis/gaussIntegral.h>
#include <strandview/analysis/stepParameters.h>

#include "support/knots.h"

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;

// A closed rod whose d1 is the direction at each of its points, and d3 its tangent.
Rod framed(const std::vector<Vector>& points, const std::vector<Vector>& directions)
{
    Rod rod;
    rod.points = points;
    rod.isClosed = true;
    const std::size_t edges = points.size() - 1;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const Vector d3 = (points[(i + 1) % edges] - points[(i + edges - 1) % edges]).getUnit();
        const Vector d1 = (directions[i] - directions[i].dot(d3) * d3).getUnit();
        rod.rotations.push_back(algebra3d::Matrix3<double>(d1, d3.cross(d1), d3).getQuaternion());
    }
    rod.rotations.back() = rod.rotations.front();
    return rod;
}

Rod framedKnot() { return framed(torusKnot(2, 3, 400), torusNormals(2, 3, 400)); }

} // namespace

TEST(Topology, OfAFramedTorusKnotIsTheKnownOne)
{
    const Topology found = topologyOf(trackOf(framedKnot()));
    EXPECT_NEAR(found.writhe.value(), -3.517860454, 1e-9);
    EXPECT_NEAR(found.twist.value(), -2.4821395455, 1e-9);
    EXPECT_EQ(found.linkingNumber.value(), -6);
    EXPECT_FALSE(found.gaussIntegral);
}

TEST(Topology, OfARodWhoseFramesWereMadeIsItsWritheAlone)
{
    Rod rod = framedKnot();
    rod.hasFrames = false;
    const Topology found = topologyOf(trackOf(rod));
    EXPECT_TRUE(found.writhe);
    EXPECT_FALSE(found.twist || found.linkingNumber || found.gaussIntegral);
    EXPECT_FALSE(ribbonTwistOf(trackOf(rod)));
}

TEST(Topology, OfAnOpenRodHasAGaussIntegralAndNoWritheOrLink)
{
    Rod rod = framedKnot();
    rod.isClosed = false;
    rod.points.pop_back();
    rod.rotations.pop_back();
    const Topology found = topologyOf(trackOf(rod));
    EXPECT_NEAR(found.gaussIntegral.value(), gaussIntegral(rod.points), 0);
    EXPECT_FALSE(found.writhe || found.linkingNumber);
    EXPECT_NEAR(found.twist.value(), -2.48, 0.05);
    EXPECT_EQ(found.twist, ribbonTwistOf(trackOf(rod)));
}

TEST(Topology, OfARodWhoseFramesTurnOnHasNoLink)
{
    Rod rod = framedKnot();
    rod.rotations.back() = rod.rotations.back() * algebra3d::about(Vector(0, 0, 1), 0.5);
    const Topology found = topologyOf(trackOf(rod));
    EXPECT_TRUE(found.writhe);
    EXPECT_NEAR(found.twist.value(), -2.4821395455 + 0.5 / (2 * M_PI), 1e-9);
    EXPECT_FALSE(found.linkingNumber);
}

TEST(Topology, TellsAQuaternionFromItsOppositeNever)
{
    Rod rod = framedKnot();
    auto& q = rod.rotations.back();
    q = {-q[0], -q[1], -q[2], -q[3]};
    EXPECT_EQ(topologyOf(trackOf(rod)).linkingNumber.value(), -6);
}

TEST(Topology, OfABirodIsThatOfItsStrandAndItsAverage)
{
    Birod birod;
    birod.points = torusKnot(2, 3, 400);
    const auto normals = torusNormals(2, 3, 400);
    for (std::size_t i = 0; i < birod.points.size(); ++i) {
        birod.points1.push_back(birod.points[i] + normals[i] * 0.1);
        birod.points2.push_back(birod.points[i] - normals[i] * 0.1);
    }
    for (auto* rotations : {&birod.rotations, &birod.rotations1, &birod.rotations2})
        rotations->resize(birod.points.size());
    Configuration data;
    data.birods.push_back(birod);
    const auto tracks = tracksOf(data);
    const Topology found = topologyOf(tracks.at(0));
    EXPECT_EQ(found.linkingNumber.value(), -6);
    EXPECT_EQ(linkingNumber(birod.points, birod.points1), found.linkingNumber);
    EXPECT_NEAR(found.twist.value() + found.writhe.value(), -6, 1e-11);
}

TEST(Topology, OfAClosedDnaCountsItsTurns)
{
    // A planar ring of 105 pairs, turned ten times.
    const int size = 105, turns = 10;
    Dna dna;
    dna.isClosed = true;
    for (int i = 0; i < size; ++i) {
        const double t = 2 * M_PI * i / size, radius = 57;
        // d3 along the tangent of a circle about y.
        const auto along = algebra3d::about(Vector(0, 1, 0), t + M_PI / 2);
        dna.bases += 'N';
        dna.pairPoints.emplace_back(-radius * std::cos(t + M_PI / 2), 0,
                                    radius * std::sin(t + M_PI / 2));
        dna.pairRotations.push_back(along * algebra3d::about(Vector(0, 0, 1), turns * t));
    }
    for (auto* points : {&dna.points1, &dna.points2})
        *points = dna.pairPoints;
    for (auto* rotations : {&dna.rotations1, &dna.rotations2})
        *rotations = dna.pairRotations;
    Configuration data;
    data.dnas.push_back(dna);
    const auto tracks = tracksOf(data);
    const Topology found = topologyOf(tracks.at(0));
    EXPECT_EQ(found.linkingNumber.value(), turns);
    EXPECT_NEAR(found.twist.value(), turns, 1e-10);
    EXPECT_NEAR(found.writhe.value(), 0, 1e-12);
}

TEST(Topology, OfACurveThatMeetsItselfHasNoLink)
{
    // Two loops through the origin, in planes that are inclined to each other.
    std::vector<Vector> points;
    for (int i = 0; i <= 80; ++i) {
        const double t = 2 * M_PI * i / 40;
        const Vector loop(std::sin(t), 1 - std::cos(t), 0);
        points.push_back(i < 40 ? loop
                                : algebra3d::rotated(Vector(loop.x, -loop.y, 0),
                                                     algebra3d::about(Vector(3, 1, 2), 0.8)));
    }
    points[0] = points[40] = points[80] = Vector();
    const Topology met =
        topologyOf(trackOf(framed(points, std::vector<Vector>(81, Vector(0.1, 0.2, 1)))));
    EXPECT_TRUE(met.writhe && met.twist);
    EXPECT_FALSE(met.linkingNumber) << *met.writhe + *met.twist;
    points[40].z = 0.05;
    EXPECT_TRUE(topologyOf(trackOf(framed(points, std::vector<Vector>(81, Vector(0.1, 0.2, 1)))))
                    .linkingNumber);
}

TEST(Topology, OfFewPointsIsNothing)
{
    Rod rod;
    for (int size = 0; size < 2; ++size) {
        const Topology found = topologyOf(trackOf(rod));
        EXPECT_FALSE(found.writhe || found.gaussIntegral || found.twist || found.linkingNumber);
        rod.points.emplace_back(0, 0, 0);
        rod.rotations.emplace_back();
    }
}

} // namespace strandview
