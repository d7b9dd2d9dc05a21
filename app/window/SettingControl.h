// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_SETTINGCONTROL_H
#define STRANDVIEW_APP_WINDOW_SETTINGCONTROL_H

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <QObject>

#include <algebra3d/Vector3.h>

#include "request/settings.h"

class QWidget;

namespace strandview {

/// What a control may ask of the data that are shown and of the view; empty where nothing is.
/// Places are in the data's coordinates.
struct Surroundings
{
    using Vector = algebra3d::Vector3<double>;

    std::function<std::optional<std::pair<Vector, Vector>>()> box; ///< its ends
    std::function<Vector()> towardsViewer;                         ///< of length 1
    std::function<QString()> folder;                               ///< where the data's files are
};

/// What a user sets one setting with. It shows what a request says of it, and tells what the user
/// chooses as the setting's text.
class SettingControl : public QObject
{
    Q_OBJECT

public:
    /// Of the kind of the setting, which outlives it; deleted with its widget.
    static SettingControl* make(const Setting& setting, QWidget* parent);

    const Setting& getSetting() const { return setting; }
    QWidget* getWidget() const { return widget; }

    /// What the request says, and what is shown: the same where it says something, else what
    /// follows from the data; nothing where that is not known.
    virtual void show(const std::optional<std::string>& asked,
                      const std::optional<std::string>& shown) = 0;
    /// What can be chosen among, of those that depend on the data.
    virtual void offer(const std::vector<std::string>& /*words*/) {}
    virtual void setSurroundings(const Surroundings& /*surroundings*/) {}
    /// What is being typed will not be chosen, and gives way to what is shown next.
    void forgetTyping();

signals:
    void chosen(const QString& text);
    void cleared();
    /// What is chosen from now on is only tried, until the other: then all is as it was, of which
    /// the control knows what it shows alone.
    void trialBegun();
    void trialEnded();

protected:
    SettingControl(const Setting& settingToSet, QWidget* controlWidget);
    /// An empty one beside which others stand, in a row.
    static QWidget* makeRow(QWidget* parent);
    /// A part of the control that is named by what it does: for tests and for those who hear it.
    void name(QWidget* part, const char* suffix, const QString& description) const;

    const Setting& setting;
    QWidget* const widget;
};

} // namespace strandview

#endif
