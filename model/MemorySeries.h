// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_MODEL_MEMORYSERIES_H
#define STRANDVIEW_MODEL_MEMORYSERIES_H

#include <vector>

#include <strandview/model/Series.h>
#include <strandview/modelExport.h>

namespace strandview {

/// A series of configurations that are in memory, all of them; load() copies one and never
/// fails.
class STRANDVIEW_MODEL_EXPORT MemorySeries : public Series
{
public:
    /// One time for each configuration; if there are fewer or more, none is known.
    explicit MemorySeries(std::vector<Configuration> allConfigurations,
                          std::vector<double> allTimes = {});

    std::size_t count() const override;
    std::optional<double> time(std::size_t frame) const override;

private:
    LoadedFrame loadFrame(std::size_t frame, const GoOn& goOn) override;

    std::vector<Configuration> configurations;
    std::vector<double> times; ///< as many, or none
};

} // namespace strandview

#endif
