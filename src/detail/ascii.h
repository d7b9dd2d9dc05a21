// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DETAIL_ASCII_H
#define STRANDVIEW_DETAIL_ASCII_H

#include <QByteArray>
#include <QString>

/// The text in plain ASCII, every other character as a question mark. (Qt's own
/// toLatin1 lets the upper half of Latin-1 through.)
inline QByteArray toAscii(const QString& text)
{
    QByteArray ascii = text.toLatin1();
    for (char& character : ascii) {
        if (static_cast<unsigned char>(character) > 127)
            character = '?';
    }
    return ascii;
}

#endif
