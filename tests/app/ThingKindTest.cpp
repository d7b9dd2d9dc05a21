// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/ThingKind.h"

#include <string>

#include <gmock/gmock.h>

namespace strandview {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(ThingKind, BirodsAndDnaHaveStrandsAndBirodsAnAverage)
{
    EXPECT_THAT(partsOf(ThingKind::DNA), ElementsAre(ThingPart::STRAND_1, ThingPart::STRAND_2));
    EXPECT_THAT(partsOf(ThingKind::BIROD),
                ElementsAre(ThingPart::STRAND_1, ThingPart::STRAND_2, ThingPart::AVERAGE));
    for (const ThingKind kind : {ThingKind::ROD, ThingKind::LONE_BASES, ThingKind::MARKER})
        EXPECT_THAT(partsOf(kind), IsEmpty());
}

TEST(ThingKind, StrandZeroIsTheAverageOfABirodAndNoPartOfOthers)
{
    EXPECT_EQ(partOf(ThingKind::BIROD, 0), ThingPart::AVERAGE);
    EXPECT_EQ(partOf(ThingKind::DNA, 0), ThingPart::WHOLE);
    EXPECT_EQ(partOf(ThingKind::DNA, 2), ThingPart::STRAND_2);
    EXPECT_EQ(partOf(ThingKind::ROD, 1), ThingPart::WHOLE);
}

TEST(ThingKind, PartsHaveTheNamesThatUsersType)
{
    EXPECT_EQ(nameOf(ThingPart::STRAND_1), std::string("strand 1"));
    EXPECT_EQ(nameOf(ThingPart::AVERAGE), std::string("average"));
    EXPECT_EQ(nameOf(ThingPart::WHOLE), std::string());
}

} // namespace strandview
