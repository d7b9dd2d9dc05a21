// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_SETTINGS_H
#define STRANDVIEW_APP_REQUEST_SETTINGS_H

#include <optional>
#include <string>
#include <vector>

#include "request/StyleRequest.h"

namespace strandview {

/// What a setting is, by which the window has a control for it.
enum class SettingKind {
    SWITCH, ///< "on" or "off"; an option without a value, --no- before its name switches off
    LENGTH, ///< above 0
    COUNT,  ///< a whole number
    SHARE,  ///< from 0 to 1
    COLOUR,
    CHOICE, ///< one of some words
    PARTS,  ///< some of some words, with commas
    SCALAR, ///< a name
    RANGE,
    TEXT, ///< a line, which may be empty
    NUMBER_FORMAT,
    COLOUR_MAP,
    LINE_WIDTH, ///< in pixels
    LIGHT,      ///< a direction, an intensity or both
    SHININESS,  ///< a number, or one for each light
    CLIP,       ///< a side or a normal, and a distance
    REFERENCE,  ///< a file, or "first"
    THINGS      ///< how single ones look, with semicolons; the option is given for each
};

/// One thing that a style request says, which is a text: that of its option, its control and its
/// place in a session.
struct Setting
{
    const char* name; ///< of the option, without its dashes
    SettingKind kind;
    const char* label;  ///< of the control
    const char* group;  ///< of the help
    const char* values; ///< what the option takes, in the help; null for a switch
    std::string help;

    /// What the request says, also if that is usual; nothing if it leaves it open.
    std::optional<std::string> (*value)(const StyleRequest& request);
    /// Lets the request say it. Nothing, or "found 'x', expected a length above 0" and the request
    /// is as it was.
    std::string (*read)(const std::string& text, StyleRequest& request);
    /// Lets the request leave it open.
    void (*clear)(StyleRequest& request);

    int least = 0, most = 0;             ///< of a count
    std::vector<std::string> words = {}; ///< of a choice, and of parts
    std::string neededSetting = {};      ///< without which it says nothing; empty for none
    bool isColour = false;               ///< it changes the colours of shapes, which stay
    std::string leftOpen = {};           ///< of a colour, what it is if it is left open

    /// Whether two requests say the same of it.
    bool isSame(const StyleRequest& a, const StyleRequest& b) const;
    /// Whether what it needs is said, and what that needs.
    bool isOfUse(const StyleRequest& request) const;
    /// What the request says, or nothing if that is what is usual.
    std::optional<std::string> write(const StyleRequest& request) const;
};

/// All of them, in the order of the help: the one list of what can be asked of a style.
const std::vector<Setting>& settings();
/// That of a name, or null.
const Setting* findSetting(const std::string& name);
/// That of a name, which there must be.
const Setting& settingOf(const std::string& name);

/// The options and their values that say what a request says: {"--radius", "0.1", "--no-tube"}.
std::vector<std::string> argumentsOf(const StyleRequest& request);

/// Whether both say the same but for colours.
bool differInColoursAlone(const StyleRequest& a, const StyleRequest& b);

/// Whether both say the same.
bool operator==(const StyleRequest& a, const StyleRequest& b);
inline bool operator!=(const StyleRequest& a, const StyleRequest& b) { return !(a == b); }

/// Whether a scene that shows one can show the other without other nodes: they differ at most in
/// which things are hidden or seen through, their names and new colours of theirs, the background
/// and where all is cut.
bool areOfSameNodes(const StyleRequest& shown, const StyleRequest& next);

} // namespace strandview

#endif
