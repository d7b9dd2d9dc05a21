// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_SCREENSHOTDIALOG_H
#define STRANDVIEW_SCREENSHOTDIALOG_H

#include <memory>

#include <QDialog>
#include <QString>
#include <QStringList>

#include <StrandviewExport.h>

class Ui_ScreenshotDialog;

/// Asks where a screenshot goes and how large it is: a directory, a file-name stem, a
/// running index if wanted, an extension, and a size in pixels, either typed in or the
/// view's times a factor. The file name that comes out is shown as it changes.
///
/// The factor is shown and typed with a decimal point in every locale.
///
/// Modal to the application. All fields keep their values from one exec() to the next.
/// As every widget it belongs to the thread of Qt's event loop and, with a parent, to that.
class STRANDVIEW_EXPORT ScreenshotDialog : public QDialog
{
    Q_OBJECT

public:
    /// glWidth, glHeight: the view's size in pixels. The size fields show 640 x 480
    /// until setGLSize() or setImageSize().
    ScreenshotDialog(QWidget* parent, int glWidth, int glHeight);
    ~ScreenshotDialog() override;

    // The file

    /// As typed, with question marks for characters outside ASCII.
    virtual QString getDir() const;
    virtual bool isIndexUsed() const;
    virtual int getIndex() const;
    /// Clamped to 0 to 99.
    virtual void setIndex(int index);
    /// The current extension without its full stop; empty if none is offered.
    virtual QString getExtension() const;
    /// Offers these in this order; defaultExtension becomes the current one if it is
    /// among them, case and all, otherwise the first.
    virtual void setExtensions(const QStringList& extensions, const QString& defaultExtension);

    // The size

    /// The view's size in pixels, which the image takes times the factor if it is to be
    /// a multiple of the view.
    virtual void setGLSize(int width, int height);
    virtual void getImageSize(int& width, int& height) const;
    /// Each at least 1.
    virtual void setImageSize(int width, int height);

    /// The absolute path of the file; a relative directory is below the working one.
    virtual QString getFinalPath() const;

public slots:
    /// Lets the user choose another directory.
    virtual void updateDir();
    /// Shows stem, index and extension as the file's name.
    virtual void updateFinalName();
    /// Computes the image's size from the view's and the factor, truncated to whole
    /// pixels, if it is to be a multiple.
    virtual void updateSize();

private:
    std::unique_ptr<Ui_ScreenshotDialog> form;
    int glWidth;
    int glHeight;
};

#endif
