// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_PACK_H
#define STRANDVIEW_TESTS_PACK_H

#include <string>

#include <gtest/gtest.h>
#include <zlib.h>
#include <zstd.h>

namespace strandview {

/// As the program gzip packs it.
inline std::string packedByGzip(const std::string& bytes)
{
    z_stream stream = {};
    EXPECT_EQ(
        deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, MAX_WBITS + 16, 8, Z_DEFAULT_STRATEGY),
        Z_OK);
    std::string packed(deflateBound(&stream, uLong(bytes.size())), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
    stream.avail_in = uInt(bytes.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = uInt(packed.size());
    EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

/// As the program zstd packs it.
inline std::string packedByZstandard(const std::string& bytes)
{
    std::string packed(ZSTD_compressBound(bytes.size()), '\0');
    const std::size_t size =
        ZSTD_compress(packed.data(), packed.size(), bytes.data(), bytes.size(), 1);
    EXPECT_FALSE(ZSTD_isError(size));
    packed.resize(size);
    return packed;
}

} // namespace strandview

#endif
