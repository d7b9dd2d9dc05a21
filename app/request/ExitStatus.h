// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_EXITSTATUS_H
#define STRANDVIEW_APP_REQUEST_EXITSTATUS_H

namespace strandview {

/// What the program ends with.
enum ExitStatus {
    SUCCESS = 0,
    CANNOT_WRITE = 1, ///< an output, or a frame of a series; or there is no display for a window
    BAD_INPUT = 2,    ///< of the command line, or in a file
    INTERRUPTED = 130 ///< by the user (SIGINT, or SIGTERM), as shells tell it
};

} // namespace strandview

#endif
