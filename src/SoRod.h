// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_SOROD_H
#define STRANDVIEW_SOROD_H

#include <memory>
#include <vector>

#include <BiarcRibbonMesh.h>
#include <BiarcTubeMesh.h>
#include <SoMeshShape.h>
#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>

class MeshDrawing;
class WrittenShape;

/// One elastic rod: centreline points with one orientation each, shown as a tube
/// around the centreline and a ribbon along the material frame's d2.
///
/// Both follow the biarc interpolation of the centreline. Lengths are in the unit of
/// the points. Changing radius, width, slices, subsegments or the two-sided flag
/// takes effect at the next generate(), the show flags at the next render.
///
/// With overall material binding the tube has material 0 and the ribbon material 1,
/// or 0 too if that is the only one.
/// With per-vertex binding there is one material per row: those of the tube's rings,
/// then those of the ribbon's rows.
///
/// A rod without correct data is invalid: it draws, bounds and counts nothing.
///
/// A copy has the data, the parameters and, where there are any, meshes of its own, built
/// from both; one of a subclass is a plain rod unless that overrides addToCopyDict(). In a
/// file a rod is the shapes that it shows, in the first material: the data and the materials
/// of ribbon and rows are lost.
///
/// Data are copied into the rod; it owns its meshes. makeMeshes() is for any thread, everything
/// else for Coin's (see SoMeshShape).
class STRANDVIEW_EXPORT SoRod : public SoMeshShape
{
    SO_NODE_ABSTRACT_HEADER(SoRod);

public:
    static void initClass();

    /// An invalid rod without points. All values are stored as they are.
    /// slices: points per ring of the tube; subsegments: rows per segment between two
    /// points; twoSidedRibbon: centred on the centreline instead of on one side.
    SoRod(double tubeRadius, double ribbonWidth, int slices, int subsegments, bool showTube,
          bool showRibbon, bool twoSidedRibbon);

    // Data

    /// Stores the configuration, checks it and generates the meshes; returns whether
    /// it is valid. Refused data empties the rod.
    bool setData(const std::vector<algebra3d::Vector3<double>>& points,
                 const std::vector<algebra3d::Quaternion<double>>& rotations);

    /// Both meshes of a rod.
    struct Meshes
    {
        std::unique_ptr<BiarcTubeMesh> tube;
        std::unique_ptr<BiarcRibbonMesh> ribbon;
    };
    /// The meshes that a rod of these values would generate from such data; null of data
    /// that are not correct. This touches nothing of Coin, so any thread may do it. The
    /// meshes have forgotten their curves: see BiarcTubeMesh::forgetCurve().
    static Meshes makeMeshes(const std::vector<algebra3d::Vector3<double>>& points,
                             const std::vector<algebra3d::Quaternion<double>>& rotations,
                             double tubeRadius, double ribbonWidth, int slices, int subsegments,
                             bool twoSidedRibbon, bool closed = false);
    /// setData() that takes the meshes that makeMeshes() made from the same data with the
    /// rod's values instead of generating them.
    bool setData(std::vector<algebra3d::Vector3<double>> points,
                 std::vector<algebra3d::Quaternion<double>> rotations, Meshes meshes);

    /// At least 2 points, as many rotations, each of them a unit quaternion within
    /// 0.01. Otherwise false, and both sequences are emptied.
    bool isDataCorrect();
    bool isValid() const;
    int getPointsNum() const;
    /// Point and rotation of one entry, the index clamped to the first and the last.
    /// An invalid rod leaves them unchanged.
    void getFrame(algebra3d::Vector3<double>& point, algebra3d::Quaternion<double>& rotation,
                  int index) const;

    // Meshes

    /// Rebuilds both meshes from the stored data, whatever the show flags say, in the
    /// memory of the old ones: the second time is much faster than the first.
    void generate();
    /// Deletes both meshes; the data stay. A valid rod without meshes draws nothing.
    void clear();
    /// The meshes, owned by the rod until the next generate(); null before it. Whoever
    /// changes one calls touch().
    BiarcTubeMesh* getTubeMesh() const;
    BiarcRibbonMesh* getRibbonMesh() const;

    /// The ribbon's edges, for as many points as edgeA has entries. Two-sided: half a
    /// width before and behind the point along d2; one-sided: the point itself, and a
    /// width behind it along d2.
    void generateRibbonData(const std::vector<algebra3d::Vector3<double>>& points,
                            const std::vector<algebra3d::Quaternion<double>>& rotations,
                            double width, std::vector<algebra3d::Vector3<double>>& edgeA,
                            std::vector<algebra3d::Vector3<double>>& edgeB);

    // Parameters

    double getTubeRadius() const;
    void setTubeRadius(double radius);
    double getRibbonWidth() const;
    void setRibbonWidth(double width);
    int getSlices() const;
    void setSlices(int count);
    int getSubsegments() const;
    /// Stores at least 1.
    void setSubsegments(int count);
    bool isShowingTube() const;
    void showTube(bool show);
    bool isShowingRibbon() const;
    void showRibbon(bool show);
    bool isTwoSidedRibbon() const;
    void setTwoSidedRibbon(bool twoSided);
    /// Whether a rod whose last point is the first one again, exactly, meets itself there: the
    /// tube has no caps, and is smooth where it has a seam otherwise; the ribbon meets itself if
    /// the last rotation is the first one or its opposite. The seam's tangent is that of the
    /// points beside it, not d3. At first not; takes effect at the next generate().
    bool isClosed() const;
    void setClosed(bool isClosed);

    void GLRender(SoGLRenderAction* action) override;
    /// Tube and ribbon, whatever the show flags say.
    void getPrimitiveCount(SoGetPrimitiveCountAction* action) override;

    SoNode* addToCopyDict() const override;
    void copyContents(const SoFieldContainer* from, SbBool copyConnections) override;
    void write(SoWriteAction* action) override;
    void addWriteReference(SoOutput* output, SbBool isFromField) override;

protected:
    ~SoRod() override;
    void generatePrimitives(SoAction* action) override;
    /// Tube and ribbon, whatever the show flags say.
    void computeBBox(SoAction* action, SbBox3f& box, SbVec3f& centre) override;

private:
    void buildMeshes();
    bool hasMeshes() const;

    double tubeRadius;
    double ribbonWidth;
    int slices;
    int subsegments;
    std::vector<algebra3d::Vector3<double>> points;
    std::vector<algebra3d::Quaternion<double>> rotations;
    std::unique_ptr<BiarcTubeMesh> tubeMesh;
    std::unique_ptr<BiarcRibbonMesh> ribbonMesh;
    std::unique_ptr<MeshDrawing> drawing;
    std::unique_ptr<WrittenShape> written;
    bool showingTube;
    bool showingRibbon;
    bool twoSidedRibbon;
    bool closed = false;
    bool valid;
};

#endif
