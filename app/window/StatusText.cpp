// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/StatusText.h"

#include <QApplication>
#include <QClipboard>
#include <QStringList>

namespace strandview {

namespace {

const int INDENT = 4; // pixels

// The last letters of a name that are worth showing.
const int FEWEST_LETTERS = 6;

const char* const DASH = " – ";

QStringList namesOf(const std::vector<Told>& told)
{
    QStringList names;
    for (const Told& one : told)
        names.append(QString::fromStdString(one.name));
    names.removeAll(QString());
    names.removeDuplicates();
    return names;
}

QString whatOf(const std::vector<Told>& told)
{
    QStringList texts;
    for (const Told& one : told)
        texts.append(QString::fromStdString(one.what));
    return texts.join("; ");
}

} // namespace

StatusText::StatusText(QWidget* parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setTextInteractionFlags(Qt::TextSelectableByMouse);
    setIndent(INDENT);
    setMinimumWidth(1); // so that long texts do not widen the window
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

void StatusText::setHint(const QString& newHint)
{
    hint = newHint;
    showWhatFits();
}

void StatusText::tell(const std::vector<Told>& news)
{
    told = news;
    showWhatFits();
}

QString StatusText::getAll() const
{
    if (told.empty())
        return hint;
    QStringList lines;
    for (const Told& one : told)
        lines.append(QString::fromStdString(toLine(one)));
    return lines.join('\n');
}

void StatusText::copy() const
{
    QApplication::clipboard()->setText(hasSelectedText() ? selectedText() : getAll());
}

void StatusText::resizeEvent(QResizeEvent* event)
{
    QLabel::resizeEvent(event);
    showWhatFits();
}

void StatusText::showWhatFits()
{
    const QFontMetrics metrics = fontMetrics();
    const int room = contentsRect().width() - 2 * INDENT;
    QString text = metrics.elidedText(told.empty() ? hint : whatOf(told), Qt::ElideRight, room);
    const QString name = namesOf(told).join(", ");
    const int rest = room - metrics.horizontalAdvance(text + DASH);
    if (!name.isEmpty() && rest >= metrics.horizontalAdvance("…" + name.right(FEWEST_LETTERS)))
        text += DASH + metrics.elidedText(name, Qt::ElideLeft, rest);
    setText(text.replace('\n', ' '));
    // Not even where a name looks like rich text is it shown as such.
    setToolTip("<p style='white-space: pre-wrap'>" + getAll().toHtmlEscaped() + "</p>");
}

} // namespace strandview
