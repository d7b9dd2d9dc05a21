// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_BUILDERS_DATUMBUILDER_H
#define STRANDVIEW_APP_SCENE_BUILDERS_DATUMBUILDER_H

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <Inventor/SbBox3f.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>

#include <strandview/model/Configuration.h>

#include "request/Colour.h"
#include "request/conversions.h"
#include "scene/Placement.h"
#include "scene/ShownDatum.h"
#include "scene/Style.h"
#include "scene/ownColours.h"

namespace strandview {

struct Colouring;
struct SceneGeometry;

/// A frame of data and all that says how it is shown; what is referred to outlives the builders.
struct FrameToShow
{
    const Configuration& data;
    const Style& style;
    const Placement& placement;
    const Colouring* colouring; ///< null without one
    bool areDataColoursShown;   ///< by what has colours of data
    SceneGeometry& geometry;    ///< goes over into the nodes

    /// A length of the data in the scene.
    double scaled(double length) const { return placement.scale * length; }
};

/// Makes the nodes of one kind of data, and makes those that are there show the next frame: all
/// that depends on the kind, but for what of it no node is needed for.
class DatumBuilder
{
public:
    explicit DatumBuilder(const FrameToShow& frameToShow);
    virtual ~DatumBuilder() = default;
    DatumBuilder(const DatumBuilder&) = delete;
    DatumBuilder& operator=(const DatumBuilder&) = delete;

    virtual ThingKind getKind() const = 0;
    /// "Building arrow".
    virtual const char* getWork() const = 0;
    /// How many of them the frame has.
    virtual std::size_t count() const = 0;
    /// What cannot be shown of one, in a line, or nothing. No node is touched.
    virtual std::string check(std::size_t index) const;
    /// Around what update() will show of it; finite if that is. No node is touched.
    virtual SbBox3f getReach(std::size_t index) const = 0;

    /// New nodes, of which the group has no reference. Only after check().
    ShownDatum build(std::size_t index);
    /// Lets the nodes that another frame's datum had show this one. Only after check() and
    /// getReach().
    void update(std::size_t index, ShownDatum& shown);
    /// Lets the nodes that show this datum have the colours of the style and of data; their shapes
    /// stay, and the frame needs no geometry. Nothing of what has neither.
    virtual void recolour(std::size_t index, ShownDatum& shown);

protected:
    /// Sets all of a datum but name and box.
    virtual ShownDatum makeNodes(std::size_t index) = 0;
    virtual void updateNodes(std::size_t index, ShownDatum& shown) = 0;
    virtual std::string getName(std::size_t index) const = 0;
    /// The box that Coin finds unless there is a better one.
    virtual SbBox3f findBox(std::size_t index, const ShownDatum& shown);
    ThingStyle styleOf(std::size_t index) const
    {
        return strandview::styleOf(frame.style, {getKind(), index});
    }

    const FrameToShow frame;

private:
    std::optional<SoGetBoundingBoxAction> bounds; // one for all data, made with the first node
};

/// A builder of the data in one member of a configuration, which are told by their origin.
template <auto items>
class BuilderOf : public DatumBuilder
{
public:
    using DatumBuilder::DatumBuilder;

    std::size_t count() const override { return (frame.data.*items).size(); }

protected:
    const auto& datum(std::size_t index) const { return (frame.data.*items)[index]; }
    std::string getName(std::size_t index) const override { return datum(index).origin; }
};

// What builders have in common

/// A box around a point of the scene.
SbBox3f boxAround(const algebra3d::Vector3<double>& point, double reach);

/// Of a marker or an arrow: that of its text, or the usual one if there is none or it is no
/// colour.
Colour glyphColour(const std::optional<std::string>& text);
/// One line about a text that is no colour, or nothing.
std::string checkColour(const std::optional<std::string>& text, const std::string& origin);

} // namespace strandview

#endif
