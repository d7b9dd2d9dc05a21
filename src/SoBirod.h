// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_SOBIROD_H
#define STRANDVIEW_SOBIROD_H

#include <memory>
#include <vector>

#include <BiarcRibbonMesh.h>
#include <BiarcTubeMesh.h>
#include <SoMeshShape.h>
#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>

class MeshDrawing;
class WrittenShape;

/// A birod: an average rod and two strands, each a centreline with one orientation per
/// point, shown as a tube and a ribbon each.
///
/// The strands are shown beside their own centrelines, displaced in their own material
/// frames: the first by x d1 + y d2, the second, mirrored, by x d1 - y d2. All six
/// surfaces follow biarc interpolations. Lengths are in the unit of the points.
/// Changing radii, widths, the strands' place, slices, subsegments or the two-sided
/// flag takes effect at the next generate(), the show flags at the next render.
///
/// With per-vertex binding there is one material per row, hidden meshes included: those
/// of the average tube, the average ribbon, tube 1, ribbon 1, tube 2 and ribbon 2, one
/// after the other. With overall binding the average tube has material 0, and the k-th
/// mesh after it, in that order, material k plus the number of rows of the mesh before
/// it, or the last one there is.
///
/// A birod without correct data is invalid: it draws, bounds and counts nothing.
///
/// Copied and written as a SoRod: a copy has data, parameters and meshes of its own; a file
/// has the shapes shown, in the first material.
/// For Coin's thread alone; it owns data and meshes.
class STRANDVIEW_EXPORT SoBirod : public SoMeshShape
{
    SO_NODE_ABSTRACT_HEADER(SoBirod);

public:
    static void initClass();

    /// An invalid birod without points. All values are stored as they are.
    /// strandXPos, strandYPos: x and y above; slices: points per ring of all tubes;
    /// subsegments: rows per segment between two points; twoSidedRibbon: all ribbons
    /// are centred on their centrelines instead of on one side.
    SoBirod(double avgTubeRadius, double tubesRadius, double avgRibbonWidth, double ribbonsWidth,
            double strandXPos, double strandYPos, int slices, int subsegments, bool showAvgTube,
            bool showTubes, bool showAvgRibbon, bool showRibbons, bool twoSidedRibbon);

    // Data

    /// Stores the configuration, checks it and generates the meshes; returns whether
    /// it is valid. Refused data empties the birod.
    bool setData(const std::vector<algebra3d::Vector3<double>>& avgPoints,
                 const std::vector<algebra3d::Quaternion<double>>& avgRotations,
                 const std::vector<algebra3d::Vector3<double>>& points1,
                 const std::vector<algebra3d::Quaternion<double>>& rotations1,
                 const std::vector<algebra3d::Vector3<double>>& points2,
                 const std::vector<algebra3d::Quaternion<double>>& rotations2);

    /// What setData() is given: a centreline and its frames, of the average and of both strands.
    struct Data
    {
        std::vector<algebra3d::Vector3<double>> avgPoints;
        std::vector<algebra3d::Quaternion<double>> avgRotations;
        std::vector<algebra3d::Vector3<double>> points1;
        std::vector<algebra3d::Quaternion<double>> rotations1;
        std::vector<algebra3d::Vector3<double>> points2;
        std::vector<algebra3d::Quaternion<double>> rotations2;
    };
    /// All meshes of a birod.
    struct Meshes
    {
        std::unique_ptr<BiarcTubeMesh> avgTube, tube1, tube2;
        std::unique_ptr<BiarcRibbonMesh> avgRibbon, ribbon1, ribbon2;
    };
    /// The meshes that a birod of these values would generate from such data; null of data
    /// that are not correct. This touches nothing of Coin, so any thread may do it. The
    /// meshes have forgotten their curves: see BiarcTubeMesh::forgetCurve().
    static Meshes makeMeshes(const Data& data, double avgTubeRadius, double tubesRadius,
                             double avgRibbonWidth, double ribbonsWidth, double strandXPos,
                             double strandYPos, int slices, int subsegments, bool twoSidedRibbon);
    /// setData() that takes the meshes that makeMeshes() made from the same data with the
    /// birod's values instead of generating them.
    bool setData(Data data, Meshes meshes);

    /// At least 2 average points, as many of everything else, and each rotation a unit
    /// quaternion within 0.01. Otherwise false, and all sequences are emptied.
    bool isDataCorrect();
    bool isValid() const;
    /// The number of average points.
    int getPointsNum() const;
    /// Points, as they are shown, and rotations of the strands at one entry, the index
    /// clamped to the first and the last. An invalid birod leaves them unchanged.
    void getFrames(algebra3d::Vector3<double>& point1, algebra3d::Quaternion<double>& rotation1,
                   algebra3d::Vector3<double>& point2, algebra3d::Quaternion<double>& rotation2,
                   int index) const;
    /// The same of the average.
    void getAvgFrame(algebra3d::Vector3<double>& point, algebra3d::Quaternion<double>& rotation,
                     int index) const;

    // Meshes

    /// Rebuilds all six meshes from the stored data, whatever the show flags say.
    void generate();
    /// Deletes the meshes; the data stay. A valid birod without meshes draws nothing.
    void clear();
    /// The meshes, owned by the birod until the next generate(); null before it. Whoever
    /// changes one calls touch().
    BiarcTubeMesh* getAvgTubeMesh() const;
    BiarcTubeMesh* getTube1Mesh() const;
    BiarcTubeMesh* getTube2Mesh() const;
    BiarcRibbonMesh* getAvgRibbonMesh() const;
    BiarcRibbonMesh* getRibbon1Mesh() const;
    BiarcRibbonMesh* getRibbon2Mesh() const;

    /// Recomputes where the strands are shown. The meshes stay; generate() calls it.
    void updateStrandPositions();

    /// A ribbon's edges, for as many points as edgeA has entries. Two-sided: half a
    /// width before and behind the point along d2; one-sided: the point itself, and a
    /// width behind it along d2.
    void generateRibbonData(const std::vector<algebra3d::Vector3<double>>& points,
                            const std::vector<algebra3d::Quaternion<double>>& rotations,
                            double width, std::vector<algebra3d::Vector3<double>>& edgeA,
                            std::vector<algebra3d::Vector3<double>>& edgeB);

    // Parameters

    double getAvgTubeRadius() const;
    void setAvgTubeRadius(double radius);
    double getTubesRadius() const;
    void setTubesRadius(double radius);
    double getAvgRibbonWidth() const;
    void setAvgRibbonWidth(double width);
    double getRibbonsWidth() const;
    void setRibbonsWidth(double width);
    double getStrandXPos() const;
    void setStrandXPos(double x);
    double getStrandYPos() const;
    void setStrandYPos(double y);
    int getSlices() const;
    void setSlices(int count);
    int getSubsegments() const;
    /// Stores at least 1.
    void setSubsegments(int count);
    bool isShowingAvgTube() const;
    void showAvgTube(bool show);
    /// Those of both strands.
    bool isShowingTubes() const;
    void showTubes(bool show);
    bool isShowingAvgRibbon() const;
    void showAvgRibbon(bool show);
    /// Those of both strands.
    bool isShowingRibbons() const;
    void showRibbons(bool show);
    bool isTwoSidedRibbon() const;
    void setTwoSidedRibbon(bool twoSided);

    void GLRender(SoGLRenderAction* action) override;
    /// What is shown, unlike that of a rod.
    void getPrimitiveCount(SoGetPrimitiveCountAction* action) override;

    SoNode* addToCopyDict() const override;
    void copyContents(const SoFieldContainer* from, SbBool copyConnections) override;
    void write(SoWriteAction* action) override;
    void addWriteReference(SoOutput* output, SbBool isFromField) override;

protected:
    ~SoBirod() override;
    void generatePrimitives(SoAction* action) override;
    /// All six meshes, whatever the show flags say.
    void computeBBox(SoAction* action, SbBox3f& box, SbVec3f& centre) override;

private:
    /// The average or one strand.
    struct Rod
    {
        std::vector<algebra3d::Vector3<double>> points; ///< as given
        std::vector<algebra3d::Quaternion<double>> rotations;
        std::vector<algebra3d::Vector3<double>> positions; ///< as shown; of a strand only
        std::unique_ptr<BiarcTubeMesh> tube;
        std::unique_ptr<BiarcRibbonMesh> ribbon;
    };
    /// The meshes in the order of their materials.
    enum Part { AVG_TUBE, AVG_RIBBON, TUBE_1, RIBBON_1, TUBE_2, RIBBON_2 };

    void deleteMeshes();
    void buildMeshes();
    bool hasMeshes() const;
    Mesh& getMesh(Part part) const;
    bool isShowing(Part part) const;
    int getMaterialOffset(Part part, bool overall) const;

    double avgTubeRadius;
    double tubesRadius;
    double avgRibbonWidth;
    double ribbonsWidth;
    double strandXPos;
    double strandYPos;
    int slices;
    int subsegments;
    Rod average;
    Rod strand1;
    Rod strand2;
    std::unique_ptr<MeshDrawing> drawing;
    std::unique_ptr<WrittenShape> written;
    bool showingAvgTube;
    bool showingTubes;
    bool showingAvgRibbon;
    bool showingRibbons;
    bool twoSidedRibbon;
    bool valid;
};

#endif
