// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_PLACEPANEL_H
#define STRANDVIEW_APP_WINDOW_PLACEPANEL_H

#include <vector>

#include <QString>
#include <QWidget>

#include "scene/placeNumbers.h"

class QPushButton;
class QTextEdit;

namespace strandview {

/// The numbers of the places that were clicked, as text in columns that can be selected; a button,
/// and Ctrl+C where nothing is selected, copy all of it with tabs between the columns, another one
/// as JSON with all digits.
class PlacePanel : public QWidget
{
    Q_OBJECT

public:
    explicit PlacePanel(QWidget* parent);

    /// Instead of what was told before; without a table it tells how to click.
    void tell(const std::vector<NumberTable>& tables);
    /// What the button copies; empty without a table.
    const QString& getText() const { return text; }
    void copy() const;
    void copyAsJson() const;
    /// All columns.
    QSize sizeHint() const override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void add(const NumberTable& table);

    QTextEdit* page;
    QPushButton *copyButton, *jsonButton;
    QString text;
    std::vector<NumberTable> told;
};

} // namespace strandview

#endif
