// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/FrameWaiter.h"

#include <array>
#include <cmath>

#include <Inventor/system/gl.h>
#include <QImage>
#include <QPixmap>
#include <QScreen>
#include <QWidget>

namespace strandview {

namespace {

const int LOOK_EVERY = 20;          // milliseconds
const int LONGEST_WAIT = 10 * 1000; // milliseconds

// No scene has it in all corners.
const std::array<int, 3> MARK{90, 10, 165};

std::array<std::pair<int, int>, 4> cornersOf(int width, int height)
{
    return {{{0, 0}, {width - 1, 0}, {0, height - 1}, {width - 1, height - 1}}};
}

void drawMarks(int width, int height)
{
    glPushAttrib(GL_COLOR_BUFFER_BIT | GL_SCISSOR_BIT);
    glEnable(GL_SCISSOR_TEST);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glClearColor(float(MARK[0]) / 255, float(MARK[1]) / 255, float(MARK[2]) / 255, 1);
    for (const auto& [x, y] : cornersOf(width, height)) {
        glScissor(x, y, 1, 1);
        glClear(GL_COLOR_BUFFER_BIT);
    }
    glPopAttrib();
}

bool isMark(const QColor& colour)
{
    const int tolerance = 16; // of screens with 5 bits for a colour
    return std::abs(colour.red() - MARK[0]) < tolerance &&
           std::abs(colour.green() - MARK[1]) < tolerance &&
           std::abs(colour.blue() - MARK[2]) < tolerance;
}

int countMarks(QWidget& view)
{
    const QImage seen = view.screen()->grabWindow(view.winId()).toImage();
    if (seen.isNull())
        return 0;
    int count = 0;
    for (const auto& [x, y] : cornersOf(seen.width(), seen.height()))
        count += isMark(seen.pixelColor(x, y));
    return count;
}

} // namespace

FrameWaiter::FrameWaiter(QWidget& viewToWatch, std::function<void()> askForFrame,
                         std::function<void()> whatToDo)
    : view(viewToWatch), redraw(std::move(askForFrame)), act(std::move(whatToDo))
{
    connect(&timer, &QTimer::timeout, this, &FrameWaiter::look);
    waited.start();
    timer.start(LOOK_EVERY);
}

void FrameWaiter::endFrame(int width, int height)
{
    if (size != QSize(width, height))
        isMarking = true; // once more
    size = QSize(width, height);
    if (isMarking)
        drawMarks(width, height);
    isFrameDrawn = true;
}

void FrameWaiter::look()
{
    if (isFrameDrawn) {
        const int marks = countMarks(view);
        if ((!isMarking && marks == 0) || waited.elapsed() > LONGEST_WAIT) {
            finish();
            return;
        }
        if (marks == 4)
            isMarking = false;
        isFrameDrawn = false;
    }
    redraw();
}

void FrameWaiter::finish()
{
    timer.stop();
    deleteLater();
    act();
}

} // namespace strandview
