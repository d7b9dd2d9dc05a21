// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/builders/DataColours.h"

#include <algorithm>

#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoMaterialBinding.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoSwitch.h>

#include <BiarcRibbonMesh.h>
#include <BiarcTubeMesh.h>
#include <SoArrow.h>
#include <SoRod.h>

#include "scene/Colouring.h"
#include "scene/curveFaults.h"

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

void clearRowColours(SoMaterial* material)
{
    material->ambientColor.setNum(1); // of fewer rows than before none is left
    material->diffuseColor.setNum(1);
}

int addRowColours(const Colouring& colouring, const std::vector<double>& places,
                  const BiarcTubeMesh& tube, const BiarcRibbonMesh& ribbon, int rowsBefore,
                  SoMaterial* material)
{
    colourRows(colouring, tube.getParamValues(), places, tube.getInterpParamValues(), rowsBefore,
               material);
    const int rows = rowsBefore + tube.getHeight();
    if (isFinite(ribbon)) // a hidden one need not be
        colourRows(colouring, ribbon.getParamValues(), places, ribbon.getInterpParamValues(), rows,
                   material);
    return rows + ribbon.getHeight();
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
