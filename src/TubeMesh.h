// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TUBEMESH_H
#define STRANDVIEW_TUBEMESH_H

#include <vector>

#include <Mesh.h>
#include <MeshVisitor.h>
#include <algebra3d/Quaternion.h>

struct RingFiller;

/// A tube of circular section around a centreline, closed by two flat caps, or, if it is one
/// around a closed curve, meeting itself without any.
///
/// Row i is the ring around one sample of the centreline; it turns counter-clockwise
/// about the tangent. A ring has `slices` distinct points, and its last column
/// repeats the first. Normals are radial. Lengths are in the caller's unit.
///
/// Bad input is not an error: the mesh stays empty, isValid() is false, and an
/// invalid mesh draws nothing.
class STRANDVIEW_EXPORT TubeMesh : public Mesh, private MeshCaps
{
public:
    /// Where a ring's circle lies: its centre, and two unit axes of its plane.
    struct RingFrame
    {
        algebra3d::Vector3<double> centre, u, v;
    };

    /// Without rings, for subclasses that fill them. The radius is stored as
    /// max(|radius|, 0.0001), slices as at least 3. The two flags matter with
    /// per-vertex materials only: lowerCapTakesLast draws the first ring's cap in the
    /// last ring's material, upperCapTakesFirst the last ring's cap in the first's.
    TubeMesh(double radius, int slices, bool lowerCapTakesLast, bool upperCapTakesFirst);

    /// One ring per pair points[i], rotations[i]; the shorter sequence decides, and
    /// fewer than 2 give no rings. A ring starts at its frame's d2, projected across
    /// the tangent; the tangent comes from the points, as the unit sum of the unit
    /// directions from the point before and to the point after. Here the radius is
    /// max(|radius|, 0.01), on purpose a larger floor than above. A mesh that this one
    /// replaces hands over its memory and is empty then.
    TubeMesh(const std::vector<algebra3d::Vector3<double>>& points,
             const std::vector<algebra3d::Quaternion<double>>& rotations, double radius, int slices,
             bool lowerCapTakesLast, bool upperCapTakesFirst, TubeMesh* replaced = nullptr);

    /// The row: one material per ring.
    int getMaterialIndex(int row, int column) const override;
    /// The material that render() draws the cap at the first or the last row in with
    /// per-vertex binding: that of the row, unless the cap's flag says otherwise.
    int getCapMaterialIndex(int row) const;
    /// The body, then the lower and the upper cap.
    void render(SoGLRenderAction* action, int materialOffset) override;
    /// The same triangles; the caps in the material of their ring, whatever the flags.
    void generate(SoMeshShape* shape, SoAction* action) override;
    /// That of the body and width - 2 per cap: one more each than is drawn, on purpose. Of a
    /// tube that meets itself that of the body.
    int getPrimitiveCount() override;

    /// At least 2 rings of 3 distinct points. Drawing the body asks the const one of
    /// Mesh, the caps ask this one.
    virtual bool isValid();
    using Mesh::isValid;

    /// Unit normals of the caps; zero if invalid. Both point against the tangent,
    /// outward at the lower end and inward at the upper, on purpose.
    virtual algebra3d::Vector3<double> getUpperCapNormal();
    virtual algebra3d::Vector3<double> getLowerCapNormal();

    /// Writes width - 1 points of the unit circle in the plane of u and v, from u
    /// towards v: cos(angle) u + sin(angle) v, the angle growing by equal steps that
    /// are added up.
    virtual void generate3DCircle(algebra3d::Vector3<double> u, algebra3d::Vector3<double> v,
                                  algebra3d::Vector3<double>* out);

    double getRadius() const { return radius; }
    int getSlices() const { return slices; }

    /// Whether the last ring is the first one again, so that there are no caps.
    bool isMeetingItself() const { return meetsItself; }

protected:
    /// Makes the last ring the first one, which has its centre and plane, and has no caps any
    /// more. Each ring is turned about its tangent by a share of the angle between the two, at
    /// most half a turn; `shares` has one per ring, from 0 to 1.
    void meetItself(const std::vector<double>& shares);

    /// Mesh::takeMemory(), and the table of angles.
    void takeMemory(TubeMesh& replaced);

    /// Fills one ring around `centre`: normals by generate3DCircle(u, v), points one
    /// radius along them, the box, and the closing column.
    void fillRing(int row, const algebra3d::Vector3<double>& centre,
                  const algebra3d::Vector3<double>& u, const algebra3d::Vector3<double>& v);
    /// For this library's own meshes: what fills the rings from this row on much faster,
    /// with the circle of this class whatever a subclass makes of it, constructing the
    /// vectors. Good until the next allocation.
    RingFiller fillerFrom(int row);

private:
    void computeDirections(int slicesOfRing);
    RingFrame frameOf(int row);
    algebra3d::Vector3<double> capNormal(int row);
    bool areThere() final;
    void visitCap(int row, MeshVisitor& visitor) final;

    double radius;
    int slices;
    bool lowerCapTakesLast;
    bool upperCapTakesFirst;
    bool meetsItself = false;
    // Cosine and sine of each column's angle, the closing column's too: the same in every
    // ring.
    std::vector<double> directions;
};

#endif
