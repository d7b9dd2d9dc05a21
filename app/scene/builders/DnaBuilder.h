// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_BUILDERS_DNABUILDER_H
#define STRANDVIEW_APP_SCENE_BUILDERS_DNABUILDER_H

#include "scene/builders/DatumBuilder.h"

namespace strandview {

/// DNA: built in ångström, the unit of its atoms, and scaled to the scene.
class DnaBuilder : public BuilderOf<&Configuration::dnas>
{
public:
    using BuilderOf::BuilderOf;

    const char* getWork() const override;
    SbBox3f getReach(std::size_t index) const override;

protected:
    ShownDatum makeNodes(std::size_t index) override;
    void updateNodes(std::size_t index, ShownDatum& shown) override;
    SbBox3f findBox(std::size_t index, const ShownDatum& shown) override;
};

} // namespace strandview

#endif
