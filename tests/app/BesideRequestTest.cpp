// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/BesideRequest.h"

#include <gtest/gtest.h>

namespace strandview {

TEST(BesideRequest, ViewsAreTiedUnlessOneIsOfTheSame)
{
    EXPECT_TRUE(besideOf({"first", "b.txt"}).isTied);
    EXPECT_FALSE(besideOf({"b.txt", "same"}).isTied);
    EXPECT_FALSE(fourOfTheSame().isTied);
    EXPECT_EQ(fourOfTheSame().what.size(), BesideRequest::MOST);
}

TEST(BesideRequest, AViewMoreLeavesTheOthersAsTheyAre)
{
    EXPECT_TRUE(withView({}, "first") == besideOf({"first"}));
    EXPECT_TRUE(withView({}, "same") == besideOf({"same"}));
    const BesideRequest two = withView({{"a.txt"}, true}, "b.txt");
    EXPECT_TRUE(two == (BesideRequest{{"a.txt", "b.txt"}, true}));
    EXPECT_TRUE(withView({{"a.txt"}, false}, "b.txt") ==
                (BesideRequest{{"a.txt", "b.txt"}, false}));
    EXPECT_TRUE(withView(two, "same") == (BesideRequest{{"a.txt", "b.txt", "same"}, false}));
}

TEST(BesideRequest, AViewLessIsThatOne)
{
    EXPECT_TRUE(withoutView({{"a", "b", "c"}, false}, 1) == (BesideRequest{{"a", "c"}, false}));
    EXPECT_TRUE(withoutView({{"a"}, false}, 0) == BesideRequest());
    const BesideCamera camera{{false, {1, 2, 3}, {0, 0, 0, 1}, 4, 5}};
    EXPECT_TRUE(withoutView({{"a", "b"}, false, {std::nullopt, camera}}, 0) ==
                (BesideRequest{{"b"}, false, {camera}}));
}

} // namespace strandview
