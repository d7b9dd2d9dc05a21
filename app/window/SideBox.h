// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_SIDEBOX_H
#define STRANDVIEW_APP_WINDOW_SIDEBOX_H

#include <QDoubleSpinBox>

namespace strandview {

/// A field for a side of a picture, in which a unit may be typed behind the number: "85 mm",
/// "8.5cm", "1200 px". What has a unit is told as soon as the unit is whole, and not taken: who
/// hears of it shows it.
class SideBox : public QDoubleSpinBox
{
    Q_OBJECT

public:
    explicit SideBox(QWidget* parent = nullptr);

signals:
    /// In millimetres, or in pixels.
    void typedWithUnit(double side, bool isInMillimetres);

protected:
    QValidator::State validate(QString& text, int& cursor) const override;
};

} // namespace strandview

#endif
