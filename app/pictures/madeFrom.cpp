// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/madeFrom.h"

#include <QByteArray>
#include <QFile>
#include <QImageReader>
#include <QString>
#include <QXmlStreamReader>

#include "pictures/writePdf.h"

namespace strandview {

namespace {

// It stands before the picture itself, which is long.
std::string madeFromOfSvg(QFile& svg)
{
    QXmlStreamReader xml(&svg);
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == "image")
            return "";
        if (xml.name() == "metadata" && xml.attributes().value("id") == MADE_FROM)
            return xml.readElementText().toStdString();
    }
    return "";
}

} // namespace

std::string madeFrom(const std::string& file)
{
    const QString name = QString::fromStdString(file);
    QFile bytes(name);
    if (!bytes.open(QIODevice::ReadOnly))
        return "";
    const QByteArray beginning = bytes.peek(5);
    if (beginning == "%PDF-")
        return textOfPdf(bytes.readAll().toStdString(), MADE_FROM);
    if (beginning == "<?xml")
        return madeFromOfSvg(bytes);
    QImageReader reader(&bytes);
    const QByteArray format = reader.format();
    return format == "png" || format == "jpeg" ? reader.text(MADE_FROM).toStdString() : "";
}

} // namespace strandview
