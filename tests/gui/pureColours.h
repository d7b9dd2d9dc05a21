// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_PURECOLOURS_H
#define STRANDVIEW_TESTS_PURECOLOURS_H

#include <QColor>

namespace strandview {

// Of things whose colour is one of these alone, in light and shade.

inline bool isRed(const QColor& c) { return c.red() > 100 && c.green() < 60 && c.blue() < 60; }
inline bool isGreen(const QColor& c) { return c.green() > 100 && c.red() < 60 && c.blue() < 60; }
inline bool isBlue(const QColor& c) { return c.blue() > 100 && c.red() < 60 && c.green() < 60; }

} // namespace strandview

#endif
