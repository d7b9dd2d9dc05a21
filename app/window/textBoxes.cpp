// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/textBoxes.h"

#include <algorithm>
#include <vector>

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

bool askForDefaults(QWidget* parent, const std::string& file)
{
    QMessageBox box(QMessageBox::Question, "Save as defaults",
                    "Shall strandview begin with this look from now on?",
                    QMessageBox::Save | QMessageBox::Cancel, parent);
    box.setInformativeText(
        "Kept are the settings of the panels Look and Colours, but for the range, a reference and "
        "the legend's words, which are of these data. The command line goes before them, and "
        "--no-defaults leaves them aside.\n\n" +
        QString::fromStdString(file));
    box.setTextFormat(Qt::PlainText);
    box.setDefaultButton(QMessageBox::Save);
    return box.exec() == QMessageBox::Save;
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
// Two columns of groups, about equally high: of all ways to part them the best.
QString keyPage()
{
    const std::vector<KeyGroup> groups = keyHelp();
    const auto rowsIn = [&groups](unsigned column, unsigned parting) {
        std::size_t rows = 0;
        for (std::size_t i = 0; i < groups.size(); ++i)
            rows += (parting >> i & 1) == column ? 1 + groups[i].keys.size() : 0;
        return rows;
    };
    unsigned best = 0;
    for (unsigned parting = 0; parting < 1u << groups.size(); ++parting) {
        if (std::max(rowsIn(0, parting), rowsIn(1, parting)) <
            std::max(rowsIn(0, best), rowsIn(1, best)))
            best = parting;
    }
    QString columns[2];
    for (std::size_t i = 0; i < groups.size(); ++i)
        columns[best >> i & 1] += rowsOf(groups[i]);
    return "<table style='white-space: nowrap'><tr><td><table cellspacing='0'>" + columns[0] +
           "</table></td><td><table cellspacing='0'>" + columns[1] + "</table></td></tr></table>";
}

} // namespace strandview
