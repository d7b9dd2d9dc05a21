// SPDX-License-Identifier: GPL-3.0-or-later
#include "readers/readFile.h"

#include <algorithm>
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

/// Whether it begins with characters that no text has. Every picture, archive or dump
/// of numbers that was tried has some among its first hundred.
bool isBinary(std::string_view text)
{
    constexpr std::string_view blanks = "\t\n\v\f\r";
    constexpr std::size_t beginning = 4096;
    text = text.substr(0, beginning);
    return std::any_of(text.begin(), text.end(), [&](char c) {
        return static_cast<unsigned char>(c) < 0x20 && blanks.find(c) == std::string_view::npos;
    });
}

constexpr char foundUtf16[] = "found UTF-16 text, expected UTF-8";

/// Why this cannot be the beginning of a table or of JSON, or nothing.
std::string refusalOf(std::string_view beginning)
{
    if (isUtf16(beginning))
        return foundUtf16;
    return isBinary(beginning) ? "found binary data, expected a table or JSON" : "";
}

Reader readerForText(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    return first != std::string_view::npos && text[first] == '{' ? readJson : readTable;
}

std::string cannotBeRead(int reason)
{
    return "cannot be read: " + std::generic_category().message(reason);
}

/// Reads all that is left of the file; why that failed, or nothing. Of text that is known
/// by nothing but its content no more than the beginning is read if it is refused: a
/// device may have no end.
std::string readAll(std::FILE* file, bool contentDecides, std::string& text)
{
    constexpr std::size_t step = 1 << 20;
    std::size_t size = 0, count = 0;
    do {
        if (size == text.size())
            text.resize(2 * size + step);
        errno = 0;
        count = std::fread(&text[size], 1, text.size() - size, file);
        size += count;
        const std::string refusal =
            contentDecides ? refusalOf(std::string_view(text).substr(0, size)) : "";
        if (!refusal.empty())
            return refusal;
    } while (count > 0);
    const int reason = errno;
    text.resize(size);
    return std::ferror(file) ? cannotBeRead(reason) : std::string();
}

struct CloseFile
{
    void operator()(std::FILE* file) const { std::fclose(file); }
};

std::string readNamedFile(const std::string& path, bool contentDecides, std::string& text)
{
    const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path.c_str(), "rb"));
    return file ? readAll(file.get(), contentDecides, text) : cannotBeRead(errno);
}

} // namespace

std::optional<Configuration> readFile(const std::string& path, const ReadOptions& options,
                                      ReadReport& report)
{
    const bool isInput = path == "-";
    const std::string fileName = isInput ? "standard input" : onOneLine(path);
    const Reader readerOfEnding = isInput ? nullptr : readerForEnding(endingOf(path));
    const bool contentDecides = !readerOfEnding;
    std::string text;
    std::string fault =
        isInput ? readAll(stdin, contentDecides, text) : readNamedFile(path, contentDecides, text);
    if (fault.empty() && isUtf16(text))
        fault = foundUtf16;
    report.error = fault.empty() ? "" : fileName + ": " + fault;
    if (!fault.empty())
        return {};
    const std::string_view content = withoutByteOrderMark(text);
    const Reader reader = contentDecides ? readerForText(content) : readerOfEnding;
    return reader(content, fileName, options, report);
}
