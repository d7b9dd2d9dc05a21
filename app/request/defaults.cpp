// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/defaults.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <optional>
#include <set>

#include <sys/stat.h>

#include <strandview/formats/text/wording.h>

#include "request/settings.h"
#include "request/wording.h"

namespace strandview {

namespace {

// Without its quotation marks.
std::string unquoted(const std::string& text)
{
    const bool isQuoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
    return isQuoted ? text.substr(1, text.size() - 2) : text;
}

// Between quotation marks where it would not be read back otherwise.
std::string quoted(std::string text)
{
    std::replace(text.begin(), text.end(), '\n', ' '); // of a line
    const bool isPlain = !text.empty() && text == stripped(text) && text.front() != '"';
    return isPlain ? text : "\"" + text + "\"";
}

std::string folderOfSettings()
{
    const char* const configured = std::getenv("XDG_CONFIG_HOME");
    if (configured && configured[0] == '/') // others are to be ignored
        return configured;
    const char* const home = std::getenv("HOME");
    return home && home[0] != '\0' ? std::string(home) + "/.config" : "";
}

// Nor is what would be in a folder that is none, or that one may not enter.
bool isThere(const std::string& file)
{
    struct stat status;
    return ::stat(file.c_str(), &status) == 0;
}

// The lines of a file as texts; or one line about a fault.
std::string readLines(const std::string& file, std::vector<SettingText>& texts)
{
    std::ifstream lines(file);
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number) {
        const std::string place = file + ":" + std::to_string(number);
        line = stripped(line);
        if (line.empty() || line.front() == '#')
            continue;
        const std::size_t equals = line.find('=');
        if (equals == std::string::npos)
            return place + ": " + found(line, "name = value");
        texts.push_back(
            {stripped(line.substr(0, equals)), unquoted(stripped(line.substr(equals + 1))), place});
    }
    return lines.eof() ? "" : file + ": " + std::strerror(errno);
}

} // namespace

std::string readSettings(const std::vector<SettingText>& texts, StyleRequest& request)
{
    StyleRequest next = request;
    for (const SettingText& text : texts) {
        const Setting* const setting = findSetting(text.name);
        if (!setting)
            return text.place + ": found the setting " + inQuotes(text.name) +
                   ", expected the name of one, such as radius";
        const std::string fault = setting->read(text.value, next);
        if (!fault.empty())
            return text.place + ": " + text.name + ": " + fault;
    }
    request = next;
    return "";
}

std::string usualDefaultsFile()
{
    const std::string folder = folderOfSettings();
    return folder.empty() ? "" : folder + "/strandview/defaults.conf";
}

std::string readDefaults(const std::string& file, StyleRequest& request)
{
    if (!isThere(file))
        return "";
    std::vector<SettingText> texts;
    const std::string fault = readLines(file, texts);
    return fault.empty() ? readSettings(texts, request) : fault;
}

std::string defaultsText(const StyleRequest& request)
{
    std::string text = "# What strandview begins with, unless its command line says otherwise.\n"
                       "# strandview --no-defaults leaves this file aside.\n";
    std::string group;
    for (const Setting& setting : settings()) {
        if (group != setting.group) {
            group = setting.group;
            text += "\n# " + group + "\n";
        }
        text += "\n# " + onOneLine(setting.help) + "\n";
        const std::optional<std::string> said = setting.write(request);
        const std::optional<std::string> usual = setting.value(StyleRequest());
        const std::string open = setting.values ? setting.values : "on";
        text += (said ? "" : "# ") + std::string(setting.name) + " = " +
                (said    ? quoted(*said)
                 : usual ? quoted(*usual)
                         : open) +
                "\n";
    }
    return text;
}

StyleRequest forOtherData(StyleRequest request)
{
    for (const Setting& setting : settings()) {
        const bool isAboutScalar =
            setting.kind == SettingKind::TEXT && setting.neededSetting == "colour-by";
        const std::set<SettingKind> ofTheseData{SettingKind::RANGE, SettingKind::REFERENCE,
                                                SettingKind::THINGS, SettingKind::CLIP};
        if (isAboutScalar || ofTheseData.count(setting.kind) > 0)
            setting.clear(request);
    }
    return request;
}

} // namespace strandview
