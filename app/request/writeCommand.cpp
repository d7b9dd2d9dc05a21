// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/writeCommand.h"

#include <filesystem>

#include "request/settings.h"

namespace strandview {

namespace {

// "rod.txt" of "data/rod.txt", and "frames" of "data/frames/".
std::string withoutFolder(const std::string& file)
{
    const std::filesystem::path path(file);
    return (path.has_filename() ? path : path.parent_path()).filename().string();
}

} // namespace

std::vector<std::string> argumentsOf(const PictureRequest& size)
{
    std::vector<std::string> arguments{"--size", size.paper ? textOf(*size.paper)
                                                            : std::to_string(size.width) + "x" +
                                                                  std::to_string(size.height)};
    const PictureRequest usual{0, 0, size.paper};
    if (size.resolution() != usual.resolution())
        arguments.insert(arguments.end(), {"--dpi", std::to_string(size.resolution())});
    if (size.samples != usual.samples)
        arguments.insert(arguments.end(), {"--samples", std::to_string(size.samples)});
    if (size.transparent)
        arguments.emplace_back("--transparent");
    return arguments;
}

std::vector<std::string> argumentsOf(const std::vector<Measurement>& measurements)
{
    std::vector<std::string> arguments;
    for (const Measurement& measurement : measurements)
        arguments.insert(arguments.end(), {"--measure", namedTextOf(measurement)});
    return arguments;
}

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
    add(argumentsOf(picture.size));
    if (picture.stamp)
        add({"--stamp"});
    add(argumentsOf(options.measurements));
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

std::string writeCommandToKeep(Options options, ShownPicture picture)
{
    for (std::string& file : picture.files)
        file = withoutFolder(file);
    if (options.compare)
        options.compare = withoutFolder(*options.compare);
    options.hasDefaults = true; // whoever gets it may have some
    picture.name = ShownPicture().name;
    return writeCommand(options, picture);
}

std::string titleOf(const std::vector<std::string>& files)
{
    if (files.empty())
        return "";
    const std::string more =
        files.size() > 1 ? " and " + std::to_string(files.size() - 1) + " more" : "";
    return withoutFolder(files.front()) + more;
}

} // namespace strandview
