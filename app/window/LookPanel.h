// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_LOOKPANEL_H
#define STRANDVIEW_APP_WINDOW_LOOKPANEL_H

#include <map>
#include <optional>
#include <string>

#include <QWidget>

#include "request/StyleRequest.h"
#include "scene/Style.h"

class QComboBox;

namespace strandview {

class SettingsPanel;

/// The look of all things, or, where its user chooses so, of some of them: what those have of their
/// own, with a button each that leaves it to that of all.
class LookPanel : public QWidget
{
    Q_OBJECT

public:
    explicit LookPanel(QWidget* parent);

    SettingsPanel* getSettings() const { return settings; }

    /// What is asked for, what is shown of it, and the style that this was made of; null for none.
    void show(const StyleRequest& asked, const StyleRequest& shown, const Style* styleOfIt);
    /// Those that may be chosen instead of all, with their names; of none it is of all again.
    void offer(const std::map<ThingId, std::string>& chosen);

signals:
    /// The user asks for another style.
    void changed(const strandview::StyleRequest& next);
    /// Between these a style is tried, after which the panel asks for the one before.
    void trialBegun();
    void trialEnded();

private:
    bool isOfAll() const;
    void follow();
    void setOwn(const QString& setting, const QString* text);
    void beginTrial();
    void endTrial();

    QComboBox* const which;
    SettingsPanel* const settings;
    std::map<ThingId, std::string> things;
    StyleRequest request, shownStyle;
    std::optional<Style> style;
    std::optional<ThingLooks> looksBeforeTrial; ///< of a trial with things
};

} // namespace strandview

#endif
