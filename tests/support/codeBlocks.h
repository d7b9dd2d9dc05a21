// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_CODEBLOCKS_H
#define STRANDVIEW_TESTS_CODEBLOCKS_H

#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

using Lines = std::vector<std::string>;

/// What stands between a line "```LANGUAGE" and a line "```".
struct CodeBlock
{
    std::string place;    ///< "docs/scene.md:34"
    std::string language; ///< empty for what is shown as it is
    std::string section;  ///< the heading above it, without "## "
    std::string file;     ///< its name where a line above, "<!-- run.top -->", gives it
    Lines lines;

    /// The lines as a file.
    std::string text() const;
    /// Whether a shell is to run it in a folder that has the files it names. Commands of
    /// script/ need the project itself.
    bool isRun() const;
};

void PrintTo(const CodeBlock& block, std::ostream* stream);

Lines readLines(const std::filesystem::path& file);

/// The pages that are written for readers, below the project's folder: those at its top, in
/// docs/ and in data/.
std::vector<std::filesystem::path> pagesOf(const std::filesystem::path& project);
/// Of all pages.
std::vector<CodeBlock> codeBlocksOf(const std::filesystem::path& project);

#endif
