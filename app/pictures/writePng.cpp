// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/writePng.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include <QImage>
#include <libdeflate.h>

namespace strandview {

namespace {

// As PNG has them (W3C, Portable Network Graphics, third edition, 2025).
const char SIGNATURE[] = "\x89PNG\r\n\x1a\n";
const char EIGHT_BITS = 8, RGB = 2, RGBA = 6, PER_METRE = 1;
const unsigned char LESS_LEFT = 1, LESS_ABOVE = 2; // filters
const std::size_t LARGEST_CHUNK = 1 << 30;         // the format allows 2^31 - 1 bytes
const int LEVEL = 4; // 6 takes a fifth more time for a twentieth less bytes

using Write = std::function<void(std::string_view)>;
using Bytes = std::unique_ptr<unsigned char[]>; // not set to anything, unlike a vector's

std::string bigEndian(std::uint32_t number)
{
    return {char(number >> 24), char(number >> 16), char(number >> 8), char(number)};
}

void writeChunk(const Write& write, const char* name, std::string_view data)
{
    write(bigEndian(std::uint32_t(data.size())) + name);
    write(data);
    const std::uint32_t sum = libdeflate_crc32(0, name, 4);
    write(bigEndian(libdeflate_crc32(sum, data.data(), data.size())));
}

std::string headerOf(const QImage& image)
{
    const char colours = image.hasAlphaChannel() ? RGBA : RGB;
    const char methods[] = {EIGHT_BITS, colours, 0, 0, 0}; // the only ones, not interlaced
    return bigEndian(std::uint32_t(image.width())) + bigEndian(std::uint32_t(image.height())) +
           std::string(methods, sizeof methods);
}

std::string resolutionOf(const QImage& image)
{
    return bigEndian(std::uint32_t(image.dotsPerMeterX())) +
           bigEndian(std::uint32_t(image.dotsPerMeterY())) + PER_METRE;
}

// Not compressed, of no language. What is ASCII goes into the older chunk, which every reader
// knows.
void writeText(const Write& write, const std::string& key, const std::string& text)
{
    const bool isAscii = std::all_of(text.begin(), text.end(),
                                     [](char c) { return static_cast<unsigned char>(c) < 128; });
    writeChunk(write, isAscii ? "tEXt" : "iTXt", key + std::string(isAscii ? 1 : 5, '\0') + text);
}

// How far the bytes of a row, taken as signed, are from 0: what compresses well is near.
long sizeOf(const unsigned char* row, int length)
{
    int size = 0; // a row has less than 2^31 / 128 bytes
    for (int i = 0; i < length; ++i)
        size += std::abs(int(static_cast<signed char>(row[i])));
    return size;
}

// Each row by the better of two filters, with the filter's number before it.
Bytes filter(const QImage& image, int bytesPerPixel)
{
    const int length = image.width() * bytesPerPixel;
    const std::size_t stride = std::size_t(length) + 1;
    Bytes filtered(new unsigned char[stride * std::size_t(image.height())]);
    std::vector<unsigned char> lessLeft(length);
    const std::vector<unsigned char> none(length);
    const unsigned char* above = none.data();
    for (int y = 0; y < image.height(); ++y) {
        const unsigned char* row = image.constScanLine(y);
        unsigned char* lessAbove = &filtered[stride * std::size_t(y)];
        *lessAbove++ = LESS_ABOVE;
        for (int i = 0; i < length; ++i)
            lessAbove[i] = static_cast<unsigned char>(row[i] - above[i]);
        std::copy_n(row, bytesPerPixel, lessLeft.begin());
        for (int i = bytesPerPixel; i < length; ++i)
            lessLeft[i] = static_cast<unsigned char>(row[i] - row[i - bytesPerPixel]);
        if (sizeOf(lessLeft.data(), length) < sizeOf(lessAbove, length)) {
            lessAbove[-1] = LESS_LEFT;
            std::copy(lessLeft.begin(), lessLeft.end(), lessAbove);
        }
        above = row;
    }
    return filtered;
}

} // namespace

CompressedRows compressRows(const QImage& image)
{
    const int bytesPerPixel = image.depth() / 8;
    const std::size_t size =
        (std::size_t(image.width()) * bytesPerPixel + 1) * std::size_t(image.height());
    const std::unique_ptr<libdeflate_compressor, decltype(&libdeflate_free_compressor)> compressor(
        libdeflate_alloc_compressor(LEVEL), libdeflate_free_compressor);
    if (!compressor)
        throw std::bad_alloc();
    const std::size_t bound = libdeflate_zlib_compress_bound(compressor.get(), size);
    CompressedRows compressed{Bytes(new unsigned char[bound]), 0};
    compressed.size = libdeflate_zlib_compress(compressor.get(), filter(image, bytesPerPixel).get(),
                                               size, compressed.bytes.get(), bound);
    return compressed;
}

void writePng(const QImage& any, const Write& write)
{
    const QImage image = any.convertToFormat(any.hasAlphaChannel() ? QImage::Format_RGBA8888
                                                                   : QImage::Format_RGB888);
    if (image.isNull())
        throw std::bad_alloc();
    const CompressedRows rows = compressRows(image);

    write({SIGNATURE, sizeof SIGNATURE - 1});
    writeChunk(write, "IHDR", headerOf(image));
    writeChunk(write, "pHYs", resolutionOf(image));
    for (const QString& key : image.textKeys())
        writeText(write, key.toLatin1().toStdString(), image.text(key).toStdString());
    const std::string_view data = rows.view();
    for (std::size_t begin = 0; begin < data.size(); begin += LARGEST_CHUNK)
        writeChunk(write, "IDAT", data.substr(begin, LARGEST_CHUNK));
    writeChunk(write, "IEND", "");
}

} // namespace strandview
