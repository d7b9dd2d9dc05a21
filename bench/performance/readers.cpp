// SPDX-License-Identifier: GPL-3.0-or-later
// How fast files are read, and what memory that takes. Beside that it counts its own instructions:
// readers read FILE.
#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <algebra3d/largePages.h>

#include <strandview/formats/openSeries.h>
#include <strandview/formats/readFile.h>

#include "measuring.h"
#include "support/AllocationCount.h"
#include "support/largeFiles.h"
#include "temporary.h"

using namespace strandview;

namespace {

constexpr std::size_t MEMORY_TAKEN = 6;                    // bytes for each of the file, or fewer
constexpr double MOST_MEMORY = 8;                          // bytes for each of the file
constexpr double SLOWEST_TEXT = 100, SLOWEST_BINARY = 500; // MB/s
constexpr double MOST_INSTRUCTIONS = 35;                   // for each byte of a table
constexpr double LATEST_FRAME = 1000;                      // the first one of a series, ms
constexpr std::size_t BYTES_COUNTED = 6'000'000;
constexpr int ROUNDS = 3;

// Files of 1 GB: of a text, a series of texts and a binary format.
constexpr const char* ALSO_VERY_LARGE[] = {"plain.raw", "moving.oxdna", "doubles.npy"};
constexpr std::size_t VERY_LARGE = 1'000'000'000;
constexpr std::uintmax_t ROOM_ON_DISK = 1'500'000'000;   // in the folder for temporary files
constexpr std::uintmax_t ROOM_IN_MEMORY = 8'000'000'000; // for the file, the text and the data

// The processor's time, of the system's part, too: other work on the machine is not in it.
double processorSeconds()
{
    timespec time = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return double(time.tv_sec) + 1e-9 * double(time.tv_nsec);
}

// All of its frames, one after another; false and a line on standard error if that fails.
bool readFrames(const std::string& path)
{
    ReadReport report;
    const std::unique_ptr<Series> series = openSeries({path}, {}, report);
    for (std::size_t frame = 0; series && frame < series->count(); ++frame)
        if (const LoadedFrame loaded = series->load(frame); !loaded.configuration)
            report.error = loaded.error;
    if (!report.error.empty())
        std::cerr << report.error << "\n";
    return report.error.empty();
}

// Of a series that is opened at once, until its first frame is there; in ms.
double timeOfFirstFrame(const std::string& path)
{
    const double begin = processorSeconds();
    ReadReport report;
    ReadOptions options;
    options.atOnce = true;
    const std::unique_ptr<Series> series = openSeries({path}, options, report);
    const bool isThere = series && series->load(0).configuration;
    return isThere ? 1e3 * (processorSeconds() - begin) : -1;
}

// Nothing and a line on standard error if that fails.
std::optional<Configuration> readOne(const std::string& path)
{
    ReadReport report;
    std::optional<Configuration> data = readFile(path, {}, report);
    if (!data)
        std::cerr << report.error << "\n";
    return data;
}

std::string contentOf(const std::string& path)
{
    std::string text(std::filesystem::file_size(path), '\0');
    std::ifstream(path, std::ios::binary).read(text.data(), std::streamsize(text.size()));
    return text;
}

// The peers. What they come to is kept, or they would not be computed.
volatile double kept = 0;

void sumNumbers(const std::string& path)
{
    const std::string text = contentOf(path);
    double sum = 0;
    const char* const end = text.data() + text.size();
    for (const char* place = text.data(); place < end;) {
        double number = 0;
        const auto [stop, status] = std::from_chars(place, end, number);
        sum += status == std::errc() ? number : 0;
        place = stop == place ? place + 1 : stop;
    }
    kept = sum;
}

void sumBytes(const std::string& path)
{
    const std::string bytes = contentOf(path);
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i + 8 <= bytes.size(); i += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, &bytes[i], sizeof word);
        sum += word;
    }
    kept = double(sum);
}

struct Measured
{
    double seconds, secondsOfPeer;
    double memory; // bytes beyond what is returned
};

bool isTextOf(const LargeFile& file)
{
    return file.kind == LargeFile::Kind::TEXT || file.kind == LargeFile::Kind::SERIES;
}

// The host of a virtual machine takes back what was free for some seconds, and gives it again
// twenty times as slowly as the system clears it. That is no time of a reader's: so what it will
// use is used once shortly before.
void haveMemoryGiven(std::size_t bytes)
{
    std::string memory;
    algebra3d::reserveMany(memory, bytes);
    memory.resize(bytes);
    kept = memory[bytes / 2];
}

// Negative memory if it cannot be read.
Measured measure(const LargeFile& file, const std::string& path)
{
    Measured measured = {};
    haveMemoryGiven(MEMORY_TAKEN * std::size_t(std::filesystem::file_size(path)));
    const double begin = processorSeconds();
    const AllocationCount count;
    if (file.kind == LargeFile::Kind::SERIES) {
        measured.memory = readFrames(path) ? double(count.mostHeld()) : -1;
        measured.seconds = processorSeconds() - begin;
    } else {
        const std::optional<Configuration> data = readOne(path);
        measured.seconds = processorSeconds() - begin;
        measured.memory = data ? double(count.mostHeld() - count.held()) : -1;
    }
    return measured;
}

// The same in turn with the peer.
Measured measureBesidePeer(const LargeFile& file, const std::string& path)
{
    std::vector<double> seconds, secondsOfPeer;
    double memory = 0;
    for (int round = 0; round < ROUNDS && memory >= 0; ++round) {
        const Measured measured = measure(file, path);
        seconds.push_back(measured.seconds);
        memory = measured.memory;
        const double middle = processorSeconds();
        (isTextOf(file) ? sumNumbers : sumBytes)(path);
        secondsOfPeer.push_back(processorSeconds() - middle);
    }
    return {median(seconds), median(secondsOfPeer), memory};
}

// Of so many bytes more, or negative.
double instructionsPerByte(const std::string& program, const LargeFile& file)
{
    const auto count = [&](std::size_t bytes) {
        const TemporaryFolder folder;
        file.write(folder.path, bytes);
        return countInstructions(program, {"read", folder.path + "/" + file.name});
    };
    const double once = count(BYTES_COUNTED), twice = count(2 * BYTES_COUNTED);
    return once < 0 || twice < 0 ? -1 : (twice - once) / double(BYTES_COUNTED);
}

void addRate(Table& table, const std::string& what, const LargeFile& file, double rate)
{
    const bool isPacked = file.kind == LargeFile::Kind::PACKED;
    table.rate(what, rate, "goal", isTextOf(file) ? SLOWEST_TEXT : SLOWEST_BINARY, "MB/s",
               isPacked ? 0 : 1);
}

void add(Table& table, const LargeFile& file, double megabytes, const std::string& program)
{
    const TemporaryFolder folder;
    file.write(folder.path, std::size_t(megabytes * 1e6));
    const double bytes = double(folder.bytes());
    const Measured measured = measureBesidePeer(file, folder.path + "/" + file.name);
    if (measured.memory < 0)
        return table.missing(file.what, "it could not be read");
    const double rate = bytes / 1e6 / measured.seconds;
    addRate(table, file.what, file, rate);
    table.rate(file.what, rate, isTextOf(file) ? "std::from_chars alone" : "the bytes added",
               bytes / 1e6 / measured.secondsOfPeer, "MB/s", 0);
    table.limit("– memory beyond the result", measured.memory / bytes, "bytes/byte", MOST_MEMORY);
    if (file.what.rfind("A table", 0) == 0)
        if (const double each = instructionsPerByte(program, file); each >= 0)
            table.limit("– instructions", each, "instructions/byte", MOST_INSTRUCTIONS);
}

// In bytes; 0 where the system does not tell.
std::uintmax_t memoryAvailable()
{
    std::ifstream facts("/proc/meminfo");
    for (std::string name, rest; facts >> name && std::getline(facts, rest);)
        if (name == "MemAvailable:")
            return std::uintmax_t(std::strtoull(rest.c_str(), nullptr, 10)) * 1024;
    return 0;
}

bool isAlsoVeryLarge(const LargeFile& file)
{
    return std::find(std::begin(ALSO_VERY_LARGE), std::end(ALSO_VERY_LARGE), file.name) !=
           std::end(ALSO_VERY_LARGE);
}

// Once, for it takes long, and where there is room.
void addVeryLarge(Table& table, const LargeFile& file)
{
    const std::string what = file.what + ", 1 GB";
    const TemporaryFolder folder;
    if (std::filesystem::space(folder.path).available < ROOM_ON_DISK)
        return table.missing(what, "less than 1.5 GB are free for temporary files");
    if (memoryAvailable() < ROOM_IN_MEMORY)
        return table.missing(what, "less than 8 GB of memory are free");
    file.write(folder.path, VERY_LARGE);
    const double bytes = double(folder.bytes());
    const Measured measured = measure(file, folder.path + "/" + file.name);
    if (measured.memory < 0)
        return table.missing(what, "it could not be read");
    addRate(table, what, file, bytes / 1e6 / measured.seconds);
    table.limit("– memory beyond the result", measured.memory / bytes, "bytes/byte", MOST_MEMORY);
    if (file.kind != LargeFile::Kind::SERIES)
        return;
    const std::string first = "– until the first frame is there";
    const double time = timeOfFirstFrame(folder.path + "/" + file.name);
    if (time < 0)
        table.missing(first, "it could not be read");
    else
        table.limit(first, time, "ms", LATEST_FRAME);
}

} // namespace

// readers [MEGABYTES [FORMAT]...]: files of that size, 50 MB unless told otherwise; of all
// formats, or of those that one of the words is in; and some of 1 GB, without words or by the word
// "1 GB".
int main(int count, char** words)
{
    if (count == 3 && std::string(words[1]) == "read")
        return readOne(words[2]) ? 0 : 1;
    const double megabytes = count > 1 ? std::atof(words[1]) : 50;
    Table table(
        "Readers",
        "Files of " + std::to_string(int(megabytes)) +
            " MB, in the system's memory already, from opening to the data; of a series all "
            "frames,\none after another. The time is the processor's, the system's part "
            "included. The peer reads\nthe file and every number in it, or of a binary file "
            "adds every eight bytes. How fast a\npacked archive is read, zlib decides. Points "
            "without frames are bound by memory: a point\nand its frame are 72 bytes, which the "
            "system clears first, of 24 in the file, or of 12 in single\nprecision; PDB and mmCIF "
            "by gemmi and the fit of the bases, oxDNA by the search for pairs. Memory\nis the "
            "most that was held at a time, less what the reader returns; of a series with the "
            "frame\nthat is shown. Files of 1 GB are read once, where there are 8 GB of memory "
            "and 1.5 GB of disk\nfor them. Before each reading as much memory as it takes is used "
            "once, "
            "for the host of a virtual\nmachine gives slowly what it took back.");
    const auto isAsked = [&](const std::string& what) {
        return count < 3 || std::any_of(words + 2, words + count, [&](const char* word) {
                   return what.find(word) != std::string::npos;
               });
    };
    for (const LargeFile& file : largeFiles())
        if (isAsked(file.what))
            add(table, file, megabytes, words[0]);
    for (const LargeFile& file : largeFiles())
        if (isAsked("1 GB") && isAlsoVeryLarge(file))
            addVeryLarge(table, file);
    table.print();
}
