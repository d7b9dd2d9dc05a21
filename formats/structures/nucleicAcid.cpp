// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/structures/nucleicAcid.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <map>
#include <utility>
#include <vector>

#include <strandview/analysis/baseAtoms.h>
#include <strandview/analysis/basePairs.h>
#include <strandview/analysis/doubleStrands.h>
#include <strandview/analysis/fitFrame.h>
#include <strandview/analysis/keptPairs.h>
#include <strandview/formats/Collector.h>
#include <strandview/formats/text/wording.h>

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;
using Residues = std::vector<Residue>;

constexpr std::size_t FEWEST_RING_ATOMS = 4;
/// In ångström, of the atoms of a ring: of bases in crystals it is 0.01 to 0.05, of a ring that is
/// saturated 0.2, and of rings that simulations bend hardly more.
constexpr double LARGEST_RMS = 0.5;
/// The bond is 1.61 Å long; what is not bonded is 3 Å apart.
constexpr double LONGEST_BOND = 2.5;

/// The atom of a name in the place that is drawn: of the wanted conformer, or of no one's, before
/// others, and of those the one with the highest occupancy.
const ResidueAtom* findAtom(const Residue& residue, std::string_view name, char conformer)
{
    const auto rankOf = [conformer](const ResidueAtom& atom) {
        const bool isWanted = atom.conformer == conformer || atom.conformer == '\0';
        return std::pair(isWanted, atom.occupancy);
    };
    const ResidueAtom* best = nullptr;
    const std::uint32_t wanted = numberOf(nameOfAtom(name));
    for (const ResidueAtom& atom : residue.atoms)
        if (numberOf(atom.name) == wanted && (!best || rankOf(atom) > rankOf(*best)))
            best = &atom;
    return best;
}

/// The highest occupancy of the atoms, and which conformer has it first.
std::pair<float, char> mostOccupied(const Residue& residue)
{
    std::pair<float, char> best(-1, '\0');
    for (const ResidueAtom& atom : residue.atoms)
        if (atom.conformer != '\0' && atom.occupancy > best.first)
            best = {atom.occupancy, atom.conformer};
    return best;
}

/// A residue with one place for each atom, the first conformer's that is occupied most.
class Atoms
{
public:
    explicit Atoms(const Residue& ofResidue)
        : residue(ofResidue), conformer(mostOccupied(ofResidue).second)
    {}

    std::optional<Vector> place(std::string_view name) const
    {
        const ResidueAtom* atom = findAtom(residue, name, conformer);
        return atom ? std::optional(Vector(atom->place)) : std::nullopt;
    }
    bool has(std::string_view name) const { return place(name).has_value(); }
    bool isInSeveralPlaces() const { return conformer != '\0'; }

private:
    const Residue& residue;
    char conformer;
};

std::size_t countOf(const std::vector<BaseAtom>& wanted, const Atoms& atoms)
{
    return std::size_t(std::count_if(wanted.begin(), wanted.end(),
                                     [&](const BaseAtom& atom) { return atoms.has(atom.name); }));
}

/// What a base is, or was made from, by the atoms that it has.
char letterByAtoms(const Atoms& atoms)
{
    if (atoms.has("N9"))
        return atoms.has("O6") ? 'G' : 'A';
    return atoms.has("O4") || atoms.has("C7") ? 'T' : 'C';
}

/// Of one of several residues in one place of a strand, alike in number and different in name, the
/// others go.
void keepMostOccupied(Residues& residues)
{
    std::map<std::pair<std::size_t, std::string>, std::size_t> kept;
    std::vector<bool> isKept(residues.size(), true);
    for (std::size_t i = 0; i < residues.size(); ++i) {
        const auto [other, isFirst] =
            kept.emplace(std::pair(residues[i].part, residues[i].number), i);
        if (isFirst)
            continue;
        const auto here = mostOccupied(residues[i]), there = mostOccupied(residues[other->second]);
        if (here.second == '\0' || there.second == '\0') // two residues, numbered alike
            continue;
        isKept[here.first > there.first ? other->second : i] = false;
        if (here.first > there.first)
            other->second = i;
    }
    std::size_t count = 0;
    for (std::size_t i = 0; i < residues.size(); ++i)
        if (isKept[i] && count++ != i)
            residues[count - 1] = std::move(residues[i]);
    residues.resize(count);
}

bool areNumberedInTurn(const Residue& a, const Residue& b)
{
    const long from = std::strtol(a.number.c_str(), nullptr, 10);
    const long to = std::strtol(b.number.c_str(), nullptr, 10);
    const bool isNext = from != std::numeric_limits<long>::max() && to == from + 1;
    return isNext || (to == from && a.number != b.number); // 7 and 7A
}

/// Whether b follows a on its strand, towards the 3' end.
bool areBonded(const Residue& a, const Residue& b)
{
    const auto from = Atoms(a).place("O3'"), to = Atoms(b).place("P");
    if (from && to)
        return (*to - *from).getNorm() <= LONGEST_BOND;
    return areNumberedInTurn(a, b);
}

/// What is built from a model's residues, one step after the other.
class Builder
{
public:
    Builder(StructureModel structure, const std::string& name, ReadReport& readReport,
            KeptPairs& pairsOfSeries)
        : model(std::move(structure)), fileName(name), report(readReport), pairs(pairsOfSeries)
    {}

    std::optional<Configuration> build()
    {
        keepMostOccupied(model.residues);
        keepNucleotides();
        if (model.residues.empty()) {
            report.error = fileName + ": found " + whatElse() + ", expected DNA";
            return {};
        }
        findStrands();
        for (std::size_t i = 0; i < model.residues.size(); ++i)
            addBase(i);
        pairs.pair(nucleotides, [this] { pairBases(nucleotides); });
        tellWhatWasDone();
        return collect();
    }

private:
    // Residues

    bool isBondedToNext(std::size_t i) const
    {
        const Residues& all = model.residues;
        return i + 1 < all.size() && all[i].part == all[i + 1].part &&
               areBonded(all[i], all[i + 1]);
    }

    /// Whether it has atoms of a base: by a sugar, too, if it may be some ligand.
    static bool looksLikeNucleotide(const Residue& residue)
    {
        const Atoms atoms(residue);
        const bool hasRing =
            countOf(standardRingAtoms(letterByAtoms(atoms)), atoms) >= FEWEST_RING_ATOMS;
        const bool isNamed = residue.type.kind == ResidueKind::NUCLEOTIDE;
        return isNamed ? hasRing || atoms.has("P") || atoms.has("C1'")
                       : hasRing && atoms.has("C1'");
    }

    /// Leaves those that are named as nucleotides, and others that are bonded to one that looks
    /// like it: bases and nucleotides alone are ligands.
    void keepNucleotides()
    {
        Residues& all = model.residues;
        const auto isOther = [](const Residue& residue) { return !looksLikeNucleotide(residue); };
        const std::size_t before = all.size();
        all.erase(std::remove_if(all.begin(), all.end(), isOther), all.end());
        std::vector<bool> isBonded(all.size());
        for (std::size_t i = 0; i < all.size(); ++i)
            if (isBondedToNext(i))
                isBonded[i] = isBonded[i + 1] = true;
        std::size_t count = 0;
        for (std::size_t i = 0; i < all.size(); ++i) {
            const bool isNamed = all[i].type.kind == ResidueKind::NUCLEOTIDE;
            if ((isBonded[i] || (isNamed && Atoms(all[i]).has("C1'"))) && count++ != i)
                all[count - 1] = std::move(all[i]);
        }
        all.resize(count);
        model.hasOther = model.hasOther || count < before;
    }

    /// "protein alone", "protein and water".
    std::string whatElse() const
    {
        std::vector<std::string> found;
        if (model.hasProtein)
            found.emplace_back("protein");
        if (model.hasWater)
            found.emplace_back("water");
        if (model.hasOther)
            found.emplace_back("other molecules");
        if (found.empty())
            return "no atoms";
        if (found.size() == 1)
            return found[0] + " alone";
        return found.size() == 2 ? found[0] + " and " + found[1]
                                 : found[0] + ", " + found[1] + " and " + found[2];
    }

    // Strands

    struct Strand
    {
        std::size_t first; ///< residue
        std::size_t last;
        bool isClosed;
    };

    void findStrands()
    {
        const Residues& all = model.residues;
        for (std::size_t i = 0; i < all.size(); ++i) {
            if (i == 0 || !isBondedToNext(i - 1))
                strands.push_back({i, i, false});
            strands.back().last = i;
            strandOf.push_back(strands.size() - 1);
        }
        for (Strand& strand : strands) {
            const Residue &first = all[strand.first], &last = all[strand.last];
            const bool hasBond = Atoms(last).has("O3'") && Atoms(first).has("P");
            strand.isClosed = strand.last > strand.first + 1 && hasBond && areBonded(last, first);
        }
    }

    // Bases

    char letterOf(const Residue& residue, const Atoms& atoms)
    {
        const char letter = residue.type.letter ? residue.type.letter : letterByAtoms(atoms);
        countOfUracils += letter == 'U';
        return letter == 'U' ? 'T' : letter;
    }

    std::string placeOf(std::size_t residue) const
    {
        const Residue& one = model.residues[residue];
        return "chain " + one.chain + ", residue " + one.number;
    }

    static FittedFrame fitTo(const std::vector<BaseAtom>& wanted, const Atoms& atoms)
    {
        std::vector<Vector> places, measured;
        places.reserve(wanted.size());
        measured.reserve(wanted.size());
        for (const BaseAtom& atom : wanted) {
            if (const auto place = atoms.place(atom.name)) {
                places.push_back(atom.place);
                measured.push_back(*place);
            }
        }
        return fitFrame(places, measured);
    }

    void addBase(std::size_t i)
    {
        const Residue& residue = model.residues[i];
        const Atoms atoms(residue);
        severalPlaces += atoms.isInSeveralPlaces();
        const char letter = letterOf(residue, atoms);
        const bool isModified =
            residue.type.isModified || residue.type.kind != ResidueKind::NUCLEOTIDE;
        if (countOf(standardRingAtoms(letter), atoms) < FEWEST_RING_ATOMS) {
            leftOut.push_back(i);
            return;
        }
        const FittedFrame standard = fitTo(standardRingAtoms(letter), atoms);
        const FittedFrame drawn = fitTo(drawnAtoms(letter), atoms);
        if (standard.rms > LARGEST_RMS || drawn.rms > LARGEST_RMS) {
            misshapen.push_back(i);
            return;
        }
        if (isModified)
            ++modified[residue.name + " as " + letter];
        Nucleotide one;
        one.base = letter;
        one.strand = std::uint32_t(strandOf[i]);
        one.frame = {drawn.point, drawn.rotation};
        link(one, i);
        residueOf.push_back(i);
        nucleotides.push_back(one);
        standardBases.push_back({{standard.point, standard.rotation}, standard.rms});
    }

    /// To the base before it, and, at the end of a circle, to the first one.
    void link(Nucleotide& one, std::size_t residue)
    {
        const std::size_t index = nucleotides.size();
        const Strand& strand = strands[one.strand];
        const auto linkFrom = [&](std::size_t previous, Nucleotide& to, std::size_t toIndex) {
            to.previous = previous;
            (previous == index ? one : nucleotides[previous]).next = toIndex;
        };
        if (residue > strand.first && !residueOf.empty() && residueOf.back() + 1 == residue)
            linkFrom(index - 1, one, index);
        if (strand.isClosed && residue == strand.last) {
            const auto first = std::lower_bound(residueOf.begin(), residueOf.end(), strand.first);
            if (first != residueOf.end() && *first == strand.first) {
                const std::size_t at = std::size_t(first - residueOf.begin());
                linkFrom(index, nucleotides[at], at);
            }
        }
    }

    // What is shown

    std::string nameOf(std::size_t strand) const
    {
        const std::string& chain = model.residues[strands[strand].first].chain;
        return chain.empty() ? std::to_string(strand + 1) : chain;
    }

    void addBackbone(std::size_t strand, std::size_t molecule, Collector& collector)
    {
        const Strand& of = strands[strand];
        Rod rod;
        rod.name = nameOf(strand);
        rod.origin = fileName + ": backbone of chain " + rod.name;
        rod.isBackbone = true;
        rod.molecule = molecule;
        for (std::size_t i = of.first; i <= of.last; ++i)
            if (const auto place = Atoms(model.residues[i]).place("P"))
                rod.points.push_back(*place);
        rod.isClosed = of.isClosed && rod.points.size() > 2;
        if (rod.isClosed)
            rod.points.push_back(Vector(rod.points.front()));
        if (rod.points.size() < 2)
            withoutPhosphorus.push_back(strand);
        else if (!collector.add(std::move(rod)).empty())
            inOnePlace.push_back(strand);
    }

    std::optional<Configuration> collect()
    {
        const NucleotideNames names{fileName, strands.size(),
                                    [this](std::size_t strand) { return nameOf(strand); },
                                    [this](std::size_t i) { return placeOf(residueOf[i]); }};
        DoubleStrands found =
            makeDoubleStrands(nucleotides, names, standardBases, pairs.findHelices(nucleotides));
        Collector collector;
        for (std::size_t strand = 0; strand < strands.size(); ++strand)
            addBackbone(strand, found.molecules[strand], collector);
        tellWithoutBackbone(withoutPhosphorus, "of fewer than 2 phosphorus atoms");
        tellWithoutBackbone(inOnePlace, "whose phosphorus atoms are in one place");
        collector.add(std::move(found.dnas));
        collector.add(std::move(found.loneBases));
        return collector.finish(fileName, "base or backbone", report);
    }

    void notice(const std::string& text) { report.notices.push_back(fileName + ": " + text); }

    void tellLeftOut(const std::vector<std::size_t>& residues, const std::string& why)
    {
        if (residues.empty())
            return;
        notice(counted(residues.size(), "base") + " left out, " + why + ": " +
               andMore(placeOf(residues[0]), residues.size()));
    }

    void tellWithoutBackbone(const std::vector<std::size_t>& some, const std::string& why)
    {
        if (!some.empty())
            notice(counted(some.size(), "strand") + " without a backbone, " + why + ": " +
                   andMore("chain " + nameOf(some[0]) + " from residue " +
                               model.residues[strands[some[0]].first].number + " on",
                           some.size()));
    }

    void tellWhatWasDone()
    {
        std::string names;
        for (const auto& [name, count] : modified)
            names += (names.empty() ? "" : ", ") + name +
                     (count > 1 ? " (" + std::to_string(count) + ")" : "");
        if (!names.empty())
            notice("modified bases shown as those that they are made from: " + names);
        if (countOfUracils > 0)
            notice(std::to_string(countOfUracils) + " U shown as T");
        if (severalPlaces > 0)
            notice(counted(severalPlaces, "residue") +
                   " in more than one place, shown where the occupancy is highest");
        tellLeftOut(leftOut,
                    "with fewer than " + std::to_string(FEWEST_RING_ATOMS) + " atoms of the ring");
        tellLeftOut(misshapen, "whose atoms do not have the shape of a base");
    }

    StructureModel model;
    const std::string& fileName;
    ReadReport& report;
    KeptPairs& pairs;
    std::vector<Strand> strands;
    std::vector<std::size_t> strandOf; ///< of every residue
    std::vector<Nucleotide> nucleotides;
    std::vector<StandardBase> standardBases; ///< of each of those
    std::vector<std::size_t> residueOf;      ///< of every nucleotide
    std::map<std::string, std::size_t> modified;
    std::size_t countOfUracils = 0;
    std::size_t severalPlaces = 0;
    std::vector<std::size_t> leftOut;
    std::vector<std::size_t> misshapen;
    std::vector<std::size_t> withoutPhosphorus, inOnePlace; ///< strands
};

} // namespace

std::optional<Configuration> makeNucleicAcid(StructureModel model, const std::string& fileName,
                                             ReadReport& report, KeptPairs* pairs)
{
    KeptPairs own; // of no series
    return Builder(std::move(model), fileName, report, pairs ? *pairs : own).build();
}

FrameRead makeFrame(StructureModel model, const std::string& fileName, std::size_t number,
                    const ReadOptions& options, ReadReport& report)
{
    KeptPairs* const pairs = options.pairs.get();
    auto made = makeNucleicAcid(std::move(model), fileName, report, pairs);
    if (made && pairs && pairs->areOthers())
        report.notices.push_back(toldPairedAlone(fileName, number));
    const bool isEmpty = !made;
    return {std::move(made), false, isEmpty};
}

} // namespace strandview
