// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_NUMPY_NUMPYFILE_H
#define STRANDVIEW_FORMATS_NUMPY_NUMPYFILE_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <strandview/formats/ReadReport.h>
#include <strandview/formats/Source.h>
#include <strandview/formats/numpy/Archive.h>
#include <strandview/formats/numpy/npyHeader.h>
#include <strandview/formatsExport.h>

namespace strandview {

/// One array of a file, not read yet.
struct STRANDVIEW_FORMATS_EXPORT NumpyArray
{
    std::string name; ///< without ".npy"; that of an .npy file is empty
    std::string path; ///< for messages: "run.npz: points", or the file alone
    NpyHeader header;
    std::size_t entry = 0;  ///< in the archive
    std::uint64_t size = 0; ///< in bytes, with the header: those that are there

    /// How many there are of the first index, with all that belongs to them: fewer than the shape
    /// says where the file is cut short.
    std::uint64_t wholeCount() const;
};

/// An array (.npy), or an archive of arrays (.npz). Nothing is read but what is asked for, and
/// memory is taken as the bytes come. Pickles are never opened.
class STRANDVIEW_FORMATS_EXPORT NumpyFile
{
public:
    /// Null and report.error if it is neither. The source must outlive the file.
    static std::unique_ptr<NumpyFile> open(Source& source, const ReadOptions& options,
                                           ReadReport& report);

    bool isArchive() const { return archive != nullptr; }
    /// Of the file, in bytes.
    std::uint64_t getSize() const { return size; }
    /// Of the archive's arrays, without ".npy"; of an .npy file an empty one.
    std::vector<std::string> getNames() const;
    /// One of them; nothing and report.error if it cannot be read.
    std::optional<NumpyArray> describe(const std::string& name, const ReadOptions& options,
                                       ReadReport& report);

    /// By how many numbers one more of each index goes on among those that read() gives.
    static std::vector<std::size_t> stridesOf(const NumpyArray& array, bool isPlace);

    /// All numbers of an array, or those that it has at one place of its first index, in the order
    /// of the file. Nothing and report.error if not all of it is there.
    std::optional<std::vector<double>> read(const NumpyArray& array,
                                            std::optional<std::uint64_t> first,
                                            const ReadOptions& options, ReadReport& report);

    /// The same piece by piece. Each is whole rows of 3, 4 or 9 numbers; `take` answers whether to
    /// go on.
    using Take = std::function<bool(const std::vector<double>& piece)>;
    bool readPieces(const NumpyArray& array, std::optional<std::uint64_t> first,
                    const ReadOptions& options, ReadReport& report, const Take& take);

private:
    explicit NumpyFile(Source& openSource) : source(openSource) {}
    /// Into `values` all of them; or each piece in the place of the one before, and to `take`.
    bool read(const NumpyArray& array, std::optional<std::uint64_t> first,
              const ReadOptions& options, ReadReport& report, std::vector<double>& values,
              const Take* take);
    /// Every `step`-th of some numbers of the array, from the `skip`-th on, behind so many values.
    bool readPiece(const NumpyArray& array, std::uint64_t first, std::size_t count,
                   std::uint64_t skip, std::uint64_t step, std::vector<double>& values,
                   std::size_t behind, const ReadOptions& options, ReadReport& report);
    std::optional<std::size_t> readBytes(std::size_t entry, std::uint64_t offset, char* to,
                                         std::size_t count, const ReadOptions& options,
                                         ReadReport& report);

    Source& source;
    std::unique_ptr<Archive> archive; ///< null of an .npy file
    std::uint64_t size = 0;
};

} // namespace strandview

#endif
