// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/writePng.h"

#include <string>

#include <QByteArray>
#include <QImage>
#include <gtest/gtest.h>

#include "support/noise.h"

namespace strandview {

namespace {

std::string pngOf(const QImage& image)
{
    std::string png;
    writePng(image, [&png](std::string_view part) { png += part; });
    return png;
}

QImage readBack(const std::string& png)
{
    return QImage::fromData(reinterpret_cast<const uchar*>(png.data()), int(png.size()), "png");
}

// Rows that differ along them, and columns that do: each filter is the better one somewhere.
QImage ramps(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB888);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const int grey = y < height / 2 ? x % 256 : (x * x + y) % 256;
            image.setPixel(x, y, qRgb(grey, 255 - grey, grey / 2));
        }
    }
    return image;
}

} // namespace

TEST(WritePng, KeepsEveryPixel)
{
    for (const QImage::Format format : {QImage::Format_RGB888, QImage::Format_RGB32,
                                        QImage::Format_RGBA8888, QImage::Format_ARGB32}) {
        SCOPED_TRACE(format);
        for (const QSize& size : {QSize(1, 1), QSize(301, 7), QSize(1, 40), QSize(64, 1)}) {
            const QImage image = noise(size.width(), size.height(), format);
            EXPECT_EQ(readBack(pngOf(image)).convertToFormat(format), image);
        }
    }
    EXPECT_EQ(readBack(pngOf(ramps(300, 200))).convertToFormat(QImage::Format_RGB888),
              ramps(300, 200));
}

TEST(WritePng, HasTransparentPixelsWhereTheImageCan)
{
    EXPECT_FALSE(readBack(pngOf(noise(4, 4, QImage::Format_RGB32))).hasAlphaChannel());
    EXPECT_TRUE(readBack(pngOf(noise(4, 4, QImage::Format_ARGB32))).hasAlphaChannel());
}

TEST(WritePng, KeepsResolutionAndTexts)
{
    QImage image = noise(3, 2, QImage::Format_RGB888);
    image.setDotsPerMeterX(3780);
    image.setDotsPerMeterY(70000);
    image.setText("Title", "Knot 3\xE2\x82\x81");
    image.setText("Comment", "");
    const QImage read = readBack(pngOf(image));
    EXPECT_EQ(read.dotsPerMeterX(), 3780);
    EXPECT_EQ(read.dotsPerMeterY(), 70000);
    EXPECT_EQ(read.text("Title"), image.text("Title"));
    EXPECT_TRUE(read.textKeys().contains("Comment"));
}

// PNG's "tEXt" is known to every reader, "iTXt" alone has other letters than Latin ones.
TEST(WritePng, PlainTextIsInTheChunkThatEveryReaderKnows)
{
    QImage image = noise(3, 2, QImage::Format_RGB888);
    image.setText("Camera", "orthographic,1,2");
    image.setText("Title", "\xCF\x80");
    const std::string png = pngOf(image);
    EXPECT_NE(png.find(std::string("\0\0\0\x17tEXtCamera\0orthographic,1,2", 31)),
              std::string::npos);
    EXPECT_NE(png.find(std::string("iTXtTitle\0\0\0\0\0\xCF\x80", 16)), std::string::npos);
    EXPECT_EQ(readBack(png).text("Camera"), image.text("Camera"));
    EXPECT_EQ(readBack(png).text("Title"), image.text("Title"));
}

TEST(WritePng, BeginsAndEndsAsThatFormatDoes)
{
    const std::string png = pngOf(noise(3, 2, QImage::Format_RGB888));
    EXPECT_EQ(png.substr(0, 8), "\x89PNG\r\n\x1a\n");
    EXPECT_EQ(png.substr(12, 4), "IHDR");
    EXPECT_EQ(png.substr(png.size() - 8, 4), "IEND");
}

// What repeats takes no place: 300 rows of one colour, of which each is 900 bytes.
TEST(WritePng, IsSmallWhereLittleIsShown)
{
    QImage image(300, 300, QImage::Format_RGB888);
    image.fill(Qt::darkGreen);
    EXPECT_LT(pngOf(image).size(), 2000u);
}

} // namespace strandview
