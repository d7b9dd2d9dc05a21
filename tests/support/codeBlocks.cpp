// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/codeBlocks.h"

#include <algorithm>
#include <fstream>

namespace fs = std::filesystem;

namespace {

bool startsWith(const std::string& line, const std::string& start)
{
    return line.compare(0, start.size(), start) == 0;
}

// "run.top" of "<!-- run.top -->"; empty for any other line.
std::string commentIn(const std::string& line)
{
    const std::string begin = "<!-- ", end = " -->";
    return startsWith(line, begin) && line.size() > begin.size() + end.size()
               ? line.substr(begin.size(), line.size() - begin.size() - end.size())
               : "";
}

void addBlocks(const fs::path& page, const std::string& name, std::vector<CodeBlock>& blocks)
{
    bool inside = false;
    int number = 0;
    std::string section, before;
    for (const std::string& line : readLines(page)) {
        ++number;
        if (startsWith(line, "```")) {
            inside = !inside;
            if (inside)
                blocks.push_back({name + ":" + std::to_string(number),
                                  line.substr(3),
                                  section,
                                  commentIn(before),
                                  {}});
        } else if (inside) {
            blocks.back().lines.push_back(line);
        } else if (startsWith(line, "## ")) {
            section = line.substr(3);
        }
        before = line;
    }
}

} // namespace

std::string CodeBlock::text() const
{
    std::string all;
    for (const std::string& line : lines)
        all += line + "\n";
    return all;
}

bool CodeBlock::isRun() const
{
    return language == "sh" &&
           std::none_of(lines.begin(), lines.end(),
                        [](const std::string& line) { return startsWith(line, "script/"); });
}

void PrintTo(const CodeBlock& block, std::ostream* stream) { *stream << block.place; }

Lines readLines(const fs::path& file)
{
    std::ifstream stream(file);
    Lines lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

std::vector<fs::path> pagesOf(const fs::path& project)
{
    std::vector<fs::path> pages;
    for (const char* folder : {"", "docs", "data"}) {
        for (const fs::directory_entry& entry : fs::directory_iterator(project / folder)) {
            if (entry.path().extension() == ".md")
                pages.push_back(entry.path());
        }
    }
    std::sort(pages.begin(), pages.end());
    return pages;
}

std::vector<CodeBlock> codeBlocksOf(const fs::path& project)
{
    std::vector<CodeBlock> blocks;
    for (const fs::path& page : pagesOf(project))
        addBlocks(page, fs::relative(page, project).generic_string(), blocks);
    return blocks;
}
