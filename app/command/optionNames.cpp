// SPDX-License-Identifier: GPL-3.0-or-later
#include "command/optionNames.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace strandview {

namespace {

const std::pair<std::string, std::string> SPELLINGS[] = {
    {"center", "centre"}, {"color", "colour"}, {"normalize", "normalise"}};

// How many letters are to be changed, left out, put in or exchanged with their neighbour
// to make one text of the other (F. J. Damerau, Comm. ACM 7, 1964, 171-176).
std::size_t countChanges(const std::string& a, const std::string& b)
{
    std::vector<std::vector<std::size_t>> changes(a.size() + 1,
                                                  std::vector<std::size_t>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i) {
        for (std::size_t j = 0; j <= b.size(); ++j) {
            if (i == 0 || j == 0) {
                changes[i][j] = i + j;
                continue;
            }
            const std::size_t replaced = changes[i - 1][j - 1] + (a[i - 1] != b[j - 1]);
            changes[i][j] = std::min({changes[i - 1][j] + 1, changes[i][j - 1] + 1, replaced});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                changes[i][j] = std::min(changes[i][j], changes[i - 2][j - 2] + 1);
        }
    }
    return changes[a.size()][b.size()];
}

// A name cut short counts as one change, whatever is missing.
std::size_t distance(const std::string& written, const std::string& name)
{
    const std::size_t changes = countChanges(written, name);
    return name.compare(0, written.size(), written) == 0 ? std::min<std::size_t>(changes, 1)
                                                         : changes;
}

std::string withoutDashes(const std::string& name)
{
    return name.substr(std::min(name.find_first_not_of('-'), name.size()));
}

} // namespace

std::string inBritishSpelling(const std::string& argument)
{
    if (argument.compare(0, 2, "--") != 0)
        return argument;
    const std::size_t end = std::min(argument.find('='), argument.size());
    std::string name = argument.substr(0, end);
    for (const auto& [american, british] : SPELLINGS) {
        const std::size_t at = name.find(american);
        if (at != std::string::npos)
            name.replace(at, american.size(), british);
    }
    return name + argument.substr(end);
}

std::vector<std::string> nearestNames(const std::string& written,
                                      const std::vector<std::string>& names)
{
    const std::string bare = withoutDashes(written);
    if (bare.empty())
        return {};
    // A third of the letters may be wrong.
    std::size_t nearest = std::max<std::size_t>(1, bare.size() / 3);
    std::vector<std::string> found;
    for (const std::string& name : names) {
        const std::size_t d = distance(bare, withoutDashes(name));
        if (d > nearest)
            continue;
        if (d < nearest)
            found.clear();
        nearest = d;
        found.push_back(name);
    }
    return found;
}

} // namespace strandview
