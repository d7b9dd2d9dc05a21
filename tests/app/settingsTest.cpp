// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/settings.h"

#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "command/parseOptions.h"

namespace strandview {

namespace {

// Texts that a setting takes, by its kind.
std::vector<std::string> examplesOf(const Setting& setting)
{
    switch (setting.kind) {
    case SettingKind::SWITCH:
        return {"on", "off"};
    case SettingKind::LENGTH:
        return {"0.1", "1e-09", "0.30000000000000004", "12345.678"};
    case SettingKind::LINE_WIDTH:
        return {"2.5", "0.1", "20", "0.30000000000000004", "1"};
    case SettingKind::LIGHT:
        return {"0.5", "-1e-20,0.30000000000000004,-1:0.25", "0,0,-1", "0"};
    case SettingKind::SHININESS:
        return {"0", "12.5", "10,0.30000000000000004,0"};
    case SettingKind::COUNT:
        return {std::to_string(setting.least), std::to_string(setting.most), "7"};
    case SettingKind::SHARE:
        return {"0.5", "1", "0.125", "0"};
    case SettingKind::COLOUR:
        return {"#000000", "#ffffff", "#0a80f1"};
    case SettingKind::CHOICE:
        return setting.words;
    case SettingKind::PARTS:
        return {"backbone", "bases,boxes,pairs,atoms", "none", "backbone,bases"};
    case SettingKind::SCALAR:
        return {"curvature", "my own scalar"};
    case SettingKind::RANGE:
        return {"-1:2.5", ":3", "0.1:", "frame", "symmetric", "auto"};
    case SettingKind::TEXT:
        return {"", "Biegung κ, ä (1/Å)", "two  blanks 'and' quotes", "-x", "[a, b]", "%n"};
    case SettingKind::NUMBER_FORMAT:
        return {".2f", "auto", ".0e", ".15g"};
    case SettingKind::CLIP:
        return {"z:1.5", "-x", "1,0,1:0.2", "0.30000000000000004,-1e-20,5:-1e+20", "off"};
    case SettingKind::COLOUR_MAP:
        return {"viridis", "vik_r", "red,#ffffff,blue"};
    case SettingKind::REFERENCE:
        return {"first", "a folder/rest.txt"};
    case SettingKind::THINGS:
        return {
            "rod 2: hidden", "others: hidden",
            "rod 1: radius=0.3, slices=8, subsegments=2, no tube, ribbon, two-sided, "
            "ribbon-colour=#00ff00, transparency=0.25",
            "rods 3-5: colour=#ff0000; DNA 1: shown, name=\"a, \\\"b\\\": c; d\"; others: hidden",
            "birod 1: deleted, name=Left arm; bases: hidden; frame 7: name=\"[x, y]\""};
    }
    return {};
}

const char* refusedBy(const Setting& setting)
{
    switch (setting.kind) {
    case SettingKind::SCALAR:
    case SettingKind::REFERENCE:
    case SettingKind::TEXT:
        return nullptr; // every name
    default:
        return "no such thing";
    }
}

StyleRequest parsed(const std::vector<std::string>& arguments)
{
    std::vector<const char*> line{"strandview"};
    for (const std::string& argument : arguments)
        line.push_back(argument.c_str());
    const ParsedOptions options = parseOptions(int(line.size()), line.data());
    return options.options ? StyleRequest(*options.options) : StyleRequest();
}

} // namespace

TEST(SettingsTest, ARequestThatSaysNothingWritesNothing)
{
    for (const Setting& setting : settings())
        EXPECT_EQ(setting.write(StyleRequest()), std::nullopt) << setting.name;
    EXPECT_TRUE(argumentsOf(StyleRequest()).empty());
}

TEST(SettingsTest, ASettingWritesATextThatReadsBackAsTheSame)
{
    for (const Setting& setting : settings()) {
        for (const std::string& text : examplesOf(setting)) {
            StyleRequest request;
            ASSERT_EQ(setting.read(text, request), "") << setting.name << " " << text;
            const std::optional<std::string> written = setting.write(request);
            if (!written) { // what is usual
                EXPECT_EQ(request, StyleRequest()) << setting.name << " " << text;
                continue;
            }
            EXPECT_EQ(*written, text) << setting.name;
            EXPECT_NE(request, StyleRequest()) << setting.name << " " << text;
            setting.clear(request);
            EXPECT_EQ(request, StyleRequest()) << setting.name << " " << text;
        }
    }
}

TEST(SettingsTest, WhatIsRefusedLeavesTheRequestAsItWas)
{
    for (const Setting& setting : settings()) {
        const char* refused = refusedBy(setting);
        if (!refused)
            continue;
        StyleRequest request;
        ASSERT_EQ(setting.read(examplesOf(setting).front(), request), "");
        const std::optional<std::string> before = setting.write(request);
        const std::string fault = setting.read(refused, request);
        EXPECT_EQ(fault.rfind("found 'no such thing', expected ", 0), 0u) << fault;
        EXPECT_EQ(setting.write(request), before) << setting.name;
    }
}

// The command line that is copied from a window says what the window shows.
TEST(SettingsTest, TheArgumentsOfARequestAreParsedAsTheSameRequest)
{
    std::mt19937 random(1);
    for (int round = 0; round < 200; ++round) {
        StyleRequest request;
        for (const Setting& setting : settings()) {
            const std::vector<std::string> examples = examplesOf(setting);
            if (random() % 2 == 0 && setting.isOfUse(request)) {
                ASSERT_EQ(setting.read(examples[random() % examples.size()], request), "");
            }
        }
        const StyleRequest again = parsed(argumentsOf(request));
        for (const Setting& setting : settings())
            EXPECT_EQ(setting.write(again), setting.write(request)) << setting.name;
        EXPECT_EQ(again, request);
    }
}

TEST(SettingsTest, EverySettingHasANameOfItsOwnAndALabel)
{
    std::set<std::string> names, labels;
    for (const Setting& setting : settings()) {
        EXPECT_TRUE(names.insert(setting.name).second) << setting.name;
        EXPECT_TRUE(labels.insert(setting.label).second) << setting.label;
        EXPECT_EQ(&settingOf(setting.name), &setting);
        EXPECT_EQ(setting.values == nullptr, setting.kind == SettingKind::SWITCH) << setting.name;
    }
}

TEST(SettingsTest, AFormatOfNumbersThatIsNoneIsRefusedWithWhatIs)
{
    StyleRequest request;
    EXPECT_EQ(
        settingOf("legend-format").read("%s", request),
        "found '%s', expected auto or a point, a number of digits from 0 to 15 and f, e or g, "
        "such as .2f");
    EXPECT_EQ(settingOf("legend").read("middle", request),
              "found 'middle', expected bottom, top, left, right or off");
    EXPECT_EQ(request, StyleRequest());
}

// What was a colour is the same after any number of ways through text.
TEST(SettingsTest, AColourByItsNameIsWrittenByItsLevels)
{
    StyleRequest request;
    ASSERT_EQ(settingOf("background").read("steelblue", request), "");
    EXPECT_EQ(settingOf("background").write(request), "#4682b4");
}

} // namespace strandview
