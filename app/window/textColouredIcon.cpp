// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/textColouredIcon.h"

#include <utility>

#include <QApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>

namespace strandview {

namespace {

class Engine : public QIconEngine
{
public:
    explicit Engine(QIcon shapesToColour) : shapes(std::move(shapesToColour)) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override
    {
        painter->drawPixmap(rect, pixmap(rect.size(), mode, state));
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap picture = shapes.pixmap(size, QIcon::Normal, state);
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        QPainter painter(&picture);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(picture.rect(),
                         QApplication::palette().color(group, QPalette::ButtonText));
        return picture;
    }
    QIconEngine* clone() const override { return new Engine(*this); }

private:
    QIcon shapes;
};

} // namespace

QIcon textColouredIcon(const QIcon& shapes) { return QIcon(new Engine(shapes)); }

} // namespace strandview
