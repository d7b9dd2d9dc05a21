// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_RANDOMCONFIGURATIONS_H
#define STRANDVIEW_TESTS_RANDOMCONFIGURATIONS_H

#include <algorithm>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include <algebra3d/rotations.h>

#include <strandview/analysis/fitFrame.h>
#include <strandview/model/Configuration.h>

namespace strandview {

using Point = algebra3d::Vector3<double>;
using Rotation = algebra3d::Quaternion<double>;

// Data and motions at random, from one seed.
class Chance
{
public:
    double number() { return normal(engine); }
    Point point() { return {number(), number(), number()}; }
    Rotation rotation()
    {
        return algebra3d::scaledToUnit(Rotation(number(), number(), number(), number()));
    }
    FittedFrame motion() { return {5.0 * point(), rotation()}; }
    std::vector<Point> points(int count)
    {
        std::vector<Point> all;
        for (int i = 0; i < count; ++i)
            all.push_back(point());
        return all;
    }
    std::vector<Rotation> rotations(int count)
    {
        std::vector<Rotation> all;
        for (int i = 0; i < count; ++i)
            all.push_back(rotation());
        return all;
    }

    // Something of every kind.
    Configuration everything()
    {
        Configuration all;
        Rod rod;
        rod.points = points(7);
        rod.rotations = rotations(7);
        all.rods = {rod};
        all.birods = {
            {"", points(4), rotations(4), points(4), rotations(4), points(4), rotations(4)}};
        Dna dna{"",        "ACG",        points(3), rotations(3),
                points(3), rotations(3), points(3), rotations(3)};
        dna.standard = StandardFrames{points(3),    rotations(3), points(3),
                                      rotations(3), points(3),    rotations(3)};
        all.dnas = {dna};
        all.loneBases = {{"", 'A', point(), rotation()}};
        Marker marker;
        marker.point = point();
        all.markers = {marker};
        Arrow arrow;
        arrow.from = point();
        arrow.to = point();
        all.arrows = {arrow};
        Frame frame;
        frame.point = point();
        frame.rotation = rotation();
        all.frames = {frame};
        return all;
    }

private:
    std::mt19937 engine{17};
    std::normal_distribution<double> normal;
};

// Every place of a configuration, and for every frame the ends of its directors.
inline std::vector<Point> placesOf(const Configuration& data)
{
    std::vector<Point> places;
    const auto add = [&places](const Point& point, const Rotation& rotation) {
        places.push_back(point);
        for (const Point& axis : {Point(1, 0, 0), Point(0, 1, 0), Point(0, 0, 1)})
            places.push_back(point + algebra3d::rotated(axis, rotation));
    };
    const auto addAll = [&add](const std::vector<Point>& points,
                               const std::vector<Rotation>& rotations) {
        for (std::size_t i = 0; i < points.size(); ++i)
            add(points[i], rotations[i]);
    };
    for (const Rod& rod : data.rods)
        addAll(rod.points, rod.rotations);
    for (const Birod& birod : data.birods) {
        addAll(birod.points, birod.rotations);
        addAll(birod.points1, birod.rotations1);
        addAll(birod.points2, birod.rotations2);
    }
    const auto addPairs = [&addAll](const auto& frames) {
        addAll(frames.pairPoints, frames.pairRotations);
        addAll(frames.points1, frames.rotations1);
        addAll(frames.points2, frames.rotations2);
    };
    for (const Dna& dna : data.dnas) {
        addPairs(dna);
        if (dna.standard)
            addPairs(*dna.standard);
    }
    for (const LoneBase& base : data.loneBases)
        add(base.point, base.rotation);
    for (const Frame& frame : data.frames)
        add(frame.point, frame.rotation);
    for (const Marker& marker : data.markers)
        places.push_back(marker.point);
    for (const Arrow& arrow : data.arrows) {
        places.push_back(arrow.from);
        places.push_back(arrow.to);
    }
    return places;
}

inline double largestDistance(const Configuration& one, const Configuration& other)
{
    const std::vector<Point> a = placesOf(one), b = placesOf(other);
    EXPECT_EQ(a.size(), b.size());
    double largest = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        largest = std::max(largest, (a[i] - b[i]).getNorm());
    return largest;
}

inline Configuration rodOf(const std::vector<Point>& points)
{
    Configuration configuration;
    Rod rod;
    rod.points = points;
    rod.rotations.assign(points.size(), Rotation(0, 0, 0, 1));
    configuration.rods = {rod};
    return configuration;
}

} // namespace strandview

#endif
