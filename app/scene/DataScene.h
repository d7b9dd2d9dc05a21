// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_DATASCENE_H
#define STRANDVIEW_APP_SCENE_DATASCENE_H

#include <array>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include <Inventor/SbBox3f.h>
#include <Inventor/sensors/SoNodeSensor.h>
#include <SoGeneralScene.h>

#include "request/CameraRequest.h"
#include "request/Colour.h"
#include "request/FreeEdges.h"
#include "request/ThingLook.h"
#include "scene/Colouring.h"
#include "scene/PickedPlace.h"
#include "scene/Placement.h"
#include "scene/SceneGeometry.h"
#include "scene/ShownDatum.h"
#include "scene/Style.h"
#include "scene/Thing.h"
#include "scene/Told.h"

namespace strandview {

class Ghost;
class Legend;
class ScaleBar;
struct Configuration;

/// The program's scene: it knows which nodes show which datum, and tells what was picked.
/// Placement and style are those of the first frame that it shows, and stay.
class DataScene : public SoGeneralScene
{
public:
    explicit DataScene(const Placement& placementOfData, const Style& styleOfData = {});

    const Placement& getPlacement() const { return placement; }
    const Style& getStyle() const { return style; }
    /// What its data are shown with from now on.
    void restyle(const Placement& placementOfData, const Style& styleOfData);
    /// Cuts data away at another plane, or nowhere; nothing else of its style changes, and no node
    /// of its data. The plane has a distance.
    void cut(const std::optional<ClipPlane>& plane);
    /// Draws and lights its data in another way; nothing else of its style changes.
    void draw(const DrawingLook& look);
    /// How its data are drawn now: as its style says, but for what the viewer's user has changed
    /// since, by keys or the dialog of its lights.
    DrawingLook getDrawing();
    /// The same, with what it leaves open as it is shown.
    DrawingLook getShownDrawing() const;
    /// To be called once a viewer shows it, which begins with a line width of its own.
    void keepLineWidth();
    /// Lets what is drawn over the data, and suits their background, be that of another style; the
    /// data stay as they are.
    void redress(const Style& next);
    /// How many styles it has had: another number, another one.
    std::size_t countStyles() const { return styles; }

    // Data: by their kinds, which are numbered from 0 in the order in which they are drawn, and
    // within a kind in their order.

    /// The data of a kind; none of one that has never been shown.
    const std::vector<ShownDatum>& getShown(std::size_t kind) const;
    /// Adds a datum at the end of its kind, so that picks can be told by its name.
    void add(std::size_t kind, const ShownDatum& datum);
    /// Replaces what is known of one; its group and node stay what they were.
    void change(std::size_t kind, std::size_t index, const ShownDatum& datum);
    /// Drops the data of a kind from `count` on.
    void keepFirst(std::size_t kind, std::size_t count);

    /// Shows the data of another scene and what they are compared with, by the same nodes: as that
    /// has them now, with its looks, plane and colours, and a legend that tells the same. To be
    /// said again whenever they change there, where alone those nodes are changed; placement and
    /// style are those of restyle() before.
    void mirror(const DataScene& other);
    bool isMirror() const { return isOfOther; }
    /// Shows nothing of it any more: data that come are its own.
    void endMirror();

    /// Shows beside the data what they are compared with, or nothing of it: no thing, nothing that
    /// is picked, but within its box.
    void showGhost(std::vector<SceneGeometry::GhostCurve> curves);

    /// What it shows, for whoever asks for numbers; null if nobody gave it.
    const std::shared_ptr<const Configuration>& getData() const { return data; }
    void setData(std::shared_ptr<const Configuration> shown) { data = std::move(shown); }

    // How single things look, at first as the style says: whether they are hidden, their names and
    // colours follow at once; what of it needs other nodes comes with another style.

    /// Those that are shown or hidden, in order.
    std::vector<Thing> getThings() const;
    bool has(const Thing& thing) const { return thing.index < getShown(thing.kind).size(); }
    /// Those of a datum that is there; none of most.
    std::vector<Thing> getParts(const Thing& thing) const;
    /// Of what is there: around what is shown of it, or a part.
    SbBox3f boxOf(const Thing& thing) const;
    /// Draws what is shown of it alone, or a part: its own nodes, or others that are kept until it
    /// changes.
    SoNode* nodeOf(const Thing& thing) const;
    /// What a thing is, by which its look is known; that is there, or was once of its kind.
    ThingId idOf(const Thing& thing) const;
    ThingLook getLook(const Thing& thing) const { return getLooks().of(idOf(thing)); }
    /// Of a datum by what it is and which of these; of lone bases, which are one together, of any.
    /// Of a part with the name and colour of all of it, unless it has its own.
    ThingLook lookOf(ThingKind kind, std::size_t datum, ThingPart part = ThingPart::WHOLE) const;
    const ThingLooks& getLooks() const { return style.things; }
    /// For what is there and what comes. A colour of its own that was replaced is not there any
    /// more: areOfSameNodes().
    void setLooks(const ThingLooks& looks);
    /// Of all that have none of their own and can be seen through.
    void setTransparency(double transparency);

    /// The box that all data lie in but what is hidden, and, while nothing is, the room that is
    /// kept for other frames; empty if all is hidden.
    const SbBox3f& getBox() const;
    /// Keeps room for what other frames show, so that the camera suits all of them.
    void setRoom(const SbBox3f& roomOfFrames);

    /// The side that it is seen from unless another is asked for.
    void setSide(Side side) { standardSide = side; }
    /// What was asked for, with what it leaves open, in the scene's coordinates.
    CameraRequest settle(CameraRequest request) const;

    // Colours of data, shown at first

    /// Lets a legend that is drawn over the scene tell the colouring of this frame and of those to
    /// come. The first one is shown with it.
    void setColouring(const Colouring& next);
    /// Removes the legend: nothing has colours of data any more.
    void dropColouring();
    /// Makes the legend tell whether the values of another frame lie beyond its ends or are none.
    void updateLegend(const Colouring& next);
    /// That of the legend, without the places of its points; nothing without one.
    const std::optional<Colouring>& getColouring() const { return colouring; }
    bool hasColours() const;
    /// Whether data give the colours, and the legend is there unless the style has none. There are
    /// no highlights then, so that what is turned to the light has the legend's colours, unless the
    /// style asks for some, or the user of the lights' dialog.
    void showColours(bool show);
    /// Whether data give the colours of what has colours of data.
    bool areColoursShown() const;
    /// What of a view the legend takes, if it is shown.
    FreeEdges getLegendRoom() const;
    /// Keeps the legend readable on another background.
    void setBackground(const Colour& background);

    /// Whether rods and birods are drawn without rows that nobody tells apart: see
    /// SoMeshShape::drawCoarsely(). For a window while its data change; at first not. Of what this
    /// scene draws alone, whoever else draws the same nodes.
    void drawCoarsely(bool coarse);
    bool isDrawnCoarsely() const { return coarse; }
    /// The node's id when it was changed last otherwise than by drawCoarsely(): of a picture of it,
    /// which has all rows.
    SbUniqueId getIdOfPicture() const;

    /// Draws a stamp over the scene, or none of null, instead of the one before.
    void setStamp(SoNode* stamp);
    /// The same of what is measured: see makeMeasured().
    void setMeasured(SoNode* measured);

    /// "point 0.1 2 3, arc length 1.5 of 8" of "helix.txt:1: rod 1", in the data's
    /// coordinates; the arc length is that of the nearest point of the centreline, of a
    /// birod its average's. "pair 12 AT, strand 2, point 0.1 2 3" of "dna.txt:1: DNA 1".
    Told describe(const SoPickedPoint& picked) const { return tell(placeOf(picked)); }
    /// Where it was picked. A place that is no farther along its line from a point of the data than
    /// `reach`, in the scene, is that point.
    PickedPlace placeOf(const SoPickedPoint& picked, double reach = 0) const;
    /// The same place by the name and with the letters that it has now: in another frame, or once
    /// its user has renamed it. Where nothing is shown any more it stays as it was.
    PickedPlace renewed(PickedPlace place) const;
    /// What is there; nothing if it is not shown.
    std::optional<Thing> findThing(const PickedPlace& place) const;
    /// Which part of it, or all of it where it has none.
    std::optional<Thing> findPart(const PickedPlace& place) const;

    /// Called with what the user picks, if set.
    std::function<void(const SoPickedPoint&)> onPick;
    /// Called after each change of looks, if set.
    std::function<void()> onLook;
    /// Called after each change of lights, if set, a moment later.
    std::function<void()> onLights;

    /// The box as it was told: what Coin makes of many turned boxes, such as a DNA's, is
    /// much larger, and costs their number in every frame.
    void getBoundingBox(SoGetBoundingBoxAction* action) override;
    /// As coarsely as it is asked for.
    void GLRenderBelowPath(SoGLRenderAction* action) override;
    void GLRenderInPath(SoGLRenderAction* action) override;
    /// Tells onPick. The pick stays free for the viewer: false.
    bool processPickEvent(const SoPickedPoint* point) override;

private:
    ~DataScene() override;

    const ShownDatum& datumOf(const Thing& thing) const;
    bool isHidden(const Thing& thing) const;
    void showLook(const Thing& thing);
    void shareData(const DataScene& other);
    void placeGhost(std::shared_ptr<Ghost> next);
    void followColouring(const DataScene& other);
    void showParts(const Thing& thing);
    ThingLook lookAt(const Thing& thing, const PickedPlace& place) const;
    double transparencyOf(const Thing& thing) const;
    void showInside(const ShownDatum& datum) const;
    void showLooks();

    /// As the scene's parameters have them.
    struct Lights
    {
        std::array<SbVec3f, 3> directions;
        std::array<float, 3> intensities, shininess;
    };
    Lights getLights();
    void drawLights();
    static void tellLights(void* scene, SoSensor* sensor);
    void showLegend();
    void showScaleBar();
    void replaceOver(SoNode*& shown, SoNode* next);
    void tellColouring(); ///< by the legend: nothing else changes what it tells

    struct Kind
    {
        SoGroup* group; ///< owned by the graph
        ThingKind kind; ///< of its data
        std::vector<ShownDatum> data;
    };
    Placement placement;
    Style style;
    std::size_t styles = 0;
    // As it was drawn last, and as the viewer's keys began with then.
    float drawnWidth = 1, knownWidth = 0;
    Lights knownLights;
    SoNodeSensor lightSensors[3];
    std::vector<Kind> kinds;
    std::shared_ptr<const Configuration> data;
    std::unordered_map<const SoNode*, Thing> things;        ///< by the groups of data
    mutable std::map<Thing, std::shared_ptr<SoNode>> alone; ///< of parts, as long as they are so
    mutable std::optional<SbBox3f> box; ///< nothing where it is to be found anew
    SbBox3f room;                       ///< for other frames
    Side standardSide = Side::Z;
    std::optional<Colouring> colouring;
    bool coarse = false;
    SbUniqueId coarseId = 0, pictureId = 0; ///< the node's since drawCoarsely(), and before it
    bool isOfOther = false;                 ///< what it shows: it leaves those nodes as they are
    std::size_t mirroredStyle = 0;          ///< of countStyles()
    std::shared_ptr<Ghost> ghost;           ///< null until there was one
    SoGroup* ghostPlace = nullptr;          ///< owned by the graph
    std::unique_ptr<Legend> legend;
    SoSwitch* legendChoice = nullptr; ///< whether it is shown
    std::unique_ptr<ScaleBar> scaleBar;
    SoSwitch* scaleBarChoice = nullptr; ///< whether it is shown
    bool coloursShown = false;          ///< of data, with the legend or without
    SoNode *stamp = nullptr, *measured = nullptr;
};

/// A point of a tube's centreline, in the scene.
struct PointOfTube
{
    double arcLength;
    double distance; ///< from the point that it is nearest to
};

/// That nearest to a point of the scene.
PointOfTube nearestOnTube(BiarcTubeMesh& tube, const algebra3d::Vector3<double>& point);

} // namespace strandview

#endif
