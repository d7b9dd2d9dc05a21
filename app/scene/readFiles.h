// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_READFILES_H
#define STRANDVIEW_APP_SCENE_READFILES_H

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <strandview/formats/ReadReport.h>
#include <strandview/model/Configuration.h>
#include <strandview/model/Series.h>

#include "request/Options.h"

namespace strandview {

class Progress;

/// The first of them that can be read but once, such as standard input, "-", and pipes. Files and
/// folders can be read again, also those that are not there now.
std::optional<std::string> findReadOnce(const std::vector<std::string>& files);

/// What the readers are to do, and ask whether to go on.
ReadOptions readOptionsOf(const Options& options, std::function<bool(double share)> goOn);

/// What options.compare asks to compare with: nothing where that is the first frame of the series,
/// or none is asked for. False, and one line in report.error, if the file cannot be read.
bool readReference(const Options& options, ReadReport& report, Progress& progress,
                   std::optional<Configuration>& reference);

/// Files as a series.
struct OpenedFiles
{
    std::unique_ptr<Series> series; ///< null if they cannot be opened
    /// The file that has as few frames as the series; none of several that have one each.
    std::string shortest;
};

/// The files as a series, for any thread: what each has beside what the others have (JointSeries),
/// or, with options.series.isOfFiles, each file a frame in the natural order of their names ("f9"
/// before "f10"), a folder standing for the files in it that a format could be of. Null, and one
/// line in report.error, if a file cannot be opened, there is none, or it is stopped. At once:
/// Series::lookForMore() finds all frames but the first, and those that are still written if
/// options.series.follow asks for them.
enum class Opening { WHOLE, AT_ONCE };
OpenedFiles openFiles(const std::vector<std::string>& files, const Options& options,
                      ReadReport& report, Progress& progress, Opening opening = Opening::WHOLE);

/// The frames as --align and --between want them.
std::unique_ptr<Series> moveFrames(std::unique_ptr<Series> series, const Options& options);

/// The frame of options.frame, or the first. Nothing, and one line in report.error, if there is no
/// such frame; files that have one each show it with a notice instead. Of files that are open.
std::optional<std::size_t> shownFrame(const OpenedFiles& opened, const Options& options,
                                      ReadReport& report);

/// All files in one configuration, in their order; nothing after the first that cannot be read, or
/// once it is stopped, and one line in report.error. Of a series it is the frame of options.frame,
/// or the first; beside a series a file of one configuration is in every frame. report.frames is
/// that of the file that has most. In any thread. At once: as ReadOptions::atOnce, and as
/// ReadOptions::growing with options.series.follow.
std::optional<Configuration> readFiles(const std::vector<std::string>& files,
                                       const Options& options, ReadReport& report,
                                       Progress& progress, Opening opening = Opening::WHOLE);

} // namespace strandview

#endif
