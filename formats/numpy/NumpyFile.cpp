// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/numpy/NumpyFile.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include <algebra3d/largePages.h>

#include <strandview/formats/Milestones.h>
#include <strandview/formats/text/wording.h>

namespace strandview {

namespace {

constexpr std::size_t PIECE = 910 * 4 * 9; ///< in numbers: 256 KiB of doubles, in whole rows
constexpr std::string_view ENDING = ".npy";

bool endsAsArray(const std::string& name)
{
    return name.size() > ENDING.size() &&
           name.compare(name.size() - ENDING.size(), ENDING.size(), ENDING) == 0;
}

/// Of all axes but the first ones; it was checked to fit.
std::uint64_t product(const std::vector<std::uint64_t>& shape, std::size_t from = 0)
{
    std::uint64_t count = 1;
    for (std::size_t axis = from; axis < shape.size(); ++axis)
        count *= shape[axis];
    return count;
}

bool isHostBigEndian()
{
    const std::uint16_t one = 1;
    unsigned char first;
    std::memcpy(&first, &one, 1);
    return first == 0;
}

/// The numbers that some bytes are. They may be the last ones of the memory that the numbers go to.
template <typename Float>
void convert(const char* bytes, std::size_t count, bool isReversed, double* values)
{
    std::array<Float, 512> block;
    for (std::size_t done = 0; done < count;) {
        const std::size_t some = std::min(block.size(), count - done);
        std::memcpy(block.data(), bytes + done * sizeof(Float), some * sizeof(Float));
        if (isReversed)
            for (std::size_t i = 0; i < some; ++i) {
                char* const place = reinterpret_cast<char*>(&block[i]);
                std::reverse(place, place + sizeof(Float));
            }
        for (std::size_t i = 0; i < some; ++i)
            values[done + i] = double(block[i]);
        done += some;
    }
}

/// Always false.
bool failCut(const NumpyArray& array, ReadReport& report)
{
    report.error = array.path + ": found the end of the file within the numbers, expected " +
                   "all of shape " + shapeText(array.header.shape);
    return false;
}

} // namespace

std::uint64_t NumpyArray::wholeCount() const
{
    const std::uint64_t rest = product(header.shape, 1) * header.itemSize;
    const std::uint64_t all = header.shape.empty() ? 1 : header.shape[0];
    const std::uint64_t there = size - std::min(size, header.dataOffset);
    if (rest == 0 || there / rest >= all)
        return all;
    return header.isFortranOrder ? 0 : there / rest;
}

std::unique_ptr<NumpyFile> NumpyFile::open(Source& source, const ReadOptions& options,
                                           ReadReport& report)
{
    const auto beginning = source.readBeginning(NPY_MAGIC.size(), options, report);
    if (!beginning)
        return nullptr;
    std::unique_ptr<NumpyFile> file(new NumpyFile(source));
    const bool isArchive = beginning->substr(0, 2) == "PK"; // it lies elsewhere once all is read
    if (isPickle(*beginning)) {
        report.error = source.getName() + ": " + pickleRefusal();
        return nullptr;
    }
    std::optional<std::uint64_t> size = source.getSize();
    if (!size) {
        const auto all = source.readAll(options, report);
        if (!all)
            return nullptr;
        size = all->size();
    }
    file->size = *size;
    if (!isArchive)
        return file;
    file->archive = Archive::open(source, options, report);
    return file->archive ? std::move(file) : nullptr;
}

std::vector<std::string> NumpyFile::getNames() const
{
    if (!archive)
        return {""};
    std::vector<std::string> names;
    for (const std::string& name : archive->getNames())
        if (endsAsArray(name))
            names.push_back(name.substr(0, name.size() - ENDING.size()));
    return names;
}

std::optional<std::size_t> NumpyFile::readBytes(std::size_t entry, std::uint64_t offset, char* to,
                                                std::size_t count, const ReadOptions& options,
                                                ReadReport& report)
{
    return archive ? archive->readAt(entry, offset, to, count, options, report)
                   : source.readAt(offset, to, count, options, report);
}

std::optional<NumpyArray> NumpyFile::describe(const std::string& name, const ReadOptions& options,
                                              ReadReport& report)
{
    NumpyArray array;
    array.name = name;
    array.path = source.getName();
    array.size = size;
    if (archive) {
        array.path += ": " + shortened(name);
        array.entry = archive->find(name + std::string(ENDING));
        array.size = archive->sizeOf(array.entry);
    }
    std::string bytes(LARGEST_NPY_HEADER, '\0');
    const auto got = readBytes(array.entry, 0, bytes.data(), bytes.size(), options, report);
    if (!got)
        return {};
    bytes.resize(*got);
    const std::string fault = parseNpyHeader(bytes, array.header);
    if (fault.empty())
        return array;
    report.error = array.path + ": " + fault;
    return {};
}

std::vector<std::size_t> NumpyFile::stridesOf(const NumpyArray& array, bool isPlace)
{
    const std::vector<std::uint64_t> shape(array.header.shape.begin() + (isPlace ? 1 : 0),
                                           array.header.shape.end());
    std::vector<std::size_t> strides(shape.size());
    std::size_t stride = 1;
    for (std::size_t i = 0; i < shape.size(); ++i) {
        const std::size_t axis = array.header.isFortranOrder ? i : shape.size() - 1 - i;
        strides[axis] = stride;
        stride *= std::size_t(shape[axis]);
    }
    return strides;
}

std::optional<std::vector<double>> NumpyFile::read(const NumpyArray& array,
                                                   std::optional<std::uint64_t> first,
                                                   const ReadOptions& options, ReadReport& report)
{
    // No more than there is of the file: a size in an archive alone takes no memory.
    const std::uint64_t packed = source.getSize().value_or(0) / array.header.itemSize;
    std::vector<double> values;
    algebra3d::reserveMany(
        values, std::size_t(std::min(product(array.header.shape, first ? 1 : 0), packed)));
    return read(array, first, options, report, values, nullptr) ? std::optional(std::move(values))
                                                                : std::nullopt;
}

bool NumpyFile::readPieces(const NumpyArray& array, std::optional<std::uint64_t> first,
                           const ReadOptions& options, ReadReport& report, const Take& take)
{
    std::vector<double> piece;
    return read(array, first, options, report, piece, &take);
}

bool NumpyFile::read(const NumpyArray& array, std::optional<std::uint64_t> first,
                     const ReadOptions& options, ReadReport& report, std::vector<double>& values,
                     const Take* take)
{
    const NpyHeader& header = array.header;
    const std::uint64_t count = product(header.shape, first ? 1 : 0);
    // In Fortran order what belongs together is as far apart as the first index has places.
    const std::uint64_t step = first && header.isFortranOrder ? header.shape[0] : 1;
    const std::uint64_t begin = first ? *first * (header.isFortranOrder ? 1 : count) : 0;
    const std::uint64_t span = count == 0 ? 0 : (count - 1) * step + 1;
    const std::uint64_t there = array.size - std::min(array.size, header.dataOffset);
    if (begin + span > there / header.itemSize)
        return failCut(array, report);
    for (std::uint64_t done = 0; done < span;) {
        const double share = double(done) / double(span);
        ReadOptions asking;
        if (options.goOn)
            asking.goOn = [&options, share](double) { return options.goOn(share); };
        const std::size_t piece = std::size_t(std::min<std::uint64_t>(PIECE, span - done));
        const std::uint64_t skip = (step - done % step) % step;
        const std::size_t behind = take ? 0 : values.size();
        if (!readPiece(array, begin + done, piece, skip, step, values, behind, asking, report) ||
            (take && !(*take)(values)))
            return false;
        done += piece;
    }
    return true;
}

bool NumpyFile::readPiece(const NumpyArray& array, std::uint64_t first, std::size_t count,
                          std::uint64_t skip, std::uint64_t step, std::vector<double>& values,
                          std::size_t behind, const ReadOptions& options, ReadReport& report)
{
    const NpyHeader& header = array.header;
    const bool isReversed = header.isBigEndian != isHostBigEndian();
    const std::size_t taken = count > skip ? std::size_t((count - skip - 1) / step) + 1 : 0;
    values.resize(behind + taken);
    std::vector<double> spread(step == 1 ? 0 : count); // with what lies between
    double* const numbers = step == 1 ? values.data() + behind : spread.data();
    char* const bytes = reinterpret_cast<char*>(numbers + count) - count * header.itemSize;
    const auto got = readBytes(array.entry, header.dataOffset + first * header.itemSize, bytes,
                               count * header.itemSize, options, report);
    if (!got)
        return false;
    if (*got < count * header.itemSize)
        return failCut(array, report);
    if (header.itemSize == sizeof(float))
        convert<float>(bytes, count, isReversed, numbers);
    else if (isReversed)
        convert<double>(bytes, count, isReversed, numbers);
    for (std::size_t i = 0; step > 1 && i < taken; ++i)
        values[behind + i] = spread[std::size_t(skip + i * step)];
    return true;
}

} // namespace strandview
