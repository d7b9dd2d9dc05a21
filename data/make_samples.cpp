// SPDX-License-Identifier: GPL-3.0-or-later
//
// make_samples FOLDER: writes the sample configurations into the folder.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <utility>

#include "samples.h"
#include "writers.h"

using namespace strandview;

namespace {

using Vector = algebra3d::Vector3<double>;
using Quaternion = algebra3d::Quaternion<double>;

using samples::written;

/// Ten digits after the point, which is where two machines' mathematics may begin to
/// differ.
std::string written(double value) { return written(value, 10); }

/// Of lengths in Angstrom, and of quaternions beside them: their norms are 1 within 1e-7.
std::string writtenShort(const Vector& point, int k) { return written(point[k], 4); }
std::string writtenShort(const Quaternion& rotation, int k) { return written(rotation[k], 7); }

void writeTable(std::ostream& out, const char* comment, const Rod& rod)
{
    out << "# " << comment << "\n# " << rod.points.size()
        << " points, made by make_samples; see README.md\nx y z qx qy qz qw";
    for (const Scalar& scalar : rod.scalars)
        out << ' ' << scalar.name;
    out << '\n';
    for (std::size_t i = 0; i < rod.points.size(); ++i) {
        for (int k = 0; k < 3; ++k)
            out << written(rod.points[i][k]) << ' ';
        for (int k = 0; k < 4; ++k)
            out << (k ? " " : "") << written(rod.rotations[i][k]);
        for (const Scalar& scalar : rod.scalars)
            out << ' ' << written(scalar.values[i]);
        out << '\n';
    }
}

void writeDnaTable(std::ostream& out, const char* comment, const Dna& dna)
{
    out << "# " << comment << "\n# " << dna.bases.size()
        << " pairs, lengths in Angstrom, made by make_samples; see README.md\nbase";
    for (const char* strand : {"", "1", "2"})
        for (const char* name : {"x", "y", "z", "qx", "qy", "qz", "qw"})
            out << ' ' << name << strand;
    out << '\n';
    for (std::size_t i = 0; i < dna.bases.size(); ++i) {
        const auto writeFrame = [&](const Vector& point, const Quaternion& rotation) {
            for (int k = 0; k < 3; ++k)
                out << ' ' << writtenShort(point, k);
            for (int k = 0; k < 4; ++k)
                out << ' ' << writtenShort(rotation, k);
        };
        out << dna.bases[i];
        writeFrame(dna.pairPoints[i], dna.pairRotations[i]);
        writeFrame(dna.points1[i], dna.rotations1[i]);
        writeFrame(dna.points2[i], dna.rotations2[i]);
        out << '\n';
    }
}

/// A JSON list; the text of each item is made by item(i).
template <typename Item>
void writeList(std::ostream& out, std::size_t size, const char* separator, Item item)
{
    out << '[';
    for (std::size_t i = 0; i < size; ++i) {
        out << (i ? separator : "");
        item(i);
    }
    out << ']';
}

void writeJson(std::ostream& out, const std::vector<Rod>& rods)
{
    out << "{\"strandview\": 1, \"rods\": ";
    writeList(out, rods.size(), ",\n", [&](std::size_t r) {
        const Rod& rod = rods[r];
        out << "{\n\"points\": ";
        writeList(out, rod.points.size(), ",\n", [&](std::size_t i) {
            writeList(out, 3, ", ", [&](std::size_t k) { out << written(rod.points[i][int(k)]); });
        });
        out << ",\n\"quaternions\": ";
        writeList(out, rod.rotations.size(), ",\n", [&](std::size_t i) {
            writeList(out, 4, ", ",
                      [&](std::size_t k) { out << written(rod.rotations[i][int(k)]); });
        });
        out << ",\n\"scalars\": {";
        for (std::size_t n = 0; n < rod.scalars.size(); ++n) {
            const Scalar& scalar = rod.scalars[n];
            out << (n ? ",\n" : "") << '"' << scalar.name << "\": ";
            writeList(out, scalar.values.size(), ", ",
                      [&](std::size_t i) { out << written(scalar.values[i]); });
        }
        out << "}\n}";
    });
    out << "}\n";
}

void writeShort(std::ostream& out, const Vector& point)
{
    writeList(out, 3, ", ", [&](std::size_t k) { out << writtenShort(point, int(k)); });
}

void writeShort(std::ostream& out, const Quaternion& rotation)
{
    writeList(out, 4, ", ", [&](std::size_t k) { out << writtenShort(rotation, int(k)); });
}

/// What stands between the braces of a rod or strand.
void writeShort(std::ostream& out, const std::vector<Vector>& points,
                const std::vector<Quaternion>& rotations)
{
    out << "\"points\": ";
    writeList(out, points.size(), ",\n", [&](std::size_t i) { writeShort(out, points[i]); });
    out << ",\n\"quaternions\": ";
    writeList(out, rotations.size(), ",\n", [&](std::size_t i) { writeShort(out, rotations[i]); });
}

void writeMinicircle(std::ostream& out, const Configuration& configuration)
{
    const auto strand = [&out](const char* key, const auto& points, const auto& rotations) {
        out << ",\n\"" << key << "\": {";
        writeShort(out, points, rotations);
        out << '}';
    };
    const Dna& dna = configuration.dnas[0];
    out << "{\"strandview\": 1,\n\"dna\": [{\"closed\": true, \"molecule\": 1, \"sequence\": \""
        << dna.bases << '"';
    strand("pairs", dna.pairPoints, dna.pairRotations);
    strand("strand1", dna.points1, dna.rotations1);
    strand("strand2", dna.points2, dna.rotations2);
    const Birod& birod = configuration.birods[0];
    out << "}],\n\"birods\": [{\"average\": {";
    writeShort(out, birod.points, birod.rotations);
    out << '}';
    strand("strand1", birod.points1, birod.rotations1);
    strand("strand2", birod.points2, birod.rotations2);
    out << "}],\n\"rods\": ";
    writeList(out, configuration.rods.size(), ",\n", [&](std::size_t r) {
        out << "{\"closed\": true, \"backbone\": true, \"molecule\": 1,\n";
        writeShort(out, configuration.rods[r].points, configuration.rods[r].rotations);
        out << '}';
    });
    out << "}\n";
}

void writeGlyphs(std::ostream& out, const Configuration& configuration)
{
    constexpr const char* shapes[] = {"sphere", "cube", "cross"};
    out << "{\"strandview\": 1,\n\"markers\": ";
    writeList(out, configuration.markers.size(), ",\n", [&](std::size_t i) {
        const Marker& marker = configuration.markers[i];
        out << "{\"point\": ";
        writeShort(out, marker.point);
        out << ", \"shape\": \"" << shapes[static_cast<int>(marker.shape)]
            << "\", \"size\": " << written(*marker.size) << ", \"colour\": \"" << *marker.colour
            << "\", \"transparency\": " << written(marker.transparency) << ", \"id\": " << marker.id
            << '}';
    });
    out << ",\n\"frames\": ";
    writeList(out, configuration.frames.size(), ",\n", [&](std::size_t i) {
        const Frame& frame = configuration.frames[i];
        out << "{\"point\": ";
        writeShort(out, frame.point);
        out << ", \"quaternion\": ";
        writeShort(out, frame.rotation);
        out << ", \"size\": " << written(*frame.size) << '}';
    });
    out << ",\n\"arrows\": ";
    writeList(out, configuration.arrows.size(), ",\n", [&](std::size_t i) {
        const Arrow& arrow = configuration.arrows[i];
        out << "{\"from\": ";
        writeShort(out, arrow.from);
        out << ", \"to\": ";
        writeShort(out, arrow.to);
        out << ", \"radius\": " << written(*arrow.radius) << ", \"colour\": \"" << *arrow.colour
            << "\"}";
    });
    out << "}\n";
}

/// The folder that the samples are written into.
class Folder
{
public:
    explicit Folder(std::filesystem::path path) : path(std::move(path)) {}

    std::string place(const char* name) const { return (path / name).string(); }
    bool isWritten() const { return good; }

    void expect(bool isFileWritten, const char* name)
    {
        if (!isFileWritten)
            std::cerr << "make_samples: cannot write " << place(name) << '\n';
        good = good && isFileWritten;
    }

    template <typename Content>
    void write(const char* name, Content content)
    {
        std::ofstream out(path / name, std::ios::binary);
        content(out);
        out.close();
        expect(bool(out), name);
    }

private:
    std::filesystem::path path;
    bool good = true;
};

void writeOwnFormats(Folder& folder)
{
    const auto table = [&](const char* name, const char* comment, const Rod& rod) {
        folder.write(name, [&](std::ostream& out) { writeTable(out, comment, rod); });
    };
    const auto dnaTable = [&](const char* name, const char* comment, const Dna& dna) {
        folder.write(name, [&](std::ostream& out) { writeDnaTable(out, comment, dna); });
    };
    table("helix.txt", "A circular helix with its Frenet frame.", samples::helix());
    table("elastica.txt", "Euler's elastica, three periods of an inflectional one.",
          samples::elastica());
    table("trefoil.txt",
          "A closed trefoil knot, its frame twisted evenly by three less the writhe.",
          samples::trefoil());
    table("supercoil.txt", "A closed plectonemic supercoil, for tube radii up to 0.4.",
          samples::supercoil());
    table("random.txt", "A rod with smooth random curvatures and twist.", samples::randomRod());
    dnaTable("dna.txt", "Straight B-DNA, ten pairs a turn.", samples::straightDna());
    dnaTable("dna_bent.txt", "DNA bent to a quarter of a circle.", samples::bentDna());
    folder.write("minicircle.json",
                 [](std::ostream& out) { writeMinicircle(out, samples::minicircle()); });
    folder.write("glyphs.json", [](std::ostream& out) { writeGlyphs(out, samples::glyphs()); });
    folder.write("rods.json", [](std::ostream& out) { writeJson(out, samples::borromeanRings()); });
}

void writeFormatsOfOthers(Folder& folder)
{
    using namespace samples;
    folder.write("sticky_end.pdb", [](std::ostream& out) { writePdb(out, stickyEnd()); });
    folder.write("hairpin.top", [](std::ostream& out) { writeOxdnaTopology(out, hairpin()); });
    folder.write("hairpin.dat", [](std::ostream& out) { writeOxdnaConfiguration(out, hairpin()); });
    folder.write("ring.par",
                 [](std::ostream& out) { writeStepParameters(out, minicircle().dnas[0]); });
    folder.write("superhelix.bplist",
                 [](std::ostream& out) { writePairFrames(out, superhelix()); });
    folder.write("knot.vect", [](std::ostream& out) { writeVect(out, trefoil(), 4); });
    folder.write("pulled.xyz", [](std::ostream& out) { writeXyz(out, pulledHelix()); });
    folder.write("aster.txt", [](std::ostream& out) { writeFibres(out, aster()); });
    folder.expect(writeArchive(folder.place("arm.npz"), arm()), "arm.npz");
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "usage: make_samples FOLDER\n";
        return 2;
    }
    Folder folder(argv[1]);
    writeOwnFormats(folder);
    writeFormatsOfOthers(folder);
    return folder.isWritten() ? 0 : 1;
}
