// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_EVERYTHINGOF_H
#define STRANDVIEW_TESTS_EVERYTHINGOF_H

#include <cmath>
#include <ios>
#include <sstream>
#include <string>

#include <strandview/model/Configuration.h>

namespace strandview {

/// All that is shown of a configuration as a text, its doubles bit for bit (but for how a number
/// that is none is written), to be compared with another's. Without the places in files.
class Everything
{
public:
    explicit Everything(const Configuration& data)
    {
        all << std::hexfloat << std::boolalpha;
        for (const Rod& rod : data.rods)
            add("rod", rod.name, rod.isClosed, rod.colour, rod.radius, rod.isBackbone, rod.molecule,
                rod.hasFrames, rod.points, rod.rotations, rod.scalars);
        for (const Birod& b : data.birods)
            add("birod", b.points, b.rotations, b.points1, b.rotations1, b.points2, b.rotations2);
        for (const Dna& dna : data.dnas)
            add("dna", dna.name, dna.isClosed, dna.molecule, dna.bases, dna.pairPoints,
                dna.pairRotations, dna.points1, dna.rotations1, dna.points2, dna.rotations2);
        for (const Marker& m : data.markers)
            add("marker", m.point, int(m.shape), m.size, m.colour, m.transparency, m.id);
        for (const Frame& frame : data.frames)
            add("frame", frame.point, frame.rotation, frame.size);
        for (const Arrow& arrow : data.arrows)
            add("arrow", arrow.from, arrow.to, arrow.radius, arrow.colour);
        for (const LoneBase& base : data.loneBases)
            add("base", base.base, base.point, base.rotation, base.molecule);
    }

    std::string text() const { return all.str(); }

private:
    template <typename... Parts>
    void add(const Parts&... parts)
    {
        (addOne(parts), ...);
        all << "\n";
    }
    template <typename Part>
    void addOne(const Part& part)
    {
        all << part << "; ";
    }
    void addOne(double number)
    {
        if (std::isnan(number))
            all << "nan; ";
        else
            all << number << "; ";
    }
    void addOne(const algebra3d::Vector3<double>& v)
    {
        all << v.x << "," << v.y << "," << v.z << " ";
    }
    void addOne(const algebra3d::Quaternion<double>& q)
    {
        all << q[0] << "," << q[1] << "," << q[2] << "," << q[3] << " ";
    }
    void addOne(const Scalar& scalar)
    {
        addOne(scalar.name);
        addOne(scalar.values);
    }
    template <typename Part>
    void addOne(const std::optional<Part>& part)
    {
        if (part)
            addOne(*part);
        else
            all << "none; ";
    }
    template <typename Part>
    void addOne(const std::vector<Part>& parts)
    {
        all << parts.size() << " of:\n";
        for (const Part& part : parts)
            addOne(part);
    }

    std::ostringstream all;
};

inline std::string everythingOf(const Configuration& configuration)
{
    return Everything(configuration).text();
}

} // namespace strandview

#endif
