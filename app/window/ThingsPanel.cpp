// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/ThingsPanel.h"

#include <utility>

#include <QColorDialog>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QMenu>
#include <QPushButton>
#include <QTreeView>
#include <QVBoxLayout>

#include "scene/DataScene.h"
#include "window/ThingsModel.h"

namespace strandview {

ThingsPanel::ThingsPanel(QWidget* parent)
    : QWidget(parent), model(new ThingsModel(this)), list(new QTreeView(this))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(list, 1);
    auto* buttons = new QHBoxLayout;
    layout->addLayout(buttons);
    list->setObjectName("thingsList");
    list->setModel(model);
    list->setRootIsDecorated(false);
    list->setUniformRowHeights(true); // so that thousands cost nothing
    list->setTextElideMode(Qt::ElideLeft);
    list->setContextMenuPolicy(Qt::CustomContextMenu);
    list->header()->setStretchLastSection(false);
    list->header()->setSectionResizeMode(ThingsModel::NAME, QHeaderView::Stretch);
    connect(list, &QTreeView::customContextMenuRequested, this, &ThingsPanel::offerMenu);
    connect(list, &QTreeView::doubleClicked, this, [this](const QModelIndex& index) {
        if (index.column() == ThingsModel::COLOUR)
            chooseColour(index.row());
    });
    addButton("&Centre", "centreButton", [this] { centre(); });
    addButton("Show all", "showAllButton", [this] { model->showAll(true); });
    addButton("Hide all", "hideAllButton", [this] { model->showAll(false); });
}

void ThingsPanel::setScene(DataScene* shown) { model->setScene(shown); }

void ThingsPanel::follow() { model->follow(); }

void ThingsPanel::addButton(const char* text, const char* name, std::function<void()> does)
{
    auto* button = new QPushButton(text, this);
    button->setObjectName(name);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, [does = std::move(does)] { does(); });
    static_cast<QHBoxLayout*>(layout()->itemAt(1)->layout())->addWidget(button);
}

int ThingsPanel::chosenRow() const { return list->currentIndex().row(); }

bool ThingsPanel::isThere(int row) const { return row >= 0 && row < model->rowCount(); }

void ThingsPanel::centre()
{
    if (isThere(chosenRow()) && onCentre)
        onCentre(model->getDatum(chosenRow()).box);
}

void ThingsPanel::chooseColour(int row)
{
    if (!isThere(row))
        return;
    const ShownDatum& datum = model->getDatum(row);
    if (!datum.getColour)
        return;
    const SbColor now = datum.getColour(datum);
    const QColor chosen = QColorDialog::getColor(
        QColor::fromRgbF(double(now[0]), double(now[1]), double(now[2])), this, "Colour");
    if (chosen.isValid() && isThere(row))
        model->setColour(
            row, SbColor(float(chosen.redF()), float(chosen.greenF()), float(chosen.blueF())));
}

void ThingsPanel::offerMenu(const QPoint& place)
{
    const QModelIndex index = list->indexAt(place);
    if (!index.isValid())
        return;
    const int row =
        index.row(); // another frame, with fewer things, may be there once one is chosen
    QMenu menu;
    menu.addAction("Centre the view on it", this, [this] { centre(); });
    menu.addAction("Rename", this, [this, row] {
        if (isThere(row))
            list->edit(model->index(row, ThingsModel::NAME));
    });
    menu.addAction("Colour...", this, [this, row] { chooseColour(row); });
    menu.exec(list->viewport()->mapToGlobal(place));
}

} // namespace strandview
