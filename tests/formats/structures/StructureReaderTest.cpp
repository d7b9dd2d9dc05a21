// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/structures/StructureReader.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>
#include <string>

#include <algebra3d/rotations.h>
#include <gmock/gmock.h>

#include <strandview/analysis/baseAtoms.h>
#include <strandview/analysis/dnaNumbers.h>
#include <strandview/analysis/fitFrame.h>
#include <strandview/analysis/helicalParameters.h>
#include <strandview/formats/JsonReader.h>
#include <strandview/formats/Source.h>
#include <strandview/formats/openSeries.h>
#include <strandview/formats/readFile.h>
#include <strandview/formats/structures/readAtoms.h>
#include <strandview/formats/writeJson.h>

#include "support/FilesOfOthers.h"
#include "support/TemporaryFolder.h"
#include "support/structureTexts.h"

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::unique_ptr<Source> sourceOf(const std::string& text) { return Source::ofBytes("here", text); }

struct Read
{
    std::optional<Configuration> data;
    ReadReport report;
};

Read read(const std::string& text)
{
    Read result;
    result.data = readStructure(*sourceOf(text), {}, result.report);
    return result;
}

std::vector<TestAtom> twoModels()
{
    std::vector<TestAtom> atoms = duplexAtoms("ACGT");
    const std::size_t count = atoms.size();
    for (std::size_t i = 0; i < count; ++i) {
        atoms.push_back(atoms[i]);
        atoms.back().model = 2;
        atoms.back().place.x += 5;
    }
    return atoms;
}

} // namespace

TEST(StructureReader, TextTellsAStructure)
{
    const std::string atom = pdbLine(duplexAtoms("A")[0], 1);
    for (const std::string& text :
         {atom, "HEADER    DNA\n" + atom, std::string("REMARK\nCRYST1\nTITLE     x\n"),
          "\r\n" + atom.substr(0, 60) + "\r\n", "\xEF\xBB\xBF" + atom, std::string("data_1BNA\n"),
          std::string("# made by\n\n DATA_x # none\n#\nloop_\n_a.b\n1\n"),
          std::string("data_x\n_entry.id x"), std::string("data_x\nLoop_ _a.b 1\n"),
          std::string("data_x _entry.id\nx\n")})
        EXPECT_EQ(likenessToStructure(text), Likeness::CERTAIN) << text;
    for (const std::string& text :
         {std::string(), std::string("0 0 0\n"), std::string("ATOM 1 2 3\n"),
          "ATOMS" + atom.substr(5), atom + "1 2 3\n", "  " + atom, std::string("data_x\n1 2 3\n"),
          std::string("data_x data_y\n1 2\n"), std::string("data x\n"),
          std::string("{\"data_\": 1}"), "\xFF\xFE" + atom, atom + std::string(3, '\0')})
        EXPECT_EQ(likenessToStructure(text), Likeness::NONE) << text;
}

TEST(StructureReader, BothFormatsAreTheSameDna)
{
    std::vector<TestAtom> atoms = duplexAtoms("ACGT");
    atoms.push_back(proteinAtom());
    const Read pdb = read(pdbOf(atoms)), cif = read(cifOf(atoms));
    ASSERT_TRUE(pdb.data) << pdb.report.error;
    ASSERT_TRUE(cif.data) << cif.report.error;
    for (const Read* one : {&pdb, &cif}) {
        ASSERT_EQ(one->data->dnas.size(), 1u);
        EXPECT_EQ(one->data->dnas[0].bases, "ACGT");
        EXPECT_EQ(one->data->dnas[0].origin, "here: DNA A-B");
        EXPECT_EQ(one->data->rods.size(), 2u);
        EXPECT_THAT(one->report.notices, IsEmpty());
    }
    for (int k = 0; k < 4; ++k)
        EXPECT_EQ((pdb.data->dnas[0].pairPoints[k] - cif.data->dnas[0].pairPoints[k]).getNorm(), 0);
}

TEST(StructureReader, ReadsTheFirstModel)
{
    for (const std::string& text : {pdbOf(twoModels()), cifOf(twoModels())}) {
        const Read first = read(text);
        ASSERT_TRUE(first.data) << first.report.error;
        EXPECT_NEAR(first.data->dnas.at(0).pairPoints[0].x, 0, 0.01);
    }
}

TEST(StructureReader, ModelsAreTheFramesOfASeries)
{
    for (const std::string& text : {pdbOf(twoModels()), cifOf(twoModels())}) {
        ReadReport report;
        const auto series = openStructures(sourceOf(text), {}, report);
        ASSERT_TRUE(series) << report.error;
        ASSERT_EQ(series->count(), 2u);
        EXPECT_FALSE(series->time(1));
        for (std::size_t frame = 0; frame < 2; ++frame) {
            const LoadedFrame loaded = series->load(frame);
            ASSERT_TRUE(loaded.configuration);
            EXPECT_NEAR(loaded.configuration->dnas.at(0).pairPoints[0].x, 5 * double(frame), 0.01);
        }
    }
}

// Base pairs of every model of a text, whose second one may have residue 1 far away, or without a
// base; and what is told of the second one.
std::vector<std::size_t> pairsOfModels(const std::function<void(TestAtom&)>& changeInSecond,
                                       bool ownPairs, std::vector<std::string>& notices)
{
    ReadReport report;
    std::vector<TestAtom> atoms = twoModels();
    for (TestAtom& atom : atoms)
        if (atom.model == 2 && atom.number == 1 && atom.name[0] != 'P')
            changeInSecond(atom);
    const TemporaryFolder folder;
    ReadOptions options;
    options.ownPairs = ownPairs;
    const auto series = openSeries({folder.write("two.pdb", pdbOf(atoms))}, options, report);
    std::vector<std::size_t> pairs;
    for (const std::size_t frame : {0, 1}) {
        const LoadedFrame loaded = series->load(frame);
        pairs.push_back(0);
        for (const Dna& dna : loaded.configuration->dnas)
            pairs.back() += dna.bases.size();
        notices = loaded.notices;
    }
    EXPECT_THAT(report.notices, IsEmpty());
    return pairs;
}

TEST(StructureReader, PairsAreThoseOfTheFirstModelUnlessEachHasItsOwn)
{
    const auto moveAway = [](TestAtom& atom) { atom.place.y += 20; };
    const auto tellsOthers = testing::Contains(HasSubstr("found other nucleotides"));
    std::vector<std::string> notices;
    EXPECT_THAT(pairsOfModels(moveAway, false, notices), ElementsAre(4, 4));
    EXPECT_THAT(notices, testing::Not(tellsOthers));
    EXPECT_THAT(pairsOfModels(moveAway, true, notices), ElementsAre(4, 3));
    EXPECT_THAT(notices, testing::Not(tellsOthers));
}

TEST(StructureReader, AModelOfOtherNucleotidesHasItsOwnPairsAndIsTold)
{
    std::vector<std::string> notices;
    const auto dropBase = [](TestAtom& atom) { atom.name = "C1'"; };
    EXPECT_THAT(pairsOfModels(dropBase, false, notices), ElementsAre(4, 3));
    EXPECT_THAT(notices, testing::Contains(HasSubstr(
                             "two.pdb: frame 1: found other nucleotides than in the first frame")));
}

TEST(StructureReader, AModelWithoutDnaIsAnEmptyFrame)
{
    std::vector<TestAtom> atoms = duplexAtoms("ACGT");
    atoms.push_back(waterAtom());
    atoms.back().model = 2;
    ReadReport report;
    const auto series = openStructures(sourceOf(pdbOf(atoms)), {}, report);
    ASSERT_TRUE(series) << report.error;
    ASSERT_EQ(series->count(), 2u);
    EXPECT_TRUE(series->load(1).configuration->dnas.empty());

    std::string written;
    const auto take = [&](std::string_view piece) {
        written += piece;
        return true;
    };
    ASSERT_TRUE(writeJson(*series, take, {}, report));
    const auto again = openJson(written, "again.json", {}, report);
    ASSERT_TRUE(again) << report.error;
    EXPECT_EQ(again->count(), 2u);
}

TEST(StructureReader, WithoutAnyDnaSeriesAndFileAreRefusedAlike)
{
    for (const std::string& text : {pdbOf({proteinAtom()}), cifOf({proteinAtom()})}) {
        EXPECT_EQ(read(text).report.error, "here: found protein alone, expected DNA");
        ReadReport report;
        EXPECT_FALSE(openStructures(sourceOf(text), {}, report));
        EXPECT_EQ(report.error, "here: found protein alone, expected DNA");
    }
    for (const std::string& text :
         {std::string(), std::string("data_x\n_entry.id x\n"), std::string("HEADER\n")}) {
        EXPECT_EQ(read(text).report.error, "here: found no atoms, expected DNA");
        ReadReport report;
        EXPECT_FALSE(openStructures(sourceOf(text), {}, report));
        EXPECT_EQ(report.error, "here: found no atoms, expected DNA");
    }
}

TEST(StructureReader, WhatIsNoTextIsRefused)
{
    EXPECT_EQ(read(std::string("ATOM\0", 5)).report.error,
              "here: found binary data, expected a structure");
    EXPECT_EQ(read("\xFF\xFE x").report.error, "here: found UTF-16 text, expected UTF-8");
}

// ---- Small files of our own

namespace {

Configuration readOwn(const std::string& name, ReadReport& report)
{
    auto data = readFile(std::string(TEST_FILES) + "/" + name, {}, report);
    EXPECT_TRUE(data) << report.error;
    return data ? std::move(*data) : Configuration();
}

} // namespace

TEST(StructureReader, AFileWithAllThatStructuresHaveIsRead)
{
    for (const char* name : {"structure6.pdb", "structure6.cif"}) {
        SCOPED_TRACE(name);
        ReadReport report;
        const Configuration data = readOwn(name, report);
        ASSERT_EQ(data.dnas.size(), 1u);
        EXPECT_EQ(data.dnas[0].bases, "GACTCG");
        EXPECT_EQ(data.dnas[0].name, "A-C,B");
        EXPECT_EQ(data.rods.size(), 3u);
        ASSERT_EQ(data.loneBases.size(), 1u);
        EXPECT_EQ(data.loneBases[0].base, 'A');
        EXPECT_EQ(report.notices.size(), 5u) << testing::PrintToString(report.notices);
        EXPECT_EQ(report.frames, SEVERAL_FRAMES);
    }
}

// ---- Structures from elsewhere

namespace {

class StructuresOfOthers : public FilesOfOthers
{
protected:
    Configuration load(const std::string& name)
    {
        ReadReport report;
        auto data = readFile(folder + name, {}, report);
        EXPECT_TRUE(data) << report.error;
        EXPECT_THAT(report.notices, IsEmpty());
        return data ? std::move(*data) : Configuration();
    }

    static const Dna& onlyDna(const Configuration& data)
    {
        static const Dna none;
        EXPECT_EQ(data.dnas.size(), 1u);
        EXPECT_TRUE(data.loneBases.empty());
        return data.dnas.empty() ? none : data.dnas[0];
    }

    /// The atoms of the file by chain and residue: "A 7".
    std::map<std::string, Residue> residuesOf(const std::string& name) const
    {
        std::ifstream file(folder + name);
        std::stringstream text;
        text << file.rdbuf();
        std::map<std::string, Residue> residues;
        const auto take = [&residues](StructureModel model) {
            for (Residue& residue : model.residues)
                residues.emplace(residue.chain + " " + residue.number, residue);
            return false;
        };
        ReadReport report;
        EXPECT_TRUE(readPdb(text.str(), name, {}, take, report)) << report.error;
        return residues;
    }
};

/// The rms distance of a residue's atoms to those that are drawn in a frame; a strand 2's has its
/// y and z the other way.
double rmsOfDrawn(const Residue& residue, char base, const Vector& point,
                  const algebra3d::Quaternion<double>& rotation, double mirror)
{
    double squares = 0;
    std::size_t count = 0;
    for (const BaseAtom& atom : drawnAtoms(base))
        for (const ResidueAtom& measured : residue.atoms) {
            if (atom.name != measured.name.data())
                continue;
            const Vector place(atom.place.x, mirror * atom.place.y, mirror * atom.place.z);
            const Vector left = point + rotated(place, rotation) - Vector(measured.place);
            squares += left.dot(left);
            ++count;
        }
    EXPECT_EQ(count, drawnAtoms(base).size());
    return std::sqrt(squares / double(count));
}

/// The worst of a duplex whose strands are chains with residues from a first number on.
double worstRmsOfDrawn(const Dna& dna, const std::map<std::string, Residue>& residues,
                       const std::string& chain1, int first1, const std::string& chain2, int first2)
{
    double worst = 0;
    const int n = int(dna.bases.size());
    for (int k = 0; k < n; ++k) {
        const auto one = residues.find(chain1 + " " + std::to_string(first1 + k));
        const auto two = residues.find(chain2 + " " + std::to_string(first2 + n - 1 - k));
        EXPECT_TRUE(one != residues.end() && two != residues.end());
        const std::size_t i = std::size_t(k);
        worst = std::max(
            {worst, rmsOfDrawn(one->second, dna.bases[i], dna.points1[i], dna.rotations1[i], 1),
             rmsOfDrawn(two->second, complementOf(dna.bases[i]), dna.points2[i], dna.rotations2[i],
                        -1)});
    }
    return worst;
}

/// The worst rms distance of a residue's ring to the same atoms of the library's base, if these
/// alone are fitted.
double worstRmsOfRings(const std::map<std::string, Residue>& residues)
{
    double worst = 0;
    for (const auto& [name, residue] : residues) {
        std::vector<Vector> places, measured;
        for (const BaseAtom& ring : standardRingAtoms(residue.type.letter))
            for (const BaseAtom& drawn : drawnAtoms(residue.type.letter))
                for (const ResidueAtom& atom : residue.atoms)
                    if (ring.name == drawn.name && ring.name == atom.name.data()) {
                        places.push_back(drawn.place);
                        measured.emplace_back(atom.place);
                    }
        if (!places.empty())
            worst = std::max(worst, fitFrame(places, measured).rms);
    }
    return worst;
}

double distance(const Vector& a, const Vector& b) { return (a - b).getNorm(); }

/// A table of an mmCIF file whose values have no blanks: a row for each `width` values.
std::vector<std::vector<std::string>> tableOf(const std::string& path, const std::string& category,
                                              std::vector<std::string>& tags)
{
    std::ifstream file(path);
    std::vector<std::string> values;
    bool isInside = false;
    for (std::string line; std::getline(file, line);) {
        std::istringstream fields(line);
        if (line.rfind(category, 0) == 0) {
            isInside = true;
            tags.push_back(line.substr(category.size(), line.find(' ') - category.size()));
        } else if (isInside && line[0] == '#') {
            break;
        } else if (isInside) {
            for (std::string value; fields >> value;)
                values.push_back(value);
        }
    }
    std::vector<std::vector<std::string>> rows;
    for (std::size_t at = 0; at + tags.size() <= values.size(); at += tags.size())
        rows.emplace_back(values.begin() + long(at), values.begin() + long(at + tags.size()));
    return rows;
}

} // namespace

TEST_F(StructuresOfOthers, DodecamerOf1bna)
{
    for (const char* name : {"1bna.pdb", "1bna.cif"}) {
        SCOPED_TRACE(name);
        const Configuration data = load(name);
        const Dna& dna = onlyDna(data);
        EXPECT_EQ(dna.bases, "CGCGAATTCGCG");
        EXPECT_EQ(dna.name, "A-B");
        ASSERT_EQ(data.rods.size(), 2u);
        EXPECT_EQ(data.rods[0].name + data.rods[1].name, "AB");
        EXPECT_EQ(data.rods[0].points.size(), 11u) << "no phosphate at the 5' end";
        ASSERT_TRUE(dna.standard);
        EXPECT_LE(dna.standard->rms, 0.040);
        EXPECT_LT(distance(dna.standard->pairPoints[0], {16.505, 25.830, 26.457}), 0.001);
        EXPECT_LT(distance(dna.pairPoints[0], {16.449, 25.810, 26.483}), 0.05);
        const DnaNumbers numbers = numbersOf(dna);
        EXPECT_NEAR(*numbers.meanTwist, 35.582, 0.0005);
        EXPECT_NEAR(*numbers.totalTwist, 391.40, 0.005);
        EXPECT_NEAR(*numbers.meanRise, 3.3606, 0.00005);
        EXPECT_NEAR(numbers.length, 37.703, 0.0005);
        // Three digits are known. With the atoms on the rings, which are drawn, too, it is more.
        const auto residues = residuesOf("1bna.pdb");
        EXPECT_LE(worstRmsOfRings(residues), 0.0325);
        EXPECT_LE(worstRmsOfDrawn(dna, residues, "A", 1, "B", 13), 0.065);
    }
}

TEST_F(StructuresOfOthers, BothFilesOf1bnaGiveTheSameFrames)
{
    const Configuration pdb = load("1bna.pdb"), cif = load("1bna.cif");
    const Dna &a = onlyDna(pdb), &b = onlyDna(cif);
    ASSERT_EQ(a.bases, b.bases);
    for (std::size_t k = 0; k < a.bases.size(); ++k) {
        EXPECT_EQ(distance(a.pairPoints[k], b.pairPoints[k]), 0);
        EXPECT_EQ(distance(a.standard->points1[k], b.standard->points1[k]), 0);
        EXPECT_EQ(dot(a.pairRotations[k], b.pairRotations[k]),
                  dot(a.pairRotations[k], a.pairRotations[k]));
    }
}

TEST_F(StructuresOfOthers, StepsOf1bnaAreThosePublished)
{
    const Configuration data = load("1bna.cif");
    const std::vector<StepParameters> steps = stepsOf(onlyDna(data));
    std::vector<std::string> tags;
    const auto rows = tableOf(folder + "1bna.cif", "_ndb_struct_na_base_pair_step.", tags);
    const auto first = std::size_t(std::find(tags.begin(), tags.end(), "shift") - tags.begin());
    ASSERT_EQ(rows.size(), 11u);
    ASSERT_EQ(steps.size(), 11u);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        SCOPED_TRACE(i);
        const StepParameters& step = steps[i];
        const double lengths[] = {step.shift, step.slide, step.rise};
        const double angles[] = {step.tilt, step.roll, step.twist};
        for (std::size_t k = 0; k < 3; ++k) {
            EXPECT_NEAR(lengths[k], std::stod(rows[i][first + k]), 0.002) << tags[first + k];
            EXPECT_NEAR(angles[k], std::stod(rows[i][first + 3 + k]), 0.02) << tags[first + 3 + k];
        }
    }
}

TEST_F(StructuresOfOthers, ScrewsOf1bnaAreThosePublished)
{
    const Configuration data = load("1bna.cif");
    const std::vector<PlacedFrame> pairs = pairFrames(onlyDna(data));
    std::vector<std::string> tags;
    const auto rows = tableOf(folder + "1bna.cif", "_ndb_struct_na_base_pair_step.", tags);
    const auto first =
        std::size_t(std::find(tags.begin(), tags.end(), "x_displacement") - tags.begin());
    ASSERT_EQ(rows.size(), 11u);
    ASSERT_EQ(pairs.size(), 12u);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        SCOPED_TRACE(i);
        const HelicalParameters screw = helicalParameters(pairs[i], pairs[i + 1]);
        const double lengths[] = {screw.xDisplacement, screw.yDisplacement, screw.rise};
        const double angles[] = {screw.inclination, screw.tip, screw.twist};
        for (std::size_t k = 0; k < 3; ++k) {
            EXPECT_NEAR(lengths[k], std::stod(rows[i][first + k]), 0.004) << tags[first + k];
            EXPECT_NEAR(angles[k], std::stod(rows[i][first + 3 + k]), 0.04) << tags[first + 3 + k];
        }
    }
}

TEST_F(StructuresOfOthers, FramesThatAreDrawnAreNotForNumbers)
{
    Configuration data = load("1bna.cif");
    const std::vector<StepParameters> right = stepsOf(onlyDna(data));
    data.dnas.at(0).standard.reset();
    const std::vector<StepParameters> wrong = stepsOf(data.dnas[0]);
    double largest = 0;
    for (std::size_t i = 0; i < right.size(); ++i)
        largest = std::max(largest, std::abs(right[i].slide - wrong[i].slide));
    EXPECT_GT(largest, 0.01);
}

TEST_F(StructuresOfOthers, PairsOf1bnaAreThosePublished)
{
    const Configuration data = load("1bna.cif");
    const std::vector<PairParameters> pairs = pairsOf(onlyDna(data));
    std::vector<std::string> tags;
    const auto rows = tableOf(folder + "1bna.cif", "_ndb_struct_na_base_pair.", tags);
    const auto first = std::size_t(std::find(tags.begin(), tags.end(), "shear") - tags.begin());
    ASSERT_EQ(rows.size(), 12u);
    ASSERT_EQ(pairs.size(), 12u);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        SCOPED_TRACE(i);
        const PairParameters& pair = pairs[i];
        const double lengths[] = {pair.shear, pair.stretch, pair.stagger};
        const double angles[] = {pair.buckle, pair.propeller, pair.opening};
        for (std::size_t k = 0; k < 3; ++k) {
            EXPECT_NEAR(lengths[k], std::stod(rows[i][first + k]), 0.002) << tags[first + k];
            EXPECT_NEAR(angles[k], std::stod(rows[i][first + 3 + k]), 0.02) << tags[first + 3 + k];
        }
    }
}

TEST_F(StructuresOfOthers, NucleosomeOf1kx5)
{
    const Configuration data = load("1kx5.pdb");
    const Dna& dna = onlyDna(data);
    EXPECT_EQ(dna.bases.size(), 147u);
    EXPECT_EQ(dna.name, "I-J");
    EXPECT_EQ(data.rods.size(), 2u) << "protein is no rod";
    ASSERT_TRUE(dna.standard);
    EXPECT_LE(dna.standard->rms, 0.024);
    const DnaNumbers numbers = numbersOf(dna);
    EXPECT_NEAR(*numbers.meanTwist, 34.630, 0.0005);
    EXPECT_NEAR(*numbers.totalTwist, 5056.02, 0.005);
    EXPECT_NEAR(*numbers.meanRise, 3.3107, 0.00005);
    EXPECT_NEAR(numbers.length, 506.433, 0.001);
    const auto residues = residuesOf("1kx5.pdb");
    EXPECT_LE(worstRmsOfRings(residues), 0.0265);
    EXPECT_LE(worstRmsOfDrawn(dna, residues, "I", -73, "J", -73), 0.057);
}

} // namespace strandview
