// SPDX-License-Identifier: GPL-3.0-or-later
// What the pictures of a series cost, beside a process for each and beside a peer.
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "measuring.h"
#include "sampleTables.h"
#include "temporary.h"

namespace {

const int ROUNDS = 3, PICTURES = 24, RUNS_ALONE = 6;
const int POINTS = 1000, FEW_POINTS = 30;
const char *const SERIES = "series.txt", *const ALONE = "alone.txt";
const double AT_FIRST = 0.78; // pictures per second, before series, on two cores of a Xeon

using Command = std::vector<std::string>;

Command series(const std::string& pictures, const std::string& file, const Command& options = {})
{
    Command command{STRANDVIEW_PROGRAM, "--overwrite", "--render", pictures, file};
    command.insert(command.end(), options.begin(), options.end());
    return command;
}

// A folder with the data of what is measured, and the pictures.
struct Bench
{
    TemporaryFolder folder;
    Table& table;

    std::string path(const std::string& name) const { return folder.path + "/" + name; }
};

struct Rate
{
    Command command;
    int pictures, runs;
};

std::optional<double> picturesPerSecond(const Rate& rate)
{
    double seconds = 0;
    for (int run = 0; run < rate.runs; ++run) {
        const std::optional<double> ofRun = processorSecondsOf(rate.command);
        if (!ofRun)
            return {};
        seconds += *ofRun;
    }
    return rate.pictures * rate.runs / seconds;
}

void addRates(const Bench& bench, const std::string& what, const Command& look, bool isTube)
{
    const std::string file = bench.path(SERIES), alone = bench.path(ALONE);
    Command each{STRANDVIEW_PROGRAM, "--render", bench.path("alone.png"), alone};
    each.insert(each.end(), look.begin(), look.end());
    std::vector<Rate> rates{{series(bench.path("f%d.png"), file, look), PICTURES, 1},
                            {each, 1, RUNS_ALONE}};
#ifdef STRANDVIEW_PEER
    if (isTube)
        rates.push_back(
            {{STRANDVIEW_PEER, bench.path("peer.png"), alone, "4", std::to_string(PICTURES)},
             PICTURES,
             1});
#endif
    std::vector<std::function<std::optional<double>()>> measurements;
    for (const Rate& rate : rates)
        measurements.emplace_back([&rate] { return picturesPerSecond(rate); });
    const std::vector<double> found = mediansInTurn(measurements, ROUNDS);
    if (found.empty()) {
        bench.table.missing(what, "strandview, VTK or a display is not there");
        return;
    }
    bench.table.rate(what, found[0], "a process each", found[1], "pictures/s", 0);
    if (found.size() > 2)
        bench.table.rate(what, found[0], "VTK, 4 samples", found[2], "pictures/s", 2.5);
    if (!isTube)
        bench.table.rate(what, found[0], "a process each at first", AT_FIRST, "pictures/s", 2.5);
}

// The time that passes.
void addJobs(const Bench& bench)
{
    const auto run = [&](const std::string& jobs) {
        return [&, jobs]() -> std::optional<double> {
            const std::optional<double> seconds =
                secondsOf(series(bench.path("f%d.png"), bench.path(SERIES), {"--jobs", jobs}));
            return seconds ? std::optional(PICTURES / *seconds) : std::nullopt;
        };
    };
    const std::string what = "Two processes, in the time that passes";
    const std::vector<double> found = mediansInTurn({run("1"), run("2")}, ROUNDS);
    if (found.empty())
        bench.table.missing(what, "strandview failed");
    else
        bench.table.rate(what, found[1], "one", found[0], "pictures/s", 0);
}

void addMemory(const Bench& bench)
{
    const std::string file = bench.path("long.txt");
    writeSeries(file, 10000, FEW_POINTS);
    const auto peak = [&](int pictures) {
        const std::optional<Usage> usage =
            usageOf(series(bench.path("m%d.png"), file,
                           {"--frames", ":" + std::to_string(pictures), "--size", "120x90"}));
        return usage ? usage->peakMemory / 1e6 : -1;
    };
    const double few = peak(240);
    for (const int pictures : {20, 2400, 10000}) {
        const std::string what = "Peak memory of " + std::to_string(pictures) + " small pictures";
        const double memory = peak(pictures);
        if (memory < 0 || few < 0)
            bench.table.missing(what, "strandview failed");
        else
            bench.table.compare(what, memory, "240 pictures", few, "MB", Table::Goal::AtMost, 1.02);
    }
}

} // namespace

int main()
{
    Table table(
        "Series of pictures",
        "The pictures that `strandview --render` makes of a series per second of the processor's "
        "time, of all\nits threads, from start to end: 24 frames of a knot of 1,000 points, 1200 x "
        "900 pixels of nine samples,\ndrawn by Mesa's software driver. Beside them a process for "
        "each picture, of a file with its frame alone,\nnow, and on two cores of a Xeon before "
        "anything of this was measured; and `vtkTubeFilter` as for single\npictures, one process "
        "with new points in every frame. Memory is that of rods of 30 points in pictures\nof 120 x "
        "90, from a file of 10,000 frames.");
    const Bench bench{{}, table};
    writeSeries(bench.path(SERIES), PICTURES, POINTS);
    writeKnot(bench.path(ALONE), POINTS);
    addRates(bench, "Tube and ribbon", {"--ribbon"}, false);
    addRates(bench, "Tube alone", {}, true);
    addJobs(bench);
    addMemory(bench);
    table.print();
}
