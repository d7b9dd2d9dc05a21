// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_STATUSTEXT_H
#define STRANDVIEW_APP_WINDOW_STATUSTEXT_H

#include <vector>

#include <QLabel>
#include <QString>

#include "scene/Told.h"

namespace strandview {

/// The text of a status bar: what was told last, or a hint while there is nothing.
///
/// It takes the room there is: first what is told, then names, whose ends alone are shown
/// if they are too long. The tool tip has all of it.
class StatusText : public QLabel
{
public:
    explicit StatusText(QWidget* parent);

    void setHint(const QString& newHint);
    /// Instead of what was told before; nothing brings back the hint.
    void tell(const std::vector<Told>& news);
    /// All of it, also what there is no room for: a line for each thing told.
    QString getAll() const;
    /// Puts all of it, or what is selected, on the clipboard.
    void copy() const;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    using QLabel::setText; // holds what fits
    void showWhatFits();

    QString hint;
    std::vector<Told> told;
};

} // namespace strandview

#endif
