// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_ANALYSIS_FOURSTRETCHES_H
#define STRANDVIEW_ANALYSIS_FOURSTRETCHES_H

#include <cstddef>

#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>

#include <strandview/analysisExport.h>

namespace strandview {

/// Four stretches of a centreline, of one length, one behind the other: what turns frames along all
/// of them is computed beside each other, and by AVX2 where the processor has it. All doubles are
/// those of the formulas for one point after the other, whatever processor it is.
///
/// From one point to the next a frame is turned by two reflections, the normals of which are the
/// edge e and n = t' - t + 2 (e . t) e between the unit tangents t and t' (W. Wang, B. Juettler, D.
/// Zheng, Y. Liu, Computation of rotation minimizing frames, ACM Trans. Graph. 27, 2008, 2:1-2:18).
/// As a quaternion that is the unit of (e x n, e . n), which is (e x (t' - t), e . (t' + t)), of an
/// edge of any length. Tangents are the directions from the point before to the point after.
///
/// A plain value of some 16 KB for any thread.
class STRANDVIEW_ANALYSIS_EXPORT FourStretches
{
public:
    static constexpr std::size_t LONGEST = 128; ///< of one, in points

    /// Computes what turns the frame of the point before each stretch into that of each of its
    /// points. `first` is the first stretch's first point; the two points before it and one behind
    /// the last stretch are read, too. False where the centreline nearly turns back on itself, or
    /// edges are so short or so long that their squares lose digits: then nothing is there.
    bool findTurns(const algebra3d::Vector3<double>* first, std::size_t length);

    /// Turns the frame of the point before a stretch, 0 to 3, into those of all of its points.
    void turn(std::size_t stretch, const algebra3d::Quaternion<double>& before,
              algebra3d::Quaternion<double>* frames) const;

private:
    std::size_t count = 0;
    double turns[LONGEST][4][4]; ///< x, y, z and w, each of the four stretches
};

} // namespace strandview

#endif
