// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/readFile.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <strandview/formats/JsonReader.h>
#include <strandview/formats/Milestones.h>
#include <strandview/formats/TableReader.h>
#include <strandview/formats/text/wording.h>

namespace strandview {

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

/// Whether to go on: asked again and again until a pipe or a terminal has something to read,
/// or says what is wrong with it.
bool waitForInput(int descriptor, const ReadOptions& options)
{
    constexpr int patience = 50; // milliseconds
    pollfd input = {descriptor, POLLIN, 0};
    int ready = 0;
    do {
        if (options.goOn && !options.goOn(0))
            return false;
        ready = poll(&input, 1, patience);
    } while (ready == 0 || (ready < 0 && errno == EINTR));
    return true;
}

/// How much room to make at a time: for all of a file, and one byte to find its end. What
/// has no size of its own may be long too.
std::size_t stepFor(int descriptor)
{
    constexpr std::size_t smallest = 1 << 20;
    struct stat facts = {};
    const bool isFile = fstat(descriptor, &facts) == 0 && S_ISREG(facts.st_mode);
    return isFile ? std::max(std::size_t(facts.st_size) + 1, smallest) : smallest;
}

/// Reads all that is left of the file; why that failed, or nothing. Of text that is known
/// by nothing but its content no more than the beginning is read if it is refused: a
/// device may have no end.
std::string readAll(int descriptor, bool contentDecides, const ReadOptions& options,
                    std::string& text)
{
    const std::size_t step = stepFor(descriptor);
    std::size_t size = 0;
    for (;;) {
        if (size == text.size())
            text.resize(size == 0 ? step : 2 * size);
        if (!waitForInput(descriptor, options))
            return readingStopped;
        const ssize_t count = read(descriptor, &text[size], text.size() - size);
        if (count < 0 && errno != EINTR && errno != EAGAIN)
            return cannotBeRead(errno);
        if (count == 0)
            break;
        size += std::size_t(std::max(count, ssize_t(0)));
        const std::string refusal =
            contentDecides ? refusalOf(std::string_view(text).substr(0, size)) : "";
        if (!refusal.empty())
            return refusal;
    }
    text.resize(size);
    return {};
}

/// An open file, if it could be opened. Whoever opens a pipe that nobody writes to yet does
/// not wait for that.
class OpenFile
{
public:
    explicit OpenFile(const std::string& path)
        : descriptor(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC))
    {}
    ~OpenFile()
    {
        if (descriptor >= 0)
            close(descriptor);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    const int descriptor; ///< negative if not
};

std::string readNamedFile(const std::string& path, bool contentDecides, const ReadOptions& options,
                          std::string& text)
{
    const OpenFile file(path);
    return file.descriptor < 0 ? cannotBeRead(errno)
                               : readAll(file.descriptor, contentDecides, options, text);
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
    std::string fault = isInput ? readAll(STDIN_FILENO, contentDecides, options, text)
                                : readNamedFile(path, contentDecides, options, text);
    if (fault.empty() && isUtf16(text))
        fault = foundUtf16;
    report.error = fault.empty() ? "" : fileName + ": " + fault;
    if (!fault.empty())
        return {};
    const std::string_view content = withoutByteOrderMark(text);
    const Reader reader = contentDecides ? readerForText(content) : readerOfEnding;
    return reader(content, fileName, options, report);
}

} // namespace strandview
