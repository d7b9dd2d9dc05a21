// SPDX-License-Identifier: GPL-3.0-or-later
#include "writers.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string_view>

#include <algebra3d/Matrix3.h>
#include <algebra3d/rotations.h>
#include <zip.h>

#include <strandview/analysis/baseAtoms.h>
#include <strandview/analysis/doubleStrands.h>

namespace strandview::samples {
namespace {

using Vector = algebra3d::Vector3<double>;

/// A column of a rotation's matrix.
Vector director(const algebra3d::Quaternion<double>& rotation, int column)
{
    return algebra3d::Matrix3<double>(rotation).getColumn(column);
}

/// Its coordinates with something between them.
std::string written(const Vector& v, int digits, const char* separator)
{
    return samples::written(v.x, digits) + separator + samples::written(v.y, digits) + separator +
           samples::written(v.z, digits);
}

} // namespace

std::string written(double value, int digits)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", digits, value);
    std::string number = text;
    number.erase(number.find_last_not_of('0') + 1);
    if (number.back() == '.')
        number.pop_back();
    return number == "-0" ? "0" : number;
}

void writePdb(std::ostream& out, const std::vector<Nucleotide>& nucleotides)
{
    // The means of B-DNA's (docs/bases.md), and the sugar's carbon of its ideal bases.
    const BaseAtom phosphorus{"P", {-0.14, 9.37, -2.00}}, sugar{"C1'", {-2.498, 5.390, 0}};
    int serial = 0, residue = 0;
    const auto write = [&](const BaseAtom& atom, const Nucleotide& one) {
        const Vector place = one.frame.point + algebra3d::rotated(atom.place, one.frame.rotation);
        const std::string name(atom.name);
        char line[1088]; // for numbers of any size
        std::snprintf(line, sizeof line,
                      "ATOM  %5d  %-3s  D%c %c%4d    %8.3f%8.3f%8.3f  1.00 20.00          %2c\n",
                      ++serial, name.c_str(), one.base, one.strand == 0 ? 'A' : 'B', residue,
                      place.x, place.y, place.z, name[0]);
        out << line;
    };
    out << "REMARK   1 MADE BY MAKE_SAMPLES; SEE README.MD\n";
    for (const Nucleotide& one : nucleotides) {
        ++residue;
        if (one.previous != NO_NUCLEOTIDE)
            write(phosphorus, one);
        write(sugar, one);
        for (const BaseAtom& atom : drawnAtoms(one.base))
            write(atom, one);
        if (one.next == NO_NUCLEOTIDE)
            out << "TER\n";
    }
    out << "END\n";
}

void writeOxdnaTopology(std::ostream& out, const std::vector<Nucleotide>& nucleotides)
{
    out << nucleotides.size() << ' ' << nucleotides.back().strand + 1 << " 5->3\n";
    for (const Nucleotide& one : nucleotides)
        out << one.base << (one.next == NO_NUCLEOTIDE ? "\n" : "");
}

void writeOxdnaConfiguration(std::ostream& out, const std::vector<Nucleotide>& nucleotides)
{
    constexpr double unit = 8.518, baseFromCentre = 0.6;
    out << "t = 0\nb = 20 20 20\nE = 0 0 0\n";
    for (const Nucleotide& one : nucleotides) {
        const Vector a1 = director(one.frame.rotation, 1) * -1.0;
        const Vector a3 = director(one.frame.rotation, 2) * -1.0;
        const Vector centre = one.frame.point * (1 / unit) - a1 * baseFromCentre;
        out << written(centre, 5, " ") << "  " << written(a1, 6, " ") << "  " << written(a3, 6, " ")
            << "  0 0 0  0 0 0\n";
    }
}

void writeStepParameters(std::ostream& out, const Dna& dna)
{
    const std::size_t n = dna.bases.size();
    out << n + 1 << " # base pairs\n0 # ***local base-pair & step parameters***\n"
        << "# Shear Stretch Stagger Buckle Prop-Tw Opening Shift Slide Rise Tilt Roll Twist\n";
    for (std::size_t i = 0; i <= n; ++i) {
        const std::size_t row = i % n, before = (i + n - 1) % n;
        StepParameters step;
        if (i > 0)
            step = stepParameters({dna.pairPoints[before], dna.pairRotations[before]},
                                  {dna.pairPoints[row], dna.pairRotations[row]});
        out << dna.bases[row] << '-' << complementOf(dna.bases[row]) << " 0 0 0 0 0 0";
        for (const double value :
             {step.shift, step.slide, step.rise, step.tilt, step.roll, step.twist})
            out << ' ' << written(value, 5);
        out << '\n';
    }
}

void writePairFrames(std::ostream& out, const Dna& dna)
{
    for (std::size_t i = 0; i < dna.pairPoints.size(); ++i) {
        out << "{{" << written(dna.pairPoints[i], 4, ", ") << "}, {";
        for (int axis = 0; axis < 3; ++axis)
            out << (axis ? ", {" : "{") << written(director(dna.pairRotations[i], axis), 6, ", ")
                << '}';
        out << "}}\n";
    }
}

void writeVect(std::ostream& out, const Rod& rod, std::size_t every)
{
    const std::size_t count = (rod.points.size() - 1) / every;
    out << "VECT # made by make_samples; see README.md\n1 " << count << " 1\n-" << count << "\n1\n";
    for (std::size_t i = 0; i < count; ++i)
        out << written(rod.points[every * i], 6, " ") << '\n';
    out << "1 0.5 0 1\n";
}

void writeXyz(std::ostream& out, const std::vector<Rod>& frames)
{
    for (const Rod& rod : frames) {
        out << rod.points.size() << "\nmade by make_samples; see README.md\n";
        for (const Vector& point : rod.points)
            out << "CA " << written(point, 4, " ") << '\n';
    }
}

void writeFibres(std::ostream& out, const std::vector<std::vector<Rod>>& frames)
{
    out << "% made by make_samples; see README.md\n";
    for (std::size_t frame = 0; frame < frames.size(); ++frame) {
        out << "% frame " << frame << "\n% time " << written(double(frame) / 10, 1) << '\n';
        for (std::size_t fibre = 0; fibre < frames[frame].size(); ++fibre) {
            out << "% fiber f0:" << fibre + 1 << '\n';
            for (const Vector& point : frames[frame][fibre].points)
                out << fibre + 1 << ' ' << written(point, 4, " ") << '\n';
        }
        out << "% end\n";
    }
}

namespace {

/// The four bytes of a number of type "<f4".
void append(double value, std::string& bytes)
{
    const float number = float(value);
    std::uint32_t bits;
    std::memcpy(&bits, &number, sizeof bits);
    for (int i = 0; i < 4; ++i)
        bytes += char(bits >> 8 * i & 0xFF);
}

/// The beginning of an array, its shape as Python has it: "(2, 3)".
std::string beginningOf(const std::string& shape)
{
    std::string header = "{'descr': '<f4', 'fortran_order': False, 'shape': " + shape + ", }";
    constexpr std::size_t before = 10, block = 64; // the whole of it fills blocks
    while ((before + header.size() + 1) % block != 0)
        header += ' ';
    header += '\n';
    const char size[] = {char(header.size() & 0xFF), char(header.size() >> 8)};
    return std::string("\x93NUMPY\x01\x00", 8) + std::string(size, 2) + header;
}

void add(zip_t* archive, const char* name, const std::string& bytes)
{
    zip_source_t* source = zip_source_buffer(archive, bytes.data(), bytes.size(), 0);
    const zip_int64_t index = zip_file_add(archive, name, source, ZIP_FL_ENC_UTF_8);
    zip_set_file_compression(archive, index, ZIP_CM_STORE, 0);
    constexpr zip_uint16_t firstOfJanuary1980 = 1 << 5 | 1; // the same at every call
    zip_file_set_dostime(archive, index, 0, firstOfJanuary1980, 0);
}

} // namespace

bool writeArchive(const std::string& path, const std::vector<Rod>& frames)
{
    const std::string t = std::to_string(frames.size());
    const std::string n = std::to_string(frames[0].points.size());
    const std::string elements = std::to_string(frames[0].rotations.size());
    std::string times = beginningOf("(" + t + ",)");
    std::string points = beginningOf("(" + t + ", 3, " + n + ")");
    std::string directors = beginningOf("(" + t + ", 3, 3, " + elements + ")");
    for (std::size_t frame = 0; frame < frames.size(); ++frame) {
        append(double(frame) / 10, times);
        for (int k = 0; k < 3; ++k)
            for (const Vector& point : frames[frame].points)
                append(point[k], points);
        for (int column = 0; column < 3; ++column)
            for (int k = 0; k < 3; ++k)
                for (const auto& rotation : frames[frame].rotations)
                    append(director(rotation, column)[k], directors);
    }
    zip_t* const archive = zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, nullptr);
    if (!archive)
        return false;
    add(archive, "time.npy", times);
    add(archive, "center_line.npy", points);
    add(archive, "director_rod.npy", directors);
    const bool isWritten = zip_close(archive) == 0;
    if (!isWritten)
        zip_discard(archive);
    return isWritten;
}

} // namespace strandview::samples
