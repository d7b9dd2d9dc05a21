// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/actions.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <set>
#include <utility>

#include <gmock/gmock.h>

namespace strandview {

namespace {

using Row = std::pair<std::string, std::string>;

// The rows of the README's table of the window: "| key | does |", or "| **group** | |".
std::vector<Row> readmeRows()
{
    std::ifstream readme(README_FILE);
    std::vector<Row> rows;
    bool inSection = false;
    for (std::string line; std::getline(readme, line);) {
        if (line.rfind("## ", 0) == 0)
            inSection = line == "## Keyboard and mouse in the window";
        const std::size_t middle = line.find(" | ");
        if (!inSection || line.rfind("| ", 0) != 0 || middle < 3)
            continue;
        const std::size_t end = std::max(line.rfind(" |"), middle + 3);
        rows.emplace_back(line.substr(2, middle - 2), line.substr(middle + 3, end - middle - 3));
    }
    return rows;
}

TEST(Actions, StandInTheReadmeAllOfThemAndNoOthers)
{
    std::vector<Row> expected;
    for (const KeyGroup& group : keyHelp()) {
        expected.emplace_back("**" + group.title + "**", "");
        for (const KeyHelp& help : group.keys)
            expected.emplace_back(help.key, help.does);
    }
    EXPECT_EQ(readmeRows(), expected);
}

TEST(Actions, ShowTheSceneFromEverySideUnderTheNameThatTheCommandLineHasForIt)
{
    std::map<std::string, Side> offered;
    for (const ActionGroup& group : actions()) {
        for (const Action& action : group.actions) {
            if (const Side* side = std::get_if<Side>(&action.deed))
                offered[action.text] = *side;
        }
    }
    std::map<std::string, Side> expected;
    for (const NamedSide& named : SIDES)
        expected[std::string("From ") + named.name] = named.side;
    EXPECT_EQ(offered, expected);
}

TEST(Actions, KeysAndTextsStandOnceEach)
{
    std::multiset<std::string> keys;
    for (const ActionGroup& group : actions()) {
        std::multiset<std::pair<std::string, std::string>> texts;
        for (const Action& action : group.actions) {
            if (!action.text)
                continue;
            if (*action.keys)
                keys.insert(action.keys);
            texts.emplace(action.submenu ? action.submenu : "", action.text);
        }
        for (const auto& [submenu, text] : texts) {
            const bool isPaired = text == "And back"; // with the entry above it
            EXPECT_EQ(texts.count({submenu, text}), isPaired ? 3u : 1u) << group.title << text;
        }
    }
    for (const std::string& key : keys) {
        // While files are loaded it stops that, otherwise it is the viewer's.
        EXPECT_EQ(keys.count(key), key == "Esc" ? 2u : 1u) << key;
    }
}

TEST(Actions, EachDeedIsDoneByOneActionAlone)
{
    std::vector<Deed> deeds;
    for (const ActionGroup& group : actions()) {
        for (const Action& action : group.actions) {
            if (!action.text)
                continue;
            EXPECT_THAT(deeds, testing::Not(testing::Contains(action.deed))) << action.text;
            deeds.push_back(action.deed);
        }
    }
    const auto steps = std::size_t(SoQtGeneralViewer::FROM_Z_X_UP) + 1;
    const auto commands = std::size_t(Command::SHOW_ABOUT) + 1;
    EXPECT_EQ(deeds.size(), steps + commands + SIDES.size());
}

TEST(Actions, KeysOfOneLineAreToldTogether)
{
    std::map<std::string, std::string> page;
    for (const KeyGroup& group : keyHelp()) {
        for (const KeyHelp& help : group.keys)
            page.emplace(help.does, help.key);
    }
    EXPECT_EQ(page["left, right"], "A D");
    EXPECT_EQ(page["zooms in, out"], "Alt + W, S");
    EXPECT_EQ(page["seen from x, -x, y, -y, z, -z, all of it"], "Ctrl + 1 to 6");
    EXPECT_EQ(page["thicker, thinner lines"], "= -");
    EXPECT_EQ(page["closes the window"], "Ctrl + W, Q");
    EXPECT_EQ(page["wheel"], "");
    EXPECT_EQ(page["zooms"], "wheel");
}

} // namespace

} // namespace strandview
