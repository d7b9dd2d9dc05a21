// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_SOFRAME_H
#define STRANDVIEW_SOFRAME_H

#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoSubNode.h>

#include <StrandviewExport.h>
#include <algebra3d/Vector3.h>

class SoMaterial;

/// An orthonormal frame: three arrows of length 1 from the origin along x, y and z, each
/// in a colour of its own. A transformation before it places, turns and scales it.
///
/// Created by name its x axis is red, y green and z blue.
///
/// A copy has parts and colours of its own. Threads and references: see SoMeshShape.
class STRANDVIEW_EXPORT SoFrame : public SoSeparator
{
    SO_NODE_HEADER(SoFrame);

public:
    static void initClass();

    /// Red, green and blue of each axis, from 0 to 1.
    SoFrame(const algebra3d::Vector3<double>& colourX, const algebra3d::Vector3<double>& colourY,
            const algebra3d::Vector3<double>& colourZ);

    /// Of all three axes, from 0 (opaque) to 1; clamped to that.
    void setTransparency(double transparency);

    /// In a file it is the plain separator that it is made of, which any Coin program reads:
    /// it shows the same then, and is no SoFrame any more.
    const char* getFileFormatName() const override;
    void copyContents(const SoFieldContainer* from, SbBool copyConnections) override;

protected:
    ~SoFrame() override;

private:
    // Owned by the scene graph.
    SoMaterial* materialX;
    SoMaterial* materialY;
    SoMaterial* materialZ;
};

#endif
