// SPDX-License-Identifier: GPL-3.0-or-later
#include "renderPicture.h"

#include <algorithm>
#include <cstdlib>

#include <Inventor/SbColor.h>
#include <Inventor/SbViewportRegion.h>
#include <Inventor/SoOffscreenRenderer.h>
#include <gtest/gtest.h>

#include "support/keepPictures.h"

Picture::Picture(int pictureWidth, int pictureHeight, const unsigned char* rgb)
    : width(pictureWidth), height(pictureHeight)
{
    for (int i = 0; i < width * height; ++i)
        pixels.push_back({rgb[3 * i], rgb[3 * i + 1], rgb[3 * i + 2]});
}

Colour Picture::getColour(int x, int y) const { return pixels.at(y * width + x); }

int Picture::count(const Colour& colour) const
{
    return static_cast<int>(std::count(pixels.begin(), pixels.end(), colour));
}

int Picture::countOther(const Colour& colour) const
{
    return static_cast<int>(pixels.size()) - count(colour);
}

QImage Picture::toImage() const
{
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const Colour& colour = pixels[std::size_t(y) * width + x];
            image.setPixel(x, height - 1 - y, qRgb(colour[0], colour[1], colour[2]));
        }
    }
    return image;
}

Difference compare(const Picture& a, const Picture& b)
{
    keepIfFailed(a.toImage(), b.toImage());
    Difference result;
    EXPECT_TRUE(a.isRendered());
    EXPECT_EQ(b.pixels.size(), a.pixels.size());
    for (std::size_t i = 0; i < std::min(a.pixels.size(), b.pixels.size()); ++i) {
        int largest = 0;
        for (std::size_t k = 0; k < 3; ++k)
            largest = std::max(largest, std::abs(a.pixels[i][k] - b.pixels[i][k]));
        result.pixels += largest > 0;
        result.strong += largest > 1;
        result.covered += a.pixels[i] != BLACK || b.pixels[i] != BLACK;
        result.largest = std::max(result.largest, largest);
    }
    return result;
}

std::ostream& operator<<(std::ostream& stream, const Difference& difference)
{
    return stream << difference.pixels << " of " << difference.covered << " pixels, "
                  << difference.strong << " by more than one level, at most by "
                  << difference.largest;
}

Picture renderPicture(SoNode* scene, int width, int height)
{
    const SbViewportRegion viewport(static_cast<short>(width), static_cast<short>(height));
    // One for the whole program: a context takes longer than the pictures.
    static SoOffscreenRenderer renderer(viewport);
    renderer.setViewportRegion(viewport);
    return renderPicture(renderer, scene);
}

Picture renderPicture(SoOffscreenRenderer& renderer, SoNode* scene)
{
    renderer.setComponents(SoOffscreenRenderer::RGB);
    renderer.setBackgroundColor(SbColor(0, 0, 0));
    if (!renderer.render(scene))
        return Picture();
    const SbVec2s size = renderer.getViewportRegion().getViewportSizePixels();
    const Picture picture(size[0], size[1], renderer.getBuffer());
    keepIfFailed(picture.toImage());
    return picture;
}
