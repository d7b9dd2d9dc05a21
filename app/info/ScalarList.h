// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_INFO_SCALARLIST_H
#define STRANDVIEW_APP_INFO_SCALARLIST_H

#include <string>

#include "info/Findings.h"

namespace strandview {

/// The scalars of what was found, which colours, plots and tables offer by name, for people: of
/// each kind of line a table of name, unit, place (point, pair, step), range over the frame,
/// meaning. Lengths of DNA's parameters are in ångström, of which the unit of its points has
/// `angstrom`. writhe_density has no range if all lines together have more pairs of edges.
std::string describeScalars(const Findings& findings, double angstrom,
                            double mostEdgePairs = MOST_EDGE_PAIRS);

/// The same as one JSON object, for scripts, with all digits; the guide lists its keys.
std::string scalarsToJson(const Findings& findings, double angstrom,
                          double mostEdgePairs = MOST_EDGE_PAIRS);

} // namespace strandview

#endif
