// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_THINGKIND_H
#define STRANDVIEW_APP_REQUEST_THINGKIND_H

namespace strandview {

/// What a datum that is shown is; lone bases are one together.
enum class ThingKind { OTHER, ROD, BIROD, MARKER, ARROW, DNA, LONE_BASES, FRAME };

} // namespace strandview

#endif
