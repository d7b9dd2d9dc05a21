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

#include "request/thingTexts.h"
#include "window/SettingControl.h"
#include "window/scrollPast.h"

namespace strandview {

SettingsPanel::SettingsPanel(const std::vector<std::string>& groups, QWidget* parent)
    : QWidget(parent), faultLine(new QLabel(this))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    auto* area = new QScrollArea(this);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus); // it follows what has the keyboard
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
    scrollPast(*control->getWidget());
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
    connect(control, &SettingControl::trialBegun, this, &SettingsPanel::beginTrial);
    connect(control, &SettingControl::trialEnded, this, [this, &setting] { endTrial(setting); });
    connect(reset, &QToolButton::clicked, this, [this, &setting] { takeBack(setting); });
}

void SettingsPanel::show(const StyleRequest& asked, const StyleRequest& shown)
{
    request = asked;
    shownStyle = shown;
    isOfThings = false;
    for (const Row& row : rows) {
        const Setting& setting = row.control->getSetting();
        const std::optional<std::string> text = setting.write(asked);
        row.control->show(text, setting.value(shown));
        row.reset->setVisible(text.has_value());
        row.reset->setToolTip("As usual");
        enable(*row.control, setting.isOfUse(asked));
    }
}

void SettingsPanel::showOwn(const ThingLook& look, const std::set<ThingId>& things,
                            const StyleRequest& shown)
{
    shownStyle = shown;
    isOfThings = true;
    ownLook = look;
    ownThings = things;
    for (const Row& row : rows) {
        const Setting& setting = row.control->getSetting();
        const std::optional<std::string> text = ownValue(setting.name, look);
        row.control->show(text, setting.value(shown));
        row.reset->setVisible(text.has_value());
        row.reset->setToolTip("As all things");
        enable(*row.control, std::any_of(things.begin(), things.end(), [&](const ThingId& thing) {
            return canHaveOwn(setting.name, thing);
        }));
    }
}

// A field loses the keyboard with it, and would tell what was typed.
void SettingsPanel::enable(SettingControl& control, bool on)
{
    if (!on)
        control.forgetTyping();
    control.getWidget()->setEnabled(on);
}

void SettingsPanel::showAgain()
{
    if (isOfThings)
        showOwn(ThingLook(ownLook), std::set<ThingId>(ownThings), StyleRequest(shownStyle));
    else
        show(request, shownStyle);
}

void SettingsPanel::forgetTyping()
{
    for (const Row& row : rows)
        row.control->forgetTyping();
}

void SettingsPanel::offerScalars(const std::vector<std::string>& names)
{
    for (const Row& row : rows) {
        if (row.control->getSetting().kind == SettingKind::SCALAR)
            row.control->offer(names);
    }
    show(request, shownStyle);
}

void SettingsPanel::setSurroundings(const Surroundings& surroundings)
{
    for (const Row& row : rows)
        row.control->setSurroundings(surroundings);
}

void SettingsPanel::tellFault(const std::string& fault)
{
    faultLine->setText(QString::fromStdString(fault));
    faultLine->setVisible(!fault.empty());
}

namespace {

// Of those that need it, which would be wrong of another, or of none.
void clearWhatNeeds(const Setting& needed, StyleRequest& request, bool textsAlone)
{
    for (const Setting& setting : settings()) {
        if (setting.neededSetting == needed.name &&
            (!textsAlone || setting.kind == SettingKind::TEXT)) {
            setting.clear(request);
            clearWhatNeeds(setting, request, false);
        }
    }
}

} // namespace

void SettingsPanel::read(const Setting& setting, const QString& text)
{
    StyleRequest next = request;
    const std::string fault = setting.read(text.toStdString(), next);
    if (isOfThings && fault.empty()) {
        tellFault("");
        emit ownChosen(setting.name, text);
        return;
    }
    if (fault.empty() && next != request)
        clearWhatNeeds(setting, next, true);
    tellFault(fault.empty() ? "" : std::string(setting.label) + ": " + fault);
    if (fault.empty() && next != request)
        emit changed(next, setting.name);
    else
        showAgain();
}

void SettingsPanel::takeBack(const Setting& setting)
{
    for (const Row& row : rows) {
        const Setting& other = row.control->getSetting();
        if (&other == &setting || other.neededSetting == setting.name)
            row.control->forgetTyping();
    }
    clear(setting);
}

void SettingsPanel::clear(const Setting& setting)
{
    if (isOfThings) {
        tellFault("");
        emit ownCleared(setting.name);
        return;
    }
    StyleRequest next = request;
    setting.clear(next);
    clearWhatNeeds(setting, next, false);
    tellFault("");
    emit changed(next, setting.name);
}

void SettingsPanel::beginTrial()
{
    requestBeforeTrial = request;
    emit trialBegun();
}

// Of the setting alone: what was read meanwhile may have changed others.
void SettingsPanel::endTrial(const Setting& setting)
{
    StyleRequest next = request;
    setting.clear(next);
    if (const auto text = setting.value(requestBeforeTrial))
        setting.read(*text, next);
    if (!isOfThings && next != request)
        emit changed(next, setting.name);
    emit trialEnded();
}

} // namespace strandview
