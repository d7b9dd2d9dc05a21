// SPDX-License-Identifier: GPL-3.0-or-later
// What a run of strandview costs: a long table, from reading to the picture.
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <string>
#include <vector>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "DataScene.h"
#include "PictureWriter.h"
#include "Progress.h"
#include "SceneBuilder.h"
#include "Style.h"
#include "measuring.h"
#include "readers/readFile.h"

namespace {

const int POINTS = 100000;

// A file that goes with the program.
class TemporaryFile
{
public:
    explicit TemporaryFile(const std::string& ending)
        : path(std::filesystem::temp_directory_path() /
               ("strandview-" + std::to_string(getpid()) + ending))
    {}
    ~TemporaryFile() { std::filesystem::remove(path); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::string path;
};

// A helix with its Frenet frame, whose d3 is the tangent.
void writeTable(const std::string& path, int points)
{
    std::ofstream table(path);
    table << std::setprecision(10);
    const double lay = -std::atan2(1, 0.05) / 2;
    for (int i = 0; i < points; ++i) {
        const double t = 0.1 * i;
        const double c = std::cos(t / 2), s = std::sin(t / 2);
        table << std::cos(t) << ' ' << std::sin(t) << ' ' << 0.05 * t << ' ' << std::sin(lay) * c
              << ' ' << std::sin(lay) * s << ' ' << std::cos(lay) * s << ' ' << std::cos(lay) * c
              << '\n';
    }
}

// Runs strandview in a process of its own; its largest memory in bytes, or a negative number
// if it failed.
double peakMemory(const std::vector<std::string>& arguments)
{
    const pid_t child = fork();
    if (child == 0) {
        std::vector<char*> argv{const_cast<char*>(STRANDVIEW_PROGRAM)};
        for (const std::string& argument : arguments)
            argv.push_back(const_cast<char*>(argument.c_str()));
        argv.push_back(nullptr);
        if (!freopen("/dev/null", "w", stdout) || !freopen("/dev/null", "w", stderr))
            _exit(127);
        execv(STRANDVIEW_PROGRAM, argv.data());
        _exit(127);
    }
    int status = 0;
    rusage usage{};
    if (child < 0 || wait4(child, &status, 0, &usage) != child || status != 0)
        return -1;
    return 1024.0 * double(usage.ru_maxrss);
}

CameraRequest fromAside()
{
    CameraRequest camera;
    camera.side = Side::X;
    return camera;
}

double secondsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

} // namespace

int main()
{
    const TemporaryFile file(".txt"), small("-small.txt"), picture(".png");
    writeTable(file.path, POINTS);
    writeTable(small.path, 3);
    const auto bytes = double(std::filesystem::file_size(file.path));

    Table table("The program",
                "`strandview --render` of a table of 10⁵ points, 7 columns, with the picture's "
                "usual size of 1200 x 900 and one sample per pixel. Drawing is Mesa's software "
                "driver here, without a GPU. Memory is the peak of the process, less that of a "
                "rod of three points; the mesh is all points and normals of the tube and the "
                "ribbon.");

    // Before anything large is here: a process counts what it was forked from.
    const std::vector<std::string> render{"--render", picture.path, "--samples",
                                          "1",        "--view",     "x"};
    auto run = [&](const std::string& name) {
        std::vector<std::string> arguments = render;
        arguments.push_back(name);
        return peakMemory(arguments);
    };
    setenv("GALLIUM_NOOP", "1", 1); // the driver's own memory is not the program's
    const double peak = run(file.path), base = run(small.path);
    unsetenv("GALLIUM_NOOP");
    const double help = medianSeconds({[] { peakMemory({"--help"}); }})[0];

    Configuration data;
    const double reading = medianSeconds({[&] {
        ReadReport report;
        data = *readFile(file.path, {}, report);
    }})[0];
    table.compare("Reading", 1e9 * reading / bytes, "limit: 50 MB/s", 20, "ns/byte",
                  Table::Goal::AtLeast, 1);

    initialiseScene();
    Progress progress;
    std::string error;
    const Style style = makeStyle({}, data);
    auto start = std::chrono::steady_clock::now();
    DataScene* scene = buildScene(data, style, nullptr, progress, error);
    scene->ref();
    const double building = secondsSince(start);
    start = std::chrono::steady_clock::now();
    const std::string failure =
        writePicture(scene, {picture.path, 1200, 900, 1, {1, 1, 1}, false, fromAside(), 0});
    const double drawing = secondsSince(start);
    scene->unref();
    if (!failure.empty()) {
        table.missing("The whole run", failure);
    } else {
        table.compare("Reading and building, of the whole run", 1e3 * (reading + building),
                      "drawing and writing", 1e3 * drawing, "ms", Table::Goal::AtMost, 1);
        table.compare("Building alone", 1e3 * building, "drawing and writing", 1e3 * drawing, "ms",
                      Table::Goal::None, 0);
    }

    const double rows = double(POINTS - 1) * style.subsegments + 1;
    const double mesh = rows * (style.slices + 1 + 2) * 64;
    if (peak < 0 || base < 0)
        table.missing("Peak memory", "strandview failed");
    else
        table.compare("Peak memory", (peak - base) / 1e6, "the mesh", mesh / 1e6, "MB",
                      Table::Goal::AtMost, 3);

    table.limit("strandview --help", 1e3 * help, "ms", 50);
    table.print();
    return 0;
}
