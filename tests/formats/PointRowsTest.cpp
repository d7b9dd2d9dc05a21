// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/pointRows.h>

#include <gtest/gtest.h>

namespace strandview {

TEST(PointRows, APointIsTheNextThreeFields)
{
    FieldScanner scanner("C 1 -2.5 3e0 4\n");
    scanner.nextField();
    algebra3d::Vector3<double> point;
    EXPECT_EQ(takePoint(scanner, 2, point), "");
    EXPECT_EQ(point.x, 1);
    EXPECT_EQ(point.y, -2.5);
    EXPECT_EQ(point.z, 3);
    EXPECT_EQ(*scanner.nextField(), "4");
}

TEST(PointRows, TheFieldThatIsNoneIsNamedByItsColumn)
{
    algebra3d::Vector3<double> point;
    FieldScanner word("1 two 3"), end("1 2"), far("1e19 2 3");
    EXPECT_EQ(takePoint(word, 5, point),
              "column 6 (y): found 'two', expected a coordinate between -1e18 and 1e18");
    EXPECT_EQ(takePoint(end, 1, point), "column 3 (z): found the end of the line, expected x y z");
    EXPECT_EQ(takePoint(far, 1, point),
              "column 1 (x): found '1e19', expected a coordinate between -1e18 and 1e18");
}

TEST(PointRows, ALineIsThatOfTheFile)
{
    FieldScanner scanner("a\nb\n");
    scanner.nextLine();
    EXPECT_EQ(placeOf("here", scanner), "here:2: ");
    EXPECT_EQ(placeOf("here", scanner, 10), "here:11: ");
}

} // namespace strandview
