// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_STEPPARAMETERREADER_H
#define STRANDVIEW_FORMATS_STEPPARAMETERREADER_H

#include <optional>
#include <string>
#include <string_view>

#include <strandview/formats/Format.h>
#include <strandview/formatsExport.h>

namespace strandview {

/// Reads the parameters of the pairs and steps of one double strand and rebuilds it by them
/// (analysis/stepParameters.h), the first pair at the origin with the axes as its frame:
///
///     3 # base pairs
///     0 # ***local base-pair & step parameters***
///     # Shear Stretch Stagger Buckle Prop-Tw Opening Shift Slide Rise Tilt Roll Twist
///     C-G 0 0 0 0 0 0  0 0 0    0 0 0
///     G-C 0 0 0 0 0 0  0 0 3.38 0 0 36
///     A-T 0 0 0 0 0 0  0 0 3.38 0 0 36
///
/// A row has the letters of both strands, the six parameters of the pair, in ångström and
/// degrees, and those of the step that leads to it, which count for nothing in the first row. The
/// line of names may be missing. A flag other than 0, and names of helical parameters, are
/// refused. Letters other than A, C, G and T are bases of an unknown letter, U is T; strand 2 has
/// the complements: notices say so. Where the last pair is the first one again
/// (closedDna.h) the Dna is closed.
///
/// Nothing and report.error if that fails, as "fileName:line: column 3: found ..., expected ...".
STRANDVIEW_FORMATS_EXPORT std::optional<Configuration>
readStepParameters(std::string_view text, const std::string& fileName, const ReadOptions& options,
                   ReadReport& report);

/// Certain where the second line tells of parameters, or the third one names them.
STRANDVIEW_FORMATS_EXPORT Likeness likenessToStepParameters(std::string_view beginning);

} // namespace strandview

#endif
