// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/thingTexts.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <optional>
#include <set>
#include <utility>

#include <strandview/formats/text/wording.h>

#include "request/parseNumber.h"
#include "request/settings.h"
#include "request/wording.h"

namespace strandview {

namespace {

using Text = std::optional<std::string>;

const char* const OTHERS = "others";
const int MOST_THINGS = 1'000'000; // of a kind

struct NamedKind
{
    ThingKind kind;
    const char* name;
};

const NamedKind KINDS[] = {{ThingKind::ROD, "rod"},       {ThingKind::BIROD, "birod"},
                           {ThingKind::MARKER, "marker"}, {ThingKind::ARROW, "arrow"},
                           {ThingKind::DNA, "DNA"},       {ThingKind::LONE_BASES, "bases"},
                           {ThingKind::FRAME, "frame"}};

// What can be said of a thing's look besides whether it is there

struct Attribute
{
    const char* name;
    const char* setting; // of all things, whose value it is; null for none
    const char* values;  // null for what is said by its name alone, or with "no" before it
    std::set<ThingKind> kinds;
    Text (*value)(const ThingLook& look);
    std::string (*read)(const std::string& text, ThingLook& look);
    void (*clear)(ThingLook& look);
    void (*copyIfSaid)(const ThingLook& said, ThingLook& look);
    bool needsNodes; // whether only new nodes can show it
    bool ofStrands;  // whether a strand may have it, too
};

// By a setting that is of all things: what it takes and how it is written.

template <auto ofLook, auto ofRequest, const char* const& setting>
Text valueBySetting(const ThingLook& look)
{
    if (!(look.*ofLook))
        return std::nullopt;
    StyleRequest request;
    request.*ofRequest = *(look.*ofLook);
    return settingOf(setting).value(request);
}

template <auto ofLook, auto ofRequest, const char* const& setting>
std::string readBySetting(const std::string& text, ThingLook& look)
{
    StyleRequest request;
    std::string fault = settingOf(setting).read(text, request);
    if (fault.empty())
        look.*ofLook = request.*ofRequest;
    return fault;
}

template <auto ofLook>
void clear(ThingLook& look)
{
    look.*ofLook = std::nullopt;
}

template <auto ofLook>
void copyIfSaid(const ThingLook& said, ThingLook& look)
{
    if (said.*ofLook)
        look.*ofLook = said.*ofLook;
}

template <auto ofLook, auto ofRequest, const char* const& setting>
Attribute bySetting(const char* name, const std::set<ThingKind>& kinds, bool needsNodes = true,
                    bool ofStrands = false)
{
    return {name,
            setting,
            settingOf(setting).values,
            kinds,
            &valueBySetting<ofLook, ofRequest, setting>,
            &readBySetting<ofLook, ofRequest, setting>,
            &clear<ofLook>,
            &copyIfSaid<ofLook>,
            needsNodes,
            ofStrands};
}

constexpr const char* TUBE_COLOUR = "tube-colour";
constexpr const char* RADIUS = "radius";
constexpr const char* RIBBON_WIDTH = "ribbon-width";
constexpr const char* SLICES = "slices";
constexpr const char* SUBSEGMENTS = "subsegments";
constexpr const char* TUBE = "tube";
constexpr const char* RIBBON = "ribbon";
constexpr const char* TWO_SIDED = "two-sided";
constexpr const char* RIBBON_COLOUR = "ribbon-colour";
constexpr const char* TRANSPARENCY = "transparency";

std::vector<Attribute> makeAttributes()
{
    using Look = ThingLook;
    using All = StyleRequest;
    const std::set<ThingKind> tubes{ThingKind::ROD, ThingKind::BIROD, ThingKind::DNA};
    const std::set<ThingKind> ribbons{ThingKind::ROD, ThingKind::BIROD};
    std::set<ThingKind> coloured = tubes, all;
    coloured.insert({ThingKind::MARKER, ThingKind::ARROW});
    for (const NamedKind& known : KINDS)
        all.insert(known.kind);
    std::set<ThingKind> seenThrough = tubes; // glyphs have their own
    seenThrough.insert(ThingKind::LONE_BASES);
    return {
        {"name", nullptr, "TEXT", all, [](const Look& look) { return look.name; },
         [](const std::string& text, Look& look) {
             look.name = text;
             return std::string();
         },
         &clear<&Look::name>, &copyIfSaid<&Look::name>, false, true},
        bySetting<&Look::colour, &All::tubeColour, TUBE_COLOUR>("colour", coloured, false, true),
        bySetting<&Look::radius, &All::radius, RADIUS>("radius", tubes, true, true),
        bySetting<&Look::ribbonWidth, &All::ribbonWidth, RIBBON_WIDTH>("ribbon-width", ribbons),
        bySetting<&Look::slices, &All::slices, SLICES>("slices", tubes),
        bySetting<&Look::subsegments, &All::subsegments, SUBSEGMENTS>("subsegments", tubes),
        bySetting<&Look::showTube, &All::showTube, TUBE>("tube", tubes),
        bySetting<&Look::showRibbon, &All::showRibbon, RIBBON>("ribbon", ribbons),
        bySetting<&Look::twoSidedRibbon, &All::twoSidedRibbon, TWO_SIDED>("two-sided", ribbons),
        bySetting<&Look::ribbonColour, &All::ribbonColour, RIBBON_COLOUR>("ribbon-colour", ribbons),
        bySetting<&Look::transparency, &All::transparency, TRANSPARENCY>("transparency",
                                                                         seenThrough, false, true)};
}

const std::vector<Attribute>& attributes()
{
    static const std::vector<Attribute> all = makeAttributes();
    return all;
}

bool mayHave(const Attribute& attribute, const ThingId& thing)
{
    return attribute.kinds.count(thing.kind) > 0 &&
           (thing.part == ThingPart::WHOLE || attribute.ofStrands);
}

const Attribute* findAttribute(std::string key, const ThingId& thing)
{
    for (const char* american : {"color", "ribbon-color"}) {
        if (key == american)
            key.insert(key.size() - 1, "u");
    }
    for (const Attribute& attribute : attributes()) {
        if (key == attribute.name && mayHave(attribute, thing))
            return &attribute;
    }
    return nullptr;
}

const Attribute* attributeOfSetting(const std::string& setting)
{
    for (const Attribute& attribute : attributes()) {
        if (attribute.setting && setting == attribute.setting)
            return &attribute;
    }
    return nullptr;
}

// "hidden, shown, deleted, name=TEXT, colour=COLOUR".
std::string listOfAttributes(const ThingId& thing)
{
    std::string text = "hidden, shown, deleted";
    for (const Attribute& attribute : attributes()) {
        if (!mayHave(attribute, thing))
            continue;
        const std::string name = attribute.name;
        text += ", " + (attribute.values ? name + "=" + attribute.values : name + ", no " + name);
    }
    return text;
}

// Text with quotation marks

const char* const BLANKS = " \t\r\n";

// Behind the second of two quotation marks, of which the first is there; past the end for none.
std::size_t findEndOfQuotation(const std::string& text, std::size_t from)
{
    for (std::size_t i = from + 1; i < text.size(); ++i) {
        if (text[i] == '\\')
            ++i;
        else if (text[i] == '"')
            return i + 1;
    }
    return text.size() + 1;
}

// Where the first of these characters is, from the beginning of an item on, that is in no value
// between quotation marks; the length for none. Marks elsewhere are characters as others are.
std::size_t findUnquoted(const std::string& text, char wanted, std::size_t from)
{
    bool isInValue = false;
    for (std::size_t i = from; i < text.size(); ++i) {
        if (text[i] == wanted)
            return i;
        if (text[i] == ',' || text[i] == ';') {
            isInValue = false;
        } else if (text[i] == '=' && !isInValue) {
            isInValue = true;
            const std::size_t value = std::min(text.find_first_not_of(BLANKS, i + 1), text.size());
            if (value < text.size() && text[value] == '"')
                i = findEndOfQuotation(text, value) - 1;
        }
    }
    return text.size();
}

std::vector<std::string> splitAt(char separator, const std::string& text)
{
    std::vector<std::string> parts;
    for (std::size_t from = 0; from <= text.size();) {
        const std::size_t end = findUnquoted(text, separator, from);
        parts.push_back(stripped(text.substr(from, end - from)));
        from = end + 1;
    }
    return parts;
}

std::string quoted(const std::string& text)
{
    if (!text.empty() && text == stripped(text) && text.find_first_of(",;:=\"\\") == text.npos)
        return text;
    std::string all = "\"";
    for (const char c : text)
        all += (c == '"' || c == '\\' ? "\\" : "") + std::string(1, c);
    return all + "\"";
}

// Nothing of what begins with a quotation mark and does not end with the second one.
Text unquoted(const std::string& text)
{
    if (text.empty() || text.front() != '"')
        return text;
    if (findEndOfQuotation(text, 0) != text.size())
        return std::nullopt;
    std::string plain;
    for (std::size_t i = 1; i + 1 < text.size(); ++i) {
        if (text[i] == '\\')
            ++i;
        plain += text[i];
    }
    return plain;
}

std::string inLowerCase(std::string text)
{
    for (char& c : text)
        c = char(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

// Which things

struct Range
{
    ThingKind kind = ThingKind::OTHER;
    std::size_t first = 0, last = 0;
    ThingPart part = ThingPart::WHOLE;
};

// "strand 1" of what has strands, and nothing for the whole.
std::optional<ThingPart> parsePart(const std::string& text, ThingKind kind)
{
    if (text.empty())
        return ThingPart::WHOLE;
    std::string name;
    for (const char c : inLowerCase(text)) {
        if (c != ' ' || name.empty() || name.back() != ' ')
            name += c;
    }
    for (const ThingPart part : partsOf(kind)) {
        if (name == nameOf(part))
            return part;
    }
    return std::nullopt;
}

// "rod 2", "rods 3-5", "bases", "DNA 1 strand 2".
std::optional<Range> parseRange(const std::string& text)
{
    const std::size_t end = std::min(text.find_first_of(" \t"), text.size());
    const std::string word = inLowerCase(text.substr(0, end)), behind = stripped(text.substr(end));
    const std::size_t endOfNumbers =
        std::min(behind.find_first_not_of("0123456789- \t"), behind.size());
    const std::string numbers = stripped(behind.substr(0, endOfNumbers));
    const auto* const known =
        std::find_if(std::begin(KINDS), std::end(KINDS), [&word](const NamedKind& kind) {
            const std::string name = inLowerCase(kind.name);
            return word == name || word == name + "s";
        });
    if (known == std::end(KINDS))
        return std::nullopt;
    const std::optional<ThingPart> part = parsePart(behind.substr(endOfNumbers), known->kind);
    if (!part)
        return std::nullopt;
    if (known->kind == ThingKind::LONE_BASES)
        return numbers.empty() ? std::optional(Range{known->kind}) : std::nullopt;
    const std::size_t dash = std::min(numbers.find('-'), numbers.size());
    const std::optional<int> first = parseNumber<int>(stripped(numbers.substr(0, dash)));
    const std::optional<int> last =
        dash == numbers.size() ? first : parseNumber<int>(stripped(numbers.substr(dash + 1)));
    if (!first || !last || *first < 1 || *last < *first || *last > MOST_THINGS)
        return std::nullopt;
    return Range{known->kind, std::size_t(*first) - 1, std::size_t(*last) - 1, *part};
}

// " strand 1".
std::string nameBehind(ThingPart part)
{
    return part == ThingPart::WHOLE ? "" : std::string(" ") + nameOf(part);
}

std::string nameOf(const Range& range)
{
    const std::string first = nameOf(ThingId{range.kind, range.first});
    if (range.first == range.last)
        return nameOf(ThingId{range.kind, range.first, range.part});
    const std::size_t blank = first.find(' ');
    return first.substr(0, blank) + "s" + first.substr(blank) + "-" +
           std::to_string(range.last + 1) + nameBehind(range.part);
}

// How they look

std::string readItem(const std::string& item, const ThingId& thing, ThingLook& look)
{
    if (item == "hidden" || item == "shown") {
        look.hidden = item == "hidden";
        return "";
    }
    if (item == "deleted") {
        look.isDeleted = true;
        return "";
    }
    const std::size_t equals = findUnquoted(item, '=', 0);
    std::string key = stripped(item.substr(0, equals));
    const bool isSaid = equals < item.size();
    const bool isNo = !isSaid && (key.rfind("no ", 0) == 0 || key.rfind("no-", 0) == 0);
    if (isNo)
        key = stripped(key.substr(3));
    const Attribute* const attribute = findAttribute(key, thing);
    if (!attribute || isSaid != (attribute->values != nullptr))
        return found(item, listOfAttributes(thing));
    const std::string written = isSaid ? stripped(item.substr(equals + 1)) : isNo ? "off" : "on";
    const Text text = unquoted(written);
    const std::string fault =
        text ? attribute->read(*text, look) : found(written, "a second quotation mark, at the end");
    return fault.empty() ? "" : key + ": " + fault;
}

// What a text says of a look, beside what is said of it already.
void add(const ThingLook& said, ThingLook& look)
{
    if (said.hidden)
        look.hidden = said.hidden;
    look.isDeleted = look.isDeleted || said.isDeleted;
    for (const Attribute& attribute : attributes())
        attribute.copyIfSaid(said, look);
}

std::string readEntry(const std::string& entry, ThingLooks& looks)
{
    const std::size_t colon = std::min(entry.find(':'), entry.size());
    const std::string which = stripped(entry.substr(0, colon));
    const std::optional<Range> range = parseRange(which);
    if (colon == entry.size() || (!range && which != OTHERS))
        return found(colon == entry.size() ? entry : which,
                     "a thing and how it looks, such as rod 2: hidden; things are rod, birod, "
                     "marker, arrow, DNA and frame, each with its number from 1 on, bases, others, "
                     "and strands, such as DNA 1 strand 2 and birod 1 average");
    ThingLook said;
    std::vector<std::string> items = splitAt(',', entry.substr(colon + 1));
    if (which == OTHERS) {
        if (items.size() != 1 || (items[0] != "hidden" && items[0] != "shown"))
            return found(stripped(entry.substr(colon + 1)), "hidden or shown of others");
        looks.areOthersHidden = items[0] == "hidden";
        return "";
    }
    for (const std::string& item : items) {
        const std::string fault = readItem(item, {range->kind, range->first, range->part}, said);
        if (!fault.empty())
            return fault;
    }
    auto next = looks.ofThings.lower_bound({range->kind, range->first, range->part});
    for (std::size_t i = range->first; i <= range->last; ++i, ++next) {
        next = looks.ofThings.try_emplace(next, ThingId{range->kind, i, range->part});
        add(said, next->second);
    }
    return "";
}

// Where it is not said of it.
bool isHiddenWithOthers(const ThingId& thing, const ThingLooks& looks)
{
    const auto whole = thing.part == ThingPart::WHOLE
                           ? looks.ofThings.end()
                           : looks.ofThings.find({thing.kind, thing.index});
    const bool isSaid = whole != looks.ofThings.end() && whole->second.hidden;
    return isSaid ? *whole->second.hidden : looks.areOthersHidden;
}

// "hidden, name=arm"; empty for what is as others are.
std::string textOf(const ThingLook& look, bool areOthersHidden)
{
    std::string text;
    const auto add = [&text](const std::string& item) {
        text += (text.empty() ? "" : ", ") + item;
    };
    if (look.hidden.value_or(areOthersHidden) != areOthersHidden)
        add(*look.hidden ? "hidden" : "shown");
    if (look.isDeleted)
        add("deleted");
    for (const Attribute& attribute : attributes()) {
        const std::string name = attribute.name;
        if (const Text value = attribute.value(look))
            add(attribute.values ? name + "=" + quoted(*value)
                                 : (*value == "on" ? "" : "no ") + name);
    }
    return text;
}

} // namespace

std::string nameOf(const ThingId& thing)
{
    const auto* const known =
        std::find_if(std::begin(KINDS), std::end(KINDS),
                     [&thing](const NamedKind& kind) { return kind.kind == thing.kind; });
    if (known == std::end(KINDS))
        return "thing " + std::to_string(thing.index + 1);
    const bool isNumbered = thing.kind != ThingKind::LONE_BASES;
    return known->name + (isNumbered ? " " + std::to_string(thing.index + 1) : "") +
           nameBehind(thing.part);
}

std::vector<std::string> textsOf(const ThingLooks& looks)
{
    std::vector<std::pair<Range, std::string>> all;
    const ThingLook* lookBefore = nullptr; // of which the text is
    bool wasHidden = false;
    std::string text;
    for (const auto& [thing, look] : looks.ofThings) {
        const bool isHidden = isHiddenWithOthers(thing, looks);
        if (!lookBefore || isHidden != wasHidden || !(look == *lookBefore))
            text = textOf(look, isHidden);
        lookBefore = &look;
        wasHidden = isHidden;
        if (text.empty())
            continue;
        const bool isNext = !all.empty() && all.back().first.kind == thing.kind &&
                            all.back().first.part == thing.part &&
                            all.back().first.last + 1 == thing.index && all.back().second == text;
        if (isNext)
            all.back().first.last = thing.index;
        else
            all.push_back({{thing.kind, thing.index, thing.index, thing.part}, text});
    }
    std::vector<std::string> texts;
    texts.reserve(all.size() + 1);
    for (const auto& [range, ofRange] : all)
        texts.push_back(nameOf(range) + ": " + ofRange);
    if (looks.areOthersHidden)
        texts.push_back(std::string(OTHERS) + ": hidden");
    return texts;
}

std::string readThings(const std::vector<std::string>& texts, ThingLooks& looks)
{
    ThingLooks next = looks;
    for (const std::string& text : texts) {
        if (stripped(text).empty())
            continue;
        for (const std::string& entry : splitAt(';', text)) {
            const std::string fault = readEntry(entry, next);
            if (!fault.empty())
                return fault;
        }
    }
    looks = std::move(next);
    return "";
}

std::string readThings(const std::string& text, ThingLooks& looks)
{
    return readThings(std::vector{text}, looks);
}

bool canHaveOwn(const std::string& setting, const ThingId& thing)
{
    const Attribute* const attribute = attributeOfSetting(setting);
    return attribute && mayHave(*attribute, thing);
}

std::optional<std::string> ownValue(const std::string& setting, const ThingLook& look)
{
    const Attribute* const attribute = attributeOfSetting(setting);
    return attribute ? attribute->value(look) : std::nullopt;
}

void setOwn(const std::string& setting, const std::optional<std::string>& text, ThingLook& look)
{
    const Attribute* const attribute = attributeOfSetting(setting);
    if (attribute && text)
        attribute->read(*text, look);
    else if (attribute)
        attribute->clear(look);
}

bool areOfSameNodes(const ThingLooks& shown, const ThingLooks& next)
{
    const auto isOfSameNodes = [&](const ThingId& thing) {
        const ThingLook before = shown.of(thing), after = next.of(thing);
        if (before == after)
            return true;
        return (!before.colour || after.colour) && // its own colours are its nodes' alone
               std::all_of(attributes().begin(), attributes().end(),
                           [&](const Attribute& attribute) {
                               return !attribute.needsNodes ||
                                      attribute.value(before) == attribute.value(after);
                           });
    };
    for (const ThingLooks* looks : {&shown, &next}) {
        for (const auto& [thing, look] : looks->ofThings) {
            if (!isOfSameNodes(thing))
                return false;
        }
    }
    return true;
}

} // namespace strandview
