// SPDX-License-Identifier: GPL-3.0-or-later
// A host of the installed library: it bounds a rod and prints the box.
#include <cstdio>

#include <ArcLengths.h>
#include <BiarcRibbonMesh.h>
#include <BiarcTubeMesh.h>
#include <ColourMapper.h>
#include <Inventor/SoDB.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <LightingDialog.h>
#include <Mesh.h>
#include <MeshVisitor.h>
#include <OffscreenContext.h>
#include <RibbonMesh.h>
#include <ScreenshotDialog.h>
#include <SoArrow.h>
#include <SoBirod.h>
#include <SoDNA.h>
#include <SoFrame.h>
#include <SoGeneralScene.h>
#include <SoMarker.h>
#include <SoMeshShape.h>
#include <SoNucleobase.h>
#include <SoQtGeneralViewer.h>
#include <SoQtGeneralViewerDialog.h>
#include <SoRod.h>
#include <TubeMesh.h>
#include <algebra3d/Matrix3.h>
#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>
#include <biarc/Biarc.h>
#include <biarc/Curve.h>
#include <biarc/PKFmanip.h>
#include <biarc/Tube.h>
#include <biarc/Vector3.h>
#include <global.h>
#include <idealbases.h>
#include <toCoin.h>

int main()
{
    SoDB::init();
    SoMeshShape::initClass();
    SoRod::initClass();
    SoBirod::initClass();
    SoArrow::initClass();
    SoFrame::initClass();
    SoMarker::initClass();
    SoGeneralScene::initClass();
    OffscreenContext::install();

    auto* rod = new SoRod(0.5, 0.1, 4, 2, true, true, false);
    rod->ref();
    const bool valid = rod->setData({{0, 0, 0}, {0, 0, 1}, {0, 0, 2}}, {{}, {}, {}});
    SoGetBoundingBoxAction action(SbViewportRegion(100, 100));
    action.apply(rod);
    const SbBox3f box = action.getBoundingBox();
    std::printf("%d %g %g %g %g\n", valid, double(box.getMin()[0]), double(box.getMin()[2]),
                double(box.getMax()[0]), double(box.getMax()[2]));
    rod->unref();

    auto* glyphs = new SoSeparator;
    glyphs->ref();
    glyphs->addChild(new SoArrow({0, 0, 0}, {0, 0, 1}, 0.1, 0.2, 0.3));
    glyphs->addChild(new SoFrame({1, 0, 0}, {0, 1, 0}, {0, 0, 1}));
    glyphs->addChild(new SoMarker(1, {1, 0, 0}, 0.5, 0, SoMarker::CROSS));
    glyphs->addChild(
        new SoBirod(0.1, 0.1, 0.5, 0.5, 0.2, 0.1, 8, 2, true, true, true, true, false));
    glyphs->unref();
    return 0;
}
