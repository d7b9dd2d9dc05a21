// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/structures/ResidueCollector.h>

#include <algorithm>
#include <utility>

namespace strandview {

namespace {

// Atoms of bases (analysis/baseAtoms.h), where the sugar is, and those between nucleotides.
constexpr std::string_view NAMES[] = {"C1'", "C2", "C4", "C5", "C6", "C7",  "C8", "N1", "N2", "N3",
                                      "N4",  "N6", "N7", "N9", "O2", "O3'", "O4", "O6", "P"};

} // namespace

AtomName nameOfAtom(std::string_view name)
{
    AtomName padded = {};
    std::copy_n(name.begin(), std::min(name.size(), padded.size()), padded.begin());
    return padded;
}

std::optional<AtomName> keptName(std::string_view atom)
{
    static const std::vector<std::uint32_t> names = [] {
        std::vector<std::uint32_t> all;
        for (const std::string_view kept : NAMES)
            all.push_back(numberOf(nameOfAtom(kept)));
        return all;
    }();
    AtomName name = nameOfAtom(atom);
    if (atom.size() == 3 && name[2] == '*')
        name[2] = '\'';
    if (atom == "C5M") // the methyl group of thymine
        name = nameOfAtom("C7");
    const bool isKept = atom.size() < name.size() &&
                        std::find(names.begin(), names.end(), numberOf(name)) != names.end();
    return isKept ? std::optional(name) : std::nullopt;
}

ResidueCollector::ResidueCollector(TypeOf typeOfResidue) : typeOfName(std::move(typeOfResidue)) {}

bool ResidueCollector::isEmpty() const
{
    return model.residues.empty() && !model.hasProtein && !model.hasWater && !model.hasOther;
}

const ResidueType& ResidueCollector::typeOf(std::string_view residue)
{
    if (lastType && lastType->first == residue) // most often
        return lastType->second;
    auto known = types.find(residue);
    if (known == types.end()) {
        const std::string name(residue);
        known = types.emplace(name, typeOfName(name)).first;
    }
    lastType = &*known;
    return known->second;
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
    const std::optional<AtomName> name = keptName(row.atom);
    if (!name)
        return;
    residueOf(row, type).atoms.push_back(
        {*name, row.conformer, float(row.occupancy), {row.place.x, row.place.y, row.place.z}});
}

StructureModel ResidueCollector::take()
{
    ofPart.clear();
    parts = 0;
    return std::exchange(model, StructureModel());
}

} // namespace strandview
