// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/builders/DataColours.h"

#include <algorithm>
#include <utility>

#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoMaterialBinding.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoSwitch.h>

#include <BiarcTubeMesh.h>
#include <SoArrow.h>
#include <SoRod.h>

#include "scene/Colouring.h"

namespace strandview {

SoSwitch* makeColourChoice(SoNode* own)
{
    auto* binding = new SoMaterialBinding;
    binding->value = SoMaterialBinding::PER_VERTEX;
    auto* ofData = new SoGroup;
    ofData->addChild(new SoMaterial);
    ofData->addChild(binding);
    auto* choice = new SoSwitch;
    choice->addChild(own);
    choice->addChild(ofData);
    return choice;
}

SoMaterial* dataMaterial(const SoSwitch& choice)
{
    return static_cast<SoMaterial*>(static_cast<SoGroup*>(choice.getChild(1))->getChild(0));
}

SoSwitch* putColourChoice(SoSeparator& group, int child)
{
    SoSwitch* const choice = makeColourChoice(group.getChild(child));
    group.replaceChild(child, choice);
    return choice;
}

void dropColourChoice(SoSeparator& group, int child)
{
    SoNode* const own = static_cast<SoSwitch*>(group.getChild(child))->getChild(0);
    own->ref(); // while the choice that holds it goes
    group.replaceChild(child, own);
    own->unrefNoDelete();
}

// Coin takes the first ambient colour for all.
void setRowColours(const Colouring& colouring,
                   const std::vector<const std::vector<double>*>& places,
                   std::vector<CurveRows> curves, RowColours* made, SoMaterial* material)
{
    RowColours rows;
    if (made && made->curves == curves)
        rows = std::move(*made);
    else
        rows = makeRowColours(colouring, places, std::move(curves));
    material->specularColor.setValue(1, 1, 1);
    material->ambientColor.setNum(1);
    material->ambientColor.set1Value(0, rows.colours[0]);
    material->diffuseColor.setValuesPointer(rows.count, rows.colours.release());
    material->diffuseColor.enableDeleteValues();
}

SoSeparator* makeHead()
{
    auto* ofData = new SoGroup;
    ofData->addChild(new SoMaterial);
    ofData->addChild(new SoMaterialBinding);
    auto* choice = new SoSwitch;
    choice->addChild(new SoGroup);
    choice->addChild(ofData);
    choice->whichChild = 0;
    auto* head = new SoSeparator;
    head->addChild(choice);
    head->addChild(new SoArrow({}, {}, 0, 0, 0));
    return head;
}

SoArrow* arrowOf(const SoSeparator& head) { return static_cast<SoArrow*>(head.getChild(1)); }

void setHeadColours(const SoSeparator& head, const SoRod& rod, SoSwitch* choice)
{
    auto* colours = static_cast<SoSwitch*>(head.getChild(0));
    if (!choice) {
        colours->whichChild.disconnect();
        colours->whichChild = 0;
        dataMaterial(*colours)->setToDefaults();
        return;
    }
    const SoMFColor& rows = dataMaterial(*choice)->diffuseColor;
    const int last = std::min(rod.getTubeMesh()->getHeight(), rows.getNum()) - 1;
    dataMaterial(*colours)->diffuseColor = rows[last];
    colours->whichChild.connectFrom(&choice->whichChild);
}

} // namespace strandview
