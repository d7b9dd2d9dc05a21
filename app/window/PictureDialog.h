// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_PICTUREDIALOG_H
#define STRANDVIEW_APP_WINDOW_PICTUREDIALOG_H

#include <functional>
#include <string>
#include <vector>

#include <QDialog>
#include <QImage>
#include <QSize>
#include <QTimer>

#include "request/PictureChoice.h"

class QCheckBox;
class QComboBox;
class QFormLayout;
class QLabel;
class QProgressBar;
class QPushButton;
class QSpinBox;

namespace strandview {

class SettingControl;
class SideBox;
struct Setting;

/// Asks how a picture of the view is to be, shows it, and has it saved.
class PictureDialog : public QDialog
{
    Q_OBJECT

public:
    /// Of the view, and what the dialog has done by whoever knows the scene.
    struct View
    {
        StyleRequest style;
        QSize size;      ///< in pixels
        bool isMeasured; ///< whether it shows measurements
        QString folder;  ///< where a file is looked for at first
        /// A picture as chosen, but within so many pixels; null if it cannot be drawn.
        std::function<QImage(const PictureChoice& choice, const QSize& room)> preview;
        /// As ViewPictures::save(), of which PICTURE_STOPPED is nothing to be told.
        std::function<std::string(const PictureChoice& choice, const std::string& file,
                                  const std::function<bool(double done)>& goOn)>
            save;
    };

    PictureDialog(const PictureChoice& first, View pictured, QWidget* parent);

    /// What is chosen.
    const PictureChoice& getChoice() const { return choice; }
    /// What was saved; empty before.
    const QString& getSaved() const { return saved; }

    void reject() override;

private:
    QWidget* makeSizeRow();
    void addSettings(QFormLayout& form);
    QWidget* makeButtons();
    void read(); ///< what the controls of the size say
    void changeSide(bool isWidth);
    void changeUnit();
    void show(const PictureRequest& size);
    void follow(); ///< what depends on what is chosen
    void choose(const Setting& setting, const QString& text);
    void drawPreview();
    void save();
    bool goOn(double done);
    PictureRequest sizeOfView() const;

    const View view;
    PictureChoice choice;
    QString saved;
    double shape = 1; ///< the width by the height that are kept
    bool isSaving = false, isStopped = false;

    QWidget* page = nullptr; ///< all that is chosen with
    SideBox *width = nullptr, *height = nullptr;
    QComboBox* unit = nullptr;
    QSpinBox *dpi = nullptr, *samples = nullptr;
    QCheckBox *keepsShape = nullptr, *transparent = nullptr, *measured = nullptr;
    QLabel *told = nullptr, *picture = nullptr;
    QProgressBar* progress = nullptr;
    QPushButton* asView = nullptr;
    QPushButton* saveButton = nullptr;
    std::vector<SettingControl*> controls;
    PictureChoice choiceBeforeTrial; ///< of a setting's
    QTimer pause;                    ///< before the next preview
};

} // namespace strandview

#endif
