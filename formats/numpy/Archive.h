// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_NUMPY_ARCHIVE_H
#define STRANDVIEW_FORMATS_NUMPY_ARCHIVE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <strandview/formats/ReadReport.h>
#include <strandview/formats/Source.h>
#include <strandview/formatsExport.h>

namespace strandview {

/// A ZIP archive, opened by libzip: entries stored or deflated, read at any place. What fails gives
/// nothing and report.error. The source must outlive it. For one thread at a time.
class STRANDVIEW_FORMATS_EXPORT Archive
{
public:
    static std::unique_ptr<Archive> open(Source& source, const ReadOptions& options,
                                         ReadReport& report);
    ~Archive();
    Archive(const Archive&) = delete;
    Archive& operator=(const Archive&) = delete;

    const std::vector<std::string>& getNames() const { return names; }
    /// The first entry of a name that there is.
    std::size_t find(const std::string& name) const { return places.at(name); }

    /// As the archive's directory has it, unpacked; it may be wrong.
    std::uint64_t sizeOf(std::size_t entry) const;

    /// Reads `count` bytes of an entry from an offset on; how many, fewer only where the end comes
    /// before. A packed entry is unpacked up to there, and from its beginning if it was behind it
    /// already.
    std::optional<std::size_t> readAt(std::size_t entry, std::uint64_t offset, char* to,
                                      std::size_t count, const ReadOptions& options,
                                      ReadReport& report);

private:
    struct Zip; // keeps libzip out of the header
    explicit Archive(std::unique_ptr<Zip> openZip);

    std::unique_ptr<Zip> zip;
    std::vector<std::string> names;
    std::unordered_map<std::string_view, std::size_t> places; ///< of the names
};

} // namespace strandview

#endif
