// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/ThingsPanel.h"

#include <utility>

#include <QColorDialog>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QStyledItemDelegate>
#include <QTreeView>
#include <QVBoxLayout>

#include "scene/DataScene.h"
#include "window/ThingsModel.h"

namespace strandview {

namespace {

// An editor keeps what was typed, whichever frames are shown meanwhile, and sets it only then.
class NameEditing : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override
    {
        QWidget* const editor = QStyledItemDelegate::createEditor(parent, option, index);
        QStyledItemDelegate::setEditorData(editor, index);
        return editor;
    }
    void setEditorData(QWidget* /*editor*/, const QModelIndex& /*index*/) const override {}
    void setModelData(QWidget* editor, QAbstractItemModel* model,
                      const QModelIndex& index) const override
    {
        if (qobject_cast<QLineEdit*>(editor)->isModified())
            QStyledItemDelegate::setModelData(editor, model, index);
    }
};

} // namespace

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
    list->setItemDelegateForColumn(ThingsModel::NAME, new NameEditing(list));
    list->setRootIsDecorated(false);
    list->setUniformRowHeights(true); // so that thousands cost nothing
    list->setTextElideMode(Qt::ElideLeft);
    list->setIconSize(ThingsModel::swatchSize());
    list->setContextMenuPolicy(Qt::CustomContextMenu);
    list->header()->setStretchLastSection(false);
    list->header()->setSectionResizeMode(ThingsModel::NAME, QHeaderView::Stretch);
    connect(model, &ThingsModel::looksChanged, this, [this] {
        if (onChanged)
            onChanged();
    });
    connect(list, &QTreeView::customContextMenuRequested, this, &ThingsPanel::offerMenu);
    connect(list, &QTreeView::doubleClicked, this, [this](const QModelIndex& index) {
        if (index.column() == ThingsModel::COLOUR)
            chooseColour(index.row());
    });
    addButton("&Centre", "centreButton", [this] { centre(chosenRow()); });
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

void ThingsPanel::centre(int row)
{
    if (isThere(row) && onCentre)
        onCentre(model->getDatum(row).box);
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
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction("Centre the view on it", this, [this, row] { centre(row); });
    menu->addAction("Rename", this, [this, row] {
        if (isThere(row))
            list->edit(model->index(row, ThingsModel::NAME));
    });
    menu->addAction("Colour...", this, [this, row] { chooseColour(row); });
    menu->popup(list->viewport()->mapToGlobal(place));
}

} // namespace strandview
