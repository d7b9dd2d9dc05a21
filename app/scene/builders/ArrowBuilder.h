// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_BUILDERS_ARROWBUILDER_H
#define STRANDVIEW_APP_SCENE_BUILDERS_ARROWBUILDER_H

#include "scene/builders/DatumBuilder.h"

namespace strandview {

/// Arrows, with a head of the usual form.
class ArrowBuilder : public BuilderOf<&Configuration::arrows>
{
public:
    using BuilderOf::BuilderOf;

    ThingKind getKind() const override { return ThingKind::ARROW; }
    const char* getWork() const override;
    std::string check(std::size_t index) const override;
    SbBox3f getReach(std::size_t index) const override;

protected:
    ShownDatum makeNodes(std::size_t index) override;
    void updateNodes(std::size_t index, ShownDatum& shown) override;
};

} // namespace strandview

#endif
