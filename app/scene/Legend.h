// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_LEGEND_H
#define STRANDVIEW_APP_SCENE_LEGEND_H

#include <memory>
#include <string>
#include <vector>

#include "request/Colour.h"

class SoNode;

namespace strandview {

struct Colouring;

/// Of letters, in the legend's own view: what is read easily in a window or a large picture.
constexpr float LEGEND_TEXT_SIZE = 0.05f;
/// For which there is room.
constexpr float LARGEST_LEGEND_TEXT_SIZE = 0.1f;

/// The part of a view's height, at its bottom, that a legend takes.
constexpr float LEGEND_HEIGHT = 0.16f;

/// A line of a legend's text: its middle, and its width.
struct LegendText
{
    std::string text;
    float x, y;
    float width;
};

/// The texts of a legend, none over another, in its own view, which is 2 high and 2 wide or
/// more; y is -1 at its bottom and x is 0 in the middle: the name, what makes the numbers values if
/// anything does, and the numbers, as many as there is room for.
std::vector<LegendText> layOutLegend(const Colouring& colouring, float textSize);

/// A framed bar with the ramp, ticks with their numbers, and the scalar's name, at the bottom of
/// whatever view it is drawn in. Triangles at its ends show that values lie beyond them, a grey
/// patch beside it that some are no numbers. A constant has one colour and one number, and the
/// triangles where another frame has other numbers. The text is black or white, as is read on the
/// background.
///
/// Its nodes stay, whatever it tells, which may be something else in every frame. In the thread
/// that Coin is used in.
class Legend
{
public:
    /// Which tells nothing yet.
    Legend(const Colour& background, float textSize);
    ~Legend();
    Legend(const Legend&) = delete;
    Legend& operator=(const Legend&) = delete;

    /// All of it; the legend has one of its references.
    SoNode* getNode() const;
    void tell(const Colouring& colouring);
    void setBackground(const Colour& background);

private:
    class Nodes;
    std::unique_ptr<Nodes> nodes;
};

} // namespace strandview

#endif
