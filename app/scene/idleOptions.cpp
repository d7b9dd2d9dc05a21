// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/idleOptions.h"

#include <algorithm>

#include <strandview/analysis/superpose.h>
#include <strandview/formats/text/wording.h>

#include "request/thingTexts.h"
#include "scene/Style.h"
#include "scene/backbones.h"
#include "scene/measure.h"

namespace strandview {

namespace {

// Rods but backbones, which have no ribbons.
bool haveSingle(const std::vector<Rod>& rods)
{
    return std::any_of(rods.begin(), rods.end(), [](const Rod& rod) { return !rod.isBackbone; });
}
bool haveRods(const Configuration& data) { return !data.birods.empty() || haveSingle(data.rods); }

// What the options act on.
struct Shown
{
    Shown(const Options& options, const Configuration& data)
        : dna(!data.dnas.empty() || !data.loneBases.empty() || haveBackbone(data.rods)),
          rods(haveRods(data)),
          curves(rods || countSegments(data, options.dna) > 0),
          single(haveSingle(data.rods)),
          seenThrough(dna || rods),
          tubes(curves && options.showTube),
          ribbons(rods && options.showRibbon.value_or(true)),
          frames(!data.dnas.empty() || !data.loneBases.empty() || !data.birods.empty() ||
                 !data.frames.empty() || haveFrames(data.rods)),
          lit(options.drawing.shading == Shading::LIT),
          wireframe(options.drawing.shading == Shading::WIREFRAME),
          legend(options.legend.place != LegendPlace::OFF),
          background(!options.transparent || (options.colourBy && legend) || options.scaleBar),
          parallel(!options.camera.isPerspective()),
          superposed(!options.showGhost || !data.reference ||
                     findSuperposition(data, *data.reference))
    {}

    static bool haveBackbone(const std::vector<Rod>& rods)
    {
        return std::any_of(rods.begin(), rods.end(), [](const Rod& rod) { return rod.isBackbone; });
    }
    static bool haveFrames(const std::vector<Rod>& rods)
    {
        return std::any_of(rods.begin(), rods.end(), [](const Rod& rod) { return rod.hasFrames; });
    }

    bool dna;
    bool rods;        ///< that may have a ribbon
    bool curves;      ///< those and backbones
    bool single;      ///< rods that may be closed
    bool seenThrough; ///< glyphs have transparencies of their own
    bool tubes, ribbons, frames;
    bool lit, wireframe;
    bool legend;
    bool background; ///< legend and scale bar are drawn in a colour that suits it
    bool parallel;   ///< a view with one scale
    bool superposed; ///< on a reference, if one is to be seen
};

struct Rule
{
    const char* option;
    bool Shown::*needed;
    const char* reason;
};

// The first rule that an option breaks is told.
const Rule RULES[] = {
    {"--dna", &Shown::dna, "found no DNA"},
    {"--dna-unit", &Shown::dna, "found no DNA"},
    {"--pairs", &Shown::dna, "found no DNA"},
    {"--radius", &Shown::curves, "found no rods"},
    {"--subsegments", &Shown::curves, "found no rods"},
    {"--tube", &Shown::curves, "found no rods"},
    {"--slices", &Shown::curves, "found no rods"},
    {"--slices", &Shown::tubes, "--no-tube hides the tubes"},
    {"--tube-colour", &Shown::curves, "found no rods"},
    {"--tube-colour", &Shown::tubes, "--no-tube hides the tubes"},
    {"--ribbon", &Shown::rods, "found no rods"},
    {"--ribbon-width", &Shown::rods, "found no rods"},
    {"--ribbon-width", &Shown::ribbons, "--no-ribbon hides the ribbons"},
    {"--ribbon-colour", &Shown::rods, "found no rods"},
    {"--ribbon-colour", &Shown::ribbons, "--no-ribbon hides the ribbons"},
    {"--two-sided", &Shown::rods, "found no rods"},
    {"--two-sided", &Shown::ribbons, "--no-ribbon hides the ribbons"},
    {"--transparency", &Shown::seenThrough, "found no rods and no DNA"},
    {"--line-width", &Shown::wireframe, "only --shading wireframe has lines"},
    {"--light-1", &Shown::lit, "only --shading lit has lights"},
    {"--light-2", &Shown::lit, "only --shading lit has lights"},
    {"--light-3", &Shown::lit, "only --shading lit has lights"},
    {"--shininess", &Shown::lit, "only --shading lit has lights"},
    {"--normalise", &Shown::frames, "found no frames"},
    {"--closed", &Shown::single, "found no rods"},
    {"--legend-title", &Shown::legend, "--legend off leaves it out"},
    {"--legend-unit", &Shown::legend, "--legend off leaves it out"},
    {"--legend-format", &Shown::legend, "--legend off leaves it out"},
    {"--scale-bar", &Shown::parallel, "a view in perspective has no one scale"},
    {"--background", &Shown::background, "--transparent leaves it out"},
    {"--ghost", &Shown::superposed, "found nothing of as many points in the reference"}};

// As it stands on the command line.
std::string written(const std::string& option, const Options& options)
{
    if (option == "--tube" && !options.showTube)
        return "--no-tube";
    return option == "--ribbon" && !options.showRibbon.value_or(true) ? "--no-ribbon" : option;
}

std::string idle(const std::string& option, const Options& options, const std::string& reason)
{
    return written(option, options) + " has no effect: " + reason;
}

// Rods of which neither tube nor ribbon is shown.
std::string hiddenRods(const Options& options, const Configuration& data)
{
    if (options.showTube || !haveRods(data))
        return "";
    if (!options.showRibbon.value_or(true))
        return "--no-tube --no-ribbon: nothing of the rods is left to see";
    const auto bare = std::count_if(data.rods.begin(), data.rods.end(), [](const Rod& rod) {
        return !rod.hasFrames && !rod.isBackbone;
    });
    return bare == 0 || asksForRibbon(options) ? ""
                                               : "--no-tube: nothing is left to see of rods "
                                                 "without frames; --ribbon shows a ribbon";
}

std::size_t countOf(ThingKind kind, const Configuration& data)
{
    switch (kind) {
    case ThingKind::ROD:
        return data.rods.size();
    case ThingKind::BIROD:
        return data.birods.size();
    case ThingKind::MARKER:
        return data.markers.size();
    case ThingKind::ARROW:
        return data.arrows.size();
    case ThingKind::DNA:
        return data.dnas.size();
    case ThingKind::LONE_BASES:
        return data.loneBases.empty() ? 0 : 1;
    case ThingKind::FRAME:
        return data.frames.size();
    case ThingKind::OTHER:
        break;
    }
    return 0;
}

// "rod 3" is the last there is, and "rod 7" is asked for.
std::string missingThing(const ThingId& thing, const Configuration& data)
{
    const std::size_t count = countOf(thing.kind, data);
    return "--thing has no effect on " + nameOf(thing) + ": found " +
           (count == 0 ? "none" : "none behind " + nameOf({thing.kind, count - 1}));
}

// Of each kind the first.
std::vector<std::string> findMissingThings(const ThingLooks& looks, const Configuration& data)
{
    std::vector<std::string> lines;
    std::set<ThingKind> told;
    for (const auto& [thing, look] : looks.ofThings) {
        if (thing.index >= countOf(thing.kind, data) && told.insert(thing.kind).second)
            lines.push_back(missingThing(thing, data));
    }
    return lines;
}

} // namespace

std::vector<std::string> findIdleOptions(const Options& options, const Configuration& configuration)
{
    const Shown shown(options, configuration);
    std::vector<std::string> lines;
    for (const std::string& option : options.given) {
        const auto broken = std::find_if(std::begin(RULES), std::end(RULES), [&](const Rule& rule) {
            return option == rule.option && !(shown.*rule.needed);
        });
        if (broken != std::end(RULES))
            lines.push_back(idle(option, options, broken->reason));
    }
    if (std::count(options.given.begin(), options.given.end(), "--thing") > 0) {
        for (const std::string& line : findMissingThings(options.things, configuration))
            lines.push_back(line);
    }
    for (const Measurement& measurement : options.measurements) {
        if (!measure(measurement, configuration, options.dna.angstrom))
            lines.push_back("--measure " + inQuotes(textOf(measurement)) +
                            " has no effect: found no such places, or nothing to measure there");
    }
    const std::string hidden = hiddenRods(options, configuration);
    if (!hidden.empty())
        lines.push_back(hidden);
    return lines;
}

std::vector<std::string> findIdleOptions(const Options& options, const std::set<std::string>& meant,
                                         const std::string& reason)
{
    std::vector<std::string> lines;
    for (const std::string& option : options.given)
        if (meant.count(option) == 0)
            lines.push_back(idle(option, options, reason));
    return lines;
}

} // namespace strandview
