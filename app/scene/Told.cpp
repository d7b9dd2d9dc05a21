// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/Told.h"

namespace strandview {

Told toldOf(const std::string& notice, const std::vector<std::string>& files)
{
    for (const std::string& file : files) {
        const std::string start = file + ": ";
        if (notice.compare(0, start.size(), start) == 0)
            return {notice.substr(start.size()), file};
    }
    return {notice, ""};
}

Told toldOfFrame(std::size_t frame, Told told)
{
    const std::string start = "frame " + std::to_string(frame) + ": ";
    if (told.what.compare(0, start.size(), start) != 0)
        told.what.insert(0, start);
    return told;
}

std::string toLine(const Told& told)
{
    return told.name.empty() ? told.what : told.what + " – " + told.name;
}

} // namespace strandview
