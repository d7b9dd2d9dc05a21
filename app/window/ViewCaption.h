// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_VIEWCAPTION_H
#define STRANDVIEW_APP_WINDOW_VIEWCAPTION_H

#include <functional>
#include <string>

#include <QWidget>

class QLabel;
class QToolButton;

namespace strandview {

/// What a view shows, in a line above it, with letters left out of the middle of what is longer
/// than the view is wide.
class ViewCaption : public QWidget
{
public:
    explicit ViewCaption(QWidget* parent);

    void setText(const std::string& text);
    const std::string& getText() const { return text; }
    /// In bold letters: of several views, that which keys and menus turn.
    void setActive(bool active);
    /// With a button that closes the view. What it does may delete this later, but not at once.
    void addCloseButton(std::function<void()> close);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void showWhatFits();

    std::string text;
    QLabel* label;
    QToolButton* closeButton = nullptr;
};

} // namespace strandview

#endif
