// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/largeFiles.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string_view>

#include <zip.h>

namespace {

constexpr double TURN = M_PI / 5; // of one base pair
using Numbers = std::array<double, 3>;

std::string pathIn(const std::string& folder, const char* name) { return folder + "/" + name; }

/// Text that is written piece by piece.
class Text
{
public:
    explicit Text(const std::string& path) : file(path, std::ios::binary) {}
    ~Text() { file << piece; }
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;

    Text& operator<<(std::string_view text)
    {
        piece += text;
        if (piece.size() > 1 << 20) {
            written += piece.size();
            file << piece;
            piece.clear();
        }
        return *this;
    }
    Text& operator<<(std::size_t number) { return *this << std::to_string(number); }

    Text& number(double number, int digits, std::size_t width = 0)
    {
        std::array<char, 64> text;
        const auto end =
            std::to_chars(text.begin(), text.end(), number, std::chars_format::fixed, digits).ptr;
        const std::size_t size = std::size_t(end - text.begin());
        return *this << std::string(width - std::min(width, size), ' ')
                     << std::string_view(text.data(), size);
    }
    template <typename List>
    Text& numbers(const List& list, int digits, std::string_view between)
    {
        for (std::size_t i = 0; i < list.size(); ++i)
            (*this << (i == 0 ? "" : between)).number(list[i], digits);
        return *this;
    }

    std::size_t size() const { return written + piece.size(); }

private:
    std::ofstream file;
    std::string piece;
    std::size_t written = 0;
};

/// A coil, with its Frenet frame: what the i-th point has.
struct Coil
{
    explicit Coil(std::size_t i) : t(0.1 * double(i)) {}

    Numbers point() const { return {12 * std::cos(t), 12 * std::sin(t), 0.6 * t}; }
    std::array<double, 4> quaternion() const
    {
        const double lay = -std::atan2(1, 0.05) / 2, c = std::cos(t / 2), s = std::sin(t / 2);
        return {std::sin(lay) * c, std::sin(lay) * s, std::cos(lay) * s, std::cos(lay) * c};
    }

    double t;
};

/// A straight double strand along z: the axes of its k-th pair.
std::array<Numbers, 3> axesOfPair(std::size_t k)
{
    const double c = std::cos(TURN * double(k)), s = std::sin(TURN * double(k));
    return {Numbers{c, s, 0}, Numbers{-s, c, 0}, Numbers{0, 0, 1}};
}

void writePlainTable(const std::string& folder, std::size_t bytes)
{
    Text text(pathIn(folder, "plain.raw"));
    for (std::size_t i = 0; text.size() < bytes; ++i)
        text.numbers(Coil(i).point(), 8, " ") << "\n";
}

void writeTable(const std::string& folder, std::size_t bytes)
{
    Text text(pathIn(folder, "frames.txt"));
    for (std::size_t i = 0; text.size() < bytes; ++i)
        (text.numbers(Coil(i).point(), 8, " ") << " ").numbers(Coil(i).quaternion(), 12, " ")
            << "\n";
}

void writeJson(const std::string& folder, std::size_t bytes)
{
    Text text(pathIn(folder, "rod.json"));
    text << R"({"strandview": 1, "rods": [{"points": [[0, 0, 0])";
    std::size_t points = 1;
    for (; text.size() < bytes * 2 / 5; ++points)
        (text << ",\n[").numbers(Coil(points).point(), 8, ", ") << "]";
    text << R"(], "quaternions": [[0, 0, 0, 1])";
    for (std::size_t i = 1; i < points; ++i)
        (text << ",\n[").numbers(Coil(i).quaternion(), 12, ", ") << "]";
    text << "]}]}\n";
}

struct Atom
{
    std::string_view name;
    Numbers place; ///< in the frame of its base
};

/// A deoxyadenosine and a thymidine phosphate, by the ideal bases of the standard reference frame
/// (Olson et al., J. Mol. Biol. 313, 2001, 229); the sugar is about where it belongs.
const std::vector<Atom> SUGAR = {
    {"P", {-0.6, 8.9, -1.9}},   {"OP1", {-1.1, 10.3, -1.9}}, {"OP2", {0.9, 8.8, -2.1}},
    {"O5'", {-1.3, 8.1, -0.7}}, {"C5'", {-2.7, 8.2, -0.5}},  {"C4'", {-3.2, 7.1, 0.4}},
    {"O4'", {-2.9, 5.8, -0.1}}, {"C3'", {-2.5, 7.0, 1.8}},   {"O3'", {-1.3, 9.0, 1.5}},
    {"C2'", {-2.4, 5.5, 2.1}},  {"C1'", {-2.479, 5.346, 0}}};
const std::vector<Atom> ADENINE = {{"N9", {-1.291, 4.498, 0}}, {"C8", {0.024, 4.897, 0}},
                                   {"N7", {0.877, 3.902, 0}},  {"C5", {0.071, 2.771, 0}},
                                   {"C6", {0.369, 1.398, 0}},  {"N6", {1.611, 0.909, 0}},
                                   {"N1", {-0.668, 0.532, 0}}, {"C2", {-1.912, 1.023, 0}},
                                   {"N3", {-2.320, 2.290, 0}}, {"C4", {-1.267, 3.124, 0}}};
const std::vector<Atom> THYMINE = {
    {"N1", {-1.284, 4.500, 0}}, {"C2", {-1.462, 3.135, 0}}, {"O2", {-2.562, 2.608, 0}},
    {"N3", {-0.298, 2.407, 0}}, {"C4", {0.994, 2.897, 0}},  {"O4", {1.944, 2.119, 0}},
    {"C5", {1.106, 4.338, 0}},  {"C7", {2.466, 4.961, 0}},  {"C6", {-0.024, 5.057, 0}}};

/// Double strands side by side, short enough for the numbers of residues: calls
/// add(atom, base, chain, residue, place) until it is false.
template <typename Add>
void addAtoms(const Add& add)
{
    constexpr std::size_t pairs = 1000;
    constexpr std::string_view chains =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
    for (std::size_t strand = 0;; ++strand)
        for (std::size_t i = 0; i < pairs; ++i) {
            const bool isSecond = strand % 2 == 1;
            const std::size_t k = isSecond ? pairs - 1 - i : i;
            const double turn = isSecond ? -1 : 1;
            const bool isAdenine = (k % 3 == 0) != isSecond;
            const std::array<Numbers, 3> axes = axesOfPair(k);
            const double across = 30 * double(strand / 2);
            for (const auto* atoms : {&SUGAR, isAdenine ? &ADENINE : &THYMINE})
                for (const Atom& atom : *atoms) {
                    Numbers place = {std::fmod(across, 900), 30 * std::floor(across / 900),
                                     3.4 * double(k)};
                    for (std::size_t axis = 0; axis < 3; ++axis)
                        place[axis] +=
                            atom.place[0] * axes[0][axis] +
                            turn * (atom.place[1] * axes[1][axis] + atom.place[2] * axes[2][axis]);
                    if (!add(atom.name, isAdenine ? "DA" : "DT", chains[strand % chains.size()],
                             i + 1, place))
                        return;
                }
        }
}

/// Two chains of 1000 nucleotides, as often as it is asked for: add(model, ...) with the same as of
/// addAtoms(), until it is false behind a model.
template <typename Add, typename IsEnough>
void addModels(const Add& add, const IsEnough& isEnough)
{
    for (std::size_t model = 1; model == 1 || !isEnough(); ++model)
        addAtoms([&](std::string_view atom, std::string_view base, char chain, std::size_t residue,
                     const Numbers& place) {
            if (chain == 'C')
                return false;
            add(model, atom, base, chain, residue, place);
            return true;
        });
}

void writePdbAtom(Text& text, std::size_t serial, std::string_view atom, std::string_view base,
                  char chain, std::size_t residue, const Numbers& place)
{
    text << "ATOM  ";
    text.number(double(serial % 100000), 0, 5) << "  " << atom << std::string(4 - atom.size(), ' ')
                                               << " " << base << " " << std::string_view(&chain, 1);
    text.number(double(residue), 0, 4) << "    ";
    for (const double number : place)
        text.number(number, 3, 8);
    text << "  1.00 20.00           " << atom.substr(0, 1) << "  \n";
}

void writePdb(const std::string& folder, std::size_t bytes)
{
    Text text(pathIn(folder, "duplexes.pdb"));
    text << "HEADER    DNA\n";
    std::size_t serial = 0;
    addAtoms([&](std::string_view atom, std::string_view base, char chain, std::size_t residue,
                 const Numbers& place) {
        writePdbAtom(text, ++serial, atom, base, chain, residue, place);
        return text.size() < bytes;
    });
    text << "END\n";
}

void writePdbModels(const std::string& folder, std::size_t bytes)
{
    Text text(pathIn(folder, "models.pdb"));
    std::size_t serial = 0, last = 0;
    addModels(
        [&](std::size_t model, std::string_view atom, std::string_view base, char chain,
            std::size_t residue, const Numbers& place) {
            if (model != last)
                (text << (last > 0 ? "ENDMDL\nMODEL " : "MODEL ")).number(double(model), 0, 8)
                    << "\n";
            serial = model == last ? serial + 1 : 1;
            last = model;
            writePdbAtom(text, serial, atom, base, chain, residue, place);
        },
        [&] { return text.size() >= bytes; });
    text << "ENDMDL\nEND\n";
}

void writeMmcifTags(Text& text)
{
    text << "data_DNA\nloop_\n";
    for (const char* tag : {"group_PDB",         "id",
                            "type_symbol",       "label_atom_id",
                            "label_alt_id",      "label_comp_id",
                            "label_asym_id",     "label_entity_id",
                            "label_seq_id",      "pdbx_PDB_ins_code",
                            "Cartn_x",           "Cartn_y",
                            "Cartn_z",           "occupancy",
                            "B_iso_or_equiv",    "pdbx_formal_charge",
                            "auth_seq_id",       "auth_comp_id",
                            "auth_asym_id",      "auth_atom_id",
                            "pdbx_PDB_model_num"})
        text << "_atom_site." << tag << " \n";
}

void writeMmcifAtom(Text& text, std::size_t model, std::size_t serial, std::string_view atom,
                    std::string_view base, char chain, std::size_t residue, const Numbers& place)
{
    const std::string name =
        atom.back() == '\'' ? "\"" + std::string(atom) + "\"" : std::string(atom);
    const std::string_view strand(&chain, 1);
    text << "ATOM " << serial << " " << atom.substr(0, 1) << " " << name << " . " << base << " "
         << strand << " 1 " << residue << " ? ";
    text.numbers(place, 3, " ") << " 1.00 20.00 ? " << residue << " " << base << " " << strand
                                << " " << name << " " << model << " \n";
}

void writeMmcif(const std::string& folder, std::size_t bytes)
{
    Text text(pathIn(folder, "duplexes.cif"));
    writeMmcifTags(text);
    std::size_t serial = 0;
    addAtoms([&](std::string_view atom, std::string_view base, char chain, std::size_t residue,
                 const Numbers& place) {
        writeMmcifAtom(text, 1, ++serial, atom, base, chain, residue, place);
        return text.size() < bytes;
    });
    text << "# \n";
}

void writeMmcifModels(const std::string& folder, std::size_t bytes)
{
    Text text(pathIn(folder, "models.cif"));
    writeMmcifTags(text);
    std::size_t serial = 0;
    addModels(
        [&](std::size_t model, std::string_view atom, std::string_view base, char chain,
            std::size_t residue, const Numbers& place) {
            writeMmcifAtom(text, model, ++serial, atom, base, chain, residue, place);
        },
        [&] { return text.size() >= bytes; });
    text << "# \n";
}

void writeSteps(const std::string& folder, std::size_t bytes)
{
    Text text(pathIn(folder, "steps.par"));
    const std::size_t pairs = bytes / 136;
    text << pairs << " # base-pairs\n0 # ***local base-pair & step parameters***\n"
         << "#        Shear    Stretch   Stagger   Buckle   Prop-Tw   Opening     Shift     Slide"
            "     Rise      Tilt      Roll      Twist\n";
    for (std::size_t k = 0; k < pairs; ++k) {
        text << (k % 3 == 0 ? "A-T" : "C-G");
        for (const double number : {0.1, -0.1, 0.05, 1.2, -8.0, 0.5})
            text.number(number * std::cos(double(k)), 5, 11);
        for (const double number : {0.02, -0.1, 3.4, 0.1, 0.6, 35.9})
            text.number(k == 0 ? 0 : number, 5, 11);
        text << "\n";
    }
}

void writeNamedPairs(const std::string& folder, std::size_t bytes)
{
    Text text(pathIn(folder, "pairs.dat"));
    const std::size_t pairs = bytes / 210;
    text << pairs << " base-pairs\n";
    for (std::size_t k = 0; k < pairs; ++k) {
        text << "... " << k + 1 << " A-T   # A:" << k + 1 << "_:[.DA]A - B:" << k + 1
             << "_:[.DT]T\n";
        const std::array<Numbers, 3> axes = axesOfPair(k);
        for (const double number : {0.0, 0.0, std::fmod(3.4 * double(k), 1e4)})
            text.number(number, 4, 11);
        text << "  # origin\n";
        for (std::size_t axis = 0; axis < 3; ++axis) {
            for (const double number : axes[axis])
                text.number(number, 4, 11);
            text << "  # " << std::string_view("xyz").substr(axis, 1) << "-axis\n";
        }
    }
}

void writeBracketPairs(const std::string& folder, std::size_t bytes)
{
    Text text(pathIn(folder, "pairs.bplist"));
    for (std::size_t k = 0; text.size() < bytes; ++k) {
        const std::array<Numbers, 3> axes = axesOfPair(k);
        (text << "{{").numbers(Numbers{0, 0, 3.4 * double(k)}, 10, ", ") << "},";
        for (std::size_t axis = 0; axis < 3; ++axis)
            (text << (axis == 0 ? "{{" : ",{")).numbers(axes[axis], 10, ", ") << "}";
        text << "}}\n";
    }
}

void writeOxdnaTopology(const std::string& path, std::size_t pairs)
{
    Text text(path);
    text << 2 * pairs << " 2\n";
    for (std::size_t i = 0; i < 2 * pairs; ++i) {
        const std::size_t strand = i / pairs, k = i % pairs;
        const bool isThird = (strand == 0 ? k : pairs - 1 - k) % 3 == 0;
        text << strand + 1 << (isThird == (strand == 0) ? " A " : " T ")
             << (k == 0 ? "-1" : std::to_string(i - 1)) << " "
             << (k + 1 == pairs ? "-1" : std::to_string(i + 1)) << "\n";
    }
}

/// From 3' to 5', a strand after the other one.
void writeOxdnaFrame(Text& text, std::size_t pairs, std::size_t frame)
{
    text << "t = " << frame << "\nb = 1000 1000 1000\nE = -1.4 -1.7 0.3\n";
    for (std::size_t i = 0; i < 2 * pairs; ++i) {
        const double turn = i < pairs ? 1 : -1;
        const std::size_t k = i < pairs ? i : 2 * pairs - 1 - i;
        const Numbers out = axesOfPair(k)[0];
        const Numbers place = {0.6 * turn * out[0], 0.6 * turn * out[1], 0.39 * double(k)};
        (text.numbers(place, 10, " ") << " ")
                .numbers(Numbers{-turn * out[0], -turn * out[1], 0}, 12, " ")
            << (turn > 0 ? " 0 0 1" : " 0 0 -1") << " 0.0312 -0.0127 0.0081 0.112 -0.034 0.0214\n";
    }
}

constexpr std::size_t BYTES_OF_NUCLEOTIDE = 145; // topology and configuration

void writeOxdna(const std::string& folder, std::size_t bytes)
{
    const std::size_t pairs = bytes / (2 * BYTES_OF_NUCLEOTIDE);
    writeOxdnaTopology(pathIn(folder, "duplex.top"), pairs);
    Text text(pathIn(folder, "duplex.oxdna"));
    writeOxdnaFrame(text, pairs, 0);
}

void writeOxdnaSeries(const std::string& folder, std::size_t bytes)
{
    const std::size_t frames = 50, pairs = bytes / (2 * BYTES_OF_NUCLEOTIDE * frames);
    writeOxdnaTopology(pathIn(folder, "moving.top"), pairs);
    Text text(pathIn(folder, "moving.oxdna"));
    for (std::size_t frame = 0; frame < frames; ++frame)
        writeOxdnaFrame(text, pairs, frame);
}

using Row = std::function<void(std::size_t i, double* numbers)>;

/// An array of `rows` rows of numbers, in C order.
template <typename Float>
void writeNpy(const std::string& path, std::size_t rows, const std::string& shapeOfRow,
              std::size_t width, const Row& fill)
{
    std::string header = "{'descr': '<f" + std::to_string(sizeof(Float)) +
                         "', 'fortran_order': False, 'shape': (" + std::to_string(rows) + ", " +
                         shapeOfRow + "), }";
    constexpr std::size_t size = 118; // with what stands before it 128
    header.resize(size - 1, ' ');
    Text text(path);
    text << std::string_view("\x93NUMPY\x01\x00", 8) << std::string_view("\x76\x00", 2) << header
         << "\n";
    std::vector<double> numbers(width);
    for (std::size_t i = 0; i < rows; ++i) {
        fill(i, numbers.data());
        for (const double number : numbers) {
            const Float value = Float(number);
            text << std::string_view(reinterpret_cast<const char*>(&value), sizeof value);
        }
    }
}

void fillPoint(std::size_t i, double* numbers)
{
    const Numbers point = Coil(i).point();
    std::copy(point.begin(), point.end(), numbers);
}

void fillQuaternion(std::size_t i, double* numbers)
{
    const auto quaternion = Coil(i).quaternion();
    std::copy(quaternion.begin(), quaternion.end(), numbers);
}

void fillDirectors(std::size_t i, double* numbers)
{
    for (const Numbers& axis : axesOfPair(i))
        numbers = std::copy(axis.begin(), axis.end(), numbers);
}

template <typename Float>
void writePoints(const std::string& path, std::size_t bytes)
{
    writeNpy<Float>(path, bytes / (3 * sizeof(Float)), "3", 3, fillPoint);
}

void writeDoubles(const std::string& folder, std::size_t bytes)
{
    writePoints<double>(pathIn(folder, "doubles.npy"), bytes);
}

void writeFloats(const std::string& folder, std::size_t bytes)
{
    writePoints<float>(pathIn(folder, "floats.npy"), bytes);
}

/// Of arrays that stand beside it, which go.
void pack(const std::string& folder, const char* name, const std::vector<std::string>& arrays,
          zip_int32_t method)
{
    int error = 0;
    zip_t* const archive =
        zip_open(pathIn(folder, name).c_str(), ZIP_CREATE | ZIP_TRUNCATE, &error);
    bool isDone = archive;
    for (const std::string& array : arrays) {
        const std::string path = folder + "/" + array;
        zip_source_t* const source =
            isDone ? zip_source_file(archive, path.c_str(), 0, 0) : nullptr;
        const zip_int64_t entry = source ? zip_file_add(archive, array.c_str(), source, 0) : -1;
        isDone =
            entry >= 0 && zip_set_file_compression(archive, zip_uint64_t(entry), method, 1) == 0;
    }
    if (!isDone || zip_close(archive) != 0)
        std::abort();
    for (const std::string& array : arrays)
        std::remove((folder + "/" + array).c_str());
}

void writeStored(const std::string& folder, std::size_t bytes)
{
    writePoints<double>(folder + "/points.npy", bytes);
    pack(folder, "stored.npz", {"points.npy"}, ZIP_CM_STORE);
}

void writeDeflated(const std::string& folder, std::size_t bytes)
{
    writePoints<double>(folder + "/points.npy", bytes);
    pack(folder, "deflated.npz", {"points.npy"}, ZIP_CM_DEFLATE);
}

void writeFramed(const std::string& folder, std::size_t bytes)
{
    const std::size_t rows = bytes / (7 * sizeof(double));
    writeNpy<double>(folder + "/points.npy", rows, "3", 3, fillPoint);
    writeNpy<double>(folder + "/quaternions.npy", rows, "4", 4, fillQuaternion);
    pack(folder, "framed.npz", {"points.npy", "quaternions.npy"}, ZIP_CM_STORE);
}

void writeDirectors(const std::string& folder, std::size_t bytes)
{
    const std::size_t rows = bytes / (12 * sizeof(double));
    writeNpy<double>(folder + "/points.npy", rows, "3", 3, fillPoint);
    writeNpy<double>(folder + "/directors.npy", rows, "3, 3", 9, fillDirectors);
    pack(folder, "directors.npz", {"points.npy", "directors.npy"}, ZIP_CM_STORE);
}

void writeFibres(const std::string& folder, std::size_t bytes)
{
    Text text(pathIn(folder, "fibres.txt"));
    text << "% frame   0\n% time 0.100\n";
    for (std::size_t fibre = 1; text.size() < bytes; ++fibre) {
        text << "% fiber f0:" << fibre << "\n";
        for (std::size_t i = 0; i < 50; ++i)
            (text << " " << fibre << " ").numbers(Coil(i).point(), 7, " ") << "\n";
    }
    text << "% end\n";
}

void writeXyzFrame(Text& text, std::size_t points)
{
    text << points << "\nAtoms. Timestep: 1000000\n";
    for (std::size_t i = 0; i < points; ++i)
        (text << "A ").numbers(Coil(i).point(), 6, " ") << "\n";
}

void writeXyz(const std::string& folder, std::size_t bytes)
{
    Text text(pathIn(folder, "one.xyz"));
    writeXyzFrame(text, bytes / 38);
}

void writeXyzSeries(const std::string& folder, std::size_t bytes)
{
    Text text(pathIn(folder, "many.xyz"));
    while (text.size() < bytes)
        writeXyzFrame(text, 10000);
}

void writeVect(const std::string& folder, std::size_t bytes)
{
    Text text(pathIn(folder, "curve.vect"));
    const std::size_t points = bytes / 52;
    text << "VECT\n1 " << points << " 0\n" << points << "\n0\n";
    for (std::size_t i = 0; i < points; ++i)
        text.numbers(Coil(i).point(), 13, " ") << "\n";
}

} // namespace

const std::vector<LargeFile>& largeFiles()
{
    using Kind = LargeFile::Kind;
    static const std::vector<LargeFile> all = {
        {"A table of points", "plain.raw", Kind::TEXT, writePlainTable},
        {"A table of points and frames", "frames.txt", Kind::TEXT, writeTable},
        {"JSON", "rod.json", Kind::TEXT, writeJson},
        {"PDB", "duplexes.pdb", Kind::TEXT, writePdb},
        {"PDB, models of 1000 pairs", "models.pdb", Kind::SERIES, writePdbModels},
        {"mmCIF", "duplexes.cif", Kind::TEXT, writeMmcif},
        {"mmCIF, models of 1000 pairs", "models.cif", Kind::SERIES, writeMmcifModels},
        {"Step parameters", "steps.par", Kind::TEXT, writeSteps},
        {"Pair frames with names", "pairs.dat", Kind::TEXT, writeNamedPairs},
        {"Pair frames in brackets", "pairs.bplist", Kind::TEXT, writeBracketPairs},
        {"oxDNA", "duplex.oxdna", Kind::TEXT, writeOxdna},
        {"oxDNA, 50 frames", "moving.oxdna", Kind::SERIES, writeOxdnaSeries},
        {"Fibre report", "fibres.txt", Kind::TEXT, writeFibres},
        {"XYZ", "one.xyz", Kind::TEXT, writeXyz},
        {"XYZ, frames of 10⁴ points", "many.xyz", Kind::SERIES, writeXyzSeries},
        {"VECT", "curve.vect", Kind::TEXT, writeVect},
        {"NumPy, points, in a stored archive", "stored.npz", Kind::BINARY, writeStored},
        {"NumPy, points and quaternions", "framed.npz", Kind::BINARY, writeFramed},
        {"NumPy, points and directors", "directors.npz", Kind::BINARY, writeDirectors},
        {"NumPy, points", "doubles.npy", Kind::BINARY, writeDoubles},
        {"NumPy, points of single precision", "floats.npy", Kind::BINARY, writeFloats},
        {"NumPy, points, deflated", "deflated.npz", Kind::PACKED, writeDeflated},
    };
    return all;
}
