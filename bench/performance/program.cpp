// SPDX-License-Identifier: GPL-3.0-or-later
// What a run of strandview costs: a long table, from reading to the picture.
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <QImage>
#include <sys/wait.h>
#include <unistd.h>

#include <strandview/formats/readFile.h>

#include "measuring.h"
#include "pictures/PictureWriter.h"
#include "sampleTables.h"
#include "scene/DataScene.h"
#include "scene/Progress.h"
#include "scene/SceneBuilder.h"
#include "scene/Style.h"
#include "temporary.h"

using namespace strandview;

namespace {

const int POINTS = 100000, LONG_POINTS = 1000000;

// Of strandview in a process of its own, in bytes; negative if it failed.
double peakMemory(const std::vector<std::string>& arguments)
{
    std::vector<std::string> command{STRANDVIEW_PROGRAM};
    command.insert(command.end(), arguments.begin(), arguments.end());
    const std::optional<Usage> usage = usageOf(command);
    return usage ? usage->peakMemory : -1;
}

CameraRequest fromAside()
{
    CameraRequest camera;
    camera.side = Side::X;
    return camera;
}

// The seconds of what a run does, in the memory of a fresh process.
struct Phases
{
    double reading, building, drawing, writing;
};

// What strandview does, with a clock; false if anything fails.
bool measurePhases(const std::string& file, const std::string& picture, Phases& phases)
{
    Configuration data;
    phases.reading = secondsOf([&] {
        ReadReport report;
        data = *readFile(file, {}, report);
    });
    initialiseScene();
    const Style style = makeStyle({}, data);
    TerminalProgress progress;
    std::string error;
    DataScene* scene = nullptr;
    phases.building = secondsOf([&] {
        scene = buildScene(data, style, nullptr, progress, error);
        scene->ref();
    });
    std::string failure;
    const double both = secondsOf([&] {
        failure = writePicture(scene, {picture, 1200, 900, 1, {1, 1, 1}, false, fromAside(), 0});
    });
    const QImage image(QString::fromStdString(picture));
    phases.writing = secondsOf([&] { failure += saveImage(image, picture); });
    phases.drawing = both - phases.writing;
    return failure.empty();
}

// The same in a process of its own; false if anything fails.
bool measurePhasesAfresh(const std::string& file, const std::string& picture, Phases& phases)
{
    int ends[2];
    if (pipe(ends) != 0)
        return false;
    const pid_t child = fork();
    if (child == 0) {
        const bool done = measurePhases(file, picture, phases) &&
                          write(ends[1], &phases, sizeof phases) == ssize_t(sizeof phases);
        _exit(done ? 0 : 1);
    }
    close(ends[1]);
    const bool told = read(ends[0], &phases, sizeof phases) == ssize_t(sizeof phases);
    close(ends[0]);
    int status = 1;
    return child > 0 && waitpid(child, &status, 0) == child && status == 0 && told;
}

// What a large picture takes beyond a tiny one of the same scene.
void addLargePicture(Table& table, const std::string& name, const std::string& scene,
                     const std::string& picture, const std::vector<std::string>& how,
                     double pictureBytes)
{
    std::vector<std::string> large{"--render", picture, scene};
    large.insert(large.end(), how.begin(), how.end());
    const double peak = peakMemory(large);
    const double base =
        peakMemory({"--render", picture, scene, "--size", "16x16", "--samples", "1"});
    if (peak < 0 || base < 0)
        table.missing(name, "strandview failed");
    else
        table.compare(name, (peak - base) / 1e6, "the finished picture twice and 200 MB",
                      (2 * pictureBytes + 200e6) / 1e6, "MB", Table::Goal::AtMost, 1);
}

void addProfile(Table& table, const std::string& file, const std::string& picture,
                const std::function<double()>& runWhole)
{
    std::vector<double> reading, building, drawing, writing, whole;
    for (int i = 0; i < 7; ++i) {
        Phases phases{};
        double memory = -1;
        const double seconds = secondsOf([&] { memory = runWhole(); });
        if (memory < 0 || !measurePhasesAfresh(file, picture, phases)) {
            table.missing("The whole run", "strandview or OpenGL cannot run");
            return;
        }
        reading.push_back(phases.reading);
        building.push_back(phases.building);
        drawing.push_back(phases.drawing);
        writing.push_back(phases.writing);
        whole.push_back(seconds);
    }
    const double before = median(reading) + median(building);
    const double after = median(drawing) + median(writing);
    table.value("The whole run", 1e3 * median(whole), "ms");
    table.value("– reading the table", 1e3 * median(reading), "ms");
    table.value("– building the meshes", 1e3 * median(building), "ms");
    table.value("– drawing, OpenGL's start included", 1e3 * median(drawing), "ms");
    table.value("– writing the PNG", 1e3 * median(writing), "ms");
    table.compare("Reading and building", 1e3 * before, "drawing and writing", 1e3 * after, "ms",
                  Table::Goal::AtMost, 1);
}

// All points and normals of the tube and the ribbon.
double meshBytes(int points, const Style& style)
{
    const double rows = double(points - 1) * style.subsegments + 1;
    return rows * (style.slices + 1 + 2) * 64;
}

Style styleOf(const std::string& file)
{
    ReadReport report;
    return makeStyle({}, *readFile(file, {}, report));
}

} // namespace

int main()
{
    const TemporaryFile file(".txt"), longFile("-long.txt"), small("-small.txt"), picture(".png");
    writeHelix(file.path, POINTS);
    writeHelix(longFile.path, LONG_POINTS);
    writeHelix(small.path, 3);
    const auto bytes = double(std::filesystem::file_size(file.path));

    Table table(
        "The program",
        "Where the time of `strandview --render` goes, and its memory: a table of 10⁵ "
        "points, 7 columns,\nthe picture's usual size of 1200 x 900 and one sample per "
        "pixel, in a fresh process. Drawing is\nMesa's software driver here, without a "
        "GPU. Memory is the peak of the process, less that of a rod\nof three points; the "
        "mesh is all points and normals of the tube and the ribbon.\nThat of large pictures "
        "is less that of 16 x 16 pixels of the same rod.");

    // Before anything large is here: a process counts what it was forked from.
    const std::vector<std::string> render{"--render", picture.path, "--samples",
                                          "1",        "--view",     "x"};
    auto run = [&](const std::string& name) {
        std::vector<std::string> arguments = render;
        arguments.push_back(name);
        return peakMemory(arguments);
    };
    setenv("GALLIUM_NOOP", "1", 1); // the driver's own memory is not the program's
    const double peak = run(file.path), base = run(small.path), longPeak = run(longFile.path);
    unsetenv("GALLIUM_NOOP");
    const double drivenPeak = run(longFile.path), drivenBase = run(small.path);
    addLargePicture(table, "Peak memory of 4000 x 3000 pixels of 49 samples", small.path,
                    picture.path, {"--size", "4000x3000", "--samples", "7"}, 3.0 * 4000 * 3000);
    addLargePicture(table, "Peak memory of 10000 x 10000 transparent pixels", small.path,
                    picture.path, {"--size", "10000x10000", "--transparent"}, 4e8);
    const double help = medianSeconds({[] { peakMemory({"--help"}); }})[0];

    addProfile(table, file.path, picture.path, [&] { return run(file.path); });

    Configuration data;
    const double reading = medianSeconds({[&] {
        ReadReport report;
        data = *readFile(file.path, {}, report);
    }})[0];
    table.compare("Reading", 1e9 * reading / bytes, "limit: 50 MB/s", 20, "ns/byte",
                  Table::Goal::AtLeast, 1);

    const Style style = makeStyle({}, data);
    const double mesh = meshBytes(POINTS, style);
    const double longMesh = meshBytes(LONG_POINTS, styleOf(longFile.path));
    if (peak < 0 || base < 0 || longPeak < 0 || drivenPeak < 0 || drivenBase < 0) {
        table.missing("Peak memory", "strandview failed");
    } else {
        table.compare("Peak memory", (peak - base) / 1e6, "the mesh", mesh / 1e6, "MB",
                      Table::Goal::AtMost, 3);
        table.compare("Peak memory, 10⁶ points", (longPeak - base) / 1e6, "the mesh",
                      longMesh / 1e6, "MB", Table::Goal::AtMost, 2);
        table.compare("Peak memory, 10⁶ points, the driver's included",
                      (drivenPeak - drivenBase) / 1e6, "the mesh", longMesh / 1e6, "MB",
                      Table::Goal::AtMost, 2.5);
    }

    table.limit("strandview --help", 1e3 * help, "ms", 50);
    table.print();
    return 0;
}
