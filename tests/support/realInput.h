// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_REALINPUT_H
#define STRANDVIEW_TESTS_REALINPUT_H

#include <string>

// Keys and mouse as the X server gives them to whoever has the keyboard, or is below the pointer:
// not to a widget that a test chose.

/// Presses and releases a key by its name, such as "k", "comma", "less", with what else has to be
/// held for it; "Control+Home" with that.
void pressRealKey(const std::string& name);

// Places are pixels of the screen.

/// Presses the left button there, moves on, and releases it.
void dragRealPointer(int fromX, int fromY, int toX, int toY);
/// Presses and releases the left button there.
void clickRealButton(int x, int y);
/// The same while a key is held: "Shift", "Control".
void clickRealButtonWith(const std::string& held, int x, int y);
/// Presses and releases the right button there.
void clickRealRightButton(int x, int y);
/// Turns the wheel there by a notch: away from the user, which scrolls up, or towards.
void turnRealWheel(int x, int y, bool isUp);
/// Twice the left button, as fast as one can.
void doubleClickRealButton(int x, int y);

#endif
