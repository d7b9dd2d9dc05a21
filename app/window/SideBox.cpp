// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/SideBox.h"

#include <QLineEdit>
#include <QLocale>
#include <QRegularExpression>

namespace strandview {

namespace {

struct Unit
{
    const char* name;
    double millimetres; ///< 0 of pixels
};

const Unit UNITS[] = {{"mm", 1}, {"cm", 10}, {"px", 0}};

const double MILLIMETRES_OF_PIXELS = 0;

// A number and letters behind it.
QRegularExpressionMatch split(const QString& text)
{
    static const QRegularExpression pattern("^ *([0-9]+\\.?[0-9]*|\\.[0-9]+) *([a-z]*) *$");
    return pattern.match(text);
}

bool isBeginningOfUnit(const QString& letters)
{
    for (const Unit& unit : UNITS) {
        if (QString(unit.name).startsWith(letters))
            return true;
    }
    return false;
}

} // namespace

SideBox::SideBox(QWidget* parent) : QDoubleSpinBox(parent)
{
    connect(lineEdit(), &QLineEdit::textEdited, this, [this](const QString& text) {
        const auto parts = split(text);
        for (const Unit& unit : UNITS) {
            if (!parts.hasMatch() || parts.captured(2) != unit.name)
                continue;
            const double number = QLocale::c().toDouble(parts.captured(1));
            const bool isInMillimetres = unit.millimetres != MILLIMETRES_OF_PIXELS;
            emit typedWithUnit(isInMillimetres ? number * unit.millimetres : number,
                               isInMillimetres);
            return;
        }
    });
}

// A point may come before a unit, where no other number has one.
QValidator::State SideBox::validate(QString& text, int& cursor) const
{
    const QValidator::State state = QDoubleSpinBox::validate(text, cursor);
    if (state != QValidator::Invalid)
        return state;
    const auto parts = split(text);
    return parts.hasMatch() && isBeginningOfUnit(parts.captured(2)) ? QValidator::Intermediate
                                                                    : QValidator::Invalid;
}

} // namespace strandview
