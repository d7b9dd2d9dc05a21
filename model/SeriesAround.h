// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_MODEL_SERIESAROUND_H
#define STRANDVIEW_MODEL_SERIESAROUND_H

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <strandview/model/Series.h>
#include <strandview/modelExport.h>

namespace strandview {

/// A series that makes something else of the frames of another one: it has as many, with their
/// times, unless a subclass says otherwise.
class STRANDVIEW_MODEL_EXPORT SeriesAround : public Series
{
public:
    std::size_t count() const override { return series->count(); }
    std::optional<double> time(std::size_t frame) const override { return series->time(frame); }

protected:
    /// It is not null.
    explicit SeriesAround(std::unique_ptr<Series> innerSeries) : series(std::move(innerSeries)) {}

    const std::unique_ptr<Series> series;

private:
    bool findMore(const GoOn& goOn, std::vector<std::string>& notices) override
    {
        return series->lookForMore(goOn, &notices);
    }
};

} // namespace strandview

#endif
