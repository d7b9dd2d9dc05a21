// SPDX-License-Identifier: GPL-3.0-or-later
#include "rendering/renderSeries.h"

#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <thread>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QImage>
#include <gmock/gmock.h>

#include "request/CameraNumbers.h"
#include "support/TemporaryFolder.h"
#include "support/runProgram.h"

extern char** environ;

namespace strandview {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace fs = std::filesystem;

// A helix with frames and a scalar that grows from frame to frame.
std::string frameText(int frame, bool isChanged = false)
{
    const int points = 12;
    std::string text;
    for (int i = 0; i < points; ++i) {
        const double angle = 0.5 * i, reach = 1 + 0.2 * frame;
        for (const double value : {0.1 * frame, reach * std::cos(angle), reach * std::sin(angle),
                                   0.3 * i, double(i * frame + (isChanged ? 1 : 0))})
            text += std::to_string(value) + " ";
        text += "\n";
    }
    return text;
}

// One of them may have another scalar.
std::string seriesText(int frames, int changed = -1)
{
    std::string text = "t x y z k\n";
    for (int frame = 0; frame < frames; ++frame)
        text += frameText(frame, frame == changed);
    return text;
}

std::string contentOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

class RenderSeriesTest : public testing::Test
{
protected:
    ProgramRun run(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.end(), {"--size", "90x60", "--samples", "1"});
        return runProgram(STRANDVIEW_PROGRAM, arguments);
    }

    // Every file of a folder by its name.
    QImage imageOf(const std::string& name) const
    {
        return QImage(QString::fromStdString(folder.path(name)));
    }
    std::map<std::string, std::string> filesOf(const std::string& name) const
    {
        std::map<std::string, std::string> files;
        for (const fs::directory_entry& entry : fs::directory_iterator(folder.path(name)))
            files[entry.path().filename().string()] = contentOf(entry.path().string());
        return files;
    }
    std::vector<std::string> namesOf(const std::string& name) const
    {
        std::vector<std::string> names;
        for (const auto& file : filesOf(name))
            names.push_back(file.first);
        return names;
    }
    // A pattern in a new folder.
    std::string pattern(const std::string& name) const
    {
        fs::create_directory(folder.path(name));
        return folder.path(name + "/f_%02d.png");
    }

    const TemporaryFolder folder;
    const std::string series = folder.write("run.txt", seriesText(6));
};

// Begins to run a program, and ends with it.
class RunningProgram
{
public:
    explicit RunningProgram(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), STRANDVIEW_PROGRAM);
        std::vector<char*> words;
        for (std::string& argument : arguments)
            words.push_back(argument.data());
        words.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        EXPECT_EQ(
            posix_spawn(&process, STRANDVIEW_PROGRAM, &actions, nullptr, words.data(), environ), 0);
        posix_spawn_file_actions_destroy(&actions);
    }

    // The status that it ends with; that of a signal is negative.
    int signalAndWait(int signal) const
    {
        kill(process, signal);
        int status = 0;
        waitpid(process, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }

private:
    pid_t process = 0;
};

// Until a file is there: true if it comes.
bool comes(const std::string& path)
{
    for (int i = 0; i < 3000 && !fs::exists(path); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return fs::exists(path);
}

} // namespace

TEST_F(RenderSeriesTest, WritesAPictureOfEveryFrameUnderItsNumber)
{
    const ProgramRun all = run({"--render", pattern("all"), series});
    EXPECT_EQ(all.status, 0) << all.error;
    EXPECT_THAT(namesOf("all"), ElementsAre("f_00.png", "f_01.png", "f_02.png", "f_03.png",
                                            "f_04.png", "f_05.png"));
    const auto pictures = filesOf("all");
    EXPECT_NE(pictures.at("f_00.png"), pictures.at("f_05.png"));
}

TEST_F(RenderSeriesTest, EveryPictureIsThatOfItsFrameAloneByteForByte)
{
    const std::vector<std::vector<std::string>> looks{{},
                                                      {"--colour-by", "k"},
                                                      {"--perspective", "--stamp"},
                                                      {"--colour-by", "k", "--range", "frame"}};
    int i = 0;
    for (std::vector<std::string> look : looks) {
        const std::string name = "look" + std::to_string(i++);
        std::vector<std::string> all = look, one = look;
        all.insert(all.end(), {"--render", pattern(name), series});
        EXPECT_EQ(run(all).status, 0);
        const std::string alone = folder.path(name + ".png");
        one.insert(one.end(), {"--render", alone, "--frame", "4", series});
        EXPECT_EQ(run(one).status, 0);
        EXPECT_EQ(filesOf(name)["f_04.png"], contentOf(alone)) << name;
    }
}

// What stays, what moves, what comes and what goes, long enough for Coin to keep what stays.
TEST_F(RenderSeriesTest, NoPictureShowsATraceOfThoseBefore)
{
    std::string text = R"({"strandview": 1, "series": [)";
    const std::size_t frames = 9;
    for (std::size_t frame = 0; frame < frames; ++frame) {
        const std::string x = std::to_string(frame);
        text += frame == 0 ? "{" : ", {";
        text += R"("markers": [{"point": [1, 1, 1]}],
            "arrows": [{"from": [0, 0, )" +
                x + R"(], "to": [0, 1, 0]}], "rods": [)";
        for (std::size_t rod = 0; rod <= frame % 3; ++rod)
            text += (rod == 0 ? R"({"points": [[0, )" : R"(, {"points": [[0, )") +
                    std::to_string(rod) + ", 0], [2, 1, 0], [" + x + ", 3, 2]]}";
        text += frame % 4 == 1
                    ? R"(], "dna": [{"sequence": "AC", "pairs": {"points": [[0, 0, 0], [0, 0, 3]],
            "quaternions": [[0, 0, 0, 1], [0, 0, 0, 1]]}}]})"
                    : "]}";
    }
    const std::string file = folder.write("things.json", text + "]}");
    const std::vector<std::string> look{"--perspective", "--transparent", "--overwrite", file};
    std::vector<std::string> all = look;
    all.insert(all.end(), {"--render", pattern("all")});
    const ProgramRun result = run(all);
    EXPECT_EQ(result.status, 0) << result.error;
    const auto pictures = filesOf("all");
    const std::string alone = folder.path("alone.png");
    for (std::size_t frame = 0; frame < frames; ++frame) {
        std::vector<std::string> one = look;
        one.insert(one.end(), {"--render", alone, "--frame", std::to_string(frame)});
        EXPECT_EQ(run(one).status, 0);
        EXPECT_EQ(pictures.at("f_0" + std::to_string(frame) + ".png"), contentOf(alone)) << frame;
    }
}

TEST_F(RenderSeriesTest, TheFirstFrameIsThePictureOfASeriesThatNobodyAskedMoreOf)
{
    const std::string plain = folder.path("plain.png"), first = folder.path("first.png");
    const ProgramRun told = run({"--render", plain, series});
    EXPECT_EQ(told.status, 0);
    EXPECT_THAT(told.error, HasSubstr("the first of 6 frames; --frame N takes another"));
    EXPECT_EQ(run({"--render", first, "--frame", "0", series}).status, 0);
    EXPECT_EQ(contentOf(plain), contentOf(first));
}

TEST_F(RenderSeriesTest, OfStillDataTheOnlyFrameIsTakenWithoutAWord)
{
    const std::string still = folder.write("still.json", R"({"strandview": 1, "rods": [
        {"points": [[0, 0, 0], [1, 0, 0], [2, 1, 0]]}]})");
    const ProgramRun stamped = run({"--render", folder.path("still.png"), "--stamp", still});
    EXPECT_EQ(stamped.status, 0);
    EXPECT_THAT(stamped.error, Not(HasSubstr("the first of")));
    EXPECT_EQ(run({"--render", pattern("stills"), still}).status, 0);
    EXPECT_THAT(namesOf("stills"), ElementsAre("f_00.png"));
}

TEST_F(RenderSeriesTest, CameraAndColoursStayWhateverIsRendered)
{
    const ProgramRun all = run({"--render", pattern("all"), "--print-camera", series});
    const ProgramRun part =
        run({"--render", pattern("part"), "--print-camera", "--frames", "1:2", series});
    EXPECT_EQ(all.output, part.output);
    EXPECT_THAT(all.output, testing::StartsWith("orthographic,"));
    EXPECT_EQ(filesOf("all")["f_01.png"], filesOf("part")["f_01.png"]);
}

TEST_F(RenderSeriesTest, ALegendAtTheTopHasItsRoomInAllFramesAndTheStampIsBelow)
{
    std::string text = "t x y z load\n";
    for (const char* frame : {"0", "1"})
        for (const char* point : {"-2 1", "-2 -1", "2 -1", "2 1", "-2 1"})
            text += std::string(frame) + " " + point + " 0 " + frame + "\n";
    const std::string file = folder.write("rectangle.txt", text);
    EXPECT_EQ(runProgram(STRANDVIEW_PROGRAM,
                         {"--render", pattern("top"), "--size", "600x300", "--margin", "0.02",
                          "--colour-by", "load", "--legend", "top", "--stamp", file})
                  .status,
              0);
    for (const char* name : {"top/f_00.png", "top/f_01.png"}) {
        const QImage image = imageOf(name);
        ASSERT_EQ(image.width(), 600) << name;
        const auto isBlank = [&image](const QRect& part) {
            for (int y = part.top(); y <= part.bottom(); ++y)
                for (int x = part.left(); x <= part.right(); ++x)
                    if (image.pixelColor(x, y) != QColor(Qt::white))
                        return false;
            return true;
        };
        EXPECT_TRUE(isBlank({0, 0, 150, 50})) << "beside the legend's bar, which has 48 rows";
        EXPECT_FALSE(isBlank({150, 50, 300, 15}));
        EXPECT_FALSE(isBlank({150, 285, 300, 12})) << "no room is left below";
        EXPECT_FALSE(isBlank({0, 280, 50, 20})) << "the stamp";
    }
}

TEST_F(RenderSeriesTest, FramesAndShardsAreThoseAskedFor)
{
    EXPECT_EQ(run({"--render", pattern("slice"), "--frames", "-2::-2", series}).status, 0);
    EXPECT_THAT(namesOf("slice"), ElementsAre("f_00.png", "f_02.png", "f_04.png"));
    const std::string shards = pattern("shards");
    for (const char* shard : {"0/4", "1/4", "2/4", "3/4"})
        EXPECT_EQ(run({"--render", shards, "--shard", shard, series}).status, 0);
    EXPECT_EQ(run({"--render", pattern("all"), series}).status, 0);
    EXPECT_EQ(filesOf("shards"), filesOf("all"));
}

TEST_F(RenderSeriesTest, APictureOfAnotherResolutionIsAnotherOne)
{
    const std::string one = folder.path("one.png");
    for (const char* dpi : {"100", "300"}) {
        EXPECT_EQ(run({"--render", one, "--frame", "2", "--dpi", dpi, series}).status, 0);
        EXPECT_NEAR(imageOf("one.png").dotsPerMeterX(), std::stoi(dpi) / 0.0254, 0.5);
    }
}

TEST_F(RenderSeriesTest, EachPictureOfATurnTellsTheCameraThatMakesItAgain)
{
    EXPECT_EQ(run({"--render", pattern("turn"), "--turn", "3", "--perspective", series}).status, 0);
    std::vector<std::string> cameras;
    for (const char* name : {"turn/f_00.png", "turn/f_01.png", "turn/f_02.png"}) {
        const QImage turned = imageOf(name);
        cameras.push_back(turned.text("Camera").toStdString());
        const std::string again = folder.path("again.png");
        const ProgramRun result = run(
            {"--overwrite", "--render", again, "--frame", "0", "--camera", cameras.back(), series});
        EXPECT_EQ(result.status, 0) << result.error;
        const QImage same = imageOf("again.png");
        EXPECT_EQ(same.text("Camera").toStdString(), cameras.back());
        EXPECT_EQ(same.convertToFormat(QImage::Format_RGB888),
                  turned.convertToFormat(QImage::Format_RGB888));
    }
    EXPECT_NE(cameras[1], cameras[2]);
}

TEST_F(RenderSeriesTest, EachPictureTellsTheCommandThatMakesItAlone)
{
    const std::vector<std::vector<std::string>> ways = {
        {"--stamp"}, {"--turn", "3", "--frame", "1"}, {"--colour-by", "arclength", "--align"}};
    for (const std::vector<std::string>& way : ways) {
        std::vector<std::string> all{"--overwrite", "--render", pattern("told")};
        all.insert(all.end(), way.begin(), way.end());
        all.push_back(series);
        ASSERT_EQ(run(all).status, 0);
        for (const char* name : {"told/f_00.png", "told/f_02.png"}) {
            const QImage told = imageOf(name);
            std::string line = told.text("Command").toStdString();
            SCOPED_TRACE(line);
            ASSERT_EQ(line.rfind("strandview ", 0), 0u);
            line.replace(0, std::string("strandview").size(), STRANDVIEW_PROGRAM);
            const std::string where = fs::path(series).parent_path().string();
            const ProgramRun again = runProgram("/bin/sh", {"-c", "cd '" + where + "' && " + line});
            ASSERT_EQ(again.status, 0) << again.error;
            const QImage same(QString::fromStdString(where + "/picture.png"));
            EXPECT_EQ(same.text("Command"), told.text("Command"));
            EXPECT_TRUE(same.convertToFormat(QImage::Format_RGB888) ==
                        told.convertToFormat(QImage::Format_RGB888));
        }
    }
}

TEST_F(RenderSeriesTest, ListsWhatWouldBeRendered)
{
    const ProgramRun list =
        run({"--list-frames", "--render", "out/f_%03d.png", "--frames", "1::2", series});
    EXPECT_EQ(list.status, 0);
    EXPECT_EQ(list.output, "1\t0.1\tout/f_001.png\n3\t0.3\tout/f_003.png\n5\t0.5\tout/f_005.png\n");
    EXPECT_EQ(run({"--list-frames", "--shard", "1/3", "--render", "%d.png", series}).output,
              "1\t0.1\t1.png\n4\t0.4\t4.png\n");
    const std::string points = folder.write("points.txt", "0 0 0\n1 0 0\n");
    EXPECT_EQ(runProgram(STRANDVIEW_PROGRAM, {"--list-frames", points}).output, "0\t-\n");
}

TEST_F(RenderSeriesTest, APlaneThatCutsNoneOfTheFramesIsTold)
{
    const auto told = [&](const char* plane) {
        const ProgramRun result = run({"--render", pattern("cut"), "--frames", "0:1", "--radius",
                                       "0.1", "--clip", plane, series});
        EXPECT_EQ(result.status, 0);
        return result.error;
    };
    EXPECT_THAT(told("x:2.5"), HasSubstr("--clip has no effect: found data from "));
    EXPECT_THAT(told("x:-2.5"), HasSubstr("--clip leaves nothing to see: found data from "));
    EXPECT_THAT(told("x:1.6"), Not(HasSubstr("--clip"))) << "beyond the first, not the last";
}

TEST_F(RenderSeriesTest, APictureThatIsThereIsSkippedUnlessItWasMadeFromOtherThings)
{
    const std::string out = pattern("out");
    EXPECT_EQ(run({"--render", out, series}).status, 0);
    const auto before = filesOf("out");
    const auto timeOf = [&](const char* name) {
        return fs::last_write_time(folder.path("out") + "/" + name);
    };
    const auto first = timeOf("f_00.png"), last = timeOf("f_05.png");
    fs::remove(folder.path("out/f_03.png"));

    EXPECT_EQ(run({"--render", out, "--frames", "0:6", series}).status, 0);
    EXPECT_EQ(filesOf("out"), before) << "what was missing is there again";
    EXPECT_EQ(timeOf("f_00.png"), first);

    EXPECT_EQ(run({"--render", out, "--radius", "0.3", series}).status, 0);
    EXPECT_NE(filesOf("out")["f_00.png"], before.at("f_00.png"));

    EXPECT_EQ(run({"--render", out, "--overwrite", series}).status, 0);
    EXPECT_EQ(filesOf("out"), before);
    EXPECT_NE(timeOf("f_05.png"), last);
}

TEST_F(RenderSeriesTest, PicturesOfAllFormatsThatKeepTextsAreKnownAgain)
{
    for (const std::string ending : {"png", "jpg", "jpeg", "pdf", "svg", "tif", "bmp", "ppm"}) {
        fs::create_directory(folder.path(ending));
        const std::string out = folder.path(ending + "/%d." + ending);
        const auto timeAfter = [&](const std::string& radius) {
            EXPECT_EQ(run({"--render", out, "--frames", "0:2", "--radius", radius, series}).status,
                      0);
            return fs::last_write_time(folder.path(ending + "/1." + ending));
        };
        const auto first = timeAfter("0.1"), again = timeAfter("0.1");
        const bool keepsTexts = ending != "tif" && ending != "bmp" && ending != "ppm";
        EXPECT_EQ(again == first, keepsTexts) << ending;
        EXPECT_NE(timeAfter("0.2"), again) << ending;
    }
}

TEST_F(RenderSeriesTest, OfChangedDataOnlyTheChangedFramesAreStale)
{
    const std::string out = pattern("out");
    EXPECT_EQ(run({"--render", out, series}).status, 0);
    const auto before = filesOf("out");
    folder.write("run.txt", seriesText(6, 3));
    const auto timeOf = [&](const char* name) {
        return fs::last_write_time(folder.path("out") + "/" + name);
    };
    const auto second = timeOf("f_02.png"), ofThird = timeOf("f_03.png");
    EXPECT_EQ(run({"--render", out, series}).status, 0);
    EXPECT_EQ(timeOf("f_02.png"), second);
    EXPECT_NE(timeOf("f_03.png"), ofThird);
}

// Of what has no counterpart no number tells, but a ghost shows it.
TEST_F(RenderSeriesTest, OfAnotherReferenceAPictureWithItsGhostIsStale)
{
    const auto reference = [](const std::string& second) {
        return "0 0 0\n1 0 0\n1 1 0\n\n" + second;
    };
    const std::string still = folder.write("still.txt", "0 0 0\n1 0 0\n1 1 1\n");
    const std::string other = folder.write("other.txt", reference("0 0 1\n1 0 1\n"));
    const std::string with = pattern("with"), without = pattern("without");
    const auto renderAll = [&] {
        EXPECT_EQ(run({"--compare", other, "--ghost", "--render", with, still}).status, 0);
        EXPECT_EQ(run({"--compare", other, "--render", without, still}).status, 0);
    };
    renderAll();
    const auto before = filesOf("with"), beforeWithout = filesOf("without");
    const auto timeWithout = fs::last_write_time(folder.path("without/f_00.png"));
    folder.write("other.txt", reference("0 0 2\n1 0 4\n"));
    renderAll();
    EXPECT_NE(filesOf("with"), before);
    EXPECT_EQ(filesOf("without"), beforeWithout);
    EXPECT_EQ(fs::last_write_time(folder.path("without/f_00.png")), timeWithout);
}

TEST_F(RenderSeriesTest, WhatIsNoPictureOfOursIsReplaced)
{
    const std::string out = pattern("out");
    folder.write("out/f_01.png", "no picture");
    fs::create_directory(folder.path("out/f_02.png"));
    const ProgramRun result = run({"--render", out, "--frames", "1:3", series});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.error, HasSubstr("frame 2: "));
    EXPECT_EQ(QImage(QString::fromStdString(folder.path("out/f_01.png"))).size(), QSize(90, 60));
}

TEST_F(RenderSeriesTest, AFrameThatFailsIsToldAndTheOthersAreThere)
{
    const char* const two = R"({"strandview": 1, "series": [
        {"rods": [{"points": [[0,0,0],[1,0,0],[2,0,0]]}]},
        {"rods": [{"points": [[0,0,0],[1,0,0],[0,0,0]]}]},
        {"rods": [{"points": [[0,0,0],[1,0,0],[1,1,0]]}]},
        {"rods": [{"points": [[0,0,0],[2,0,0],[1,0,0]]}]}]})";
    const std::string file = folder.write("two.json", two);
    const ProgramRun result = run({"--render", pattern("out"), file});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(namesOf("out"), ElementsAre("f_00.png", "f_02.png"));
    EXPECT_THAT(result.error, HasSubstr("strandview: frame 1: "));
    EXPECT_THAT(result.error, HasSubstr("strandview: failed: frames 1, 3\n"));
    const ProgramRun one = run({"--render", folder.path("one.png"), "--frame", "1", file});
    EXPECT_EQ(one.status, 1);
    EXPECT_FALSE(fs::exists(folder.path("one.png")));
}

TEST_F(RenderSeriesTest, FilesCanBeTheFramesInTheOrderOfTheirNumbers)
{
    fs::create_directory(folder.path("files"));
    for (const int frame : {0, 2, 10})
        folder.write("files/s" + std::to_string(frame) + ".txt", "t x y z k\n" + frameText(frame));
    const ProgramRun list =
        runProgram(STRANDVIEW_PROGRAM, {"--list-frames", "--series", folder.path("files")});
    EXPECT_EQ(list.output, "0\t-\n1\t-\n2\t-\n");
    EXPECT_EQ(run({"--render", pattern("out"), "--series", folder.path("files/s10.txt"),
                   folder.path("files/s0.txt"), folder.path("files/s2.txt")})
                  .status,
              0);
    EXPECT_EQ(run({"--render", pattern("same"), "--series", folder.path("files")}).status, 0);
    EXPECT_EQ(namesOf("out").size(), 3U);
    EXPECT_EQ(namesOf("out"), namesOf("same"));
    for (const std::string& name : namesOf("out")) // whose commands name other files
        EXPECT_EQ(imageOf("out/" + name), imageOf("same/" + name)) << name;
    EXPECT_EQ(run({"--render", folder.path("scene.png"), folder.path("files/s0.txt"),
                   folder.path("files/s2.txt")})
                  .status,
              0)
        << "without --series they are one scene";
}

TEST_F(RenderSeriesTest, ASeriesIsBesideStillData)
{
    const std::string still = folder.write("still.txt", "0 0 0\n0 0 3\n");
    EXPECT_EQ(runProgram(STRANDVIEW_PROGRAM, {"--list-frames", still, series}).output,
              runProgram(STRANDVIEW_PROGRAM, {"--list-frames", series}).output);
    EXPECT_EQ(run({"--render", pattern("both"), "--frames", ":2", still, series}).status, 0);
    EXPECT_EQ(run({"--render", pattern("alone"), "--frames", ":2", series}).status, 0);
    EXPECT_THAT(namesOf("both"), ElementsAre("f_00.png", "f_01.png"));
    EXPECT_NE(filesOf("both")["f_01.png"], filesOf("alone")["f_01.png"]);
    const std::string shorter = folder.write("shorter.txt", seriesText(2));
    EXPECT_THAT(run({"--render", pattern("short"), shorter, series}).error,
                HasSubstr("run.txt: the first 2 of 6 frames, as many as another file has"));
}

TEST_F(RenderSeriesTest, AFrameThatNoneOfSeveralStillFilesHasIsToldAndTheirOnlyOneIsDrawn)
{
    const std::string still = folder.write("still.txt", seriesText(1));
    const ProgramRun result =
        run({"--render", folder.path("one.png"), "--frame", "1", still, still});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.error, HasSubstr("strandview: --frame has no effect: found no series\n"));
    EXPECT_TRUE(std::filesystem::exists(folder.path("one.png")));
    EXPECT_THAT(run({"--render", folder.path("two.png"), "--frame", "1", still}).error,
                HasSubstr("still.txt: found frame 1, expected 0 to 0"));
}

TEST_F(RenderSeriesTest, WhatCannotBeIsToldInOneLineBeforeAnythingIsWritten)
{
    const std::string one = folder.path("one.png");
    const std::vector<std::pair<std::vector<std::string>, std::string>> calls{
        {{"--render", one, "--frame", "6", series}, "run.txt: found frame 6, expected 0 to 5"},
        {{"--render", one, "--frames", "::", series}, "expected a name with %d or %05d in it"},
        {{"--render", one, "--frames", "4", series}, "expected a slice A:B or A:B:STEP"},
        {{"--render", pattern("out"), "--frames", "6:", series}, "found none of 6 frames"},
        {{"--render", folder.path("%d%d.png"), series}, "expected one place for the frame's"},
        {{"--render", pattern("out2"), "--shard", "3/3", series}, "expected i/n with 0 <= i < n"},
        {{"--render", folder.path("none/f_%d.png"), series}, "none/f_0.png: "},
        {{"--render", pattern("out3"), "--series", folder.path("none")}, "none: "},
        {{"--render", folder.path("%d.mp4"), series}, "expected one film of all frames"},
        {{"--render", folder.path("a.gif"), "--transparent", series}, "expected a picture with"},
        {{"--render", one, "--fps", "0", series}, "expected a number from 0.01 to 1000"},
        {{"--render", one, "--jobs", "-1", series}, "expected a whole number from 0 to 1000"},
        {{"--render", one, "--pairs", "all", series}, "found 'all', expected first or frame"},
        {{"--stamp", series}, "--render"}};
    for (const auto& [arguments, expected] : calls) {
        const ProgramRun result = run(arguments);
        EXPECT_THAT(result.error, HasSubstr(expected));
        EXPECT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), 1) << result.error;
        EXPECT_NE(result.status, 0) << expected;
    }
    EXPECT_EQ(runProgram(STRANDVIEW_PROGRAM, {"--frames", "1:2", series}).error,
              "strandview: --frames: found neither --render nor --list-frames, expected one\n");
    EXPECT_FALSE(fs::exists(one));
    EXPECT_THAT(namesOf("out"), IsEmpty());
}

TEST_F(RenderSeriesTest, AnInterruptionLeavesWholePicturesAlone)
{
    folder.write("long.txt", seriesText(3000));
    const std::string out = pattern("out");
    RunningProgram program({"--render", out, "--size", "300x200", folder.path("long.txt")});
    ASSERT_TRUE(comes(folder.path("out/f_02.png")));
    EXPECT_EQ(program.signalAndWait(SIGINT), 130);
    const auto files = filesOf("out");
    EXPECT_LT(files.size(), 3000U);
    for (const auto& [name, content] : files) {
        EXPECT_THAT(name, testing::MatchesRegex("f_[0-9]+\\.png"));
        EXPECT_EQ(QImage(QString::fromStdString(folder.path("out/" + name))).width(), 300);
    }
}

TEST_F(RenderSeriesTest, SeveralProcessesWriteTheSamePictures)
{
    EXPECT_EQ(run({"--render", pattern("one"), series}).status, 0);
    for (const char* jobs : {"2", "4", "0"}) {
        const std::string name = std::string("jobs") + jobs;
        const ProgramRun several = run({"--render", pattern(name), "--jobs", jobs, series});
        EXPECT_EQ(several.status, 0) << several.error;
        EXPECT_EQ(filesOf(name), filesOf("one"));
    }
}

// Frames that are the first one, turned and shifted, all look like it.
TEST_F(RenderSeriesTest, SuperposedFramesStayInPlace)
{
    std::string text = "t x y z\n";
    for (int frame = 0; frame < 3; ++frame) {
        for (int i = 0; i < 12; ++i) {
            const double angle = 0.5 * i + frame, height = 0.3 * i + 7 * frame;
            text += std::to_string(frame) + " " + std::to_string(std::cos(angle)) + " " +
                    std::to_string(std::sin(angle)) + " " + std::to_string(height) + "\n";
        }
    }
    const std::string file = folder.write("turning.txt", text);
    EXPECT_EQ(run({"--render", pattern("still"), "--align", file}).status, 0);
    EXPECT_EQ(run({"--render", pattern("moving"), file}).status, 0);
    const QImage first = imageOf("still/f_00.png");
    for (const char* name : {"f_01.png", "f_02.png"}) {
        const QImage other = imageOf(std::string("still/") + name);
        int differing = 0; // points have six digits
        for (int y = 0; y < first.height(); ++y)
            for (int x = 0; x < first.width(); ++x)
                differing += first.pixel(x, y) != other.pixel(x, y) ? 1 : 0;
        EXPECT_LT(differing, 10) << name;
        EXPECT_NE(imageOf(std::string("moving/") + name), imageOf("moving/f_00.png"));
    }
}

// Of frames that are parts of one straight movement, what is put between them is what was there.
TEST_F(RenderSeriesTest, FramesBetweenAreDrawnWhereTheyAreAskedFor)
{
    std::string all = "t x y z\n", some = all;
    for (int frame = 0; frame < 5; ++frame) {
        std::string rows;
        for (int i = 0; i < 6; ++i)
            rows += std::to_string(frame) + " " + std::to_string(i) + " " +
                    std::to_string(i * i / 8.0) + " " + std::to_string(i * frame / 4.0) + "\n";
        all += rows;
        some += frame % 2 == 0 ? rows : "";
    }
    const std::string every = folder.write("every.txt", all), half = folder.write("half.txt", some);
    EXPECT_EQ(run({"--render", pattern("every"), "--stamp", every}).status, 0);
    EXPECT_EQ(run({"--render", pattern("half"), "--stamp", "--between", "1", half}).status, 0);
    for (const char* name : {"f_00.png", "f_01.png", "f_02.png", "f_03.png", "f_04.png"})
        EXPECT_EQ(imageOf(std::string("half/") + name), imageOf(std::string("every/") + name))
            << name;
    const std::string alone = folder.path("alone.png");
    EXPECT_EQ(run({"--render", alone, "--stamp", "--between", "1", "--frame", "3", half}).status,
              0);
    EXPECT_EQ(contentOf(alone), filesOf("half")["f_03.png"]);
    EXPECT_EQ(
        runProgram(STRANDVIEW_PROGRAM, {"--list-frames", "--between", "3", "--frames", ":3", half})
            .output,
        "0\t0\n1\t0.5\n2\t1\n");
    EXPECT_EQ(run({"--render", alone, "--between", "3", "--frame", "9", half}).error,
              "strandview: " + half + ": found frame 9, expected 0 to 8\n");
}

TEST_F(RenderSeriesTest, ThereIsNothingBetweenFramesOfOtherNumbersOfPoints)
{
    const std::string file = folder.write("grows.json", R"({"strandview": 1, "series": [
        {"rods": [{"points": [[0,0,0],[1,0,0]]}]},
        {"rods": [{"points": [[0,0,0],[1,0,0],[2,1,0]]}]}]})");
    const ProgramRun result = run({"--render", pattern("out"), "--between", "4", file});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.error, "strandview: --between: between frames 0 and 1: found 3 points in rod "
                            "1, expected 2\n");
    EXPECT_THAT(namesOf("out"), IsEmpty());
    EXPECT_EQ(run({"--render", pattern("out"), file}).status, 0);
    const std::string still = folder.write("still.txt", "0 0 0\n0 0 3\n");
    EXPECT_THAT(run({"--render", folder.path("a.png"), "--between", "2", still}).error,
                HasSubstr("--between has no effect: found 1 frame"));
}

TEST_F(RenderSeriesTest, ATurnIsSoManyPicturesAroundOneFrameOfWhichTheFirstIsItsOwn)
{
    const std::vector<std::string> stamped{"--stamp", "--frame", "4", series};
    const auto with = [&](std::vector<std::string> more) {
        more.insert(more.end(), stamped.begin(), stamped.end());
        return more;
    };
    EXPECT_EQ(run(with({"--render", pattern("turn"), "--turn", "6"})).status, 0);
    EXPECT_EQ(namesOf("turn").size(), 6U);
    EXPECT_EQ(run(with({"--render", folder.path("still.png")})).status, 0);
    auto turn = filesOf("turn");
    EXPECT_EQ(turn["f_00.png"], contentOf(folder.path("still.png")));
    for (const char* name : {"f_01.png", "f_02.png", "f_03.png", "f_04.png", "f_05.png"})
        EXPECT_NE(turn[name], turn["f_00.png"]) << name;

    EXPECT_EQ(run(with({"--render", pattern("twelve"), "--turn", "12", "--frames", "::2"})).status,
              0);
    auto twelve = filesOf("twelve");
    EXPECT_THAT(namesOf("twelve"), ElementsAre("f_00.png", "f_02.png", "f_04.png", "f_06.png",
                                               "f_08.png", "f_10.png"));
    EXPECT_EQ(twelve["f_00.png"], turn["f_00.png"]);
    EXPECT_EQ(twelve["f_06.png"], turn["f_03.png"]) << "the same angle";
}

TEST_F(RenderSeriesTest, AViewThatIsTurnedAndMadeLargerIsThatOfAllFrames)
{
    const std::vector<std::string> same{"--zoom", "2", "--centre", "1,0,0.5", "--margin", "0.1"};
    for (const auto& [name, view] : std::vector<std::pair<std::string, std::vector<std::string>>>{
             {"angle", {"--azimuth", "90"}}, {"side", {"--view", "x"}}}) {
        std::vector<std::string> arguments{"--render", pattern(name), series};
        arguments.insert(arguments.end(), view.begin(), view.end());
        arguments.insert(arguments.end(), same.begin(), same.end());
        EXPECT_EQ(run(arguments).status, 0);
    }
    ASSERT_GT(namesOf("angle").size(), 2U);
    for (const std::string& name : namesOf("angle"))
        EXPECT_EQ(imageOf("angle/" + name), imageOf("side/" + name)) << name;
}

TEST_F(RenderSeriesTest, ATurnWithAnElevationStaysAtIt)
{
    const std::string rod = folder.write("rod.txt", "1 0 0\n2 1 0\n2 3 5\n");
    const std::vector<std::string> view{"--elevation", "30", "--zoom", "0.5", rod};
    const auto with = [&](std::vector<std::string> more) {
        more.insert(more.end(), view.begin(), view.end());
        return more;
    };
    EXPECT_EQ(run(with({"--render", pattern("turn"), "--turn", "4"})).status, 0);
    const ProgramRun half = run(with(
        {"--render", folder.path("half.png"), "--turn", "4", "--frames", "2:3", "--print-camera"}));
    const ProgramRun still =
        run(with({"--render", folder.path("still.png"), "--azimuth", "180", "--print-camera"}));
    EXPECT_EQ(half.status, 0) << half.error;
    const auto turned = parseCamera(half.output.substr(0, half.output.size() - 1));
    const auto expected = parseCamera(still.output.substr(0, still.output.size() - 1));
    ASSERT_TRUE(turned && expected) << half.output << still.output;
    double dot = 0;
    for (std::size_t i = 0; i < 4; ++i)
        dot += double(turned->orientation[i]) * double(expected->orientation[i]);
    EXPECT_NEAR(std::abs(dot), 1, 1e-6);
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(turned->position[i], expected->position[i], 1e-4);
}

TEST_F(RenderSeriesTest, ATurnIsRenderedInPartsAsAnySeries)
{
    EXPECT_EQ(run({"--render", pattern("all"), "--turn", "6", series}).status, 0);
    const std::string shards = pattern("shards");
    for (const char* shard : {"0/2", "1/2"})
        EXPECT_EQ(run({"--render", shards, "--turn", "6", "--shard", shard, series}).status, 0);
    EXPECT_EQ(filesOf("shards"), filesOf("all"));
    EXPECT_EQ(run({"--render", pattern("jobs"), "--turn", "6", "--jobs", "2", series}).status, 0);
    EXPECT_EQ(filesOf("jobs"), filesOf("all"));
    const auto timeOf = [&](const char* name) { return fs::last_write_time(folder.path(name)); };
    const auto before = timeOf("all/f_05.png");
    fs::remove(folder.path("all/f_02.png"));
    EXPECT_EQ(run({"--render", folder.path("all/f_%02d.png"), "--turn", "6", series}).status, 0);
    EXPECT_EQ(filesOf("shards"), filesOf("all"));
    EXPECT_EQ(timeOf("all/f_05.png"), before);
    EXPECT_EQ(run({"--render", folder.path("all/f_%02d.png"), "--turn", "7", series}).status, 0);
    EXPECT_NE(filesOf("shards")["f_05.png"], filesOf("all")["f_05.png"]) << "of another angle";
    EXPECT_EQ(run({"--render", folder.path("film.gif"), "--turn", "6", series}).status, 0);
}

TEST_F(RenderSeriesTest, WhatATurnIsAskedForIsToldAndListed)
{
    EXPECT_EQ(
        run({"--list-frames", "--turn", "8", "--frames", "1::3", "--render", "t%d.png", series})
            .output,
        "1\t45\tt1.png\n4\t180\tt4.png\n7\t315\tt7.png\n");
    const std::string one = folder.path("one.png");
    EXPECT_THAT(run({"--render", one, "--turn", "8", "--frames", "5:6", series}).error,
                HasSubstr("the first of 6 frames; --frame N takes another"));
    EXPECT_TRUE(fs::exists(one));
    for (const auto& [arguments, expected] :
         std::vector<std::pair<std::vector<std::string>, std::string>>{
             {{"--render", one, "--turn", "8", series}, "for 8 pictures, expected a name with %d"},
             {{"--render", one, "--turn", "0", series}, "expected a whole number from 1 to"},
             {{"--render", one, "--turn", "8", "--frames", "8:", series}, "none of 8 pictures"},
             {{"--render", one, "--turn", "8", "--frame", "6", series}, "expected 0 to 5"},
             {{"--render", one, "--frame", "1", "--frames", "1:2", series},
              "--frames excludes --frame"}}) {
        const ProgramRun result = run(arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_THAT(result.error, HasSubstr(expected));
        EXPECT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), 1) << result.error;
    }
    EXPECT_EQ(runProgram(STRANDVIEW_PROGRAM, {"--turn", "3", series}).error,
              "strandview: --turn: found neither --render nor --list-frames, expected one\n");
}

// Two facing bases that come apart.
TEST_F(RenderSeriesTest, PairsAreThoseOfTheFirstFrameInEveryPicture)
{
    folder.write("two.top", "2 2 5->3\nA\nT\n");
    const auto frame = [](const std::string& place) {
        return "t = 0\nb = 9 9 9\nE = 0 0 0\n" + place + " 0.6 0 0 -1 0 0 0 -1\n" +
               "0 -0.6 0 0 1 0 0 0 1\n";
    };
    folder.write("two.dat", frame("0") + frame("2"));
    const std::string file = folder.path("two.dat");
    const auto render = [&](const std::string& name, std::vector<std::string> more) {
        more.insert(more.end(), {"--render", pattern(name), "--dna", "pairs", file});
        const ProgramRun result = run(more);
        EXPECT_EQ(result.status, 0) << result.error;
        return filesOf(name);
    };
    const auto all = render("all", {});
    EXPECT_EQ(all.size(), 2U);
    EXPECT_EQ(render("alone", {"--frame", "1"}).at("f_01.png"), all.at("f_01.png"));
    render("own", {"--pairs", "frame"});
    EXPECT_NE(imageOf("own/f_01.png"), imageOf("all/f_01.png")) << "there is no pair's box";
}

TEST_F(RenderSeriesTest, AFilmHasEveryFrame)
{
    const std::string film = folder.path("film.mp4");
    const ProgramRun made =
        run({"--render", film, "--fps", "12.5", "--frames", "1:", "--stamp", series});
    EXPECT_EQ(made.status, 0) << made.error;
    const ProgramRun facts =
        runProgram("/usr/bin/env",
                   {"ffprobe", "-v", "error", "-count_frames", "-show_entries",
                    "stream=width,height,r_frame_rate,nb_read_frames", "-of", "csv=p=0", film});
    EXPECT_EQ(facts.output, "90,60,25/2,5\n");
    EXPECT_FALSE(fs::exists(film + ".part"));
}

TEST_F(RenderSeriesTest, AnInterruptedFilmIsNone)
{
    folder.write("long.txt", seriesText(3000));
    fs::create_directory(folder.path("films"));
    const std::string film = folder.path("films/film.mp4");
    RunningProgram program({"--render", film, "--size", "300x200", folder.path("long.txt")});
    ASSERT_TRUE(comes(film + ".part"));
    EXPECT_EQ(program.signalAndWait(SIGINT), 130);
    EXPECT_THAT(namesOf("films"), IsEmpty());
}

TEST_F(RenderSeriesTest, WhatWasKilledAndRunAgainComesToTheSameFiles)
{
    const std::string out = pattern("out");
    {
        RunningProgram program({"--render", out, "--size", "90x60", "--samples", "1", series});
        ASSERT_TRUE(comes(folder.path("out/f_01.png")));
        program.signalAndWait(SIGKILL);
    }
    EXPECT_EQ(run({"--render", out, series}).status, 0);
    EXPECT_EQ(run({"--render", pattern("all"), series}).status, 0);
    EXPECT_EQ(filesOf("out"), filesOf("all"));
}

TEST_F(RenderSeriesTest, TrajectoriesOfOtherProgramsAreRendered)
{
    const char* const others = std::getenv("STRANDVIEW_TEST_DATA");
    if (!others)
        GTEST_SKIP() << "skipped: STRANDVIEW_TEST_DATA is not set";
    const std::vector<std::pair<std::vector<std::string>, std::size_t>> trajectories{
        {{"rna_tile.top", "rna_tile_traj.dat"}, 10},
        {{"dsdna8.top", "dsdna8_traj.dat"}, 10},
        {{"softarm_br2.npz"}, 26},
        {{"tweezer10.xyz"}, 10},
        {{"fibers3x3.txt"}, 3}};
    for (const auto& [names, count] : trajectories) {
        std::vector<std::string> arguments{"--render", pattern(names.back()), "--stamp"};
        for (const std::string& name : names)
            arguments.push_back(std::string(others) + "/" + name);
        EXPECT_EQ(run(arguments).status, 0) << names.back();
        EXPECT_EQ(namesOf(names.back()).size(), count) << names.back();
    }
}

} // namespace strandview
