// SPDX-License-Identifier: GPL-3.0-or-later
#include "session/sessionFile.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <utility>

#include <gmock/gmock.h>

#include "command/parseOptions.h"
#include "request/settings.h"
#include "support/TemporaryFolder.h"
#include "support/runProgram.h"

namespace strandview {

namespace fs = std::filesystem;

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

const char* const ROD = "-1 0 0\n-0.5 0.1 0\n0 0.2 0\n0.5 0.1 0\n1 0 0\n";

class SessionFileTest : public testing::Test
{
protected:
    std::string save(const std::string& file, const std::string& name)
    {
        session.files = {{file, 0, ""}};
        session.name = name;
        return saveSession(session, {});
    }
    std::string bytesOf(const std::string& name) const
    {
        std::ifstream file(folder.path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }
    ProgramRun run(const std::vector<std::string>& arguments) const
    {
        return runProgram(STRANDVIEW_PROGRAM, arguments);
    }

    const TemporaryFolder folder;
    Session session;
    std::string fault;
};

} // namespace

TEST_F(SessionFileTest, AFileIsNamedFromTheFolderOfTheSessionWhereverThatIsMovedWithIt)
{
    fs::create_directories(folder.path("here/data"));
    ASSERT_EQ(save(folder.write("here/data/rod.txt", ROD), folder.path("here/work.strandview")),
              "");
    EXPECT_THAT(bytesOf("here/work.strandview"), HasSubstr("\"name\": \"data/rod.txt\""));
    fs::rename(folder.path("here"), folder.path("there"));
    const auto read = readSession(folder.path("there/work.strandview"), fault);
    ASSERT_TRUE(read) << fault;
    EXPECT_EQ(read->name, folder.path("there/work.strandview"));
    ASSERT_EQ(read->files.size(), 1U);
    EXPECT_EQ(read->files[0].name, folder.path("there/data/rod.txt"));
    EXPECT_EQ(read->files[0].bytes, std::string(ROD).size());
    EXPECT_EQ(read->files[0].digest.size(), 64U);
}

TEST_F(SessionFileTest, WhatIsComparedWithIsNamedAsFilesAreAndTheFirstFrameIsNone)
{
    session.style.compare = folder.write("other.txt", ROD);
    fs::create_directory(folder.path("sessions"));
    ASSERT_EQ(save(folder.write("rod.txt", ROD), folder.path("sessions/a.strandview")), "");
    EXPECT_THAT(bytesOf("sessions/a.strandview"), HasSubstr("\"compare\": \"../other.txt\""));
    const auto read = readSession(folder.path("sessions/a.strandview"), fault);
    ASSERT_TRUE(read) << fault;
    EXPECT_EQ(read->style.compare, folder.path("other.txt"));

    session.style.compare = "first";
    ASSERT_EQ(save(folder.path("rod.txt"), folder.path("b.strandview")), "");
    EXPECT_EQ(readSession(folder.path("b.strandview"), fault)->style.compare, "first");
}

TEST_F(SessionFileTest, OneIsReadWhereTheFolderThatTheProgramRunsInIsGone)
{
    const std::string rod = folder.write("rod.txt", ROD);
    ASSERT_EQ(save(rod, folder.path("a.strandview")), "");
    const fs::path before = fs::current_path();
    fs::create_directory(folder.path("gone"));
    fs::current_path(folder.path("gone"));
    fs::remove(folder.path("gone"));
    const auto read = readSession(folder.path("a.strandview"), fault);
    const auto unnamed = readSession("a.strandview", fault);
    fs::current_path(before);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->files.at(0).name, rod);
    EXPECT_FALSE(unnamed);
    EXPECT_THAT(fault, HasSubstr("a.strandview"));
}

TEST_F(SessionFileTest, NothingIsWrittenOfWhatCannotBeRead)
{
    const std::string missing = folder.path("missing.txt");
    EXPECT_THAT(save(missing, folder.path("work.strandview")), StartsWith(missing + ": "));
    EXPECT_FALSE(fs::exists(folder.path("work.strandview")));
    EXPECT_THAT(save(folder.write("rod.txt", ROD), folder.path("work.json")),
                EndsWith("expected one that ends in .strandview"));
    session.name = folder.path("work.strandview");
    EXPECT_EQ(saveSession(session, [] { return false; }), "it was stopped");
    EXPECT_FALSE(fs::exists(folder.path("work.strandview")));
}

TEST_F(SessionFileTest, TheProgramRefusesWhatIsNoneInOneLine)
{
    const std::string missing = folder.path("missing.strandview");
    const auto refusalOf = [this](const std::vector<std::string>& arguments) {
        const ProgramRun result = run(arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), 1) << result.error;
        return result.error;
    };
    const std::string picture = folder.path("rod.png");
    EXPECT_EQ(refusalOf({"--render", picture, missing}),
              "strandview: " + missing + ": No such file or directory\n");
    const std::string none = folder.write("none.strandview", "1 2 3\n");
    EXPECT_THAT(refusalOf({"--render", picture, none}), HasSubstr(none + ": line 1: found"));
    const std::string rod = folder.write("rod.txt", ROD);
    ASSERT_EQ(save(rod, folder.path("work.strandview")), "");
    EXPECT_THAT(refusalOf({"--render", picture, folder.path("work.strandview"), rod}),
                HasSubstr("found a session beside other files, expected it alone"));
    session.reading = {"--render", folder.path("evil.png")};
    ASSERT_EQ(save(rod, folder.path("evil.strandview")), "");
    EXPECT_THAT(refusalOf({"--info", folder.path("evil.strandview")}),
                HasSubstr("reading: found '--render', expected an option that says how"));
    fs::remove(rod);
    EXPECT_THAT(refusalOf({"--render", picture, folder.path("work.strandview")}), HasSubstr(rod));
    EXPECT_FALSE(fs::exists(picture));
}

TEST_F(SessionFileTest, ThePictureOfASessionIsThatOfTheOptionsThatItHolds)
{
    const std::string rod = folder.write("rod.txt", ROD);
    session.style.radius = 0.15;
    session.style.colourBy = "curvature";
    session.camera = parseCamera("orthographic,0.1,0.1,4,0,0,0,1,4,2.5");
    ASSERT_TRUE(session.camera);
    session.pictureSize = {120, 80};
    session.picture.size.samples = 2;
    ASSERT_EQ(save(rod, folder.path("work.strandview")), "");
    const ProgramRun ofSession =
        run({folder.path("work.strandview"), "--render", folder.path("session.png")});
    EXPECT_EQ(ofSession.status, 0) << ofSession.error;
    const std::vector<std::string> options{"--radius",    "0.15",
                                           "--colour-by", "curvature",
                                           "--camera",    "orthographic,0.1,0.1,4,0,0,0,1,4,2.5",
                                           "--size",      "120x80"};
    const auto render = [&](std::vector<std::string> more, const char* name) {
        more.insert(more.end(), {"--render", folder.path(name), "--samples", "2", rod});
        EXPECT_EQ(run(more).status, 0);
    };
    render(options, "options.png");
    EXPECT_EQ(bytesOf("session.png"), bytesOf("options.png"));

    // What the command line says comes before what the session says.
    EXPECT_EQ(run({"--radius", "0.1", "--range", "0:1", folder.path("work.strandview"), "--view",
                   "z", "--render", folder.path("other.png")})
                  .status,
              0);
    render({"--radius", "0.1", "--colour-by", "curvature", "--range", "0:1", "--view", "z",
            "--size", "120x80"},
           "otherOptions.png");
    EXPECT_EQ(bytesOf("other.png"), bytesOf("otherOptions.png"));
    EXPECT_NE(bytesOf("other.png"), bytesOf("session.png"));
}

// Its millimetres and dots are of no export and of no plot.
TEST_F(SessionFileTest, HowPicturesAreSavedIsOfPicturesAlone)
{
    session.picture.size.paper = parsePaperSize("85x60mm");
    session.picture.isOfView = false;
    ASSERT_EQ(save(folder.write("rod.txt", ROD), folder.path("work.strandview")), "");
    for (const auto& [option, name] :
         {std::pair("--export", "rod.json"), {"--plot", "rod.svg"}, {"--render", "rod.png"}}) {
        const ProgramRun made = run({option, folder.path(name), folder.path("work.strandview")});
        EXPECT_EQ(made.status, 0) << option << ": " << made.error;
        EXPECT_NE(bytesOf(name), "") << option;
    }
}

TEST_F(SessionFileTest, WhatTheCommandLineSaysOfAThingIsAddedToWhatTheSessionSays)
{
    ASSERT_EQ(settingOf("thing").read("rod 1: colour=red, name=arm; rod 2: hidden", session.style),
              "");
    ASSERT_EQ(save(folder.write("rod.txt", ROD), folder.path("work.strandview")), "");
    const std::string work = folder.path("work.strandview");
    const char* line[] = {"strandview", "--thing",      "rod 1: name=leg",
                          "--thing",    "rod 2: shown", work.c_str()};
    const ParsedOptions parsed = parseOptions(6, line);
    ASSERT_TRUE(parsed.options);
    EXPECT_EQ(settingOf("thing").value(*parsed.options), "rod 1: name=leg, colour=#ff0000");
}

TEST_F(SessionFileTest, PicturesOfASeriesAreRenderedAgainForAnotherCameraOrSizeOfTheSession)
{
    const std::string rod = folder.write("rod.txt", ROD);
    const std::string work = folder.path("work.strandview");
    const auto rendered = [&](const char* camera, std::pair<int, int> size) {
        session.camera = parseCamera(camera);
        session.pictureSize = size;
        EXPECT_EQ(save(rod, work), "");
        EXPECT_EQ(run({"--series", "--render", folder.path("f%d.png"), work}).status, 0);
        return bytesOf("f0.png");
    };
    const char* const near = "orthographic,0,0,4,0,0,0,1,4,2.5";
    const std::string first = rendered(near, {60, 40});
    EXPECT_NE(first, "");
    EXPECT_NE(rendered("orthographic,0,0,4,0,0,0,1,4,5", {60, 40}), first);
    EXPECT_EQ(rendered(near, {60, 40}), first);
    EXPECT_NE(rendered(near, {80, 40}), first);
}

TEST_F(SessionFileTest, AFileThatHasChangedSinceIsTold)
{
    const std::string rod = folder.write("rod.txt", ROD);
    ASSERT_EQ(save(rod, folder.path("work.strandview")), "");
    folder.append("rod.txt", "2 0 0\n");
    const ProgramRun result = run(
        {"--render", folder.path("rod.png"), "--size", "60x40", folder.path("work.strandview")});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.error, EndsWith(rod + ": has changed since the session was saved\n"));
}

TEST_F(SessionFileTest, ItsFrameIsThatOfASinglePictureAndNotOfASeries)
{
    const std::string frames = folder.write(
        "frames.txt", "t x y z\n0 0 0 0\n0 1 0 0\n0 2 1 0\n1 0 0 0\n1 1 1 0\n1 2 0 0\n");
    session.frame = 1;
    ASSERT_EQ(save(frames, folder.path("work.strandview")), "");
    const std::string work = folder.path("work.strandview");
    const auto rendered = [&](const std::vector<std::string>& more, const std::string& name) {
        std::vector<std::string> arguments{"--size", "60x40", "--render", folder.path(name)};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const ProgramRun result = run(arguments);
        EXPECT_EQ(result.status, 0) << result.error;
        return bytesOf(name);
    };
    EXPECT_EQ(rendered({work}, "a.png"), rendered({"--frame", "1", frames}, "b.png"));
    EXPECT_EQ(rendered({"--frame", "0", work}, "a0.png"),
              rendered({"--frame", "0", frames}, "b0.png"));
    rendered({work}, "f%d.png");
    EXPECT_TRUE(fs::exists(folder.path("f0.png")));
    EXPECT_TRUE(fs::exists(folder.path("f1.png")));
}

} // namespace strandview
