// SPDX-License-Identifier: GPL-3.0-or-later
#include "info/ScalarList.h"

#include <cmath>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <strandview/analysis/scalars.h>

#include "support/IdealDna.h"

namespace strandview {

namespace {

using nlohmann::json;
using testing::HasSubstr;

Rod straight(double length)
{
    Rod rod;
    rod.points = {{0, 0, 0}, {0, 0, length / 2}, {0, 0, length}};
    rod.rotations.resize(3);
    return rod;
}

Findings findingsOf(const Configuration& data)
{
    Findings findings;
    findings.data = data;
    return findings;
}

json listOf(const Configuration& data, double angstrom = 1)
{
    return json::parse(scalarsToJson(findingsOf(data), angstrom))["scalars"];
}

json find(const json& list, const std::string& line, const std::string& name)
{
    for (const json& row : list)
        if (row["line"] == line && row["name"] == name)
            return row;
    return nullptr;
}

TEST(ScalarList, OfARodAreThoseOfItsFileThenAllThatAreComputed)
{
    Rod rod = straight(2);
    rod.scalars = {{"load", {3, NAN, -1}}};
    const json list = listOf({{rod, straight(6)}});
    std::vector<std::string> names;
    for (const json& row : list)
        names.push_back(row["name"]);
    EXPECT_EQ(names, scalarNames(trackOf(rod)));
    EXPECT_EQ(find(list, "rod", "load"),
              json::parse(R"({"line": "rod", "name": "load", "unit": "", "of": "point",
                  "min": -1.0, "max": 3.0, "lines": 1, "meaning": "of the file"})"));
    EXPECT_EQ(find(list, "rod", "arclength"),
              json::parse(R"({"line": "rod", "name": "arclength", "unit": "length", "of": "point",
                  "min": 0.0, "max": 6.0, "lines": 2, "meaning": "along the polygon, from 0"})"));
}

TEST(ScalarList, OfADnaAreThoseOfItsPairsAndOfItsStrandsInAngstrom)
{
    const IdealDna ideal("ACGT", 0.34, M_PI / 5);
    Dna dna;
    dna.bases = "ACGT";
    dna.pairPoints = dna.points1 = dna.points2 = ideal.points;
    dna.pairRotations = dna.rotations1 = dna.rotations2 = ideal.rotations;
    const json list = listOf({{}, {}, {dna}}, 0.1);
    const json rise = find(list, "DNA pairs", "rise");
    EXPECT_EQ(rise["of"], "step");
    EXPECT_EQ(rise["unit"], "Å");
    EXPECT_NEAR(double(rise["min"]), 3.4, 1e-9);
    EXPECT_NEAR(double(rise["max"]), 3.4, 1e-9);
    EXPECT_EQ(find(list, "DNA pairs", "twist")["unit"], "°");
    EXPECT_EQ(find(list, "DNA strand", "twist")["unit"], "1/length");
    EXPECT_EQ(find(list, "DNA strand", "rise"), nullptr);
    EXPECT_EQ(find(list, "DNA strand", "arclength")["lines"], 2);
}

TEST(ScalarList, ForPeopleIsATableForEachKindOfLine)
{
    Rod rod = straight(2);
    rod.scalars = {{"load", {NAN, NAN, NAN}}};
    const std::string text = describeScalars(findingsOf({{rod, straight(6)}}), 1);
    EXPECT_THAT(text, testing::StartsWith("rods:\n  name            unit      of     range"));
    EXPECT_THAT(text, HasSubstr("\n  arclength       length    point  0 to 6                    "
                                "along the polygon, from 0\n"));
    EXPECT_THAT(text, HasSubstr("point  none                      of the file, 1 of 2\n"));
    EXPECT_EQ(describeScalars(findingsOf({}), 1),
              "found no rod, birod or DNA, which alone have scalars\n");
}

TEST(ScalarList, ForPeopleHasItsColumnsBelowEachOtherWhateverTheNames)
{
    Rod rod = straight(2);
    rod.scalars = {{"elastic énergie par longueur", {1, 2, 3}}};
    const std::string text = describeScalars(findingsOf({{rod}}), 1);
    EXPECT_THAT(text, HasSubstr("\n  name                          unit "));
    EXPECT_THAT(text, HasSubstr("\n  elastic énergie par longueur            point"));
    EXPECT_THAT(text, HasSubstr("\n  arclength                     length "));
}

TEST(ScalarList, AScalarOfAFileAndAComputedOneOfItsNameAreTold)
{
    Rod given = straight(2);
    given.scalars = {{"curvature", {100, 200, 300}}};
    std::vector<json> found;
    for (const json& row : listOf({{given, straight(6), straight(6)}}))
        if (row["name"] == "curvature")
            found.push_back(row);
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[0], json::parse(R"({"line": "rod", "name": "curvature", "unit": "",
                  "of": "point", "min": 100.0, "max": 300.0, "lines": 1,
                  "meaning": "of the file"})"));
    EXPECT_EQ(found[1]["unit"], "1/length");
    EXPECT_EQ(found[1]["max"], 0);
    EXPECT_EQ(found[1]["lines"], 2);
}

TEST(ScalarList, OfAComparisonAreToldByWhatTheyMean)
{
    Rod rod = straight(2);
    rod.scalars = {{"reference_rotation", {30, 30, 30}}, {"extension", {1, 1, 1}}};
    Findings findings = findingsOf({{rod}});
    findings.compared = {"reference_rotation"};
    const json list = json::parse(scalarsToJson(findings, 1))["scalars"];
    EXPECT_EQ(find(list, "rod", "reference_rotation")["unit"], "°");
    EXPECT_EQ(find(list, "rod", "reference_rotation")["meaning"],
              "to the frame of the reference, once superposed");
    EXPECT_EQ(find(list, "rod", "extension")["meaning"], "of the file");
}

TEST(ScalarList, AboveTheBoundTheRangeOfWhatIsSlowIsLeftOutWithANotice)
{
    const Findings findings = findingsOf({{straight(2)}});
    const json all = json::parse(scalarsToJson(findings, 1, 4.5)),
               some = json::parse(scalarsToJson(findings, 1, 4.4));
    EXPECT_EQ(find(all["scalars"], "rod", "writhe_density")["min"], 0);
    EXPECT_TRUE(all["notices"].empty());
    EXPECT_EQ(find(some["scalars"], "rod", "writhe_density")["min"], nullptr);
    EXPECT_EQ(find(some["scalars"], "rod", "curvature")["min"], 0);
    ASSERT_EQ(some["notices"].size(), 1u);
    EXPECT_THAT(describeScalars(findings, 1, 4.4),
                HasSubstr("note: the range of writhe_density is left out"));
}

} // namespace

} // namespace strandview
