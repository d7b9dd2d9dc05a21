// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_GROUPFILES_H
#define STRANDVIEW_FORMATS_GROUPFILES_H

#include <string>
#include <vector>

#include <strandview/formatsExport.h>

namespace strandview {

/// What is read at once.
struct FileGroup
{
    std::string path;
    std::string topology = {}; ///< for ReadOptions::topology, or empty
};

/// Of files that a user named, which are one thing: a topology of oxDNA (".top") goes with the
/// configurations of its name; else, of what is left, with all configurations if it is the only
/// one, or with those of as many nucleotides. It is no group of its own then, and one that goes
/// with nothing is. All else is a group of its own, in the order of the list.
///
/// Files are looked into, but for standard input, pipes and devices, which can be read once: those
/// are configurations by their endings alone. Any thread may call this.
STRANDVIEW_FORMATS_EXPORT std::vector<FileGroup> groupFiles(const std::vector<std::string>& paths);

} // namespace strandview

#endif
