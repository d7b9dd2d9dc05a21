// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/writeCommand.h"

#include <cstdlib>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

#include "command/parseOptions.h"
#include "request/settings.h"
#include "support/TemporaryFolder.h"

namespace strandview {

namespace {

// The words that a shell makes of a line.
std::vector<std::string> wordsOf(const std::string& line)
{
    const TemporaryFolder folder;
    const std::string out = folder.path("words");
    const std::string all = "printf '%s\\0' " + line + " > " + out;
    EXPECT_EQ(std::system(all.c_str()), 0) << all;
    std::ifstream file(out, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    std::vector<std::string> words;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = text.find('\0', at);
        words.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    return words;
}

Options parsed(const std::vector<std::string>& words)
{
    std::vector<const char*> line;
    for (const std::string& word : words)
        line.push_back(word.c_str());
    const ParsedOptions options = parseOptions(int(line.size()), line.data());
    EXPECT_TRUE(options.options);
    return options.options.value_or(Options());
}

ShownPicture pictureOf(const std::vector<std::string>& files)
{
    ShownPicture picture;
    picture.files = files;
    picture.camera = *parseCamera("orthographic,1,2,3,0,0,0,1,4,5");
    picture.size.width = 640;
    picture.size.height = 480;
    return picture;
}

} // namespace

TEST(WriteCommandTest, AWordIsWhatTheShellMakesOfIt)
{
    for (const char* word :
         {"plain.txt", "",  "two words",   "don't", "'",  "$HOME", "a;b", "*",   "\\",   "\"x\"",
          "#1",        "~", "line\nbreak", "π.txt", "!x", "{a,b}", "<in", "a&b", "`id`", "x=1"})
        EXPECT_EQ(wordsOf(inShell(word)), std::vector<std::string>{word});
}

TEST(WriteCommandTest, APlainWordStaysPlain)
{
    EXPECT_EQ(inShell("data/rod-1.txt"), "data/rod-1.txt");
}

TEST(WriteCommandTest, TheLineSaysWhatTheOptionsSay)
{
    const Options asked =
        parsed({"strandview", "--closed", "--frame-rows", "3",           "--align",
                "--between",  "2",        "--samples",    "2",           "--render",
                "x.png",      "--radius", "0.1",          "--no-ribbon", "--colour-by",
                "my scalar",  "--range",  ":2",           "--colours",   "navy,white",
                "a rod.txt"});
    ShownPicture picture = pictureOf({"a rod.txt", "b.txt"});
    picture.frame = 7;
    picture.size.samples = asked.samples;
    const Options again = parsed(wordsOf(writeCommand(asked, picture)));
    EXPECT_EQ(static_cast<const StyleRequest&>(again), static_cast<const StyleRequest&>(asked));
    EXPECT_EQ(again.files, picture.files);
    EXPECT_TRUE(again.closed);
    EXPECT_EQ(again.frameRows, 3);
    EXPECT_TRUE(again.series.align);
    EXPECT_EQ(again.series.between, 2);
    EXPECT_EQ(again.samples, 2);
    EXPECT_EQ(again.frame, 7);
    EXPECT_EQ(again.camera.numbers, picture.camera);
    EXPECT_EQ(again.pictureWidth, 640);
    EXPECT_EQ(again.pictureHeight, 480);
    EXPECT_EQ(again.picture, "picture.png");
}

TEST(WriteCommandTest, TheLineSaysHowLargeAndFineThePictureIs)
{
    ShownPicture picture = pictureOf({"rod.txt"});
    const auto again = [&picture] { return parsed(wordsOf(writeCommand(Options(), picture))); };
    picture.size.samples = 5;
    picture.size.transparent = picture.stamp = true;
    picture.size.dpi = 250;
    EXPECT_EQ(again().samples, 5);
    EXPECT_TRUE(again().transparent);
    EXPECT_TRUE(again().series.stamp);
    EXPECT_EQ(again().dpi, 250);
    EXPECT_EQ(again().pictureWidth, 640);

    picture.size.paper = PaperSize{85.5, 60, "85.50X60mm"};
    for (const std::optional<int> dpi : {std::optional<int>(), std::optional(600)}) {
        picture.size.dpi = dpi;
        EXPECT_EQ(again().pictureWidth, pixelsOf(85.5, dpi.value_or(300)));
        EXPECT_EQ(again().dpi, dpi.value_or(300));
    }
}

TEST(WriteCommandTest, WhatIsUsualOfAPictureIsNotSaid)
{
    ShownPicture picture = pictureOf({"rod.txt"});
    const std::string usual = writeCommand(Options(), picture);
    picture.size.dpi = 100;
    EXPECT_EQ(writeCommand(Options(), picture), usual);
    for (const char* name : {"--dpi", "--samples", "--transparent", "--stamp"})
        EXPECT_EQ(usual.find(name), std::string::npos);
}

TEST(WriteCommandTest, WhatAPictureKeepsHasNoFoldersAndNotItsName)
{
    Options options;
    ASSERT_EQ(settingOf("compare").read("/home/me/start.txt", options), "");
    ShownPicture picture = pictureOf({"/home/me/a rod.txt", "frames/", "../b.txt", "-"});
    picture.name = "/home/me/knot.png";
    const Options kept = parsed(wordsOf(writeCommandToKeep(options, picture)));
    EXPECT_EQ(kept.files, std::vector<std::string>({"a rod.txt", "frames", "b.txt", "-"}));
    EXPECT_EQ(kept.compare, "start.txt");
    EXPECT_EQ(kept.picture, "picture.png");
    ASSERT_EQ(settingOf("compare").read("first", options), "");
    EXPECT_EQ(parsed(wordsOf(writeCommandToKeep(options, picture))).compare, "first");
}

TEST(WriteCommandTest, ATitleHasNoFolders)
{
    EXPECT_EQ(titleOf({}), "");
    EXPECT_EQ(titleOf({"/home/me/rod.txt"}), "rod.txt");
    EXPECT_EQ(titleOf({"data/rod.txt", "b.txt", "c.txt"}), "rod.txt and 2 more");
}

TEST(WriteCommandTest, AFileThatLooksLikeAnOptionIsAFile)
{
    const ShownPicture picture = pictureOf({"--radius"});
    EXPECT_EQ(parsed(wordsOf(writeCommand(Options(), picture))).files, picture.files);
}

} // namespace strandview
