// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/defaults.h"

#include <cstdlib>
#include <optional>
#include <random>
#include <utility>

#include <gmock/gmock.h>

#include "command/parseOptions.h"
#include "request/settings.h"
#include "session/sessionFile.h"
#include "support/TemporaryFolder.h"

namespace strandview {

using testing::HasSubstr;
using testing::StartsWith;

namespace {

// Some that a user may well have, of every kind.
const std::vector<std::pair<std::string, std::vector<std::string>>> EXAMPLES{
    {"radius", {"0.1", "1e-09", "0.30000000000000004"}},
    {"slices", {"3", "40"}},
    {"tube", {"off"}},
    {"ribbon", {"on", "off"}},
    {"tube-colour", {"#ff0000"}},
    {"background", {"#102030"}},
    {"colour-by", {"curvature", "my own = scalar", "#", " blanks at both ends "}},
    {"range", {"0:1", ":3", "symmetric"}},
    {"colours", {"vik_r", "red,#ffffff,blue"}},
    {"below-colour", {"#00ff00"}},
    {"legend", {"left", "off"}},
    {"legend-title", {"", "\"quoted\"", "'", "κ (1/Å) # no comment", " \t", "a\\b"}},
    {"legend-format", {".2f"}},
    {"scale-bar", {"on"}},
    {"scale-unit", {"", "µm"}},
    {"dna", {"none", "boxes,atoms"}},
    {"dna-unit", {"nm"}}};

StyleRequest someRequest(std::mt19937& random)
{
    StyleRequest request;
    for (const auto& [name, values] : EXAMPLES)
        if (random() % 2 == 0) {
            EXPECT_EQ(settingOf(name).read(values[random() % values.size()], request), "");
        }
    return request;
}

class DefaultsTest : public testing::Test
{
protected:
    std::string read(const std::string& text, StyleRequest& request) const
    {
        return readDefaults(folder.write("defaults.conf", text), request);
    }
    // The options of a command line after a file of this text, if it has one.
    std::optional<Options> parse(const std::vector<std::string>& arguments,
                                 const std::optional<std::string>& text) const
    {
        std::vector<const char*> line{"strandview"};
        for (const std::string& argument : arguments)
            line.push_back(argument.c_str());
        const std::string file =
            text ? folder.write("defaults.conf", *text) : folder.path("none.conf");
        return parseOptions(int(line.size()), line.data(), file).options;
    }

    const TemporaryFolder folder;
};

} // namespace

TEST_F(DefaultsTest, WhatIsWrittenIsReadAsTheSame)
{
    std::mt19937 random(4);
    for (int round = 0; round < 200; ++round) {
        const StyleRequest request = someRequest(random);
        StyleRequest again;
        ASSERT_EQ(read(defaultsText(request), again), "") << defaultsText(request);
        EXPECT_EQ(again, request) << defaultsText(request);
    }
}

TEST_F(DefaultsTest, EverySettingIsInTheFileThatAreNotSaidAsComments)
{
    StyleRequest request;
    request.radius = 0.25;
    request.showTube = false;
    const std::string text = defaultsText(request);
    for (const Setting& setting : settings()) {
        const std::string name = setting.name;
        const bool isSaid = name == "radius" || name == "tube";
        EXPECT_EQ(text.find("\n" + name + " = ") != std::string::npos, isSaid) << name;
        EXPECT_EQ(text.find("\n# " + name + " = ") != std::string::npos, !isSaid) << name;
    }
    EXPECT_THAT(text, HasSubstr("# Radius of the tube [from the data]\nradius = 0.25\n"));
    EXPECT_THAT(text, HasSubstr("\n# background = #ffffff\n"));
    EXPECT_THAT(text, HasSubstr("\n# slices = N\n"));
}

TEST_F(DefaultsTest, BlanksCommentsAndTheOrderOfLinesMayBeAny)
{
    StyleRequest request;
    ASSERT_EQ(read("  # all\r\n\n\tradius=0.5\r\nlegend-title =  \" two  blanks \" \nradius = 0.75",
                   request),
              "");
    EXPECT_EQ(request.radius, 0.75) << "the last one";
    EXPECT_EQ(request.legend.title, std::string(" two  blanks "));
}

TEST_F(DefaultsTest, AFaultIsToldWithItsLineAndLeavesTheRequestAsItWas)
{
    const std::string file = folder.path("defaults.conf");
    StyleRequest request;
    EXPECT_EQ(read("tube = off\n\nradius = -1\n", request),
              file + ":3: radius: found '-1', expected a length above 0");
    EXPECT_EQ(read("# comment\nradios = 1\n", request),
              file + ":2: found the setting 'radios', expected the name of one, such as radius");
    EXPECT_EQ(read("tube\n", request), file + ":1: found 'tube', expected name = value");
    EXPECT_THAT(readDefaults(folder.path(), request), StartsWith(folder.path() + ": "));
    EXPECT_EQ(request, StyleRequest());
    EXPECT_EQ(readDefaults(folder.path("no.conf"), request), "");
    EXPECT_EQ(
        readSettings({{"slices", "5", "session.json"}, {"slices", "x", "session.json"}}, request),
        "session.json: slices: found 'x', expected a whole number from 3 to 1000");
    EXPECT_EQ(request, StyleRequest());
}

// As where the home is no folder.
TEST_F(DefaultsTest, AFileThatCannotBeThereIsAsNone)
{
    StyleRequest request;
    EXPECT_EQ(readDefaults("/dev/null/.config/strandview/defaults.conf", request), "");
    EXPECT_EQ(readDefaults(folder.path(std::string(1000, 'x')), request), "");
    EXPECT_EQ(request, StyleRequest());
}

TEST_F(DefaultsTest, TheCommandLineComesAfterTheFile)
{
    const std::string text = "radius = 0.25\ntube = off\nbackground = black\n";
    std::optional<Options> options = parse({"--radius", "0.5", "--tube"}, text);
    ASSERT_TRUE(options);
    EXPECT_EQ(options->radius, 0.5);
    EXPECT_TRUE(options->showTube);
    EXPECT_EQ(settingOf("background").write(*options), "#000000");
    EXPECT_TRUE(options->hasDefaults);
    EXPECT_THAT(options->given, testing::ElementsAre("--radius", "--tube"));

    options = parse({"--no-defaults", "--slices", "5"}, text);
    ASSERT_TRUE(options);
    StyleRequest slicesAlone;
    slicesAlone.slices = 5;
    EXPECT_EQ(StyleRequest(*options), slicesAlone);
    EXPECT_TRUE(options->hasDefaults) << "a copied command is to leave them aside again";
    EXPECT_THAT(options->given, testing::ElementsAre("--slices"));
    EXPECT_FALSE(parse({}, std::nullopt)->hasDefaults);
    options = parse({"--save-defaults", "--slices", "5"}, text);
    ASSERT_TRUE(options);
    EXPECT_EQ(StyleRequest(*options), slicesAlone) << "what is kept is what is said now";
    EXPECT_FALSE(parse({"--save-defaults", "rod.txt"}, text));
    EXPECT_FALSE(parse({"--save-defaults", "--no-defaults"}, text));

    EXPECT_FALSE(parse({}, "radius = x\n"));
    EXPECT_TRUE(parse({"--no-defaults"}, "radius = x\n"));
    EXPECT_TRUE(parse({"--save-defaults"}, "radius = x\n")) << "it is replaced";
    EXPECT_TRUE(parse({}, std::nullopt));
}

TEST_F(DefaultsTest, WhatASettingNeedsMayStandInTheFile)
{
    EXPECT_FALSE(parse({"--range", "0:1"}, std::nullopt));
    const std::optional<Options> options = parse({"--range", "0:1"}, "colour-by = twist\n");
    ASSERT_TRUE(options);
    EXPECT_EQ(options->colourBy, std::string("twist"));
    EXPECT_EQ(options->rangeMax, 1);
}

// It has all of its style.
TEST_F(DefaultsTest, ASessionTakesNothingOfTheFile)
{
    Session session;
    session.name = folder.path("s.strandview");
    session.files = {{folder.write("rod.txt", "0 0 0\n1 0 0\n"), 0, ""}};
    session.style.slices = 5;
    ASSERT_EQ(saveSession(session, {}), "");
    const std::optional<Options> options = parse({session.name}, "radius = x\nslices = 7\n");
    ASSERT_TRUE(options);
    EXPECT_EQ(StyleRequest(*options), session.style);
    EXPECT_TRUE(options->hasDefaults);
}

// A file without it is shown all the same.
TEST_F(DefaultsTest, AScalarOfTheFileIsForDataThatHaveIt)
{
    EXPECT_TRUE(parse({}, "colour-by = load\n")->colourIfPossible);
    EXPECT_FALSE(parse({"--colour-by", "load"}, "colour-by = load\n")->colourIfPossible);
    EXPECT_FALSE(parse({"--colour-by", "load"}, std::nullopt)->colourIfPossible);
}

// What a picture was made from is known by it.
TEST_F(DefaultsTest, TheLookOfAPictureDependsOnThem)
{
    const auto look = [this](const std::vector<std::string>& arguments, const char* text) {
        return parse(arguments, text ? std::optional<std::string>(text) : std::nullopt)->look;
    };
    EXPECT_NE(look({}, "radius = 1\n"), look({}, nullptr));
    EXPECT_NE(look({}, "radius = 1\n"), look({}, "radius = 2\n"));
    EXPECT_EQ(look({}, "radius = 1\n"), look({}, "# same\nradius = 1.0\n"));
    EXPECT_EQ(look({"--no-defaults"}, "radius = 1\n"), look({}, nullptr));
}

TEST_F(DefaultsTest, TheUsualFileIsInTheFolderOfTheUsersSettings)
{
    const auto variable = [](const char* name) {
        const char* const value = std::getenv(name);
        return value ? std::optional<std::string>(value) : std::nullopt;
    };
    const auto set = [](const char* name, const std::optional<std::string>& value) {
        value ? ::setenv(name, value->c_str(), 1) : ::unsetenv(name);
    };
    const auto config = variable("XDG_CONFIG_HOME"), home = variable("HOME");
    set("XDG_CONFIG_HOME", "/etc/xdg");
    set("HOME", "/home/me");
    EXPECT_EQ(usualDefaultsFile(), "/etc/xdg/strandview/defaults.conf");
    set("XDG_CONFIG_HOME", "relative");
    EXPECT_EQ(usualDefaultsFile(), "/home/me/.config/strandview/defaults.conf");
    set("XDG_CONFIG_HOME", std::nullopt);
    EXPECT_EQ(usualDefaultsFile(), "/home/me/.config/strandview/defaults.conf");
    set("HOME", std::nullopt);
    EXPECT_EQ(usualDefaultsFile(), "");
    set("XDG_CONFIG_HOME", config);
    set("HOME", home);
}

TEST_F(DefaultsTest, ForOtherDataThereIsNoRangeReferenceTitleThingAndCut)
{
    StyleRequest request, rest;
    for (const auto& [name, value] :
         std::vector<std::pair<std::string, std::string>>{{"colour-by", "load"},
                                                          {"range", "0:1"},
                                                          {"compare", "first"},
                                                          {"thing", "rod 2: hidden"},
                                                          {"clip", "x:1"},
                                                          {"legend-title", "Load"},
                                                          {"legend-unit", "N"},
                                                          {"legend", "left"},
                                                          {"scale-bar", "on"},
                                                          {"scale-unit", "nm"},
                                                          {"radius", "2"}}) {
        ASSERT_EQ(settingOf(name).read(value, request), "");
        const bool stays = name == "colour-by" || name == "legend" || name == "scale-bar" ||
                           name == "scale-unit" || name == "radius";
        if (stays) {
            ASSERT_EQ(settingOf(name).read(value, rest), "");
        }
    }
    EXPECT_EQ(forOtherData(request), rest);
}

} // namespace strandview
