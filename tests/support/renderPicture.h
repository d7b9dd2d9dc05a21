// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_RENDERPICTURE_H
#define STRANDVIEW_TESTS_RENDERPICTURE_H

#include <array>
#include <ostream>
#include <vector>

#include <QImage>

class SoNode;
class SoOffscreenRenderer;

/// Red, green and blue from 0 to 255.
using Colour = std::array<int, 3>;

const Colour BLACK = {0, 0, 0};
const Colour RED = {255, 0, 0};
const Colour GREEN = {0, 255, 0};

/// How two pictures of one size differ.
struct Difference
{
    int pixels = 0; ///< that differ at all
    int largest = 0;
    int strong = 0;  ///< that differ by more than one level of 255
    int covered = 0; ///< that are not black in both
};

/// A small picture, asked for facts. Pixel (0, 0) is the lower left one.
class Picture
{
public:
    /// Without pixels if the scene could not be rendered.
    Picture() = default;
    Picture(int pictureWidth, int pictureHeight, const unsigned char* rgb);

    bool isRendered() const { return !pixels.empty(); }
    Colour getColour(int x, int y) const;
    /// The number of pixels of exactly this colour.
    int count(const Colour& colour) const;
    /// The number of pixels that are not of this colour.
    int countOther(const Colour& colour) const;
    /// As it is seen, the upper row first.
    QImage toImage() const;

private:
    friend Difference compare(const Picture& a, const Picture& b);

    int width = 0;
    int height = 0;
    std::vector<Colour> pixels;
};

Difference compare(const Picture& a, const Picture& b);
std::ostream& operator<<(std::ostream& stream, const Difference& difference);

/// Renders a scene, which brings its own camera, on black, without a display.
Picture renderPicture(SoNode* scene, int width, int height);
/// The same with a renderer of one's own, which has an OpenGL context of its own.
Picture renderPicture(SoOffscreenRenderer& renderer, SoNode* scene);

#endif
