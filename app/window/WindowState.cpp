// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/WindowState.h"

#include <algorithm>
#include <cctype>
#include <vector>

#include "request/settings.h"

namespace strandview {

namespace {

// In the order of the window's views, but for the first one.
std::vector<std::size_t> viewsOfOtherCameras(const BesideRequest& a, const BesideRequest& b)
{
    std::vector<std::size_t> others;
    for (std::size_t i = 0; i < std::min(a.cameras.size(), b.cameras.size()); ++i) {
        if (!(a.cameras[i] == b.cameras[i]))
            others.push_back(i);
    }
    return others;
}

bool areSameViews(const BesideRequest& a, const BesideRequest& b)
{
    return a.what == b.what && a.isTied == b.isTied;
}

} // namespace

bool operator==(const WindowState& a, const WindowState& b)
{
    return a.camera == b.camera && a.areColoursShown == b.areColoursShown && // the quickest first
           a.beside == b.beside && a.measurements == b.measurements && a.views == b.views &&
           a.style == b.style;
}

std::string differenceOf(const WindowState& a, const WindowState& b)
{
    std::vector<std::string> names;
    for (const Setting& setting : settings()) {
        if (!setting.isSame(a.style, b.style))
            names.emplace_back(setting.label);
    }
    if (a.areColoursShown != b.areColoursShown)
        names.emplace_back("colours of data");
    if (!(a.camera == b.camera))
        names.emplace_back("camera");
    if (!(a.measurements == b.measurements))
        names.emplace_back("measurements");
    if (a.views != b.views)
        names.emplace_back("named views");
    if (!areSameViews(a.beside, b.beside))
        names.emplace_back("further views");
    else
        for (const std::size_t view : viewsOfOtherCameras(a.beside, b.beside))
            names.push_back("camera of the " + nameOfView(view + 1));
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
        if (setting.isSame(from.style, to.style))
            continue;
        const auto text = setting.value(to.style);
        setting.clear(state.style);
        if (text)
            setting.read(*text, state.style);
    }
    if (from.areColoursShown != to.areColoursShown)
        state.areColoursShown = to.areColoursShown;
    if (!(from.camera == to.camera))
        state.camera = to.camera;
    if (!(from.measurements == to.measurements))
        state.measurements = to.measurements;
    if (from.views != to.views)
        state.views = to.views;
    if (!areSameViews(from.beside, to.beside))
        state.beside = to.beside;
    else if (areSameViews(state.beside, to.beside))
        for (const std::size_t view : viewsOfOtherCameras(from.beside, to.beside))
            state.beside.cameras.at(view) = to.beside.cameras[view];
    return state;
}

} // namespace strandview
