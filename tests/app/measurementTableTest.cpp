// SPDX-License-Identifier: GPL-3.0-or-later
#include "output/measurementTable.h"

#include <cmath>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"

namespace strandview {

namespace {

TEST(MeasurementTable, HasAColumnForEachWithItsUnitAndARowForEachFrame)
{
    std::vector<Measurement> all{*parseMeasurement("distance rod 1:10,rod 1:40"),
                                 *parseMeasurement("rod 1:0,rod 1:1,rod 1:2")};
    all[1].name = "the \"bend\"";
    EXPECT_EQ(
        measurementTable(all, {"length", "°"}, {{0, {0.1, 1.0 / 3}}, {2, {std::nullopt, NAN}}}),
        "frame,\"distance rod 1:10,rod 1:40 [length]\",\"the \"\"bend\"\": angle rod 1:0,rod "
        "1:1,rod 1:2 [°]\"\n"
        "0,0.1,0.3333333333333333\n"
        "2,,nan\n");
}

TEST(MeasurementTable, ANameWithALineBreakStaysOneRow)
{
    std::vector<Measurement> all{*parseMeasurement("rod 1:10,rod 1:40")};
    all[0].name = "a\nb";
    EXPECT_EQ(measurementTable(all, {"Å"}, {}),
              "frame,\"a\\x0ab: distance rod 1:10,rod 1:40 [Å]\"\n");
}

TEST(MeasurementTable, IsWrittenWholeOrToldWhyNot)
{
    const TemporaryFolder folder;
    EXPECT_EQ(writeMeasurementTable("frame\n0\n", folder.path() + "/m.csv"), "");
    std::ifstream file(folder.path() + "/m.csv");
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), "frame\n0\n");
    EXPECT_NE(writeMeasurementTable("frame\n", folder.path() + "/none/m.csv"), "");
}

} // namespace

} // namespace strandview
