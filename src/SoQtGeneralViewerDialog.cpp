// SPDX-License-Identifier: GPL-3.0-or-later
#include <SoQtGeneralViewerDialog.h>

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QStatusBar>

#include <SoQtGeneralViewer.h>

namespace {

QString zoomText(const SoQtGeneralViewer& viewer)
{
    return QString::number(viewer.getCameraZoom(), 'g', 6);
}

void updateZoom(void* dialog)
{
    if (dialog)
        static_cast<SoQtGeneralViewerDialog*>(dialog)->update3DZoom();
}

} // namespace

SoQtGeneralViewerDialog::SoQtGeneralViewerDialog(QWidget* parent)
    : QDialog(parent), statusBar(new QStatusBar(this))
{}

SoQtGeneralViewerDialog::~SoQtGeneralViewerDialog() = default;

void SoQtGeneralViewerDialog::setupUi()
{
    if (!viewer)
        return;
    auto* layout = new QHBoxLayout;
    auto* container = new QWidget;
    auto* label = new QLabel("Zoom", container);
    zoomLineEdit = new QLineEdit(zoomText(*viewer), container);
    zoomLineEdit->setObjectName("zoomLineEdit");
    zoomLineEdit->setMaximumWidth(80);
    label->setBuddy(zoomLineEdit);
    connect(zoomLineEdit, SIGNAL(returnPressed()), SLOT(setCameraZoom()));
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(label);
    layout->addWidget(zoomLineEdit);
    container->setLayout(layout);
    // No wider than it needs, so that it stays at the right end.
    container->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Preferred);
    statusBar->addPermanentWidget(container);

    viewer->addPostEventProcessCB(updateZoom3DEventCB, this);
    viewer->addResizeCB(updateZoom3DResizeCB, this);
}

void SoQtGeneralViewerDialog::update3DZoom()
{
    const SoQtGeneralViewer* const zoomed = getZoomedViewer();
    if (zoomed && zoomLineEdit)
        zoomLineEdit->setText(zoomText(*zoomed));
}

void SoQtGeneralViewerDialog::setCameraZoom()
{
    SoQtGeneralViewer* const zoomed = getZoomedViewer();
    if (!zoomed || !zoomLineEdit)
        return;
    bool isNumber = false;
    const double zoom = zoomLineEdit->text().toDouble(&isNumber);
    if (isNumber)
        zoomed->setCameraZoom(zoom);
    zoomLineEdit->setText(zoomText(*zoomed));
}

void SoQtGeneralViewerDialog::keyPressEvent(QKeyEvent* event) { event->ignore(); }

void updateZoom3DEventCB(void* userData, SoQtGeneralViewer* /*viewer*/, const SoEvent* /*event*/)
{
    updateZoom(userData);
}

void updateZoom3DResizeCB(void* userData, SoQtGeneralViewer* /*viewer*/, const SbVec2s& /*size*/)
{
    updateZoom(userData);
}
