// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_DATASCENE_H
#define STRANDVIEW_APP_SCENE_DATASCENE_H

#include <functional>
#include <map>
#include <string>
#include <vector>

#include <Inventor/SbBox3f.h>
#include <SoGeneralScene.h>

#include "request/CameraRequest.h"
#include "request/Colour.h"
#include "scene/Placement.h"
#include "scene/Told.h"

class BiarcTubeMesh;
class SoSwitch;

namespace strandview {

/// The program's scene: it knows which data its nodes show, and tells what was picked.
class DataScene : public SoGeneralScene
{
public:
    explicit DataScene(const Placement& placementOfData);

    /// Adds a group with a node that shows some data, so that picks can be told by name.
    void addNamed(SoNode* group, const SoNode* node, const std::string& name);

    /// The box that everything added lies in.
    void extendBox(const SbBox3f& more);
    const SbBox3f& getBox() const { return box; }

    /// The side that it is seen from unless another is asked for.
    void setSide(Side side) { standardSide = side; }
    /// What was asked for, with what it leaves open.
    CameraRequest settle(CameraRequest request) const;

    // Colours of data, shown at first

    /// A node that gives what follows it its own colours or those of data.
    SoNode* addColours(SoNode* own, SoNode* ofData);
    /// Adds a legend that is drawn over the scene, for the colours that were added.
    void addLegend(SoNode* node);
    bool hasColours() const;
    /// Whether data give the colours, and the legend is there. There are no highlights then,
    /// so that what is turned to the light has the legend's colours; once the user has changed
    /// that, highlights are left alone.
    void showColours(bool show);
    /// The part of a view's height, at its bottom, that the legend takes.
    float getLegendHeight() const;
    /// Keeps the legend readable on another background.
    void setBackground(const Colour& background);

    /// "point 0.1 2 3, arc length 1.5 of 8" of "helix.txt:1: rod 1", in the data's
    /// coordinates; the arc length is that of the nearest point of the centreline, of a
    /// birod its average's. "pair 12 AT, strand 2, point 0.1 2 3" of "dna.txt:1: DNA 1".
    Told describe(const SoPickedPoint& picked) const;

    /// Called with the description of what the user picks, if set.
    std::function<void(const Told&)> onPick;

    /// The box as it was told: what Coin makes of many turned boxes, such as a DNA's, is
    /// much larger, and costs their number in every frame.
    void getBoundingBox(SoGetBoundingBoxAction* action) override;
    /// Tells onPick. The pick stays free for the viewer: false.
    bool processPickEvent(const SoPickedPoint* point) override;

private:
    ~DataScene() override = default;

    using Shininess = std::vector<float>;
    Shininess getShininess();
    void setShininess(const Shininess& values);

    Placement placement;
    SbBox3f box;
    Side standardSide = Side::Z;
    std::vector<SoSwitch*> colours; ///< children: own, of data
    SoSwitch* legend = nullptr;
    Shininess highlights;           ///< while colours are shown: those without
    bool areUserHighlights = false; ///< changed while colours were shown
    std::map<const SoNode*, std::string> names;
};

/// The arc length, in the scene, of the point of a tube's centreline that is nearest to
/// a point of the scene.
double nearestArcLength(BiarcTubeMesh& tube, const algebra3d::Vector3<double>& point);

} // namespace strandview

#endif
