// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_READREPORT_H
#define STRANDVIEW_FORMATS_READREPORT_H

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace strandview {

class KeptPairs;

struct ReadOptions
{
    /// Accept quaternions of any norm but zero and scale them to unit length, and any
    /// right-handed directors and make them orthonormal.
    bool normalise = false;
    /// Asked now and then while a file is read, with the share of it that is done, from 0 to
    /// 1: whether to go on. If not, nothing is read, and the error says so.
    std::function<bool(double share)> goOn = {};
    /// Close every rod whose ends are apart, by one more element.
    bool close = false;
    /// Of a configuration whose topology is another file: its path, where it is not found beside
    /// it.
    std::string topology = {};
    /// Each frame of a series has the pairs of nucleotides that are found in it; else all have
    /// those of the first one.
    bool ownPairs = false;
    /// Where those are kept while a series is read; openSeries() makes it.
    std::shared_ptr<KeptPairs> pairs = {};
    /// Of a series: open it as soon as its first frame is known, where the others would have to be
    /// looked for; Series::lookForMore() does that. What is wrong behind the first frame then
    /// refuses nothing, but is told as a last frame that cannot be loaded. readFile() does not
    /// count the others then where it would have to look for them, nor tell of them: who wants them
    /// opens the series.
    bool atOnce = false;
    /// Of a series in a file that is still written to: frames that are not whole yet are no part of
    /// it, and Series::lookForMore() finds those that came since, for as long as it is asked. What
    /// is packed, and pipes, are refused; formats that are read as a whole do not grow.
    bool growing = false;
    /// Of a table: so many rows are a frame, whatever is between them; 1 where each row holds a
    /// whole one. 0 where the table tells it. Where its header tells that each row holds one, and
    /// for other formats, any other number has no effect, with a notice.
    std::size_t frameRows = 0;
};

/// More than one, without having looked how many.
constexpr std::size_t SEVERAL_FRAMES = static_cast<std::size_t>(-1);

/// What a reader has to tell its user.
struct ReadReport
{
    /// Things done to the data that the user should know of, a line each.
    std::vector<std::string> notices;
    /// How many frames there are in what was read last, which was the first of them; SEVERAL_FRAMES
    /// where they were not counted.
    std::size_t frames = 1;
    /// Why nothing was read: one line, "file:line: column 3 (z): found ..., expected ...",
    /// with as much of the place as the format has; empty after success.
    std::string error;
};

} // namespace strandview

#endif
