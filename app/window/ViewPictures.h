// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_VIEWPICTURES_H
#define STRANDVIEW_APP_WINDOW_VIEWPICTURES_H

#include <memory>
#include <string>

#include <QSize>

#include <strandview/model/Configuration.h>

#include "pictures/PictureWriter.h"
#include "request/PictureChoice.h"
#include "request/writeCommand.h"

class SoQtGeneralViewer;

namespace strandview {

class DataScene;

/// What a window shows when a picture of it is asked for.
struct PicturedView
{
    DataScene* scene;
    SoQtGeneralViewer* viewer;                  ///< that shows the scene
    std::shared_ptr<const Configuration> first; ///< what the style follows from; null if unknown
    Options options;                            ///< those that the scene is shown with
    ShownPicture picture;                       ///< as large as the view
};

/// Draws and saves pictures of what a window shows, off screen: those that --render makes with the
/// copied command line. What they change of the scene is as it was afterwards. In the thread that
/// Coin is used in.
class ViewPictures
{
public:
    explicit ViewPictures(PicturedView pictured);
    ~ViewPictures();
    ViewPictures(const ViewPictures&) = delete;
    ViewPictures& operator=(const ViewPictures&) = delete;

    /// What would be drawn, for writeCommand().
    ShownPicture describe(const PictureChoice& choice) const;
    Options optionsOf(const PictureChoice& choice) const;

    /// A small one, within so many pixels; null if it cannot be drawn.
    QImage preview(const PictureChoice& choice, const QSize& room) const;

    /// Draws one, as large as chosen, in pieces between which `goOn` is asked, with the part that
    /// is done, and packs and writes it in another thread, while it is asked, too. Until then the
    /// view is not painted. The file appears whole or not at all. One line that says what failed,
    /// or nothing; PICTURE_STOPPED if it was not to go on.
    std::string save(const PictureChoice& choice, const std::string& file,
                     const PictureWriter::GoOn& goOn) const;

private:
    Picture makePicture(const PictureChoice& choice) const;

    class Dress;
    const PicturedView view;
};

} // namespace strandview

#endif
