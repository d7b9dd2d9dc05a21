// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/ScreenFitter.h"

#include <algorithm>

#include <QEvent>
#include <QScreen>
#include <QStyle>
#include <QWidget>
#include <QWindow>

namespace strandview {

namespace {

void shrink(QWidget& window, const QSize& frame)
{
    const QSize room = window.screen()->availableGeometry().size() - frame;
    window.resize(window.size().boundedTo(room));
}

// The least move that brings [start, start + length) into [first, first + room).
int inside(int start, int length, int first, int room)
{
    return std::max(first, std::min(start, first + room - length));
}

} // namespace

ScreenFitter::ScreenFitter(QWidget& windowToFit) : window(windowToFit)
{
    const QStyle& style = *window.style();
    const int border = style.pixelMetric(QStyle::PM_MdiSubWindowFrameWidth);
    shrink(window, QSize(2 * border, style.pixelMetric(QStyle::PM_TitleBarHeight) + border));
    window.winId();
    window.windowHandle()->installEventFilter(this);
}

bool ScreenFitter::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() != QEvent::Expose || !window.windowHandle()->isExposed())
        return false;
    object->removeEventFilter(this);
    if (window.isMaximized() || window.isFullScreen())
        return false;
    shrink(window, window.frameGeometry().size() - window.size());
    const QRect frame = window.frameGeometry();
    const QRect room = window.screen()->availableGeometry();
    const QPoint corner(inside(frame.x(), frame.width(), room.x(), room.width()),
                        inside(frame.y(), frame.height(), room.y(), room.height()));
    if (corner != frame.topLeft())
        window.move(corner);
    return false;
}

} // namespace strandview
