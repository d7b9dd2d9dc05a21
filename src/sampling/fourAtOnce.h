// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_SAMPLING_FOURATONCE_H
#define STRANDVIEW_SAMPLING_FOURATONCE_H

#include <cmath>
#include <cstddef>
#include <cstdint>

#include <TubeMesh.h>
#include <algebra3d/Vector3.h>
#include <biarc/Biarc.h>
#include <biarc/Curve.h>

// The inner loops of the meshes and of what buffers hold, with four numbers at once. Each of the
// four is computed by the same operations in the same order as one alone, so the doubles are those
// of the plain formulas, whatever processor it is: where it has AVX2, that is used.

/// Consecutive samples of a curve, component by component.
struct CurveSamples
{
    static constexpr int CAPACITY = 64;

    double x[CAPACITY + 3], y[CAPACITY + 3], z[CAPACITY + 3]; ///< points
    double tangentX[CAPACITY + 3], tangentY[CAPACITY + 3], tangentZ[CAPACITY + 3];
    int size = 0;

    void append(const Vector3& point, const Vector3& tangent)
    {
        x[size] = point[0];
        y[size] = point[1];
        z[size] = point[2];
        tangentX[size] = tangent[0];
        tangentY[size] = tangent[1];
        tangentZ[size] = tangent[2];
        ++size;
    }
    algebra3d::Vector3<double> point(int i) const { return {x[i], y[i], z[i]}; }
    algebra3d::Vector3<double> tangent(int i) const
    {
        return {tangentX[i], tangentY[i], tangentZ[i]};
    }
};

/// Curve::makeMidpointRule(), four biarcs at once where it is open and there are as many.
void makeMidpointRule(Curve<Vector3>& curve);

/// Appends the points and tangents at the arc lengths k * step for `count` values of k
/// from `first` on, as BiarcSampler::sampleAt gives them. There must be room.
void sampleBiarc(const BiarcSampler<Vector3>& sampler, double step, int first, int count,
                 CurveSamples& samples);

/// Vector3::getUnit() of every tangent.
void normaliseTangents(CurveSamples& samples);

/// Turns a section frame with the curve: d1, d2 become orthogonal to the unit tangent,
/// and (tangent, d1, d2) right-handed.
inline __attribute__((always_inline)) void carryFrame(const algebra3d::Vector3<double>& tangent,
                                                      algebra3d::Vector3<double>& d1,
                                                      algebra3d::Vector3<double>& d2)
{
    if (std::abs(d1.dot(tangent)) >= 0.5) {
        d1 = d2.cross(tangent).getUnit();
        d2 = tangent.cross(d1);
    } else {
        d2 = tangent.cross(d1).getUnit();
        d1 = d2.cross(tangent);
    }
}

/// Constructs the points and normals of a ribbon, its rows one behind the other in memory, between
/// samples of its edges: the normals are unit(across x tangent). Extends the box as by
/// Mesh::updateBB.
void fillRibbon(const CurveSamples& edgeA, const CurveSamples& edgeB,
                algebra3d::Vector3<double>* points, algebra3d::Vector3<double>* normals,
                double* minimum, double* maximum);

/// From so many vertices on two threads round them, a half each: a thread takes as long as some
/// thousands.
constexpr std::size_t MANY_VERTICES = 50000;

/// Rounds points and normals to floats, six for each vertex: its point, then its normal. Writes
/// nothing else.
void roundVertices(const algebra3d::Vector3<double>* points,
                   const algebra3d::Vector3<double>* normals, std::size_t count, float* rounded);

/// Rounds colours of three floats to four bytes each, red, green, blue and opacity, as
/// SbColor::getPackedValue() does. Where there are fewer transparencies, of which there is one at
/// least, the last one serves.
void roundColours(const float* colours, std::size_t count, const float* transparencies,
                  std::size_t transparencyCount, std::uint32_t* rounded);

/// Fills rows of so many columns with one colour each: the first one, and that many further on from
/// row to row, or the last where there are not so many.
void spreadColours(const std::uint32_t* colours, std::size_t count, std::size_t first,
                   std::size_t step, std::size_t rows, std::size_t width, std::uint32_t* to);

/// Constructs the points and normals of rings, one behind the other in memory.
struct RingFiller
{
    const double* directions; ///< cosine and sine per column
    int columns;
    double radius;
    algebra3d::Vector3<double>* points;
    algebra3d::Vector3<double>* normals;
    double* minimum; ///< extended as by Mesh::updateBB
    double* maximum;

    /// Normal cosine u + sine v, point centre + radius normal.
    void fill(const TubeMesh::RingFrame* rings, int count);
    /// The rings around samples with unit tangents, the frame d1, d2 being carried along.
    void fillCarried(const CurveSamples& samples, algebra3d::Vector3<double>& d1,
                     algebra3d::Vector3<double>& d2);
};

#endif
