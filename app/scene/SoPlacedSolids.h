// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_SOPLACEDSOLIDS_H
#define STRANDVIEW_APP_SCENE_SOPLACEDSOLIDS_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

#include <Inventor/SbBox3f.h>
#include <Inventor/SbRotation.h>
#include <Inventor/SbVec3f.h>
#include <Inventor/nodes/SoShape.h>
#include <Inventor/nodes/SoSubNode.h>

#include "request/Colour.h"

namespace strandview {

/// Triangles, three corners each by their indices.
struct Solid
{
    struct Corner
    {
        SbVec3f point, normal;
        float brightness; ///< of the colour of the place

        bool operator==(const Corner& other) const
        {
            return point == other.point && normal == other.normal && brightness == other.brightness;
        }
    };

    std::vector<Corner> corners;
    std::vector<std::uint32_t> triangles;
};

/// Few solids at many places, each with a colour of its own: a shape that keeps the places alone.
/// What OpenGL is given of them it is given some hundred at a time; when they were drawn some times
/// as they are, as in a window, all of it goes to buffers. What is seen through is given from the
/// farthest place to the nearest.
///
/// Its faces are those of one place after the other. A file keeps nothing of it.
class SoPlacedSolids : public SoShape
{
    SO_NODE_HEADER(SoPlacedSolids);

public:
    struct Place
    {
        SbVec3f point;
        SbRotation rotation;
        Colour colour;
        std::uint32_t solid; ///< its index
    };

    static void initClass();
    SoPlacedSolids();

    void setPlaces(std::vector<Solid> newSolids, std::vector<Place> newPlaces);
    const std::vector<Place>& getPlaces() const { return places; }
    const std::vector<Solid>& getSolids() const { return solids; }

    void GLRender(SoGLRenderAction* action) override;

protected:
    ~SoPlacedSolids() override;
    void computeBBox(SoAction* action, SbBox3f& box, SbVec3f& centre) override;
    void generatePrimitives(SoAction* action) override;
    void copyContents(const SoFieldContainer* from, SbBool copyConnections) override;

private:
    /// What an OpenGL context has.
    struct Kept
    {
        std::size_t draws = 0;
        std::uint32_t vertices = 0, indices = 0; ///< names of buffers
    };
    struct Piece;

    using Order = std::vector<std::uint32_t>; ///< of places; empty for their own

    template <typename Take>
    void forEachPiece(bool countsFromAll, const Order& order, Take take) const;
    template <typename Element>
    std::size_t numberOf(std::vector<Element> Solid::*elements) const;
    void fillBuffers(Kept& kept) const;
    Order farthestFirst(SoState* state) const;
    void drawFromMemory(const Order& order) const;
    void drawFromBuffers(const Kept& kept) const;
    void forget();
    static void contextGoes(std::uint32_t context, void* closure);

    std::vector<Solid> solids;
    std::vector<Place> places;
    SbBox3f box; ///< of all corners
    std::uint8_t alpha = 255;
    std::map<std::uint32_t, Kept> keptByContext;
};

} // namespace strandview

#endif
