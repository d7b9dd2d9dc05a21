// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_MEASUREMENTPANEL_H
#define STRANDVIEW_APP_WINDOW_MEASUREMENTPANEL_H

#include <functional>
#include <optional>
#include <set>
#include <vector>

#include <QString>
#include <QWidget>

#include "request/Measurement.h"

class QComboBox;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace strandview {

/// The list of what is measured and kept: a tick shows and hides each in the view, a double click
/// edits its name; buttons and keys keep what is measured now, delete, copy and save.
class MeasurementPanel : public QWidget
{
    Q_OBJECT

public:
    explicit MeasurementPanel(QWidget* parent);

    /// What can be kept, the usual kind first; none for nothing.
    void offer(const std::vector<MeasureKind>& kinds);
    /// The kind that the user wants to keep; nothing if there is none.
    std::optional<MeasureKind> getKind() const;

    /// Instead of what it listed before, with a value, such as "12.3 Å", for each. Those that were
    /// chosen stay so by their places in the list.
    void list(const std::vector<Measurement>& newMeasurements, const std::vector<QString>& values);
    /// Indices of those that are chosen.
    std::set<std::size_t> chosen() const;
    /// Puts those that are chosen, or all, on the clipboard: name, kind, places and value, with
    /// tabs between them.
    void copy() const;

    QSize sizeHint() const override;

    std::function<QString()> folder; ///< in which files are offered to be saved

signals:
    void keepAsked();
    /// The user wants this list instead.
    void changed(const std::vector<strandview::Measurement>& next);
    void chosenChanged();
    /// In a table of that name.
    void saveAsked(const QString& file);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildButtons();
    void followItem(const QTreeWidgetItem& item, int column);
    void deleteChosen();
    void offerMenu(const QPoint& place);
    void chooseFile();
    void followButtons();

    std::vector<Measurement> measurements;
    QComboBox* kindBox;
    QPushButton *keepButton, *deleteButton, *copyButton, *saveButton;
    QTreeWidget* tree;
};

} // namespace strandview

#endif
