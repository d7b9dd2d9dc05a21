// SPDX-License-Identifier: GPL-3.0-or-later
// Which folder may include which: the map of docs/architecture.md, kept.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace {

namespace fs = std::filesystem;
using Rooms = std::set<std::string>;

// What each room may include besides its own. The classes of src/ and their private rooms are
// one library: those may include the classes that they serve.
const std::map<std::string, Rooms> MAY_INCLUDE{
    {"algebra3d", {}},
    {"biarc", {}},
    {"model", {"algebra3d"}},
    {"analysis", {"algebra3d", "model"}},
    {"formats", {"algebra3d", "model", "analysis"}},
    {"src/detail", {"algebra3d", "biarc", "src"}},
    {"src/sampling", {"algebra3d", "biarc", "src", "src/detail"}},
    {"src/picking", {"algebra3d", "biarc", "src", "src/detail"}},
    {"src/drawing", {"algebra3d", "biarc", "src", "src/detail", "src/sampling"}},
    {"src", {"algebra3d", "biarc", "src/detail", "src/sampling", "src/picking", "src/drawing"}},
    {"app/request", {"algebra3d", "model", "analysis", "formats", "src"}},
    {"app/session", {"algebra3d", "formats", "app/request", "app/output"}},
    {"app/command",
     {"algebra3d", "model", "analysis", "formats", "src", "app/request", "app/session"}},
    {"app/scene", {"algebra3d", "biarc", "model", "analysis", "formats", "src", "app/request"}},
    {"app/camera", {"algebra3d", "model", "analysis", "formats", "src", "app/request"}},
    {"app/info", {"algebra3d", "model", "analysis", "formats", "app/request"}},
    {"app/output", {"algebra3d", "model", "analysis", "formats", "app/request", "app/scene"}},
    {"app/pictures",
     {"algebra3d", "model", "analysis", "formats", "src", "app/request", "app/camera",
      "app/output"}},
    {"app/plotting",
     {"algebra3d", "model", "analysis", "formats", "app/request", "app/scene", "app/output",
      "app/pictures"}},
    {"app/rendering",
     {"algebra3d", "model", "analysis", "formats", "src", "app/request", "app/scene", "app/camera",
      "app/output", "app/pictures"}},
    {"app/playing", {"algebra3d", "model", "analysis", "formats", "app/request", "app/scene"}},
    {"app/window",
     {"algebra3d", "model", "analysis", "formats", "src", "app/request", "app/scene", "app/camera",
      "app/output", "app/session", "app/pictures", "app/plotting", "app/playing"}},
    {"app",
     {"algebra3d", "model", "analysis", "formats", "src", "app/request", "app/command", "app/scene",
      "app/camera", "app/info", "app/output", "app/session", "app/pictures", "app/plotting", "app/rendering",
      "app/playing", "app/window"}},
};

// Data and no code: the atoms of bases, which the library draws and analysis fits, are said once,
// and what is below a scene cannot ask the library for them.
const std::map<std::string, Rooms> TABLES_OF_OTHER_ROOMS{
    {"src/idealbases.cpp",
     {"strandview/model/idealBaseNames.inc", "strandview/model/idealBaseCoordinates.inc"}},
};

bool isTableOfOtherRoom(const std::string& file, const std::string& include)
{
    const auto tables = TABLES_OF_OTHER_ROOMS.find(file);
    return tables != TABLES_OF_OTHER_ROOMS.end() && tables->second.count(include) != 0;
}

// These know no scene and no window.
const Rooms PLAIN{"algebra3d", "biarc", "model", "analysis", "formats", "app/command", "app/info"};

std::string pathOf(const fs::path& file)
{
    return fs::relative(file, PROJECT_FOLDER).generic_string();
}

bool isSource(const fs::path& file)
{
    return file.extension() == ".h" || file.extension() == ".cpp";
}

// The sources of a room, those of rooms inside it left out.
std::vector<fs::path> sourcesOf(const std::string& room)
{
    std::vector<fs::path> files;
    for (auto entry = fs::recursive_directory_iterator(fs::path(PROJECT_FOLDER) / room);
         entry != fs::recursive_directory_iterator(); ++entry) {
        if (entry->is_directory() && MAY_INCLUDE.count(pathOf(entry->path())))
            entry.disable_recursion_pending();
        else if (isSource(entry->path()))
            files.push_back(entry->path());
    }
    return files;
}

// The room of the file that an include names; nothing if it is none of the project's.
std::string roomOf(const std::string& include, const std::string& from)
{
    const std::string prefix = "strandview/";
    const std::string inside = from.substr(0, from.find('/'));
    std::vector<std::string> places{include, inside + "/" + include, "src/" + include};
    if (include.compare(0, prefix.size(), prefix) == 0)
        places = {include.substr(prefix.size())};
    for (const std::string& place : places) {
        if (fs::is_regular_file(fs::path(PROJECT_FOLDER) / place))
            return fs::path(place).parent_path().generic_string();
    }
    return "";
}

std::vector<std::string> includesOf(const fs::path& file)
{
    static const std::regex pattern("^#include [\"<]([^\">]+)[\">]");
    std::vector<std::string> includes;
    std::ifstream text(file);
    for (std::string line; std::getline(text, line);) {
        std::smatch match;
        if (std::regex_search(line, match, pattern))
            includes.push_back(match[1]);
    }
    return includes;
}

// Below formats/ a folder is no room of its own.
bool isWithin(const std::string& room, const std::string& outer)
{
    return room == outer || (MAY_INCLUDE.count(room) == 0 && room.rfind(outer + "/", 0) == 0);
}

bool mayInclude(const std::string& room, const std::string& included)
{
    const Rooms& allowed = MAY_INCLUDE.at(room);
    return isWithin(included, room) ||
           std::any_of(allowed.begin(), allowed.end(),
                       [&](const std::string& outer) { return isWithin(included, outer); });
}

TEST(Includes, NoneGoesUp)
{
    std::size_t seen = 0;
    for (const auto& [room, allowed] : MAY_INCLUDE) {
        for (const fs::path& file : sourcesOf(room)) {
            for (const std::string& include : includesOf(file)) {
                const std::string included = roomOf(include, pathOf(file));
                if (included.empty() || isTableOfOtherRoom(pathOf(file), include))
                    continue;
                ++seen;
                EXPECT_TRUE(mayInclude(room, included)) << pathOf(file) << " includes " << include;
            }
        }
    }
    EXPECT_GT(seen, 300u); // so that the test has read what it is about
}

TEST(Includes, ThePrivateRoomsOfTheLibraryAreInNoPublicHeader)
{
    for (const fs::path& file : sourcesOf("src")) {
        if (file.extension() != ".h")
            continue;
        for (const std::string& include : includesOf(file)) {
            const std::string room = roomOf(include, pathOf(file));
            EXPECT_EQ(room.rfind("src/", 0), std::string::npos)
                << pathOf(file) << " includes " << include;
        }
    }
}

TEST(Includes, WhatKnowsNoSceneIncludesNeitherCoinNorQt)
{
    static const std::regex coinOrQt("^(Inventor/|Q[A-Z]|Qt[A-Z]\\w*/|GL/|X11/)");
    for (const std::string& room : PLAIN) {
        for (const fs::path& file : sourcesOf(room)) {
            for (const std::string& include : includesOf(file))
                EXPECT_FALSE(std::regex_search(include, coinOrQt))
                    << pathOf(file) << " includes " << include;
        }
    }
}

TEST(Includes, OnlyOneRoomKnowsTheParserOfOptions)
{
    for (const auto& [room, allowed] : MAY_INCLUDE) {
        if (room == "app/command")
            continue;
        for (const fs::path& file : sourcesOf(room)) {
            for (const std::string& include : includesOf(file))
                EXPECT_NE(include.rfind("CLI/", 0), 0u) << pathOf(file);
        }
    }
}

// Hosts include them, and so do the headers that are installed.
TEST(Includes, EveryHeaderOfTheLibrariesWithoutASceneIsInstalled)
{
    for (const std::string room : {"model", "analysis", "formats"}) {
        std::ifstream rules(fs::path(PROJECT_FOLDER) / room / "CMakeLists.txt");
        const Rooms listed(std::istream_iterator<std::string>(rules), {});
        for (const fs::path& source : sourcesOf(room)) {
            const std::string name = pathOf(source).substr(room.size() + 1);
            EXPECT_EQ(listed.count(name), 1u) << room << "/CMakeLists.txt: " << name;
        }
    }
}

TEST(Includes, EveryFolderOfSourcesHasItsRulesHere)
{
    const std::set<std::string> besides{"bench", "build", "data", "examples", "tests"};
    for (const fs::directory_entry& top : fs::directory_iterator(PROJECT_FOLDER)) {
        const std::string name = top.path().filename().string();
        if (!top.is_directory() || name.front() == '.' || besides.count(name) != 0)
            continue;
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(top.path())) {
            if (!isSource(entry.path()))
                continue;
            std::string room = fs::path(pathOf(entry.path())).parent_path().generic_string();
            while (MAY_INCLUDE.count(room) == 0 && room.find('/') != std::string::npos)
                room = room.substr(0, room.rfind('/'));
            EXPECT_EQ(MAY_INCLUDE.count(room), 1u) << pathOf(entry.path());
        }
    }
}

} // namespace
