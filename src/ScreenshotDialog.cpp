// SPDX-License-Identifier: GPL-3.0-or-later
#include <ScreenshotDialog.h>

#include <algorithm>

#include <QDir>
#include <QFileDialog>

#include "detail/ascii.h"
#include "ui_ScreenshotDialog.h"

ScreenshotDialog::ScreenshotDialog(QWidget* parent, int viewWidth, int viewHeight)
    : QDialog(parent),
      form(std::make_unique<Ui_ScreenshotDialog>()),
      glWidth(viewWidth),
      glHeight(viewHeight)
{
    setLocale(QLocale::c()); // a decimal point, as in the viewer's other fields
    form->setupUi(this);
    setWindowModality(Qt::ApplicationModal);

    connect(form->okButton, SIGNAL(clicked()), SLOT(accept()));
    connect(form->cancelButton, SIGNAL(clicked()), SLOT(reject()));
    connect(form->dirButton, SIGNAL(clicked()), SLOT(updateDir()));
    connect(form->filenameLineEdit, SIGNAL(textChanged(QString)), SLOT(updateFinalName()));
    connect(form->indexSpinBox, SIGNAL(valueChanged(int)), SLOT(updateFinalName()));
    connect(form->indexCheckBox, SIGNAL(stateChanged(int)), SLOT(updateFinalName()));
    connect(form->extComboBox, SIGNAL(currentIndexChanged(int)), SLOT(updateFinalName()));
    connect(form->multDoubleSpinBox, SIGNAL(valueChanged(double)), SLOT(updateSize()));
    connect(form->multCheckBox, SIGNAL(stateChanged(int)), SLOT(updateSize()));

    ScreenshotDialog::updateFinalName();
}

ScreenshotDialog::~ScreenshotDialog() = default;

QString ScreenshotDialog::getDir() const { return toAscii(form->dirLineEdit->text()); }

bool ScreenshotDialog::isIndexUsed() const { return form->indexCheckBox->isChecked(); }

int ScreenshotDialog::getIndex() const { return form->indexSpinBox->value(); }

void ScreenshotDialog::setIndex(int index)
{
    form->indexSpinBox->setValue(index);
    updateFinalName();
}

QString ScreenshotDialog::getExtension() const { return form->extComboBox->currentText(); }

void ScreenshotDialog::setExtensions(const QStringList& extensions, const QString& defaultExtension)
{
    const int defaultIndex = extensions.indexOf(defaultExtension);
    form->extComboBox->clear();
    form->extComboBox->addItems(extensions);
    if (defaultIndex >= 0)
        form->extComboBox->setCurrentIndex(defaultIndex);
    updateFinalName();
}

void ScreenshotDialog::setGLSize(int width, int height)
{
    glWidth = width;
    glHeight = height;
    updateSize();
}

void ScreenshotDialog::getImageSize(int& width, int& height) const
{
    width = form->widthSpinBox->value();
    height = form->heightSpinBox->value();
}

void ScreenshotDialog::setImageSize(int width, int height)
{
    form->widthSpinBox->setValue(std::max(width, 1));
    form->heightSpinBox->setValue(std::max(height, 1));
}

QString ScreenshotDialog::getFinalPath() const
{
    return QDir(getDir()).absoluteFilePath(form->finalNameLabel->text());
}

void ScreenshotDialog::updateDir()
{
    const QString chosen = QFileDialog::getExistingDirectory(
        this, "Choose screenshot directory", form->dirLineEdit->text(),
        QFileDialog::ShowDirsOnly | QFileDialog::DontResolveSymlinks);
    if (!chosen.isEmpty())
        form->dirLineEdit->setText(chosen);
}

void ScreenshotDialog::updateFinalName()
{
    QString name = form->filenameLineEdit->text();
    const bool indexed = isIndexUsed();
    form->indexSpinBox->setEnabled(indexed);
    if (indexed)
        name += QString::number(getIndex());
    form->finalNameLabel->setText(name + "." + getExtension());
}

void ScreenshotDialog::updateSize()
{
    const bool multiple = form->multCheckBox->isChecked();
    form->multDoubleSpinBox->setEnabled(multiple);
    if (!multiple)
        return;
    // Within the fields' range first, because larger products are no integers.
    const auto pixels = [this](int side) {
        return int(std::clamp(side * form->multDoubleSpinBox->value(), 1.0,
                              double(form->widthSpinBox->maximum())));
    };
    setImageSize(pixels(glWidth), pixels(glHeight));
}
