// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/SettingsPanel.h"

#include <algorithm>

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QScrollArea>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>

#include "window/SettingControl.h"

namespace strandview {

SettingsPanel::SettingsPanel(const std::vector<std::string>& groups, QWidget* parent)
    : QWidget(parent), faultLine(new QLabel(this))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    auto* area = new QScrollArea(this);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* page = new QWidget;
    auto* form = new QFormLayout(page);
    form->setContentsMargins(0, 0, 0, 0);
    for (const std::string& group : groups) {
        if (groups.size() > 1)
            form->addRow(new QLabel("<b>" + QString::fromStdString(group) + "</b>", page));
        for (const Setting& setting : settings()) {
            if (group == setting.group)
                addControl(setting, *form);
        }
    }
    area->setWidget(page);
    area->setMinimumWidth(page->minimumSizeHint().width() +
                          style()->pixelMetric(QStyle::PM_ScrollBarExtent));
    layout->addWidget(area, 1);
    faultLine->setObjectName("settingFault");
    faultLine->setWordWrap(true);
    faultLine->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred); // or the panel widens
    layout->addWidget(faultLine);
    faultLine->hide();
    show({}, {});
}

void SettingsPanel::addControl(const Setting& setting, QFormLayout& form)
{
    QWidget* const page = form.parentWidget();
    SettingControl* const control = SettingControl::make(setting, page);
    auto* reset = new QToolButton(page);
    reset->setObjectName(QString(setting.name) + "Reset");
    reset->setIcon(style()->standardIcon(QStyle::SP_LineEditClearButton));
    reset->setAutoRaise(true);
    reset->setToolTip("As usual");
    reset->setAccessibleName(QString(setting.label) + " as usual");
    QSizePolicy place = reset->sizePolicy();
    place.setRetainSizeWhenHidden(true);
    reset->setSizePolicy(place);
    auto* row = new QHBoxLayout;
    row->addWidget(control->getWidget(), 1);
    row->addWidget(reset);
    auto* label = new QLabel(setting.label, page);
    label->setBuddy(control->getWidget());
    form.addRow(label, row);
    rows.push_back({control, reset});
    connect(control, &SettingControl::chosen, this,
            [this, &setting](const QString& text) { read(setting, text); });
    connect(control, &SettingControl::cleared, this, [this, &setting] { clear(setting); });
    connect(reset, &QToolButton::clicked, this, [this, &setting] { clear(setting); });
}

void SettingsPanel::show(const StyleRequest& asked, const StyleRequest& shown)
{
    request = asked;
    shownStyle = shown;
    for (const Row& row : rows) {
        const Setting& setting = row.control->getSetting();
        const std::optional<std::string> text = setting.write(asked);
        row.control->show(text, setting.value(shown));
        row.reset->setVisible(text.has_value());
        row.control->getWidget()->setEnabled(setting.isOfUse(asked));
    }
}

void SettingsPanel::offerScalars(const std::vector<std::string>& names)
{
    for (const Row& row : rows) {
        if (row.control->getSetting().kind == SettingKind::SCALAR)
            row.control->offer(names);
    }
    show(request, shownStyle);
}

void SettingsPanel::tellFault(const std::string& fault)
{
    faultLine->setText(QString::fromStdString(fault));
    faultLine->setVisible(!fault.empty());
}

namespace {

// What was written about one scalar would be wrong of another.
void clearTextsOf(const Setting& scalar, StyleRequest& request)
{
    for (const Setting& other : settings()) {
        if (other.kind == SettingKind::TEXT && other.neededSetting == scalar.name)
            other.clear(request);
    }
}

} // namespace

void SettingsPanel::read(const Setting& setting, const QString& text)
{
    StyleRequest next = request;
    const std::string fault = setting.read(text.toStdString(), next);
    if (fault.empty() && setting.kind == SettingKind::SCALAR && next != request)
        clearTextsOf(setting, next);
    tellFault(fault.empty() ? "" : std::string(setting.label) + ": " + fault);
    if (fault.empty() && next != request)
        emit changed(next, setting.name);
    else
        show(request, shownStyle);
}

void SettingsPanel::clear(const Setting& setting)
{
    StyleRequest next = request;
    setting.clear(next);
    if (setting.kind == SettingKind::SCALAR) { // what it colours is nothing any more
        for (const Setting& other : settings()) {
            if (other.neededSetting == setting.name)
                other.clear(next);
        }
    }
    tellFault("");
    emit changed(next, setting.name);
}

} // namespace strandview
