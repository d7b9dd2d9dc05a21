// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/structures/ResidueCollector.h>

#include <algorithm>
#include <utility>

namespace strandview {

namespace {

constexpr std::size_t LONGEST_NAME = 3;

// Atoms of bases (analysis/baseAtoms.h), where the sugar is, and those between nucleotides.
constexpr std::string_view NAMES[] = {"C1'", "C2", "C4", "C5", "C6", "C7",  "C8", "N1", "N2", "N3",
                                      "N4",  "N6", "N7", "N9", "O2", "O3'", "O4", "O6", "P"};

/// The name that an atom has in files of today; nothing of one that is not kept.
std::string_view keptName(std::string_view atom)
{
    if (atom == "C5M") // the methyl group of thymine
        return "C7";
    if (atom.size() > LONGEST_NAME || atom.empty())
        return {};
    for (const std::string_view name : NAMES) {
        const bool isOld = atom.size() == 3 && atom.back() == '*' && name.size() == 3 &&
                           name.substr(0, 2) == atom.substr(0, 2);
        if (name == atom || isOld)
            return name;
    }
    return {};
}

} // namespace

ResidueCollector::ResidueCollector(TypeOf typeOfResidue) : typeOfName(std::move(typeOfResidue)) {}

bool ResidueCollector::isEmpty() const
{
    return model.residues.empty() && !model.hasProtein && !model.hasWater && !model.hasOther;
}

const ResidueType& ResidueCollector::typeOf(std::string_view residue)
{
    const auto known = types.find(residue);
    if (known != types.end())
        return known->second;
    const std::string name(residue);
    return types.emplace(name, typeOfName(name)).first->second;
}

Residue& ResidueCollector::residueOf(const AtomRow& row, const ResidueType& type)
{
    if (parts == 0 || row.part != part) {
        part = row.part;
        ++parts;
        ofPart.clear();
    } else if (!model.residues.empty()) {
        Residue& last = model.residues.back();
        if (last.part + 1 == parts && last.number == row.number && last.name == row.residue)
            return last;
    }
    const auto [found, isNew] = ofPart.emplace(
        std::pair<std::string, std::string>(row.number, row.residue), model.residues.size());
    if (isNew)
        model.residues.push_back({parts - 1,
                                  std::string(row.chain),
                                  std::string(row.number),
                                  std::string(row.residue),
                                  type,
                                  {}});
    return model.residues[found->second];
}

void ResidueCollector::add(const AtomRow& row)
{
    const ResidueType& type = typeOf(row.residue);
    model.hasProtein = model.hasProtein || type.kind == ResidueKind::AMINO_ACID;
    model.hasWater = model.hasWater || type.kind == ResidueKind::WATER;
    model.hasOther = model.hasOther || type.kind == ResidueKind::OTHER;
    if (type.kind == ResidueKind::AMINO_ACID || type.kind == ResidueKind::WATER)
        return;
    const std::string_view name = keptName(row.atom);
    if (name.empty())
        return;
    ResidueAtom atom{
        {}, row.conformer, float(row.occupancy), {row.place.x, row.place.y, row.place.z}};
    std::copy(name.begin(), name.end(), atom.name.begin());
    residueOf(row, type).atoms.push_back(atom);
}

StructureModel ResidueCollector::take()
{
    ofPart.clear();
    parts = 0;
    return std::exchange(model, StructureModel());
}

} // namespace strandview
