// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/structures/readAtoms.h>

#include <algorithm>
#include <string>

#include <gmock/gmock.h>

#include "support/structureTexts.h"

namespace strandview {

namespace {

using TextReader = bool (*)(std::string_view, const std::string&, const ReadOptions&,
                            const TakeModel&, ReadReport&);

struct Models
{
    std::vector<StructureModel> models;
    bool isRead = false;
    std::string error;
};

Models readBy(TextReader reader, const std::string& text, const ReadOptions& options = {})
{
    Models all;
    ReadReport report;
    const auto take = [&all](StructureModel model) {
        all.models.push_back(std::move(model));
        return true;
    };
    all.isRead = reader(text, "here", options, take, report);
    all.error = report.error;
    return all;
}

std::string replaced(std::string text, const std::string& from, const std::string& to)
{
    for (std::size_t at = text.find(from); at != std::string::npos;
         at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
    return text;
}

void expectSame(const StructureModel& a, const StructureModel& b)
{
    EXPECT_EQ(a.hasProtein, b.hasProtein);
    EXPECT_EQ(a.hasWater, b.hasWater);
    EXPECT_EQ(a.hasOther, b.hasOther);
    ASSERT_EQ(a.residues.size(), b.residues.size());
    for (std::size_t i = 0; i < a.residues.size(); ++i) {
        const Residue &one = a.residues[i], &other = b.residues[i];
        EXPECT_EQ(one.part, other.part);
        EXPECT_EQ(one.chain + " " + one.number + " " + one.name,
                  other.chain + " " + other.number + " " + other.name);
        ASSERT_EQ(one.atoms.size(), other.atoms.size());
        for (std::size_t k = 0; k < one.atoms.size(); ++k) {
            EXPECT_EQ(one.atoms[k].name, other.atoms[k].name);
            EXPECT_EQ(one.atoms[k].conformer, other.atoms[k].conformer);
            EXPECT_EQ(one.atoms[k].occupancy, other.atoms[k].occupancy);
            for (int axis = 0; axis < 3; ++axis)
                EXPECT_EQ(one.atoms[k].place[axis], other.atoms[k].place[axis]);
        }
    }
}

/// DNA, protein, water, an ion, and an atom in two places.
std::vector<TestAtom> manyAtoms()
{
    std::vector<TestAtom> atoms = duplexAtoms("ACG");
    atoms[3].conformer = 'A';
    atoms[3].occupancy = 0.25;
    atoms.insert(atoms.begin() + 4, atoms[3]);
    atoms[4].conformer = 'B';
    atoms[4].occupancy = 0.75;
    atoms[4].place.x += 1;
    atoms.push_back(proteinAtom());
    atoms.push_back(waterAtom());
    atoms.push_back({"MG", "MG", "M", 1, {0, 30, 0}, ' ', 1, "HETATM"});
    return atoms;
}

} // namespace

TEST(ReadAtoms, BothFormatsTellTheSame)
{
    const Models pdb = readBy(readPdb, pdbOf(manyAtoms()));
    const Models cif = readBy(readMmcif, cifOf(manyAtoms()));
    EXPECT_TRUE(pdb.isRead) << pdb.error;
    EXPECT_TRUE(cif.isRead) << cif.error;
    ASSERT_EQ(pdb.models.size(), 1u);
    ASSERT_EQ(cif.models.size(), 1u);
    EXPECT_EQ(pdb.models[0].residues.size(), 6u);
    EXPECT_TRUE(pdb.models[0].hasProtein && pdb.models[0].hasWater && pdb.models[0].hasOther);
    expectSame(pdb.models[0], cif.models[0]);
}

TEST(ReadAtoms, NumbersAreThoseOfTheFile)
{
    const Models read = readBy(readPdb, "ATOM      1  P    DG B  -3A    -12.345   6.789-999.500"
                                        "  0.50 20.00           P\n");
    ASSERT_EQ(read.models.size(), 1u) << read.error;
    const Residue& residue = read.models[0].residues.at(0);
    EXPECT_EQ(residue.chain, "B");
    EXPECT_EQ(residue.number, "-3A");
    EXPECT_EQ(residue.name, "DG");
    EXPECT_EQ(residue.type.letter, 'G');
    EXPECT_EQ(residue.atoms.at(0).place[0], -12.345);
    EXPECT_EQ(residue.atoms[0].place[1], 6.789);
    EXPECT_EQ(residue.atoms[0].place[2], -999.5);
    EXPECT_EQ(residue.atoms[0].occupancy, 0.5f);
}

TEST(ReadAtoms, LineEndsMayBeThoseOfAnySystem)
{
    for (const auto& [reader, text] :
         {std::pair<TextReader, std::string>(readPdb, pdbOf(manyAtoms())),
          {readMmcif, cifOf(manyAtoms())}}) {
        const Models expected = readBy(reader, text);
        const Models found = readBy(reader, replaced(text, "\n", "\r\n"));
        ASSERT_EQ(found.models.size(), 1u) << found.error;
        expectSame(found.models[0], expected.models.at(0));
    }
}

TEST(ReadAtoms, ModelsComeOneAfterAnother)
{
    std::vector<TestAtom> atoms = duplexAtoms("AC");
    const std::size_t count = atoms.size();
    for (int model = 2; model <= 3; ++model)
        for (std::size_t i = 0; i < count; ++i) {
            atoms.push_back(atoms[i]);
            atoms.back().model = model;
            atoms.back().place.z += model;
        }
    const std::string pdb = pdbOf(atoms);
    const std::string endsAlone = replaced(replaced(pdb, "ENDMDL", "END"), "MODEL ", "REMARK");
    for (const Models& read :
         {readBy(readPdb, pdb), readBy(readMmcif, cifOf(atoms)),
          readBy(readPdb, replaced(pdb, "ENDMDL\n", "")), readBy(readPdb, endsAlone)}) {
        ASSERT_EQ(read.models.size(), 3u) << read.error;
        for (const StructureModel& model : read.models) {
            EXPECT_EQ(model.residues.size(), 4u);
            EXPECT_EQ(model.residues.at(0).part, 0u);
        }
        EXPECT_NEAR(read.models[2].residues[0].atoms[0].place[2] -
                        read.models[0].residues[0].atoms[0].place[2],
                    3, 1e-9);
    }
}

TEST(ReadAtoms, NobodyWhoHasEnoughIsGivenMore)
{
    std::vector<TestAtom> atoms = duplexAtoms("AC");
    atoms.push_back(atoms[0]);
    atoms.back().model = 2;
    for (const auto& [reader, text] :
         {std::pair<TextReader, std::string>(readPdb, pdbOf(atoms) + "ATOM  broken\n"),
          {readMmcif, cifOf(atoms) + "broken"}}) {
        int count = 0;
        ReadReport report;
        const auto takeOne = [&count](const StructureModel&) { return ++count < 1; };
        EXPECT_TRUE(reader(text, "here", {}, takeOne, report)) << report.error;
        EXPECT_EQ(count, 1);
    }
}

TEST(ReadAtoms, ChainsOfOneNameAreApartBehindTer)
{
    std::vector<TestAtom> atoms = duplexAtoms("AC");
    const auto isOfB = [](const TestAtom& atom) { return atom.chain == "B"; };
    const auto firstOfB = std::find_if(atoms.begin(), atoms.end(), isOfB) - atoms.begin();
    for (TestAtom& atom : atoms) { // both strands are chain A with residues 1 and 2
        atom.number = atom.chain == "B" ? atom.number - 2 : atom.number;
        atom.chain = "A";
    }
    std::string text;
    for (std::size_t i = 0; i < atoms.size(); ++i)
        text += (i == std::size_t(firstOfB) ? "TER\n" : "") + pdbLine(atoms[i], i);
    const Models read = readBy(readPdb, text);
    ASSERT_EQ(read.models.size(), 1u);
    ASSERT_EQ(read.models[0].residues.size(), 4u);
    EXPECT_EQ(read.models[0].residues[1].part, 0u);
    EXPECT_EQ(read.models[0].residues[2].part, 1u);
}

TEST(ReadAtoms, ParentsOfModifiedBasesMayBeInTheFile)
{
    std::vector<TestAtom> atoms = duplexAtoms("AC");
    for (TestAtom& atom : atoms)
        atom.residue = atom.residue == "DC" ? "ZZZ" : atom.residue;
    const Models pdb = readBy(readPdb, "MODRES 1ABC ZZZ A    2   DC  SOMETHING\n" + pdbOf(atoms));
    const std::string table = "loop_\n_chem_comp.id\n_chem_comp.mon_nstd_parent_comp_id\n"
                              "DA ?\nZZZ DC\n#\n";
    const Models cif = readBy(readMmcif, replaced(cifOf(atoms), "loop_\n", table + "loop_\n"));
    const Models none = readBy(readPdb, pdbOf(atoms));
    for (const Models* read : {&pdb, &cif}) {
        ASSERT_EQ(read->models.size(), 1u) << read->error;
        const ResidueType type = read->models[0].residues.at(1).type;
        EXPECT_EQ(type.kind, ResidueKind::NUCLEOTIDE);
        EXPECT_EQ(type.letter, 'C');
        EXPECT_TRUE(type.isModified);
    }
    EXPECT_EQ(none.models.at(0).residues.at(1).type.kind, ResidueKind::OTHER);
}

TEST(ReadAtoms, NamesTellWhatAResidueIs)
{
    const auto letterOf = [](const char* name) {
        const ResidueType type = typeOfResidue(name);
        EXPECT_EQ(type.kind, ResidueKind::NUCLEOTIDE) << name;
        return type.letter;
    };
    for (const char* name : {"A", "DA", "RA", "ADE", "DA5", "A3", "RAN", "+A"})
        EXPECT_EQ(letterOf(name), 'A') << name;
    for (const char* name : {"T", "DT", "DT3", "THY"})
        EXPECT_EQ(letterOf(name), 'T') << name;
    EXPECT_EQ(letterOf("U"), 'U');
    EXPECT_EQ(letterOf("DU"), 'U');
    EXPECT_EQ(letterOf("5CM"), 'C');
    EXPECT_TRUE(typeOfResidue("5CM").isModified);
    EXPECT_FALSE(typeOfResidue("DC").isModified);
    EXPECT_EQ(typeOfResidue("DI").letter, '\0') << "inosine is told by its atoms";
    EXPECT_EQ(typeOfResidue("ALA").kind, ResidueKind::AMINO_ACID);
    EXPECT_EQ(typeOfResidue("HOH").kind, ResidueKind::WATER);
    EXPECT_EQ(typeOfResidue("WAT").kind, ResidueKind::WATER);
    for (const char* name : {"MG", "ATP", "ZZZ", "", "D", "R3",
                             "\xFF"
                             "A",
                             "D\x80\xFF"})
        EXPECT_EQ(typeOfResidue(name).kind, ResidueKind::OTHER) << name;
}

struct BadText
{
    const char* what;
    TextReader reader;
    std::string text;
    std::string error;
};

class BadStructure : public testing::TestWithParam<BadText>
{
};

TEST_P(BadStructure, IsRefusedInOneLine)
{
    const Models read = readBy(GetParam().reader, GetParam().text);
    EXPECT_FALSE(read.isRead);
    EXPECT_EQ(read.error, GetParam().error);
}

const std::string ATOM = "ATOM      1  P    DA A   1       0.000   0.000   0.000  1.00 20.00\n";
const std::string CIF = "data_a\nloop_\n_atom_site.label_atom_id\n_atom_site.label_comp_id\n"
                        "_atom_site.Cartn_x\n_atom_site.Cartn_y\n_atom_site.Cartn_z\n";

INSTANTIATE_TEST_SUITE_P(
    ReadAtoms, BadStructure,
    testing::Values(
        BadText{"ShortLine", readPdb, "REMARK\n" + ATOM.substr(0, 40) + "\n",
                "here:2: found an atom of 40 characters, expected at least 54"},
        BadText{"Nul", readPdb, ATOM + ATOM.substr(0, 19) + '\0' + ATOM.substr(20),
                "here:2: found a character of code 0, expected an atom in ASCII"},
        BadText{"NoNumber", readPdb, ATOM + replaced(ATOM, "  0.000  1.00", "  0.x00  1.00"),
                "here:2: column 47 (z): found '0.x00', expected a finite number"},
        BadText{"NoCoordinate", readPdb,
                replaced(ATOM, "   0.000   0.000   0.000", std::string(24, ' ')),
                "here:1: column 31 (x): found '', expected a finite number"},
        BadText{"NotFinite", readPdb,
                replaced(ATOM, "   0.000   0.000   0", "   0.000     nan   0"),
                "here:1: column 39 (y): found 'nan', expected a finite number"},
        BadText{
            "TooLarge", readPdb, replaced(ATOM, "   0.000   0.000   0", "    1e19   0.000   0"),
            "here:1: column 31 (x): found '1e19', expected a coordinate between -1e18 and 1e18"},
        BadText{"NoBlock", readMmcif, "nothing\n",
                "here:1:1: found no mmCIF (expected block header (data_)), "
                "expected tags and values of a data block"},
        BadText{"Empty", readMmcif, "", "here:1: found an empty text, expected a data block"},
        BadText{"RowCutShort", readMmcif, CIF + "P DA 1 2 3\nP DA 1\n",
                "here:10: found a table that ends in a row of 3 values, expected 5"},
        BadText{"CifNoNumber", readMmcif, CIF + "P DA 1 2 3\nP DA 1 ? 3\n",
                "here:9: Cartn_y: found '', expected a finite number"},
        BadText{"CifTooLarge", readMmcif, CIF + "P DA 1 2 -2e18(3)\n",
                "here:8: Cartn_z: found '-2e18', expected a coordinate between -1e18 and 1e18"},
        BadText{"ColumnMissing", readMmcif,
                "data_a\nloop_\n_atom_site.label_atom_id\n_atom_site.Cartn_x\nP 1\n",
                "here:4: found atoms without _atom_site.Cartn_y, expected a structure with it"},
        BadText{"OpenQuote", readMmcif, CIF + "P DA 1 2 'three\n",
                "here:8:16: found no mmCIF (unterminated 'string'), "
                "expected tags and values of a data block"}),
    [](const testing::TestParamInfo<BadText>& one) { return one.param.what; });

TEST(ReadAtoms, StopWhenTheyAreTold)
{
    for (const auto& [reader, text] :
         {std::pair<TextReader, std::string>(readPdb, pdbOf(manyAtoms())),
          {readMmcif, cifOf(manyAtoms())}}) {
        ReadOptions options;
        options.goOn = [](double) { return false; };
        const Models read = readBy(reader, text, options);
        EXPECT_FALSE(read.isRead);
        EXPECT_EQ(read.error, "here: reading was stopped");
    }
}

// Tags in any case, values in quotes, tables that are not asked for, and rows over several lines.
TEST(ReadAtoms, ValuesOfMmcifMayStandInEveryForm)
{
    const std::string begin = "data_x\nloop_\n_atom_site.label_asym_id\n_atom_site.label_seq_id\n"
                              "_atom_site.label_atom_id\n_atom_site.label_comp_id\n"
                              "_atom_site.Cartn_x\n_atom_site.Cartn_y\n_atom_site.Cartn_z\n";
    const Models plain = readBy(readMmcif, begin + "A 1 P DA 1 2 3\nA 1 O3' DA 4 5 6\n");
    ASSERT_EQ(plain.models.size(), 1u) << plain.error;
    ASSERT_EQ(plain.models[0].residues.size(), 1u);
    ASSERT_EQ(plain.models[0].residues[0].atoms.size(), 2u);
    for (const char* rows : {
             "A 1 'P' \"DA\" '1' 2 3\nA 1 \"O3'\" 'DA' 4 5 6\n",
             "A 1 P DA 1 2 3 A 1 'O3'' DA 4 5 6",
             "A\t1 P\n\n DA 1 2 # here\n3\n# a line\nA 1 O3' DA\r\n4 5 6\r\n",
             "A 1 P DA 1 2 3\nA 1 O3' DA 4 5 6\nstop_\n",
             "A 1 P DA 1 2 3\nA 1 O3' DA 4 5 6\n_other.tag [value]\n",
         }) {
        SCOPED_TRACE(rows);
        const Models read = readBy(readMmcif, begin + rows);
        ASSERT_EQ(read.models.size(), 1u) << read.error;
        expectSame(read.models[0], plain.models[0]);
    }
    const Models wrong = readBy(readMmcif, begin + "A 1 P DA 1 2 3\nA 1 P DA 4 'x y' 6\n");
    EXPECT_EQ(wrong.error, "here:11: Cartn_y: found 'x y', expected a finite number");
}

TEST(ReadAtoms, MmcifIsReadAsItMayBeWritten)
{
    const Models read = readBy(
        readMmcif, "# a comment\nDATA_x\n_entry.id x\n_some.text\n;\nATOM\n;\nLOOP_\n_other.id\n"
                   "1 2 3\nloop_\n_ATOM_SITE.CARTN_X\n_atom_site.cartn_y\n_atom_site.Cartn_z\n"
                   "_atom_site.other\n_atom_site.auth_comp_id\n_atom_site.auth_atom_id\n"
                   "_atom_site.auth_asym_id\n_atom_site.auth_seq_id\n"
                   "1.5(2) 2 3\n;text\nof lines\n;\n'DA' \"O3'\" A 7 # and a comment\n"
                   "data_second\nloop_\n_atom_site.Cartn_x\n1\n");
    ASSERT_EQ(read.models.size(), 1u) << read.error;
    const Residue& residue = read.models[0].residues.at(0);
    EXPECT_EQ(residue.chain + residue.number + residue.name, "A7DA");
    EXPECT_STREQ(residue.atoms.at(0).name.data(), "O3'");
    EXPECT_EQ(residue.atoms[0].place[0], 1.5);
}

} // namespace strandview
