// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_SOQTGENERALVIEWERDIALOG_H
#define STRANDVIEW_SOQTGENERALVIEWERDIALOG_H

#include <QDialog>

#include <Inventor/SbVec2s.h>

#include <StrandviewExport.h>

class QLineEdit;
class QStatusBar;
class SoEvent;
class SoQtGeneralViewer;

/// The base of a host's viewer windows: a status bar with a field that shows the zoom
/// of the viewer's camera, in pixels per scene unit, and takes another one.
///
/// A derived class makes its viewer and stores it in `viewer`, lays out the viewer's
/// widget and the status bar, and calls setupUi() once. The field follows every event
/// that the viewer processes, and every resize. (Keys whose handling ends before the
/// post-event callbacks, alt with w and s among them, show with the event after.)
///
/// Who destroys the dialog before its viewer removes updateZoom3DEventCB and
/// updateZoom3DResizeCB from the viewer first.
///
/// As every widget it belongs to the thread of Qt's event loop and, with a parent, to that; status
/// bar and zoom field are its children. The viewer is its maker's.
class STRANDVIEW_EXPORT SoQtGeneralViewerDialog : public QDialog
{
    Q_OBJECT

public:
    explicit SoQtGeneralViewerDialog(QWidget* parent);
    ~SoQtGeneralViewerDialog() override;

    /// Puts the zoom field at the right end of the status bar and registers with the
    /// viewer; without a viewer it does nothing.
    void setupUi();

public slots:
    /// Shows the viewer's zoom in the field, with six significant digits.
    virtual void update3DZoom();
    /// Takes the zoom from the field, if it is a number, and shows the one in use.
    virtual void setCameraZoom();

protected:
    /// Leaves Return and Escape to the field and the viewer: in a dialog like any other
    /// they would press a button and close the window.
    void keyPressEvent(QKeyEvent* event) override;
    /// Whose zoom the field shows and takes: that of `viewer`, unless a window of several viewers
    /// has another one.
    virtual SoQtGeneralViewer* getZoomedViewer() const { return viewer; }

    SoQtGeneralViewer* viewer = nullptr; ///< not owned
    QStatusBar* statusBar = nullptr;
    QLineEdit* zoomLineEdit = nullptr;
};

/// What setupUi() registers: with a non-null SoQtGeneralViewerDialog* as user data they
/// call its update3DZoom().
STRANDVIEW_EXPORT void updateZoom3DEventCB(void* userData, SoQtGeneralViewer* viewer,
                                           const SoEvent* event);
STRANDVIEW_EXPORT void updateZoom3DResizeCB(void* userData, SoQtGeneralViewer* viewer,
                                            const SbVec2s& size);

#endif
