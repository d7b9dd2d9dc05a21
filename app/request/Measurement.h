// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_MEASUREMENT_H
#define STRANDVIEW_APP_REQUEST_MEASUREMENT_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <algebra3d/Vector3.h>

namespace strandview {

/// A place of what is shown, as it is asked for and kept: it goes on to mean that place in other
/// frames, and when files are read again.
struct MeasuredPlace
{
    /// Of which kind: "rod", "birod", "DNA", "marker", "arrow", "frame", "base" of one without a
    /// partner; "point" of a point in space that belongs to nothing.
    std::string kind = "point";
    std::size_t number = 0;    ///< which of its kind, from 0
    int strand = 0;            ///< 1 or 2; 0 of a birod's average and of a pair of DNA
    bool isOnBackbone = false; ///< of a strand of DNA: where its phosphorus atom would be
    /// Of the point along a line, of the pair along DNA, from 0, also between two; nothing if it is
    /// not known.
    std::optional<double> index;
    /// Where that is not all: of a point, along an arrow, of a line without an index.
    algebra3d::Vector3<double> point;
};

bool operator==(const MeasuredPlace& a, const MeasuredPlace& b);

/// "rod 1:10", "birod 2 strand 1:4.25", "DNA 1:12", "DNA 1 backbone 2:12", "marker 3", "arrow 1 at
/// 0.1 2 3", "point at 0.1 2 3". Things are numbered from 1, points of lines from 0 and pairs of
/// DNA from 1. Every number is the shortest text that reads back as it.
std::string textOf(const MeasuredPlace& place);
/// The place of such a text; nothing of any other.
std::optional<MeasuredPlace> parsePlace(const std::string& text);

enum class MeasureKind {
    DISTANCE,
    ARC_LENGTH, ///< along the line that both places are of
    ROTATION,   ///< the angle between the frames of two places
    ANGLE,      ///< at the second of three places
    DIHEDRAL    ///< of four places, about the way from the second to the third
};

/// "distance", "arc length", "rotation", "angle", "dihedral angle".
const char* nameOf(MeasureKind kind);
std::optional<MeasureKind> parseMeasureKind(const std::string& name);
/// How many places it is of.
std::size_t placesOf(MeasureKind kind);
/// Of so many places what is measured unless another kind is asked for; nothing of none, one or
/// more than four.
std::optional<MeasureKind> usualKind(std::size_t places);

/// Something that is measured, and how it is shown.
struct Measurement
{
    MeasureKind kind = MeasureKind::DISTANCE;
    std::vector<MeasuredPlace> places; ///< as many as the kind needs
    std::string name;                  ///< that its user gave it, or empty
    bool isShown = true;               ///< in the view
};

bool operator==(const Measurement& a, const Measurement& b);
inline bool operator!=(const Measurement& a, const Measurement& b) { return !(a == b); }

/// "distance rod 1:10,rod 1:40": the kind and the places.
std::string textOf(const Measurement& measurement);
/// The measurement of such a text, shown and without a name; nothing of any other. Without a kind
/// it is the usual one of so many places: "rod 1:10,rod 1:40".
std::optional<Measurement> parseMeasurement(const std::string& text);

/// The same with the name, if it has one: "distance rod 1:10,rod 1:40 as arm".
std::string namedTextOf(const Measurement& measurement);
std::optional<Measurement> parseNamedMeasurement(const std::string& text);

/// Those of them that are shown.
std::vector<Measurement> shownOf(std::vector<Measurement> measurements);

} // namespace strandview

#endif
