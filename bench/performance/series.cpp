// SPDX-License-Identifier: GPL-3.0-or-later
// What the pictures of a series cost, beside a process for each and beside a peer.
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "measuring.h"
#include "sampleTables.h"
#include "temporary.h"

namespace {

const int ROUNDS = 3, PICTURES = 24, ALONE = 6;
const int POINTS = 1000, FEW_POINTS = 30;
const double AT_FIRST = 0.78; // pictures per second, before series, on two cores of a Xeon

using Command = std::vector<std::string>;

// Knots that breathe.
void writeSeries(const std::string& path, int frames, int points)
{
    writeTable(path, [&](std::ostream& table) {
        table << "t x y z\n";
        for (int frame = 0; frame < frames; ++frame)
            writeKnot(table, points, breathing(frame), std::to_string(frame) + " ");
    });
}

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

// The median pictures per processor second of what is run in turn; 0 if it fails.
std::vector<double> picturesPerSecond(const std::vector<Rate>& rates)
{
    std::vector<std::vector<double>> found(rates.size());
    for (int round = 0; round < ROUNDS; ++round) {
        for (std::size_t i = 0; i < rates.size(); ++i) {
            double seconds = 0;
            for (int run = 0; run < rates[i].runs; ++run) {
                const std::optional<Usage> usage = usageOf(rates[i].command);
                if (!usage)
                    return std::vector<double>(rates.size());
                seconds += usage->processorSeconds;
            }
            found[i].push_back(rates[i].pictures * rates[i].runs / seconds);
        }
    }
    std::vector<double> medians;
    for (const std::vector<double>& ofOne : found)
        medians.push_back(median(ofOne));
    return medians;
}

void addRates(const Bench& bench, const std::string& what, const Command& look, bool isTube)
{
    const std::string file = bench.path("series.txt"), alone = bench.path("alone.txt");
    writeSeries(file, PICTURES, POINTS);
    writeKnot(alone, POINTS);
    Command each{STRANDVIEW_PROGRAM, "--render", bench.path("alone.png"), alone};
    each.insert(each.end(), look.begin(), look.end());
    std::vector<Rate> rates{{series(bench.path("f%d.png"), file, look), PICTURES, 1},
                            {each, 1, ALONE}};
#ifdef STRANDVIEW_PEER
    if (isTube)
        rates.push_back(
            {{STRANDVIEW_PEER, bench.path("peer.png"), alone, "4", std::to_string(PICTURES)},
             PICTURES,
             1});
#endif
    const std::vector<double> found = picturesPerSecond(rates);
    if (found[0] == 0) {
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
    const std::string file = bench.path("series.txt"), pictures = bench.path("f%d.png");
    const auto run = [&](const std::string& jobs) {
        return [&, jobs] { usageOf(series(pictures, file, {"--jobs", jobs})); };
    };
    const std::vector<double> seconds = medianSeconds({run("1"), run("2")}, ROUNDS);
    bench.table.rate("Two processes, in the time that passes", PICTURES / seconds[1], "one",
                     PICTURES / seconds[0], "pictures/s", 0);
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
    addRates(bench, "Tube and ribbon", {"--ribbon"}, false);
    addRates(bench, "Tube alone", {}, true);
    addJobs(bench);
    addMemory(bench);
    table.print();
}
