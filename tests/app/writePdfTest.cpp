// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/writePdf.h"

#include <cstdlib>
#include <string>

#include <QByteArray>
#include <QImage>
#include <QRegularExpression>
#include <gtest/gtest.h>

#include "support/noise.h"

namespace strandview {

namespace {

std::string pdfOf(const QImage& image)
{
    std::string pdf;
    writePdf(image, [&pdf](std::string_view part) { pdf += part; });
    return pdf;
}

// The object of a number, found by the table at the end, as a reader finds it.
std::string objectOf(const std::string& pdf, int number)
{
    const std::size_t table =
        std::stoul(pdf.substr(pdf.rfind("startxref\n") + std::string("startxref\n").size()));
    EXPECT_EQ(pdf.substr(table, 5), "xref\n");
    const std::size_t entries = pdf.find('\n', table + 5) + 1;
    const std::size_t place = std::stoul(pdf.substr(entries + 20 * std::size_t(number), 10));
    const std::string head = std::to_string(number) + " 0 obj\n";
    EXPECT_EQ(pdf.substr(place, head.size()), head);
    return pdf.substr(place + head.size());
}

// The bytes of an object's stream, inflated.
QByteArray streamOf(const std::string& object, int size)
{
    const std::size_t length = std::stoul(object.substr(object.find("/Length ") + 8));
    const std::string data = object.substr(object.find("stream\n") + 7, length);
    QByteArray compressed(4, '\0');
    for (int i = 0; i < 4; ++i)
        compressed[i] = char(size >> (8 * (3 - i)));
    compressed.append(data.data(), int(data.size()));
    return qUncompress(compressed);
}

// What a picture's stream says of its bytes, by PNG's filters "none", "left" and "above".
QByteArray bytesOf(const std::string& object, int width, int height, int channels)
{
    const int stride = width * channels;
    const QByteArray filtered = streamOf(object, (stride + 1) * height);
    EXPECT_EQ(filtered.size(), (stride + 1) * height);
    QByteArray bytes(stride * height, '\0');
    for (int y = 0; y < height; ++y) {
        const char filter = filtered[(stride + 1) * y];
        for (int i = 0; i < stride; ++i) {
            char before = 0;
            if (filter == 1 && i >= channels)
                before = bytes[stride * y + i - channels];
            else if (filter == 2 && y > 0)
                before = bytes[stride * (y - 1) + i];
            bytes[stride * y + i] = char(filtered[(stride + 1) * y + 1 + i] + before);
        }
    }
    return bytes;
}

} // namespace

TEST(WritePdf, ThePageIsAsLargeAsTheImage)
{
    // 1004 x 709 pixels of 300 to the inch.
    const std::string page = objectOf(pdfOf(noise(1004, 709, QImage::Format_RGB888)), 3);
    const std::string box = page.substr(page.find("/MediaBox[0 0 ") + 14);
    EXPECT_NEAR(std::atof(box.c_str()), 1004 / 300.0 * 72, 0.01);
    EXPECT_NEAR(std::atof(box.c_str() + box.find(' ')), 709 / 300.0 * 72, 0.01);
}

TEST(WritePdf, KeepsEveryPixel)
{
    const QImage image = noise(37, 11, QImage::Format_RGB888);
    const QByteArray bytes = bytesOf(objectOf(pdfOf(image), 5), 37, 11, 3);
    for (int y = 0; y < 11; ++y) {
        for (int x = 0; x < 37; ++x) {
            const int at = 3 * (37 * y + x);
            const QColor kept(uchar(bytes[at]), uchar(bytes[at + 1]), uchar(bytes[at + 2]));
            ASSERT_EQ(kept, image.pixelColor(x, y)) << x << " " << y;
        }
    }
    EXPECT_EQ(pdfOf(image).find("/SMask"), std::string::npos);
}

TEST(WritePdf, KeepsHowTransparentEveryPixelIs)
{
    const QImage image = noise(9, 14, QImage::Format_RGBA8888);
    const std::string pdf = pdfOf(image);
    EXPECT_NE(objectOf(pdf, 5).find("/SMask 7 0 R"), std::string::npos);
    const QByteArray colours = bytesOf(objectOf(pdf, 5), 9, 14, 3);
    const QByteArray alphas = bytesOf(objectOf(pdf, 7), 9, 14, 1);
    for (int y = 0; y < 14; ++y) {
        const uchar* row = image.constScanLine(y);
        for (int x = 0; x < 9; ++x) {
            for (int channel = 0; channel < 3; ++channel)
                ASSERT_EQ(uchar(colours[3 * (9 * y + x) + channel]), row[4 * x + channel]);
            ASSERT_EQ(uchar(alphas[9 * y + x]), row[4 * x + 3]);
        }
    }
}

TEST(WritePdf, TellsTitleCreatorAndCommandAndNoDate)
{
    QImage image = noise(2, 2, QImage::Format_RGB888);
    image.setText("Title", "(\\π)");
    image.setText("Software", "S");
    image.setText("Command", "--x");
    const std::string told = objectOf(pdfOf(image), 6);
    EXPECT_NE(told.find("/Title<FEFF0028005C03C00029>"), std::string::npos) << told;
    EXPECT_NE(told.find("/Creator<FEFF0053>"), std::string::npos);
    EXPECT_NE(told.find("/Subject<FEFF002D002D0078>"), std::string::npos);
    EXPECT_EQ(pdfOf(image).find("Date"), std::string::npos);
    EXPECT_EQ(pdfOf(image), pdfOf(image.copy()));
}

} // namespace strandview
