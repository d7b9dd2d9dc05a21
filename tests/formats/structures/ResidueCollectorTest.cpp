// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/structures/ResidueCollector.h>

#include <gmock/gmock.h>

namespace strandview {

namespace {

using testing::ElementsAre;

ResidueType typeByName(const std::string& name)
{
    if (name == "DA")
        return {ResidueKind::NUCLEOTIDE, 'A', false};
    return {name == "ALA"   ? ResidueKind::AMINO_ACID
            : name == "HOH" ? ResidueKind::WATER
                            : ResidueKind::OTHER};
}

AtomRow atom(std::string_view name, std::string_view residue = "DA", std::string_view number = "1",
             std::string_view part = "1")
{
    AtomRow row;
    row.chain = "A";
    row.part = part;
    row.number = number;
    row.residue = residue;
    row.atom = name;
    return row;
}

StructureModel collected(const std::vector<AtomRow>& rows)
{
    ResidueCollector collector(typeByName);
    for (const AtomRow& row : rows)
        collector.add(row);
    return collector.take();
}

std::vector<std::string> atomsOf(const Residue& residue)
{
    std::vector<std::string> names;
    for (const ResidueAtom& one : residue.atoms)
        names.emplace_back(one.name.data());
    return names;
}

} // namespace

TEST(ResidueCollector, AtomsOfOneNumberAndNameAreOneResidue)
{
    const StructureModel model = collected({atom("P"), atom("N9"), atom("P", "DA", "2"),
                                            atom("N9", "DA", "2"), atom("C4", "DA", "1")});
    ASSERT_EQ(model.residues.size(), 2u);
    EXPECT_EQ(model.residues[0].number, "1");
    EXPECT_EQ(model.residues[0].chain, "A");
    EXPECT_EQ(model.residues[0].type.letter, 'A');
    EXPECT_THAT(atomsOf(model.residues[0]), ElementsAre("P", "N9", "C4"));
    EXPECT_THAT(atomsOf(model.residues[1]), ElementsAre("P", "N9"));
}

TEST(ResidueCollector, ResiduesOfDifferentPartsAreNotOne)
{
    const StructureModel model = collected({atom("P"), atom("P", "DA", "1", "2")});
    ASSERT_EQ(model.residues.size(), 2u);
    EXPECT_EQ(model.residues[0].part, 0u);
    EXPECT_EQ(model.residues[1].part, 1u);
}

TEST(ResidueCollector, KeepsNoOtherAtoms)
{
    const StructureModel model = collected(
        {atom("H8"), atom("C5'"), atom("CL"), atom(""), atom("HO5'"), atom("N9"), atom("OP1")});
    ASSERT_EQ(model.residues.size(), 1u);
    EXPECT_THAT(atomsOf(model.residues[0]), ElementsAre("N9"));
}

TEST(ResidueCollector, OldNamesAreThoseOfToday)
{
    const StructureModel model = collected({atom("C1*"), atom("O3*"), atom("C5M"), atom("C2*")});
    EXPECT_THAT(atomsOf(model.residues.at(0)), ElementsAre("C1'", "O3'", "C7"));
}

TEST(ResidueCollector, TellsWhatElseThereIs)
{
    const StructureModel none = collected({});
    EXPECT_FALSE(none.hasProtein || none.hasWater || none.hasOther);
    const StructureModel all =
        collected({atom("CA", "ALA"), atom("O", "HOH"), atom("MG", "MG"), atom("P")});
    EXPECT_TRUE(all.hasProtein && all.hasWater && all.hasOther);
    EXPECT_EQ(all.residues.size(), 1u);
    EXPECT_FALSE(collected({atom("P")}).hasOther);
}

TEST(ResidueCollector, AModelBeginsWithNothing)
{
    ResidueCollector collector(typeByName);
    EXPECT_TRUE(collector.isEmpty());
    collector.add(atom("O", "HOH"));
    EXPECT_FALSE(collector.isEmpty());
    collector.add(atom("P"));
    EXPECT_EQ(collector.take().residues.size(), 1u);
    EXPECT_TRUE(collector.isEmpty());
    collector.add(atom("N9"));
    const StructureModel second = collector.take();
    ASSERT_EQ(second.residues.size(), 1u);
    EXPECT_THAT(atomsOf(second.residues[0]), ElementsAre("N9"));
    EXPECT_FALSE(second.hasWater);
}

} // namespace strandview
