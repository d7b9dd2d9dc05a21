// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_FILEFILTER_H
#define STRANDVIEW_APP_WINDOW_FILEFILTER_H

#include <QString>

namespace strandview {

/// What the dialog that opens files offers: those of every format at once, or all.
QString fileFilter();

} // namespace strandview

#endif
