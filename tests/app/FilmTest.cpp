// SPDX-License-Identifier: GPL-3.0-or-later
#include "rendering/Film.h"

#include <cstdlib>

#include <QImage>
#include <gmock/gmock.h>

#include "support/TemporaryFolder.h"
#include "support/runProgram.h"

namespace strandview {

namespace {

using testing::HasSubstr;
using testing::StartsWith;

namespace fs = std::filesystem;

QImage filled(int width, int height, const QColor& colour)
{
    QImage image(width, height, QImage::Format_RGB888);
    image.fill(colour);
    return image;
}

class FilmTest : public testing::Test
{
protected:
    // The picture of a frame, as a player has it.
    QImage frameOf(const std::string& film, int frame) const
    {
        const std::string picture = folder.path("frame.png");
        runProgram("/usr/bin/env",
                   {"ffmpeg", "-v", "error", "-y", "-i", film, "-vf",
                    "select=eq(n\\," + std::to_string(frame) + "),scale=in_range=tv", "-frames:v",
                    "1", picture});
        return QImage(QString::fromStdString(picture));
    }
    // "codec,width,height,rate,frames"
    std::string factsOf(const std::string& film) const
    {
        return runProgram("/usr/bin/env",
                          {"ffprobe", "-v", "error", "-count_frames", "-show_entries",
                           "stream=codec_name,width,height,r_frame_rate,nb_read_frames", "-of",
                           "csv=p=0", film})
            .output;
    }

    const TemporaryFolder folder;
    const std::vector<QColor> colours{{200, 40, 40}, {40, 160, 60}, {60, 80, 220}};
};

} // namespace

TEST_F(FilmTest, ShowsItsPicturesInTheirColours)
{
    const std::vector<std::pair<std::string, std::string>> films{{"a.mp4", "h264,64,48,10/1,3"},
                                                                 {"a.webm", "vp9,64,48,10/1,3"},
                                                                 {"A.GIF", "gif,64,48,10/1,3"}};
    for (const auto& [name, facts] : films) {
        Film film(folder.path(name), 10, {1, 1, 1});
        for (const QColor& colour : colours)
            EXPECT_EQ(film.add(filled(64, 48, colour)), "");
        EXPECT_FALSE(fs::exists(folder.path(name)));
        EXPECT_EQ(film.finish(), "");
        EXPECT_THAT(factsOf(folder.path(name)), StartsWith(facts));
        for (int i = 0; i < 3; ++i) {
            const QColor found = frameOf(folder.path(name), i).pixelColor(30, 20);
            EXPECT_NEAR(found.red(), colours[std::size_t(i)].red(), 6) << name << i;
            EXPECT_NEAR(found.green(), colours[std::size_t(i)].green(), 6) << name << i;
            EXPECT_NEAR(found.blue(), colours[std::size_t(i)].blue(), 6) << name << i;
        }
        EXPECT_FALSE(fs::exists(folder.path(name + ".part")));
    }
}

TEST_F(FilmTest, OfAnOddSizeGetsAMarginInTheColourOfTheBackground)
{
    Film film(folder.path("odd.mp4"), 25, {0, 0, 1});
    EXPECT_EQ(film.add(filled(31, 21, Qt::white)), "");
    EXPECT_EQ(film.add(filled(31, 21, Qt::white)), "");
    EXPECT_EQ(film.finish(), "");
    EXPECT_THAT(factsOf(folder.path("odd.mp4")), StartsWith("h264,32,22,25/1,2"));
    EXPECT_LT(frameOf(folder.path("odd.mp4"), 0).pixelColor(31, 5).red(), 128);
}

TEST_F(FilmTest, ThatIsNotFinishedLeavesNothing)
{
    {
        Film film(folder.path("a.mp4"), 25, {1, 1, 1});
        EXPECT_EQ(film.add(filled(320, 240, Qt::red)), "");
    }
    EXPECT_TRUE(fs::is_empty(folder.path()));
}

TEST_F(FilmTest, WhatCannotBeMadeIsToldInOneLine)
{
    Film nowhere(folder.path("none/a.mp4"), 25, {1, 1, 1});
    std::string fault = nowhere.add(filled(64, 48, Qt::red));
    fault = fault.empty() ? nowhere.finish() : fault;
    EXPECT_THAT(fault, HasSubstr("none/a.mp4: ffmpeg failed: "));
    EXPECT_EQ(fault.find('\n'), fault.npos);

    const std::string path = std::getenv("PATH");
    setenv("PATH", folder.path().c_str(), 1);
    Film without(folder.path("a.mp4"), 25, {1, 1, 1});
    EXPECT_THAT(without.add(filled(64, 48, Qt::red)),
                HasSubstr("a.mp4: found no ffmpeg, which makes films: install it"));
    setenv("PATH", path.c_str(), 1);
}

TEST_F(FilmTest, IsToldByItsEnding)
{
    for (const char* name : {"a.mp4", "b/a.WEBM", "a.png.gif"})
        EXPECT_TRUE(isFilm(name)) << name;
    for (const char* name : {".mp4", "mp4", "a.mp4/b", "a.png", "a.mp4x", ""})
        EXPECT_FALSE(isFilm(name)) << name;
}

} // namespace strandview
