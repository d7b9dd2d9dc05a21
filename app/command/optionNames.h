// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_COMMAND_OPTIONNAMES_H
#define STRANDVIEW_APP_COMMAND_OPTIONNAMES_H

#include <string>
#include <vector>

namespace strandview {

/// The argument as this program spells its options: "--colour-by" for "--color-by",
/// "--normalise" for "--normalize". Only the name of a long option changes, not a value
/// behind "=", and no other argument.
std::string inBritishSpelling(const std::string& argument);

/// Of the names, such as "--radius", those that somebody could have meant who wrote this
/// one, the nearest in letters: one as a rule, several if they are equally near, none if
/// nothing is near.
std::vector<std::string> nearestNames(const std::string& written,
                                      const std::vector<std::string>& names);

} // namespace strandview

#endif
