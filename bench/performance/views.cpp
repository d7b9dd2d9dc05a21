// SPDX-License-Identifier: GPL-3.0-or-later
// What a picture costs seen along the axis, where everything lies behind everything, beside the
// cheapest side; and one of a very long DNA.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include <support/IdealDna.h>
#include <sys/resource.h>

#include "measuring.h"
#include "temporary.h"

namespace {

const int ROUNDS = 3;

// Pairs that turn by 34.3 degrees each, so that none is behind another exactly.
void writeDna(const std::string& file, int pairs)
{
    const IdealDna dna(irregularSequence(std::size_t(pairs)), 3.4, 34.3 * M_PI / 180);
    std::ofstream table(file);
    for (std::size_t i = 0; i < dna.sequence.size(); ++i) {
        table << dna.sequence[i];
        for (int frame = 0; frame < 3; ++frame) {
            for (int axis = 0; axis < 3; ++axis)
                table << ' ' << dna.points[i][axis];
            for (int axis = 0; axis < 4; ++axis)
                table << ' ' << dna.rotations[i][axis];
        }
        table << '\n';
    }
}

void writeCoil(const std::string& file, int turns)
{
    std::ofstream table(file);
    for (int i = 0; i < 40 * turns; ++i) {
        const double t = 2 * M_PI * i / 40;
        table << 10 * std::cos(t) << ' ' << 10 * std::sin(t) << ' ' << 0.5 * t << '\n';
    }
}

// The median seconds of a run from each side, in turn; empty if a run failed.
std::vector<double> measureSides(const std::string& file, const std::string& options,
                                 const std::vector<std::string>& sides)
{
    std::vector<std::vector<double>> seconds(sides.size());
    for (int round = 0; round < ROUNDS; ++round) {
        for (std::size_t i = 0; i < sides.size(); ++i) {
            const std::string command = STRANDVIEW_PROGRAM " --render " + file + ".png --view " +
                                        sides[i] + " " + options + " " + file + " >/dev/null 2>&1";
            int status = 0;
            seconds[i].push_back(secondsOf([&] { status = std::system(command.c_str()); }));
            if (status != 0)
                return {};
        }
    }
    std::vector<double> medians;
    for (const std::vector<double>& ofSide : seconds)
        medians.push_back(median(ofSide));
    return medians;
}

void measure(Table& table, const std::string& what, const std::string& file,
             const std::string& options, bool withGoal)
{
    const std::vector<double> seconds = measureSides(file, options, {"x", "y", "z", "-z"});
    if (seconds.empty()) {
        table.missing(what, "strandview failed");
        return;
    }
    table.compare(what, std::max(seconds[2], seconds[3]) * 1e3, "the cheapest side",
                  *std::min_element(seconds.begin(), seconds.end()) * 1e3, "ms",
                  withGoal ? Table::Goal::AtMost : Table::Goal::None, 5);
}

// Of all children that have ended.
double processorSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    const auto seconds = [](const timeval& time) {
        return double(time.tv_sec) + 1e-6 * double(time.tv_usec);
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

void measureProcessor(Table& table, const std::string& what, const std::string& file,
                      const std::string& options, double limit)
{
    std::vector<double> seconds;
    for (int round = 0; round < ROUNDS; ++round) {
        const double before = processorSeconds();
        const std::string command = STRANDVIEW_PROGRAM " --render " + file + ".png --samples 1 " +
                                    options + " " + file + " >/dev/null 2>&1";
        if (std::system(command.c_str()) != 0) {
            table.missing(what, "strandview failed");
            return;
        }
        seconds.push_back(processorSeconds() - before);
    }
    table.limit(what, median(seconds), "s", limit);
}

void measureLongDna(const std::string& file)
{
    Table table("A long DNA",
                "The processor's time of a run of `strandview --render`, from start to end, of a "
                "table of 10⁵ pairs, with one\nsample per pixel: without the graphics driver "
                "(`GALLIUM_NOOP=1`), and drawn by Mesa's software driver.");
    writeDna(file, 100000);
    setenv("GALLIUM_NOOP", "1", 1);
    measureProcessor(table, "Backbones and bases, without the driver", file, "", 1.5);
    measureProcessor(table, "Atoms, without the driver", file, "--dna atoms", 1.5);
    unsetenv("GALLIUM_NOOP");
    measureProcessor(table, "Backbones and bases", file, "", 7);
    measureProcessor(table, "Atoms", file, "--dna atoms", 7);
    measureProcessor(table, "Atoms, seen end-on", file, "--dna atoms --view z", 7);
    table.print();
}

} // namespace

int main()
{
    Table table("Views",
                "A run of `strandview --render`, from start to end, for what runs along z: seen "
                "end-on, from the slower\nend, beside the cheapest of x, y and z. The picture has "
                "its usual size and samples, 1200 x 900 of 3 x 3,\nand Mesa's software driver "
                "draws it.");
    const TemporaryFolder folder;
    for (int pairs : {10, 200, 3000, 10000}) {
        const std::string file = folder.path + "/" + std::to_string(pairs) + ".txt";
        writeDna(file, pairs);
        const std::string of = std::to_string(pairs) + " base pairs";
        measure(table, "Backbones and bases of " + of, file, "", true);
        measure(table, "Atoms of " + of, file, "--dna atoms", true);
        measure(table, "Boxes of the bases of " + of, file, "--dna boxes", true);
    }
    for (int turns : {10, 100, 1000}) {
        const std::string file = folder.path + "/coil" + std::to_string(turns) + ".txt";
        writeCoil(file, turns);
        measure(table, "A coil of " + std::to_string(turns) + " turns", file, "", false);
    }
    table.print();
    measureLongDna(folder.path + "/long.txt");
}
