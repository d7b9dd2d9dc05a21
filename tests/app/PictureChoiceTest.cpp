// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/PictureChoice.h"

#include <functional>

#include <gmock/gmock.h>

#include "request/settings.h"

namespace strandview {

TEST(PictureChoiceTest, TheStyleOfAPictureIsThatOfTheViewButForWhatWasChosen)
{
    StyleRequest ofView;
    ofView.radius = 0.5;
    ofView.colourBy = "arclength";
    ofView.background = {0, 0, 0};
    PictureChoice choice;
    EXPECT_EQ(styleOf(choice, ofView), ofView);
    choice.settings = {{"background", "#ff0000"}, {"legend", "top"}};
    StyleRequest expected = ofView;
    expected.background = {1, 0, 0};
    expected.legend.place = LegendPlace::TOP;
    EXPECT_EQ(styleOf(choice, ofView), expected);
}

TEST(PictureChoiceTest, BackgroundAndLegendAreOfThePicture)
{
    EXPECT_THAT(settingsOfPicture(), testing::IsSupersetOf({"background", "legend"}));
    for (const std::string& name : settingsOfPicture())
        EXPECT_NE(findSetting(name), nullptr) << name;
}

TEST(PictureChoiceTest, ChoicesThatDifferInOneThingAreNotTheSame)
{
    const std::vector<std::function<void(PictureChoice&)>> changes = {
        [](PictureChoice& c) { c.size.width = 7; },
        [](PictureChoice& c) { c.size.height = 7; },
        [](PictureChoice& c) {
            c.size.paper = PaperSize{1, 2, ""};
        },
        [](PictureChoice& c) { c.size.dpi = 7; },
        [](PictureChoice& c) { c.size.samples = 7; },
        [](PictureChoice& c) { c.size.transparent = true; },
        [](PictureChoice& c) { c.isOfView = false; },
        [](PictureChoice& c) { c.keepsShape = false; },
        [](PictureChoice& c) { c.hasMeasurements = true; },
        [](PictureChoice& c) { c.settings["legend"] = "top"; }};
    for (const auto& change : changes) {
        PictureChoice other;
        change(other);
        EXPECT_NE(other, PictureChoice());
        PictureChoice same;
        change(same);
        EXPECT_EQ(other, same);
    }
}

} // namespace strandview
