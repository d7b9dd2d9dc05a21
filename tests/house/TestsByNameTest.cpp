// SPDX-License-Identifier: GPL-3.0-or-later
// Who looks for the tests of a source finds them by its name.
#include <filesystem>
#include <map>
#include <set>
#include <string>

#include <gmock/gmock.h>

#include <strandview/formats/text/encoding.h>

namespace {

namespace fs = std::filesystem;

const fs::path PROJECT = PROJECT_FOLDER;

// What is tested as a part of something else, by sources or folders, and where.
const std::map<std::string, std::string> ELSEWHERE{
    {"formats/numpy/Archive.cpp", "tests/formats/NumpyReaderTest.cpp"},
    {"formats/numpy/NumpyFile.cpp", "tests/formats/NumpyReaderTest.cpp"},
    {"formats/numpy/npyHeader.cpp", "tests/formats/NumpyReaderTest.cpp"},
    {"app/main.cpp", "tests/app/StrandviewTest.cpp"},
    {"app/pictures/describePicture.cpp", "tests/app/StrandviewTest.cpp"},
    {"app/plotting/PlotStack.cpp", "tests/app/plotFilesTest.cpp"},
    {"app/request/PictureRequest.cpp", "tests/app/writeCommandTest.cpp"},
    {"app/rendering/FrameRenderer.cpp", "tests/app/RenderSeriesTest.cpp"},
    {"app/rendering/Interruption.cpp", "tests/app/RenderSeriesTest.cpp"},
    {"app/scene/chooseLook.cpp", "tests/app/SceneLoaderTest.cpp"},
    {"app/scene/ownColours.cpp", "tests/app/SceneUpdateTest.cpp"},
    {"app/scene/overlay.cpp", "tests/app/LegendTest.cpp"},
    {"app/scene/SoLegendCamera.cpp", "tests/app/LegendTest.cpp"},
    {"app/scene/SoMeasured.cpp", "tests/app/MeasuredLineTest.cpp"},
    {"app/scene/SoScaleBar.cpp", "tests/app/ScaleBarTest.cpp"},
    {"app/scene/SoStretchChoice.cpp", "tests/app/LegendTest.cpp"},
    {"app/scene/builders", "tests/app/SceneUpdateTest.cpp"},
    {"app/window/CurveHover.cpp", "tests/gui/CurvePanelTest.cpp"},
    {"app/window/FrameWaiter.cpp", "tests/gui/MainWindowTest.cpp"},
    {"app/window/LoadBar.cpp", "tests/gui/LoadingTest.cpp"},
    {"app/scene/prepareLook.cpp", "tests/app/SceneUpdateTest.cpp"},
    {"app/window/LoadJob.cpp", "tests/gui/LoadingTest.cpp"},
    {"app/window/Menus.cpp", "tests/gui/MainWindowTest.cpp"},
    {"app/window/MeasurementKeeper.cpp", "tests/gui/MeasurementPanelTest.cpp"},
    {"app/window/PlaceMarks.cpp", "tests/gui/PlacePanelTest.cpp"},
    {"app/window/PlaceTeller.cpp", "tests/gui/PlacePanelTest.cpp"},
    {"app/window/Restyler.cpp", "tests/gui/SettingsPanelTest.cpp"},
    {"app/window/ViewCaption.cpp", "tests/gui/BesideViewTest.cpp"},
    {"app/window/SideBox.cpp", "tests/gui/PictureDialogTest.cpp"},
    {"app/window/colourDialog.cpp", "tests/gui/WorkingUserTest.cpp"},
    {"app/window/ThingOutline.cpp", "tests/gui/ThingsPanelTest.cpp"},
    {"app/window/ThingsModel.cpp", "tests/gui/ThingsPanelTest.cpp"},
    {"app/window/WindowState.cpp", "tests/gui/HistoryTest.cpp"},
    {"app/window/WindowViewer.cpp", "tests/gui/MainWindowTest.cpp"},
    {"app/window/checkDisplay.cpp", "tests/app/StrandviewTest.cpp"},
    {"app/window/plotLooks.cpp", "tests/gui/CurvePanelTest.cpp"},
    {"app/window/runWindow.cpp", "tests/gui/LoadingTest.cpp"},
    {"app/window/scrollPast.cpp", "tests/gui/SettingControlTest.cpp"},
    {"app/window/textBoxes.cpp", "tests/gui/MainWindowTest.cpp"},
    {"app/window/textColouredIcon.cpp", "tests/gui/EveryoneTest.cpp"},
};

std::set<fs::path> sourcesBelow(const std::string& folder)
{
    std::set<fs::path> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(PROJECT / folder)) {
        if (entry.path().extension() == ".cpp")
            files.insert(entry.path().lexically_relative(PROJECT));
    }
    return files;
}

// "keystest" of tests/app/KeysTest.cpp.
std::set<std::string> namesOfTests()
{
    std::set<std::string> names;
    for (const fs::path& file : sourcesBelow("tests"))
        names.insert(strandview::inSmallLetters(file.stem().string()));
    return names;
}

bool isTestedElsewhere(const fs::path& source)
{
    return ELSEWHERE.count(source.generic_string()) != 0 ||
           ELSEWHERE.count(source.parent_path().generic_string()) != 0;
}

TEST(TestsByName, EverySourceOfTheFormatsAndOfTheProgramHasOne)
{
    const std::set<std::string> tests = namesOfTests();
    for (const char* folder : {"formats", "app"}) {
        for (const fs::path& source : sourcesBelow(folder)) {
            const std::string name = strandview::inSmallLetters(source.stem().string()) + "test";
            EXPECT_NE(tests.count(name) != 0, isTestedElsewhere(source))
                << source << ": expected a test of that name, or where else it is tested, not both";
        }
    }
}

TEST(TestsByName, WhatIsTestedElsewhereExistsAndSoDoItsTests)
{
    for (const auto& [source, test] : ELSEWHERE) {
        EXPECT_TRUE(fs::exists(PROJECT / source)) << source;
        EXPECT_TRUE(fs::exists(PROJECT / test)) << test;
    }
}

} // namespace
