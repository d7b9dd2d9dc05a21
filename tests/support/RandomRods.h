// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_RANDOMRODS_H
#define STRANDVIEW_TESTS_RANDOMRODS_H

#include <cmath>
#include <cstdint>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>

/// Random numbers that are the same on every platform for the same seed.
class RandomNumbers
{
public:
    explicit RandomNumbers(unsigned seed) : generator(seed) {}

    double uniform(double low, double high)
    {
        return low + (high - low) * (double(generator()) / 4294967296.0);
    }
    /// low to high, both included.
    int integer(int low, int high)
    {
        return low + int(generator() % std::uint32_t(high - low + 1));
    }
    algebra3d::Vector3<double> unitVector()
    {
        for (;;) {
            const algebra3d::Vector3<double> v(uniform(-1, 1), uniform(-1, 1), uniform(-1, 1));
            const double norm = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
            if (norm > 0.1 && norm <= 1)
                return {v.x / norm, v.y / norm, v.z / norm};
        }
    }
    algebra3d::Quaternion<double> unitQuaternion()
    {
        for (;;) {
            const double q[4] = {uniform(-1, 1), uniform(-1, 1), uniform(-1, 1), uniform(-1, 1)};
            const double norm = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
            if (norm > 0.1 && norm <= 1)
                return {q[0] / norm, q[1] / norm, q[2] / norm, q[3] / norm};
        }
    }

private:
    std::mt19937 generator;
};

enum class RodKind {
    RANDOM_WALK,
    SMOOTH,
    PLANAR,
    STRAIGHT_PIECES, ///< runs of exactly collinear points along the axes, with corners
    NEAR_COLLINEAR,  ///< bends on both sides of what a biarc takes as straight
    LARGE,           ///< a random walk of steps near 1e6, far from the origin
    SMALL,           ///< steps near 1e-3
    TINY,            ///< steps near 1e-7, the smallest projection that counts on a chord
    CLOSED           ///< the last point is the first; at least 4 points
};

inline const std::vector<RodKind>& allRodKinds()
{
    static const std::vector<RodKind> kinds = {
        RodKind::RANDOM_WALK,     RodKind::SMOOTH,         RodKind::PLANAR,
        RodKind::STRAIGHT_PIECES, RodKind::NEAR_COLLINEAR, RodKind::LARGE,
        RodKind::SMALL,           RodKind::TINY,           RodKind::CLOSED};
    return kinds;
}

/// All but Tiny: an arc too short for the projection on its chord has no tangents.
inline std::vector<RodKind> rodKindsWithTangents()
{
    std::vector<RodKind> kinds;
    for (const RodKind kind : allRodKinds()) {
        if (kind != RodKind::TINY)
            kinds.push_back(kind);
    }
    return kinds;
}

inline std::string nameOf(RodKind kind)
{
    static const char* const names[] = {"RandomWalk",     "Smooth",        "Planar",
                                        "StraightPieces", "NearCollinear", "Large",
                                        "Small",          "Tiny",          "Closed"};
    return names[int(kind)];
}

inline void PrintTo(RodKind kind, std::ostream* stream) { *stream << nameOf(kind); }

struct RandomRod
{
    std::vector<algebra3d::Vector3<double>> points; ///< consecutive ones never coincide
    /// One per point, unit and in no relation to the points.
    std::vector<algebra3d::Quaternion<double>> rotations;
};

inline RandomRod randomRod(RodKind kind, int size, unsigned seed)
{
    using Vector = algebra3d::Vector3<double>;
    if (kind == RodKind::CLOSED && size < 4)
        size = 4;
    RandomNumbers random(seed * 100 + unsigned(kind));
    const auto moved = [](const Vector& p, const Vector& direction, double step) {
        return Vector(p.x + step * direction.x, p.y + step * direction.y, p.z + step * direction.z);
    };

    RandomRod rod;
    Vector p(random.uniform(-5, 5), random.uniform(-5, 5), random.uniform(-5, 5));
    double step = 1;
    if (kind == RodKind::LARGE) {
        p = Vector(p.x * 1e7, p.y * 1e7, p.z * 1e7);
        step = 1e6;
    } else if (kind == RodKind::SMALL) {
        p = Vector(p.x * 1e-3, p.y * 1e-3, p.z * 1e-3);
        step = 1e-3;
    } else if (kind == RodKind::TINY) {
        p = Vector(p.x * 1e-7, p.y * 1e-7, p.z * 1e-7);
        step = 1e-7;
    }
    const Vector line = random.unitVector();
    const Vector phases(random.uniform(0, 6), random.uniform(0, 6), random.uniform(0, 6));
    const Vector speeds(random.uniform(0.1, 0.7), random.uniform(0.1, 0.7),
                        random.uniform(0.1, 0.7));
    Vector axis(1, 0, 0);
    int leftOnAxis = 0;

    for (int i = 0; i < size; ++i) {
        switch (kind) {
        case RodKind::RANDOM_WALK:
        case RodKind::LARGE:
        case RodKind::SMALL:
        case RodKind::TINY:
        case RodKind::CLOSED:
            rod.points.push_back(p);
            p = moved(p, random.unitVector(), step * random.uniform(0.5, 1.5));
            break;
        case RodKind::SMOOTH:
            rod.points.emplace_back(p.x + 3 * std::sin(speeds.x * i + phases.x),
                                    p.y + 3 * std::cos(speeds.y * i + phases.y), p.z + 0.5 * i);
            break;
        case RodKind::PLANAR:
            rod.points.push_back(p);
            p = Vector(p.x + random.uniform(0.2, 1), p.y + random.uniform(-1, 1), p.z);
            break;
        case RodKind::STRAIGHT_PIECES:
            rod.points.push_back(p);
            if (leftOnAxis == 0) {
                const double sign = random.integer(0, 1) ? 1 : -1;
                // Never back along the run before: the axes follow each other.
                axis = axis.x != 0   ? Vector(0, sign, 0)
                       : axis.y != 0 ? Vector(0, 0, sign)
                                     : Vector(sign, 0, 0);
                leftOnAxis = random.integer(2, 5);
            }
            --leftOnAxis;
            p = moved(p, axis, random.integer(1, 4) * 0.25);
            break;
        case RodKind::NEAR_COLLINEAR:
            rod.points.push_back(
                moved(p, random.unitVector(), std::pow(10, random.uniform(-9, -2))));
            p = moved(p, line, random.uniform(0.5, 1.5));
            break;
        }
        rod.rotations.push_back(random.unitQuaternion());
    }
    if (kind == RodKind::CLOSED)
        rod.points.back() = rod.points.front();
    return rod;
}

#endif
