// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef BIARC_CURVE_H
#define BIARC_CURVE_H

#include <vector>

#include <biarc/Biarc.h>
#include <biarc/PKFmanip.h>

/// A G1 curve of circular arcs through nodes: points with unit tangents.
///
/// Append the nodes in order, with zero tangents if computeTangents() is to
/// estimate them, then call makeMidpointRule(); from then on all biarcs but the
/// last of an open curve can be evaluated. The biarcs refer back to their curve,
/// so it neither moves nor is copied.
///
/// A curve owns its biarcs, and knows nothing of Coin: any thread may build and evaluate one, and
/// several may evaluate one that none of them changes.
template <class Vector>
class BIARC_EXPORT Curve : public PKFmanip
{
public:
    std::vector<Biarc<Vector>> biarcs;
    int closed; ///< 0: open; otherwise the last node is followed by the first

    /// An open curve without nodes.
    Curve();
    ~Curve() override;
    Curve(const Curve&) = delete;
    Curve& operator=(const Curve&) = delete;

    void append(const Vector& point, const Vector& tangent);

    /// Estimates every tangent, for at least 2 nodes: inside the direction from the
    /// node before to the node after, unweighted; at the ends of an open curve that
    /// of the first and the last segment.
    void computeTangents();

    /// Chooses the matching point and tangent of every biarc that has a next one,
    /// unguarded against coincident points and opposite tangents. The last node of
    /// an open curve only supplies its point and tangent and stays invalid.
    void makeMidpointRule();
};

extern template class Curve<Vector3>;

#endif
