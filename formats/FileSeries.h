// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_FILESERIES_H
#define STRANDVIEW_FORMATS_FILESERIES_H

#include <string>
#include <vector>

#include <strandview/formatsExport.h>
#include <strandview/model/Series.h>

namespace strandview {

/// A series of files, one a frame, in the order of their list; their times are not known.
/// Each is read by readFile() whenever it is loaded, and no sooner: it may have changed, or
/// gone. What can be read once alone, as pipes and standard input, can be loaded once.
class STRANDVIEW_FORMATS_EXPORT FileSeries : public Series
{
public:
    /// `shallNormalise` is ReadOptions::normalise.
    explicit FileSeries(std::vector<std::string> paths, bool shallNormalise = false);

    std::size_t count() const override;

private:
    LoadedFrame loadFrame(std::size_t frame, const GoOn& goOn) override;

    std::vector<std::string> files;
    bool normalise;
};

} // namespace strandview

#endif
