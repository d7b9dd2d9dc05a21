// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/NamedViews.h"

#include <algorithm>
#include <utility>

#include <QDialog>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace strandview {

namespace {

const std::size_t VIEWS_WITH_KEYS = 9;

QString nameOf(const NamedView& view) { return QString::fromStdString(view.name); }

// A list of the names, each of which can be edited, with buttons.
class ViewsDialog : public QDialog
{
public:
    ViewsDialog(NamedViews& viewsToEdit, QWidget* parent)
        : QDialog(parent), views(viewsToEdit), list(new QListWidget(this))
    {
        setWindowTitle("Named views");
        list->setAccessibleName("Named views");
        list->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
        auto* column = new QVBoxLayout(this);
        column->addWidget(list);
        auto* row = new QHBoxLayout;
        column->addLayout(row);
        addButton(*row, "&Show", [this](int index) {
            if (views.onShow)
                views.onShow(views.get()[std::size_t(index)].camera);
        });
        addButton(*row, "&Rename", [this](int index) { list->editItem(list->item(index)); });
        addButton(*row, "&Delete", [this](int index) {
            views.remove(std::size_t(index));
            fill(index);
        });
        auto* close = new QDialogButtonBox(QDialogButtonBox::Close, this);
        connect(close, &QDialogButtonBox::rejected, this, &QDialog::reject);
        row->addWidget(close);
        connect(list, &QListWidget::itemChanged, this, [this](QListWidgetItem* item) {
            const auto index = std::size_t(list->row(item));
            views.rename(index, item->text());
            const QSignalBlocker quiet(list);
            item->setText(nameOf(views.get()[index])); // also one that it kept
        });
        connect(list, &QListWidget::currentRowChanged, this, [this](int) { follow(); });
        connect(&views, &NamedViews::replaced, this, [this] { fill(0); });
        fill(0);
    }

private:
    template <typename Does>
    void addButton(QHBoxLayout& row, const char* text, Does does)
    {
        auto* button = new QPushButton(text, this);
        button->setAutoDefault(false);
        row.addWidget(button);
        buttons.push_back(button);
        connect(button, &QPushButton::clicked, this, [this, does] { does(list->currentRow()); });
    }
    void fill(int current)
    {
        const QSignalBlocker quiet(list);
        list->clear();
        for (const NamedView& view : views.get()) {
            auto* item = new QListWidgetItem(nameOf(view), list);
            item->setFlags(item->flags() | Qt::ItemIsEditable);
        }
        list->setCurrentRow(std::min(current, list->count() - 1));
        follow();
    }
    void follow()
    {
        for (QPushButton* button : buttons)
            button->setEnabled(list->currentRow() >= 0);
    }

    NamedViews& views;
    QListWidget* const list;
    std::vector<QPushButton*> buttons;
};

} // namespace

NamedViews::NamedViews(QMenu& viewsMenu, QWidget* ofWindow)
    : QObject(ofWindow), menu(viewsMenu), window(ofWindow)
{
    fillMenu();
}

void NamedViews::set(Views kept)
{
    put(std::move(kept));
    emit replaced();
}

void NamedViews::put(Views next)
{
    views = std::move(next);
    fillMenu();
}

void NamedViews::askToKeep(const CameraNumbers& camera)
{
    const auto usual = [](std::size_t number) { return "View " + std::to_string(number); };
    std::size_t number = views.size() + 1;
    while (find(usual(number)) != views.end())
        ++number;
    bool isGiven = false;
    const QString name = QInputDialog::getText(window, "Keep this view", "Name:", QLineEdit::Normal,
                                               QString::fromStdString(usual(number)), &isGiven);
    if (isGiven)
        keep(name, camera);
}

void NamedViews::edit() { ViewsDialog(*this, window).exec(); }

void NamedViews::keep(const QString& name, const CameraNumbers& camera)
{
    const std::string trimmed = name.trimmed().toStdString();
    if (trimmed.empty())
        return;
    Views next = views;
    const auto known = find(trimmed);
    if (known == views.end())
        next.push_back({trimmed, camera});
    else
        next[std::size_t(known - views.begin())].camera = camera;
    change(std::move(next));
}

bool NamedViews::rename(std::size_t index, const QString& name)
{
    const std::string trimmed = name.trimmed().toStdString();
    if (trimmed.empty() || find(trimmed) != views.end())
        return false;
    Views next = views;
    next[index].name = trimmed;
    change(std::move(next));
    return true;
}

void NamedViews::remove(std::size_t index)
{
    Views next = views;
    next.erase(next.begin() + std::ptrdiff_t(index));
    change(std::move(next));
}

void NamedViews::change(Views next)
{
    if (next == views)
        return;
    put(std::move(next));
    emit changed();
}

void NamedViews::fillMenu()
{
    menu.clear();
    for (std::size_t i = 0; i < views.size(); ++i) {
        // A single & would underline the letter after it.
        QAction* const shows = menu.addAction(nameOf(views[i]).replace('&', "&&"), this,
                                              [this, camera = views[i].camera] {
                                                  if (onShow)
                                                      onShow(camera);
                                              });
        if (i < VIEWS_WITH_KEYS)
            shows->setShortcut(QKeySequence("Alt+" + QString::number(i + 1)));
    }
    if (views.empty())
        menu.addAction("None yet")->setEnabled(false);
    menu.addSeparator();
    QAction* const edits = menu.addAction("&Rename or delete...");
    edits->setEnabled(!views.empty());
    // Later: the menu, which is filled anew, is not in use then.
    connect(edits, &QAction::triggered, this, &NamedViews::edit, Qt::QueuedConnection);
}

NamedViews::Views::iterator NamedViews::find(const std::string& name)
{
    return std::find_if(views.begin(), views.end(),
                        [&name](const NamedView& view) { return view.name == name; });
}

} // namespace strandview
