// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_FILESERIES_H
#define STRANDVIEW_FORMATS_FILESERIES_H

#include <string>
#include <vector>

#include <strandview/formats/ReadReport.h>
#include <strandview/formats/groupFiles.h>
#include <strandview/formatsExport.h>
#include <strandview/model/Series.h>

namespace strandview {

/// A series of files, one a frame, in the order of their list; their times are not known.
/// Each is read by readFile() whenever it is loaded, and no sooner: it may have changed, or
/// gone. What can be read once alone, as pipes and standard input, can be loaded once.
class STRANDVIEW_FORMATS_EXPORT FileSeries : public Series
{
public:
    /// The options hold for every file, but for goOn, which load() has, and the topology of those
    /// that have their own.
    explicit FileSeries(std::vector<FileGroup> groups, ReadOptions readOptions = {});

    std::size_t count() const override;

private:
    LoadedFrame loadFrame(std::size_t frame, const GoOn& goOn) override;

    std::vector<FileGroup> files;
    ReadOptions options;
};

} // namespace strandview

#endif
