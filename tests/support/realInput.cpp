// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/realInput.h"

#include <memory>
#include <stdexcept>
#include <vector>

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

namespace {

const unsigned LEFT_BUTTON = 1, RIGHT_BUTTON = 3, WHEEL_UP = 4, WHEEL_DOWN = 5;
const unsigned long STEP = 40; // ms, of a drag

Display* display()
{
    static const std::unique_ptr<Display, int (*)(Display*)> opened(XOpenDisplay(nullptr),
                                                                    XCloseDisplay);
    if (!opened)
        throw std::runtime_error("no display");
    return opened.get();
}

KeyCode codeOf(KeySym symbol) { return XKeysymToKeycode(display(), symbol); }

KeySym symbolOf(const std::string& name)
{
    const KeySym symbol = XStringToKeysym(name.c_str());
    if (symbol == NoSymbol || codeOf(symbol) == 0)
        throw std::runtime_error("no key " + name);
    return symbol;
}

void press(const std::vector<KeyCode>& keys)
{
    for (const KeyCode key : keys)
        XTestFakeKeyEvent(display(), key, True, CurrentTime);
    for (auto key = keys.rbegin(); key != keys.rend(); ++key)
        XTestFakeKeyEvent(display(), *key, False, CurrentTime);
    XFlush(display());
}

void button(bool down, unsigned which = LEFT_BUTTON)
{
    XTestFakeButtonEvent(display(), which, down ? True : False, CurrentTime);
    XFlush(display());
}

void movePointer(int x, int y, unsigned long delay = CurrentTime)
{
    XTestFakeMotionEvent(display(), -1, x, y, delay);
    XFlush(display());
}

} // namespace

void pressRealKey(const std::string& name)
{
    std::vector<KeyCode> keys;
    std::string rest = name;
    for (std::size_t plus = rest.find('+'); plus != std::string::npos; plus = rest.find('+')) {
        keys.push_back(codeOf(symbolOf(rest.substr(0, plus) + "_L")));
        rest.erase(0, plus + 1);
    }
    const KeySym symbol = symbolOf(rest);
    const KeyCode code = codeOf(symbol);
    int perCode = 0;
    const std::unique_ptr<KeySym, int (*)(void*)> symbols(
        XGetKeyboardMapping(display(), code, 1, &perCode), XFree);
    if (symbols.get()[0] != symbol)
        keys.push_back(codeOf(XK_Shift_L));
    keys.push_back(code);
    press(keys);
}

void dragRealPointer(int fromX, int fromY, int toX, int toY)
{
    movePointer(fromX, fromY);
    button(true);
    if (fromX != toX || fromY != toY) { // slowly: a viewer turns from one place to the next
        movePointer((fromX + toX) / 2, (fromY + toY) / 2, STEP);
        movePointer(toX, toY, STEP);
    }
    button(false);
}

void clickRealButton(int x, int y) { dragRealPointer(x, y, x, y); }

void clickRealButtonWith(const std::string& held, int x, int y)
{
    const KeyCode key = codeOf(symbolOf(held + "_L"));
    XTestFakeKeyEvent(display(), key, True, CurrentTime);
    clickRealButton(x, y);
    XTestFakeKeyEvent(display(), key, False, CurrentTime);
    XFlush(display());
}

void clickRealRightButton(int x, int y)
{
    movePointer(x, y);
    button(true, RIGHT_BUTTON);
    button(false, RIGHT_BUTTON);
}

void turnRealWheel(int x, int y, bool isUp)
{
    movePointer(x, y);
    button(true, isUp ? WHEEL_UP : WHEEL_DOWN);
    button(false, isUp ? WHEEL_UP : WHEEL_DOWN);
}

void doubleClickRealButton(int x, int y)
{
    clickRealButton(x, y);
    clickRealButton(x, y);
}
