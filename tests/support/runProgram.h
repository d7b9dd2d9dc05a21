// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_RUNPROGRAM_H
#define STRANDVIEW_TESTS_RUNPROGRAM_H

#include <string>
#include <utility>
#include <vector>

struct ProgramRun
{
    int status; ///< -1 if the program crashed or did not end
    std::string output;
    std::string error;
};

/// Runs a program without a display and the user's settings to its end. Environment variables given
/// are set for it alone.
ProgramRun runProgram(const std::string& program, const std::vector<std::string>& arguments,
                      const std::string& input = "",
                      const std::vector<std::pair<std::string, std::string>>& environment = {});

#endif
