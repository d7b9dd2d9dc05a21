// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/textBoxes.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QMessageBox>
#include <QScrollArea>
#include <QVBoxLayout>

#include "window/ScreenFitter.h"
#include "window/actions.h"

namespace strandview {

void tellFailure(QWidget* parent, const QString& title, const std::string& failure)
{
    QMessageBox box(QMessageBox::Critical, title, QString::fromStdString(failure), QMessageBox::Ok,
                    parent);
    box.setTextFormat(Qt::PlainText);
    box.exec();
}

void showText(QWidget* parent, const QString& title, const QString& text)
{
    auto* box = new QDialog(parent);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowTitle(title);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, box);
    QObject::connect(buttons, &QDialogButtonBox::rejected, box, &QDialog::close);
    auto* label = new QLabel(text);
    auto* area = new QScrollArea(box);
    area->setFrameShape(QFrame::NoFrame);
    area->setWidget(label);
    auto* layout = new QVBoxLayout(box);
    layout->addWidget(area);
    layout->addWidget(buttons);
    // A scroll area asks for some lines alone, however long its text.
    box->resize(box->sizeHint() + (label->sizeHint() - area->sizeHint()).expandedTo(QSize(0, 0)));
    (new ScreenFitter(*box))->setParent(box);
    box->show();
}

namespace {

QString rowsOf(const KeyGroup& group)
{
    QString rows =
        "<tr><td colspan='2'><b>" + QString::fromStdString(group.title) + "</b></td></tr>";
    for (const KeyHelp& help : group.keys)
        rows += "<tr><td>" + QString::fromStdString(help.key).toHtmlEscaped() +
                "&nbsp;&nbsp;</td><td>" + QString::fromStdString(help.does).toHtmlEscaped() +
                "&nbsp;&nbsp;</td></tr>";
    return rows;
}

} // namespace

// In two columns, so that the page fits small screens: each group in the shorter one.
QString keyPage()
{
    QString columns[2];
    std::size_t heights[2] = {0, 0};
    for (const KeyGroup& group : keyHelp()) {
        const int column = heights[0] <= heights[1] ? 0 : 1;
        columns[column] += rowsOf(group);
        heights[column] += 1 + group.keys.size();
    }
    return "<table style='white-space: nowrap'><tr><td><table cellspacing='3'>" + columns[0] +
           "</table></td><td><table cellspacing='3'>" + columns[1] + "</table></td></tr></table>";
}

} // namespace strandview
