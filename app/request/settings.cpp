// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/settings.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstdio>
#include <sstream>
#include <utility>

#include <strandview/formats/text/wording.h>

#include "request/limits.h"
#include "request/parseNumber.h"
#include "request/thingTexts.h"
#include "request/wording.h"

namespace strandview {

namespace {

using Text = std::optional<std::string>;

// Each kind of member, once: as text, from text and left open.

std::string inWords(double length) { return formatted(length); }
std::string inWords(int count) { return std::to_string(count); }
std::string inWords(bool on) { return on ? "on" : "off"; }
std::string inWords(const Colour& colour)
{
    const auto level = [](float part) { return int(std::lround(255 * part)); };
    char text[8];
    std::snprintf(text, sizeof text, "#%02x%02x%02x", level(colour.red), level(colour.green),
                  level(colour.blue));
    return text;
}
std::string inWords(const std::string& text) { return text; }
std::string inWords(const ColourMap& map) { return map.text; }
std::string inWords(const NumberFormat& format) { return formatOf(format); }
std::string inWords(const ClipPlane& plane) { return formatClipPlane(plane); }
std::string inWords(const Light& light) { return formatLight(light); }
std::string inWords(const Shininess& shininess) { return formatShininess(shininess); }

template <typename Value>
Text textOf(const std::optional<Value>& value)
{
    return value ? Text(inWords(*value)) : std::nullopt;
}
template <typename Value>
Text textOf(const Value& value)
{
    return inWords(value);
}

// A member of the request, or of the legend or the drawing in it.

template <typename Request, typename Value>
auto& in(Request& request, Value StyleRequest::*member)
{
    return request.*member;
}
template <typename Request, typename Value>
auto& in(Request& request, Value LegendLook::*member)
{
    return request.legend.*member;
}

template <typename Request, typename Value>
auto& in(Request& request, Value DrawingLook::*member)
{
    return request.drawing.*member;
}

template <auto member>
Text valueOf(const StyleRequest& request)
{
    return textOf(in(request, member));
}

template <auto member>
void clear(StyleRequest& request)
{
    const StyleRequest usual;
    in(request, member) = in(usual, member);
}

template <auto member>
std::string readSwitch(const std::string& text, StyleRequest& request)
{
    if (text != "on" && text != "off")
        return found(text, "on or off");
    in(request, member) = text == "on";
    return "";
}

template <auto member>
std::string readLength(const std::string& text, StyleRequest& request)
{
    const std::optional<double> length = parseNumber<double>(text);
    if (!length || *length <= 0)
        return found(text, "a length above 0");
    in(request, member) = *length;
    return "";
}

template <auto member>
std::string readShare(const std::string& text, StyleRequest& request)
{
    const std::optional<double> share = parseNumber<double>(text);
    if (!share || *share < 0 || *share > 1)
        return found(text, "a number from 0 to 1");
    request.*member = *share;
    return "";
}

template <auto member, int least, int most>
std::string readCount(const std::string& text, StyleRequest& request)
{
    const std::optional<int> count = parseNumber<int>(text);
    if (!count || *count < least || *count > most)
        return found(text, "a whole number from " + std::to_string(least) + " to " +
                               std::to_string(most));
    in(request, member) = *count;
    return "";
}

template <auto member>
std::string readColour(const std::string& text, StyleRequest& request)
{
    const std::optional<Colour> colour = parseColour(text);
    if (!colour)
        return found(text, "#rrggbb or an SVG colour name");
    in(request, member) = *colour;
    return "";
}

template <auto member>
std::string readText(const std::string& text, StyleRequest& request)
{
    in(request, member) = text;
    return "";
}

std::string readClip(const std::string& text, StyleRequest& request)
{
    const std::optional<ClipPlane> plane = parseClipPlane(text);
    if (!plane && text != "off")
        return found(text, "x, -x, y, -y, z, -z or a normal X,Y,Z, and :DISTANCE or nothing, such "
                           "as z:1.5; or off");
    request.clip = plane;
    return "";
}

// How all is drawn

struct NamedShading
{
    const char* name;
    Shading shading;
};

const NamedShading SHADINGS[] = {
    {"lit", Shading::LIT}, {"plain", Shading::PLAIN}, {"wireframe", Shading::WIREFRAME}};

Text valueOfShading(const StyleRequest& request)
{
    return std::find_if(std::begin(SHADINGS), std::end(SHADINGS),
                        [&request](const NamedShading& known) {
                            return known.shading == request.drawing.shading;
                        })
        ->name;
}

std::string readShading(const std::string& text, StyleRequest& request)
{
    const auto* const named =
        std::find_if(std::begin(SHADINGS), std::end(SHADINGS),
                     [&text](const NamedShading& known) { return text == known.name; });
    if (named == std::end(SHADINGS))
        return found(text, "lit, plain or wireframe");
    request.drawing.shading = named->shading;
    return "";
}

std::string readLineWidth(const std::string& text, StyleRequest& request)
{
    const std::optional<double> width = parseNumber<double>(text);
    if (!width || *width < SMALLEST_LINE_WIDTH || *width > LARGEST_LINE_WIDTH)
        return found(text, "a number of pixels from " + formatted(SMALLEST_LINE_WIDTH) + " to " +
                               formatted(LARGEST_LINE_WIDTH));
    request.drawing.lineWidth = *width;
    return "";
}

template <auto member>
std::string readLight(const std::string& text, StyleRequest& request)
{
    const std::optional<Light> light = parseLight(text);
    if (!light)
        return found(text, "a direction X,Y,Z, an intensity from 0 to 1, X,Y,Z:INTENSITY or off");
    in(request, member) = *light;
    return "";
}

std::string readShininess(const std::string& text, StyleRequest& request)
{
    const std::optional<Shininess> shininess = parseShininess(text);
    if (!shininess)
        return found(text, "a number that is not below 0, or three, one for each light: 10,5,0");
    request.drawing.shininess = *shininess;
    return "";
}

// DNA

struct DnaPart
{
    const char* name;
    bool DnaLook::*shown;
};

const DnaPart DNA_PARTS[] = {{"backbone", &DnaLook::backbone},
                             {"bases", &DnaLook::bases},
                             {"boxes", &DnaLook::baseBoxes},
                             {"pairs", &DnaLook::pairBoxes},
                             {"atoms", &DnaLook::atoms}};

Text valueOfDna(const StyleRequest& request)
{
    std::string names;
    for (const DnaPart& part : DNA_PARTS) {
        if (request.dna.*part.shown)
            names += (names.empty() ? "" : ",") + std::string(part.name);
    }
    return names.empty() ? "none" : names;
}

std::string readDna(const std::string& text, StyleRequest& request)
{
    DnaLook look = request.dna;
    for (const DnaPart& part : DNA_PARTS)
        look.*part.shown = false;
    std::istringstream names(text.empty() ? "," : text);
    for (std::string name; text != "none" && std::getline(names, name, ',');) {
        const auto* part =
            std::find_if(std::begin(DNA_PARTS), std::end(DNA_PARTS),
                         [&name](const DnaPart& known) { return name == known.name; });
        if (part == std::end(DNA_PARTS))
            return found(name, "some of backbone, bases, boxes, pairs and atoms, with commas, or "
                               "none");
        look.*part->shown = true;
    }
    request.dna = look;
    return "";
}

void clearDna(StyleRequest& request)
{
    for (const DnaPart& part : DNA_PARTS)
        request.dna.*part.shown = DnaLook().*part.shown;
}

Text valueOfDnaUnit(const StyleRequest& request)
{
    return request.dna.angstrom == 1 ? "angstrom" : "nm";
}

std::string readDnaUnit(const std::string& text, StyleRequest& request)
{
    if (text != "angstrom" && text != "nm")
        return found(text, "angstrom or nm");
    request.dna.angstrom = text == "nm" ? 0.1 : 1;
    return "";
}

void clearDnaUnit(StyleRequest& request) { request.dna.angstrom = 1; }

// Single things

Text valueOfThings(const StyleRequest& request)
{
    std::string all;
    for (const std::string& text : textsOf(request.things))
        all += (all.empty() ? "" : "; ") + text;
    return all.empty() ? Text() : all;
}

std::string readAllThings(const std::string& text, StyleRequest& request)
{
    ThingLooks things;
    std::string fault = readThings(text, things);
    if (fault.empty())
        request.things = std::move(things);
    return fault;
}

// Colours of data

// One side of a range; empty leaves it open.
bool parseLimit(const std::string& text, std::optional<double>& limit)
{
    limit = parseNumber<double>(text);
    return limit || text.empty();
}

Text valueOfRange(const StyleRequest& request)
{
    if (request.ownRange)
        return "frame";
    if (request.symmetricRange)
        return "symmetric";
    if (!request.rangeMin && !request.rangeMax)
        return std::nullopt;
    return (request.rangeMin ? formatted(*request.rangeMin) : "") + ":" +
           (request.rangeMax ? formatted(*request.rangeMax) : "");
}

void clearRange(StyleRequest& request)
{
    request.rangeMin = request.rangeMax = std::nullopt;
    request.ownRange = request.symmetricRange = false;
}

std::string readRange(const std::string& text, StyleRequest& request)
{
    std::optional<double> min, max;
    const bool isWord = text == "auto" || text == "frame" || text == "symmetric";
    const std::size_t colon = text.find(':');
    if (!isWord && (colon == std::string::npos || !parseLimit(text.substr(0, colon), min) ||
                    !parseLimit(text.substr(colon + 1), max) || (min && max && !(*min < *max))))
        return found(text, "MIN:MAX with MIN below MAX, of which either may be left out, auto, "
                           "frame or symmetric");
    if (min && max && !isRange(*min, *max))
        return found(text, "limits that are a 1e-12th of them apart or more, and up to 1e+307");
    request.rangeMin = min;
    request.rangeMax = max;
    request.ownRange = text == "frame";
    request.symmetricRange = text == "symmetric";
    return "";
}

// "viridis, cividis, ...".
std::string listOfColourMaps()
{
    std::string text;
    for (const std::string& name : namesOfColourMaps())
        text += (text.empty() ? "" : ", ") + name;
    return text;
}

// "red,white,blue".
std::string readListOfColours(const std::string& text, ColourMap& map)
{
    std::istringstream names(text);
    for (std::string name; std::getline(names, name, ',');) {
        const std::optional<Colour> colour = parseColour(name);
        if (!colour)
            return found(name, "#rrggbb or an SVG colour name");
        map.colours.push_back(*colour);
    }
    return map.colours.size() < 2 ? found(text, "two colours or more: C1,C2,...") : "";
}

std::string readColours(const std::string& text, StyleRequest& request)
{
    ColourMap map;
    map.text = text;
    if (text.find(',') != std::string::npos) {
        const std::string fault = readListOfColours(text, map);
        if (!fault.empty())
            return fault;
    } else if (const std::optional<ColourMap> named = findColourMap(text)) {
        map = *named;
    } else {
        return found(text, listOfColourMaps() + ", each also reversed as NAME_r, or two colours "
                                                "or more: C1,C2,...");
    }
    request.colours = map;
    return "";
}

// The legend

struct NamedLegendPlace
{
    const char* name;
    LegendPlace place;
};

const NamedLegendPlace LEGEND_PLACES[] = {{"bottom", LegendPlace::BOTTOM},
                                          {"top", LegendPlace::TOP},
                                          {"left", LegendPlace::LEFT},
                                          {"right", LegendPlace::RIGHT},
                                          {"off", LegendPlace::OFF}};

Text valueOfLegendPlace(const StyleRequest& request)
{
    return std::find_if(std::begin(LEGEND_PLACES), std::end(LEGEND_PLACES),
                        [&request](const NamedLegendPlace& known) {
                            return known.place == request.legend.place;
                        })
        ->name;
}

std::string readLegendPlace(const std::string& text, StyleRequest& request)
{
    const auto* const named =
        std::find_if(std::begin(LEGEND_PLACES), std::end(LEGEND_PLACES),
                     [&text](const NamedLegendPlace& known) { return text == known.name; });
    if (named == std::end(LEGEND_PLACES))
        return found(text, "bottom, top, left, right or off");
    request.legend.place = named->place;
    return "";
}

std::string readLegendFormat(const std::string& text, StyleRequest& request)
{
    const std::optional<NumberFormat> format = parseNumberFormat(text);
    if (!format)
        return found(text, "auto or a point, a number of digits from 0 to " +
                               std::to_string(NumberFormat::MOST_DIGITS) +
                               " and f, e or g, such as .2f");
    request.legend.format = *format;
    return "";
}

const char* const LOOK = "Look";
const char* const DNA = "DNA";
const char* const COLOURS = "Colour by data";
const char* const SCALE = "Scale bar";
const char* const LIGHT = "Light";
const char* const THINGS = "Things";

// Changes no shape: recolourScene() shows it.
Setting ofColours(Setting row)
{
    row.isColour = true;
    return row;
}

// A row each, of one member, of the kinds that several settings have.

template <auto member>
Setting makeRow(SettingKind kind, const char* name, const char* label, const char* group,
                const char* values, const std::string& help,
                std::string (*read)(const std::string& text, StyleRequest& request))
{
    return {name, kind, label, group, values, help, &valueOf<member>, read, &clear<member>};
}

template <auto member>
Setting makeSwitch(const char* name, const char* label, const std::string& help,
                   const char* group = LOOK)
{
    return makeRow<member>(SettingKind::SWITCH, name, label, group, nullptr, help,
                           &readSwitch<member>);
}

template <auto member>
Setting makeLength(const char* name, const char* label, const std::string& help,
                   const char* group = LOOK)
{
    return makeRow<member>(SettingKind::LENGTH, name, label, group, "LENGTH", help,
                           &readLength<member>);
}

template <auto member, int least, int most>
Setting makeCount(const char* name, const char* label, const std::string& help,
                  const char* group = LOOK)
{
    Setting row = makeRow<member>(SettingKind::COUNT, name, label, group, "N", help,
                                  &readCount<member, least, most>);
    row.least = least;
    row.most = most;
    return row;
}

template <auto member>
Setting makeColour(const char* name, const char* label, const std::string& help,
                   const char* group = LOOK)
{
    return makeRow<member>(SettingKind::COLOUR, name, label, group, "COLOUR", help,
                           &readColour<member>);
}

template <auto member>
Setting makeText(const char* name, const char* label, const std::string& help,
                 const char* group = LOOK)
{
    return makeRow<member>(SettingKind::TEXT, name, label, group, "TEXT", help, &readText<member>);
}

// What only some rows say besides.

Setting among(std::vector<std::string> words, Setting row)
{
    row.words = std::move(words);
    return row;
}

Setting onlyWith(const char* neededSetting, Setting row)
{
    row.neededSetting = neededSetting;
    return row;
}

Setting inGroup(const char* group, Setting row)
{
    row.group = group;
    return row;
}

Setting leftOpenAs(std::string what, Setting row)
{
    row.leftOpen = std::move(what);
    return row;
}

// Says how a scalar is shown.
Setting ofScalar(Setting row) { return ofColours(onlyWith("colour-by", std::move(row))); }

// Of values that the colours from the least to the greatest do not have.
template <auto member>
Setting makeOutside(const char* name, const char* label, const std::string& of,
                    const std::string& usual)
{
    return ofScalar(leftOpenAs(
        usual,
        makeColour<member>(name, label, "Colour of values " + of + " [" + usual + "]", COLOURS)));
}

template <auto member>
Setting makeLight(const char* name, const char* label, const std::string& usual)
{
    return ofColours(makeRow<member>(
        SettingKind::LIGHT, name, label, LIGHT, "X,Y,Z:INTENSITY",
        "Direction from the light, with x to the right, y up and z to the viewer, intensity from 0 "
        "to 1, or both [" +
            usual + "]",
        &readLight<member>));
}

template <typename Named>
std::vector<std::string> namesOf(const Named& all)
{
    std::vector<std::string> names;
    for (const auto& one : all)
        names.push_back(one.name);
    return names;
}

std::vector<Setting> makeSettings()
{
    using Request = StyleRequest;
    return {
        makeLength<&Request::radius>("radius", "Radius", "Radius of the tube [from the data]"),
        makeLength<&Request::ribbonWidth>("ribbon-width", "Ribbon width",
                                          "Width of the ribbon [3 radii]"),
        makeCount<&Request::slices, 3, 1000>("slices", "Slices",
                                             "Points around the tube [from the data]"),
        makeCount<&Request::subsegments, 1, 1000>("subsegments", "Subsegments",
                                                  "Rows between two points [from the data]"),
        makeSwitch<&Request::showTube>("tube", "Tube", "Show the tube [shown]"),
        makeSwitch<&Request::showRibbon>("ribbon", "Ribbon",
                                         "Show the ribbon [of what has frames]"),
        makeSwitch<&Request::twoSidedRibbon>(
            "two-sided", "Ribbon to both sides",
            "Centre the ribbon on the centreline instead of starting it there"),
        makeRow<&Request::transparency>(
            SettingKind::SHARE, "transparency", "Transparency", LOOK, "PART",
            "How much is seen through tubes, ribbons, bases and boxes, from 0 to 1 [0]",
            &readShare<&Request::transparency>),
        ofColours(leftOpenAs(
            "one each", makeColour<&Request::tubeColour>("tube-colour", "Tube colour",
                                                         "Colour of the tubes [one per rod]"))),
        ofColours(makeColour<&Request::ribbonColour>("ribbon-colour", "Ribbon colour",
                                                     "Colour of the ribbons")),
        ofColours(makeColour<&Request::background>("background", "Background",
                                                   "Colour of the background [white]")),
        among({"off", "x", "-x", "y", "-y", "z", "-z"},
              makeRow<&Request::clip>(
                  SettingKind::CLIP, "clip", "Clipping plane", LOOK, "SIDE|X,Y,Z[:DISTANCE]",
                  "Cut away what is beyond a plane, on that side or where the normal X,Y,Z points "
                  "to, at DISTANCE from the origin [off; through the middle of the data]",
                  &readClip)),
        ofColours(
            among(namesOf(SHADINGS),
                  {"shading", SettingKind::CHOICE, "Shading", LOOK, "HOW",
                   "How shapes are drawn: lit, plain, in their own colours without lights, or "
                   "wireframe [lit]",
                   &valueOfShading, &readShading, &clear<&DrawingLook::shading>})),
        ofColours(makeRow<&DrawingLook::lineWidth>(
            SettingKind::LINE_WIDTH, "line-width", "Line width", LOOK, "PIXELS",
            "Width of the lines of a wireframe, in pixels [1]", &readLineWidth)),
        ofColours(makeSwitch<&DrawingLook::boundingBoxes>(
            "bounding-boxes", "Bounding boxes",
            "Show the boxes that shapes lie in instead of them")),
        makeLight<&DrawingLook::light1>("light-1", "Light 1", "0.2,-0.2,-1"),
        makeLight<&DrawingLook::light2>("light-2", "Light 2", "-0.2,-0.2,-1:0"),
        makeLight<&DrawingLook::light3>("light-3", "Light 3", "0,0.2,-1:0"),
        ofColours(makeRow<&DrawingLook::shininess>(
            SettingKind::SHININESS, "shininess", "Shininess", LIGHT, "N",
            "How small highlights are, of all lights or as N,N,N of each; 0 for none [10; none "
            "where data give the colours]",
            &readShininess)),
        ofColours(makeRow<&Request::colourBy>(
            SettingKind::SCALAR, "colour-by", "Scalar", COLOURS, "NAME",
            "Colour by a scalar of the file, or by arclength, curvature, torsion, twist, kappa1 "
            "and others",
            &readText<&Request::colourBy>)),
        makeRow<&Request::compare>(
            SettingKind::REFERENCE, "compare", "Compare with", COLOURS, "FILE|first",
            "Compare with FILE, or with the first frame of a series: adds the scalars "
            "reference_distance, reference_rotation, shear1, shear2 and extension",
            &readText<&Request::compare>),
        onlyWith("compare",
                 makeSwitch<&Request::showGhost>(
                     "ghost", "Reference as a ghost",
                     "Show what is compared with, too: its curves and strands in a grey that is "
                     "seen through, superposed onto the data as for reference_distance",
                     COLOURS)),
        ofColours(onlyWith("ghost", makeRow<&Request::ghostTransparency>(
                                        SettingKind::SHARE, "ghost-transparency",
                                        "Ghost's transparency", COLOURS, "PART",
                                        "How much is seen through the ghost, from 0 to 1 [0.6]",
                                        &readShare<&Request::ghostTransparency>))),
        ofScalar({"range", SettingKind::RANGE, "Range", COLOURS, "MIN:MAX",
                  "Values at the ends of the colours: auto is those of all frames, frame those of "
                  "each, symmetric as far above 0 as below [auto]",
                  &valueOfRange, &readRange, &clearRange}),
        ofScalar(
            among(namesOfColourMaps(),
                  makeRow<&Request::colours>(
                      SettingKind::COLOUR_MAP, "colours", "Colours", COLOURS, "NAME|C1,C2,...",
                      "Colours from the least value to the greatest: " + listOfColourMaps() +
                          ", reversed as NAME_r, or two colours or more [" + DEFAULT_MAP + "; " +
                          DEFAULT_SIGNED_MAP + " of what can be negative, such as torsion]",
                      &readColours))),
        makeOutside<&Request::belowColour>("below-colour", "Below the range", "below the range",
                                           "that of the least"),
        makeOutside<&Request::aboveColour>("above-colour", "Above the range", "above the range",
                                           "that of the greatest"),
        makeOutside<&Request::nanColour>("nan-colour", "No number", "that are no number", "grey"),
        ofScalar(among(namesOf(LEGEND_PLACES),
                       {"legend", SettingKind::CHOICE, "Legend", COLOURS, "PLACE",
                        "Where the legend is: bottom, top, left, right or off [bottom]",
                        &valueOfLegendPlace, &readLegendPlace, &clear<&LegendLook::place>})),
        ofScalar(makeText<&LegendLook::title>("legend-title", "Legend's title",
                                              "Title of the legend [the scalar's name]", COLOURS)),
        ofScalar(makeText<&LegendLook::unit>(
            "legend-unit", "Legend's unit",
            "Unit in the legend, none if it is empty [the scalar's, where it is known]", COLOURS)),
        ofScalar(among({"auto", ".0f", ".1f", ".2f", ".3f", ".2e", ".3g"},
                       makeRow<&LegendLook::format>(
                           SettingKind::NUMBER_FORMAT, "legend-format", "Legend's numbers", COLOURS,
                           "FORMAT",
                           "How the legend's numbers are written: auto; .2f, two decimals; .2e, "
                           "with a power of ten; .3g, three digits, the shorter of both [auto]",
                           &readLegendFormat))),
        ofColours(inGroup(
            SCALE, makeSwitch<&Request::scaleBar>("scale-bar", "Scale bar",
                                                  "Show how long a round length of the data is, in "
                                                  "a corner; not with --perspective"))),
        ofColours(onlyWith(
            "scale-bar",
            makeText<&Request::scaleUnit>(
                "scale-unit", "Unit of lengths",
                "Unit of the data's lengths, behind the scale bar's, none if it is empty [that of "
                "DNA]",
                SCALE))),
        among(namesOf(DNA_PARTS),
              {"dna", SettingKind::PARTS, "Shown of DNA", DNA, "WHAT,...",
               "Show backbone, bases as slabs, boxes of bases, boxes of pairs, atoms, or none "
               "[backbone,bases]",
               &valueOfDna, &readDna, &clearDna}),
        among({"angstrom", "nm"}, {"dna-unit", SettingKind::CHOICE, "Unit of DNA", DNA, "UNIT",
                                   "Unit of a DNA's points: angstrom or nm [angstrom]",
                                   &valueOfDnaUnit, &readDnaUnit, &clearDnaUnit}),
        {"thing", SettingKind::THINGS, "Things", THINGS, "THING: LOOK",
         "How one thing looks, as often as there are such: 'rod 2: hidden', 'rods 3-5: colour=red, "
         "name=Left arm', 'others: hidden'; things are rod, birod, marker, arrow, DNA and frame, "
         "counted from 1 over all files, bases, those without a partner, and strands: 'DNA 1 "
         "strand 2: hidden', 'birod 1 average: colour=red'",
         &valueOfThings, &readAllThings, &clear<&Request::things>}};
}

} // namespace

std::optional<std::string> Setting::write(const StyleRequest& request) const
{
    const Text text = value(request);
    return text == value(StyleRequest()) ? std::nullopt : text;
}

// The same things need no texts to tell, which are long where there are many.
bool Setting::isSame(const StyleRequest& a, const StyleRequest& b) const
{
    return (kind == SettingKind::THINGS && a.things == b.things) || value(a) == value(b);
}

bool Setting::isOfUse(const StyleRequest& request) const
{
    if (neededSetting.empty())
        return true;
    const Setting& needed = settingOf(neededSetting);
    return needed.write(request) && needed.isOfUse(request);
}

const std::vector<Setting>& settings()
{
    static const std::vector<Setting> all = makeSettings();
    return all;
}

const Setting* findSetting(const std::string& name)
{
    const auto named =
        std::find_if(settings().begin(), settings().end(),
                     [&name](const Setting& setting) { return name == setting.name; });
    return named == settings().end() ? nullptr : &*named;
}

const Setting& settingOf(const std::string& name)
{
    const Setting* const setting = findSetting(name);
    assert(setting);
    return *setting;
}

std::vector<std::string> argumentsOf(const StyleRequest& request)
{
    std::vector<std::string> arguments;
    for (const Setting& setting : settings()) {
        const std::string name = setting.name;
        if (setting.kind == SettingKind::THINGS) { // each by itself
            for (const std::string& thing : textsOf(request.things))
                arguments.insert(arguments.end(), {"--" + name, thing});
            continue;
        }
        const Text text = setting.write(request);
        if (!text || !setting.isOfUse(request))
            continue;
        if (setting.kind == SettingKind::SWITCH) {
            arguments.push_back((*text == "on" ? "--" : "--no-") + name);
        } else {
            arguments.push_back("--" + name);
            arguments.push_back(*text);
        }
    }
    return arguments;
}

bool differInColoursAlone(const StyleRequest& a, const StyleRequest& b)
{
    return std::all_of(settings().begin(), settings().end(), [&](const Setting& setting) {
        return setting.isColour || setting.isSame(a, b);
    });
}

bool operator==(const StyleRequest& a, const StyleRequest& b)
{
    return std::all_of(settings().begin(), settings().end(),
                       [&](const Setting& setting) { return setting.isSame(a, b); });
}

bool areOfSameNodes(const StyleRequest& shown, const StyleRequest& next)
{
    StyleRequest shownSo = shown;
    shownSo.things = next.things;
    shownSo.transparency = next.transparency;
    shownSo.background = next.background;
    shownSo.clip = next.clip;
    shownSo.drawing = next.drawing;
    return shownSo == next && areOfSameNodes(shown.things, next.things);
}

} // namespace strandview
