// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/placeNumbers.h"

#include <cmath>
#include <stdexcept>

#include <gmock/gmock.h>

#include <algebra3d/rotations.h>
#include <nlohmann/json.hpp>

#include <strandview/analysis/scalars.h>

#include "scene/backbones.h"

namespace strandview {

namespace {

using algebra3d::about;
using algebra3d::Quaternion;
using algebra3d::Vector3;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

// Along x with edges of length 2, turning by 0.3 radians about it at each point.
Rod straightRod()
{
    Rod rod;
    rod.origin = "rods.txt:1: rod 1";
    rod.name = "arm";
    for (int i = 0; i < 6; ++i) {
        rod.points.emplace_back(2 * i, 0, 0);
        rod.rotations.push_back(about(Vector3<double>(1, 0, 0), 0.3 * i) *
                                about(Vector3<double>(0, 1, 0), M_PI / 2));
        rod.lines.push_back(std::size_t(3 + i));
    }
    rod.scalars = {{"load", {0, 10, 40, 90, NAN, 5}}};
    return rod;
}

// Flat pairs along z, 3.4 apart, turned by 36 degrees each.
Dna flatDna(int pairs)
{
    Dna dna;
    dna.origin = "dna.txt:1: DNA 1";
    for (int i = 0; i < pairs; ++i) {
        const Vector3<double> axis(0, 0, 1);
        const Quaternion<double> rotation = about(axis, M_PI / 5 * i);
        const Vector3<double> across = algebra3d::rotated(Vector3<double>(0, 5, 0), rotation);
        dna.bases += "ACGT"[i % 4];
        dna.pairPoints.emplace_back(0, 0, 3.4 * i);
        dna.points1.push_back(dna.pairPoints.back() + across);
        dna.points2.push_back(dna.pairPoints.back() - across);
        for (auto* rotations : {&dna.pairRotations, &dna.rotations1, &dna.rotations2})
            rotations->push_back(rotation);
    }
    return dna;
}

PickedPlace place(ThingKind kind, std::size_t row, int strand = 0, double share = 0)
{
    PickedPlace made;
    made.kind = kind;
    made.row = row;
    made.strand = strand;
    made.share = share;
    made.name = "its name";
    return made;
}

// Of the table whose title begins so.
const NumberTable& table(const std::vector<NumberTable>& tables, const std::string& title)
{
    for (const NumberTable& one : tables) {
        if (one.title.compare(0, title.size(), title) == 0)
            return one;
    }
    throw std::runtime_error("no table " + title);
}

std::string value(const NumberTable& of, const std::string& name, const std::string& unit = "")
{
    for (const NumberRow& row : of.rows) {
        if (row.name == name && (unit.empty() || row.unit == unit))
            return row.value;
    }
    return "none";
}

double number(const NumberTable& of, const std::string& name, const std::string& unit = "")
{
    return std::stod(value(of, name, unit));
}

TEST(PlaceNumbers, OfAPointOfARodAreThoseOfItsFileAndAllScalars)
{
    const Configuration data{{straightRod()}};
    const auto tables = numbersAt(place(ThingKind::ROD, 2), data, 1);
    ASSERT_EQ(tables.size(), 1u);
    const NumberTable& rod = tables[0];
    EXPECT_EQ(rod.title, "rod 1 'arm'");
    EXPECT_EQ(value(rod, "from"), "its name");
    EXPECT_EQ(value(rod, "index from 0"), "2");
    EXPECT_EQ(value(rod, "points of the line"), "6");
    EXPECT_EQ(value(rod, "line of the file"), "5");
    EXPECT_EQ(value(rod, "point"), "4\t0\t0");
    const Vector3<double> d1 =
        algebra3d::rotated(Vector3<double>(1, 0, 0), data.rods[0].rotations[2]);
    ASSERT_NEAR(d1.x, 0, 1e-12);
    EXPECT_EQ(value(rod, "d1"), "0\t" + readable(d1.y) + "\t" + readable(d1.z));
    EXPECT_EQ(value(rod, "load"), "40");
    for (const std::string& name : scalarNames(trackOf(data.rods[0]))) {
        const auto all = findScalar(data.rods[0], name);
        ASSERT_TRUE(all) << name;
        EXPECT_EQ(value(rod, name), readable((*all)[2])) << name;
    }
    EXPECT_NEAR(number(rod, "kappa3", "1/length"), 0.15, 1e-6);
}

TEST(PlaceNumbers, BetweenTwoPointsAreBetweenTheirs)
{
    const Configuration data{{straightRod()}};
    const auto tables = numbersAt(place(ThingKind::ROD, 2, 0, 0.25), data, 1);
    const NumberTable& rod = tables[0];
    EXPECT_EQ(value(rod, "index from 0"), "2.25");
    EXPECT_EQ(value(rod, "line of the file"), "none");
    EXPECT_EQ(value(rod, "point"), "4.5\t0\t0");
    EXPECT_EQ(value(rod, "load"), "52.5");
    EXPECT_EQ(value(rod, "arclength"), "4.5");
    const auto at = findPoint(place(ThingKind::ROD, 2, 0, 0.25), data, 1);
    const auto expected =
        about(Vector3<double>(1, 0, 0), 0.3 * 2.25) * about(Vector3<double>(0, 1, 0), M_PI / 2);
    EXPECT_NEAR(std::abs(algebra3d::dot(*at->rotation, expected)), 1, 1e-12);
}

TEST(PlaceNumbers, HaveAllDigitsOfAnIndex)
{
    Configuration data{{straightRod()}};
    Rod& rod = data.rods[0];
    rod.points.resize(2'345'679, {1, 0, 0});
    rod.rotations.resize(rod.points.size());
    for (std::size_t i = 6; i < rod.points.size(); ++i)
        rod.points[i].x = double(2 * i);
    rod.scalars.clear();
    const auto measured =
        numbersBetween(place(ThingKind::ROD, 0), place(ThingKind::ROD, 2'345'670, 0, 0.5), data, 1);
    EXPECT_EQ(value(*measured, "steps between"), "2345670.5");
    EXPECT_EQ(value(numbersAt(place(ThingKind::ROD, 2'345'670), data, 1)[0], "index from 0"),
              "2345670");
}

TEST(PlaceNumbers, KnowTheUnitsOfAComparison)
{
    Rod rod = straightRod();
    rod.scalars.push_back({"reference_distance", std::vector<double>(6, 0.5)});
    const auto tables = numbersAt(place(ThingKind::ROD, 2), {{rod}}, 1);
    EXPECT_EQ(value(tables[0], "reference_distance", "length"), "0.5");
}

TEST(PlaceNumbers, WhatIsNotKnownIsADash)
{
    const Configuration data{{straightRod()}};
    EXPECT_EQ(value(numbersAt(place(ThingKind::ROD, 4), data, 1)[0], "load"), "-");
    EXPECT_EQ(value(numbersAt(place(ThingKind::ROD, 3, 0, 0.5), data, 1)[0], "load"), "-");
}

TEST(PlaceNumbers, OfABaseAreThoseOfItsStrandAndOfItsPair)
{
    Configuration data{{}};
    data.dnas = {flatDna(8)};
    const auto tables = numbersAt(place(ThingKind::DNA, 1, 2), data, 1);
    ASSERT_EQ(tables.size(), 2u);
    const NumberTable& strand = table(tables, "DNA 1, strand 2");
    EXPECT_EQ(value(strand, "from"), "its name");
    EXPECT_EQ(value(strand, "base"), "G");
    const Vector3<double> point = data.dnas[0].points2[1];
    EXPECT_EQ(value(strand, "point"),
              readable(point.x) + "\t" + readable(point.y) + "\t" + readable(point.z));
    EXPECT_EQ(value(strand, "roll"), "none");
    const NumberTable& pair = table(tables, "DNA 1, pairs");
    EXPECT_EQ(value(pair, "pair from 1"), "2 of 8");
    EXPECT_EQ(value(pair, "index from 0"), "1");
    EXPECT_EQ(value(pair, "bases"), "CG");
    EXPECT_NEAR(number(pair, "twist", "°"), 36, 1e-4);
    EXPECT_NEAR(number(pair, "rise", "Å"), 3.4, 1e-4);
    EXPECT_EQ(value(numbersAt(place(ThingKind::DNA, 7), data, 1)[0], "twist"), "-");
}

TEST(PlaceNumbers, OfDnaInAnotherUnitHaveTheirParametersInAngstrom)
{
    Configuration data{{}};
    data.dnas = {flatDna(8)};
    for (auto* points : {&data.dnas[0].pairPoints, &data.dnas[0].points1, &data.dnas[0].points2}) {
        for (Vector3<double>& point : *points)
            point = point * 0.1;
    }
    const auto tables = numbersAt(place(ThingKind::DNA, 1), data, 0.1);
    EXPECT_NEAR(number(tables[0], "rise"), 3.4, 1e-4);
    EXPECT_NEAR(number(tables[0], "arclength"), 0.34, 1e-6);
}

TEST(PlaceNumbers, OfABirodAreThoseOfTheCurveThatWasPicked)
{
    Birod birod;
    for (int i = 0; i < 4; ++i) {
        birod.points.emplace_back(0, 0, i);
        birod.points1.emplace_back(1, 0, 2 * i);
        birod.points2.emplace_back(-1, 0, 3 * i);
    }
    birod.rotations = birod.rotations1 = birod.rotations2 = std::vector<Quaternion<double>>(4);
    const Configuration data{{straightRod()}, {birod}};
    for (const int strand : {0, 1, 2}) {
        const auto tables = numbersAt(place(ThingKind::BIROD, 2, strand), data, 1);
        EXPECT_EQ(tables[0].title,
                  strand == 0 ? "birod 1, average" : "birod 1, strand " + std::to_string(strand));
        EXPECT_EQ(value(tables[0], "arclength"), std::to_string(2 * (strand + 1)));
    }
}

TEST(PlaceNumbers, OfGlyphsAreTheirPlaces)
{
    Configuration data{{}};
    data.markers = {{"m", {1, 2, 3}, Marker::Shape::CUBE, {}, {}}};
    data.markers[0].id = 7;
    data.arrows = {{"a", {0, 0, 0}, {0, 0, 4}, {}, {}}};
    data.frames = {{"f", {1, 1, 1}, about(Vector3<double>(0, 0, 1), M_PI / 2), {}}};
    data.loneBases = {{"b", 'T', {5, 6, 7}, {}}};
    const auto marker = numbersAt(place(ThingKind::MARKER, 0), data, 1);
    EXPECT_EQ(value(marker[0], "id"), "7");
    EXPECT_EQ(value(marker[0], "point"), "1\t2\t3");
    PickedPlace onArrow = place(ThingKind::ARROW, 0);
    onArrow.point = {0.3, 0, 1};
    const auto arrow = numbersAt(onArrow, data, 1);
    EXPECT_EQ(value(arrow[0], "length"), "4");
    EXPECT_EQ(value(arrow[0], "point"), "0\t0\t1") << "of its axis";
    EXPECT_THAT(value(numbersAt(place(ThingKind::FRAME, 0), data, 1)[0], "d1"),
                HasSubstr("\t1\t0"));
    EXPECT_EQ(value(numbersAt(place(ThingKind::LONE_BASES, 0), data, 1)[0], "base"), "T");
}

TEST(PlaceNumbers, OfAPlaceThatOtherDataLackSayThat)
{
    const Configuration data{{straightRod()}};
    for (const PickedPlace& gone :
         {place(ThingKind::ROD, 6), place(ThingKind::ROD, 5, 0, 0.5), place(ThingKind::DNA, 0),
          place(ThingKind::BIROD, 0), place(ThingKind::MARKER, 0), place(ThingKind::ARROW, 0),
          place(ThingKind::FRAME, 0), place(ThingKind::LONE_BASES, 0)}) {
        EXPECT_FALSE(findPoint(gone, data, 1));
        EXPECT_EQ(textOf(numbersAt(gone, data, 1)), "its name\nnot in these data\n");
        EXPECT_FALSE(numbersBetween(place(ThingKind::ROD, 0), gone, data, 1));
    }
}

TEST(PlaceNumbers, BetweenTwoPlacesAreDistanceAnglesAndTheWayAlongTheLine)
{
    const Configuration data{{straightRod()}};
    const auto measured =
        numbersBetween(place(ThingKind::ROD, 1), place(ThingKind::ROD, 4), data, 1);
    ASSERT_TRUE(measured);
    EXPECT_EQ(value(*measured, "distance"), "6");
    EXPECT_EQ(value(*measured, "distance", "Å"), "none") << "of what is no DNA";
    EXPECT_EQ(value(*measured, "vector"), "6\t0\t0");
    EXPECT_EQ(value(*measured, "steps between"), "3");
    EXPECT_EQ(value(*measured, "arc length between"), "6");
    const double angle = 0.9 * 180 / M_PI;
    EXPECT_NEAR(number(*measured, "rotation"), angle, 1e-3);
    EXPECT_NEAR(number(*measured, "d1 to d1"), angle, 1e-3);
    EXPECT_NEAR(number(*measured, "d2 to d2"), angle, 1e-3);
    EXPECT_NEAR(number(*measured, "d3 to d3"), 0, 1e-3);
}

TEST(PlaceNumbers, AroundAClosedLineThereAreTwoWays)
{
    Rod square;
    square.points = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 0}};
    square.rotations = std::vector<Quaternion<double>>(5);
    square.isClosed = true;
    const Configuration data{{square}};
    const auto measured =
        numbersBetween(place(ThingKind::ROD, 0), place(ThingKind::ROD, 3), data, 1);
    EXPECT_EQ(value(*measured, "arc length between"), "3");
    EXPECT_EQ(value(*measured, "the other way round"), "1");
}

TEST(PlaceNumbers, OfDnaTheDistanceIsInAngstromToo)
{
    Configuration data{{}};
    data.dnas = {flatDna(8)};
    const auto measured =
        numbersBetween(place(ThingKind::DNA, 1, 1), place(ThingKind::DNA, 6, 2), data, 0.1);
    const double distance = (data.dnas[0].points2[6] - data.dnas[0].points1[1]).getNorm();
    EXPECT_NEAR(number(*measured, "distance", "length"), distance, 1e-4);
    EXPECT_NEAR(number(*measured, "distance", "Å"), 10 * distance, 1e-3);
    EXPECT_EQ(value(*measured, "steps between"), "5");
    EXPECT_EQ(value(*measured, "arc length between"), "17") << "along the pairs";
    EXPECT_NEAR(number(*measured, "rotation"), 180, 1e-3);
}

TEST(PlaceNumbers, OfTwoLinesThereIsNoWayAlong)
{
    const Configuration data{{straightRod(), straightRod()}};
    PickedPlace other = place(ThingKind::ROD, 4);
    other.datum = 1;
    const auto measured = numbersBetween(place(ThingKind::ROD, 1), other, data, 1);
    EXPECT_EQ(value(*measured, "distance"), "6");
    EXPECT_EQ(value(*measured, "arc length between"), "none");
}

TEST(PlaceNumbers, OfABackboneHaveThePhosphorusOfTheirBase)
{
    Configuration data;
    data.dnas = {flatDna(6)};
    PickedPlace at = place(ThingKind::DNA, 2, 2);
    at.isOnBackbone = true;
    const auto expected = idealBackbone(data.dnas[0], Strand::SECOND, 1)[6 - 1 - 2];
    const Vector3<double> found = findPoint(at, data, 1)->point;
    EXPECT_NEAR((found - expected).getNorm(), 0, 1e-12);
    const auto tables = numbersAt(at, data, 1);
    EXPECT_EQ(value(table(tables, "DNA 1, strand 2"), "phosphorus"),
              readable(expected.x) + "\t" + readable(expected.y) + "\t" + readable(expected.z));
}

TEST(PlaceNumbers, AsJsonHaveAllDigitsUnderTheirNames)
{
    const Configuration data{{straightRod()}};
    auto tables = numbersAt(place(ThingKind::ROD, 4, 0, 1.0 / 3), data, 1);
    const auto json = nlohmann::json::parse(jsonOf(tables));
    ASSERT_EQ(json.size(), 1u);
    EXPECT_EQ(json[0]["title"], "rod 1 'arm'");
    EXPECT_EQ(json[0]["from"], "its name");
    EXPECT_EQ(json[0]["index from 0"], 4 + 1.0 / 3);
    EXPECT_EQ(json[0]["points of the line"], 6);
    EXPECT_EQ(json[0]["arclength"]["value"], 8 + 2.0 / 3);
    EXPECT_EQ(json[0]["arclength"]["unit"], "length");
    EXPECT_EQ(json[0]["point"][0], 8 + 2.0 / 3);
    EXPECT_TRUE(json[0]["load"].is_null()) << "of no number";
    EXPECT_FALSE(json[0]["d3"].is_null());
}

TEST(PlaceNumbers, AsJsonHaveEachUnitOfADistance)
{
    Configuration data;
    data.dnas = {flatDna(6)};
    const auto json = nlohmann::json::parse(
        jsonOf({*numbersBetween(place(ThingKind::DNA, 0), place(ThingKind::DNA, 5), data, 2)}));
    EXPECT_EQ(json[0]["distance"]["value"], 17);
    EXPECT_EQ(json[0]["distance in Å"]["value"], 8.5);
    EXPECT_EQ(json[0]["distance in Å"]["unit"], "Å");
}

TEST(PlaceNumbers, TheirTextHasALineForEachWithTabs)
{
    using Groups = std::vector<NumberTable>;
    EXPECT_EQ(textOf(Groups{{"one", {{"curvature", "0.5", "1/length"}, {"point", "1\t2\t3", ""}}},
                            {"two", {{"not in these data", "", ""}}}}),
              "one\ncurvature\t0.5\t1/length\npoint\t1\t2\t3\n\ntwo\nnot in these data\n");
    EXPECT_EQ(textOf(Groups()), "");
}

} // namespace

} // namespace strandview
