// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_NUMPY_NUMPYREADER_H
#define STRANDVIEW_FORMATS_NUMPY_NUMPYREADER_H

#include <memory>
#include <optional>
#include <string_view>

#include <strandview/formats/Format.h>
#include <strandview/formats/ReadReport.h>
#include <strandview/formats/Source.h>
#include <strandview/formatsExport.h>
#include <strandview/model/Configuration.h>
#include <strandview/model/Series.h>

namespace strandview {

// Rods and DNA from arrays of NumPy: one of points (.npy), or an archive (.npz), whose keys tell
// what its arrays are. Numbers are floating-point ones of 4 or 8 bytes, in C or Fortran order.
//
//     points, position*             (n, 3) or (3, n); one rod each
//     center_line*                  the same, in place of position* of the same number: those are
//                                   the centres of its elements
//     quaternions*                  (n, 4) or (4, n), scalar last; or n - 1, of the elements
//     directors*, director_rod*     (3, 3, n), [i, :, e] is d(i+1); or (n, 3, 3), rows are d1, d2,
//                                   d3; or n - 1
//     time                          (t,)
//     frames, dr                    (n, 3, 3), rows are the axes, and (n - 1, 3), from pair to
//                                   pair: the pairs of a DNA whose letters are not known
//
// A number at the end of a key tells which belong together; without one it is 0. An axis of t
// places in front of all makes them a series of as many frames. Where both forms fit n by 3 is
// meant.

/// Certain of what begins as an array, as an archive of arrays, or as a pickle, which is refused.
STRANDVIEW_FORMATS_EXPORT Likeness likenessToNumpy(std::string_view beginning);

/// The first frame. Nothing and report.error if that fails: "run.npz: points[3, 0]: found ...,
/// expected ...", with the indices as in Python.
STRANDVIEW_FORMATS_EXPORT std::optional<Configuration>
readNumpy(Source& source, const ReadOptions& options, ReadReport& report);

/// Frames are read when they are loaded, from their place in the file; where the archive is packed
/// everything before is unpacked, too. Of a file that ends early what is whole is left.
STRANDVIEW_FORMATS_EXPORT std::unique_ptr<Series>
openNumpySeries(std::unique_ptr<Source> source, const ReadOptions& options, ReadReport& report);

} // namespace strandview

#endif
