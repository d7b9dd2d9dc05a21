// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/timeColumns.h>

#include <gmock/gmock.h>

namespace strandview {

TEST(TimeColumns, AreTAndTimeAndFrameWithAUnitOrWithout)
{
    for (const char* name : {"t", "t [ps]", "t(ns)"})
        EXPECT_EQ(timeNameOf(name), TimeName::T) << name;
    for (const char* name : {"time", "Time", "TIME [ps]"})
        EXPECT_EQ(timeNameOf(name), TimeName::TIME) << name;
    for (const char* name : {"frame", "Frame"})
        EXPECT_EQ(timeNameOf(name), TimeName::FRAME) << name;
}

TEST(TimeColumns, AreNoOthersSuchAsATemperature)
{
    for (const char* name : {"T", "T [K]", "", "times", "t1", "ttime", "[t]"})
        EXPECT_EQ(timeNameOf(name), TimeName::NONE) << name;
}

} // namespace strandview
