// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_ACTIONS_H
#define STRANDVIEW_APP_WINDOW_ACTIONS_H

#include <string>
#include <variant>
#include <vector>

#include <SoQtGeneralViewer.h>

#include "request/Side.h"

namespace strandview {

/// What the window does for its user, besides moving the camera.
enum class Command {
    OPEN,
    OPEN_RECENT,
    STOP_LOADING,
    READ_AGAIN,
    SAVE_SESSION,
    SAVE_SESSION_AS,
    WATCH_FILES,
    SAVE_PICTURE,
    TAKE_SCREENSHOT,
    COPY_CAMERA,
    COPY_COMMAND,
    SAVE_DEFAULTS,
    COPY_STATUS,
    CLOSE,
    QUIT,
    UNDO,
    REDO,
    VIEW_ALL,
    GO_HOME,
    KEEP_VIEW,
    NAMED_VIEWS,
    SET_PERSPECTIVE,
    SHOW_BESIDE,
    TIE_VIEWS,
    FOUR_VIEWS,
    ADD_SAME,
    ADD_FIRST_FRAME,
    ADD_FILE,
    SET_FULL_SCREEN,
    CYCLE_SHADING,
    SET_LIGHTS,
    TOGGLE_BOXES,
    SHOW_COLOURS,
    MOVE_CLIP,
    THICKEN_LINES,
    THIN_LINES,
    TOGGLE_BACKGROUND,
    SHOW_AXES,
    TOGGLE_FRAMES,
    TOGGLE_WHEELS,
    TOGGLE_PICKING,
    SHOW_LOOK,
    SHOW_COLOUR_SETTINGS,
    SHOW_NUMBERS,
    KEEP_MEASUREMENT,
    SHOW_THINGS,
    SHOW_CURVES,
    PLAY,
    FIRST_FRAME,
    FRAME_BACK,
    FRAME_FORWARD,
    LAST_FRAME,
    TEN_FRAMES_BACK,
    TEN_FRAMES_FORWARD,
    START_RANGE,
    END_RANGE,
    SHOW_KEYS,
    SHOW_ABOUT
};

/// A command, a step of the camera, or a side that all is seen from.
using Deed = std::variant<Command, SoQtGeneralViewer::CameraStep, Side>;

/// Of an action; any of them together.
enum ActionTrait : unsigned {
    NEEDS_SCENE = 1,
    CHECKABLE = 2,
    IN_TOOL_BAR = 4,
    AFTER_A_LINE = 8,      ///< a line in the menu is above it, or above the submenu it begins
    KEY_OF_VIEWER = 16,    ///< the viewer takes the key itself, the menu only names it
    WITH_SUBMENU = 32,     ///< filled when it is shown
    BEFORE_TOOL_LINE = 64, ///< a line in the tool bar follows
    NEEDS_SERIES = 128     ///< of several frames
};

/// One thing that the user can do. Without a text it is no entry of a menu: what is done with
/// the mouse, or by a key that others take.
struct Action
{
    const char* text; ///< in the menu; & before the letter that chooses it
    const char* keys; ///< "Ctrl+O"; without a text as the help page has it
    const char* help; ///< what the help page says; null: it is told with the one before
    Deed deed = Command::OPEN;
    unsigned traits = 0;
    const char* submenu = nullptr;   ///< where it is in the menu, if not directly there
    const char* shortText = nullptr; ///< on buttons, if not the text
};

struct ActionGroup
{
    const char* title; ///< the menu's
    std::vector<Action> actions;
};

/// Everything in the window that is reached by menu, key or mouse: menus, tool bar and help page
/// are made from it, in this order. The README has the same.
const std::vector<ActionGroup>& actions();

/// One line of the help page, such as "Alt + W, S" and "zooms in, out".
struct KeyHelp
{
    std::string key;
    std::string does;
};
struct KeyGroup
{
    std::string title;
    std::vector<KeyHelp> keys;
};

/// The help page: the actions that have keys.
std::vector<KeyGroup> keyHelp();

} // namespace strandview

#endif
