// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/Told.h"

#include <algorithm>
#include <regex>

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

std::string withoutPlace(const std::string& notice, const std::vector<std::string>& files)
{
    const auto isOf = [&notice](const std::string& file) {
        return notice.compare(0, file.size() + 1, file + ":") == 0;
    };
    const auto file = std::find_if(files.begin(), files.end(), isOf);
    static const std::regex frame("^ *(frame [0-9]+: )?");
    return std::regex_replace(file == files.end() ? notice : notice.substr(file->size() + 1), frame,
                              "");
}

std::string toLine(const Told& told)
{
    return told.name.empty() ? told.what : told.what + " – " + told.name;
}

} // namespace strandview
