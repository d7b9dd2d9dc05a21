// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_READERS_READREPORT_H
#define STRANDVIEW_APP_READERS_READREPORT_H

#include <string>
#include <vector>

struct ReadOptions
{
    /// Accept quaternions of any norm but zero and scale them to unit length.
    bool normalise = false;
};

/// What a reader has to tell its user.
struct ReadReport
{
    /// Things done to the data that the user should know of, a line each.
    std::vector<std::string> notices;
    /// Why nothing was read: one line, "file:line: column 3 (z): found ..., expected ...",
    /// with as much of the place as the format has; empty after success.
    std::string error;
};

#endif
