// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/ghostCurves.h"

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <strandview/analysis/comparison.h>
#include <strandview/analysis/superpose.h>

#include "scene/SceneBuilder.h"
#include "support/RandomConfigurations.h"
#include "support/StoppingAt.h"

namespace strandview {

namespace {

using Points = std::vector<Point>;
using Curves = std::vector<SceneGeometry::GhostCurve>;

Configuration comparedWith(Configuration data, const Configuration& reference)
{
    data.reference = std::make_shared<const Configuration>(reference);
    return data;
}

Style styleFor(const Configuration& data, bool hasGhost = true)
{
    Options options;
    options.compare.emplace("reference.json");
    options.showGhost = hasGhost;
    return makeStyle(options, data);
}

SceneGeometry geometryOf(const Configuration& data, const Style& style)
{
    StoppingAt never;
    std::string error;
    SceneGeometry geometry = computeGeometry(data, style, never, error);
    EXPECT_EQ(error, "");
    return geometry;
}

SceneGeometry geometryOf(const Configuration& data) { return geometryOf(data, styleFor(data)); }

Configuration moved(Configuration data, const FittedFrame& motion)
{
    move(data, motion);
    return data;
}

// A curve of the data, as it is drawn.
struct Drawn
{
    ThingId thing;
    const Points& points;
    BiarcTubeMesh& tube;
};

std::vector<Drawn> drawnOf(const SceneGeometry& geometry)
{
    const SoBirod::Data& data = geometry.birods.at(0).data;
    const SoBirod::Meshes& meshes = geometry.birods.at(0).meshes;
    const auto& backbones = geometry.dnas.at(0).backbones;
    const auto strandOf = [](ThingKind kind, ThingPart part) { return ThingId{kind, 0, part}; };
    return {
        Drawn{{ThingKind::ROD, 0}, geometry.rods.at(0).points, *geometry.rods.at(0).meshes.tube},
        Drawn{strandOf(ThingKind::BIROD, ThingPart::AVERAGE), data.avgPoints, *meshes.avgTube},
        Drawn{strandOf(ThingKind::BIROD, ThingPart::STRAND_1), data.points1, *meshes.tube1},
        Drawn{strandOf(ThingKind::BIROD, ThingPart::STRAND_2), data.points2, *meshes.tube2},
        Drawn{strandOf(ThingKind::DNA, ThingPart::STRAND_1), backbones[0].points,
              *backbones[0].meshes.tube},
        Drawn{strandOf(ThingKind::DNA, ThingPart::STRAND_2), backbones[1].points,
              *backbones[1].meshes.tube}};
}

double largestDistance(const Points& one, const Points& other)
{
    EXPECT_EQ(one.size(), other.size());
    double largest = 0;
    for (std::size_t i = 0; i < std::min(one.size(), other.size()); ++i)
        largest = std::max(largest, (one[i] - other[i]).getNorm());
    return largest;
}

// The middles of the rings of a tube, whose last point is the first one again.
Points centreline(BiarcTubeMesh& tube)
{
    Points centres;
    for (int row = 0; row < tube.getHeight(); ++row) {
        Point sum;
        for (int column = 0; column + 1 < tube.getWidth(); ++column)
            sum += tube.getPoints()[row][column];
        centres.push_back(sum * (1.0 / (tube.getWidth() - 1)));
    }
    return centres;
}

double sizeOf(const Points& points)
{
    double largest = 0;
    for (const Point& point : points)
        largest = std::max(largest, (point - points[0]).getNorm());
    return largest;
}

} // namespace

TEST(GhostCurves, OfAReferenceThatWasOnlyTurnedAndShiftedLieOnTheData)
{
    Chance chance;
    for (int round = 0; round < 20; ++round) {
        SCOPED_TRACE(round);
        const Configuration data = chance.everything();
        const SceneGeometry geometry = geometryOf(comparedWith(data, moved(data, chance.motion())));
        const std::vector<Drawn> drawn = drawnOf(geometry);
        ASSERT_EQ(geometry.ghost.size(), drawn.size());
        for (std::size_t i = 0; i < drawn.size(); ++i) {
            const SceneGeometry::GhostCurve& ghost = geometry.ghost[i];
            EXPECT_TRUE(ghost.like == drawn[i].thing) << i;
            const double tolerance = 1e-6 * sizeOf(drawn[i].points);
            EXPECT_LT(largestDistance(ghost.points, drawn[i].points), tolerance) << i;
            EXPECT_LT(largestDistance(centreline(*ghost.meshes.tube), centreline(drawn[i].tube)),
                      tolerance)
                << i;
            EXPECT_LT(ghost.meshes.tube->getRadius(),
                      drawn[i].tube.getRadius() * std::cos(std::acos(-1) / 6))
                << "within the tube";
        }
    }
}

TEST(GhostCurves, AreAsFarFromTheDataAsTheirScalarSays)
{
    Chance chance;
    for (int round = 0; round < 20; ++round) {
        Configuration data = rodOf(chance.points(9)), other = rodOf(chance.points(9));
        data.rods[0].rotations = other.rods[0].rotations = std::vector<Rotation>(9);
        move(other, chance.motion());
        data = comparedWith(data, other);
        ASSERT_EQ(addComparison(data, other), "");
        const SceneGeometry geometry = geometryOf(data);
        ASSERT_EQ(geometry.ghost.size(), 1u);
        const Scalar& distance = data.rods[0].scalars.at(0);
        ASSERT_EQ(distance.name, "reference_distance");
        for (std::size_t i = 0; i < 9; ++i) {
            const Point apart = geometry.ghost[0].points[i] - geometry.rods[0].points[i];
            EXPECT_NEAR(apart.getNorm() / geometry.placement.scale, distance.values[i], 1e-9);
        }
    }
}

// A mirror image is no motion: it stays one.
TEST(GhostCurves, OfAMirroredReferenceAreMirrored)
{
    Configuration data = rodOf({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {1, 1, 1}});
    data.rods[0].rotations = std::vector<Rotation>(4);
    Configuration mirrored = data;
    for (Point& point : mirrored.rods[0].points)
        point.z = -point.z;
    const SceneGeometry geometry = geometryOf(comparedWith(data, mirrored));
    const auto handedness = [](const Points& p) {
        return (p[1] - p[0]).cross(p[2] - p[1]).dot(p[3] - p[2]);
    };
    ASSERT_EQ(geometry.ghost.size(), 1u);
    EXPECT_NEAR(handedness(geometry.rods[0].points), 1, 1e-9);
    EXPECT_NEAR(handedness(geometry.ghost[0].points), -1, 1e-9);
}

TEST(GhostCurves, LeaveTheDataWhereTheyAre)
{
    Chance chance;
    const Configuration data = chance.everything();
    const Configuration compared = comparedWith(data, chance.everything());
    const SceneGeometry with = geometryOf(compared);
    const SceneGeometry without = geometryOf(compared, styleFor(compared, false));
    EXPECT_FALSE(with.ghost.empty());
    EXPECT_TRUE(without.ghost.empty()) << "nobody asked for it";
    EXPECT_EQ(with.placement.scale, without.placement.scale);
    EXPECT_EQ(largestDistance(with.rods[0].points, without.rods[0].points), 0);
    EXPECT_EQ(largestDistance(with.birods[0].data.avgPoints, without.birods[0].data.avgPoints), 0);
}

TEST(GhostCurves, AreNoneWithoutAReferenceThatSuitsTheData)
{
    Chance chance;
    Configuration data = rodOf(chance.points(9));
    data.rods[0].rotations = std::vector<Rotation>(9);
    EXPECT_TRUE(geometryOf(data).ghost.empty());
    EXPECT_TRUE(geometryOf(comparedWith(data, rodOf(chance.points(8)))).ghost.empty());
}

// It is not the user's data that cannot be drawn.
TEST(GhostCurves, AreWithoutThoseThroughWhichNoTubeGoes)
{
    const Rotation along(0, std::sqrt(0.5), 0, std::sqrt(0.5)); // d3 along x
    Configuration data = rodOf({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}});
    data.rods[0].rotations = std::vector<Rotation>(3, along);
    Configuration reference = data;
    reference.rods.push_back(reference.rods[0]);
    reference.rods[1].points = {{0, 0, 0}, {2, 0, 0}, {1, 0, 0}}; // straight back
    const SceneGeometry geometry = geometryOf(comparedWith(data, reference));
    ASSERT_EQ(geometry.ghost.size(), 1u);
    EXPECT_TRUE(geometry.ghost[0].like == (ThingId{ThingKind::ROD, 0}));
    EXPECT_EQ(geometry.ghostFaults,
              std::vector<std::string>{
                  "--ghost leaves out rod 2, points[1]: found edges that turn straight back, "
                  "expected another angle between them (of the reference)"});
}

TEST(GhostCurves, HaveTheRadiusAndRowsOfWhatTheyAreComparedWith)
{
    Chance chance;
    Configuration data = rodOf(chance.points(9));
    data.rods[0].rotations = std::vector<Rotation>(9);
    data.rods[0].radius = 0.05;
    Configuration reference = data;
    reference.rods[0].points.resize(5); // others than its own
    reference.rods[0].rotations.resize(5);
    reference.rods.push_back(data.rods[0]);
    data.rods.push_back(data.rods[0]);
    Style style = styleFor(data);
    style.things.ofThings[{ThingKind::ROD, 1}].radius = 0.1;
    style.things.ofThings[{ThingKind::ROD, 1}].slices = 7;
    const SceneGeometry geometry = geometryOf(comparedWith(data, reference), style);
    ASSERT_EQ(geometry.ghost.size(), 2u);
    const double half = geometry.ghost[0].meshes.tube->getRadius();
    EXPECT_NEAR(geometry.ghost[1].meshes.tube->getRadius(), 2 * half, 1e-12);
    EXPECT_EQ(geometry.ghost[1].meshes.tube->getWidth(), 8);
}

} // namespace strandview
