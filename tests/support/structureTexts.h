// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_STRUCTURETEXTS_H
#define STRANDVIEW_TESTS_STRUCTURETEXTS_H

#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

#include <algebra3d/rotations.h>

#include <strandview/analysis/baseAtoms.h>

#include "support/idealNucleotides.h"

namespace strandview {

/// An atom as files of structures have it.
struct TestAtom
{
    std::string name;
    std::string residue;
    std::string chain;
    int number = 1; ///< of the residue
    algebra3d::Vector3<double> place;
    char conformer = ' ';
    double occupancy = 1;
    std::string record = "ATOM";
    int model = 1;
};

/// Atoms of an ideal duplex, in the order of its nucleotides: of the bases that the library draws,
/// with a phosphorus atom before each but a strand's first one, and an O3' before the next one.
/// Strand 1 is chain A with residues from 1 on, strand 2 chain B with those that follow.
inline std::vector<TestAtom> duplexAtoms(const std::string& letters)
{
    const std::vector<Nucleotide> nucleotides = idealDuplex(letters);
    const algebra3d::Vector3<double> phosphorus(-0.6, 8.9, -1.9), sugar(-2.5, 5.4, 0);
    const algebra3d::Vector3<double> bond(0, 0, -1.6);
    std::vector<TestAtom> atoms;
    for (std::size_t i = 0; i < nucleotides.size(); ++i) {
        const Nucleotide& one = nucleotides[i];
        const auto add = [&](const std::string& name, const BaseFrame& frame, auto place) {
            atoms.push_back({name, std::string("D") + one.base, one.strand == 0 ? "A" : "B",
                             int(i) + 1, frame.point + rotated(place, frame.rotation)});
        };
        if (one.previous != NO_NUCLEOTIDE)
            add("P", one.frame, phosphorus);
        add("C1'", one.frame, sugar);
        if (one.next != NO_NUCLEOTIDE)
            add("O3'", nucleotides[one.next].frame, phosphorus + bond);
        for (const BaseAtom& atom : drawnAtoms(one.base))
            add(std::string(atom.name), one.frame, atom.place);
    }
    return atoms;
}

/// Atoms that are those of no DNA.
inline TestAtom proteinAtom() { return {"CA", "ALA", "P", 1, {40, 0, 0}}; }
inline TestAtom waterAtom() { return {"O", "HOH", "W", 1, {40, 5, 0}, ' ', 1, "HETATM"}; }

inline std::string pdbLine(const TestAtom& atom, std::size_t serial)
{
    char line[128];
    std::snprintf(line, sizeof line,
                  "%-6s%5zu %-4s%c%3s %1s%4d    %8.3f%8.3f%8.3f%6.2f%6.2f          %2s\n",
                  atom.record.c_str(), serial % 100000,
                  (atom.name.size() < 4 ? " " + atom.name : atom.name).c_str(), atom.conformer,
                  atom.residue.c_str(), atom.chain.c_str(), atom.number, atom.place.x, atom.place.y,
                  atom.place.z, atom.occupancy, 20.0, atom.name.substr(0, 1).c_str());
    return line;
}

/// With TER behind each chain, and MODEL and ENDMDL around each of several models.
inline std::string pdbOf(const std::vector<TestAtom>& atoms)
{
    const bool hasModels = !atoms.empty() && atoms.front().model != atoms.back().model;
    std::string text = "HEADER    TEST\n";
    for (std::size_t i = 0; i < atoms.size(); ++i) {
        const bool isNew = i == 0 || atoms[i].model != atoms[i - 1].model;
        if (i > 0 && (isNew || atoms[i].chain != atoms[i - 1].chain))
            text += "TER\n";
        if (hasModels && isNew)
            text += (i > 0 ? "ENDMDL\nMODEL     " : "MODEL     ") +
                    std::to_string(1000 + atoms[i].model) + "\n";
        text += pdbLine(atoms[i], i + 1);
    }
    return text + (hasModels ? "ENDMDL\n" : "") + "END\n";
}

inline std::string cifOf(const std::vector<TestAtom>& atoms)
{
    std::string text = "data_TEST\n#\n_entry.id TEST\nloop_\n";
    for (const char* tag : {"group_PDB", "id", "label_atom_id", "label_alt_id", "label_comp_id",
                            "label_asym_id", "label_seq_id", "Cartn_x", "Cartn_y", "Cartn_z",
                            "occupancy", "auth_seq_id", "auth_asym_id", "pdbx_PDB_model_num"})
        text += std::string("_atom_site.") + tag + "\n";
    for (std::size_t i = 0; i < atoms.size(); ++i) {
        const TestAtom& atom = atoms[i];
        char line[256];
        std::snprintf(line, sizeof line, "%s %zu \"%s\" %c %s %s . %.3f %.3f %.3f %.2f %d %s %d\n",
                      atom.record.c_str(), i + 1, atom.name.c_str(),
                      atom.conformer == ' ' ? '.' : atom.conformer, atom.residue.c_str(),
                      atom.chain.c_str(), atom.place.x, atom.place.y, atom.place.z, atom.occupancy,
                      atom.number, atom.chain.c_str(), atom.model);
        text += line;
    }
    return text + "#\n";
}

} // namespace strandview

#endif
