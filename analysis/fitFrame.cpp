// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/fitFrame.h>

#include <cmath>
#include <cstddef>
#include <memory>

#include <algebra3d/rotations.h>
#include <gsl/gsl_eigen.h>

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;
using Points = std::vector<Vector>;
using Rotation = algebra3d::Quaternion<double>;

Vector meanOf(const Points& points)
{
    Vector sum;
    for (const Vector& point : points)
        sum += point;
    return sum * (1 / double(points.size()));
}

/// Horn's matrix of the products of both coordinates, of which the quaternion is the eigenvector
/// of the largest eigenvalue; scalar first, row by row.
void fillMatrix(const Points& places, const Vector& centre, const Points& measured,
                const Vector& measuredCentre, double (&n)[16])
{
    double s[3][3] = {};
    for (std::size_t i = 0; i < places.size(); ++i) {
        const Vector a = places[i] - centre, b = measured[i] - measuredCentre;
        for (int row = 0; row < 3; ++row)
            for (int column = 0; column < 3; ++column)
                s[row][column] += a[row] * b[column];
    }
    const double xx = s[0][0], yy = s[1][1], zz = s[2][2];
    const double yz = s[1][2] - s[2][1], zx = s[2][0] - s[0][2], xy = s[0][1] - s[1][0];
    const double xPlusY = s[0][1] + s[1][0], zPlusX = s[2][0] + s[0][2];
    const double yPlusZ = s[1][2] + s[2][1];
    const double rows[16] = {xx + yy + zz, yz,           zx,           xy,     //
                             yz,           xx - yy - zz, xPlusY,       zPlusX, //
                             zx,           xPlusY,       yy - xx - zz, yPlusZ, //
                             xy,           zPlusX,       yPlusZ,       zz - xx - yy};
    for (int i = 0; i < 16; ++i)
        n[i] = rows[i];
}

// Of places on a line, or in one, the best turns are many: the largest eigenvalue is there more
// than once, but for rounding.
const double SAME_EIGENVALUE = 1e-12;

/// Of the quaternions that are as good as the first one the nearest to no turn, which is their
/// part of the scalar axis.
Rotation smallestTurn(const double (&values)[4], const double (&vectors)[16])
{
    Rotation sum(0, 0, 0, 0);
    for (int i = 0; i < 4 && values[0] - values[i] <= SAME_EIGENVALUE * values[0]; ++i)
        for (int component = 0; component < 4; ++component) // of which the scalar is GSL's first
            sum[component] += vectors[i] * vectors[4 * ((component + 1) % 4) + i];
    const double share = dot(sum, sum);
    return share > SAME_EIGENVALUE
               ? algebra3d::scaledToUnit(sum)
               : Rotation(vectors[4], vectors[8], vectors[12], vectors[0]); // half a turn
}

Rotation largestEigenvector(double (&matrix)[16])
{
    double values[4], vectors[16];
    gsl_matrix_view m = gsl_matrix_view_array(matrix, 4, 4);
    gsl_vector_view eval = gsl_vector_view_array(values, 4);
    gsl_matrix_view evec = gsl_matrix_view_array(vectors, 4, 4);
    const std::unique_ptr<gsl_eigen_symmv_workspace, void (*)(gsl_eigen_symmv_workspace*)>
        workspace(gsl_eigen_symmv_alloc(4), gsl_eigen_symmv_free);
    gsl_eigen_symmv(&m.matrix, &eval.vector, &evec.matrix, workspace.get());
    gsl_eigen_symmv_sort(&eval.vector, &evec.matrix, GSL_EIGEN_SORT_VAL_DESC);
    if (values[0] - values[1] <= SAME_EIGENVALUE * values[0])
        return smallestTurn(values, vectors);
    return algebra3d::scaledToUnit(Rotation(vectors[4], vectors[8], vectors[12], vectors[0]));
}

} // namespace

FittedFrame fitFrame(const Points& places, const Points& measured)
{
    const Vector centre = meanOf(places), measuredCentre = meanOf(measured);
    double matrix[16];
    fillMatrix(places, centre, measured, measuredCentre, matrix);
    FittedFrame frame;
    frame.rotation = largestEigenvector(matrix);
    frame.point = measuredCentre - rotated(centre, frame.rotation);
    double squares = 0;
    for (std::size_t i = 0; i < places.size(); ++i) {
        const Vector left = frame.point + rotated(places[i], frame.rotation) - measured[i];
        squares += left.dot(left);
    }
    frame.rms = std::sqrt(squares / double(places.size()));
    return frame;
}

} // namespace strandview
