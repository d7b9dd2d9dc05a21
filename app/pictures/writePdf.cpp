// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/writePdf.h"

#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <new>
#include <string>
#include <vector>

#include <QImage>

#include "pictures/madeFrom.h"
#include "pictures/writePng.h"

namespace strandview {

namespace {

// A document of PDF (ISO 32000-1:2008). A library that draws pages would need the fonts of a
// desktop, and tell when it did.
class Document
{
public:
    explicit Document(const std::function<void(std::string_view)>& writeBytes) : write(writeBytes)
    {
        put("%PDF-1.4\n%\xe2\xe3\xcf\xd3\n"); // the second line says that there are bytes
    }

    /// Objects come in the order of their numbers, from 1.
    void add(const std::string& dictionary)
    {
        begin();
        put("<<" + dictionary + ">>\nendobj\n");
    }
    void add(const std::string& dictionary, std::string_view stream)
    {
        begin();
        put("<<" + dictionary + "/Length " + std::to_string(stream.size()) + ">>\nstream\n");
        put(stream);
        put("\nendstream\nendobj\n");
    }

    void finish(const std::string& trailer)
    {
        const std::string count = std::to_string(places.size() + 1);
        std::string table = "xref\n0 " + count + "\n0000000000 65535 f \n";
        for (const std::size_t place : places) {
            char entry[32];
            std::snprintf(entry, sizeof entry, "%010zu 00000 n \n", place);
            table += entry;
        }
        const std::size_t begun = size;
        put(table + "trailer\n<<" + trailer + "/Size " + count + ">>\nstartxref\n" +
            std::to_string(begun) + "\n%%EOF\n");
    }

private:
    void begin()
    {
        places.push_back(size);
        put(std::to_string(places.size()) + " 0 obj\n");
    }
    void put(std::string_view bytes)
    {
        write(bytes);
        size += bytes.size();
    }

    const std::function<void(std::string_view)>& write;
    std::size_t size = 0;
    std::vector<std::size_t> places; ///< where objects begin
};

// Any characters: UTF-16 with its mark, in hexadecimal digits.
std::string textOf(const QString& text)
{
    std::string digits = "<FEFF";
    for (const QChar unit : text) {
        char four[8];
        std::snprintf(four, sizeof four, "%04X", unsigned(unit.unicode()));
        digits += four;
    }
    return digits + ">";
}

std::string entryOf(const std::string& name, const QString& text)
{
    return text.isEmpty() ? "" : "/" + name + textOf(text);
}

// A 72nd of an inch, of which there are whole pixels.
std::string points(int pixels, int perMetre)
{
    return QString::number(72.0 * pixels / std::round(perMetre * 0.0254), 'f', 4).toStdString();
}

std::string dictionaryOf(const QImage& image, const char* colours, int channels)
{
    const std::string width = std::to_string(image.width());
    return "/Type/XObject/Subtype/Image/Width " + width + "/Height " +
           std::to_string(image.height()) + "/ColorSpace/" + colours +
           "/BitsPerComponent 8/Filter/FlateDecode/DecodeParms<</Predictor 15/Colors " +
           std::to_string(channels) + "/Columns " + width + ">>";
}

// The channels from `first` on of each pixel of four bytes.
QImage channelsOf(const QImage& image, int first, QImage::Format format)
{
    QImage part(image.size(), format);
    if (part.isNull())
        throw std::bad_alloc();
    const int count = part.depth() / 8;
    for (int y = 0; y < image.height(); ++y) {
        const uchar* from = image.constScanLine(y) + first;
        uchar* to = part.scanLine(y);
        for (int x = 0; x < image.width(); ++x, from += 4) {
            for (int channel = 0; channel < count; ++channel)
                *to++ = from[channel];
        }
    }
    return part;
}

} // namespace

void writePdf(const QImage& any, const std::function<void(std::string_view)>& write)
{
    const bool isTransparent = any.hasAlphaChannel();
    const QImage image =
        any.convertToFormat(isTransparent ? QImage::Format_RGBA8888 : QImage::Format_RGB888);
    if (image.isNull())
        throw std::bad_alloc();
    const QImage colours = isTransparent ? channelsOf(image, 0, QImage::Format_RGB888) : image;
    const CompressedRows rows = compressRows(colours);
    const std::string width = points(image.width(), image.dotsPerMeterX());
    const std::string height = points(image.height(), image.dotsPerMeterY());

    Document document(write);
    document.add("/Type/Catalog/Pages 2 0 R");
    document.add("/Type/Pages/Kids[3 0 R]/Count 1");
    document.add("/Type/Page/Parent 2 0 R/MediaBox[0 0 " + width + " " + height +
                 "]/Contents 4 0 R/Resources<</XObject<</Picture 5 0 R>>>>");
    document.add("", "q " + width + " 0 0 " + height + " 0 0 cm /Picture Do Q");
    document.add(dictionaryOf(image, "DeviceRGB", 3) + (isTransparent ? "/SMask 7 0 R" : ""),
                 rows.view());
    document.add(entryOf("Title", any.text("Title")) + entryOf("Subject", any.text("Command")) +
                 entryOf("Creator", any.text("Software")) +
                 entryOf(MADE_FROM, any.text(MADE_FROM)));
    if (isTransparent)
        document.add(dictionaryOf(image, "DeviceGray", 1),
                     compressRows(channelsOf(image, 3, QImage::Format_Grayscale8)).view());
    document.finish("/Root 1 0 R/Info 6 0 R");
}

std::string textOfPdf(std::string_view document, const std::string& name)
{
    const std::string before = "/" + name + "<FEFF";
    const std::size_t entry = document.rfind(before);
    if (entry == std::string_view::npos)
        return "";
    document.remove_prefix(entry + before.size());
    QString text;
    for (; document.find('>') >= 4 && document.size() > 4; document.remove_prefix(4)) {
        unsigned unit = 0;
        const auto read = std::from_chars(document.data(), document.data() + 4, unit, 16);
        if (read.ptr != document.data() + 4)
            return "";
        text += QChar(ushort(unit));
    }
    return text.toStdString();
}

} // namespace strandview
