// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DATA_WRITERS_H
#define STRANDVIEW_DATA_WRITERS_H

#include <ostream>
#include <string>
#include <vector>

#include <strandview/analysis/helices.h>
#include <strandview/model/Configuration.h>

/// Samples in the formats of other programs, as they are read (docs/files.md).
namespace strandview::samples {

/// With so many digits after the point, without the zeros at the end.
std::string written(double value, int digits);

/// Phosphorus, C1' and the atoms of the bases; a chain for each strand, A and B.
void writePdb(std::ostream& out, const std::vector<Nucleotide>& nucleotides);

/// In the newer form, from 5' to 3'; and one configuration.
void writeOxdnaTopology(std::ostream& out, const std::vector<Nucleotide>& nucleotides);
void writeOxdnaConfiguration(std::ostream& out, const std::vector<Nucleotide>& nucleotides);

/// Of a closed DNA of flat pairs, the first one repeated at the end.
void writeStepParameters(std::ostream& out, const Dna& dna);

/// A list in brackets.
void writePairFrames(std::ostream& out, const Dna& dna);

/// A closed rod, which repeats its first point, as a polyline of one colour with every so manieth
/// point.
void writeVect(std::ostream& out, const Rod& rod, std::size_t every);

/// Lists of alpha carbons.
void writeXyz(std::ostream& out, const std::vector<Rod>& frames);

/// A report of fibres, a tenth of a second from frame to frame.
void writeFibres(std::ostream& out, const std::vector<std::vector<Rod>>& frames);

/// An archive of NumPy's arrays: `time`, `center_line`, and `director_rod` of elements. Whether it
/// is written.
bool writeArchive(const std::string& path, const std::vector<Rod>& frames);

} // namespace strandview::samples

#endif
