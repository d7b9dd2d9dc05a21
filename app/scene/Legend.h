// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_LEGEND_H
#define STRANDVIEW_APP_SCENE_LEGEND_H

#include <memory>
#include <string>
#include <vector>

#include "request/Colour.h"
#include "request/FreeEdges.h"
#include "request/LegendLook.h"

class SoNode;

namespace strandview {

struct Colouring;

/// Of letters, in the legend's own view: what is read easily in a window or a large picture.
constexpr float LEGEND_TEXT_SIZE = 0.05f;
/// For which there is room.
constexpr float LARGEST_LEGEND_TEXT_SIZE = 0.1f;

/// The part of a view's height, at its bottom or its top, that a legend takes.
constexpr float LEGEND_HEIGHT = 0.16f;
/// What it takes of the view where it stands; at the left and the right more for larger letters.
FreeEdges roomOf(LegendPlace place, float textSize = LEGEND_TEXT_SIZE);

/// A line of a legend's text: the middle of its baseline, and its width. One that is upright reads
/// upwards.
struct LegendText
{
    std::string text;
    float x, y;
    float width;
    bool isUpright = false;
};

/// The texts of a legend, none over another, in the view of a SoLegendCamera that stands there,
/// whose border is 2 long or, where `stretch` says so, so many times as long: the title with the
/// unit, what makes the numbers values if anything does, and the numbers, as many as there is room
/// for. A title that is too long loses its end. At the left and the right it is upright, and so is
/// what makes the numbers values; numbers stand beside the bar there, but the one of a constant
/// that has no room.
///
/// In a format that is asked for there are numbers where they are exact in it. Where fewer than two
/// are, or those have no room, all are written as suits them.
std::vector<LegendText> layOutLegend(const Colouring& colouring, float textSize,
                                     const LegendLook& look = {}, float stretch = 1);

/// A framed bar with the ramp, ticks with their numbers, and the scalar's name, at a border of
/// whatever view it is drawn in, upright at the left and the right; whoever draws it looks whether
/// it is to be there.
/// Triangles at its ends show that values lie beyond them, a grey patch beside it that some are no
/// numbers. A constant has one colour and one number, and the triangles where another frame has
/// other numbers. The text is black or white, as is read on the background.
///
/// Its nodes stay, whatever it tells, which may be something else in every frame. In the thread
/// that Coin is used in.
class Legend
{
public:
    /// Which tells nothing yet.
    Legend(const Colour& background, float textSize, const LegendLook& look = {});
    ~Legend();
    Legend(const Legend&) = delete;
    Legend& operator=(const Legend&) = delete;

    /// All of it; the legend has one of its references.
    SoNode* getNode() const;
    void tell(const Colouring& colouring);
    /// Of what it tells from the next time on; it moves at once.
    void setLook(const LegendLook& look);
    void setBackground(const Colour& background);

private:
    class Nodes;
    std::unique_ptr<Nodes> nodes;
};

} // namespace strandview

#endif
