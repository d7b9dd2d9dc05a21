// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_SOMARKER_H
#define STRANDVIEW_SOMARKER_H

#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoSubNode.h>

#include <StrandviewExport.h>
#include <algebra3d/Vector3.h>

class SoCube;
class SoMaterial;
class SoScale;
class SoSphere;
class SoSwitch;

/// A sphere, cube or cross at the origin, with a number by which a host can tell markers
/// apart, after picking one for instance.
///
/// The cross is made of arrows: SoArrow::initClass() too comes before the first marker.
/// Created by name it is number -1, a white sphere of size 1, fully transparent.
///
/// A copy has number, material and shapes of its own. Threads and references: see SoMeshShape.
class STRANDVIEW_EXPORT SoMarker : public SoSeparator
{
    SO_NODE_HEADER(SoMarker);

public:
    enum Shape : int {
        SPHERE, ///< its diameter is the size
        CUBE,   ///< its edge is the size
        CROSS   ///< three bars along the axes, 1.6 sizes long and of radius 0.2 sizes
    };
    static constexpr int NUM_SHAPES = 3;

    static void initClass();

    /// colour: red, green and blue from 0 to 1; size: see setSize(); transparency: from 0
    /// (opaque) to 1, stored as it is. No shape is shown if it is none of the three.
    SoMarker(long long id, const algebra3d::Vector3<double>& colour, double size,
             double transparency, Shape shape);

    /// A new separator of a translation to `position`, the scale and the marker, without
    /// a reference. Markers that share a scale all change with it.
    static SoSeparator* wrap(SoMarker* marker, SoScale* scale,
                             const algebra3d::Vector3<double>& position);

    long long getId() const;
    void setId(long long id);

    /// Anything but the three shapes is ignored.
    void setShape(Shape shape);
    /// Of a marker that shows none, -1.
    Shape getShape() const;

    /// 0 means 1, and a negative size its absolute value.
    void setSize(double size);
    double getSize() const;

    /// Anything outside of 0 to 1 is ignored.
    void setTransparency(double transparency);
    double getTransparency() const;

    void setColour(double r, double g, double b);
    void getColour(double& r, double& g, double& b) const;

    /// In a file it is the plain separator that it is made of, which any Coin program reads:
    /// it shows the same then, and is no SoMarker any more.
    const char* getFileFormatName() const override;
    void copyContents(const SoFieldContainer* from, SbBool copyConnections) override;

protected:
    ~SoMarker() override;

private:
    long long id;
    // Owned by the scene graph.
    SoMaterial* material;
    SoSwitch* shapeSwitch;
    // Referenced here.
    SoSphere* sphere;
    SoCube* cube;
    SoScale* scale; ///< of the cross
    SoSeparator* cross;
};

#endif
