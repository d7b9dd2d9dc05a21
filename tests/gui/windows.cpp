// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows.h"

#include <Inventor/Qt/SoQt.h>

#include <SoGeneralScene.h>
#include <SoMeshShape.h>
#include <SoQtGeneralViewer.h>
#include <SoRod.h>

void initWindowsOnce()
{
    static const bool done = [] {
        // A desktop's own file dialogs are no widgets.
        QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
        static int argc = 1;
        static char name[] = "test";
        static char* argv[] = {name, nullptr};
        SoQt::init(argc, argv, name);
        SoMeshShape::initClass();
        SoRod::initClass();
        SoGeneralScene::initClass();
        SoQtGeneralViewer::initClass();
        return true;
    }();
    static_cast<void>(done);
}

bool showActive(QWidget& window)
{
    window.show();
    window.activateWindow();
    return QTest::qWaitForWindowActive(&window);
}

bool focus(QWidget& widget)
{
    widget.setFocus();
    return QTest::qWaitFor([&] { return widget.hasFocus(); });
}

void typeOver(QWidget& field, const QString& text)
{
    QTest::keyClick(&field, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&field, Qt::Key_Delete);
    QTest::keyClicks(&field, text);
}

std::ostream& operator<<(std::ostream& stream, const Place& place)
{
    return stream << place.row << ", " << place.column << " (" << place.rows << " x "
                  << place.columns << ")";
}

Place placeOf(const QGridLayout& grid, QWidget* widget)
{
    Place place;
    const int index = grid.indexOf(widget);
    if (index >= 0)
        grid.getItemPosition(index, &place.row, &place.column, &place.rows, &place.columns);
    return place;
}

std::vector<std::string> badlyPlaced(const QWidget& window)
{
    std::vector<std::string> names;
    std::vector<QRect> places;
    for (const QWidget* widget :
         window.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
        if (widget->isWindow() || !widget->isVisible())
            continue;
        const QRect place = widget->geometry();
        const QSize needed = widget->minimumSizeHint();
        bool bad = place.width() < needed.width() || place.height() < needed.height() ||
                   !window.rect().contains(place);
        for (const QRect& other : places)
            bad = bad || place.intersects(other);
        if (bad)
            names.push_back(widget->objectName().toStdString() + " at " +
                            std::to_string(place.x()) + ", " + std::to_string(place.y()) + ", " +
                            std::to_string(place.width()) + " x " + std::to_string(place.height()) +
                            " of " + std::to_string(needed.width()) + " x " +
                            std::to_string(needed.height()));
        places.push_back(place);
    }
    return names;
}

void PrintTo(const QString& text, std::ostream* stream)
{
    *stream << '"' << text.toStdString() << '"';
}
