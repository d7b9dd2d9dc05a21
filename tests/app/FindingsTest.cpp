// SPDX-License-Identifier: GPL-3.0-or-later
#include "info/Findings.h"

#include <cmath>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "support/IdealDna.h"
#include "support/TemporaryFolder.h"

namespace strandview {

namespace {

using nlohmann::json;
using testing::HasSubstr;

Rod square()
{
    Rod rod;
    rod.points = {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}};
    rod.rotations.resize(4);
    return rod;
}

Dna dnaOf(const std::string& letters, double rise = 3.4, double turn = M_PI / 5)
{
    const IdealDna ideal(letters, rise, turn);
    Dna dna;
    dna.bases = letters;
    dna.pairPoints = dna.points1 = dna.points2 = ideal.points;
    dna.pairRotations = dna.rotations1 = dna.rotations2 = ideal.rotations;
    return dna;
}

json asJson(const Configuration& data, double angstrom = 1)
{
    Findings findings;
    findings.data = data;
    return json::parse(toJson(findings, angstrom));
}

json asJson(const Rod& rod) { return asJson(Configuration{{rod}})["rods"][0]; }

json asJson(const Dna& dna, double angstrom = 1)
{
    return asJson(Configuration{{}, {}, {dna}}, angstrom)["dna"][0];
}

std::string inWords(const Configuration& data)
{
    Findings findings;
    findings.data = data;
    return describe(findings, 1);
}

TEST(Findings, OfARodAreItsLengthItsEndsAndItsScalars)
{
    Rod rod = square();
    rod.scalars = {{"bend", {1, 2, 3, 4}}, {"κ", {1, 2, 3, 4}}};
    json found = asJson(rod);
    EXPECT_NEAR(double(found["radiusOfGyration"]), std::sqrt(2), 1e-12);
    found.erase("radiusOfGyration");
    EXPECT_EQ(found, json::parse(R"({"name": null, "points": 4, "length": 6.0,
        "endToEnd": 2.0, "closed": false, "frames": "given", "scalars": ["bend", "κ"],
        "writhe": null, "twist": 0.0, "linkingNumber": null, "gaussIntegral": 0.0,
        "contact": null})"));
    rod.name = "loop";
    rod.hasFrames = false;
    EXPECT_EQ(asJson(rod)["name"], "loop");
    EXPECT_EQ(asJson(rod)["frames"], "made");
    EXPECT_EQ(inWords({{rod}}), "rod 1 'loop': 4 points, length 6, end to end 2, without frames, "
                                "scalars bend κ\n    radius of gyration 1.41421\n"
                                "    Gauss integral 0 turns\n");
}

TEST(Findings, CountTheFirstPointOfAClosedRodOnce)
{
    Rod rod = square();
    rod.points.push_back(rod.points.front());
    rod.rotations.resize(5);
    rod.isClosed = true;
    const json found = asJson(rod);
    EXPECT_EQ(found["points"], 4);
    EXPECT_EQ(found["length"], 8);
    EXPECT_EQ(found["endToEnd"], 0);
    EXPECT_EQ(found["closed"], true);
    EXPECT_THAT(inWords({{rod}}), HasSubstr("4 points, length 8, closed"));
}

// B-DNA of 10 pairs a turn.
TEST(Findings, OfADnaAreTheNumbersOfItsSteps)
{
    Dna dna = dnaOf("ACGTA");
    const json found = asJson(dna);
    EXPECT_EQ(found["pairs"], 5);
    EXPECT_EQ(found["sequence"], "ACGTA");
    EXPECT_NEAR(double(found["length"]), 13.6, 1e-12);
    EXPECT_NEAR(double(found["endToEnd"]), 13.6, 1e-12);
    EXPECT_NEAR(double(found["meanTwist"]), 36, 1e-10);
    EXPECT_NEAR(double(found["totalTwist"]), 144, 1e-10);
    EXPECT_NEAR(double(found["meanRise"]), 3.4, 1e-12);
    EXPECT_EQ(found["fitRms"], nullptr);
    EXPECT_THAT(inWords({{}, {}, {dna}}),
                HasSubstr("twist 36° a step, 144° or 0.4 turns in all, rise 3.4 Å"));
}

TEST(Findings, OfADnaAreThoseOfTheStandardFramesWhereThereAreSome)
{
    Dna dna = dnaOf("ACGTA", 3, 0.5);
    const Dna other = dnaOf("ACGTA");
    dna.standard =
        StandardFrames{other.pairPoints, other.pairRotations, other.points1, other.rotations1,
                       other.points2,    other.rotations2,    0.025};
    EXPECT_NEAR(double(asJson(dna)["meanTwist"]), 36, 1e-10);
    EXPECT_NEAR(double(asJson(dna)["length"]), 13.6, 1e-12);
    EXPECT_EQ(asJson(dna)["fitRms"], 0.025);
}

TEST(Findings, OfADnaAreInAngstromWhateverTheUnitOfItsPoints)
{
    const json found = asJson(dnaOf("ACGTA", 0.34), 0.1);
    EXPECT_NEAR(double(found["length"]), 13.6, 1e-12);
    EXPECT_NEAR(double(found["meanRise"]), 3.4, 1e-12);
    EXPECT_NEAR(double(found["meanTwist"]), 36, 1e-10);
}

TEST(Findings, AreNullWhereNothingIsKnown)
{
    const json single = asJson(dnaOf("A"));
    for (const char* key : {"meanTwist", "totalTwist", "meanRise"})
        EXPECT_EQ(single[key], nullptr) << key;
    Dna dna = dnaOf("ACG");
    dna.bases = "NNN";
    EXPECT_EQ(asJson(dna)["sequence"], nullptr);
    EXPECT_THAT(inWords({{}, {}, {dna}}), HasSubstr("3 pairs, without letters"));
    dna.bases = "NCN";
    EXPECT_EQ(asJson(dna)["sequence"], "NCN");
}

// The torus knot of three turns about the axis and two about the ring, with frames along z.
Rod trefoil()
{
    Rod rod;
    for (int i = 0; i <= 90; ++i) {
        const double t = i == 90 ? 0 : 2 * M_PI * i / 90;
        rod.points.push_back({std::sin(t) + 2 * std::sin(2 * t), std::cos(t) - 2 * std::cos(2 * t),
                              -std::sin(3 * t)});
        rod.rotations.push_back({0, 0, 0, 1});
    }
    rod.isClosed = true;
    return rod;
}

TEST(Findings, OfAClosedLineAreWritheTwistAndTheirSumTheLinkingNumber)
{
    const json found = asJson(trefoil());
    EXPECT_EQ(found["gaussIntegral"], nullptr);
    EXPECT_GT(std::abs(double(found["writhe"])), 3);
    EXPECT_NEAR(double(found["writhe"]) + double(found["twist"]), found["linkingNumber"], 1e-9);
    EXPECT_GT(double(found["contact"]), 0);
    EXPECT_THAT(inWords({{trefoil()}}), testing::ContainsRegex("\n    radius of gyration [0-9.]+, "
                                                               "contact [0-9.]+\n"
                                                               "    Tw [-0-9.]+ turns, Wr [-0-9.]+ "
                                                               "turns, Lk -?[0-9]+\n"));
}

TEST(Findings, TellLinksOfClosedRodsFromZeroForScriptsAndFromOneForPeople)
{
    Rod first = square(), second = square();
    first.points.push_back(first.points.front());
    first.rotations.resize(5);
    first.isClosed = true;
    second.points = {{1, 1, -1}, {5, 1, -1}, {5, 1, 1}, {1, 1, 1}, {1, 1, -1}};
    second.rotations.resize(5);
    second.isClosed = true;
    const Configuration data{{square(), first, second}};
    const json links = asJson(data)["links"];
    ASSERT_EQ(links.size(), 1u);
    EXPECT_EQ(links[0][0], 1);
    EXPECT_EQ(links[0][1], 2);
    EXPECT_EQ(std::abs(int(links[0][2])), 1);
    EXPECT_THAT(inWords(data), HasSubstr("\nrods 2 and 3 are linked, Lk "));
    for (algebra3d::Vector3<double>& point : second.points)
        point.z += 9;
    EXPECT_THAT(inWords({{first, second}}), HasSubstr("\nno two closed rods are linked\n"));
    EXPECT_EQ(asJson({{first, second}})["links"], json::parse("[[0, 1, 0]]"));
}

TEST(Findings, OfADnaAreTheParametersOfItsPairsAndStepsInAngstromAndDegrees)
{
    const json found = asJson(dnaOf("ACGTA", 0.34), 0.1);
    ASSERT_EQ(found["pairParameters"].size(), 5u);
    ASSERT_EQ(found["stepParameters"].size(), 4u);
    EXPECT_EQ(found["pairParameters"][0].size(), 6u);
    const std::vector<double> step = found["stepParameters"][3], expected{0, 0, 3.4, 0, 0, 36};
    ASSERT_EQ(step.size(), 6u);
    for (std::size_t i = 0; i < 6; ++i)
        EXPECT_NEAR(step[i], expected[i], 1e-9) << i;
    EXPECT_NEAR(double(found["stepTwistTurns"]), 0.4, 1e-12);
    EXPECT_NEAR(double(found["radiusOfGyration"]), 3.4 * std::sqrt(2), 1e-9);
    Dna sheared = dnaOf("AC");
    sheared.points1[1].x += 0.5;
    const json pair = asJson(sheared)["pairParameters"][1];
    EXPECT_GT(std::hypot(double(pair[0]), double(pair[1])), 0.4) << "shear and stretch come first";
}

TEST(Findings, AboveTheBoundWhatIsSlowIsNullWithANotice)
{
    Findings findings;
    findings.data = {{trefoil()}};
    const json found = json::parse(toJson(findings, 1, 1000));
    EXPECT_EQ(found["links"], nullptr);
    for (const char* key : {"writhe", "linkingNumber", "gaussIntegral"})
        EXPECT_EQ(found["rods"][0][key], nullptr) << key;
    EXPECT_NE(found["rods"][0]["twist"], nullptr);
    ASSERT_EQ(found["notices"].size(), 1u);
    EXPECT_THAT(std::string(found["notices"][0]), HasSubstr("--all-numbers"));
    EXPECT_THAT(describe(findings, 1, 1000), HasSubstr("note: writhe, Gauss integrals and links"));
}

TEST(Findings, HaveAllKeysWhateverThereIs)
{
    const json found = asJson(Configuration{});
    EXPECT_EQ(found, json::parse(R"({"files": [], "frame": 0, "rods": [], "birods": [], "dna": [],
        "links": [], "unpairedBases": 0, "measurements": [], "notices": []})"));
}

TEST(Findings, CountBasesWithoutAPair)
{
    Configuration data;
    data.loneBases.resize(3);
    EXPECT_EQ(asJson(data)["unpairedBases"], 3);
    EXPECT_EQ(inWords(data), "3 bases in no pair\n");
}

TEST(Findings, OfSeveralFilesAreOneBehindTheOther)
{
    const TemporaryFolder folder;
    const std::string first = folder.write("a.txt", "0 0 0\n0 0 1\n"),
                      second = folder.write("b.txt", "0 0 0\n0 0 2\n\n0 0 0\n0 0 3\n");
    ReadReport report;
    const std::optional<Findings> findings = findIn({first, second}, 0, {}, report);
    ASSERT_TRUE(findings) << report.error;
    const json found = json::parse(toJson(*findings, 1));
    EXPECT_EQ(found["files"], json::parse(R"([{"file": ")" + first + R"(", "format": "Tables",
        "frames": 1}, {"file": ")" + second +
                                          R"(", "format": "Tables", "frames": 1}])"));
    ASSERT_EQ(found["rods"].size(), 3u);
    EXPECT_EQ(found["rods"][1]["length"], 2);
    EXPECT_EQ(found["notices"].size(), 2u) << "frames were made, in both";
    EXPECT_THAT(describe(*findings, 1), HasSubstr("note: " + first));
}

TEST(Findings, FailWithTheFirstFileThatCannotBeRead)
{
    const TemporaryFolder folder;
    const std::string good = folder.write("a.txt", "0 0 0\n0 0 1\n"), bad = folder.path("b.txt");
    ReadReport report;
    EXPECT_FALSE(findIn({good, bad}, 0, {}, report));
    EXPECT_EQ(report.error, bad + ": cannot be read: No such file or directory");
}

TEST(Findings, OfAFrameThatIsNotThereNameTheFile)
{
    const TemporaryFolder folder;
    const std::string file = folder.write("a.txt", "0 0 0\n0 0 1\n\n\n0 0 0\n0 0 2\n");
    ReadReport report;
    const std::optional<Findings> second = findIn({file}, 1, {}, report);
    ASSERT_TRUE(second) << report.error;
    EXPECT_EQ(second->files[0].frames, 2u);
    EXPECT_EQ(json::parse(toJson(*second, 1))["rods"][0]["length"], 2);
    EXPECT_FALSE(findIn({file}, 2, {}, report));
    EXPECT_EQ(report.error, file + ": found frame 2, expected 0 to 1");
}

const Scalar* scalarOf(const Rod& rod, const std::string& name)
{
    for (const Scalar& scalar : rod.scalars)
        if (scalar.name == name)
            return &scalar;
    return nullptr;
}

TEST(Findings, AreComparedWithTheFirstFrameOfTheirFilesOrWithAnother)
{
    const TemporaryFolder folder;
    const std::string file = folder.write("a.txt", "0 0 0\n0 0 1\n\n\n0 0 0\n0 0 2\n"),
                      beside = folder.write("b.txt", "3 0 0\n3 0 1\n");
    ReadReport report;
    const auto first = findIn({file}, 1, {}, report, Comparison());
    ASSERT_TRUE(first) << report.error;
    EXPECT_THAT(scalarOf(first->data.rods[0], "reference_distance")->values,
                testing::Each(testing::DoubleNear(0.5, 1e-12)));
    EXPECT_EQ(first->compared.count("reference_distance"), 1u);
    const auto same = findIn({file, beside}, 0, {}, report, Comparison());
    ASSERT_TRUE(same) << report.error;
    for (const Rod& rod : same->data.rods)
        EXPECT_THAT(scalarOf(rod, "reference_distance")->values,
                    testing::Each(testing::DoubleNear(0, 1e-12)));
    const auto other = findIn({beside}, 0, {}, report, Comparison{first->data});
    ASSERT_TRUE(other) << report.error;
    EXPECT_THAT(scalarOf(other->data.rods[0], "reference_distance")->values,
                testing::Each(testing::DoubleNear(0.5, 1e-12)));
    EXPECT_TRUE(findIn({beside}, 0, {}, report)->data.rods[0].scalars.empty());
}

TEST(Findings, AComparisonLeavesWhatAFileCallsByItsNames)
{
    const TemporaryFolder folder;
    const std::string file = folder.write("a.txt", "x y z extension\n0 0 0 7\n0 0 1 8\n");
    ReadReport report;
    const auto found = findIn({file}, 0, {}, report, Comparison());
    ASSERT_TRUE(found) << report.error;
    EXPECT_THAT(scalarOf(found->data.rods[0], "extension")->values, testing::ElementsAre(7, 8));
    EXPECT_EQ(found->compared.count("extension"), 0u);
}

// Names of files and of things are bytes, JSON is UTF-8.
TEST(Findings, AreValidJsonWhateverTheNames)
{
    Rod rod = square();
    rod.name = "a\xFF\"\n";
    EXPECT_EQ(asJson(rod)["name"], "a\uFFFD\"\n");
    const std::string text = inWords({{rod}});
    EXPECT_THAT(text.substr(0, text.find('\n')), testing::EndsWith("with frames")) << "one line";
}

} // namespace

} // namespace strandview
