// SPDX-License-Identifier: GPL-3.0-or-later
// The processor time of pictures, beside that of a peer.
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "measuring.h"
#include "sampleTables.h"
#include "temporary.h"

namespace {

const int ROUNDS = 5;

using Command = std::vector<std::string>;

// The medians of commands that are run in turn; none if one of them fails.
std::vector<double> medianProcessorSeconds(const std::vector<Command>& commands)
{
    std::vector<std::function<std::optional<double>()>> runs;
    for (const Command& command : commands) {
        usageOf(command); // which leaves compiled shaders behind
        runs.emplace_back([&command] { return processorSecondsOf(command); });
    }
    return mediansInTurn(runs, ROUNDS);
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
            if (medians.empty())
                table.missing(what, "strandview failed");
            else
                table.value(what, 1e3 * medians[i], "ms");
        }
    };
    const auto addBesidePeer = [&](const std::string& name, const TemporaryFile& file) {
        const std::vector<double> medians = medianProcessorSeconds(
            {strandview(ours.path, file.path, "3"), peer(theirs.path, file.path, "4")});
        const std::string what = name + ", 9 samples";
        if (medians.empty())
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
