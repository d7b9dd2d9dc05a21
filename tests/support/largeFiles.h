// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_LARGEFILES_H
#define STRANDVIEW_TESTS_LARGEFILES_H

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

/// A file as long as it is asked to be, for the measure of its reader.
struct LargeFile
{
    enum class Kind {
        TEXT,
        SERIES, ///< of texts
        BINARY,
        PACKED ///< by deflate
    };

    std::string what; ///< "XYZ of one frame"
    std::string name; ///< "one.xyz"; one beside it may belong to it
    Kind kind;
    /// Writes them into a folder, together of about so many bytes.
    std::function<void(const std::string& folder, std::size_t bytes)> write;
};

/// At least one for each reader, of numbers with as many digits as programs write.
const std::vector<LargeFile>& largeFiles();

#endif
