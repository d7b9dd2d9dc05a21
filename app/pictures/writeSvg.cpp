// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/writeSvg.h"

#include <cmath>

#include <QByteArray>
#include <QImage>
#include <QString>
#include <QXmlStreamWriter>

#include "pictures/madeFrom.h"
#include "pictures/writePng.h"

namespace strandview {

namespace {

// Of whole pixels to the inch.
QString millimetres(int pixels, int perMetre)
{
    return QString::number(25.4 * pixels / std::round(perMetre * 0.0254), 'g', 8) + "mm";
}

} // namespace

void writeSvg(const QImage& image, const std::function<void(std::string_view)>& write)
{
    QByteArray png;
    writePng(image, [&png](std::string_view part) { png.append(part.data(), int(part.size())); });
    const QString width = QString::number(image.width()), height = QString::number(image.height());
    QByteArray svg;
    QXmlStreamWriter xml(&svg);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeStartElement("svg");
    xml.writeDefaultNamespace("http://www.w3.org/2000/svg");
    xml.writeNamespace("http://www.w3.org/1999/xlink", "xlink");
    xml.writeAttribute("version", "1.1");
    xml.writeAttribute("width", millimetres(image.width(), image.dotsPerMeterX()));
    xml.writeAttribute("height", millimetres(image.height(), image.dotsPerMeterY()));
    xml.writeAttribute("viewBox", "0 0 " + width + " " + height);
    xml.writeTextElement("title", image.text("Title"));
    xml.writeTextElement("desc", image.text("Command"));
    xml.writeComment(" " + image.text("Software").replace("--", "- -") + " ");
    if (const QString from = image.text(MADE_FROM); !from.isEmpty()) {
        xml.writeStartElement("metadata");
        xml.writeAttribute("id", MADE_FROM);
        xml.writeCharacters(from);
        xml.writeEndElement();
    }
    xml.writeEmptyElement("image");
    xml.writeAttribute("width", width);
    xml.writeAttribute("height", height);
    xml.writeAttribute("xlink:href", "data:image/png;base64," + png.toBase64());
    xml.writeEndElement();
    xml.writeEndDocument();
    write({svg.constData(), std::size_t(svg.size())});
}

} // namespace strandview
