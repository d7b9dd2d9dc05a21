// SPDX-License-Identifier: GPL-3.0-or-later
// Reads any bytes as a file of one format, FUZZED_FORMAT in the environment: whatever they are,
// the reader ends, leaves memory alone, and gives data or one line.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include <strandview/formats/Source.h>
#include <strandview/formats/formats.h>
#include <strandview/formats/openSeries.h>

using namespace strandview;

namespace {

// Between the bytes of a file and those of the one that is beside it.
constexpr std::string_view SEPARATOR = "\n====\n";

void require(bool holds, const std::string& what)
{
    if (holds)
        return;
    std::fprintf(stderr, "not so: %s\n", what.c_str());
    std::abort();
}

const Format& fuzzedFormat()
{
    const char* const name = std::getenv("FUZZED_FORMAT");
    const auto found = std::find_if(formats().begin(), formats().end(), [&](const Format& format) {
        return name && format.name == name;
    });
    require(found != formats().end(), "FUZZED_FORMAT is the name of a format");
    return *found;
}

bool isOneLine(const std::string& text)
{
    return !text.empty() && text.find('\n') == std::string::npos;
}

// Of a folder of its own, where the second file may be beside the first.
class Files
{
public:
    Files()
    {
        std::string pattern = std::filesystem::temp_directory_path() / "strandview-fuzz-XXXXXX";
        const char* const made = ::mkdtemp(pattern.data());
        require(made, "a temporary folder can be made");
        folder = made;
    }
    ~Files() { std::filesystem::remove_all(folder); }
    Files(const Files&) = delete;
    Files& operator=(const Files&) = delete;

    std::unique_ptr<Source> open(std::string_view first, std::string_view second,
                                 ReadReport& report) const
    {
        std::ofstream(folder / "fuzzed.dat", std::ios::binary) << first;
        std::ofstream(folder / "fuzzed.top", std::ios::binary) << second;
        return Source::open((folder / "fuzzed.dat").string(), report);
    }

private:
    std::filesystem::path folder;
};

std::unique_ptr<Source> sourceOf(std::string_view bytes, ReadReport& report)
{
    static const Files files;
    const std::size_t separator = bytes.find(SEPARATOR);
    if (separator == std::string_view::npos)
        return Source::ofBytes("fuzzed", std::string(bytes));
    return files.open(bytes.substr(0, separator), bytes.substr(separator + SEPARATOR.size()),
                      report);
}

void readAll(const Format& format, std::string_view bytes)
{
    ReadReport report;
    const std::unique_ptr<Source> source = sourceOf(bytes, report);
    require(source != nullptr, "the bytes are there");
    const bool isRead = format.read(*source, {}, report).has_value();
    require(isRead ? report.error.empty() : isOneLine(report.error), "data or one line");
}

void loadAll(const Format& format, std::string_view bytes)
{
    ReadReport report;
    const std::unique_ptr<Series> series = openSeries(sourceOf(bytes, report), format, {}, report);
    require(series || isOneLine(report.error), "a series or one line");
    if (!series)
        return;
    const std::size_t most = 8; // frames more are more of the same
    for (std::size_t frame = 0; frame < std::min(series->count(), most); ++frame) {
        const LoadedFrame loaded = series->load(frame);
        require(loaded.configuration ? loaded.error.empty() : isOneLine(loaded.error),
                "a frame or one line");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const Format& format = fuzzedFormat();
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    format.recognises(bytes);
    readAll(format, bytes);
    loadAll(format, bytes);
    return 0;
}
