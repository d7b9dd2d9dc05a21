// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/PickedPlace.h"

#include <gmock/gmock.h>

namespace strandview {

namespace {

PickedPlace placeOf(ThingKind kind)
{
    PickedPlace place;
    place.kind = kind;
    place.name = "data.txt:1";
    place.point = {0.1, 2, -3};
    return place;
}

TEST(PickedPlace, IsToldWithPointAndArcLength)
{
    PickedPlace place = placeOf(ThingKind::ROD);
    place.row = 4;
    place.arcLength = 1.5;
    place.length = 8;
    EXPECT_EQ(toLine(tell(place)), "point 0.1 2 -3, arc length 1.5 of 8 – data.txt:1");
}

TEST(PickedPlace, OfDnaIsToldWithItsPairAndStrandAsFarAsTheyAreKnown)
{
    PickedPlace place = placeOf(ThingKind::DNA);
    EXPECT_EQ(tell(place).what, "point 0.1 2 -3");
    place.strand = 2;
    EXPECT_EQ(tell(place).what, "strand 2, point 0.1 2 -3");
    place.row = 11;
    place.base = 'A';
    place.partner = 'T';
    EXPECT_EQ(tell(place).what, "pair 12 AT, strand 2, point 0.1 2 -3");
    place.strand = 0;
    EXPECT_EQ(tell(place).what, "pair 12 AT, point 0.1 2 -3");
}

TEST(PickedPlace, OfALoneBaseIsToldWithItsLetter)
{
    PickedPlace place = placeOf(ThingKind::LONE_BASES);
    place.base = 'G';
    EXPECT_EQ(toLine(tell(place)), "base G, point 0.1 2 -3 – data.txt:1");
}

TEST(PickedPlace, OfNoDatumIsAPointAlone)
{
    PickedPlace place = placeOf(ThingKind::OTHER);
    place.name = "";
    EXPECT_EQ(toLine(tell(place)), "point 0.1 2 -3");
}

TEST(PickedPlace, NumbersHaveSixDigitsAndADecimalPoint)
{
    EXPECT_EQ(readable(1.0 / 3), "0.333333");
    EXPECT_EQ(readable(1.23456789e-12), "1.23457e-12");
    EXPECT_EQ(readable({1, 0.5, -2}), "1 0.5 -2");
}

} // namespace

} // namespace strandview
