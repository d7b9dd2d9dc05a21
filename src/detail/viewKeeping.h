// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DETAIL_VIEWKEEPING_H
#define STRANDVIEW_DETAIL_VIEWKEEPING_H

#include <Inventor/Qt/viewers/SoQtViewer.h>
#include <QApplication>
#include <QFrame>
#include <QPointer>
#include <QResizeEvent>
#include <QTimer>
#include <QWindow>

/// Keeps the widget that SoQt draws into as large as its frame. SoQt 1.6.0 makes it several
/// times larger where a screen has several pixels for one of Qt's; and now and then X11's
/// late report of the size it was made with makes it as small as that again.
class AreaFitter : public QObject
{
public:
    bool eventFilter(QObject* object, QEvent* event) override
    {
        auto* area = static_cast<QWidget*>(object);
        const auto* frame = qobject_cast<QFrame*>(area->parentWidget());
        if (event->type() != QEvent::Resize || !frame)
            return false;
        const QRect rect = frame->contentsRect();
        if (rect.isEmpty() || static_cast<QResizeEvent*>(event)->size() == rect.size())
            return false;
        area->setGeometry(rect);
        return true;
    }
};

/// The X server shows and resizes windows in its own time, and a frame that comes before is cut
/// off or lost; Qt's GL widget does not ask for another, and the view stays black. So whenever the
/// viewer's window appears or changes, there are a few more frames, later and later.
class Redrawer : public QObject
{
public:
    explicit Redrawer(SoQtViewer& watched) : viewer(watched), base(watched.getBaseWidget())
    {
        qApp->installEventFilter(this);
    }

    bool eventFilter(QObject* object, QEvent* event) override
    {
        if ((event->type() == QEvent::Expose || event->type() == QEvent::Resize) &&
            isOfView(*object)) {
            for (const int milliseconds : {0, 100, 400, 1600})
                QTimer::singleShot(milliseconds, this, [this] { redraw(); });
        }
        return false;
    }

private:
    // The window that the view draws into, or one that this is within: not a menu, a tool tip or
    // another view.
    bool isOfView(const QObject& object) const
    {
        const QObject* window = base ? viewer.getGLWidget()->windowHandle() : nullptr;
        while (window && window != &object)
            window = window->parent();
        return window;
    }

    void redraw()
    {
        if (base)
            viewer.scheduleRedraw();
    }

    SoQtViewer& viewer;
    QPointer<QWidget> base; // goes with its parent
};

#endif
