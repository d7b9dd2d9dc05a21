// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/wideRows.h>

#include <sstream>

#include <gmock/gmock.h>

namespace strandview {

namespace {

struct Header
{
    explicit Header(const std::string& line)
    {
        std::istringstream text(line);
        for (std::string name; std::getline(text, name, ',');)
            names.push_back(name);
        columns = wideColumnsOf({names.begin(), names.end()}, fault);
    }

    std::vector<std::string> names;
    std::string fault;
    std::optional<WideColumns> columns;
};

} // namespace

TEST(WideRows, AHeaderTellsThem)
{
    for (const char* line :
         {"t,x1,y1,z1,x2,y2,z2", "t [ns],X1 [m],Y1 [m],Z1 [m],X2 [m],Y2 [m],Z2 [m]",
          "t,x_1,y_1,z_1,x_2,y_2,z_2", "t,x0,y0,z0,x1,y1,z1"}) {
        SCOPED_TRACE(line);
        const Header header(line);
        ASSERT_TRUE(header.columns);
        EXPECT_EQ(header.fault, "");
        EXPECT_EQ(header.columns->count, 7u);
        EXPECT_EQ(header.columns->first, 1u);
        EXPECT_EQ(header.columns->points, 2u);
        EXPECT_EQ(header.columns->time, 0u);
        EXPECT_FALSE(header.columns->isTimeNumber);
    }
    EXPECT_EQ(Header("x0,y0,z0,x1,y1,z1").columns->firstNumber, 0u);
    EXPECT_EQ(Header("x7,y7,z7,x8,y8,z8,x9,y9,z9").columns->points, 3u);
}

TEST(WideRows, OtherColumnsMayStandBeforeAndBehind)
{
    const Header header("run,frame,x1,y1,z1,x2,y2,z2,Time,energy");
    ASSERT_TRUE(header.columns);
    EXPECT_EQ(header.columns->first, 2u);
    EXPECT_EQ(header.columns->time, 8u) << "before the frame's number";
    EXPECT_TRUE(header.columns->isUsed(7) && header.columns->isUsed(8));
    EXPECT_FALSE(header.columns->isUsed(0) || header.columns->isUsed(1));
    EXPECT_FALSE(header.columns->isUsed(9));
    EXPECT_TRUE(Header("frame,x1,y1,z1,x2,y2,z2").columns->isTimeNumber);
    EXPECT_FALSE(Header("x1,y1,z1,x2,y2,z2,T").columns->time) << "a temperature";
}

TEST(WideRows, OtherHeadersAreNone)
{
    for (const char* line :
         {"t,x1,y1,z1", "x,y,z", "x1,y1,z1,x3,y3,z3", "x1,y1,x2,y2,z1,z2", "x1,x2,y1,y2,z1,z2",
          "x,y,z,x1,y1,z1,x2,y2,z2", "a,b", "xa,ya,za,xb,yb,zb", "x1a,y1,z1,x2,y2,z2",
          "x-1,y-1,z-1,x0,y0,z0", "x99999999999,y99999999999,z99999999999,x,y,z"})
        EXPECT_FALSE(Header(line).columns) << line;
    std::string ignored;
    EXPECT_FALSE(wideColumnsOf(std::vector<std::string_view>(), ignored));
}

TEST(WideRows, APointThatIsNotWholeIsAFault)
{
    EXPECT_EQ(Header("t,x1,y1,z1,x2,y2,z2,x3,y3").fault,
              "column 8: found 'x3', expected x y z of each point, one point after the other");
    EXPECT_EQ(Header("t,x1,y1,z1,x2,y2,z2,x1").fault.find("column 8: found 'x1'"), 0u);
}

TEST(WideRows, WithoutAHeaderTheNumberOfColumnsTellsWhetherThereIsATime)
{
    EXPECT_EQ(wideColumnsOf(6)->time, std::nullopt);
    EXPECT_EQ(wideColumnsOf(6)->first, 0u);
    EXPECT_EQ(wideColumnsOf(10)->time, 0u);
    EXPECT_EQ(wideColumnsOf(10)->first, 1u);
    EXPECT_EQ(wideColumnsOf(10)->points, 3u);
    for (const std::size_t count : {0, 1, 3, 4, 5, 8, 11})
        EXPECT_FALSE(wideColumnsOf(count)) << count;
}

TEST(WideRows, NamesColumnsAsTheHeader)
{
    const WideColumns columns = *Header("frame,x0,y0,z0,x1,y1,z1").columns;
    EXPECT_EQ(nameOf(0, columns), "frame");
    EXPECT_EQ(nameOf(3, columns), "z0");
    EXPECT_EQ(nameOf(4, columns), "x1");
    EXPECT_EQ(nameOf(0, *wideColumnsOf(7)), "t");
    EXPECT_EQ(nameOf(6, *wideColumnsOf(7)), "z2");
}

} // namespace strandview
