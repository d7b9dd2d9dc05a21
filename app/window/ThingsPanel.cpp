// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/ThingsPanel.h"

#include <algorithm>
#include <utility>

#include <QColorDialog>
#include <QGridLayout>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>
#include <QShortcut>
#include <QStyledItemDelegate>
#include <QTreeView>
#include <QVBoxLayout>

#include "scene/DataScene.h"
#include "window/ThingsModel.h"
#include "window/colourDialog.h"

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

// A click on a tick leaves what is chosen.
class ThingsList : public QTreeView
{
public:
    using QTreeView::QTreeView;

protected:
    QItemSelectionModel::SelectionFlags
    selectionCommand(const QModelIndex& index, const QEvent* event = nullptr) const override
    {
        const auto* const click = dynamic_cast<const QMouseEvent*>(event);
        return click && isTick(index, click->pos()) ? QItemSelectionModel::NoUpdate
                                                    : QTreeView::selectionCommand(index, event);
    }

private:
    bool isTick(const QModelIndex& index, const QPoint& place) const
    {
        if (!(index.flags() & Qt::ItemIsUserCheckable))
            return false;
        QStyleOptionViewItem option = viewOptions();
        option.rect = visualRect(index);
        option.features |= QStyleOptionViewItem::HasCheckIndicator;
        return style()
            ->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, this)
            .contains(place);
    }
};

} // namespace

ThingsPanel::ThingsPanel(QWidget* parent)
    : QWidget(parent), model(new ThingsModel(this)), list(new ThingsList(this))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(list, 1);
    list->setObjectName("thingsList");
    list->setAccessibleName("Things");
    list->setModel(model);
    list->setItemDelegateForColumn(ThingsModel::NAME, new NameEditing(list));
    list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list->setUniformRowHeights(true); // so that thousands cost nothing
    list->setTextElideMode(Qt::ElideLeft);
    list->setIconSize(ThingsModel::swatchSize());
    list->setExpandsOnDoubleClick(false); // which edits
    list->setContextMenuPolicy(Qt::CustomContextMenu);
    list->header()->setStretchLastSection(false);
    list->header()->setSectionResizeMode(ThingsModel::NAME, QHeaderView::Stretch);
    connect(model, &QAbstractItemModel::rowsInserted, this,
            [this](const QModelIndex& parentOfThem, int first, int last) {
                for (int row = first; row <= last && !parentOfThem.isValid(); ++row)
                    list->expand(model->index(row, ThingsModel::NAME));
            });
    connect(model, &ThingsModel::ticked, this, [this](const QModelIndex& row, bool shown) {
        if (list->selectionModel()->isSelected(row))
            model->show(chosen(), shown);
    });
    connect(model, &ThingsModel::looksChosen, this, [this](const ThingLooks& next) {
        if (onLooks)
            onLooks(next);
    });
    connect(list->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        if (onChosen)
            onChosen();
    });
    connect(list, &QTreeView::customContextMenuRequested, this, &ThingsPanel::offerMenu);
    connect(list, &QTreeView::doubleClicked, this, [this](const QModelIndex& index) {
        if (index.column() == ThingsModel::COLOUR)
            chooseColour(model->thingsIn({index}));
        else if (!index.parent().isValid())
            list->setExpanded(index, !list->isExpanded(index));
    });
    buildButtons();
}

void ThingsPanel::buildButtons()
{
    auto* buttons = new QGridLayout;
    layout()->addItem(buttons);
    addButton(0, 0, "&Centre", "centreButton", "Brings what is chosen into the middle",
              [this] { centre(chosen()); });
    addButton(0, 1, "&Only these", "onlyButton", "Hides all but what is chosen", [this] {
        if (!chosen().empty())
            model->showOnly(chosen());
    });
    addButton(0, 2, "&Delete", "deleteButton", "Deletes what is chosen from view (Del)",
              [this] { model->deleteFromView(chosen()); });
    addButton(1, 0, "Show all", "showAllButton", "Also what was deleted from view",
              [this] { model->showAll(); });
    addButton(1, 1, "Hide all", "hideAllButton", "", [this] { model->showOnly({}); });
    auto* deleting =
        new QShortcut(QKeySequence::Delete, list, nullptr, nullptr, Qt::WidgetShortcut);
    connect(deleting, &QShortcut::activated, this, [this] { model->deleteFromView(chosen()); });
}

void ThingsPanel::setScene(DataScene* shown, bool isOfSameFiles)
{
    model->setScene(shown, isOfSameFiles);
}

// Thousands of rows cost nothing while they are not seen.
void ThingsPanel::follow()
{
    if (isVisible())
        model->follow();
}

void ThingsPanel::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    model->follow();
}

void ThingsPanel::addButton(int row, int column, const char* text, const char* name,
                            const char* help, std::function<void()> does)
{
    auto* button = new QPushButton(text, this);
    button->setObjectName(name);
    button->setToolTip(help);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, [does = std::move(does)] { does(); });
    static_cast<QGridLayout*>(layout()->itemAt(1)->layout())->addWidget(button, row, column);
}

ThingsPanel::Things ThingsPanel::chosen() const
{
    return model->thingsIn(list->selectionModel()->selectedRows(ThingsModel::NAME));
}

std::map<ThingId, std::string> ThingsPanel::namesOfChosen() const
{
    std::map<ThingId, std::string> names;
    for (const Thing& thing : chosen()) {
        for (const ThingId& id : model->idsOf({thing}))
            names[id] = model->fullNameOf(thing).toStdString();
    }
    return names;
}

void ThingsPanel::choose(const std::optional<Thing>& thing)
{
    const QModelIndex row = thing ? model->rowOf(*thing) : QModelIndex();
    if (!row.isValid()) {
        list->selectionModel()->clearSelection();
        return;
    }
    list->setCurrentIndex(row); // which it scrolls to
}

// In steps, as one goes into a group: first all of it, then what of it is meant.
void ThingsPanel::pick(const std::optional<Thing>& part, bool beside)
{
    if (!part) {
        if (!beside)
            choose({});
        return;
    }
    const Things now = chosen();
    const bool isPartChosen = std::any_of(now.begin(), now.end(), [&part](const Thing& thing) {
        return thing.whole() == part->whole() && thing.part != ThingPart::WHOLE;
    });
    if (beside) {
        toggle(isPartChosen ? *part : part->whole());
        return;
    }
    const bool isChosen = now.size() == 1 && now.begin()->whole() == part->whole();
    choose(isChosen && !(*now.begin() == *part) ? *part : part->whole());
}

void ThingsPanel::toggle(const Thing& thing)
{
    const QModelIndex row = model->rowOf(thing);
    if (!row.isValid())
        return;
    list->selectionModel()->setCurrentIndex(row, QItemSelectionModel::Toggle |
                                                     QItemSelectionModel::Rows);
    list->scrollTo(row);
}

void ThingsPanel::centre(const Things& things)
{
    SbBox3f box;
    for (const Thing& thing : things) {
        const SbBox3f ofThing = model->boxOf(thing);
        if (!ofThing.isEmpty())
            box.extendBy(ofThing);
    }
    if (!box.isEmpty() && onCentre)
        onCentre(box);
}

void ThingsPanel::chooseColour(const Things& things)
{
    const auto coloured = std::find_if(things.begin(), things.end(), [this](const Thing& thing) {
        return model->colourOf(thing).has_value();
    });
    if (coloured == things.end())
        return;
    const SbColor now = *model->colourOf(*coloured);
    QColorDialog dialog(QColor::fromRgbF(double(now[0]), double(now[1]), double(now[2])), this);
    dialog.setWindowTitle("Colour");
    letTypeColour(dialog);
    if (dialog.exec() != QDialog::Accepted)
        return;
    if (const QColor chosen = dialog.selectedColor(); chosen.isValid())
        model->setColour(things,
                         {float(chosen.redF()), float(chosen.greenF()), float(chosen.blueF())});
}

void ThingsPanel::rename(const Thing& thing)
{
    if (const QModelIndex row = model->rowOf(thing); row.isValid())
        list->edit(row);
}

// Another frame, in which some of the things are no more, may be there once one is chosen.
void ThingsPanel::offerMenu(const QPoint& place)
{
    const QModelIndex index = list->indexAt(place);
    if (!index.isValid())
        return;
    const Things things = chosen(), clicked = model->thingsIn({index});
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction("Centre the view on it", this, [=] { centre(things); });
    menu->addAction("Show", this, [=] { model->show(things, true); });
    menu->addAction("Hide", this, [=] { model->show(things, false); });
    menu->addAction("Show only this", this, [=] { model->showOnly(things); });
    menu->addSeparator();
    if (clicked.size() == 1)
        menu->addAction("Rename", this, [=] { rename(*clicked.begin()); });
    menu->addAction("Colour...", this, [=] { chooseColour(things); });
    menu->addAction("Delete from view", this, [=] { model->deleteFromView(things); });
    menu->popup(list->viewport()->mapToGlobal(place));
}

} // namespace strandview
