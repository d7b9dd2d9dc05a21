// SPDX-License-Identifier: GPL-3.0-or-later
// The processor time of pictures, beside that of a peer.
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "measuring.h"
#include "sampleTables.h"

namespace {

const int ROUNDS = 5;

// A trefoil knot, which covers itself little.
void writeKnot(const std::string& path, int points)
{
    std::ofstream table(path);
    table << std::setprecision(10);
    for (int i = 0; i < points; ++i) {
        const double t = 2 * M_PI * i / (points - 1);
        table << std::sin(t) + 2 * std::sin(2 * t) << ' ' << std::cos(t) - 2 * std::cos(2 * t)
              << ' ' << -std::sin(3 * t) << '\n';
    }
}

using Command = std::vector<std::string>;

double secondsOf(const timeval& time) { return double(time.tv_sec) + 1e-6 * double(time.tv_usec); }

// Of a process and of those that it waited for; negative if it failed.
double processorSeconds(const Command& command)
{
    const pid_t child = fork();
    if (child == 0) {
        std::vector<char*> argv;
        for (const std::string& argument : command)
            argv.push_back(const_cast<char*>(argument.c_str()));
        argv.push_back(nullptr);
        const int nowhere = open("/dev/null", O_WRONLY);
        dup2(nowhere, STDOUT_FILENO);
        dup2(nowhere, STDERR_FILENO);
        execvp(argv[0], argv.data());
        _exit(127);
    }
    int status = 0;
    rusage usage{};
    if (child < 0 || wait4(child, &status, 0, &usage) != child || status != 0)
        return -1;
    return secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime);
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
