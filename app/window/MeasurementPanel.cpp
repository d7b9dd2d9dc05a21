// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/MeasurementPanel.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QFileDialog>
#include <QGridLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace strandview {

namespace {

enum Column { NAME, VALUE, PLACES, COLUMNS };

// "distance" until its user names it.
QString titleOf(const Measurement& measurement)
{
    return QString::fromStdString(measurement.name.empty() ? nameOf(measurement.kind)
                                                           : measurement.name);
}

QString placesTextOf(const Measurement& measurement)
{
    QStringList places;
    for (const MeasuredPlace& place : measurement.places)
        places.append(QString::fromStdString(textOf(place)));
    return places.join(", ");
}

} // namespace

MeasurementPanel::MeasurementPanel(QWidget* parent)
    : QWidget(parent),
      kindBox(new QComboBox(this)),
      keepButton(new QPushButton("&Keep", this)),
      deleteButton(new QPushButton("&Delete", this)),
      copyButton(new QPushButton("Copy &list", this)),
      saveButton(new QPushButton("&Save...", this)),
      tree(new QTreeWidget(this))
{
    tree->setObjectName("measurementList");
    tree->setAccessibleName("Measurements that are kept");
    tree->setHeaderLabels({"Measured", "Value", "Places"});
    tree->setRootIsDecorated(false);
    tree->setSelectionMode(QAbstractItemView::ExtendedSelection);
    tree->setContextMenuPolicy(Qt::CustomContextMenu);
    tree->setEditTriggers(QAbstractItemView::NoEditTriggers); // of names alone
    tree->header()->setStretchLastSection(true);
    tree->installEventFilter(this);
    buildButtons();
    connect(tree, &QTreeWidget::itemChanged, this,
            [this](QTreeWidgetItem* item, int column) { followItem(*item, column); });
    connect(tree, &QTreeWidget::itemSelectionChanged, this, [this] {
        followButtons();
        emit chosenChanged();
    });
    connect(tree, &QTreeWidget::itemDoubleClicked, this, [this](QTreeWidgetItem* item, int column) {
        if (column == NAME)
            tree->editItem(item, NAME);
    });
    connect(tree, &QTreeWidget::customContextMenuRequested, this, &MeasurementPanel::offerMenu);
    offer({});
    followButtons();
}

void MeasurementPanel::buildButtons()
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 0, 4, 4);
    auto* grid = new QGridLayout;
    layout->addLayout(grid);
    layout->addWidget(tree, 1);
    kindBox->setObjectName("measureKind");
    kindBox->setAccessibleName("What is measured");
    keepButton->setObjectName("keepMeasurementButton");
    keepButton->setToolTip("Keeps what is measured in the list below (M)");
    deleteButton->setObjectName("deleteMeasurementButton");
    deleteButton->setToolTip("Deletes what is chosen in the list (Del)");
    copyButton->setObjectName("copyMeasurementsButton");
    copyButton->setToolTip("Copies what is chosen in the list, or all of it (Ctrl+C)");
    saveButton->setObjectName("saveMeasurementsButton");
    saveButton->setToolTip("Saves all values as CSV, of a series those of every frame seen");
    grid->addWidget(kindBox, 0, 0, 1, 2);
    grid->addWidget(keepButton, 0, 2);
    auto* below = new QHBoxLayout;
    for (QPushButton* button : {deleteButton, copyButton, saveButton})
        below->addWidget(button);
    layout->addLayout(below);
    grid->setColumnStretch(0, 1);
    // A click leaves the keyboard to the view, and Return is one of its keys.
    for (QPushButton* button : {keepButton, deleteButton, copyButton, saveButton}) {
        button->setAutoDefault(false);
        button->setMinimumWidth(1); // as narrow as the panel
        button->setFocusPolicy(Qt::TabFocus);
    }
    kindBox->setFocusPolicy(Qt::TabFocus);
    connect(keepButton, &QPushButton::clicked, this, &MeasurementPanel::keepAsked);
    connect(deleteButton, &QPushButton::clicked, this, &MeasurementPanel::deleteChosen);
    connect(copyButton, &QPushButton::clicked, this, &MeasurementPanel::copy);
    connect(saveButton, &QPushButton::clicked, this, &MeasurementPanel::chooseFile);
}

QSize MeasurementPanel::sizeHint() const { return {240, 220}; }

void MeasurementPanel::offer(const std::vector<MeasureKind>& kinds)
{
    std::vector<MeasureKind> offered;
    for (int i = 0; i < kindBox->count(); ++i)
        offered.push_back(MeasureKind(kindBox->itemData(i).toInt()));
    keepButton->setEnabled(!kinds.empty());
    if (kinds == offered) // its list may be open
        return;
    const auto before = getKind();
    kindBox->clear();
    for (const MeasureKind kind : kinds)
        kindBox->addItem(nameOf(kind), int(kind));
    if (before && kindBox->findData(int(*before)) >= 0)
        kindBox->setCurrentIndex(kindBox->findData(int(*before)));
    kindBox->setEnabled(kinds.size() > 1);
}

std::optional<MeasureKind> MeasurementPanel::getKind() const
{
    if (kindBox->currentIndex() < 0)
        return std::nullopt;
    return MeasureKind(kindBox->currentData().toInt());
}

// Items stay, so that a name can be typed while values change.
void MeasurementPanel::list(const std::vector<Measurement>& newMeasurements,
                            const std::vector<QString>& values)
{
    const bool isOther = measurements != newMeasurements;
    measurements = newMeasurements;
    {
        const QSignalBlocker blocker(tree);
        while (tree->topLevelItemCount() > int(measurements.size()))
            delete tree->takeTopLevelItem(tree->topLevelItemCount() - 1);
        while (tree->topLevelItemCount() < int(measurements.size()))
            new QTreeWidgetItem(tree);
        for (std::size_t i = 0; i < measurements.size(); ++i) {
            QTreeWidgetItem& item = *tree->topLevelItem(int(i));
            item.setText(VALUE, values[i]);
            item.setToolTip(VALUE, values[i]);
            if (!isOther)
                continue;
            item.setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable |
                          Qt::ItemIsEditable);
            item.setText(NAME, titleOf(measurements[i]));
            item.setCheckState(NAME, measurements[i].isShown ? Qt::Checked : Qt::Unchecked);
            item.setText(PLACES, placesTextOf(measurements[i]));
            item.setToolTip(PLACES, placesTextOf(measurements[i]));
        }
    }
    if (isOther) {
        for (const int column : {NAME, VALUE})
            tree->resizeColumnToContents(column);
        tree->viewport()->update();
    }
    followButtons();
}

std::set<std::size_t> MeasurementPanel::chosen() const
{
    std::set<std::size_t> indices;
    for (QTreeWidgetItem* item : tree->selectedItems())
        indices.insert(std::size_t(tree->indexOfTopLevelItem(item)));
    return indices;
}

void MeasurementPanel::followButtons()
{
    deleteButton->setEnabled(!tree->selectedItems().isEmpty());
    copyButton->setEnabled(!measurements.empty());
    saveButton->setEnabled(!measurements.empty());
}

// What is ticked of those that are chosen is ticked of all of them.
void MeasurementPanel::followItem(const QTreeWidgetItem& item, int column)
{
    const int index = tree->indexOfTopLevelItem(const_cast<QTreeWidgetItem*>(&item));
    if (column != NAME || index < 0 || std::size_t(index) >= measurements.size())
        return;
    std::vector<Measurement> next = measurements;
    Measurement& edited = next[std::size_t(index)];
    const QString name = item.text(NAME).trimmed();
    if (name != titleOf(edited))
        edited.name = name == nameOf(edited.kind) ? "" : name.toStdString();
    const bool isShown = item.checkState(NAME) == Qt::Checked;
    if (isShown != edited.isShown) {
        edited.isShown = isShown;
        for (const std::size_t i : item.isSelected() ? chosen() : std::set<std::size_t>())
            next[i].isShown = isShown;
    }
    if (next != measurements)
        emit changed(next);
    else
        tree->topLevelItem(index)->setText(NAME, titleOf(edited));
}

void MeasurementPanel::deleteChosen()
{
    const std::set<std::size_t> gone = chosen();
    std::vector<Measurement> next;
    for (std::size_t i = 0; i < measurements.size(); ++i) {
        if (gone.count(i) == 0)
            next.push_back(measurements[i]);
    }
    tree->clearSelection();
    if (next != measurements)
        emit changed(next);
}

void MeasurementPanel::copy() const
{
    const std::set<std::size_t> some = chosen();
    QString text;
    for (std::size_t i = 0; i < measurements.size(); ++i) {
        if (!some.empty() && some.count(i) == 0)
            continue;
        const QStringList parts{QString::fromStdString(measurements[i].name),
                                nameOf(measurements[i].kind), placesTextOf(measurements[i]),
                                tree->topLevelItem(int(i))->text(VALUE)};
        text += parts.join('\t') + '\n';
    }
    QApplication::clipboard()->setText(text);
}

void MeasurementPanel::offerMenu(const QPoint& place)
{
    QTreeWidgetItem* const item = tree->itemAt(place);
    if (!item)
        return;
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction("Rename", this, [this, row = tree->indexOfTopLevelItem(item)] {
        if (row < tree->topLevelItemCount()) // another list may be there
            tree->editItem(tree->topLevelItem(row), NAME);
    });
    menu->addAction("Copy", this, &MeasurementPanel::copy);
    menu->addAction("Delete", this, &MeasurementPanel::deleteChosen);
    menu->popup(tree->viewport()->mapToGlobal(place));
}

void MeasurementPanel::chooseFile()
{
    QFileDialog dialog(this, "Save what is measured", folder ? folder() : QString(),
                       "Tables (*.csv)");
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix("csv");
    dialog.selectFile("measured.csv");
    if (dialog.exec() == QDialog::Accepted)
        emit saveAsked(dialog.selectedFiles().constFirst());
}

bool MeasurementPanel::eventFilter(QObject* watched, QEvent* event)
{
    const bool isKey =
        event->type() == QEvent::ShortcutOverride || event->type() == QEvent::KeyPress;
    auto* const key = isKey ? static_cast<QKeyEvent*>(event) : nullptr;
    if (!key || (!key->matches(QKeySequence::Copy) && key->key() != Qt::Key_Delete))
        return QWidget::eventFilter(watched, event);
    // Or the window would copy what its status bar tells.
    event->accept();
    if (event->type() == QEvent::KeyPress && key->key() == Qt::Key_Delete)
        deleteChosen();
    else if (event->type() == QEvent::KeyPress)
        copy();
    return true;
}

} // namespace strandview
