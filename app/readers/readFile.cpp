// SPDX-License-Identifier: GPL-3.0-or-later
#include "readers/readFile.h"

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string_view>
#include <system_error>

#include "readers/JsonReader.h"
#include "readers/TableReader.h"
#include "readers/wording.h"

namespace {

using Reader = std::optional<Configuration> (*)(std::string_view text, const std::string& fileName,
                                                const ReadOptions& options, ReadReport& report);

struct Ending
{
    std::string_view text;
    Reader reader;
};

constexpr Ending endings[] = {{".txt", readTable}, {".dat", readTable}, {".csv", readTable},
                              {".tsv", readTable}, {".xyz", readTable}, {".json", readJson}};

std::string endingOf(const std::string& path)
{
    std::string ending = std::filesystem::path(path).extension().string();
    for (char& c : ending)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return ending;
}

/// Null if no reader is for files of this ending.
Reader readerForEnding(const std::string& ending)
{
    for (const Ending& known : endings)
        if (known.text == ending)
            return known.reader;
    return nullptr;
}

std::string unknownEnding(const std::string& ending)
{
    std::string text = ending.empty() ? "found no ending" : "found the ending " + inQuotes(ending);
    text += ", expected";
    for (const Ending& known : endings)
        (text += " ") += known.text;
    return text;
}

Reader readerForText(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    return first != std::string_view::npos && text[first] == '{' ? readJson : readTable;
}

std::string_view withoutByteOrderMark(std::string_view text)
{
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    return text.substr(text.substr(0, mark.size()) == mark ? mark.size() : 0);
}

/// By its byte order mark.
bool isUtf16(std::string_view text)
{
    const std::string_view mark = text.substr(0, 2);
    return mark == "\xFF\xFE" || mark == "\xFE\xFF";
}

std::string cannotBeRead(int reason)
{
    return "cannot be read: " + std::generic_category().message(reason);
}

/// Reads all that is left of the file; why that failed, or nothing.
std::string readAll(std::FILE* file, std::string& text)
{
    constexpr std::size_t step = 1 << 20;
    std::size_t size = 0, count = 0;
    do {
        if (size == text.size())
            text.resize(2 * size + step);
        errno = 0;
        count = std::fread(&text[size], 1, text.size() - size, file);
        size += count;
    } while (count > 0);
    const int reason = errno;
    text.resize(size);
    return std::ferror(file) ? cannotBeRead(reason) : std::string();
}

struct CloseFile
{
    void operator()(std::FILE* file) const { std::fclose(file); }
};

std::string readNamedFile(const std::string& path, std::string& text, Reader& reader)
{
    const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path.c_str(), "rb"));
    if (!file)
        return cannotBeRead(errno);
    // A directory opens as a file does, but its name is not to be blamed.
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored))
        return cannotBeRead(EISDIR);
    const std::string ending = endingOf(path);
    reader = readerForEnding(ending);
    return reader ? readAll(file.get(), text) : unknownEnding(ending);
}

std::string readStandardInput(std::string& text, Reader& reader)
{
    std::string fault = readAll(stdin, text);
    reader = readerForText(withoutByteOrderMark(text));
    return fault;
}

} // namespace

std::optional<Configuration> readFile(const std::string& path, const ReadOptions& options,
                                      ReadReport& report)
{
    const bool isInput = path == "-";
    const std::string fileName = isInput ? "standard input" : onOneLine(path);
    std::string text;
    Reader reader = nullptr;
    std::string fault =
        isInput ? readStandardInput(text, reader) : readNamedFile(path, text, reader);
    if (fault.empty() && isUtf16(text))
        fault = "found UTF-16 text, expected UTF-8";
    report.error = fault.empty() ? "" : fileName + ": " + fault;
    if (!fault.empty())
        return {};
    return reader(withoutByteOrderMark(text), fileName, options, report);
}
