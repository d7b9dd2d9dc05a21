// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_SONUCLEOBASE_H
#define STRANDVIEW_SONUCLEOBASE_H

#include <memory>

#include <Inventor/lists/SoNodeList.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoSubNode.h>

#include <StrandviewExport.h>
#include <algebra3d/Vector3.h>

class GlyphDrawing;
class SoComplexity;
class SoCube;
class SoMaterial;
class SoSphere;
class SoSwitch;
class SoTranslation;

/// One nucleobase in its own reference frame, in ångström: its atoms as balls, and a flat box
/// standing for the base. At first the atoms are shown and the box is hidden.
///
/// Its children are a switch over the atoms, each a separator of a translation and the group
/// of the atom's kind, and a switch over the box. Atoms of a kind share material, complexity
/// and sphere, so a change shows at all of them at once. The geometry is that of idealbases.
///
/// A node made for a letter that is no base stays empty: its getters answer -1, the colour
/// (-1, -1, -1) or false, and its setters do nothing.
///
/// A copy has parts of its own. Threads and references: see SoMeshShape.
class STRANDVIEW_EXPORT SoNucleobase : public SoSeparator
{
    SO_NODE_HEADER(SoNucleobase);

public:
    enum Atom : int { CARBON = 0, NITROGEN = 1, OXYGEN = 2 };

    static void initClass();

    /// The base of that letter, in either case. Upright bases stand as in the tables; others
    /// are mirrored, y becoming -y.
    explicit SoNucleobase(char base = 'A', bool upright = true);

    // Atoms. An invalid Atom is ignored, or answered like an empty node.

    /// Red, green, blue: the kind's ambient and diffuse colour.
    void setAtomColour(Atom atom, algebra3d::Vector3<double> colour);
    algebra3d::Vector3<double> getAtomColour(Atom atom) const;
    /// Stores the absolute value.
    void setAtomRadius(Atom atom, double radius);
    double getAtomRadius(Atom atom) const;
    /// Coin's complexity of all spheres, stored as it is.
    void setAtomComplexity(double complexity);
    double getAtomComplexity() const;
    void showAtoms(bool show);
    bool areAtomsShown() const;

    // Box

    /// Red, green, blue: the box's ambient and diffuse colour.
    void setBoxColour(algebra3d::Vector3<double> colour);
    algebra3d::Vector3<double> getBoxColour() const;
    /// The thickness across the base's plane; stores the absolute value.
    void setBoxHeight(double height);
    double getBoxHeight() const;
    /// Only for a node made for a valid letter; not checked, and so is isBoxShown().
    void showBox(bool show);
    bool isBoxShown() const;
    /// Whether the box is as long along y as this base's own atoms, which makes those of
    /// pyrimidines shorter; otherwise all bases have the same box.
    void setSmallerPyr(bool smaller);
    bool isPyrSmaller() const;

    // Look-ups. A base is named by its letter or by its index 0 to 3 in BASES; other indices,
    // negative ones too, are out of range.

    static bool isBaseCorrect(char base);     ///< upper case only
    static int getBaseIndex(char base);       ///< upper case only; otherwise -1
    static char getBase(int index);           ///< NUL out of range
    static char getComplement(int index);     ///< NUL out of range
    static char getComplement(char base);     ///< in either case; NUL for no base
    static int getComplementIndex(int index); ///< -1 out of range
    static int getComplementIndex(char base); ///< in either case; -1 for no base
    /// The three numbers of COLOUR_BASES_DEF; null out of range.
    static const double* getDefColour(int index);
    static const double* getDefColour(char base); ///< in either case; null for no base
    static bool isAtomCorrect(Atom atom);
    /// The extents in the plane of all atoms of all bases but C1'.
    static void getAllBasesBB(double& xMin, double& xMax, double& yMin, double& yMax);

    // Constants

    static const char BASES[5];       ///< "ATGC"
    static const char COMPLEMENTS[5]; ///< aligned with BASES
    static const double COLOUR_ATOMS_DEF[3][3];
    /// Sphere radii of the kinds, after the AMBER force field; nitrogen is the smallest.
    static const double ATOM_R_AMBER[3];
    static const double COLOUR_BASES_DEF[4][3];
    static const double BASE_HEIGHT_DEF;

    /// Draws the base from buffers where its parts and the state allow it, and traverses them
    /// elsewhere; see docs/architecture.md.
    void GLRenderBelowPath(SoGLRenderAction* action) override;

    /// In a file it is the plain separator that it is made of, which any Coin program reads:
    /// it shows the same then, and is no SoNucleobase any more.
    const char* getFileFormatName() const override;
    void copyContents(const SoFieldContainer* from, SbBool copyConnections) override;

protected:
    ~SoNucleobase() override;

private:
    void addAtoms();
    void addBox();
    bool hasAtoms(Atom atom) const;

    char base;
    int baseIndex = -1;
    bool upright;
    bool smallerPyr = false;
    // The parts live as descendants; all null for a letter that is no base.
    SoMaterial* boxMaterial = nullptr;
    SoCube* box = nullptr;
    SoTranslation* boxTranslation = nullptr;
    SoSwitch* boxSwitch = nullptr;
    SoComplexity* atomComplexity = nullptr;
    SoMaterial* atomMaterials[3] = {};
    SoSeparator* atomGroups[3] = {};
    SoSphere* atomSpheres[3] = {};
    SoSwitch* atomSwitch = nullptr;
    SoNodeList unplacedGroups; // referenced here: adenine has no oxygen, but can be asked
    std::unique_ptr<GlyphDrawing> drawing; // from the first time it is drawn alone
};

#endif
