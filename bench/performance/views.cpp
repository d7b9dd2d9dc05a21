// SPDX-License-Identifier: GPL-3.0-or-later
// What a picture costs seen along the axis, where everything lies behind everything, beside the
// cheapest side; and one of a very long DNA.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "measuring.h"
#include "sampleDna.h"
#include "temporary.h"

namespace {

const int ROUNDS = 3;

void writeCoil(const std::string& file, int turns)
{
    std::ofstream table(file);
    for (int i = 0; i < 40 * turns; ++i) {
        const double t = 2 * M_PI * i / 40;
        table << 10 * std::cos(t) << ' ' << 10 * std::sin(t) << ' ' << 0.5 * t << '\n';
    }
}

using Command = std::vector<std::string>;

Command rendering(const std::string& file, const Command& options)
{
    Command command{STRANDVIEW_PROGRAM, "--render", file + ".png", file};
    command.insert(command.end(), options.begin(), options.end());
    return command;
}

// The median seconds of a run from each side, in turn; empty if a run failed.
std::vector<double> measureSides(const std::string& file, const Command& options,
                                 const std::vector<std::string>& sides)
{
    std::vector<std::function<std::optional<double>()>> runs;
    for (const std::string& side : sides) {
        Command command = rendering(file, options);
        command.insert(command.end(), {"--view", side});
        runs.emplace_back([command] { return secondsOf(command); });
    }
    return mediansInTurn(runs, ROUNDS);
}

void measure(Table& table, const std::string& what, const std::string& file, const Command& options,
             bool withGoal)
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

void measureProcessor(Table& table, const std::string& what, const std::string& file,
                      const Command& options, double limit)
{
    Command command = rendering(file, options);
    command.insert(command.end(), {"--samples", "1"});
    const std::vector<double> seconds =
        mediansInTurn({[&command] { return processorSecondsOf(command); }}, ROUNDS);
    if (seconds.empty())
        table.missing(what, "strandview failed");
    else
        table.limit(what, seconds.front(), "s", limit);
}

void measureLongDna(const std::string& file)
{
    Table table("A long DNA",
                "The processor's time of a run of `strandview --render`, from start to end, of a "
                "table of 10⁵ pairs, with one\nsample per pixel: without the graphics driver "
                "(`GALLIUM_NOOP=1`), and drawn by Mesa's software driver.");
    writeDna(file, 100000);
    setenv("GALLIUM_NOOP", "1", 1);
    measureProcessor(table, "Backbones and bases, without the driver", file, {}, 1.5);
    measureProcessor(table, "Atoms, without the driver", file, {"--dna", "atoms"}, 1.5);
    unsetenv("GALLIUM_NOOP");
    measureProcessor(table, "Backbones and bases", file, {}, 7);
    measureProcessor(table, "Atoms", file, {"--dna", "atoms"}, 7);
    measureProcessor(table, "Atoms, seen end-on", file, {"--dna", "atoms", "--view", "z"}, 7);
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
        measure(table, "Backbones and bases of " + of, file, {}, true);
        measure(table, "Atoms of " + of, file, {"--dna", "atoms"}, true);
        measure(table, "Boxes of the bases of " + of, file, {"--dna", "boxes"}, true);
    }
    for (int turns : {10, 100, 1000}) {
        const std::string file = folder.path + "/coil" + std::to_string(turns) + ".txt";
        writeCoil(file, turns);
        measure(table, "A coil of " + std::to_string(turns) + " turns", file, {}, false);
    }
    table.print();
    measureLongDna(folder.path + "/long.txt");
}
