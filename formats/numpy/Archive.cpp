// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/numpy/Archive.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <utility>

#include <libdeflate.h>
#include <zip.h>

namespace strandview {

namespace {

constexpr std::size_t PIECE = 1 << 18;
/// Entries that are open at a time; each takes some 50 KB where it is packed.
constexpr std::size_t MOST_OPEN = 16;

/// What libzip reads an archive from. It asks for bytes while something else is asked of it, hence
/// the options and the report of the moment.
struct Bytes
{
    Source& source;
    std::uint64_t size;
    std::uint64_t place = 0;
    const ReadOptions* options = nullptr;
    ReadReport* report = nullptr;
    std::uint64_t lastPlace = 0; ///< that was read from
    zip_error_t error;

    zip_int64_t read(void* to, zip_uint64_t count)
    {
        const std::uint64_t most = std::min<std::uint64_t>({count, size - place, PIECE});
        const auto got =
            source.readAt(place, static_cast<char*>(to), std::size_t(most), *options, *report);
        if (!got) {
            zip_error_set(&error, ZIP_ER_READ, EIO);
            return -1;
        }
        lastPlace = place;
        place += *got;
        return zip_int64_t(*got);
    }

    zip_int64_t seek(void* data, zip_uint64_t length)
    {
        const zip_int64_t to = zip_source_seek_compute_offset(place, size, data, length, &error);
        if (to < 0)
            return -1;
        place = std::uint64_t(to);
        return 0;
    }

    zip_int64_t tellSize(void* data, zip_uint64_t length)
    {
        zip_stat_t* const facts = ZIP_SOURCE_GET_ARGS(zip_stat_t, data, length, &error);
        if (!facts)
            return -1;
        zip_stat_init(facts);
        facts->size = size;
        facts->valid = ZIP_STAT_SIZE;
        return sizeof(*facts);
    }

    static zip_int64_t answer(void* self, void* data, zip_uint64_t length, zip_source_cmd_t command)
    {
        Bytes& bytes = *static_cast<Bytes*>(self);
        switch (command) {
        case ZIP_SOURCE_OPEN:
            bytes.place = 0;
            return 0;
        case ZIP_SOURCE_READ:
            return bytes.read(data, length);
        case ZIP_SOURCE_SEEK:
            return bytes.seek(data, length);
        case ZIP_SOURCE_TELL:
            return zip_int64_t(bytes.place);
        case ZIP_SOURCE_STAT:
            return bytes.tellSize(data, length);
        case ZIP_SOURCE_ERROR:
            return zip_error_to_data(&bytes.error, data, length);
        case ZIP_SOURCE_SUPPORTS:
            return zip_source_make_command_bitmap(
                ZIP_SOURCE_OPEN, ZIP_SOURCE_READ, ZIP_SOURCE_CLOSE, ZIP_SOURCE_STAT,
                ZIP_SOURCE_ERROR, ZIP_SOURCE_FREE, ZIP_SOURCE_SEEK, ZIP_SOURCE_TELL,
                ZIP_SOURCE_SUPPORTS, -1);
        default: // nothing to close or to free
            return 0;
        }
    }
};

/// A packed entry that is being read.
struct OpenEntry
{
    zip_file_t* file = nullptr;
    std::uint64_t place = 0; ///< in it
};

/// The CRC-32 of so many bytes from the beginning of an entry on.
struct Sum
{
    std::uint32_t crc = 0;
    std::uint64_t count = 0;

    /// By those of some bytes that are not in it yet, unless others would be left out before.
    void extend(std::uint64_t place, const char* bytes, std::size_t some)
    {
        if (place > count || place + some <= count)
            return;
        const std::size_t known = std::size_t(count - place);
        crc = libdeflate_crc32(crc, bytes + known, some - known);
        count = place + some;
    }
};

constexpr char ANOTHER_SUM[] =
    "found bytes of another CRC-32 than the archive has, expected those that were written";

} // namespace

struct Archive::Zip
{
    explicit Zip(Source& source, std::uint64_t size)
        : bytes{source, size, 0, nullptr, nullptr, 0, {}}
    {
        zip_error_init(&bytes.error);
    }
    ~Zip()
    {
        closeEntries();
        if (archive)
            zip_discard(archive);
        zip_error_fini(&bytes.error);
    }
    Zip(const Zip&) = delete;
    Zip& operator=(const Zip&) = delete;

    bool open(ReadReport& report)
    {
        zip_error_t error;
        zip_error_init(&error);
        zip_source_t* const from = zip_source_function_create(Bytes::answer, &bytes, &error);
        archive = from ? zip_open_from_source(from, ZIP_RDONLY, &error) : nullptr;
        if (!archive && from)
            zip_source_free(from);
        if (!archive && report.error.empty())
            report.error = bytes.source.getName() + ": found no whole ZIP archive (" +
                           zip_error_strerror(&error) + "), expected one of NumPy's arrays";
        zip_error_fini(&error);
        return archive;
    }

    void closeEntries()
    {
        for (auto& [entry, opened] : entries)
            zip_fclose(opened.file);
        entries.clear();
    }

    void close(std::size_t entry)
    {
        zip_fclose(entries[entry].file);
        entries.erase(entry);
    }

    zip_stat_t factsOf(std::size_t entry) const
    {
        zip_stat_t facts;
        if (zip_stat_index(archive, entry, 0, &facts) != 0)
            zip_stat_init(&facts);
        return facts;
    }

    bool isStored(std::size_t entry) const
    {
        const zip_stat_t facts = factsOf(entry);
        return (facts.valid & ZIP_STAT_COMP_METHOD) && facts.comp_method == ZIP_CM_STORE;
    }

    /// At the place, or before it where the bytes between have to be read.
    OpenEntry* openAt(std::size_t entry, std::uint64_t place)
    {
        if (entries.count(entry) > 0 && entries[entry].place > place)
            close(entry);
        if (entries.count(entry) == 0) {
            if (entries.size() >= MOST_OPEN)
                closeEntries();
            zip_file_t* const file = zip_fopen_index(archive, entry, 0);
            if (!file)
                return nullptr;
            entries[entry] = {file, 0};
        }
        return &entries[entry];
    }

    std::optional<std::size_t> readPacked(std::size_t entry, std::uint64_t offset, char* to,
                                          std::size_t count, std::string& fault)
    {
        OpenEntry* const opened = openAt(entry, offset);
        if (!opened)
            return notUnpacked(zip_strerror(archive), fault);
        std::string dropped; // what lies before the offset
        std::size_t got = 0;
        for (zip_int64_t more = 1; more > 0 && got < count;) {
            const std::uint64_t before = offset - std::min(offset, opened->place);
            const std::size_t piece =
                std::size_t(std::min<std::uint64_t>(before > 0 ? before : count - got, PIECE));
            dropped.resize(before > 0 ? piece : 0);
            char* const place = before > 0 ? dropped.data() : to + got;
            more = zip_fread(opened->file, place, piece);
            if (more < 0) {
                notUnpacked(zip_file_strerror(opened->file), fault);
                close(entry);
                return {};
            }
            sums[entry].extend(opened->place, place, std::size_t(more));
            opened->place += std::uint64_t(more);
            got += before > 0 ? 0 : std::size_t(more);
        }
        return got;
    }

    /// Where in the file a stored entry begins: libzip, which knows, is asked for its first byte.
    std::optional<std::uint64_t> beginOfStored(std::size_t entry, std::string& fault)
    {
        const auto known = begins.find(entry);
        if (known != begins.end())
            return known->second;
        zip_file_t* const file = zip_fopen_index(archive, entry, 0);
        if (!file) {
            notUnpacked(zip_strerror(archive), fault);
            return {};
        }
        char first;
        const bool isRead = zip_fread(file, &first, 1) >= 0;
        if (!isRead)
            notUnpacked(zip_file_strerror(file), fault);
        zip_fclose(file);
        if (!isRead)
            return {};
        return begins[entry] = bytes.lastPlace;
    }

    /// Straight from the file: libzip would sum up all bytes once more, which takes a tenth of the
    /// time.
    std::optional<std::size_t> readStored(std::size_t entry, std::uint64_t offset, char* to,
                                          std::size_t count, std::string& fault)
    {
        const auto begin = beginOfStored(entry, fault);
        if (!begin)
            return {};
        const zip_stat_t facts = factsOf(entry);
        const std::uint64_t size = facts.comp_size;
        if ((facts.valid & ZIP_STAT_SIZE) && facts.size != size) {
            fault = "found " + std::to_string(size) + " bytes stored, expected " +
                    std::to_string(facts.size);
            return {};
        }
        const std::uint64_t left = size - std::min(size, offset);
        const auto got = bytes.source.readAt(*begin + offset, to,
                                             std::size_t(std::min<std::uint64_t>(count, left)),
                                             *bytes.options, *bytes.report);
        if (got)
            sums[entry].extend(offset, to, *got);
        return got;
    }

    /// Of what was read of an entry, once that is all of it.
    bool isSumRight(std::size_t entry)
    {
        const zip_stat_t facts = factsOf(entry);
        const Sum& sum = sums[entry];
        const bool isKnown = (facts.valid & ZIP_STAT_SIZE) && (facts.valid & ZIP_STAT_CRC);
        return !isKnown || sum.count != facts.size || sum.crc == facts.crc;
    }

    static std::nullopt_t notUnpacked(const std::string& reason, std::string& fault)
    {
        fault = "cannot be unpacked: " + reason;
        return std::nullopt;
    }

    Bytes bytes;
    zip_t* archive = nullptr;
    std::map<std::size_t, OpenEntry> entries;
    std::map<std::size_t, std::uint64_t> begins; ///< in the file, of stored entries
    std::map<std::size_t, Sum> sums;
};

Archive::Archive(std::unique_ptr<Zip> openZip) : zip(std::move(openZip))
{
    const zip_int64_t count = zip_get_num_entries(zip->archive, 0);
    for (zip_int64_t i = 0; i < count; ++i) {
        const char* const name = zip_get_name(zip->archive, zip_uint64_t(i), 0);
        names.emplace_back(name ? name : "");
    }
    for (std::size_t i = 0; i < names.size(); ++i)
        places.emplace(names[i], i);
}

Archive::~Archive() = default;

std::unique_ptr<Archive> Archive::open(Source& source, const ReadOptions& options,
                                       ReadReport& report)
{
    std::optional<std::uint64_t> size = source.getSize();
    if (!size) {
        const auto all = source.readAll(options, report);
        if (!all)
            return nullptr;
        size = all->size();
    }
    auto zip = std::make_unique<Zip>(source, *size);
    zip->bytes.options = &options;
    zip->bytes.report = &report;
    return zip->open(report) ? std::unique_ptr<Archive>(new Archive(std::move(zip))) : nullptr;
}

std::uint64_t Archive::sizeOf(std::size_t entry) const
{
    zip_stat_t facts;
    return zip_stat_index(zip->archive, entry, 0, &facts) == 0 && (facts.valid & ZIP_STAT_SIZE)
               ? facts.size
               : 0;
}

std::optional<std::size_t> Archive::readAt(std::size_t entry, std::uint64_t offset, char* to,
                                           std::size_t count, const ReadOptions& options,
                                           ReadReport& report)
{
    zip->bytes.options = &options;
    zip->bytes.report = &report;
    std::string fault;
    std::optional<std::size_t> got = zip->isStored(entry)
                                         ? zip->readStored(entry, offset, to, count, fault)
                                         : zip->readPacked(entry, offset, to, count, fault);
    if (got && !zip->isSumRight(entry))
        fault = ANOTHER_SUM;
    if (got && fault.empty())
        return got;
    if (report.error.empty())
        report.error = zip->bytes.source.getName() + ": " + names[entry] + ": " + fault;
    return {};
}

} // namespace strandview
