// SPDX-License-Identifier: GPL-3.0-or-later
// The commands that the pages show are run as a reader would, in a folder that has the files
// which they name. What opens a window is given one more option, which closes it; pictures have
// the least samples unless the page says how many, for the sake of time.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <string>
#include <vector>

#include <QTemporaryDir>
#include <gmock/gmock.h>

#include "support/codeBlocks.h"
#include "support/runProgram.h"

namespace {

namespace fs = std::filesystem;

const fs::path PROJECT = PROJECT_FOLDER;

std::string seriesOfMarkers(int frames)
{
    std::string text;
    for (int i = 0; i < frames; ++i)
        text += std::string(i == 0 ? "" : ", ") + R"({"markers": [{"point": [0, 0, 0]}]})";
    return R"({"strandview": 1, "series": [)" + text + "]}";
}

// A folder as the pages take for granted: the samples, data of one's own under other names, and
// the programs of the reader.
class Desk
{
public:
    Desk()
    {
        fs::create_directory_symlink(PROJECT / "data", place("data"));
        fs::create_directories(place("docs/pictures"));
        fs::copy_file(PROJECT / "data/supercoil.txt", place("rod.txt"));
        fs::copy_file(PROJECT / "data/dna.txt", place("dna.txt"));
        fs::copy_file(PROJECT / "data/helix.txt", place("run7.out"));
        std::ofstream(place("run.json")) << seriesOfMarkers(4);
        fs::create_directory(place("bin"));
        writeProgram("my-simulation", "exec cat '" + place("rod.txt").string() + "'");
        writeProgram("strandview", R"(samples='--samples 1'
case " $* " in *' --samples '*) samples= ;; esac
case " $* " in
*' --list-frames '*) exec "$STRANDVIEW" "$@" ;;
*' --render '*) exec "$STRANDVIEW" $samples "$@" ;;
*' --export '*|*' --info '*|*' --list-scalars '*|*' --plot '*) exec "$STRANDVIEW" "$@" ;;
*) echo x >>windows
   exec "$STRANDVIEW" --screenshot-after 0 window$(wc -l <windows).png "$@" ;;
esac)");
    }

    fs::path place(const std::string& file) const
    {
        return fs::path(folder.path().toStdString()) / file;
    }

    // Ends with the first command that fails.
    ProgramRun run(const std::string& script) const
    {
        const std::string path = place("bin").string() + ":" + std::getenv("PATH");
        return runProgram(
            "/bin/bash",
            {"-euo", "pipefail", "-c", "cd '" + folder.path().toStdString() + "'\n" + script}, "",
            {{"PATH", path},
             {"STRANDVIEW", STRANDVIEW_PROGRAM},
             {"DISPLAY", std::getenv("DISPLAY")}});
    }

private:
    void writeProgram(const std::string& name, const std::string& text)
    {
        const fs::path file = place("bin/" + name);
        std::ofstream(file) << "#!/bin/bash\n" << text << "\n";
        fs::permissions(file, fs::perms::owner_all);
    }

    QTemporaryDir folder;
};

// Of a block with prompts the lines after them, since the others are answers.
std::string commandsOf(const CodeBlock& block)
{
    const bool hasPrompts = block.lines.at(0).rfind("$ ", 0) == 0;
    std::string commands;
    for (const std::string& line : block.lines) {
        if (!hasPrompts)
            commands += line + "\n";
        else if (line.rfind("$ ", 0) == 0)
            commands += line.substr(2) + "\n";
    }
    return commands;
}

// Of a block with prompts the lines that are no commands.
std::string answersOf(const CodeBlock& block)
{
    std::string answers;
    for (const std::string& line : block.lines)
        answers += line.rfind("$ ", 0) == 0 ? "" : line + "\n";
    return answers;
}

// The files that the commands say they write; not those of loops.
std::vector<std::string> picturesOf(const std::string& commands)
{
    static const std::regex pattern("--(?:render|plot) ([^ $%']+\\.(?:png|svg|pdf))");
    std::vector<std::string> pictures;
    for (std::sregex_iterator at(commands.begin(), commands.end(), pattern), end; at != end; ++at)
        pictures.push_back((*at)[1]);
    return pictures;
}

int countIn(const std::string& text, const std::regex& pattern)
{
    return int(std::distance(std::sregex_iterator(text.begin(), text.end(), pattern),
                             std::sregex_iterator()));
}

class DocsCommandsTest : public testing::TestWithParam<CodeBlock>
{
};

TEST_P(DocsCommandsTest, DoAsTheyAreWritten)
{
    const std::string commands = commandsOf(GetParam());
    const int started = countIn(commands, std::regex("(^|\\n *|\\| )strandview "));
    ASSERT_GT(started, 0) << "a block that a shell is to run starts the program";

    const Desk desk;
    const ProgramRun run = desk.run(commands);
    EXPECT_EQ(run.status, 0) << run.error;
    for (const std::string& picture : picturesOf(commands))
        EXPECT_TRUE(fs::exists(desk.place(picture))) << picture;
    const int told = countIn(commands, std::regex("--(info|list-frames|list-scalars) "));
    if (told == started && commands != GetParam().text()) {
        EXPECT_EQ(run.output, answersOf(GetParam()));
    }
    const int written = countIn(commands, std::regex("--(render|export|plot) ")) + told;
    for (int window = 1; window <= started - written; ++window)
        EXPECT_TRUE(fs::exists(desk.place("window" + std::to_string(window) + ".png")));
}

std::vector<CodeBlock> blocksThatRun()
{
    std::vector<CodeBlock> blocks;
    for (const CodeBlock& block : codeBlocksOf(PROJECT)) {
        if (block.isRun())
            blocks.push_back(block);
    }
    return blocks;
}

INSTANTIATE_TEST_SUITE_P(Pages, DocsCommandsTest, testing::ValuesIn(blocksThatRun()),
                         [](const auto& test) {
                             return std::regex_replace(test.param.place, std::regex("[^A-Za-z0-9]"),
                                                       "_");
                         });

} // namespace
