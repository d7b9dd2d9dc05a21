// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_MODEL_JOINTSERIES_H
#define STRANDVIEW_MODEL_JOINTSERIES_H

#include <memory>
#include <vector>

#include <strandview/model/Series.h>
#include <strandview/modelExport.h>

namespace strandview {

/// Several series beside each other: a frame is all that theirs of that number have, in their
/// order. A series of one frame is in every frame.
///
/// There are as many frames as in the shortest of those that have several, or may have more
/// (lookForMore()). Times are those of the first series that knows them. A frame of which a part
/// cannot be loaded fails with the error of that part.
class STRANDVIEW_MODEL_EXPORT JointSeries : public Series
{
public:
    /// Of one series at least; none is null.
    explicit JointSeries(std::vector<std::unique_ptr<Series>> seriesBesideEachOther);
    ~JointSeries() override;

    std::size_t count() const override;
    std::optional<double> time(std::size_t frame) const override;

private:
    bool isStill(std::size_t part) const { return !mayHaveMore[part] && parts[part]->count() == 1; }
    GoOn ofPart(std::size_t part, const GoOn& goOn) const;
    bool findMore(const GoOn& goOn, std::vector<std::string>& notices) override;
    LoadedFrame loadFrame(std::size_t frame, const GoOn& goOn) override;

    std::vector<std::unique_ptr<Series>> parts;
    std::vector<bool> mayHaveMore; ///< each of them
};

} // namespace strandview

#endif
