// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_STRUCTURES_RESIDUECOLLECTOR_H
#define STRANDVIEW_FORMATS_STRUCTURES_RESIDUECOLLECTOR_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <algebra3d/Vector3.h>

#include <strandview/formatsExport.h>

namespace strandview {

/// What a residue is, as far as its name tells.
enum class ResidueKind { NUCLEOTIDE, AMINO_ACID, WATER, OTHER };

struct ResidueType
{
    ResidueKind kind = ResidueKind::OTHER;
    char letter = '\0';      ///< of the base that it is, or is made from: A, C, G, T or U, if known
    bool isModified = false; ///< into another base than that
};

/// An atom as a file has it; the texts are the file's.
struct AtomRow
{
    std::string_view chain;   ///< its name for people
    std::string_view part;    ///< of the file: residues of different ones are never neighbours
    std::string_view number;  ///< of the residue, with its insertion code: "7", "7A"
    std::string_view residue; ///< its name: "DA"
    std::string_view atom;    ///< its name: "C1'", or "C1*" in old files
    char conformer = '\0';    ///< the letter of one of several places, or none
    double occupancy = 1;
    algebra3d::Vector3<double> place;
};

/// Padded with NUL, at least one.
using AtomName = std::array<char, 4>;

/// As one number: names are alike where those are.
inline std::uint32_t numberOf(const AtomName& name)
{
    std::uint32_t number = 0;
    std::memcpy(&number, name.data(), sizeof number);
    return number;
}

/// The first four characters of a name.
STRANDVIEW_FORMATS_EXPORT AtomName nameOfAtom(std::string_view name);

/// The name that an atom has in files of today; nothing of one that no frame, backbone or bond is
/// made of.
STRANDVIEW_FORMATS_EXPORT std::optional<AtomName> keptName(std::string_view atom);

/// An atom of a residue: one that frames, backbones or bonds are made of.
struct ResidueAtom
{
    AtomName name;
    char conformer;
    float occupancy;
    double place[3];
};

struct Residue
{
    std::size_t part; ///< counted from 0
    std::string chain;
    std::string number;
    std::string name;
    ResidueType type;
    std::vector<ResidueAtom> atoms;
};

/// What may be DNA in a model of a structure, and what else there is.
struct StructureModel
{
    std::vector<Residue> residues; ///< those that are no protein and no water, in their order
    bool hasProtein = false;
    bool hasWater = false;
    bool hasOther = false; ///< residues of which the name is of none of these and no nucleotide's
};

/// Puts the atoms of a model together to residues. Atoms of proteins, water and hydrogens are not
/// kept. Residues come in the order of their first atoms; an atom belongs to the residue of its
/// part, number and name.
class STRANDVIEW_FORMATS_EXPORT ResidueCollector
{
public:
    using TypeOf = std::function<ResidueType(const std::string& residue)>;

    /// `typeOfResidue` is asked once for a name.
    explicit ResidueCollector(TypeOf typeOfResidue);

    /// What residues of a name are, as add() takes them.
    const ResidueType& typeOf(std::string_view residue);

    void add(const AtomRow& row);
    bool isEmpty() const;

    /// The model so far; the next atom begins another one.
    StructureModel take();

private:
    Residue& residueOf(const AtomRow& row, const ResidueType& type);

    TypeOf typeOfName;
    std::map<std::string, ResidueType, std::less<>> types;
    StructureModel model;
    const std::pair<const std::string, ResidueType>* lastType = nullptr; ///< that was asked for
    std::string part;
    std::size_t parts = 0;
    std::map<std::pair<std::string, std::string>, std::size_t> ofPart; ///< by number and name
};

} // namespace strandview

#endif
