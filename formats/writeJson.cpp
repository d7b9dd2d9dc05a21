// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/writeJson.h>

#include <cmath>
#include <cstddef>
#include <optional>
#include <string>

#include <nlohmann/json.hpp>

#include <strandview/formats/FrameLoader.h>

namespace strandview {

namespace {

using Points = std::vector<algebra3d::Vector3<double>>;
using Rotations = std::vector<algebra3d::Quaternion<double>>;

class JsonText : public PieceText
{
public:
    using PieceText::PieceText;

    void putText(const std::string& text)
    {
        using nlohmann::json;
        put(json(text).dump(-1, ' ', false, json::error_handler_t::replace));
    }

    /// The shortest text that is read back as this double: a zero keeps its sign as no whole
    /// number does.
    void putNumber(double number)
    {
        if (!std::isfinite(number))
            put("null");
        else if (number == 0)
            put(std::signbit(number) ? "-0.0" : "0");
        else
            putDigits(number);
    }

    template <typename Items, typename Put>
    void putList(const Items& items, std::string_view separator, Put putItem)
    {
        put("[");
        for (std::size_t i = 0; i < items.size() && isTaken(); ++i) {
            put(i == 0 ? "" : separator);
            putItem(items[i]);
        }
        put("]");
    }

    template <std::size_t count, typename Tuple>
    void putTuple(const Tuple& tuple)
    {
        put("[");
        for (std::size_t i = 0; i < count; ++i) {
            put(i == 0 ? "" : ", ");
            putNumber(tuple[int(i)]);
        }
        put("]");
    }
};

/// An object that is being written, until this goes.
class Object
{
public:
    explicit Object(JsonText& jsonText) : text(jsonText) { text.put("{"); }
    ~Object() { text.put("}"); }
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    /// The value comes next.
    JsonText& member(const std::string& key, std::string_view separator = ", ")
    {
        text.put(isEmpty ? "" : separator);
        isEmpty = false;
        text.putText(key);
        text.put(": ");
        return text;
    }

    void addTrue(const char* key, bool flag)
    {
        if (flag)
            member(key).put("true");
    }
    void addText(const char* key, const std::string& value)
    {
        if (!value.empty())
            member(key).putText(value);
    }
    void addText(const char* key, const std::optional<std::string>& value)
    {
        if (value)
            member(key).putText(*value);
    }
    void addNumber(const char* key, const std::optional<double>& value)
    {
        if (value)
            member(key).putNumber(*value);
    }
    void addMolecule(std::size_t molecule)
    {
        if (molecule > 0)
            member("molecule").put(std::to_string(molecule));
    }
    void addPoint(const char* key, const algebra3d::Vector3<double>& point)
    {
        member(key).putTuple<3>(point);
    }
    void addRotation(const algebra3d::Quaternion<double>& rotation)
    {
        member("quaternion").putTuple<4>(rotation);
    }
    void addCurve(const Points& points, const Rotations& rotations)
    {
        member("points").putList(points, ",\n",
                                 [this](const auto& point) { text.putTuple<3>(point); });
        member("quaternions", ",\n").putList(rotations, ",\n", [this](const auto& rotation) {
            text.putTuple<4>(rotation);
        });
    }
    void addStrand(const char* key, const Points& points, const Rotations& rotations)
    {
        member(key, ",\n");
        Object(text).addCurve(points, rotations);
    }

private:
    JsonText& text;
    bool isEmpty = true;
};

void put(JsonText& text, const std::vector<Scalar>& scalars)
{
    Object object(text);
    for (const Scalar& scalar : scalars)
        object.member(scalar.name, ",\n").putList(scalar.values, ", ", [&text](double value) {
            text.putNumber(value);
        });
}

void put(Object& object, const Rod& rod)
{
    object.addText("name", rod.name);
    object.addTrue("closed", rod.isClosed);
    object.addText("colour", rod.colour);
    object.addNumber("radius", rod.radius);
    object.addTrue("backbone", rod.isBackbone);
    object.addMolecule(rod.molecule);
    object.addText("frames", std::string(rod.hasFrames ? "" : "made"));
    object.addCurve(rod.points, rod.rotations);
    if (!rod.scalars.empty())
        put(object.member("scalars", ",\n"), rod.scalars);
}

void put(Object& object, const Birod& birod)
{
    object.addStrand("average", birod.points, birod.rotations);
    object.addStrand("strand1", birod.points1, birod.rotations1);
    object.addStrand("strand2", birod.points2, birod.rotations2);
}

void put(Object& object, const Dna& dna)
{
    object.addText("name", dna.name);
    object.addTrue("closed", dna.isClosed);
    object.addMolecule(dna.molecule);
    if (dna.bases.find_first_not_of(UNKNOWN_BASE) == std::string::npos)
        object.member("sequence").put("null");
    else
        object.member("sequence").putText(dna.bases);
    object.addStrand("pairs", dna.pairPoints, dna.pairRotations);
    object.addStrand("strand1", dna.points1, dna.rotations1);
    object.addStrand("strand2", dna.points2, dna.rotations2);
}

void put(Object& object, const Marker& marker)
{
    constexpr const char* shapes[] = {"sphere", "cube", "cross"}; // in the order of Marker::Shape
    object.addPoint("point", marker.point);
    object.addText("shape", std::string(shapes[int(marker.shape)]));
    object.addNumber("size", marker.size);
    object.addText("colour", marker.colour);
    object.addNumber("transparency", marker.transparency);
    object.member("id").put(std::to_string(marker.id));
}

void put(Object& object, const Frame& frame)
{
    object.addPoint("point", frame.point);
    object.addRotation(frame.rotation);
    object.addNumber("size", frame.size);
}

void put(Object& object, const Arrow& arrow)
{
    object.addPoint("from", arrow.from);
    object.addPoint("to", arrow.to);
    object.addNumber("radius", arrow.radius);
    object.addText("colour", arrow.colour);
}

void put(Object& object, const LoneBase& base)
{
    object.addText("base", std::string(1, base.base));
    object.addPoint("point", base.point);
    object.addRotation(base.rotation);
    object.addMolecule(base.molecule);
}

template <typename Item>
void addList(Object& object, const char* key, const std::vector<Item>& items)
{
    if (items.empty())
        return;
    JsonText& text = object.member(key, ",\n");
    text.putList(items, ",\n", [&text](const Item& item) {
        Object ofItem(text);
        put(ofItem, item);
    });
}

void put(Object& object, const Configuration& configuration)
{
    addList(object, "rods", configuration.rods);
    addList(object, "birods", configuration.birods);
    addList(object, "dna", configuration.dnas);
    addList(object, "markers", configuration.markers);
    addList(object, "frames", configuration.frames);
    addList(object, "arrows", configuration.arrows);
    addList(object, "bases", configuration.loneBases);
}

/// Whether every frame was loaded.
bool putFrames(JsonText& text, Series& series, FrameLoader& loader)
{
    const bool withTimes = areTimesKnown(series);
    text.put("[");
    for (std::size_t frame = 0; frame < series.count() && text.isTaken(); ++frame) {
        const std::optional<Configuration> loaded = loader.load(frame);
        if (!loaded)
            return false;
        text.put(frame == 0 ? "\n" : ",\n");
        Object object(text);
        if (withTimes)
            object.addNumber("time", series.time(frame));
        put(object, *loaded);
    }
    text.put("]");
    return true;
}

template <typename PutRest>
bool putFile(const TextSink& sink, PutRest putRest)
{
    JsonText text(sink);
    bool isWhole;
    {
        Object object(text);
        object.member("strandview").put("1");
        isWhole = putRest(object, text);
    }
    text.put("\n");
    return isWhole && text.flush();
}

} // namespace

bool writeJson(const Configuration& configuration, const TextSink& sink)
{
    return putFile(sink, [&](Object& object, JsonText&) {
        put(object, configuration);
        return true;
    });
}

bool writeJson(Series& series, const TextSink& sink, const Series::GoOn& goOn, ReadReport& report)
{
    report.error.clear();
    FrameLoader loader(series, goOn, report);
    if (series.count() != 1)
        return putFile(sink, [&](Object& object, JsonText& text) {
            object.member("series", ",\n");
            return putFrames(text, series, loader);
        });
    const std::optional<Configuration> only = loader.load(0);
    return only && writeJson(*only, sink);
}

} // namespace strandview
