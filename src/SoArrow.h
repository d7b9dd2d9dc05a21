// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_SOARROW_H
#define STRANDVIEW_SOARROW_H

#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoSubNode.h>

#include <StrandviewExport.h>
#include <algebra3d/Vector3.h>

/// An arrow between two points: a cylinder as its shaft, a cone as its head.
///
/// It has no material of its own and cannot be changed once made. Created by name it is
/// a cylinder of radius 0.1 from the origin to (0, 1, 0).
///
/// A copy has parts of its own. Threads and references: see SoMeshShape.
class STRANDVIEW_EXPORT SoArrow : public SoSeparator
{
    SO_NODE_HEADER(SoArrow);

public:
    static void initClass();

    /// The head ends at `to`. One longer than the arrow takes all of it, without a
    /// shaft; a head of no length or radius is not there. Its length is cut off the
    /// shaft even where it has no radius. If `from` is `to` nothing is drawn.
    SoArrow(const algebra3d::Vector3<double>& from, const algebra3d::Vector3<double>& to,
            double shaftRadius, double headRadius, double headLength);

    /// Makes it the arrow that the constructor makes of these: replaces what it holds, and stays
    /// the same node, in the same material.
    void setArrow(const algebra3d::Vector3<double>& from, const algebra3d::Vector3<double>& to,
                  double shaftRadius, double headRadius, double headLength);

    /// In a file it is the plain separator that it is made of, which any Coin program reads:
    /// it shows the same then, and is no SoArrow any more.
    const char* getFileFormatName() const override;

protected:
    ~SoArrow() override;
};

#endif
