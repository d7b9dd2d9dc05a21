// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/writeCommand.h"

#include "request/settings.h"

namespace strandview {

std::string inShell(const std::string& word)
{
    const char* const plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789"
                              "_-+=./:,%@";
    if (!word.empty() && word.find_first_not_of(plain) == std::string::npos)
        return word;
    std::string quoted = "'";
    for (const char c : word)
        quoted += c == '\'' ? "'\\''" : std::string(1, c);
    return quoted + "'";
}

std::string writeCommand(const Options& options, const ShownPicture& picture)
{
    std::vector<std::string> words{"strandview"};
    const auto add = [&words](const std::vector<std::string>& more) {
        words.insert(words.end(), more.begin(), more.end());
    };
    if (options.hasDefaults) // what is shown of them is told, too
        add({"--no-defaults"});
    add(options.reading);
    add(argumentsOf(options));
    if (picture.frame)
        add({"--frame", std::to_string(*picture.frame)});
    add({"--camera", formatCamera(picture.camera)});
    add({"--size", std::to_string(picture.width) + "x" + std::to_string(picture.height)});
    add({"--render", picture.name});
    // A name that looks like an option.
    for (const std::string& file : picture.files) {
        if (file.size() > 1 && file[0] == '-') {
            add({"--"});
            break;
        }
    }
    add(picture.files);
    std::string line;
    for (const std::string& word : words)
        line += (line.empty() ? "" : " ") + inShell(word);
    return line;
}

} // namespace strandview
