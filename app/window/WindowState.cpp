// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/WindowState.h"

#include <algorithm>
#include <cctype>
#include <vector>

#include "request/settings.h"

namespace strandview {

namespace {

bool isSame(const DataScene::Look& a, const DataScene::Look& b)
{
    return a.isHidden == b.isHidden && a.isDeleted == b.isDeleted && a.name == b.name &&
           a.colour == b.colour;
}

bool isSame(const DataScene::Looks& a, const DataScene::Looks& b)
{
    return a.areOthersHidden == b.areOthersHidden &&
           std::equal(a.ofThings.begin(), a.ofThings.end(), b.ofThings.begin(), b.ofThings.end(),
                      [](const auto& one, const auto& other) {
                          return one.first == other.first && isSame(one.second, other.second);
                      });
}

} // namespace

bool operator==(const WindowState& a, const WindowState& b)
{
    return a.style == b.style && isSame(a.looks, b.looks) &&
           a.areColoursShown == b.areColoursShown && a.camera == b.camera;
}

std::string differenceOf(const WindowState& a, const WindowState& b)
{
    std::vector<std::string> names;
    for (const Setting& setting : settings()) {
        if (setting.value(a.style) != setting.value(b.style))
            names.emplace_back(setting.label);
    }
    if (!isSame(a.looks, b.looks))
        names.emplace_back("things");
    if (a.areColoursShown != b.areColoursShown)
        names.emplace_back("colours of data");
    if (!(a.camera == b.camera))
        names.emplace_back("camera");
    if (names.empty())
        return "";
    std::string& first = names.front();
    const bool isWord = first.size() > 1 && std::islower(first[1]); // and no "DNA"
    if (isWord)
        first[0] = char(std::tolower(first[0]));
    return names.size() > 1 ? first + " and more" : first;
}

WindowState withChange(WindowState state, const WindowState& from, const WindowState& to)
{
    for (const Setting& setting : settings()) {
        const auto text = setting.value(to.style);
        if (text == setting.value(from.style))
            continue;
        setting.clear(state.style);
        if (text)
            setting.read(*text, state.style);
    }
    if (!isSame(from.looks, to.looks))
        state.looks = to.looks;
    if (from.areColoursShown != to.areColoursShown)
        state.areColoursShown = to.areColoursShown;
    if (!(from.camera == to.camera))
        state.camera = to.camera;
    return state;
}

} // namespace strandview
