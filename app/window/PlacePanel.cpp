// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/PlacePanel.h"

#include <algorithm>

#include <QApplication>
#include <QClipboard>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPushButton>
#include <QScrollBar>
#include <QTextEdit>
#include <QVBoxLayout>

namespace strandview {

namespace {

const char* const HINT = "Click on something: its numbers stand here.\n\n"
                         "With Shift, a second click measures from the first place to it, a third "
                         "the angle, a fourth the dihedral angle.";

// Of a column, in letters: names, and numbers of six digits with sign, point and exponent.
const int NAME_WIDTH = 17, NUMBER_WIDTH = 10;

// Columns of texts that are as wide as they come, beside numbers.
QList<QTextOption::Tab> tabsOf(const QFontMetrics& metrics)
{
    const int letter = metrics.horizontalAdvance('0');
    QList<QTextOption::Tab> tabs;
    for (int column = 0; column < 4; ++column)
        tabs.append(
            QTextOption::Tab((NAME_WIDTH + column * NUMBER_WIDTH) * letter, QTextOption::LeftTab));
    return tabs;
}

} // namespace

PlacePanel::PlacePanel(QWidget* parent)
    : QWidget(parent),
      page(new QTextEdit(this)),
      copyButton(new QPushButton("&Copy all", this)),
      jsonButton(new QPushButton("Copy as &JSON", this))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(page, 1);
    auto* buttons = new QHBoxLayout;
    layout->addLayout(buttons);
    for (QPushButton* button : {copyButton, jsonButton}) {
        buttons->addWidget(button);
        button->setAutoDefault(false);
        button->setMinimumWidth(1); // as narrow as the panel
    }
    page->setObjectName("placeText");
    page->setAccessibleName("Numbers");
    page->setReadOnly(true);
    page->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    page->setLineWrapMode(QTextEdit::NoWrap);
    page->setMinimumWidth(120);
    page->installEventFilter(this);
    copyButton->setObjectName("copyPlaceButton");
    copyButton->setToolTip("With tabs between the columns, as tables take it");
    connect(copyButton, &QPushButton::clicked, this, &PlacePanel::copy);
    jsonButton->setObjectName("copyPlaceAsJsonButton");
    jsonButton->setToolTip("Each number under its name, with all digits");
    connect(jsonButton, &QPushButton::clicked, this, &PlacePanel::copyAsJson);
    tell({});
}

void PlacePanel::tell(const std::vector<NumberTable>& tables)
{
    told = tables; // of other digits than the text has
    const QString next = QString::fromStdString(textOf(tables));
    if (next == text && !page->document()->isEmpty()) // what is selected stays so
        return;
    text = next;
    for (QPushButton* button : {copyButton, jsonButton})
        button->setEnabled(!tables.empty());
    const int line = page->verticalScrollBar()->value(),
              column = page->horizontalScrollBar()->value();
    page->clear();
    if (tables.empty()) {
        page->setLineWrapMode(QTextEdit::WidgetWidth);
        QTextCursor(page->document()).insertText(HINT, QTextCharFormat()); // as no title
        return;
    }
    page->setLineWrapMode(QTextEdit::NoWrap);
    for (const NumberTable& table : tables)
        add(table);
    page->moveCursor(QTextCursor::Start);
    page->verticalScrollBar()->setValue(line); // of another frame's numbers the same ones
    page->horizontalScrollBar()->setValue(column);
}

QSize PlacePanel::sizeHint() const
{
    const int letters = NAME_WIDTH + 3 * NUMBER_WIDTH + 1; // and the bar beside
    return {page->fontMetrics().horizontalAdvance('0') * letters + 30, 400};
}

void PlacePanel::copy() const { QApplication::clipboard()->setText(text); }

void PlacePanel::copyAsJson() const
{
    QApplication::clipboard()->setText(QString::fromStdString(jsonOf(told)));
}

void PlacePanel::add(const NumberTable& table)
{
    QTextCursor cursor(page->document());
    cursor.movePosition(QTextCursor::End);
    QTextBlockFormat lines;
    QTextBlockFormat title;
    lines.setTabPositions(tabsOf(page->fontMetrics()));
    title.setTopMargin(cursor.atStart() ? 0 : page->fontMetrics().height() / 2);
    QTextCharFormat bold, plain;
    bold.setFontWeight(QFont::Bold);
    if (!cursor.atStart())
        cursor.insertBlock();
    cursor.setBlockFormat(title);
    cursor.insertText(QString::fromStdString(table.title), bold);
    for (const NumberRow& row : table.rows) {
        cursor.insertBlock(lines, plain);
        QStringList parts{QString::fromStdString(row.name)};
        for (const std::string& part : {row.value, row.unit})
            if (!part.empty())
                parts.append(QString::fromStdString(part));
        cursor.insertText(parts.join('\t'), plain);
    }
}

bool PlacePanel::eventFilter(QObject* watched, QEvent* event)
{
    // Or the window would copy what its status bar tells.
    if (event->type() == QEvent::ShortcutOverride &&
        static_cast<QKeyEvent*>(event)->matches(QKeySequence::Copy)) {
        event->accept();
        return true;
    }
    if (event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->matches(QKeySequence::Copy) &&
        !page->textCursor().hasSelection()) {
        copy();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace strandview
