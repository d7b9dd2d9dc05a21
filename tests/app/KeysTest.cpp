// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/Keys.h"

#include <fstream>
#include <utility>

#include <gmock/gmock.h>

namespace strandview {

namespace {

using Row = std::pair<std::string, std::string>;

// The rows of the README's tables of the window: "| key | does |".
std::vector<Row> readmeRows()
{
    std::ifstream readme(README_FILE);
    std::vector<Row> rows;
    bool inSection = false;
    for (std::string line; std::getline(readme, line);) {
        if (line.rfind("## ", 0) == 0)
            inSection = line == "## Keyboard and mouse in the window";
        const std::size_t middle = line.find(" | ");
        if (!inSection || line.rfind("| ", 0) != 0 || middle < 2 || line[2] == '*')
            continue;
        rows.emplace_back(line.substr(2, middle - 2),
                          line.substr(middle + 3, line.size() - middle - 5));
    }
    return rows;
}

TEST(Keys, StandInTheReadmeAllOfThemAndNoOthers)
{
    std::vector<Row> expected;
    for (const KeyGroup& group : keyHelp()) {
        for (const KeyHelp& help : group.keys)
            expected.emplace_back(help.key, help.does);
    }
    EXPECT_EQ(readmeRows(), expected);
}

} // namespace

} // namespace strandview
