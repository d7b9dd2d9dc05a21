// SPDX-License-Identifier: GPL-3.0-or-later
#include "CoinEnvironment.h"

#include <Inventor/SoDB.h>
#include <Inventor/SoInteraction.h>
#include <Inventor/nodekits/SoNodeKit.h>

#include <OffscreenContext.h>
#include <SoArrow.h>
#include <SoBirod.h>
#include <SoDNA.h>
#include <SoFrame.h>
#include <SoGeneralScene.h>
#include <SoMarker.h>
#include <SoMeshShape.h>
#include <SoNucleobase.h>
#include <SoRod.h>

#include "MeshShape.h"

void initCoinOnce()
{
    static const bool done = [] {
        SoDB::init();
        SoNodeKit::init();
        SoInteraction::init();
        OffscreenContext::install();
        SoMeshShape::initClass();
        SoRod::initClass();
        SoBirod::initClass();
        SoArrow::initClass();
        SoFrame::initClass();
        SoMarker::initClass();
        SoNucleobase::initClass();
        SoDNA::initClass();
        MeshShape::initClass();
        return true;
    }();
    static_cast<void>(done);
}

void initScenesOnce()
{
    initCoinOnce();
    if (SoGeneralScene::getClassTypeId().isBad())
        SoGeneralScene::initClass();
}
