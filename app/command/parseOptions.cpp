// SPDX-License-Identifier: GPL-3.0-or-later
#include "command/parseOptions.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iostream>
#include <limits>
#include <set>
#include <sstream>

#include <CLI/CLI.hpp>

#include <strandview/formats/formats.h>
#include <strandview/formats/text/wording.h>

#include "command/optionNames.h"
#include "request/ExitStatus.h"
#include "request/defaults.h"
#include "request/limits.h"
#include "request/parseNumber.h"
#include "request/settings.h"
#include "request/thingTexts.h"
#include "request/wording.h"
#include "request/writeCommand.h"
#include "session/sessionFile.h"

namespace strandview {

namespace {

// What the look of a picture does not depend on.
const std::set<std::string> NOT_OF_LOOK{
    "render", "frame", "frames", "series", "shard",  "overwrite", "list-frames", "print-camera",
    "jobs",   "fps",   "cache",  "turn",   "follow", "watch",     "beside",      "no-defaults"};

// What is done instead of opening a window.
const char* const WITHOUT_WINDOW[] = {"--render", "--export", "--info", "--list-scalars"};

// What the window does not change: how the files are read.
const std::set<std::string> OF_READING{"normalise", "closed",  "frame-rows", "series",
                                       "align",     "between", "pairs"};

// The largest picture of the same shape.
std::string fittingSize(int width, int height)
{
    const double scale = std::min({1.0, LARGEST_PICTURE_SIDE / double(std::max(width, height)),
                                   std::sqrt(double(LARGEST_PIXEL_COUNT) / width / height)});
    const auto side = [scale](int pixels) {
        return std::to_string(std::max(1, int(scale * pixels)));
    };
    return side(width) + "x" + side(height);
}

void addSize(CLI::App& app, Options& options)
{
    const auto parse = [&options](const std::string& text) {
        options.paperSize = parsePaperSize(text);
        if (options.paperSize) // its pixels depend on --dpi
            return;
        const auto pixels = parsePixels(text);
        const std::string refusal =
            found(text, "WxH or, in millimetres, WxHmm, " + wordsOfPictureSize());
        if (!pixels)
            throw CLI::ValidationError("--size", refusal);
        const auto [width, height] = *pixels;
        if (!isPictureSize(width, height))
            throw CLI::ValidationError("--size",
                                       refusal + ": " + fittingSize(width, height) + " fits");
        options.pictureWidth = width;
        options.pictureHeight = height;
        options.windowSize = {width, height};
    };
    app.add_option_function<std::string>(
           "--size", parse,
           "Size of the picture in pixels [1200x900], or on paper: 85x60mm; or of the window in "
           "pixels [as it was]")
        ->type_name("WxH[mm]");
}

// Of a picture that was asked for in millimetres, its pixels.
void settleSize(Options& options)
{
    if (!options.paperSize)
        return;
    const PaperSize& paper = *options.paperSize;
    const std::string found = "found '" + paper.text + "'";
    if (!options.picture)
        throw CLI::ValidationError("--size", found + " without --render, expected pixels, WxH");
    if (!options.dpi)
        options.dpi = DPI_ON_PAPER;
    const double width = pixelsOf(paper.width, *options.dpi);
    const double height = pixelsOf(paper.height, *options.dpi);
    if (!isPictureSize(width, height)) {
        std::string refusal = found + " at --dpi " + std::to_string(*options.dpi) + ": " +
                              formatted(width) + " x " + formatted(height) + " pixels, expected " +
                              wordsOfPictureSize();
        int fitting = *options.dpi;
        while (fitting >= SMALLEST_DPI &&
               !isPictureSize(pixelsOf(paper.width, fitting), pixelsOf(paper.height, fitting)))
            --fitting;
        if (fitting >= SMALLEST_DPI)
            refusal += ": --dpi " + std::to_string(fitting) + " fits";
        throw CLI::ValidationError("--size", refusal);
    }
    options.pictureWidth = int(width);
    options.pictureHeight = int(height);
}

template <typename Target>
CLI::Option* addCount(CLI::App& app, const std::string& name, Target& count, int smallest,
                      int largest, const std::string& help)
{
    const auto parse = [=, &count](const std::string& text) {
        const std::optional<int> value = parseNumber<int>(text);
        if (!value || *value < smallest || *value > largest) {
            throw CLI::ValidationError(name, found(text, "a whole number from " +
                                                             std::to_string(smallest) + " to " +
                                                             std::to_string(largest)));
        }
        count = *value;
    };
    return app.add_option_function<std::string>(name, parse, help)->type_name("N");
}

// Text that `parse` makes a value of, or that is told as found where something was expected.
template <typename Value, typename Target>
CLI::Option* addParsed(CLI::App& app, const std::string& name, Target& target,
                       std::optional<Value> (*parse)(const std::string& text),
                       const std::string& expected, const std::string& help)
{
    return app.add_option_function<std::string>(
        name,
        [name, &target, parse, expected](const std::string& text) {
            const std::optional<Value> value = parse(text);
            if (!value)
                throw CLI::ValidationError(name, found(text, expected));
            target = *value;
        },
        help);
}

std::optional<double> parseWithin(const std::string& text, double least, double most)
{
    const std::optional<double> number = parseNumber<double>(text);
    return number && *number >= least && *number <= most ? number : std::nullopt;
}

std::optional<double> parseElevation(const std::string& text) { return parseWithin(text, -90, 90); }

std::optional<double> parseZoom(const std::string& text)
{
    return parseWithin(text, SMALLEST_ZOOM, LARGEST_ZOOM);
}

std::optional<double> parseMargin(const std::string& text)
{
    return parseWithin(text, 0, LARGEST_MARGIN);
}

// Whence and how large a view is, which a whole camera tells itself.
void addFraming(CLI::App& app, CameraRequest& request, CLI::Option* camera)
{
    CLI::Option* const all[] = {
        addParsed(app, "--up", request.up, &parseDirection,
                  "a direction x,y,z, or one of x -x y -y z -z",
                  "What is up in the picture, in the data's coordinates: z, -x, 1,0,1 [z, or y "
                  "from the sides of z]")
            ->type_name("X,Y,Z"),
        addParsed(app, "--azimuth", request.azimuth, &parseNumber<double>, "a number of degrees",
                  "How far the camera goes around what is up, anticlockwise as seen from above: "
                  "from --view, or without it from the front, -y if z is up [0]")
            ->type_name("DEGREES"),
        addParsed(app, "--elevation", request.elevation, &parseElevation,
                  "a number of degrees from -90 to 90",
                  "How far above the horizon the camera is, -90 to 90 [as --view is]")
            ->type_name("DEGREES"),
        addParsed(app, "--zoom", request.zoom, &parseZoom, "a number from 0.001 to 1000000",
                  "How many times as large as what just fits things are drawn [1]")
            ->type_name("FACTOR"),
        addParsed(app, "--centre", request.centre, &parsePoint,
                  "a point x,y,z in the data's coordinates",
                  "The point, in the data's coordinates, in the middle of the picture [all of it "
                  "is to be seen]")
            ->type_name("X,Y,Z"),
        addParsed(app, "--margin", request.margin, &parseMargin, "a number from 0 to 0.4",
                  "How much is free at each border, as a part of the picture's shorter side [about "
                  "0.024: the picture is 1.05 times as wide or high as what it shows]")
            ->type_name("PART")};
    for (CLI::Option* const option : all)
        option->excludes(camera)->group("Camera");
}

void addCamera(CLI::App& app, Options& options)
{
    const std::string group = "Camera";
    const auto parseSide = [&options](const std::string& text) {
        const auto* named = std::find_if(SIDES.begin(), SIDES.end(),
                                         [&text](const NamedSide& s) { return text == s.name; });
        if (named == SIDES.end()) {
            throw CLI::ValidationError("--view", found(text, "one of x -x y -y z -z"));
        }
        options.camera.side = named->side;
    };
    CLI::Option* view =
        app.add_option_function<std::string>(
               "--view", parseSide,
               "The side that it is seen from: x, -x, y, -y, z or -z [along the shortest side of "
               "its box]")
            ->type_name("SIDE")
            ->group(group);
    CLI::Option* perspective = app.add_flag("--perspective", options.camera.perspective,
                                            "What is far away is smaller [orthographic]")
                                   ->group(group);
    const auto parseNumbers = [&options](const std::string& text) {
        std::string expected;
        options.camera.numbers = parseCamera(text, &expected);
        if (!options.camera.numbers)
            throw CLI::ValidationError("--camera", found(text, expected));
    };
    CLI::Option* camera =
        app.add_option_function<std::string>("--camera", parseNumbers,
                                             "Exactly the camera that --print-camera told")
            ->type_name("NUMBERS")
            ->excludes(view)
            ->excludes(perspective)
            ->group(group);
    addFraming(app, options.camera, camera);
    app.add_flag("--print-camera", options.printCamera, "Print the last camera, for --camera")
        ->group(group);
}

void addMeasurements(CLI::App& app, Options& options)
{
    const auto read = [&options](const std::vector<std::string>& texts) {
        options.measurements.clear();
        for (const std::string& text : texts) {
            const std::optional<Measurement> measurement = parseNamedMeasurement(text);
            if (!measurement)
                throw CLI::ValidationError(
                    "--measure",
                    found(text, "places with commas between them, such as 'rod "
                                "1:0,rod 1:10', or what is measured before them, such as "
                                "'angle rod 1:0,rod 1:5,rod 1:10'"));
            options.measurements.push_back(*measurement);
        }
    };
    app.add_option_function<std::vector<std::string>>(
           "--measure", read,
           "Draw what is measured between places into the picture, keep it in the window, or tell "
           "it with --info: 'rod 1:0,rod 1:10' is a distance, 'DNA 1:1,DNA 1:8,DNA 1:15' an angle; "
           "or with 'arc length', 'rotation' or 'dihedral angle' before the places; 'as NAME' "
           "behind them gives it a name; repeatable")
        ->type_name("WHAT")
        ->allow_extra_args(false);
}

void addWindowPicture(CLI::App& app, CLI::Option* render, Options& options)
{
    const auto parse = [&options](const std::vector<std::string>& texts) {
        const std::optional<double> seconds = parseNumber<double>(texts[0]);
        if (!seconds || *seconds < 0 || *seconds > 1e6) {
            throw CLI::ValidationError("--screenshot-after", found(texts[0], "seconds from 0 on"));
        }
        options.windowPictureAfter = *seconds;
        options.windowPicture = texts[1];
    };
    app.add_option_function<std::vector<std::string>>(
           "--screenshot-after", parse,
           "Write a picture of the whole window after so many seconds, once it is "
           "painted, and end")
        ->type_name("SECONDS OUT.png")
        ->expected(2)
        ->allow_extra_args(false)
        ->excludes(render);
}

void addBeside(CLI::App& app, Options& options)
{
    const auto read = [&options](const std::vector<std::string>& what) {
        if (what.size() > BesideRequest::MOST)
            throw CLI::ValidationError("--beside", "found " + std::to_string(what.size()) +
                                                       " further views, expected up to " +
                                                       std::to_string(BesideRequest::MOST));
        options.beside = besideOf(what);
    };
    CLI::Option* beside =
        app.add_option_function<std::vector<std::string>>(
               "--beside", read,
               "Show FILE, the first frame of the series, or the same from another side in a "
               "further view of the window; up to three times")
            ->type_name("FILE|first|same")
            ->allow_extra_args(false);
    for (const char* other : WITHOUT_WINDOW)
        beside->excludes(app.get_option(other));
}

void addWatch(CLI::App& app, Options& options)
{
    CLI::Option* watch = app.add_flag("--watch", options.watch,
                                      "Read the files again in the window whenever they change");
    for (const char* other : WITHOUT_WINDOW)
        watch->excludes(app.get_option(other));
}

// "Tables (.txt .dat), JSON (.json)".
std::string namedFormats()
{
    std::string text;
    for (const Format& format : formats())
        text += (text.empty() ? "" : ", ") + format.name + " (" + endingsOf(format) + ")";
    return text;
}

void addInfo(CLI::App& app, CLI::Option* render, Options& options)
{
    CLI::Option* info =
        app.add_flag("--info", options.info, "Tell what was found instead of showing it")
            ->excludes(render)
            ->excludes(app.get_option("--screenshot-after"))
            ->excludes(app.get_option("--export"));
    app.add_flag("--list-scalars", options.listScalars,
                 "Tell the scalars that --colour-by, --plot and --export OUT.csv know: name, unit, "
                 "meaning, range in one frame")
        ->excludes(render)
        ->excludes(info)
        ->excludes(app.get_option("--screenshot-after"))
        ->excludes(app.get_option("--export"));
    app.add_flag("--json", options.asJson, "Tell it as JSON, for scripts");
    app.add_flag(
        "--all-numbers", options.allNumbers,
        "Tell or export writhe and links of any number of points, too [what takes seconds]");
}

// What is read and written.
void addFiles(CLI::App& app, Options& options)
{
    app.add_option("FILE", options.files,
                   namedFormats() + ", or others known by their content; - is standard input");
    CLI::Option* render =
        app.add_option("--render", options.picture,
                       "Write a picture instead of opening a window; with %d or %05d in the name, "
                       "one of every frame; .mp4, .webm and .gif are films")
            ->type_name("OUT.png");
    addSize(app, options);
    addCount(app, "--dpi", options.dpi, SMALLEST_DPI, LARGEST_DPI,
             "Pixels per inch of a picture's millimetres [300], which its file tells programs that "
             "print it [100 of a size in pixels]")
        ->needs(render);
    addCount(app, "--samples", options.samples, 1, MOST_SAMPLES,
             "Smooth edges: N x N samples per pixel [3]")
        ->needs(render);
    app.add_flag("--transparent", options.transparent, "Leave the picture's background out")
        ->needs(render);
    addWindowPicture(app, render, options);
    app.add_option(
           "--export", options.exportFile,
           "Write the data instead, as JSON or, with all scalars, as a table .csv: all frames "
           "of a file, or that of --frame; - is standard output, JSON")
        ->type_name("OUT")
        ->excludes(render);
    app.add_flag("--normalise", options.normalise,
                 "Accept quaternions and directors that are not unit and normalise them");
    addInfo(app, render, options);
    addMeasurements(app, options);
    addBeside(app, options);
    addWatch(app, options);
    app.add_flag("--closed", options.closed,
                 "Close every rod whose ends are apart by one more element [what files close]");
}

std::optional<bool> parsePairs(const std::string& text)
{
    return text == "first" || text == "frame" ? std::optional(text == "frame") : std::nullopt;
}

std::optional<double> parseRate(const std::string& text)
{
    const std::optional<double> rate = parseNumber<double>(text);
    return rate && *rate >= 0.01 && *rate <= 1000 ? rate : std::nullopt;
}

std::optional<std::vector<std::string>> parseNames(const std::string& text)
{
    std::vector<std::string> names;
    std::istringstream parts(text + ",");
    for (std::string name; std::getline(parts, name, ',');) {
        if (name.empty() || std::count(names.begin(), names.end(), name) > 0)
            return std::nullopt;
        names.push_back(name);
    }
    return names;
}

std::optional<PlotAxis> parsePlotAxis(const std::string& text)
{
    if (text == "arclength")
        return PlotAxis::ARC_LENGTH;
    if (text == "number")
        return PlotAxis::NUMBER;
    return text == "time" ? std::optional(PlotAxis::TIME) : std::nullopt;
}

void addPlot(CLI::App& app, Options& options)
{
    const std::string group = "Plots";
    CLI::Option* plot = app.add_option("--plot", options.plot.file,
                                       "Write curves of numbers instead: .svg, .pdf or .png")
                            ->type_name("OUT.svg")
                            ->group(group);
    for (const char* other :
         {"--render", "--export", "--info", "--list-scalars", "--screenshot-after", "--list-frames",
          "--turn", "--watch", "--beside"})
        plot->excludes(app.get_option(other));
    addParsed(app, "--scalars", options.plot.scalars, &parseNames,
              "different names with commas between them",
              "What is plotted, a panel each: names as for --colour-by [curvature and kappa3 of "
              "rods, roll and twist of DNA]; against time length, endToEnd, radiusOfGyration, "
              "contact, writhe, gaussIntegral, twist and others")
        ->type_name("NAME,...")
        ->needs(plot)
        ->group(group);
    addParsed(app, "--against", options.plot.against, &parsePlotAxis, "arclength, number or time",
              "Over arclength, the number of the point or pair, or the time of the frames "
              "[arclength of rods, number of pairs]")
        ->type_name("WHAT")
        ->needs(plot)
        ->group(group);
    addCount(app, "--at", options.plot.at, 0, std::numeric_limits<int>::max(),
             "Against time: the scalars of one place, the point of this number from 0, or the "
             "pair from 1")
        ->needs(plot)
        ->group(group);
}

// The frames of a series.
void addSeries(CLI::App& app, Options& options)
{
    const std::string group = "Series";
    SeriesRequest& series = options.series;
    CLI::Option* render = app.get_option("--render");
    addCount(app, "--frame", options.frame, 0, std::numeric_limits<int>::max(),
             "The frame of a series, counted from 0 [0]")
        ->group(group);
    addParsed(app, "--frames", series.frames, &parseFrameSlice,
              "a slice A:B or A:B:STEP; --frame takes one",
              "The frames to render, as Python slices a list [all of them]")
        ->type_name("A:B:STEP")
        ->group(group);
    app.add_flag("--series", series.isOfFiles,
                 "Each file is a frame, in the order of their numbers; a folder is its files")
        ->excludes(app.get_option("--info"))
        ->excludes(app.get_option("--list-scalars"))
        ->group(group);
    addParsed(app, "--shard", series.shard, &parseShard, "i/n with 0 <= i < n",
              "Render only every n-th of the frames, from the i-th on, counted from 0")
        ->type_name("i/n")
        ->needs(render)
        ->group(group);
    app.add_flag("--overwrite", series.overwrite,
                 "Also render pictures that are there, made from the same")
        ->needs(render)
        ->group(group);
    addParsed(app, "--pairs", series.ownPairs, &parsePairs, "first or frame",
              "Which nucleotides are pairs in all frames: those of the first, or in each frame its "
              "own [first]")
        ->type_name("WHICH")
        ->group(group);
    app.add_flag("--stamp", series.stamp, "Write frame and time into the picture")
        ->needs(render)
        ->group(group);
    app.add_flag("--align", series.align,
                 "Superpose each frame on the first: the least squares of all points")
        ->group(group);
    addCount(app, "--turn", series.turn, 1, 1'000'000,
             "So many pictures around one frame, the first or that of --frame, while the camera "
             "goes round it once to the right; --frames takes some of them")
        ->group(group);
    addCount(app, "--between", series.between, 0, 1000,
             "So many more frames between each two: points go straight, rotations turn [0]")
        ->group(group);
    addCount(app, "--frame-rows", options.frameRows, 1, std::numeric_limits<int>::max(),
             "Every N rows of a table are a frame; 1 for rows t x1 y1 z1 x2 ... without a header "
             "[blank lines and times tell]")
        ->group(group);
    addCount(app, "--jobs", series.jobs, 0, 1000,
             "Render pictures with so many processes, or 0 for one per core [1]")
        ->needs(render)
        ->group(group);
    addParsed(app, "--fps", series.framesPerSecond, &parseRate, "a number from 0.01 to 1000",
              "Frames per second of a film or of playing [25]")
        ->type_name("N")
        ->group(group);
    app.add_flag("--follow", series.follow,
                 "Show the last frame of a file that is still written to, and those to come")
        ->excludes(render)
        ->excludes(app.get_option("--export"))
        ->excludes(app.get_option("--info"))
        ->excludes(app.get_option("--list-scalars"))
        ->excludes(app.get_option("--series"))
        ->group(group);
    addCount(app, "--cache", series.cacheMegabytes, 1, 1'000'000,
             "Memory for the frames that a window keeps, in MB [256]")
        ->excludes(render)
        ->group(group);
    app.add_flag("--list-frames", series.listFrames,
                 "Print what would be rendered: number, time and name of each frame")
        ->excludes(app.get_option("--info"))
        ->excludes(app.get_option("--list-scalars"))
        ->excludes(app.get_option("--export"))
        ->excludes(app.get_option("--screenshot-after"))
        ->excludes(app.get_option("--watch"))
        ->excludes(app.get_option("--beside"))
        ->group(group);
}

// {"--frame-rows", "3", "--closed"}.
std::vector<std::string> argumentsOfReading(const CLI::App& app)
{
    std::vector<std::string> arguments;
    for (const CLI::Option* option : app.get_options({})) {
        const std::string name = option->get_lnames().empty() ? "" : option->get_lnames().front();
        if (option->count() == 0 || OF_READING.count(name) == 0)
            continue;
        arguments.push_back("--" + name);
        if (option->get_items_expected_max() > 0) {
            for (const std::string& value : option->results())
                arguments.push_back(value);
        }
    }
    return arguments;
}

// What the look of a picture depends on: options with their values, but for those that say which
// pictures are made and where.
std::string lookOf(const CLI::App& app, const Options& options)
{
    std::string text;
    for (const CLI::Option* option : app.get_options({})) {
        if (option->count() == 0 || option->get_lnames().empty())
            continue;
        const std::string& name = option->get_lnames().front();
        if (NOT_OF_LOOK.count(name) > 0)
            continue;
        text += "--" + name;
        for (const std::string& value : option->results())
            text += " " + value;
        text += "\n";
    }
    if (options.hasDefaults)
        for (const std::string& argument : argumentsOf(options))
            text += argument + "\n";
    return text;
}

void addDefaults(CLI::App& app, Options& options)
{
    CLI::Option* save = app.add_flag(
        "--save-defaults", options.saveDefaults,
        "Keep the look that the other options tell for later starts: in defaults.conf in the "
        "folder strandview of $XDG_CONFIG_HOME, or of ~/.config");
    for (const char* other : {"--render", "--export", "--info", "--list-scalars", "--plot",
                              "--list-frames", "--screenshot-after"})
        save->excludes(app.get_option(other));
    app.add_flag("--no-defaults", "Leave that file aside")->excludes(save);
}

// Before all options: what they say comes after that. One line about a fault there, or nothing.
std::string beginWithDefaults(const std::vector<std::string>& arguments, const std::string& file,
                              Options& options)
{
    const auto end = std::find(arguments.begin(), arguments.end(), "--");
    const auto has = [&](const char* name) {
        return std::find(arguments.begin(), end, name) != end;
    };
    if (file.empty() || has("--no-defaults") || has("--save-defaults"))
        return "";
    const std::string fault = readDefaults(file, options);
    options.hasDefaults = options != StyleRequest();
    return fault.empty() ? "" : fault + "; --no-defaults leaves the file aside";
}

void addSetting(CLI::App& app, const Setting& setting, StyleRequest& request)
{
    const std::string name = "--" + std::string(setting.name);
    const auto check = [name](const std::string& fault) {
        if (!fault.empty())
            throw CLI::ValidationError(name, fault);
    };
    const auto read = [&setting, &request, check](const std::string& text) {
        check(setting.read(text, request));
    };
    // To what is said already, of these or of others.
    const auto addThings = [&request, check](const std::vector<std::string>& texts) {
        check(readThings(texts, request.things));
    };
    CLI::Option* option = nullptr;
    if (setting.kind == SettingKind::SWITCH)
        option = app.add_flag_function(
            name + ",!--no-" + setting.name,
            [read](std::int64_t count) { read(count > 0 ? "on" : "off"); }, setting.help);
    else if (setting.kind == SettingKind::THINGS)
        option = app.add_option_function<std::vector<std::string>>(name, addThings, setting.help)
                     ->type_name(setting.values)
                     ->allow_extra_args(false);
    else
        option = app.add_option_function<std::string>(name, read, setting.help)
                     ->type_name(setting.values);
    option->group(setting.group);
    // A session or defaults may say it already.
    for (const Setting* of = &setting; !of->neededSetting.empty();) {
        of = &settingOf(of->neededSetting);
        if (!of->write(request))
            option->needs(app.get_option("--" + std::string(of->name)));
    }
}

// The command line with the names of its options as they are spelt here.
std::vector<std::string> inOwnSpelling(int argc, const char* const* argv)
{
    std::vector<std::string> arguments;
    bool areNames = true; // up to --
    for (int i = 0; i < argc; ++i) {
        areNames = areNames && std::string(argv[i]) != "--";
        arguments.push_back(areNames && i > 0 ? inBritishSpelling(argv[i]) : argv[i]);
    }
    return arguments;
}

void parseArguments(CLI::App& app, const std::vector<std::string>& arguments)
{
    std::vector<const char*> texts;
    for (const std::string& argument : arguments)
        texts.push_back(argument.c_str());
    app.parse(int(texts.size()), texts.data());
}

// What says of which pictures a series is made needs one.
void checkForSeries(const Options& options)
{
    if (options.picture || options.series.listFrames || options.plot.file)
        return;
    for (const char* name : {"--frames", "--turn"})
        if (std::count(options.given.begin(), options.given.end(), name) > 0)
            throw CLI::ValidationError(name,
                                       "found neither --render nor --list-frames, expected one");
}

// What is up cannot be nearer or farther.
void checkForCamera(const CameraRequest& camera)
{
    if (camera.up && camera.side && isAlong(*camera.up, *camera.side))
        throw CLI::ValidationError("--up",
                                   "found the direction of --view, expected one across that");
}

// What says how something is told needs it.
void checkForTold(const Options& options)
{
    const bool isTold = options.info || options.listScalars;
    if (options.asJson && !isTold)
        throw CLI::ValidationError("--json",
                                   "found neither --info nor --list-scalars, expected one");
    if (options.allNumbers && !isTold && !options.exportFile)
        throw CLI::ValidationError(
            "--all-numbers", "found none of --info, --list-scalars and --export, expected one");
}

// What says what is plotted against time, and when.
void checkForPlot(const Options& options)
{
    const PlotRequest& plot = options.plot;
    const bool isOverTime = plot.against == PlotAxis::TIME;
    if (plot.at && !isOverTime)
        throw CLI::ValidationError("--at", "found no --against time, expected it");
    if (plot.file && options.series.frames && !isOverTime)
        throw CLI::ValidationError("--frames", "found no --against time, expected it");
    if (plot.file && options.frame && isOverTime)
        throw CLI::ValidationError("--frame", "found --against time, expected --frames");
}

// Every name with its two dashes.
std::vector<std::string> namesOfOptions(const CLI::App& app)
{
    std::vector<std::string> names;
    for (const CLI::Option* option : app.get_options({})) {
        for (const std::string& name : option->get_lnames())
            names.push_back("--" + name);
    }
    return names;
}

// The first name of each option that the command line has, but what always has its effect.
std::vector<std::string> givenOptions(const CLI::App& app)
{
    std::vector<std::string> names;
    for (const CLI::Option* option : app.get_options({})) {
        if (option->count() > 0 && !option->get_lnames().empty() &&
            option->get_lnames().front() != "no-defaults")
            names.push_back("--" + option->get_lnames().front());
    }
    return names;
}

// One line about an option that there is not, with what may have been meant.
std::string unknownOption(const CLI::App& app, const std::string& argument)
{
    const std::string written = argument.substr(0, argument.find('='));
    std::string text = "found the option " + inQuotes(written) + ", expected one of --help";
    const std::vector<std::string> nearest =
        nearestNames(inBritishSpelling(written), namesOfOptions(app));
    for (std::size_t i = 0; i < nearest.size(); ++i)
        text += (i == 0 ? "; did you mean " : " or ") + nearest[i];
    return text + (nearest.empty() ? "" : "?");
}

// One line about the first option that has too few or too many values, or nothing.
std::string wrongCount(const CLI::App& app)
{
    for (const CLI::Option* option : app.get_options({})) {
        const int count = int(option->count());
        const int least = option->get_items_expected_min();
        const int most = option->get_items_expected_max();
        if (count > 0 && (count < least || count > most)) {
            return option->get_name() + ": found " + counted(std::size_t(count), "value") +
                   ", expected " + std::to_string(count < least ? least : most);
        }
    }
    return "";
}

// What is wrong with the command line. A misspelt name comes first: it can be the cause of
// all else.
std::string explain(const CLI::App& app, const CLI::ParseError& error, int argc,
                    const char* const* argv)
{
    for (const std::string& argument : app.remaining()) {
        if (argument == "--")
            continue;
        const auto isWritten = [&argument](const char* written) {
            return inBritishSpelling(written) == argument;
        };
        const auto written = std::find_if(argv, argv + argc, isWritten);
        return unknownOption(app, written == argv + argc ? argument : *written);
    }
    const bool isMismatch = dynamic_cast<const CLI::ArgumentMismatch*>(&error);
    const std::string mismatch = isMismatch ? wrongCount(app) : "";
    return mismatch.empty() ? error.what() : mismatch;
}

// Whether it is another file than options' values: a name of a session is none of those.
bool isSession(const std::string& argument)
{
    return !argument.empty() && argument[0] != '-' && isSessionName(argument);
}

// The name of an option among arguments, "--pairs" of "--pairs=frame".
std::string nameOfOption(const std::string& argument)
{
    return argument.rfind("--", 0) == 0 ? argument.substr(0, argument.find('=')) : "";
}

// What a session says of reading, but for what the command line says of the same.
std::vector<std::string> readingOf(const Session& session, const std::set<std::string>& given)
{
    std::vector<std::string> arguments;
    bool isTaken = false;
    for (const std::string& argument : session.reading) {
        const std::string name = nameOfOption(argument);
        if (!name.empty())
            isTaken = given.count(name) == 0;
        if (isTaken)
            arguments.push_back(argument);
    }
    return arguments;
}

// The session among the arguments, which get what it says of reading. False, and one line in
// `fault`, if it is none; all is well without one.
bool takeSession(std::vector<std::string>& arguments, std::optional<Session>& session,
                 std::string& fault)
{
    const auto named = std::find_if(arguments.begin() + 1, arguments.end(), isSession);
    if (named == arguments.end())
        return true;
    session = readSession(*named, fault);
    if (!session)
        return false;
    for (const std::string& argument : session->reading) {
        const std::string name = nameOfOption(argument);
        const bool isFirst = &argument == &session->reading.front();
        if (name.empty() ? isFirst : OF_READING.count(name.substr(2)) == 0) {
            fault = *named + ": reading: found " + inQuotes(argument) +
                    ", expected an option that says how files are read";
            return false;
        }
    }
    std::set<std::string> given;
    for (const std::string& argument : arguments)
        given.insert(nameOfOption(argument));
    const std::vector<std::string> reading = readingOf(*session, given);
    arguments.insert(arguments.begin() + 1, reading.begin(), reading.end());
    return true;
}

Options beginWith(const std::optional<Session>& session)
{
    Options options;
    if (session)
        static_cast<StyleRequest&>(options) = session->style;
    return options;
}

// How the window saves pictures, but for what the command line says of the same.
template <typename IsGiven>
void takePictureFrom(const Session& session, const IsGiven& isGiven, Options& options)
{
    const PictureRequest& size = session.picture.size;
    if (!isGiven("--size") && !session.picture.isOfView) {
        options.paperSize = size.paper;
        options.pictureWidth = size.width;
        options.pictureHeight = size.height;
    } else if (!isGiven("--size") && session.pictureSize) {
        options.pictureWidth = session.pictureSize->first;
        options.pictureHeight = session.pictureSize->second;
    }
    if (!isGiven("--dpi") && size.dpi)
        options.dpi = size.dpi;
    if (!isGiven("--samples"))
        options.samples = size.samples;
    if (!isGiven("--transparent"))
        options.transparent = size.transparent;
    for (const auto& [name, text] : session.picture.settings) {
        if (!isGiven("--" + name))
            settingOf(name).read(text, options);
    }
    if (!isGiven("--measure") && session.picture.hasMeasurements) {
        options.measurements = shownOf(session.measurements);
        for (const std::string& argument : argumentsOf(options.measurements))
            options.look += argument + "\n";
    }
    if (session.pictureSize || session.picture != PictureChoice()) {
        for (const std::string& argument : argumentsOf(options.getPictureSize()))
            options.look += argument + "\n";
    }
}

// What is not said by options.
void takeFrom(const Session& session, const CLI::App& app, Options& options)
{
    if (options.files.size() != 1 || !isSession(options.files.front()))
        throw CLI::ValidationError("FILE", "found a session beside other files, expected it alone");
    // What the session decides stands in `look` too: pictures that differ in it are others, also
    // where the command line does not say it.
    options.session = session;
    options.files.clear();
    for (const SessionFile& file : session.files)
        options.files.push_back(file.name);
    const auto isGiven = [&app](const std::string& name) {
        return app.get_option(name)->count() > 0;
    };
    const auto isOfCamera = [](const CLI::Option* option) {
        return option->get_group() == "Camera" && option->count() > 0 &&
               !option->check_lname("print-camera");
    };
    const auto all = app.get_options({});
    if (session.camera && std::none_of(all.begin(), all.end(), isOfCamera)) {
        options.camera.numbers = session.camera;
        options.look += formatCamera(*session.camera) + "\n";
    }
    const bool isPicture = options.picture || options.exportFile || options.plot.file;
    if (session.frame && !isGiven("--frame") && !isPicture && !options.series.listFrames)
        options.frame = int(*session.frame);
    if (options.picture)
        takePictureFrom(session, isGiven, options);
    if (options.info && !isGiven("--measure"))
        options.measurements = session.measurements;
    if (!isGiven("--beside"))
        options.beside = session.beside;
    if (!session.areColoursShown && isPicture && !isGiven("--colour-by"))
        options.colourBy.reset(); // a window switches them on again
    for (const std::string& argument : argumentsOf(options))
        options.look += argument + "\n";
}

// Beside what `before` says already.
Options parse(CLI::App& app, const std::vector<std::string>& arguments, const Options& before,
              const std::optional<Session>& session)
{
    Options options = before;
    app.description(
        "Shows elastic rods with their material frames, birods and DNA: smooth tubes and\n"
        "ribbons, atoms and boxes, in a window or, with --render, in a picture.");
    app.name("strandview");
    app.set_version_flag("--version", "strandview " STRANDVIEW_VERSION);
    app.footer("American spellings are understood, too: --color-by, --normalize and so on.");
    addFiles(app, options);
    addSeries(app, options);
    addPlot(app, options);
    for (const Setting& setting : settings())
        addSetting(app, setting, options);
    addCamera(app, options);
    addDefaults(app, options);

    parseArguments(app, arguments);
    options.given = givenOptions(app);
    options.look = lookOf(app, options);
    options.colourIfPossible = options.hasDefaults && app.get_option("--colour-by")->count() == 0;
    options.reading = argumentsOfReading(app);
    if (session)
        takeFrom(*session, app, options);
    const bool needsFile = options.picture || options.info || options.listScalars ||
                           options.exportFile || options.series.listFrames || options.plot.file;
    if (options.frame && options.series.frames && !options.series.turn)
        throw CLI::ExcludesError("--frames", "--frame");
    settleSize(options);
    checkForSeries(options);
    checkForCamera(options.camera);
    checkForTold(options);
    checkForPlot(options);
    if (options.saveDefaults && !options.files.empty())
        throw CLI::ValidationError("--save-defaults", "found " + inQuotes(options.files[0]) +
                                                          ", expected options of the look alone");
    if (needsFile && options.files.empty())
        throw CLI::RequiredError("FILE");
    if (std::count(options.files.begin(), options.files.end(), "-") > 1)
        throw CLI::ValidationError("FILE", "found - twice, expected standard input once");
    return options;
}

} // namespace

ParsedOptions parseOptions(int argc, const char* const* argv, const std::string& defaultsFile)
{
    const auto refuse = [](const std::string& fault) {
        std::cerr << "strandview: " << fault << "\n";
        return ParsedOptions{std::nullopt, BAD_INPUT};
    };
    std::optional<Session> session;
    std::vector<std::string> arguments = inOwnSpelling(argc, argv);
    std::string fault;
    if (!takeSession(arguments, session, fault))
        return refuse(fault);
    Options before = beginWith(session);
    if (!session)
        fault = beginWithDefaults(arguments, defaultsFile, before);
    CLI::App app;
    try {
        Options options = parse(app, arguments, before, session);
        options.hasDefaults = std::ifstream(defaultsFile).is_open();
        return fault.empty() ? ParsedOptions{options, 0} : refuse(fault);
    } catch (const CLI::Success& request) { // --help and --version
        const int status = app.exit(request);
        if (std::cout.flush())
            return {std::nullopt, status};
        std::cerr << "strandview: standard output: " << std::strerror(errno) << "\n";
        return {std::nullopt, CANNOT_WRITE};
    } catch (const CLI::ParseError& error) {
        std::cerr << "strandview: " << explain(app, error, argc, argv) << "\n";
        return {std::nullopt, BAD_INPUT};
    }
}

std::optional<Options> optionsOfSession(const std::string& name, std::string& fault)
{
    std::optional<Session> session;
    std::vector<std::string> arguments{"strandview", "--", name};
    if (!takeSession(arguments, session, fault))
        return std::nullopt;
    CLI::App app;
    try {
        return parse(app, arguments, beginWith(session), session);
    } catch (const CLI::ParseError& error) {
        fault = name + ": " + error.what();
        return std::nullopt;
    }
}

} // namespace strandview
