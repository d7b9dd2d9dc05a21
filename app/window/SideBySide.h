// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_SIDEBYSIDE_H
#define STRANDVIEW_APP_WINDOW_SIDEBYSIDE_H

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <QSplitter>

#include "scene/DataScene.h"
#include "window/BesideReader.h"
#include "window/WindowViewer.h"

class QLabel;
class SoCamera;

namespace strandview {

/// The place of the window's view, and of a second one beside it while that is wanted: of another
/// configuration in the same coordinates, style and range of colours.
class SideBySide : public QSplitter
{
public:
    explicit SideBySide(QWidget* parent);
    ~SideBySide() override;

    /// Where the first viewer belongs.
    QWidget* getFirstArea() const { return firstArea; }
    /// Once that is there; it outlives the second view.
    void setFirst(WindowViewer& viewer) { first = &viewer; }

    /// Opens the second view, under captions that tell both, with the camera of the first.
    void open(const std::string& firstCaption, const std::string& secondCaption);
    void close();
    bool isOpen() const { return second != nullptr; }

    /// Whether both are seen from the same place: each follows the other's camera, and keys go to
    /// the first.
    void setTied(bool tied);
    /// The first viewer's camera has changed.
    void followFirst();

    /// Takes what it shows from a series, or, without an opener, from what show() is given.
    void setSeries(FrameStore::Opener opener);
    /// Shows data, or else that frame of the series, as the scene of the first view shows its own:
    /// as soon as it is prepared. In another style than before everything is made anew.
    enum LookChange { SAME_LOOK, OTHER_LOOK };
    void show(std::shared_ptr<const Configuration> data, std::size_t frame, const DataScene& as,
              LookChange change);
    bool isAtWork() const { return reader.isAtWork(); }

    /// What is hidden, named, seen through and cut, as the first scene has it.
    void followLooks(const DataScene& first);
    /// Whether data give the colours.
    void showColours(bool ofData);
    void setBackground(const SbColor& background);
    void drawCoarsely(bool coarse);

    WindowViewer* getSecond() const { return second.get(); }
    /// Null until something is shown.
    DataScene* getScene() const { return scene; }
    /// The room that all have taken that were shown in this look.
    const SbBox3f& getRoom() const { return room; }

    // What the window is told; each may be empty
    std::function<void()> onShown;                           ///< something else in the second view
    std::function<void(const std::string& error)> onFailure; ///< it cannot be shown
    std::function<void(const Told& told)> onPick;            ///< there
    std::function<void()> onCamera; ///< the second view has moved the first one's

protected:
    /// Keys of the second view, while both are one.
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void showResult(BesideReader::Result& result);
    std::string hand(BesideReader::Result& result);
    void keepLooks(const DataScene& ofFirst);
    void showLooks();
    void follow(const WindowViewer& from, WindowViewer& to);
    void followSecond();

    QLabel* firstCaption;
    QWidget* firstArea;
    WindowViewer* first = nullptr;
    QWidget* secondColumn = nullptr;
    QLabel* secondCaption = nullptr;
    std::unique_ptr<WindowViewer> second;
    DataScene* scene = nullptr; ///< kept by the second viewer
    SbBox3f room;
    // What the first scene has without other nodes.
    ThingLooks looks;
    double transparency = 0;
    std::optional<ClipPlane> clip;
    DrawingLook drawing;
    bool hasColours = true;
    bool isTied = true;
    bool isFollowing = false;
    std::size_t look = 0, shownLook = 0;
    BesideReader reader;
};

} // namespace strandview

#endif
