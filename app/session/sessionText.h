// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SESSION_SESSIONTEXT_H
#define STRANDVIEW_APP_SESSION_SESSIONTEXT_H

#include <optional>
#include <string>

#include "request/Session.h"

namespace strandview {

/// A session as JSON, indented for people:
///
///     {
///       "strandview session": 1,
///       "files": [{"name": "rod.txt", "bytes": 120, "sha256": "5891b5..."}],
///       "reading": ["--closed"],
///       "style": {"radius": "0.1", "colour-by": "curvature"},
///       "colours of data": true,
///       "camera": "orthographic,0,0,4,0,0,0,1,4,2.1",
///       "frame": 3,
///       "size": [1200, 900]
///     }
///
/// The style has the settings that are not as usual, as their options take them.
std::string textOf(const Session& session);

/// The session of such a text; or nothing, and in `fault` "line 3: found ..., expected ..." of what
/// is no JSON, "style, radius: found ..., expected ..." of what is no session. What is left out is
/// as usual; entries of other names are refused, for they would be lost.
std::optional<Session> parseSession(const std::string& text, std::string& fault);

} // namespace strandview

#endif
