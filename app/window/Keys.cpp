// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/Keys.h"

namespace strandview {

const std::vector<KeyGroup>& keyHelp()
{
    static const std::vector<KeyGroup> groups{
        {"Mouse",
         {{"left button, drag", "turns the scene"},
          {"middle button, drag", "moves it"},
          {"wheel", "zooms"},
          {"right button, click", "tells point and arc length in the status bar"},
          {"Ctrl + left or right button, click", "brings the point clicked to the middle"},
          {"Esc", "turning, or picking: the left button tells, no drags"}}},
        {"Camera",
         {{"A D", "left, right"},
          {"W S", "up, down"},
          {"Q E", "forward, backward; a parallel view stays the same"},
          {"Alt + A, D", "orbits about the horizontal axis"},
          {"Ctrl + A, D", "orbits about the vertical axis"},
          {"Shift + A, D", "turns about the viewing axis"},
          {"Alt + W, S", "zooms in, out"},
          {"X Y Z", "seen from the side of x, y, z"},
          {"Shift + X, Y, Z", "the same with another axis up"},
          {"arrows", "move the view by a tenth, too"},
          {"Home", "the camera of the beginning"},
          {"Ctrl + 1 to 6", "seen from x, -x, y, -y, z, -z, all of it"},
          {"V", "shows all"},
          {"P", "perspective or orthographic"}}},
        {"Look",
         {{"Space", "lit, plain, wireframe"},
          {"Shift + Space", "shapes or their bounding boxes"},
          {"= -", "thicker, thinner lines"},
          {"B", "white or black background"},
          {"L", "lights"},
          {"F", "frames per second"},
          {"Return", "shows or hides wheels and buttons"}}},
        {"Program",
         {{"Ctrl + O", "opens files; they can also be dropped on the window"},
          {"F5", "reads the files again, the camera stays"},
          {"Esc", "while files are loaded: stops that, and what was shown stays"},
          {"Ctrl + P", "saves a picture of the view"},
          {"I", "saves a screenshot of any size"},
          {"Ctrl + K", "copies the camera, for --camera"},
          {"Ctrl + C", "copies what the status bar tells, all of it"},
          {"F1", "this page"},
          {"F11", "full screen, and back"},
          {"Ctrl + Q, Ctrl + W, Alt + F4", "closes the window"}}}};
    return groups;
}

} // namespace strandview
