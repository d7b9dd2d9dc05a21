// SPDX-License-Identifier: GPL-3.0-or-later
#include "renderPicture.h"

#include <algorithm>

#include <Inventor/SbColor.h>
#include <Inventor/SbViewportRegion.h>
#include <Inventor/SoOffscreenRenderer.h>

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

int Picture::countDifferences(const Picture& other) const
{
    int count = 0;
    for (std::size_t i = 0; i < pixels.size(); ++i)
        count += pixels[i] != other.pixels.at(i);
    return count;
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
    return Picture(size[0], size[1], renderer.getBuffer());
}
