// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_SODNA_H
#define STRANDVIEW_SODNA_H

#include <memory>
#include <string>
#include <vector>

#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoSubNode.h>

#include <SoNucleobase.h>
#include <StrandviewExport.h>
#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>

class DnaDrawing;
class SoCube;
class SoMaterial;
class SoSwitch;
template <typename Group>
class PlacedGroup;

/// A DNA double strand as a stack of base pairs, in ångström: per pair a box in the pair's
/// average frame, and the two nucleobases, each in its own frame.
///
/// Its children are a switch with one separator per pair for the boxes, and a separator with
/// two separators per pair for the bases, strand 1 first. Each of them holds a transform and
/// what is placed by it: the one pair box, or one of eight nucleobases, the four of strand 1
/// upright, those of strand 2 mirrored. All pairs share these nine, so a change of one shows
/// at every pair at once. The sequence is that of strand 1; strand 2 has the complements.
///
/// The separators and their transforms are made when somebody asks for them: a DNA that is drawn,
/// bounded, or searched for something else has none.
///
/// setData() stores and checks, generate() builds. Refused data empties what is stored and
/// leaves the picture as it was until the next generate(). Backbones are not part of a DNA.
///
/// A copy has data, the nine shared parts and pairs of its own. Threads and references: see
/// SoMeshShape.
class STRANDVIEW_EXPORT SoDNA : public SoSeparator
{
    SO_NODE_HEADER(SoDNA);

public:
    using Vectors = std::vector<algebra3d::Vector3<double>>;
    using Quaternions = std::vector<algebra3d::Quaternion<double>>;
    using Atom = SoNucleobase::Atom;

    static void initClass();

    /// A DNA without pairs.
    SoDNA();

    // Data

    /// Copies one letter of ATGC per pair, and per pair position and unit quaternion (within
    /// 0.01) of the average frame and of the bases of strand 1 and 2. Returns whether they
    /// are correct; see checkData(). The graph stays as it is until generate().
    bool setData(const std::string& sequence, const Vectors& rAvg, const Quaternions& qAvg,
                 const Vectors& r1, const Quaternions& q1, const Vectors& r2,
                 const Quaternions& q2);
    /// Rebuilds the pairs from the stored data, in time linear in their number: the former
    /// separators are removed, and others are made once they are asked for.
    void generate();

    const std::string& getSequence() const;
    const Vectors& getRAvg() const;
    const Quaternions& getQAvg() const;
    const Vectors& getR1() const;
    const Quaternions& getQ1() const;
    const Vectors& getR2() const;
    const Quaternions& getQ2() const;
    int getNumBP() const;

    /// 0 if every letter is one of ATGC, upper case; otherwise the place of the first one that
    /// is not, counted from 1. Zero means correct, whatever the name says.
    static int isSequenceCorrect(std::string sequence);

    /// What the pairs share, without their being made: the base with that letter, upper case, of
    /// strand 1 or 2, null for any other; and the box of the pairs.
    SoNucleobase* getNucleobase(char base, int strand) const;
    SoCube* getPairBox() const;

    // Bases: SoNucleobase's operations of these names, or of its box, for all pairs and both
    // strands, adenine's of strand 1 answering. What is invalid is answered as by an empty base.

    void setAtomColour(Atom atom, algebra3d::Vector3<double> colour);
    algebra3d::Vector3<double> getAtomColour(Atom atom) const;
    void setAtomRadius(Atom atom, double radius);
    double getAtomRadius(Atom atom) const;
    void setAtomComplexity(double complexity);
    double getAtomComplexity() const;
    /// Whether the atoms get as many corners as they need to look round where they are seen, and
    /// no more, instead of what their complexity says; for drawing alone, not for other actions.
    /// At first their complexity decides.
    void drawAtomsRound(bool round);
    bool areAtomsDrawnRound() const;
    void showAtoms(bool show);
    bool areAtomsShown() const;
    void showBaseBoxes(bool show);
    bool areBaseBoxesShown() const;
    void setSmallerPyr(bool smaller);
    bool isPyrSmaller() const;
    /// Of the base with that letter, upper case, in both strands.
    void setBaseColour(char base, algebra3d::Vector3<double> colour);
    algebra3d::Vector3<double> getBaseColour(char base) const;

    // Pair boxes

    /// SoNucleobase's of all base boxes, and of the pair boxes.
    void setBoxHeight(double height);
    double getBoxHeight() const;
    void setBasepairColour(algebra3d::Vector3<double> colour);
    algebra3d::Vector3<double> getBasepairColour() const;
    void showBasePairBoxes(bool show);
    bool areBasePairBoxesShown() const;

    static const double COLOUR_BP_DEF[3];

    /// As SoNucleobase's, all pairs together.
    void GLRenderBelowPath(SoGLRenderAction* action) override;

    /// As SoNucleobase's.
    const char* getFileFormatName() const override;
    void copyContents(const SoFieldContainer* from, SbBool copyConnections) override;

protected:
    ~SoDNA() override;
    /// As many frames of each kind as letters, all letters correct and all quaternions too
    /// (isDataCorrect: a single pair's are not examined). Otherwise false, and all stored data
    /// is emptied.
    bool checkData();
    /// Removes the pairs; what they share stays.
    void clear();

private:
    void createBP();
    template <typename Action>
    void forEachBase(Action action);

    SoMaterial* bpMaterial;
    SoNucleobase* strand1Bases[4];
    SoNucleobase* strand2Bases[4];
    SoCube* bpBox;
    SoSeparator* bpGroup;
    std::string sequence;
    Vectors rAvg;
    Quaternions qAvg;
    Vectors r1;
    Quaternions q1;
    Vectors r2;
    Quaternions q2;
    PlacedGroup<SoSwitch>* bpSwitch;
    PlacedGroup<SoSeparator>* basesGroup;
    std::unique_ptr<DnaDrawing> drawing;
};

#endif
