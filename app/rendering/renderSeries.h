// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_RENDERING_RENDERSERIES_H
#define STRANDVIEW_APP_RENDERING_RENDERSERIES_H

#include "request/Options.h"

namespace strandview {

/// Whether the options ask for pictures of a series by themselves; else it is one if the data are.
bool asksForSeries(const Options& options);

/// Writes the pictures of the frames that the options ask for, or lists them on standard output,
/// tells its progress and every failure on standard error, and says what the program ends with:
/// SUCCESS if all are there, CANNOT_WRITE if some failed, BAD_INPUT if there is nothing to draw,
/// INTERRUPTED after SIGINT or SIGTERM, which leave no half of a picture.
///
/// In the thread that Coin is used in, after initialiseScene(), once per program.
int renderSeries(const Options& options);

} // namespace strandview

#endif
