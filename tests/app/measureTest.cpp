// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/measure.h"

#include <cmath>

#include <gmock/gmock.h>

#include <algebra3d/rotations.h>

#include "scene/backbones.h"

namespace strandview {

namespace {

using algebra3d::about;
using algebra3d::Quaternion;
using algebra3d::Vector3;

const Vector3<double> Z(0, 0, 1);

// A step of 1 along x, then along y, then along z: right angles, and a dihedral one of 90 degrees.
Rod stairs()
{
    Rod rod;
    rod.points = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {1, 1, 1}};
    for (int i = 0; i < 4; ++i)
        rod.rotations.push_back(about(Z, 0.25 * i));
    return rod;
}

Rod moved(Rod rod, const Quaternion<double>& turn, const Vector3<double>& shift)
{
    for (Vector3<double>& point : rod.points)
        point = algebra3d::rotated(point, turn) + shift;
    for (Quaternion<double>& rotation : rod.rotations)
        rotation = turn * rotation;
    return rod;
}

Dna straightDna(int pairs, double unit)
{
    Dna dna;
    for (int i = 0; i < pairs; ++i) {
        dna.bases += "ACGT"[i % 4];
        dna.pairPoints.emplace_back(0, 0, 3.38 * unit * i);
        dna.pairRotations.push_back(about(Z, M_PI / 5.25 * i));
    }
    dna.points1 = dna.points2 = dna.pairPoints;
    dna.rotations1 = dna.rotations2 = dna.pairRotations;
    return dna;
}

MeasuredValue valueOf(const std::string& text, const Configuration& data, double angstrom = 1)
{
    const auto measurement = parseMeasurement(text);
    if (!measurement) {
        ADD_FAILURE() << text;
        return {NAN, "", {}};
    }
    return measure(*measurement, data, angstrom).value_or(MeasuredValue{NAN, "none", {}});
}

TEST(Measure, HasTheValuesOfStairs)
{
    const Configuration data{{stairs()}};
    EXPECT_NEAR(valueOf("rod 1:0,rod 1:3", data).value, std::sqrt(3), 1e-14);
    EXPECT_EQ(valueOf("rod 1:0,rod 1:3", data).unit, "length");
    EXPECT_NEAR(valueOf("arc length rod 1:0.5,rod 1:3", data).value, 2.5, 1e-14);
    EXPECT_NEAR(valueOf("rotation rod 1:0,rod 1:2", data).value, 0.5 * 180 / M_PI, 1e-12);
    EXPECT_NEAR(valueOf("rod 1:0,rod 1:1,rod 1:2", data).value, 90, 1e-12);
    EXPECT_EQ(valueOf("rod 1:0,rod 1:1,rod 1:2", data).unit, "°");
    EXPECT_NEAR(std::abs(valueOf("rod 1:0,rod 1:1,rod 1:2,rod 1:3", data).value), 90, 1e-12);
    EXPECT_EQ(valueOf("rod 1:0,rod 1:3", data).points.size(), 2u);
    EXPECT_EQ(valueOf("rod 1:0,rod 1:3", data).points[1].z, 1);
}

TEST(Measure, OfWhatIsTurnedAndShiftedHasTheSameValues)
{
    const Configuration data{{stairs()}},
        other{{moved(stairs(), about(Vector3<double>(1, -2, 0.5), 1.1), {30, -4, 5})}};
    for (const char* text :
         {"rod 1:0,rod 1:3", "arc length rod 1:0,rod 1:2.5", "rotation rod 1:0,rod 1:3",
          "rod 1:0,rod 1:1,rod 1:3", "rod 1:0,rod 1:1,rod 1:2,rod 1:3"})
        EXPECT_NEAR(valueOf(text, other).value, valueOf(text, data).value, 1e-9) << text;
}

TEST(Measure, AMirrorChangesTheSignOfADihedralAngle)
{
    Rod mirrored = stairs();
    for (Vector3<double>& point : mirrored.points)
        point.z = -point.z;
    const std::string text = "rod 1:0,rod 1:1,rod 1:2,rod 1:3";
    EXPECT_NEAR(valueOf(text, {{mirrored}}).value, -valueOf(text, {{stairs()}}).value, 1e-12);
    EXPECT_NEAR(valueOf("rod 1:3,rod 1:2,rod 1:1,rod 1:0", {{stairs()}}).value,
                valueOf(text, {{stairs()}}).value, 1e-12)
        << "read backwards";
}

TEST(Measure, OfDataThatLackAPlaceIsNothing)
{
    const Configuration data{{stairs()}};
    for (const char* text :
         {"rod 1:0,rod 1:4", "rod 2:0,rod 1:1", "marker 1,rod 1:1", "rod 1:1e300,rod 1:1",
          "arc length rod 1:0,point at 1 2 3", "rotation rod 1:0,point at 1 2 3"})
        EXPECT_FALSE(measure(*parseMeasurement(text), data, 1)) << text;
    const Configuration two{{stairs(), stairs()}};
    EXPECT_FALSE(measure(*parseMeasurement("arc length rod 1:0,rod 2:1"), two, 1));
}

// What is known of a line by its point alone.
TEST(Measure, APlaceOfALineThatIsNotThereIsNoneWithoutAnIndexEither)
{
    Configuration data{{stairs()}};
    data.dnas = {straightDna(3, 1)};
    for (const char* line : {"rod 2", "birod 1", "DNA 2", "DNA 2 strand 1"})
        EXPECT_FALSE(
            measure(*parseMeasurement("distance " + std::string(line) + " at 0 0 0,point at 1 0 0"),
                    data, 1))
            << line;
    for (const char* line : {"rod 1", "DNA 1", "DNA 1 strand 2"})
        EXPECT_EQ(valueOf("distance " + std::string(line) + " at 0 0 0,point at 1 0 0", data).value,
                  1)
            << line;
}

TEST(Measure, AlongAClosedLineIsTheShorterWay)
{
    Rod ring;
    for (int i = 0; i <= 12; ++i) {
        ring.points.emplace_back(std::cos(i * M_PI / 6), std::sin(i * M_PI / 6), 0);
        ring.rotations.push_back(about(Z, 0.0));
    }
    const double edge = 2 * std::sin(M_PI / 12);
    Rod open = ring;
    ring.isClosed = true;
    const Configuration data{{ring, open}};
    EXPECT_NEAR(valueOf("arc length rod 1:1,rod 1:11", data).value, 2 * edge, 1e-12);
    EXPECT_NEAR(valueOf("arc length rod 1:11.5,rod 1:1", data).value, 1.5 * edge, 1e-12);
    EXPECT_NEAR(valueOf("arc length rod 1:1,rod 1:4", data).value, 3 * edge, 1e-12);
    EXPECT_NEAR(valueOf("arc length rod 2:1,rod 2:11", data).value, 10 * edge, 1e-12) << "open";

    // Its last pair is not the first one again.
    Configuration circle;
    circle.dnas = {straightDna(12, 1)};
    for (int i = 0; i < 12; ++i)
        circle.dnas[0].pairPoints[std::size_t(i)] = ring.points[std::size_t(i)];
    circle.dnas[0].isClosed = true;
    EXPECT_NEAR(valueOf("arc length DNA 1:2,DNA 1:12", circle).value, 2 * edge, 1e-12);
}

TEST(Measure, OfPlacesThatDetermineNoAngleIsNoNumber)
{
    const auto value = valueOf("rod 1:0,rod 1:0,rod 1:2", {{stairs()}});
    EXPECT_TRUE(std::isnan(value.value));
    EXPECT_EQ(readable(value), "-");
}

TEST(Measure, LengthsAreInAngstromWhereThereIsDna)
{
    const double nanometre = 0.1; // an ångström in it
    Configuration data;
    data.dnas = {straightDna(12, nanometre)};
    const MeasuredValue value = valueOf("DNA 1:1,DNA 1:11", data, nanometre);
    EXPECT_NEAR(value.value, 33.8, 1e-9);
    EXPECT_EQ(readable(value), "33.8 Å");
    EXPECT_EQ(readable(valueOf("rod 1:0,rod 1:1", {{stairs()}})), "1");
    EXPECT_EQ(readable(valueOf("rod 1:0,rod 1:1,rod 1:2", {{stairs()}})), "90°");
}

// The phosphorus atoms of strand 2 are counted along strand 1, as their pairs are.
TEST(Measure, OfABackboneIsBetweenItsPhosphorusAtoms)
{
    const double unit = 0.1;
    Configuration data;
    data.dnas = {straightDna(12, unit)};
    const auto first = idealBackbone(data.dnas[0], Strand::FIRST, unit),
               second = idealBackbone(data.dnas[0], Strand::SECOND, unit);
    const double expected = (second[12 - 1 - 7] - first[3]).getNorm() / unit;
    const MeasuredValue value = valueOf("DNA 1 backbone 1:4,DNA 1 backbone 2:8", data, unit);
    EXPECT_NEAR(value.value, expected, 1e-9);
    EXPECT_GT(value.value, 9);
    EXPECT_LT(value.value, 21);
}

TEST(Measure, APlaceThatIsKeptIsThatPlaceAgain)
{
    PickedPlace picked;
    picked.kind = ThingKind::ROD;
    picked.datum = 2;
    picked.row = 1;
    picked.share = 0.25;
    picked.name = "its name";
    picked.point = {1, 2, 3};
    const MeasuredPlace kept = measuredPlaceOf(picked);
    EXPECT_EQ(textOf(kept), "rod 3:1.25");
    const PickedPlace again = pickedPlaceOf(kept);
    EXPECT_EQ(again.kind, ThingKind::ROD);
    EXPECT_EQ(again.datum, 2u);
    EXPECT_EQ(again.row, 1u);
    EXPECT_EQ(again.share, 0.25);
    for (const char* text : {"birod 2 strand 1:4", "DNA 1 backbone 2:3", "marker 2", "base 4",
                             "frame 1", "arrow 2 at 1 2 3", "point at 4 5 6", "rod 1 at 7 8 9"})
        EXPECT_EQ(textOf(measuredPlaceOf(pickedPlaceOf(*parsePlace(text)))), text);
}

TEST(Measure, ThreeAndFourPlacesAreToldWithTheWaysBetweenThem)
{
    const Configuration data{{stairs()}};
    std::vector<PickedPlace> places;
    for (const char* text : {"rod 1:0", "rod 1:1", "rod 1:2", "rod 1:3"})
        places.push_back(pickedPlaceOf(*parsePlace(text)));
    const std::vector<PickedPlace> three(places.begin(), places.begin() + 3);
    EXPECT_EQ(textOf({*numbersOf(three, data, 1)}),
              "angle at 2\nangle\t90\t°\ndistance 1 to 2\t1\tlength\ndistance 2 to "
              "3\t1\tlength\n");
    const std::string four = textOf({*numbersOf(places, data, 1)});
    EXPECT_THAT(four, testing::StartsWith("dihedral angle about 2 to 3\ndihedral angle\t"));
    EXPECT_THAT(four, testing::HasSubstr("distance 3 to 4\t1\tlength\n"));
    EXPECT_THAT(four, testing::HasSubstr("angle at 3\t90\t°\n"));
    places.pop_back();
    places.pop_back();
    EXPECT_EQ(numbersOf(places, data, 1)->title, "from 1 to 2");
    places.pop_back();
    EXPECT_FALSE(numbersOf(places, data, 1));
}

} // namespace

} // namespace strandview
