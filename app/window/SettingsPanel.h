// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_SETTINGSPANEL_H
#define STRANDVIEW_APP_WINDOW_SETTINGSPANEL_H

#include <set>
#include <string>
#include <vector>

#include <QWidget>

#include "request/settings.h"

class QFormLayout;
class QLabel;

namespace strandview {

class SettingControl;
struct Surroundings;

/// Some groups of settings(), a control each, with a button that leaves a setting to the data
/// again. What it shows is what it was told last: who hears of a change tells it.
class SettingsPanel : public QWidget
{
    Q_OBJECT

public:
    /// The groups by the names that the help has.
    SettingsPanel(const std::vector<std::string>& groups, QWidget* parent);

    /// What is asked for, and what is shown of it, where the data fill in what is left open.
    void show(const StyleRequest& asked, const StyleRequest& shown);
    /// What a thing, of which there is one here of each kind, has of its own instead, and what is
    /// shown of it.
    void showOwn(const ThingLook& look, const std::set<ThingId>& things, const StyleRequest& shown);
    /// The scalars that there are.
    void offerScalars(const std::vector<std::string>& names);
    /// What controls ask of data and view; to be called once.
    void setSurroundings(const Surroundings& surroundings);
    /// Why something is not shown, in a line; empty for nothing.
    void tellFault(const std::string& fault);
    /// What is being typed will not be asked for.
    void forgetTyping();

signals:
    /// The user asks for another style; `setting` is the name of the one that is another.
    void changed(const strandview::StyleRequest& next, const QString& setting);
    // The same of what a thing has of its own
    void ownChosen(const QString& setting, const QString& text);
    void ownCleared(const QString& setting);
    /// What the user asks for between these is tried; at the end the panel asks for what it was
    /// before. What things had of their own is left to who hears of it.
    void trialBegun();
    void trialEnded();

private:
    void addControl(const Setting& setting, QFormLayout& form);
    void takeBack(const Setting& setting);
    void enable(SettingControl& control, bool on);
    void showAgain();
    void read(const Setting& setting, const QString& text);
    void clear(const Setting& setting);
    void beginTrial();
    void endTrial(const Setting& setting);

    struct Row
    {
        SettingControl* control;
        QWidget* reset;
    };
    std::vector<Row> rows;
    StyleRequest request;
    StyleRequest shownStyle;
    StyleRequest requestBeforeTrial;
    bool isOfThings = false; ///< what is shown
    ThingLook ownLook;
    std::set<ThingId> ownThings;
    QLabel* faultLine;
};

} // namespace strandview

#endif
