// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_KEYS_H
#define STRANDVIEW_APP_WINDOW_KEYS_H

#include <string>
#include <vector>

namespace strandview {

/// One thing that the user can press, click or turn, and what it does.
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

/// Everything in the window that is reached by key or mouse, for the help page. The
/// README has the same.
const std::vector<KeyGroup>& keyHelp();

} // namespace strandview

#endif
