// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/actions.h"

#include <algorithm>
#include <utility>

namespace strandview {

namespace {

using V = SoQtGeneralViewer;

const char* const MOVE = "&Move";
const char* const ZOOM = "&Zoom";
const char* const TURN = "&Turn";
const char* const FROM_HERE = "From where it &is";
const char* const ADD_VIEW = "Add a vie&w";

// A step of the camera: the viewer has a key for each.
Action step(const char* submenu, const char* text, const char* keys, V::CameraStep deed,
            const char* help = nullptr, unsigned more = 0)
{
    return {text, keys, help, deed, NEEDS_SCENE | KEY_OF_VIEWER | more, submenu};
}

ActionGroup mouse()
{
    return {
        "Mouse",
        {{nullptr, "left button, drag", "turns the scene"},
         {nullptr, "middle button, drag", "moves it"},
         {nullptr, "wheel", "zooms"},
         {nullptr, "right button, click", "tells point and arc length in the status bar"},
         {nullptr, "left button, click", "with the panel of numbers open: tells them all there"},
         {nullptr, "Shift + such a click", "measures: distance, angle, dihedral angle"},
         {nullptr, "Ctrl + left or right button, click",
          "brings the point clicked to the middle"}}};
}

ActionGroup file()
{
    using C = Command;
    return {
        "&File",
        {{"&Open...", "Ctrl+O", "opens files; they can also be dropped on the window", C::OPEN,
          IN_TOOL_BAR},
         {"Open &recent", "", nullptr, C::OPEN_RECENT, WITH_SUBMENU},
         {"S&top loading", "Esc", "while files are loaded: stops that, and what was shown stays",
          C::STOP_LOADING, 0, nullptr, "Stop"},
         {"Read a&gain", "F5", "reads the files again, the camera stays", C::READ_AGAIN,
          NEEDS_SCENE},
         {"Read again when files change", "Shift+F5",
          "reads them again whenever they change, or no more", C::WATCH_FILES, CHECKABLE},
         {"Save s&ession", "Ctrl+S", "saves the session, to open another day", C::SAVE_SESSION,
          NEEDS_SCENE | AFTER_A_LINE},
         {"Save session as...", "", nullptr, C::SAVE_SESSION_AS, NEEDS_SCENE},
         {"&Save a picture...", "Ctrl+P", "saves a picture of the view", C::SAVE_PICTURE,
          NEEDS_SCENE | IN_TOOL_BAR | AFTER_A_LINE | BEFORE_TOOL_LINE},
         {"S&creenshot...", "I", "saves a screenshot of any size", C::TAKE_SCREENSHOT,
          NEEDS_SCENE | KEY_OF_VIEWER},
         {"Copy c&amera", "Ctrl+K", "copies the camera, for --camera", C::COPY_CAMERA, NEEDS_SCENE},
         {"Copy comman&d", "Ctrl+Shift+C", "copies the command line that makes this picture",
          C::COPY_COMMAND, NEEDS_SCENE},
         {"Copy s&tatus text", "Ctrl+C", "copies what the status bar tells, all of it",
          C::COPY_STATUS},
         {"Save as de&faults...", "", nullptr, C::SAVE_DEFAULTS, AFTER_A_LINE},
         {"C&lose", "Ctrl+W", "closes the window", C::CLOSE, AFTER_A_LINE},
         {"&Quit", "Ctrl+Q", nullptr, C::QUIT},
         {nullptr, "Alt + F4", "closes it, too, where the desktop has that key"}}};
}

ActionGroup edit()
{
    return {"&Edit",
            {{"&Undo", "Ctrl+Z", "takes back what was changed of look, things and camera",
              Command::UNDO},
             {"&Redo", "Ctrl+Shift+Z", "does it again", Command::REDO}}};
}

// Long, as the menu is.
ActionGroup view()
{
    using C = Command;
    return {
        "&View",
        {{"View &all", "V", "shows all", C::VIEW_ALL, NEEDS_SCENE | IN_TOOL_BAR},
         // The viewer's own key is off while it picks.
         {"As at the &beginning", "Home", "the camera of the beginning", C::GO_HOME, NEEDS_SCENE},
         {"From x", "Ctrl+1", "seen from x, -x, y, -y, z, -z, all of it", Side::X,
          NEEDS_SCENE | IN_TOOL_BAR | AFTER_A_LINE},
         {"From -x", "Ctrl+2", nullptr, Side::MINUS_X, NEEDS_SCENE},
         {"From y", "Ctrl+3", nullptr, Side::Y, NEEDS_SCENE | IN_TOOL_BAR},
         {"From -y", "Ctrl+4", nullptr, Side::MINUS_Y, NEEDS_SCENE},
         {"From z", "Ctrl+5", nullptr, Side::Z, NEEDS_SCENE | IN_TOOL_BAR},
         {"From -z", "Ctrl+6", nullptr, Side::MINUS_Z, NEEDS_SCENE},
         {"&Keep this view...", "Ctrl+Shift+V", "keeps this view by a name", C::KEEP_VIEW,
          NEEDS_SCENE | AFTER_A_LINE},
         {"&Named views", "", nullptr, C::NAMED_VIEWS, WITH_SUBMENU},
         {nullptr, "Alt + 1 to 9", "the views that were kept"},
         {"&Perspective", "P", "perspective or orthographic", C::SET_PERSPECTIVE,
          NEEDS_SCENE | CHECKABLE | IN_TOOL_BAR | AFTER_A_LINE},
         {"Side &by side", "F3", "a second view: reference, first frame or another side",
          C::SHOW_BESIDE, NEEDS_SCENE | CHECKABLE | AFTER_A_LINE},
         {"Fo&ur views", "Ctrl+F3", "four views: as it is, from the front, the right and above",
          C::FOUR_VIEWS, NEEDS_SCENE},
         {"Of the &same", "", nullptr, C::ADD_SAME, NEEDS_SCENE, ADD_VIEW},
         {"Of the &first frame", "", nullptr, C::ADD_FIRST_FRAME, NEEDS_SCENE, ADD_VIEW},
         {"Of a fi&le...", "", nullptr, C::ADD_FILE, NEEDS_SCENE, ADD_VIEW},
         {"Views move &together", "Shift+F3", "all views move together, or each by itself",
          C::TIE_VIEWS, NEEDS_SCENE | CHECKABLE},
         {"&Full screen", "F11", "full screen, and back", C::SET_FULL_SCREEN, CHECKABLE},
         step(MOVE, "Left", "A", V::MOVE_LEFT, "left, right", AFTER_A_LINE),
         step(MOVE, "Right", "D", V::MOVE_RIGHT),
         step(MOVE, "Up", "W", V::MOVE_UP, "up, down"),
         step(MOVE, "Down", "S", V::MOVE_DOWN),
         step(MOVE, "Forward", "Q", V::MOVE_FORWARD,
              "forward, backward; a parallel view stays the same"),
         step(MOVE, "Backward", "E", V::MOVE_BACKWARD),
         {nullptr, "arrows", "move the view by a tenth, too"},
         step(ZOOM, "In", "Alt+W", V::ZOOM_IN, "zooms in, out"),
         step(ZOOM, "Out", "Alt+S", V::ZOOM_OUT),
         step(TURN, "About the horizontal axis", "Alt+D", V::ORBIT_HORIZONTALLY,
              "orbits about the horizontal axis, and back"),
         step(TURN, "And back", "Alt+A", V::ORBIT_HORIZONTALLY_BACK),
         step(TURN, "About the vertical axis", "Ctrl+D", V::ORBIT_VERTICALLY,
              "orbits about the vertical axis, and back"),
         step(TURN, "And back", "Ctrl+A", V::ORBIT_VERTICALLY_BACK),
         step(TURN, "About the viewing axis", "Shift+D", V::ROLL,
              "turns about the viewing axis, and back"),
         step(TURN, "And back", "Shift+A", V::ROLL_BACK),
         step(FROM_HERE, "x, z up", "X", V::FROM_X_Z_UP, "seen from the side of x, y, z"),
         step(FROM_HERE, "y, z up", "Y", V::FROM_Y_Z_UP),
         step(FROM_HERE, "z, y up", "Z", V::FROM_Z_Y_UP),
         step(FROM_HERE, "x, y up", "Shift+X", V::FROM_X_Y_UP, "the same with another axis up"),
         step(FROM_HERE, "y, x up", "Shift+Y", V::FROM_Y_X_UP),
         step(FROM_HERE, "z, x up", "Shift+Z", V::FROM_Z_X_UP)}};
}

ActionGroup look()
{
    using C = Command;
    return {
        "&Look",
        {{"Lit, plain, &wireframe", "Space", "lit, plain, wireframe", C::CYCLE_SHADING,
          NEEDS_SCENE | IN_TOOL_BAR | KEY_OF_VIEWER, nullptr, "Draw style"},
         {"&Lights...", "L", "lights", C::SET_LIGHTS, NEEDS_SCENE | IN_TOOL_BAR | KEY_OF_VIEWER,
          nullptr, "Lights"},
         {"Bounding &boxes", "Shift+Space", "shapes or their bounding boxes", C::TOGGLE_BOXES,
          NEEDS_SCENE | CHECKABLE | KEY_OF_VIEWER},
         {"&Colours of data", "", nullptr, C::SHOW_COLOURS, CHECKABLE},
         {"Clipp&ing plane", "/", "cuts things open, with handles to move the plane", C::MOVE_CLIP,
          NEEDS_SCENE | CHECKABLE},
         {"&Thicker lines", "=", "thicker, thinner lines", C::THICKEN_LINES,
          NEEDS_SCENE | KEY_OF_VIEWER},
         {"Thi&nner lines", "-", nullptr, C::THIN_LINES, NEEDS_SCENE | KEY_OF_VIEWER},
         {"White or black &background", "B", "white or black background", C::TOGGLE_BACKGROUND,
          AFTER_A_LINE | KEY_OF_VIEWER},
         {"A&xes in the corner", "", nullptr, C::SHOW_AXES, CHECKABLE},
         {"&Frames per second", "F", "frames per second", C::TOGGLE_FRAMES,
          CHECKABLE | KEY_OF_VIEWER},
         {"W&heels and buttons", "Return", "shows or hides wheels and buttons", C::TOGGLE_WHEELS,
          CHECKABLE | KEY_OF_VIEWER},
         {"&Picking instead of turning", "Esc",
          "turning, or picking: the left button tells, no drags", C::TOGGLE_PICKING,
          CHECKABLE | KEY_OF_VIEWER},
         {"L&ook of things", "O", "a panel: how tubes, ribbons and DNA look", C::SHOW_LOOK,
          CHECKABLE | AFTER_A_LINE},
         {"Colou&rs by data", "C", "a panel: colours by a scalar, their map and range",
          C::SHOW_COLOUR_SETTINGS, CHECKABLE},
         {"N&umbers of a place", "N", "a panel: numbers of what is clicked; keeps what is measured",
          C::SHOW_NUMBERS, CHECKABLE},
         {"Keep the &measurement", "M", nullptr, C::KEEP_MEASUREMENT, NEEDS_SCENE},
         {"&Things", "T", "a panel: all that is shown, to choose, hide, name, colour and find",
          C::SHOW_THINGS, CHECKABLE},
         {"Cur&ves of numbers", "G", "a panel: curves of numbers along what is shown",
          C::SHOW_CURVES, CHECKABLE}}};
}

ActionGroup play()
{
    using C = Command;
    return {
        "&Play",
        {{"&Play", "K", "plays the frames of a series, or stops there", C::PLAY,
          NEEDS_SERIES | CHECKABLE},
         {"Frame &back", ",", "a frame back, forward", C::FRAME_BACK, NEEDS_SERIES | AFTER_A_LINE},
         {"Frame f&orward", ".", nullptr, C::FRAME_FORWARD, NEEDS_SERIES},
         {"&Ten frames back", "<", "ten frames back, forward", C::TEN_FRAMES_BACK, NEEDS_SERIES},
         {"Ten frames for&ward", ">", nullptr, C::TEN_FRAMES_FORWARD, NEEDS_SERIES},
         {"&First frame", "Ctrl+Home", "the first frame of the range, the last", C::FIRST_FRAME,
          NEEDS_SERIES},
         {"&Last frame", "Ctrl+End", nullptr, C::LAST_FRAME, NEEDS_SERIES},
         {"Range &starts here", "[", "lets the range start, end with this frame; again: with all",
          C::START_RANGE, NEEDS_SERIES | AFTER_A_LINE},
         {"Range &ends here", "]", nullptr, C::END_RANGE, NEEDS_SERIES}}};
}

ActionGroup help()
{
    return {
        "&Help",
        {{"&Keys", "F1", "this page", Command::SHOW_KEYS},
         {"&About strandview", "", nullptr, Command::SHOW_ABOUT, IN_TOOL_BAR, nullptr, "About"}}};
}

std::string withoutMark(std::string title)
{
    title.erase(std::remove(title.begin(), title.end(), '&'), title.end());
    return title;
}

// "Ctrl" and "O" of "Ctrl+O".
std::pair<std::string, std::string> splitKey(const std::string& keys)
{
    const std::size_t plus = keys.rfind('+');
    if (plus == std::string::npos || plus == 0)
        return {"", keys};
    return {keys.substr(0, plus), keys.substr(plus + 1)};
}

bool areDigitsInARow(const std::vector<std::string>& keys)
{
    for (std::size_t i = 0; i < keys.size(); ++i) {
        if (keys[i].size() != 1 || keys[i][0] < '0' || keys[i][0] > '9' ||
            keys[i][0] != keys[0][0] + int(i))
            return false;
    }
    return keys.size() > 2;
}

// "A D"; "Ctrl + 1 to 6"; "Alt + W, S". The modifier of the first is that of all.
std::string joinKeys(const std::vector<std::string>& sequences)
{
    std::string modifier = splitKey(sequences.front()).first;
    for (std::size_t plus = 0; (plus = modifier.find('+', plus)) != std::string::npos; plus += 3)
        modifier.replace(plus, 1, " + ");
    std::vector<std::string> keys;
    keys.reserve(sequences.size());
    for (const std::string& sequence : sequences)
        keys.push_back(splitKey(sequence).second);
    std::string joined = modifier.empty() ? "" : modifier + " + ";
    if (areDigitsInARow(keys))
        return joined + keys.front() + " to " + keys.back();
    joined += keys.front();
    for (std::size_t i = 1; i < keys.size(); ++i)
        joined += (modifier.empty() ? " " : ", ") + keys[i];
    return joined;
}

KeyGroup helpOf(const ActionGroup& group)
{
    KeyGroup page{withoutMark(group.title), {}};
    std::vector<std::string> keys; // of the last line
    for (const Action& action : group.actions) {
        const std::string key = action.keys;
        if (key.empty())
            continue;
        if (!action.text) {
            page.keys.push_back({key, action.help});
            continue;
        }
        if (action.help) {
            page.keys.push_back({"", action.help});
            keys.clear();
        }
        keys.push_back(key);
        page.keys.back().key = joinKeys(keys);
    }
    return page;
}

} // namespace

const std::vector<ActionGroup>& actions()
{
    static const std::vector<ActionGroup> groups{mouse(), file(), edit(), view(),
                                                 look(),  play(), help()};
    return groups;
}

std::vector<KeyGroup> keyHelp()
{
    std::vector<KeyGroup> page;
    page.reserve(actions().size());
    for (const ActionGroup& group : actions())
        page.push_back(helpOf(group));
    return page;
}

} // namespace strandview
