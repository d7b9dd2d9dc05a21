// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_SIDEBYSIDE_H
#define STRANDVIEW_APP_WINDOW_SIDEBYSIDE_H

#include <array>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <QTimer>
#include <QWidget>

#include "window/BesideView.h"

class QGridLayout;

namespace strandview {

class History;
class ViewCaption;

/// The place of the window's view, and of further ones while they are wanted: two beside each
/// other, or up to four in two rows.
class SideBySide : public QWidget
{
public:
    explicit SideBySide(QWidget* parent);

    /// Where the first viewer belongs.
    QWidget* getFirstArea() const { return firstArea; }
    /// Once that is there; it outlives the others, or close() comes before it goes.
    void setFirst(WindowViewer& viewer);
    /// Of the user's doing, which what is done here without a user is none of.
    void setHistory(History& its) { history = &its; }

    /// Shows these in further views, BesideRequest::MOST of them at most, and closes those that are
    /// not among them. Those that are stay, also if they show something else by the same name
    /// where the files are READ_AGAIN; of OTHER_FILES they are seen as at first. The same as in the
    /// first view is seen from the front, the right, above or elsewhere then, as `home` of the
    /// first view says what is up.
    enum Files { SAME_FILES, READ_AGAIN, OTHER_FILES };
    void open(const std::string& firstCaption, std::vector<BesideView::Source> sources, Files files,
              const CameraRequest& home);
    /// That one of them; or all.
    void close(std::size_t index);
    void close();
    bool isOpen() const { return !views.empty(); }
    const std::vector<BesideView*>& getViews() const { return views; }

    /// Whether all are seen from the same place: each follows the others' camera, and keys go to
    /// the first.
    void setTied(bool tied);
    /// Each has the camera that is given for it, if it is.
    void setCameras(const std::vector<std::optional<BesideCamera>>& cameras);
    /// Of those views that would stay if these were opened; open for all others.
    std::vector<std::optional<BesideCamera>> getCameras(const std::vector<std::string>& what) const;
    /// The first viewer's camera has changed.
    void followFirst();
    /// Which one its user turns, where they are not tied: that which had the keyboard last; null
    /// for the first.
    BesideView* getActive() const { return active; }

    /// As BesideView has these, for all of them.
    void show(const DataScene& first, std::size_t frame, BesideView::Change change);
    bool isAtWork() const;
    void followLooks(const DataScene& first);
    void showColours(bool ofData);
    void setBackground(const SbColor& background);
    /// Finely one after the other, so that events are processed between their frames.
    void drawCoarsely(bool coarse);
    bool isRefining() const { return refinement.isActive(); }
    /// Acts once, when all views have drawn that are to now.
    void whenDrawn(std::function<void()> act) { turns->whenDrawn(std::move(act)); }
    /// The axes in the corner, in those to come as well.
    void showAxes(bool shown);
    /// That all together have taken.
    SbBox3f getRoom() const;

    // What the window is told; each may be empty
    /// Another further view can show() data; those that cannot do not, and are at work until then.
    std::function<void()> onViewer;
    std::function<void()> onShown; ///< something else in a further view
    /// What cannot be shown there.
    std::function<void(std::size_t index, const std::string& error)> onFailure;
    std::function<void(const Told& told)> onPick;   ///< there
    std::function<void()> onCamera;                 ///< a further view has moved its own, or all
    std::function<void(std::size_t index)> onClose; ///< its user wants it closed
    std::function<void()> onActive;                 ///< another view has the keyboard

protected:
    /// The keys of further views, while all are one.
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    BesideView* makeView();
    void makeNextViewer();
    void makeViewer(BesideView& view);
    /// Of those that there are the ones that show this; null for others.
    std::vector<BesideView*> viewsOf(const std::vector<std::string>& what) const;
    void drop(BesideView& view);
    std::size_t indexOf(const BesideView& view) const;
    /// Of those sides from where nobody looks, the first.
    CameraRequest freeSide(const CameraRequest& home) const;
    void begin(BesideView& view);
    void follow(const BesideView& view);
    void activate(BesideView* view);
    void arrange();
    void share(double width, double height);
    void refine();

    QGridLayout* grid;
    QWidget* firstColumn;
    ViewCaption* firstCaption;
    QWidget* firstArea;
    std::array<QWidget*, 2> borders; ///< between columns, between rows
    WindowViewer* first = nullptr;
    std::shared_ptr<FrameTurns> turns; ///< of all views
    History* history = nullptr;
    std::vector<BesideView*> views; ///< children of this
    BesideView* active = nullptr;
    std::size_t arranged = 0;         ///< so many further ones
    double width = 0.5, height = 0.5; ///< of the first view, as a part of all
    bool hasAxes = true;
    QTimer making;     ///< until the next one has a viewer
    QTimer refinement; ///< until the next one is drawn finely
    bool isTied = true;
    bool isFollowing = false;
};

} // namespace strandview

#endif
