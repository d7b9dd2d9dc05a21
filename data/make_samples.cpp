// SPDX-License-Identifier: GPL-3.0-or-later
//
// make_samples FOLDER: writes the sample configurations into the folder.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include "samples.h"

namespace {

/// Ten digits after the point, which is where two machines' mathematics may begin to
/// differ, without the zeros at the end.
std::string written(double value)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.10f", value);
    std::string number = text;
    number.erase(number.find_last_not_of('0') + 1);
    if (number.back() == '.')
        number.pop_back();
    return number == "-0" ? "0" : number;
}

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

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "usage: make_samples FOLDER\n";
        return 2;
    }
    const std::filesystem::path folder = argv[1];
    bool good = true;
    const auto write = [&](const char* name, auto content) {
        std::ofstream out(folder / name, std::ios::binary);
        content(out);
        out.close();
        if (!out) {
            std::cerr << "make_samples: cannot write " << (folder / name).string() << '\n';
            good = false;
        }
    };
    const auto table = [&](const char* name, const char* comment, const Rod& rod) {
        write(name, [&](std::ostream& out) { writeTable(out, comment, rod); });
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
    write("rods.json", [](std::ostream& out) { writeJson(out, samples::borromeanRings()); });
    return good ? 0 : 1;
}
