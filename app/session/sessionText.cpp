// SPDX-License-Identifier: GPL-3.0-or-later
#include "session/sessionText.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <map>
#include <set>
#include <stdexcept>
#include <tuple>

#include <nlohmann/json.hpp>

#include <strandview/formats/text/wording.h>

#include "request/limits.h"
#include "request/settings.h"

namespace strandview {

namespace {

using Json = nlohmann::ordered_json;

const char* const VERSION_KEY = "strandview session";
const int VERSION = 1;
const int DEEPEST = 8; // lists and objects in one another

/// What is no session, in words.
struct Fault : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

std::string shown(const Json& value)
{
    return shortened(value.dump(-1, ' ', false, Json::error_handler_t::replace));
}

[[noreturn]] void refuse(const std::string& place, const Json& found, const std::string& expected)
{
    throw Fault((place.empty() ? "" : place + ": ") + "found " + shown(found) + ", expected " +
                expected);
}

// Reading, each kind of value once

std::string textIn(const Json& value, const std::string& place)
{
    if (!value.is_string())
        refuse(place, value, "a text");
    return value.get<std::string>();
}

std::uint64_t countIn(const Json& value, const std::string& place)
{
    if (!value.is_number_unsigned())
        refuse(place, value, "a whole number from 0 on");
    return value.get<std::uint64_t>();
}

int frameIn(const Json& value, const std::string& place)
{
    const int most = std::numeric_limits<int>::max();
    if (countIn(value, place) > std::uint64_t(most))
        refuse(place, value, "a whole number up to " + std::to_string(most));
    return value.get<int>();
}

bool switchIn(const Json& value, const std::string& place)
{
    if (!value.is_boolean())
        refuse(place, value, "true or false");
    return value.get<bool>();
}

void requireArray(const Json& value, const std::string& place)
{
    if (!value.is_array())
        refuse(place, value, "a list [...]");
}

void requireObject(const Json& value, const std::string& place)
{
    if (!value.is_object())
        refuse(place, value, "an object {...}");
}

using Entries = std::vector<
    std::pair<std::string, std::function<void(const Json& value, const std::string& place)>>>;

// Each entry by its name, and no others.
void readObject(const Json& object, const std::string& place, const Entries& entries)
{
    requireObject(object, place);
    for (const auto& [name, value] : object.items()) {
        const auto known = std::find_if(entries.begin(), entries.end(),
                                        [&](const auto& entry) { return entry.first == name; });
        if (known == entries.end()) {
            std::string names;
            for (const auto& [one, read] : entries)
                names += (names.empty() ? "" : ", ") + one;
            throw Fault((place.empty() ? "" : place + ": ") + "found the entry " + inQuotes(name) +
                        ", expected one of " + names);
        }
        known->second(value, place.empty() ? name : place + ", " + name);
    }
}

SessionFile readFile(const Json& value, const std::string& place)
{
    SessionFile file;
    readObject(
        value, place,
        {{"name", [&](const Json& v, const std::string& p) { file.name = textIn(v, p); }},
         {"bytes", [&](const Json& v, const std::string& p) { file.bytes = countIn(v, p); }},
         {"sha256", [&](const Json& v, const std::string& p) { file.digest = textIn(v, p); }}});
    if (file.name.empty() || file.name == "-")
        refuse(place, value, "the name of a file");
    return file;
}

StyleRequest readStyle(const Json& value, const std::string& place)
{
    requireObject(value, place);
    StyleRequest style;
    for (const auto& [name, text] : value.items()) {
        const Setting* const setting = findSetting(name);
        if (!setting)
            throw Fault(place + ": found the setting " + inQuotes(name) +
                        ", expected the name of an option that says how things look");
        const std::string fault = setting->read(textIn(text, place + ", " + name), style);
        if (!fault.empty())
            throw Fault(place + ", " + name + ": " + fault);
    }
    return style;
}

CameraNumbers readCamera(const Json& value, const std::string& place)
{
    std::string expected;
    const auto camera = parseCamera(textIn(value, place), &expected);
    if (!camera)
        refuse(place, value, expected);
    return *camera;
}

std::pair<int, int> readSize(const Json& value, const std::string& place)
{
    requireArray(value, place);
    if (value.size() == 2) {
        const std::uint64_t width = countIn(value[0], place), height = countIn(value[1], place);
        if (isPictureSize(double(width), double(height)))
            return {int(width), int(height)};
    }
    refuse(place, value, "width and height in pixels, " + wordsOfPictureSize());
}

Measurement readMeasurement(const Json& value, const std::string& place)
{
    Measurement measurement;
    bool isSaid = false;
    readObject(
        value, place,
        {{"what",
          [&](const Json& v, const std::string& p) {
              const auto said = parseMeasurement(textIn(v, p));
              if (!said)
                  refuse(p, v, "what is measured between which places");
              isSaid = true;
              measurement.kind = said->kind;
              measurement.places = said->places;
          }},
         {"name", [&](const Json& v, const std::string& p) { measurement.name = textIn(v, p); }},
         {"shown",
          [&](const Json& v, const std::string& p) { measurement.isShown = switchIn(v, p); }}});
    if (!isSaid)
        refuse(place, value, "\"what\" is measured");
    return measurement;
}

NamedView readView(const Json& value, const std::string& place)
{
    NamedView view;
    bool hasCamera = false;
    readObject(value, place,
               {{"name", [&](const Json& v, const std::string& p) { view.name = textIn(v, p); }},
                {"camera", [&](const Json& v, const std::string& p) {
                     view.camera = readCamera(v, p);
                     hasCamera = true;
                 }}});
    if (view.name.empty() || !hasCamera)
        refuse(place, value, "a view with its \"name\" and \"camera\"");
    return view;
}

std::vector<std::optional<BesideCamera>> readCameras(const Json& value, const std::string& place)
{
    requireArray(value, place);
    std::vector<std::optional<BesideCamera>> cameras;
    for (std::size_t i = 0; i < value.size(); ++i) {
        cameras.emplace_back();
        if (!value[i].is_null())
            cameras[i] = BesideCamera{readCamera(value[i], place + " " + std::to_string(i + 1))};
    }
    return cameras;
}

BesideRequest readBeside(const Json& value, const std::string& place)
{
    BesideRequest beside;
    const auto readWhat = [&beside](const Json& what, const std::string& at) {
        if (what.is_string()) { // as it was for one
            beside.what = {what.get<std::string>()};
            return;
        }
        requireArray(what, at);
        for (std::size_t i = 0; i < what.size(); ++i)
            beside.what.push_back(textIn(what[i], at + " " + std::to_string(i + 1)));
    };
    readObject(
        value, place,
        {{"what", readWhat},
         {"tied", [&](const Json& v, const std::string& p) { beside.isTied = switchIn(v, p); }},
         {"cameras",
          [&](const Json& v, const std::string& p) { beside.cameras = readCameras(v, p); }}});
    const auto& what = beside.what;
    if (what.empty() || what.size() > BesideRequest::MOST ||
        std::count(what.begin(), what.end(), "") > 0)
        refuse(place, value,
               "\"what\" is beside, up to " + std::to_string(BesideRequest::MOST) + " of them");
    if (!beside.cameras.empty() && beside.cameras.size() != what.size())
        refuse(place + ", cameras", value["cameras"], "a camera, or null, for each of \"what\"");
    return beside;
}

Json jsonOf(const BesideRequest& beside)
{
    Json json{{"what", beside.what}, {"tied", beside.isTied}};
    Json cameras = Json::array();
    for (const auto& camera : beside.cameras)
        cameras.push_back(camera ? Json(formatCamera(camera->numbers)) : Json());
    const auto isOpen = [](const Json& camera) { return camera.is_null(); };
    if (!std::all_of(cameras.begin(), cameras.end(), isOpen))
        json["cameras"] = cameras;
    return json;
}

void readPictureSize(const Json& value, const std::string& place, PictureChoice& picture)
{
    const std::string text = textIn(value, place);
    const auto pixels = parsePixels(text);
    picture.size.paper = parsePaperSize(text);
    picture.isOfView = false;
    if (pixels)
        std::tie(picture.size.width, picture.size.height) = *pixels;
    if (pixels ? !isPictureSize(pixels->first, pixels->second) : !picture.size.paper)
        refuse(place, value, "WxH or, in millimetres, WxHmm, " + wordsOfPictureSize());
}

// Its pixels are told by the resolution, which may stand after it.
void settlePaper(const std::string& place, PictureRequest& size)
{
    if (!size.paper)
        return;
    const int dpi = size.resolution();
    const double width = pixelsOf(size.paper->width, dpi);
    const double height = pixelsOf(size.paper->height, dpi);
    if (!isPictureSize(width, height))
        refuse(place + ", size", size.paper->text,
               "millimetres that are, at " + std::to_string(dpi) + " dpi, " + wordsOfPictureSize());
    size.width = int(width);
    size.height = int(height);
}

int countUpTo(const Json& value, const std::string& place, int least, int most)
{
    if (!value.is_number_unsigned() || value < least || value > most)
        refuse(place, value,
               "a whole number from " + std::to_string(least) + " to " + std::to_string(most));
    return value.get<int>();
}

std::map<std::string, std::string> readPictureStyle(const Json& value, const std::string& place)
{
    readStyle(value, place);
    const std::vector<std::string> known = settingsOfPicture();
    std::map<std::string, std::string> texts;
    for (const auto& [name, text] : value.items()) {
        if (std::find(known.begin(), known.end(), name) == known.end())
            refuse(place, name, "a setting that a picture has of its own");
        texts[name] = text.get<std::string>();
    }
    return texts;
}

PictureChoice readPicture(const Json& value, const std::string& place)
{
    PictureChoice picture;
    readObject(
        value, place,
        {{"size", [&](const Json& v, const std::string& p) { readPictureSize(v, p, picture); }},
         {"keeps shape",
          [&](const Json& v, const std::string& p) { picture.keepsShape = switchIn(v, p); }},
         {"dpi",
          [&](const Json& v, const std::string& p) {
              picture.size.dpi = countUpTo(v, p, SMALLEST_DPI, LARGEST_DPI);
          }},
         {"samples",
          [&](const Json& v, const std::string& p) {
              picture.size.samples = countUpTo(v, p, 1, MOST_SAMPLES);
          }},
         {"transparent",
          [&](const Json& v, const std::string& p) { picture.size.transparent = switchIn(v, p); }},
         {"measurements",
          [&](const Json& v, const std::string& p) { picture.hasMeasurements = switchIn(v, p); }},
         {"style", [&](const Json& v, const std::string& p) {
              picture.settings = readPictureStyle(v, p);
          }}});
    settlePaper(place, picture.size);
    return picture;
}

Json jsonOf(const PictureChoice& picture)
{
    const PictureChoice usual;
    Json json = Json::object();
    if (!picture.isOfView)
        json["size"] = picture.size.paper ? textOf(*picture.size.paper)
                                          : std::to_string(picture.size.width) + "x" +
                                                std::to_string(picture.size.height);
    if (picture.keepsShape != usual.keepsShape)
        json["keeps shape"] = picture.keepsShape;
    if (picture.size.dpi)
        json["dpi"] = *picture.size.dpi;
    if (picture.size.samples != usual.size.samples)
        json["samples"] = picture.size.samples;
    if (picture.size.transparent)
        json["transparent"] = true;
    if (picture.hasMeasurements)
        json["measurements"] = true;
    if (!picture.settings.empty())
        json["style"] = picture.settings;
    return json;
}

// Whoever writes about what is found in lists goes as deep as they do.
bool refuseDeeper(int depth, Json::parse_event_t /*event*/, Json& /*value*/)
{
    if (depth > DEEPEST)
        throw Fault("found lists within lists, expected a session");
    return true;
}

void requireVersion(const Json& whole)
{
    requireObject(whole, "");
    if (!whole.contains(VERSION_KEY))
        throw Fault("found no entry \"" + std::string(VERSION_KEY) + "\", expected a session");
    if (whole[VERSION_KEY] != VERSION)
        refuse(VERSION_KEY, whole[VERSION_KEY],
               std::to_string(VERSION) + ", or a newer version of this program");
}

Session readSession(const Json& whole)
{
    requireVersion(whole);
    Session session;
    const auto readAll = [](auto& list, auto readOne) {
        return [&list, readOne](const Json& values, const std::string& place) {
            requireArray(values, place);
            for (std::size_t i = 0; i < values.size(); ++i)
                list.push_back(readOne(values[i], place + " " + std::to_string(i + 1)));
        };
    };
    readObject(
        whole, "",
        {{VERSION_KEY, [](const Json&, const std::string&) {}},
         {"files", readAll(session.files, readFile)},
         {"reading", readAll(session.reading, textIn)},
         {"style", [&](const Json& v, const std::string& p) { session.style = readStyle(v, p); }},
         {"colours of data",
          [&](const Json& v, const std::string& p) { session.areColoursShown = switchIn(v, p); }},
         {"camera",
          [&](const Json& v, const std::string& p) { session.camera = readCamera(v, p); }},
         {"frame", [&](const Json& v, const std::string& p) { session.frame = frameIn(v, p); }},
         {"size",
          [&](const Json& v, const std::string& p) { session.pictureSize = readSize(v, p); }},
         {"picture",
          [&](const Json& v, const std::string& p) { session.picture = readPicture(v, p); }},
         {"measurements", readAll(session.measurements, readMeasurement)},
         {"views", readAll(session.views, readView)},
         {"beside",
          [&](const Json& v, const std::string& p) { session.beside = readBeside(v, p); }}});
    std::set<std::string> names;
    for (const NamedView& view : session.views) {
        if (!names.insert(view.name).second)
            throw Fault("views: found two of the name " + inQuotes(view.name) +
                        ", expected one of each");
    }
    if (session.files.empty())
        throw Fault("found no files, expected at least one");
    return session;
}

} // namespace

std::string textOf(const Session& session)
{
    Json whole;
    whole[VERSION_KEY] = VERSION;
    Json& files = whole["files"] = Json::array();
    for (const SessionFile& file : session.files) {
        Json& entry = files.emplace_back();
        entry["name"] = file.name;
        entry["bytes"] = file.bytes;
        if (!file.digest.empty())
            entry["sha256"] = file.digest;
    }
    if (!session.reading.empty())
        whole["reading"] = session.reading;
    Json style = Json::object();
    for (const Setting& setting : settings()) {
        if (const auto text = setting.write(session.style))
            style[setting.name] = *text;
    }
    whole["style"] = style;
    if (!session.areColoursShown)
        whole["colours of data"] = false;
    if (session.camera)
        whole["camera"] = formatCamera(*session.camera);
    if (session.frame)
        whole["frame"] = *session.frame;
    if (session.pictureSize)
        whole["size"] = {session.pictureSize->first, session.pictureSize->second};
    const Json picture = jsonOf(session.picture);
    if (!picture.empty())
        whole["picture"] = picture;
    for (const Measurement& measurement : session.measurements) {
        Json& entry = whole["measurements"].emplace_back();
        entry["what"] = textOf(measurement);
        if (!measurement.name.empty())
            entry["name"] = measurement.name;
        if (!measurement.isShown)
            entry["shown"] = false;
    }
    for (const NamedView& view : session.views)
        whole["views"].push_back({{"name", view.name}, {"camera", formatCamera(view.camera)}});
    if (!session.beside.what.empty())
        whole["beside"] = jsonOf(session.beside);
    return whole.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::optional<Session> parseSession(const std::string& text, std::string& fault)
{
    try {
        return readSession(Json::parse(text, refuseDeeper));
    } catch (const Fault& refused) {
        fault = refused.what();
    } catch (const Json::parse_error& error) {
        const std::size_t at = std::min(error.byte, text.size());
        const auto line = 1 + std::count(text.begin(), text.begin() + std::ptrdiff_t(at), '\n');
        const char* const found = error.byte > text.size() ? "the end" : "what is no JSON";
        fault = "line " + std::to_string(line) + ": found " + found + ", expected a session";
    } catch (const Json::exception&) { // a number beyond all doubles
        fault = "found what is no JSON, expected a session";
    }
    return std::nullopt;
}

} // namespace strandview
