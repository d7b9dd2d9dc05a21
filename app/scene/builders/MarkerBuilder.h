// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_BUILDERS_MARKERBUILDER_H
#define STRANDVIEW_APP_SCENE_BUILDERS_MARKERBUILDER_H

#include "scene/builders/DatumBuilder.h"

class SoScale;

namespace strandview {

/// Markers: closed shapes, all new ones of which share a scale.
class MarkerBuilder : public BuilderOf<&Configuration::markers>
{
public:
    using BuilderOf::BuilderOf;
    ~MarkerBuilder() override;

    ThingKind getKind() const override { return ThingKind::MARKER; }
    const char* getWork() const override;
    std::string check(std::size_t index) const override;
    SbBox3f getReach(std::size_t index) const override;

protected:
    ShownDatum makeNodes(std::size_t index) override;
    void updateNodes(std::size_t index, ShownDatum& shown) override;
    std::string getName(std::size_t index) const override;

private:
    SoScale* scale = nullptr; ///< made with the first marker
};

} // namespace strandview

#endif
