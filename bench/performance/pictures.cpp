// SPDX-License-Identifier: GPL-3.0-or-later
// The processor time of pictures, beside that of a peer.
#include <optional>
#include <string>
#include <vector>

#include "measuring.h"
#include "sampleTables.h"
#include "temporary.h"

namespace {

const int ROUNDS = 5;

using Command = std::vector<std::string>;

// Negative if it failed.
double processorSeconds(const Command& command)
{
    const std::optional<Usage> usage = usageOf(command);
    return usage ? usage->processorSeconds : -1;
}

// The medians of commands that are run in turn; that of one that fails is negative.
std::vector<double> medianProcessorSeconds(const std::vector<Command>& commands)
{
    std::vector<std::vector<double>> seconds(commands.size());
    for (const Command& command : commands)
        processorSeconds(command); // which leaves compiled shaders behind
    for (int round = 0; round < ROUNDS; ++round) {
        for (std::size_t i = 0; i < commands.size(); ++i)
            seconds[i].push_back(processorSeconds(commands[i]));
    }
    std::vector<double> medians;
    for (const std::vector<double>& ofOne : seconds)
        medians.push_back(median(ofOne));
    return medians;
}

Command strandview(const std::string& picture, const std::string& file, const std::string& samples)
{
    return {STRANDVIEW_PROGRAM, "--render", picture, "--samples", samples, file};
}

Command peer(const std::string& picture, const std::string& file, const std::string& samples)
{
#ifdef STRANDVIEW_PEER
    return {STRANDVIEW_PEER, picture, file, samples};
#else
    static_cast<void>(samples);
    return {"false", picture, file};
#endif
}

} // namespace

int main()
{
    const TemporaryFile three("-three.txt"), knot("-knot.txt"), helix("-helix.txt"),
        longKnot("-long.txt"), ours("-ours.png"), theirs("-theirs.png");
    writeKnot(three.path, 3);
    writeKnot(knot.path, 1000);
    writeHelix(helix.path, 1000);
    writeKnot(longKnot.path, 100000);

    Table table(
        "Pictures",
        "The processor time of `strandview --render`, of all its threads, from start to end: 1200 "
        "x 900\n"
        "pixels, drawn by Mesa's software driver, whose programs were compiled before. Beside it\n"
        "`vtkTubeFilter` about the same points, of twelve sides and ten times as many points by "
        "linear\n"
        "interpolation, shown in a window of a server without a screen and written by "
        "`vtkPNGWriter`.");
    const auto add = [&](const std::string& name, const TemporaryFile& file) {
        const std::vector<double> medians = medianProcessorSeconds(
            {strandview(ours.path, file.path, "1"), strandview(ours.path, file.path, "3")});
        for (int i = 0; i < 2; ++i) {
            const std::string what = name + (i == 0 ? ", 1 sample" : ", 9 samples");
            if (medians[i] < 0)
                table.missing(what, "strandview failed");
            else
                table.value(what, 1e3 * medians[i], "ms");
        }
    };
    const auto addBesidePeer = [&](const std::string& name, const TemporaryFile& file) {
        const std::vector<double> medians = medianProcessorSeconds(
            {strandview(ours.path, file.path, "3"), peer(theirs.path, file.path, "4")});
        const std::string what = name + ", 9 samples";
        if (medians[0] < 0 || medians[1] < 0)
            table.missing(what, "strandview, VTK or a display is not there");
        else
            table.compare(what, 1e3 * medians[0], "VTK, 4 samples", 1e3 * medians[1], "ms",
                          Table::Goal::AtMost, 0.75);
    };
    add("Three points", three);
    add("Knot of 10³ points", knot);
    addBesidePeer("Knot of 10³ points", knot);
    add("Helix of 10³ points with its ribbon", helix);
    add("Knot of 10⁵ points", longKnot);
    table.print();
    return 0;
}
