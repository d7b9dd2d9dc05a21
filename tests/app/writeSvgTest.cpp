// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/writeSvg.h"

#include <map>
#include <string>

#include <QByteArray>
#include <QImage>
#include <QXmlStreamReader>
#include <gtest/gtest.h>

namespace strandview {

namespace {

QImage twoColours()
{
    QImage image(1004, 2, QImage::Format_RGBA8888);
    image.fill(QColor(1, 2, 3, 4));
    image.setPixelColor(1000, 1, Qt::red);
    image.setDotsPerMeterX(11811);
    image.setDotsPerMeterY(11811);
    image.setText("Title", "a < b & c");
    image.setText("Command", "strandview --size 1x1 'a\"b'");
    return image;
}

// The texts and attributes of a document, as an XML reader finds them.
std::map<QString, QString> readSvg(const QImage& image)
{
    QByteArray svg;
    writeSvg(image, [&svg](std::string_view part) { svg.append(part.data(), int(part.size())); });
    std::map<QString, QString> found;
    QXmlStreamReader xml(svg);
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        const QString element = xml.name().toString();
        for (const QXmlStreamAttribute& attribute : xml.attributes())
            found[element + "." + attribute.qualifiedName()] = attribute.value().toString();
        if (element == "title" || element == "desc")
            found[element] = xml.readElementText();
    }
    EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
    return found;
}

} // namespace

TEST(WriteSvg, IsAsLargeInPrintAsTheImage)
{
    const auto svg = readSvg(twoColours());
    EXPECT_TRUE(svg.at("svg.width").endsWith("mm"));
    EXPECT_NEAR(svg.at("svg.width").chopped(2).toDouble(), 1004 * 25.4 / 300, 0.001);
    EXPECT_NEAR(svg.at("svg.height").chopped(2).toDouble(), 2 * 25.4 / 300, 0.001);
    EXPECT_EQ(svg.at("svg.viewBox"), "0 0 1004 2");
}

TEST(WriteSvg, KeepsEveryPixel)
{
    const auto svg = readSvg(twoColours());
    const QString data = svg.at("image.xlink:href");
    const QString head = "data:image/png;base64,";
    ASSERT_TRUE(data.startsWith(head));
    const QImage kept =
        QImage::fromData(QByteArray::fromBase64(data.mid(head.size()).toLatin1()), "png");
    EXPECT_EQ(kept.convertToFormat(QImage::Format_RGBA8888), twoColours());
    EXPECT_EQ(svg.at("image.width"), "1004");
    EXPECT_EQ(svg.at("image.height"), "2");
}

TEST(WriteSvg, TellsTitleAndCommand)
{
    const auto svg = readSvg(twoColours());
    EXPECT_EQ(svg.at("title"), "a < b & c");
    EXPECT_EQ(svg.at("desc"), "strandview --size 1x1 'a\"b'");
}

} // namespace strandview
