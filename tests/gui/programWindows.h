// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_PROGRAMWINDOWS_H
#define STRANDVIEW_TESTS_PROGRAMWINDOWS_H

#include <functional>

namespace strandview {

/// Makes all that the program's windows need, once per test program, with settings of their own.
void initialiseProgramOnce(const char* name);

/// Waits for what a window comes to, as long as the sanitizers on a busy machine may take.
[[nodiscard]] bool comesTo(const std::function<bool()>& holds);

} // namespace strandview

#endif
