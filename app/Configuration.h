// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_CONFIGURATION_H
#define STRANDVIEW_APP_CONFIGURATION_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>

/// One named number per point of a rod; not-a-number where it is not known.
struct Scalar
{
    std::string name;
    std::vector<double> values;
};

/// One rod: at least two distinct consecutive points, as many unit quaternions
/// (the material frames), and scalars of the same length, in the file's order.
struct Rod
{
    std::string origin; ///< for messages: "helix.txt:2: rod 1", "helix.json: rods[0]"
    std::vector<algebra3d::Vector3<double>> points;
    std::vector<algebra3d::Quaternion<double>> rotations;
    std::vector<Scalar> scalars;
    std::vector<std::size_t> lines = {};   ///< of its points, if the file is a table
    std::vector<std::size_t> indices = {}; ///< of its points in the file, if some were left out
    bool hasFrames = true; ///< of its own; else the rotations were made by parallel transport
};

/// Two strands and the average of both: six sequences of one length, at least 2. In each
/// of the three curves consecutive points are distinct.
struct Birod
{
    std::string origin;                             ///< "ladder.json: birods[0]"
    std::vector<algebra3d::Vector3<double>> points; ///< of the average
    std::vector<algebra3d::Quaternion<double>> rotations;
    std::vector<algebra3d::Vector3<double>> points1;
    std::vector<algebra3d::Quaternion<double>> rotations1;
    std::vector<algebra3d::Vector3<double>> points2;
    std::vector<algebra3d::Quaternion<double>> rotations2;
    std::vector<std::size_t> indices = {}; ///< of its points in the file, if some were left out
};

/// A double strand: seven sequences of one length, at least 1. A strand's frames are
/// those of its bases; a base lies along d2 in strand 1 and along -d2 in strand 2, so
/// in a flat pair all three frames are one.
struct Dna
{
    std::string origin; ///< "dna.txt:2: DNA 1", "dna.json: dna[0]"
    std::string bases;  ///< of strand 1: A, C, G or T
    std::vector<algebra3d::Vector3<double>> pairPoints;
    std::vector<algebra3d::Quaternion<double>> pairRotations;
    std::vector<algebra3d::Vector3<double>> points1;
    std::vector<algebra3d::Quaternion<double>> rotations1;
    std::vector<algebra3d::Vector3<double>> points2;
    std::vector<algebra3d::Quaternion<double>> rotations2;
};

/// A glyph at a place.
struct Marker
{
    enum class Shape { sphere, cube, cross };

    std::string origin; ///< "glyphs.json: markers[0]"
    algebra3d::Vector3<double> point;
    Shape shape = Shape::sphere;
    std::optional<double> size; ///< diameter or edge, above 0
    /// As the file has it: whoever draws it asks parseColour(), and tells a text that is
    /// no colour as "origin.colour: found ..., expected ...".
    std::optional<std::string> colour;
    double transparency = 0; ///< from 0 to 1
    long long id = 0;        ///< if the file has none, the index among its markers
};

/// Three arrows along the columns of a rotation's matrix.
struct Frame
{
    std::string origin; ///< "glyphs.json: frames[0]"
    algebra3d::Vector3<double> point;
    algebra3d::Quaternion<double> rotation; ///< of norm 1 within 0.01
    std::optional<double> size;             ///< the arrows' length, above 0
};

/// An arrow between two points, which may be one.
struct Arrow
{
    std::string origin; ///< "glyphs.json: arrows[0]"
    algebra3d::Vector3<double> from;
    algebra3d::Vector3<double> to;
    std::optional<double> radius;      ///< of the shaft, above 0
    std::optional<std::string> colour; ///< as of a Marker
};

/// All that a user asked to see, free of any style; of rods alone made as {rods}.
struct Configuration
{
    std::vector<Rod> rods;
    std::vector<Birod> birods = {};
    std::vector<Dna> dnas = {};
    std::vector<Marker> markers = {};
    std::vector<Frame> frames = {};
    std::vector<Arrow> arrows = {};
};

#endif
