// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_FRAMEWAITER_H
#define STRANDVIEW_APP_WINDOW_FRAMEWAITER_H

#include <functional>

#include <QElapsedTimer>
#include <QObject>
#include <QSize>
#include <QTimer>

class QWidget;

namespace strandview {

/// Waits until the screen shows a whole frame of an OpenGL view. As a window comes up,
/// frames are lost or cut off in silence; so this draws marks into the corners of some
/// frames, looks for them on the screen, and waits for a frame without them.
class FrameWaiter : public QObject
{
public:
    /// redraw: asks for a frame, later. act: called once, when the frame is there, or
    /// after ten seconds if the marks are never seen, say behind another window.
    FrameWaiter(QWidget& view, std::function<void()> redraw, std::function<void()> act);

    /// The viewer calls it at the end of each frame, with the view's context current.
    void endFrame(int width, int height);

private:
    void look();
    void finish();

    QWidget& view;
    std::function<void()> redraw;
    std::function<void()> act;
    QTimer timer;
    QElapsedTimer waited;
    bool isMarking = true;
    bool isFrameDrawn = false;
    QSize size; // in pixels, of the last frame
};

} // namespace strandview

#endif
