// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/PictureChoice.h"

#include <algorithm>
#include <tuple>

#include "request/settings.h"

namespace strandview {

namespace {

auto parts(const PictureChoice& choice)
{
    const PictureRequest& size = choice.size;
    return std::tuple(size.width, size.height, size.paper ? textOf(*size.paper) : "", size.dpi,
                      size.samples, size.transparent, choice.isOfView, choice.keepsShape,
                      choice.hasMeasurements, choice.settings);
}

} // namespace

bool operator==(const PictureChoice& a, const PictureChoice& b) { return parts(a) == parts(b); }

std::vector<std::string> settingsOfPicture()
{
    std::vector<std::string> names;
    for (const char* const name : {"background", "legend", "scale-bar"}) {
        if (std::any_of(settings().begin(), settings().end(), [name](const Setting& setting) {
                return setting.name == std::string(name);
            }))
            names.emplace_back(name);
    }
    return names;
}

StyleRequest styleOf(const PictureChoice& choice, StyleRequest ofView)
{
    for (const auto& [name, text] : choice.settings)
        settingOf(name).read(text, ofView);
    return ofView;
}

} // namespace strandview
