// SPDX-License-Identifier: GPL-3.0-or-later
// A trajectory, and what another program made of it by superposing its frames.
#include <strandview/analysis/superpose.h>

#include <gtest/gtest.h>

#include <strandview/formats/openSeries.h>

#include "support/FilesOfOthers.h"

namespace strandview {

namespace {

using SuperposedTrajectory = FilesOfOthers;

} // namespace

TEST_F(SuperposedTrajectory, EveryFrameFitsWhatAnotherProgramSuperposed)
{
    ReadReport report;
    const auto open = [&](const std::string& trajectory) {
        return openSeries({folder + "rna_tile.top", folder + trajectory}, {}, report);
    };
    const auto raw = open("rna_tile_traj.dat"), aligned = open("rna_tile_aligned_traj.dat");
    ASSERT_TRUE(raw && aligned) << report.error;
    ASSERT_EQ(raw->count(), 10U);
    ASSERT_EQ(aligned->count(), 10U);
    for (std::size_t frame = 0; frame < 10; ++frame) {
        const Configuration moved = *raw->load(frame).configuration;
        const Configuration other = *aligned->load(frame).configuration;
        const std::optional<FittedFrame> motion = findSuperposition(moved, other);
        ASSERT_TRUE(motion);
        // The files have some seven digits of places of up to a thousand ångström.
        EXPECT_LT(motion->rms, 0.01) << frame;
    }
}

} // namespace strandview
