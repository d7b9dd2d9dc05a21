// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/Unpacker.h>

#include <algorithm>
#include <filesystem>
#include <limits>

#include <zlib.h>
#include <zstd.h>

#include <strandview/formats/text/encoding.h>

namespace strandview {

namespace {

constexpr std::string_view GZIP = "\x1f\x8b";
constexpr std::string_view ZSTANDARD = "\x28\xb5\x2f\xfd";
constexpr char DAMAGED[] = "found damaged data, packed by ";

class GzipUnpacker : public Unpacker
{
public:
    GzipUnpacker()
    {
        constexpr int gzipAlone = 16;
        isReady = inflateInit2(&stream, MAX_WBITS + gzipAlone) == Z_OK;
    }
    ~GzipUnpacker() override { inflateEnd(&stream); }

    std::string unpack(std::string_view& packed, char* to, std::size_t room,
                       std::size_t& given) override
    {
        given = 0;
        if (isAtEnd && !beginNext(packed))
            return {};
        constexpr std::size_t most = std::numeric_limits<uInt>::max();
        stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.data()));
        stream.avail_in = uInt(std::min(packed.size(), most));
        stream.next_out = reinterpret_cast<Bytef*>(to);
        stream.avail_out = uInt(std::min(room, most));
        const int result = isReady ? inflate(&stream, Z_NO_FLUSH) : Z_MEM_ERROR;
        given = std::size_t(stream.next_out - reinterpret_cast<Bytef*>(to));
        packed.remove_prefix(
            std::size_t(stream.next_in - reinterpret_cast<const Bytef*>(packed.data())));
        isAtEnd = result == Z_STREAM_END;
        const bool isFine = result == Z_OK || isAtEnd || result == Z_BUF_ERROR;
        return isFine ? "" : std::string(DAMAGED) + "gzip";
    }

    bool isWhole() const override { return isAtEnd; }

private:
    /// Another packed one may follow; what is none, such as padding, is left out.
    bool beginNext(std::string_view& packed)
    {
        const bool isNext = !packed.empty() && packed[0] == GZIP[0] && !isPadded;
        isPadded = isPadded || (!packed.empty() && !isNext);
        if (isNext)
            inflateReset(&stream);
        else
            packed = {};
        return isNext;
    }

    z_stream stream = {};
    bool isReady = false;
    bool isAtEnd = false;
    bool isPadded = false;
};

class ZstandardUnpacker : public Unpacker
{
public:
    ZstandardUnpacker() : stream(ZSTD_createDStream(), ZSTD_freeDStream) {}

    std::string unpack(std::string_view& packed, char* to, std::size_t room,
                       std::size_t& given) override
    {
        ZSTD_inBuffer in = {packed.data(), packed.size(), 0};
        ZSTD_outBuffer out = {to, room, 0};
        // Windows of more than 128 MiB, which are asked for by name alone, are refused.
        const std::size_t result = ZSTD_decompressStream(stream.get(), &out, &in);
        given = out.pos;
        packed.remove_prefix(in.pos);
        if (ZSTD_isError(result))
            return std::string(DAMAGED) + "Zstandard";
        if (in.pos > 0 || out.pos > 0)
            isAtEnd = result == 0;
        return {};
    }

    bool isWhole() const override { return isAtEnd; }

private:
    std::unique_ptr<ZSTD_DStream, decltype(&ZSTD_freeDStream)> stream;
    bool isAtEnd = false;
};

} // namespace

Unpacker::~Unpacker() = default;

std::unique_ptr<Unpacker> Unpacker::of(std::string_view beginning)
{
    if (beginning.substr(0, GZIP.size()) == GZIP)
        return std::make_unique<GzipUnpacker>();
    if (beginning.substr(0, ZSTANDARD.size()) == ZSTANDARD)
        return std::make_unique<ZstandardUnpacker>();
    return nullptr;
}

std::string withoutPackedEnding(const std::string& path)
{
    const std::filesystem::path whole(path);
    const std::string ending = inSmallLetters(whole.extension().string());
    const bool isPacked =
        std::find(PACKED_ENDINGS.begin(), PACKED_ENDINGS.end(), ending) != PACKED_ENDINGS.end();
    return isPacked ? path.substr(0, path.size() - ending.size()) : path;
}

} // namespace strandview
