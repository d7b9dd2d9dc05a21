// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/Progress.h"

#include <iostream>

#include <unistd.h>

namespace strandview {

namespace {

const std::chrono::milliseconds PATIENCE(500);
const std::chrono::milliseconds INTERVAL(100);
const char* const ERASE_LINE = "\r\033[K";

} // namespace

TerminalProgress::TerminalProgress()
    : terminal(isatty(STDERR_FILENO) != 0), next(Clock::now() + PATIENCE)
{}

TerminalProgress::~TerminalProgress() { hide(); }

void TerminalProgress::show(const std::string& text)
{
    if (Clock::now() >= next)
        announce(text);
}

void TerminalProgress::announce(const std::string& text)
{
    if (!terminal)
        return;
    std::cerr << ERASE_LINE << text << std::flush;
    shown = true;
    next = Clock::now() + INTERVAL;
}

void TerminalProgress::hide()
{
    if (shown)
        std::cerr << ERASE_LINE << std::flush;
    shown = false;
}

} // namespace strandview
