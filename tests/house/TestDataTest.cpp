// SPDX-License-Identifier: GPL-3.0-or-later
// Tests need the repository and nothing beside it, unless an environment variable names a folder.
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

#include <gmock/gmock.h>

namespace {

namespace fs = std::filesystem;

std::string contentOf(const fs::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

// The files of the project that have a text; not what is built, nor what tools keep for themselves.
std::set<std::string> filesWith(const std::string& text)
{
    std::set<std::string> found;
    for (auto entry = fs::recursive_directory_iterator(PROJECT_FOLDER);
         entry != fs::recursive_directory_iterator(); ++entry) {
        const std::string name = entry->path().filename().string();
        const bool isOther = name == "build" || (name[0] == '.' && name != ".ci");
        if (entry->is_directory() && isOther)
            entry.disable_recursion_pending();
        else if (entry->is_regular_file() &&
                 contentOf(entry->path()).find(text) != std::string::npos)
            found.insert(fs::relative(entry->path(), PROJECT_FOLDER).generic_string());
    }
    return found;
}

// Not as one literal, for this file is searched, too.
const std::string BESIDE_THE_PROJECT = std::string("..") + "/shared";

TEST(TestData, OneFileAloneKnowsWhereTheyAre)
{
    EXPECT_THAT(filesWith(BESIDE_THE_PROJECT), testing::ElementsAre(".ci/run"));
}

TEST(TestData, ThatFileNamesThemByTheVariableThatTestsAskFor)
{
    const std::string variable = std::string("STRANDVIEW_TEST") + "_DATA";
    EXPECT_THAT(contentOf(fs::path(PROJECT_FOLDER) / ".ci/run"),
                testing::HasSubstr("export " + variable));
    for (const std::string& file : filesWith(variable))
        EXPECT_TRUE(file == ".ci/run" || fs::path(file).extension() == ".md" ||
                    file.rfind("tests/", 0) == 0)
            << file;
}

} // namespace
