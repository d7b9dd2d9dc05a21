// SPDX-License-Identifier: GPL-3.0-or-later
// What the pages show is true: code is compiled, files are read, commands are there or run
// (tests/gui/DocsCommandsTest.cpp), and whatever is named exists.
#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include <strandview/analysis/lineNumbers.h>
#include <strandview/analysis/scalars.h>
#include <strandview/formats/Source.h>
#include <strandview/formats/formats.h>
#include <strandview/formats/readFile.h>

#include "support/codeBlocks.h"

namespace {

namespace fs = std::filesystem;

const fs::path PROJECT = PROJECT_FOLDER;

std::vector<CodeBlock> blocksIn(const std::string& language)
{
    std::vector<CodeBlock> found;
    for (const CodeBlock& block : codeBlocksOf(PROJECT)) {
        if (block.language == language)
            found.push_back(block);
    }
    return found;
}

// Whether the block stands at that line, the whole of it deeper by so many blanks or none.
bool standsAt(const Lines& source, std::size_t start, const Lines& block)
{
    if (block.empty() || start + block.size() > source.size())
        return false;
    const std::size_t place = source[start].find(block[0]);
    if (place == std::string::npos)
        return false;
    const std::string indent(place, ' ');
    for (std::size_t i = 0; i < block.size(); ++i) {
        if (source[start + i] != (block[i].empty() ? "" : indent + block[i]))
            return false;
    }
    return true;
}

bool isExcerptOf(const fs::path& file, const CodeBlock& block)
{
    const Lines source = readLines(file);
    for (std::size_t start = 0; start < source.size(); ++start) {
        if (standsAt(source, start, block.lines))
            return true;
    }
    return false;
}

bool isExcerptOfOne(const std::vector<fs::path>& files, const CodeBlock& block)
{
    return std::any_of(files.begin(), files.end(),
                       [&](const fs::path& file) { return isExcerptOf(file, block); });
}

std::vector<fs::path> filesBelow(const fs::path& folder, const std::string& ending)
{
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        const std::string name = entry.path().filename().string();
        if (name.size() >= ending.size() &&
            name.compare(name.size() - ending.size(), ending.size(), ending) == 0)
            files.push_back(entry.path());
    }
    return files;
}

bool isExecutable(const fs::path& file)
{
    return fs::is_regular_file(file) &&
           (fs::status(file).permissions() & fs::perms::owner_exec) != fs::perms::none;
}

// What a reader says against the block as a file with that ending; empty if nothing.
std::string faultOf(const CodeBlock& block, const std::string& ending)
{
    const fs::path file = fs::path(testing::TempDir()) / ("strandview_docs" + ending);
    std::ofstream(file) << block.text();
    strandview::ReadReport report;
    const auto read = strandview::readFile(file.string(), {}, report);
    fs::remove(file);
    return read ? "" : report.error;
}

TEST(Docs, EveryCodeBlockIsOfAKindThatIsTested)
{
    // The second line's are run by script/test_cluster.
    const std::set<std::string> kinds{"cpp",      "cmake",     "sh",    "json",   "python", "text",
                                      "parallel", "snakemake", "slurm", "submit", ""};
    std::set<std::string> seen;
    for (const CodeBlock& block : codeBlocksOf(PROJECT)) {
        seen.insert(block.language);
        EXPECT_EQ(kinds.count(block.language), 1u) << block.place << ": " << block.language;
        EXPECT_FALSE(block.lines.empty()) << block.place;
    }
    EXPECT_EQ(seen, kinds) << "kinds that no page has need no tests";
}

TEST(Docs, CodeIsAnExcerptOfAHostThatIsCompiled)
{
    const std::vector<fs::path> hosts = filesBelow(PROJECT / "examples", ".cpp");
    const std::string list =
        CodeBlock{"", "", "", "", readLines(PROJECT / "examples/CMakeLists.txt")}.text();
    for (const fs::path& host : hosts)
        EXPECT_THAT(list, testing::HasSubstr(host.stem().string())) << "is not compiled";
    for (const CodeBlock& block : blocksIn("cpp"))
        EXPECT_TRUE(isExcerptOfOne(hosts, block)) << block.place;
}

TEST(Docs, BuildRulesAreExcerptsOfHostProjectsThatAreBuilt)
{
    const std::vector<fs::path> projects = filesBelow(PROJECT / "tests/package", "CMakeLists.txt");
    for (const CodeBlock& block : blocksIn("cmake"))
        EXPECT_TRUE(isExcerptOfOne(projects, block)) << block.place;
}

TEST(Docs, FilesThatAreShownAreReadWithoutAFault)
{
    for (const CodeBlock& block : blocksIn("json"))
        EXPECT_EQ(faultOf(block, ".json"), "") << block.place;
    for (const CodeBlock& block : blocksIn(""))
        EXPECT_EQ(faultOf(block, ".txt"), "") << block.place;
}

const std::string GUIDE_TO_DATA = "docs/files.md";

// As the heading in the guide: "JSON: `.json`".
std::string headingOf(const strandview::Format& format)
{
    std::string heading = format.name + ":";
    for (const std::string& ending : format.endings)
        heading += " `" + ending + "`";
    return heading;
}

// The format that a file turns out to be of, if it can be read.
const strandview::Format* formatOfReadable(const fs::path& file)
{
    strandview::ReadReport report;
    EXPECT_TRUE(strandview::readFile(file.string(), {}, report)) << report.error;
    const auto source = strandview::Source::open(file.string(), report);
    return source ? strandview::formatOf(*source, {}, report) : nullptr;
}

// The blocks of a section of the guide that are no commands and no programs, as files in a new
// folder: under their own names, or with the first ending of the format.
std::vector<fs::path> writeExamples(const strandview::Format& format, const fs::path& folder)
{
    std::vector<fs::path> files;
    for (const CodeBlock& block : codeBlocksOf(PROJECT)) {
        const bool isOfGuide = block.place.rfind(GUIDE_TO_DATA, 0) == 0;
        const bool isFile = block.language != "sh" && block.language != "python";
        if (!isOfGuide || block.section != headingOf(format) || !isFile)
            continue;
        const std::string name = "example" + std::to_string(files.size()) + format.endings[0];
        files.push_back(folder / (block.file.empty() ? name : block.file));
        std::ofstream(files.back()) << block.text();
    }
    return files;
}

const std::string NUMPY = "NumPy";

TEST(Docs, TheExamplesOfAFormatAreReadAsThatFormat)
{
    for (const strandview::Format& format : strandview::formats()) {
        SCOPED_TRACE(format.name);
        const fs::path folder = fs::path(testing::TempDir()) / "strandview_examples";
        fs::remove_all(folder);
        fs::create_directory(folder);
        const std::vector<fs::path> files = writeExamples(format, folder);
        EXPECT_TRUE(!files.empty() || format.name == NUMPY) << "which is no text";
        for (const fs::path& file : files)
            EXPECT_EQ(formatOfReadable(file), &format) << file;
        fs::remove_all(folder);
    }
}

// One that has NumPy, which the project itself does without; empty if there is none.
std::string findPython()
{
    for (const std::string python : {"python3", "/usr/bin/python3"})
        if (std::system((python + " -c 'import numpy' >/dev/null 2>&1").c_str()) == 0)
            return python;
    return "";
}

TEST(Docs, TheProgramsOfTheGuideWriteArraysThatAreRead)
{
    const std::string python = findPython();
    if (python.empty())
        GTEST_SKIP() << "found no python3 with numpy";
    const fs::path folder = fs::path(testing::TempDir()) / "strandview_python";
    for (const CodeBlock& block : blocksIn("python")) {
        SCOPED_TRACE(block.place);
        fs::remove_all(folder);
        fs::create_directory(folder);
        std::ofstream(folder / "example.py") << block.text();
        const std::string run = "cd '" + folder.string() + "' && " + python + " example.py";
        ASSERT_EQ(std::system(run.c_str()), 0);
        const std::vector<fs::path> files = filesBelow(folder, ".npz");
        ASSERT_FALSE(files.empty());
        for (const fs::path& file : files)
            EXPECT_EQ(formatOfReadable(file)->name, NUMPY);
    }
    fs::remove_all(folder);
}

// The names of the pictures in each section of a page: "helix".
std::map<std::string, std::set<std::string>> picturesOf(const fs::path& page)
{
    static const std::regex picture("\\]\\(pictures/([^)]+)\\.png\\)");
    std::map<std::string, std::set<std::string>> pictures;
    std::string section;
    for (const std::string& line : readLines(page)) {
        std::smatch match;
        if (line.rfind("## ", 0) == 0)
            section = line.substr(3);
        else if (std::regex_search(line, match, picture))
            pictures[section].insert(match[1]);
    }
    return pictures;
}

// The rows of the guide's table of numbers that begins with this one, each of which ends with a
// source; without that.
Lines rowsWithoutSource(const std::string& first, std::size_t count)
{
    Lines rows;
    for (const std::string& line : readLines(PROJECT / "docs/numbers.md")) {
        if (rows.size() == count || (rows.empty() && line.rfind(first, 0) != 0))
            continue;
        const std::size_t end = line.rfind(" |"), source = line.rfind(" | ", end - 1);
        EXPECT_GT(end, source + 3) << line << ": expected a source";
        rows.push_back(line.substr(0, source + 2));
    }
    return rows;
}

TEST(Docs, TheTableOfScalarsIsThatOfTheQuantities)
{
    const char* const places[] = {"point", "pair", "step"};
    Lines rows;
    for (const strandview::Quantity& quantity : strandview::quantities())
        rows.push_back("| `" + quantity.name + "` | " + places[int(quantity.place)] + " | " +
                       quantity.unit + " | " + (quantity.isSigned ? "yes" : "no") + " | " +
                       quantity.meaning + " |");
    EXPECT_THAT(rowsWithoutSource(rows.front(), rows.size()), testing::ElementsAreArray(rows));
}

TEST(Docs, TheTableOfNumbersOfWholeCurvesIsThatOfTheQuantities)
{
    Lines rows;
    for (const strandview::LineQuantity& quantity : strandview::lineQuantities())
        rows.push_back("| `" + quantity.name + "` | " + quantity.unit +
                       (quantity.unit.empty() ? "| " : " | ") + quantity.meaning + " |");
    EXPECT_THAT(rowsWithoutSource(rows.front(), rows.size()), testing::ElementsAreArray(rows));
}

TEST(Docs, AFormatHasThePictureOfASampleOfThatFormat)
{
    const auto pictures = picturesOf(PROJECT / GUIDE_TO_DATA);
    for (const strandview::Format& format : strandview::formats()) {
        SCOPED_TRACE(format.name);
        const auto section = pictures.find(headingOf(format));
        ASSERT_NE(section, pictures.end()) << "has no picture";
        std::size_t samples = 0;
        for (const fs::directory_entry& entry : fs::directory_iterator(PROJECT / "data")) {
            const bool isShown = section->second.count(entry.path().stem().string()) == 1;
            samples += isShown && formatOfReadable(entry.path()) == &format;
        }
        EXPECT_GE(samples, section->second.size());
    }
}

// As web pages make it of a heading: "tables-txt-dat" of "Tables: `.txt` `.dat`".
std::string anchorOf(const std::string& heading)
{
    std::string anchor;
    for (const char c : heading) {
        if (c == ' ' || c == '-')
            anchor += '-';
        else if (std::isalnum(static_cast<unsigned char>(c)) || c == '_')
            anchor += char(std::tolower(static_cast<unsigned char>(c)));
    }
    return anchor;
}

std::set<std::string> anchorsOf(const fs::path& page)
{
    static const std::regex heading("^#+ (.*)$");
    std::set<std::string> anchors;
    for (const std::string& line : readLines(page)) {
        std::smatch match;
        if (std::regex_match(line, match, heading))
            anchors.insert(anchorOf(match[1]));
    }
    return anchors;
}

TEST(Docs, LinksIntoPagesLeadToHeadings)
{
    static const std::regex link("\\]\\(([a-z/.]*)#([^)]+)\\)");
    std::size_t seen = 0;
    for (const fs::path& page : pagesOf(PROJECT)) {
        std::string text; // links may go on in the next line
        for (const std::string& line : readLines(page))
            text += line + "\n";
        for (std::sregex_iterator at(text.begin(), text.end(), link), end; at != end; ++at) {
            const std::string target = (*at)[1];
            const fs::path led = target.empty() ? page : page.parent_path() / target;
            EXPECT_EQ(anchorsOf(led).count((*at)[2]), 1u) << page << ": " << at->str();
            ++seen;
        }
    }
    EXPECT_GT(seen, 20u); // so that the test has read what it is about
}

TEST(Docs, CommandsOfTheProjectAreThere)
{
    for (const CodeBlock& block : blocksIn("sh")) {
        if (block.isRun())
            continue;
        for (const std::string& line : block.lines)
            EXPECT_TRUE(isExecutable(PROJECT / line.substr(0, line.find(' '))))
                << block.place << ": " << line;
    }
}

// The first of these that is a folder of the project, or else the last.
std::string folderOf(const std::vector<std::string>& paths)
{
    for (const std::string& path : paths) {
        if (fs::is_directory(PROJECT / path))
            return path;
    }
    return paths.back();
}

// The folders that a map of lines like "  scene/   data and style to nodes" names, as paths: one
// that does not begin its line is in the one before it, in the line's outermost one or beside it.
std::set<std::string> foldersOn(const CodeBlock& map)
{
    static const std::regex name("([A-Za-z0-9_]+)/");
    std::set<std::string> folders;
    std::string top;
    for (const std::string& line : map.lines) {
        std::string before = top;
        for (std::sregex_iterator at(line.begin(), line.end(), name), end; at != end; ++at) {
            const std::string word = (*at)[1];
            if (at->position() == 0)
                before = top = word;
            else
                before = folderOf({before + "/" + word, top + "/" + word, word});
            folders.insert(before);
        }
    }
    return folders;
}

TEST(Docs, TheMapNamesTheFoldersThatThereAre)
{
    std::set<std::string> named;
    for (const CodeBlock& block : blocksIn("text"))
        named.merge(foldersOn(block));
    for (const std::string& folder : named)
        EXPECT_TRUE(fs::is_directory(PROJECT / folder)) << folder;

    const auto expectNamed = [&](const std::string& outer) {
        for (const fs::directory_entry& entry : fs::directory_iterator(PROJECT / outer)) {
            const std::string folder = fs::relative(entry.path(), PROJECT).generic_string();
            const bool isOurs = entry.is_directory() && folder[0] != '.' && folder != "build";
            EXPECT_TRUE(!isOurs || named.count(folder) == 1) << folder << " is not on the map";
        }
    };
    for (const char* outer : {".", "app", "formats", "src"})
        expectNamed(outer);
}

// "SeeInside" of "See inside".
std::string asNameOfTest(const std::string& words)
{
    std::string name;
    bool begins = true;
    for (const char c : words) {
        const bool isPart = std::isalnum(static_cast<unsigned char>(c)) != 0;
        if (isPart)
            name += begins ? char(std::toupper(static_cast<unsigned char>(c))) : c;
        begins = !isPart && c != '\'';
    }
    return name;
}

// What is to be done for each, the tests look up themselves.
TEST(Docs, TheTasksOfTheWindowAreThoseThatAreTested)
{
    static const std::regex row("\\| ([^|]+) \\| .* \\|"),
        test("TEST_F\\(WorkingUserTest, (.*)\\)");
    Lines told, tested;
    bool isTable = false;
    std::smatch match;
    for (const std::string& line : readLines(PROJECT / "docs/window.md")) {
        if (line == "|---|---|" || line == "| Task | What to do |")
            isTable = line[2] == 'T' || isTable;
        else if (isTable && std::regex_match(line, match, row))
            told.push_back(asNameOfTest(match[1]));
        else
            isTable = false;
    }
    for (const std::string& line : readLines(PROJECT / "tests/gui/WorkingUserTest.cpp")) {
        if (std::regex_match(line, match, test))
            tested.push_back(match[1]);
    }
    EXPECT_EQ(told, tested);
    EXPECT_EQ(told.size(), 10u);
}

TEST(Docs, LinksLeadToFilesOfTheProject)
{
    static const std::regex link("\\]\\(([^)#]+)(#[^)]*)?\\)");
    for (const fs::path& page : pagesOf(PROJECT)) {
        for (const std::string& line : readLines(page)) {
            for (std::sregex_iterator at(line.begin(), line.end(), link), end; at != end; ++at) {
                const std::string target = (*at)[1];
                const bool isOurs = target.find("://") == std::string::npos;
                EXPECT_TRUE(!isOurs || fs::exists(page.parent_path() / target))
                    << page << ": " << target;
            }
        }
    }
}

// In the pages a path in backticks is below the project, the folder where it stands, or a library.
bool isThere(const std::string& path, const fs::path& page)
{
    for (const fs::path& folder : {PROJECT, page.parent_path(), PROJECT / "src", PROJECT / "app"}) {
        if (fs::exists(folder / path))
            return true;
    }
    return false;
}

TEST(Docs, SourcesAndScriptsThatAreNamedExist)
{
    static const std::regex named(
        "`((script/[a-z_]+)|([A-Za-z0-9_]+(/[A-Za-z0-9_]+)*/[A-Za-z0-9_]+\\.(h|cpp|txt|sh|md)))");
    static const std::regex anyName("/X(Test)?\\."); // of a class that there may be
    std::size_t seen = 0;
    for (const fs::path& page : pagesOf(PROJECT)) {
        for (const std::string& line : readLines(page)) {
            for (std::sregex_iterator at(line.begin(), line.end(), named), end; at != end; ++at) {
                const std::string path = (*at)[1];
                ++seen;
                EXPECT_TRUE(isThere(path, page) || std::regex_search(path, anyName))
                    << page << ": " << path;
            }
        }
    }
    EXPECT_GT(seen, 30u); // so that the test has read what it is about
}

TEST(DocsExcerpts, StandWholeAndInOrderWhateverTheirIndent)
{
    const Lines source{"int main()",      "{", "    run();", "", "    if (more)",
                       "        stop();", "}"};
    EXPECT_TRUE(standsAt(source, 2, {"run();", "", "if (more)", "    stop();"}));
    EXPECT_FALSE(standsAt(source, 2, {"run();", "if (more)"}));
    EXPECT_FALSE(standsAt(source, 2, {"run();", "", "if (more)", "stop();"}));
    EXPECT_FALSE(standsAt(source, 2, {"ru"}));
    EXPECT_FALSE(standsAt(source, 6, {"}", "more"}));
}

} // namespace
