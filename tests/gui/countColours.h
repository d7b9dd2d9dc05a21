// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_COUNTCOLOURS_H
#define STRANDVIEW_TESTS_COUNTCOLOURS_H

#include <set>

#include <QImage>
#include <QPixmap>
#include <QScreen>
#include <QWidget>

/// How many colours the screen shows of a widget: more where edges are smooth.
inline int countColours(const QWidget& widget)
{
    const QImage image = widget.screen()->grabWindow(widget.winId()).toImage();
    std::set<QRgb> colours;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            colours.insert(image.pixel(x, y));
    return int(colours.size());
}

#endif
