// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_NOISE_H
#define STRANDVIEW_TESTS_NOISE_H

#include <random>

#include <QImage>

namespace strandview {

/// Every byte by chance, of seed 1, with 300 pixels to the inch.
inline QImage noise(int width, int height, QImage::Format format)
{
    QImage image(width, height, format);
    std::mt19937 random(1);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, QRgb(random()));
    }
    image.setDotsPerMeterX(11811);
    image.setDotsPerMeterY(11811);
    return image;
}

} // namespace strandview

#endif
