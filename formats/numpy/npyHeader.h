// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_NUMPY_NPYHEADER_H
#define STRANDVIEW_FORMATS_NUMPY_NPYHEADER_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <strandview/formatsExport.h>

namespace strandview {

/// What stands before the numbers of one array of NumPy.
struct NpyHeader
{
    std::size_t itemSize = 0; ///< 4 or 8 bytes
    bool isBigEndian = false;
    bool isFortranOrder = false;      ///< the first index runs fastest
    std::vector<std::uint64_t> shape; ///< their product fits into 61 bits
    std::uint64_t dataOffset = 0;     ///< in bytes, of the first number
};

/// So many bytes hold every header that is read.
constexpr std::size_t LARGEST_NPY_HEADER = 64 * 1024;

constexpr std::string_view NPY_MAGIC = "\x93NUMPY";

/// Reads it from the first LARGEST_NPY_HEADER bytes of an array, or from all of fewer; versions 1
/// to 3 of the format, floating-point numbers of 4 and 8 bytes. "found ..., expected ..." if it is
/// none of those, else nothing. Nothing is said about whether the numbers are there.
STRANDVIEW_FORMATS_EXPORT std::string parseNpyHeader(std::string_view beginning, NpyHeader& header);

/// "(26, 3, 41)", as Python writes it.
STRANDVIEW_FORMATS_EXPORT std::string shapeText(const std::vector<std::uint64_t>& shape);

/// Whether the bytes are those of Python's pickle, protocol 2 or later.
STRANDVIEW_FORMATS_EXPORT bool isPickle(std::string_view beginning);

/// "found a pickle, ...": with the statements of Python that convert one.
STRANDVIEW_FORMATS_EXPORT std::string pickleRefusal();

} // namespace strandview

#endif
