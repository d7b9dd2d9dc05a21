// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/LookPanel.h"

#include <algorithm>
#include <utility>

#include <QComboBox>
#include <QVBoxLayout>

#include "request/thingTexts.h"
#include "window/SettingsPanel.h"

namespace strandview {

namespace {

enum { ALL_THINGS, CHOSEN_THINGS };

const std::size_t MOST_NAMES = 3;

// "rod 1, rod 2", "7 chosen things".
QString titleOf(const std::map<ThingId, std::string>& things)
{
    if (things.size() > MOST_NAMES)
        return QString::number(things.size()) + " chosen things";
    QString title;
    for (const auto& [thing, name] : things)
        title += (title.isEmpty() ? "" : ", ") + QString::fromStdString(name);
    return title;
}

} // namespace

LookPanel::LookPanel(QWidget* parent)
    : QWidget(parent),
      which(new QComboBox(this)),
      settings(new SettingsPanel({"Look", "Light", "Scale bar", "DNA"}, this))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 0);
    layout->addWidget(which);
    layout->addWidget(settings, 1);
    which->setObjectName("lookOf");
    which->setAccessibleName("Whose look");
    which->setToolTip(
        "All things, or those that are chosen in the tree of things, which can have a "
        "look of their own");
    which->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    which->setMinimumContentsLength(12);
    which->addItem("All things");
    connect(which, QOverload<int>::of(&QComboBox::activated), this, [this] { follow(); });
    connect(settings, &SettingsPanel::changed, this,
            [this](const StyleRequest& next) { emit changed(next); });
    connect(settings, &SettingsPanel::ownChosen, this,
            [this](const QString& setting, const QString& text) { setOwn(setting, &text); });
    connect(settings, &SettingsPanel::ownCleared, this,
            [this](const QString& setting) { setOwn(setting, nullptr); });
    connect(settings, &SettingsPanel::trialBegun, this, &LookPanel::beginTrial);
    connect(settings, &SettingsPanel::trialEnded, this, &LookPanel::endTrial);
}

void LookPanel::show(const StyleRequest& asked, const StyleRequest& shown, const Style* styleOfIt)
{
    request = asked;
    shownStyle = shown;
    style = styleOfIt ? std::optional(*styleOfIt) : std::nullopt;
    follow();
}

void LookPanel::offer(const std::map<ThingId, std::string>& chosen)
{
    if (chosen == things)
        return;
    things = chosen;
    if (things.empty())
        which->removeItem(CHOSEN_THINGS);
    else if (which->count() == CHOSEN_THINGS)
        which->addItem(titleOf(things));
    else
        which->setItemText(CHOSEN_THINGS, titleOf(things));
    follow();
}

bool LookPanel::isOfAll() const { return which->currentIndex() != CHOSEN_THINGS; }

void LookPanel::follow()
{
    if (isOfAll()) {
        settings->show(request, shownStyle);
        return;
    }
    std::set<ThingId> kinds; // one of each
    for (const auto& [thing, name] : things)
        kinds.insert({thing.kind, 0, thing.part});
    const ThingId& first = things.begin()->first;
    const ThingLook look = request.things.of(first);
    StyleRequest shown = style ? resolve(shownStyle, styleOf(*style, first)) : shownStyle;
    const std::optional<Colour> own = request.things.withThings(first).colour;
    shown.tubeColour = own ? own : shown.tubeColour;
    settings->showOwn(look, kinds, shown);
}

void LookPanel::setOwn(const QString& setting, const QString* text)
{
    const std::string name = setting.toStdString();
    StyleRequest next = request;
    for (const auto& [thing, known] : things) {
        if (canHaveOwn(name, thing))
            strandview::setOwn(name, text ? std::optional(text->toStdString()) : std::nullopt,
                               next.things.ofThings[thing]);
    }
    emit changed(next);
}

void LookPanel::beginTrial()
{
    if (!isOfAll())
        looksBeforeTrial = request.things;
    emit trialBegun();
}

void LookPanel::endTrial()
{
    if (looksBeforeTrial) {
        StyleRequest next = request;
        next.things = *std::exchange(looksBeforeTrial, {});
        emit changed(next);
    }
    emit trialEnded();
}

} // namespace strandview
