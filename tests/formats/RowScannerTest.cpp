// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/RowScanner.h>

#include <gmock/gmock.h>

namespace strandview {

namespace {

struct RowScannerTest : testing::Test
{
    const std::string name = "here";
    ReadReport report;
};

} // namespace

TEST_F(RowScannerTest, GoesFromRowToRow)
{
    RowScanner rows("\n# comment\n1 2 # three\r\n\r\n4\n", name, report, 11);
    double numbers[2];
    ASSERT_TRUE(rows.nextRow());
    EXPECT_EQ(rows.getLine(), 13u);
    ASSERT_TRUE(rows.takeNumbers(numbers, 2));
    EXPECT_EQ(numbers[1], 2);
    EXPECT_EQ(rows.getRestOfLine(), "# three");
    EXPECT_FALSE(rows.nextField());
    ASSERT_TRUE(rows.nextRow());
    EXPECT_EQ(rows.getLine(), 15u);
    EXPECT_FALSE(rows.nextRow());
    EXPECT_FALSE(rows.nextRow("more"));
    EXPECT_EQ(report.error, "here:16: found the end of the file, expected more");
}

TEST_F(RowScannerTest, SaysWhichColumnIsWrong)
{
    RowScanner rows("1 two\n1e19 0 0\n1 2\n-1\n", name, report);
    double numbers[3];
    algebra3d::Vector3<double> point;
    std::size_t count = 0;
    EXPECT_TRUE(rows.nextRow());
    EXPECT_FALSE(rows.takeNumbers(numbers, 3));
    EXPECT_EQ(report.error, "here:1: column 2: found 'two', expected a finite number");
    EXPECT_TRUE(rows.nextRow());
    EXPECT_FALSE(rows.takePoint(point));
    EXPECT_EQ(report.error,
              "here:2: column 1: found 1e+19, expected a coordinate between -1e18 and 1e18");
    EXPECT_TRUE(rows.nextRow());
    EXPECT_FALSE(rows.takeNumbers(numbers, 3));
    EXPECT_EQ(report.error, "here:3: found 2 columns, expected 3");
    EXPECT_TRUE(rows.nextRow());
    EXPECT_FALSE(rows.takeCount(count, "a count"));
    EXPECT_EQ(report.error, "here:4: column 1: found '-1', expected a count");
}

TEST_F(RowScannerTest, CountsLinesOfAnyEnd)
{
    EXPECT_EQ(countLines(""), 1u);
    EXPECT_EQ(countLines("a\nb\nc"), 3u);
    EXPECT_EQ(countLines("a\rb"), 2u);
}

} // namespace strandview
