// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/Source.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <limits>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algebra3d/largePages.h>

#include <strandview/formats/Milestones.h>
#include <strandview/formats/Unpacker.h>
#include <strandview/formats/text/wording.h>

namespace strandview {

namespace {

constexpr std::uint64_t EVERYTHING = std::numeric_limits<std::uint64_t>::max();
constexpr std::size_t SMALLEST_ROOM = 1 << 20;
constexpr char STANDARD_INPUT[] = "standard input";

bool fail(const std::string& name, const std::string& what, ReadReport& report)
{
    report.error = name + ": " + what;
    return false;
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

} // namespace

std::unique_ptr<Source> Source::open(const std::string& path, ReadReport& report)
{
    if (path == "-")
        return std::unique_ptr<Source>(new Source(STANDARD_INPUT, "", STDIN_FILENO));
    // Whoever opens a pipe that nobody writes to yet does not wait for that.
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor >= 0)
        return std::unique_ptr<Source>(new Source(onOneLine(path), path, descriptor));
    fail(onOneLine(path), cannotBeRead(errno), report);
    return nullptr;
}

std::unique_ptr<Source> Source::ofBytes(const std::string& name, std::string bytes)
{
    std::unique_ptr<Source> source(new Source(onOneLine(name), "", -1));
    source->size = source->filled = bytes.size();
    source->beginning = std::move(bytes);
    source->isComplete = true;
    return source;
}

Source::Source(std::string sourceName, std::string sourcePath, int openDescriptor)
    : name(std::move(sourceName)), path(std::move(sourcePath)), descriptor(openDescriptor)
{
    struct stat facts = {};
    // Standard input may be a file that somebody else reads, too, and from its middle on.
    isFile = !path.empty() && fstat(descriptor, &facts) == 0 && S_ISREG(facts.st_mode);
    if (isFile && facts.st_size > 0)
        size = std::uint64_t(facts.st_size);
}

bool Source::canGrow(const ReadOptions& options, ReadReport& report)
{
    if (!isFile)
        return fail(name, "cannot be followed, expected a file", report);
    return look(options, report) &&
           (!unpacked || fail(name,
                              "is packed and cannot be followed, expected the file as it is "
                              "written",
                              report));
}

bool Source::lookAgain(ReadReport& report)
{
    struct stat now = {}, there = {};
    if (fstat(descriptor, &now) != 0 || stat(path.c_str(), &there) != 0)
        return fail(name, cannotBeRead(errno), report);
    if (there.st_dev != now.st_dev || there.st_ino != now.st_ino)
        return fail(name, "found another file of this name, expected the one that was opened",
                    report);
    const std::uint64_t newSize = std::uint64_t(now.st_size), oldSize = size.value_or(0);
    if (newSize < oldSize)
        return fail(name,
                    "found " + counted(newSize, "byte") + ", expected " + std::to_string(oldSize) +
                        " or more: it has become shorter",
                    report);
    if (newSize > oldSize) {
        size = newSize;
        isComplete = false;
    }
    return true;
}

Source::~Source()
{
    if (!path.empty())
        close(descriptor);
}

/// How much room to make at a time: for all of a file, and one byte to find its end. What
/// has no size of its own may be long too.
std::size_t Source::roomFor(std::uint64_t count) const
{
    const std::uint64_t whole = size ? *size + 1 : std::uint64_t(SMALLEST_ROOM);
    return std::size_t(std::min(count, std::max(whole, 2 * std::uint64_t(filled))));
}

/// The same for what comes at an offset, behind so many bytes.
std::size_t Source::roomAt(std::uint64_t offset, std::size_t before) const
{
    return size ? std::size_t(*size - std::min(*size, offset) + 1)
                : std::max(before, SMALLEST_ROOM);
}

/// Whether the first bytes could be read, which tell whether it is packed. What has no places is
/// begun by that.
bool Source::look(const ReadOptions& options, ReadReport& report)
{
    if (hasLooked || descriptor < 0)
        return true;
    std::string first(Unpacker::BYTES_TO_KNOW_BY, '\0');
    std::size_t there = 0, got = 1;
    for (; got > 0 && there < first.size(); there += got) {
        const auto offset = isFile ? std::optional<std::uint64_t>(there) : std::nullopt;
        if (!readDescriptor(&first[there], first.size() - there, offset, options, report, got))
            return false;
    }
    hasLooked = true;
    first.resize(there);
    if (std::unique_ptr<Unpacker> unpacker = Unpacker::of(first)) {
        packedOffset = there;
        unpacked = std::make_unique<UnpackedFile>(std::move(unpacker), std::move(first));
        size.reset();
    } else if (!isFile) {
        filled = first.size();
        beginning = std::move(first);
        isComplete = got == 0;
    }
    return true;
}

/// Reads some of the next bytes, or of those at an offset; none at the end.
bool Source::readPiece(char* to, std::size_t count, std::optional<std::uint64_t> offset,
                       const ReadOptions& options, ReadReport& report, std::size_t& got)
{
    if (!unpacked)
        return readDescriptor(to, count, offset, options, report, got);
    std::string fault;
    const auto readPacked = [&](char* packedTo, std::size_t room, std::size_t& packedGot) {
        const auto from = isFile ? std::optional(packedOffset) : std::nullopt;
        const bool isRead = readDescriptor(packedTo, room, from, options, report, packedGot);
        packedOffset += packedGot;
        return isRead;
    };
    if (unpacked->read(offset.value_or(filled), to, count, got, readPacked, fault))
        return true;
    return fault.empty() ? false : fail(name, fault, report);
}

/// The same of what the bytes are packed in, if they are.
bool Source::readDescriptor(char* to, std::size_t count, std::optional<std::uint64_t> offset,
                            const ReadOptions& options, ReadReport& report, std::size_t& got) const
{
    got = 0;
    for (;;) {
        if (!waitForInput(descriptor, options))
            return fail(name, READING_STOPPED, report);
        const ssize_t result =
            offset ? pread(descriptor, to, count, off_t(*offset)) : read(descriptor, to, count);
        got = std::size_t(std::max(result, ssize_t(0)));
        if (result >= 0)
            return true;
        if (errno != EINTR && errno != EAGAIN)
            return fail(name, cannotBeRead(errno), report);
    }
}

/// Reads on from the beginning until there are so many bytes, or the end comes.
bool Source::fill(std::uint64_t count, const ReadOptions& options, ReadReport& report)
{
    if (!look(options, report))
        return false;
    while (!isComplete && filled < count) {
        if (filled == beginning.size()) {
            algebra3d::reserveMany(beginning, roomFor(count));
            beginning.resize(roomFor(count));
        }
        std::size_t got = 0;
        if (!readPiece(&beginning[filled], beginning.size() - filled, {}, options, report, got))
            return false;
        filled += got;
        isComplete = got == 0;
    }
    return true;
}

std::optional<std::string_view> Source::readBeginning(std::size_t count, const ReadOptions& options,
                                                      ReadReport& report)
{
    if (!fill(count, options, report))
        return {};
    return std::string_view(beginning).substr(0, std::min(count, filled));
}

std::optional<std::string_view> Source::readAll(const ReadOptions& options, ReadReport& report)
{
    if (!fill(EVERYTHING, options, report))
        return {};
    return std::string_view(beginning).substr(0, filled);
}

std::optional<std::string> Source::readAt(std::uint64_t offset, std::size_t count,
                                          const ReadOptions& options, ReadReport& report)
{
    // Not all the room at once: a count may be a broken file's own.
    std::string bytes;
    for (bool isAtEnd = false; !isAtEnd && bytes.size() < count;) {
        const std::size_t place = bytes.size();
        const std::size_t room = place + std::min(count - place, roomAt(offset + place, place));
        algebra3d::reserveMany(bytes, room);
        bytes.resize(room);
        const auto more =
            readAt(offset + place, &bytes[place], bytes.size() - place, options, report);
        if (!more)
            return {};
        isAtEnd = *more < bytes.size() - place;
        bytes.resize(place + *more);
    }
    return bytes;
}

std::optional<std::size_t> Source::readAt(std::uint64_t offset, char* to, std::size_t count,
                                          const ReadOptions& options, ReadReport& report)
{
    const std::uint64_t end = offset + std::min(std::uint64_t(count), EVERYTHING - offset);
    if (!look(options, report) || (!isFile && !unpacked && !fill(end, options, report)))
        return {};
    if (isComplete || end <= filled) {
        const std::size_t from = std::size_t(std::min(offset, std::uint64_t(filled)));
        return beginning.copy(to, std::min(count, filled - from), from);
    }
    std::size_t place = 0, got = 1;
    for (; got > 0 && place < count; place += got)
        if (!readPiece(to + place, count - place, offset + place, options, report, got))
            return {};
    return place;
}

std::unique_ptr<Source> Source::openBeside(const std::string& fileName, ReadReport& report) const
{
    if (!path.empty())
        return open((std::filesystem::path(path).parent_path() / fileName).string(), report);
    fail(name, "found no folder, expected " + inQuotes(fileName) + " beside it", report);
    return nullptr;
}

std::unique_ptr<Source> Source::openWithEnding(const std::string& ending, ReadReport& report) const
{
    if (path.empty())
        return openBeside("*" + ending, report);
    std::filesystem::path other = withoutPackedEnding(path);
    return open(other.replace_extension(ending).string(), report);
}

} // namespace strandview
