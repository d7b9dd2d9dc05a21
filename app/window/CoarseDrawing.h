// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_COARSEDRAWING_H
#define STRANDVIEW_APP_WINDOW_COARSEDRAWING_H

#include <QObject>
#include <QTimer>

class SoQtGeneralViewer;

namespace strandview {

/// Lets a viewer draw with jagged edges what its user is changing, which takes a fraction of the
/// time, and once more with smooth ones when nothing has changed for a moment. What plays is drawn
/// so all the time.
class CoarseDrawing : public QObject
{
public:
    /// The viewer outlives it.
    explicit CoarseDrawing(SoQtGeneralViewer& viewer);

    /// Something is being changed, or shown that was.
    void noteChange();
    /// Not long ago.
    bool isChanging() const { return rest.isActive(); }
    void setPlaying(bool on);

private:
    void follow();

    SoQtGeneralViewer& viewer;
    QTimer rest; ///< since the last change
    bool isPlaying = false;
};

} // namespace strandview

#endif
