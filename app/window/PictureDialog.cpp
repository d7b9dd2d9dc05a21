// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/PictureDialog.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPixmap>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QVBoxLayout>

#include "pictures/PictureWriter.h"
#include "request/settings.h"
#include "window/SettingControl.h"
#include "window/SideBox.h"
#include "window/decimalComma.h"
#include "window/textBoxes.h"

namespace strandview {

namespace {

// Of the preview, in the desktop's pixels.
const int ROOM = 280;
// A preview comes this long after the last change, and later where it takes long itself, so that
// it has a fifth of the time at most.
const int PAUSE = 150, SHARE = 4; // milliseconds; of its own time

const int PIXELS = 0, MILLIMETRES = 1; // in the list of units

void name(QWidget& widget, const char* objectName, const char* description)
{
    widget.setObjectName(objectName);
    widget.setAccessibleName(description);
}

} // namespace

PictureDialog::PictureDialog(const PictureChoice& first, View pictured, QWidget* parent)
    : QDialog(parent), view(std::move(pictured)), choice(first)
{
    setObjectName("pictureDialog");
    setWindowTitle("Save a picture");
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    setLocale(QLocale::c());
    auto* columns = new QHBoxLayout;
    page = new QWidget(this);
    auto* form = new QFormLayout(page);
    form->setContentsMargins(0, 0, 0, 0);
    form->addRow("Si&ze", makeSizeRow());
    form->addRow("", keepsShape);
    form->addRow("Pixels per &inch", dpi);
    form->addRow("Sa&mples per pixel", samples);
    form->addRow("", transparent);
    form->addRow("", measured);
    addSettings(*form);
    told = new QLabel(page);
    told->setObjectName("pictureTold");
    told->setWordWrap(true);
    form->addRow(told);
    columns->addWidget(page);
    picture = new QLabel(this);
    name(*picture, "picturePreview", "Preview");
    picture->setFixedSize(ROOM + 4, ROOM + 4);
    picture->setAlignment(Qt::AlignCenter);
    picture->setFrameShape(QFrame::StyledPanel);
    columns->addWidget(picture, 0, Qt::AlignTop);
    auto* all = new QVBoxLayout(this);
    all->addLayout(columns, 1);
    all->addWidget(makeButtons());
    pause.setSingleShot(true);
    pause.setInterval(0);
    connect(&pause, &QTimer::timeout, this, &PictureDialog::drawPreview);
    show(choice.isOfView ? sizeOfView() : choice.size);
    measured->setChecked(choice.hasMeasurements);
    width->setFocus();
    width->selectAll();
    follow();
}

PictureRequest PictureDialog::sizeOfView() const
{
    PictureRequest size = choice.size;
    size.width = view.size.width();
    size.height = view.size.height();
    size.paper.reset();
    return size;
}

QWidget* PictureDialog::makeSizeRow()
{
    auto* row = new QWidget(page);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    width = new SideBox(row);
    height = new SideBox(row);
    unit = new QComboBox(row);
    unit->addItems({"pixels", "mm"});
    name(*width, "pictureWidth", "Width");
    name(*height, "pictureHeight", "Height");
    name(*unit, "pictureUnit", "Unit of the size");
    layout->addWidget(width, 1);
    layout->addWidget(new QLabel("x", row));
    layout->addWidget(height, 1);
    layout->addWidget(unit);
    row->setFocusProxy(width);
    keepsShape = new QCheckBox("&Keep the shape", page);
    name(*keepsShape, "pictureShape", "Keep the shape");
    keepsShape->setChecked(choice.keepsShape);
    dpi = new QSpinBox(page);
    dpi->setRange(SMALLEST_DPI, LARGEST_DPI);
    name(*dpi, "pictureDpi", "Pixels per inch");
    dpi->setToolTip("What the file tells programs for text and print");
    samples = new QSpinBox(page);
    samples->setRange(1, MOST_SAMPLES);
    name(*samples, "pictureSamples", "Samples per pixel");
    samples->setToolTip("Smooth edges: N x N samples per pixel");
    transparent = new QCheckBox("&Transparent background", page);
    name(*transparent, "pictureTransparent", "Transparent background");
    measured = new QCheckBox("With m&easurements", page);
    name(*measured, "pictureMeasurements", "With measurements");
    measured->setToolTip(
        "The measurements that the view shows, with letters as large as a legend's");
    measured->setEnabled(view.isMeasured);
    for (QAbstractSpinBox* box :
         std::initializer_list<QAbstractSpinBox*>{width, height, dpi, samples})
        acceptDecimalComma(*box);
    const auto numberChanged = QOverload<double>::of(&QDoubleSpinBox::valueChanged);
    connect(width, numberChanged, this, [this] { changeSide(true); });
    connect(height, numberChanged, this, [this] { changeSide(false); });
    for (SideBox* box : {width, height}) {
        box->setToolTip("A number, or one with its unit: 85 mm, 8.5 cm, 1200 px");
        connect(box, &SideBox::typedWithUnit, this, [this, box](double side, bool isOnPaper) {
            unit->setCurrentIndex(isOnPaper ? MILLIMETRES : PIXELS);
            changeUnit();
            box->setValue(side);
        });
    }
    for (QSpinBox* box : {dpi, samples})
        connect(box, QOverload<int>::of(&QSpinBox::valueChanged), this, &PictureDialog::read);
    connect(unit, QOverload<int>::of(&QComboBox::activated), this, &PictureDialog::changeUnit);
    connect(transparent, &QCheckBox::toggled, this, &PictureDialog::read);
    connect(measured, &QCheckBox::toggled, this, [this](bool on) {
        choice.hasMeasurements = on;
        follow();
    });
    connect(keepsShape, &QCheckBox::toggled, this, [this](bool on) {
        choice.keepsShape = on;
        shape = width->value() / height->value();
    });
    return row;
}

void PictureDialog::addSettings(QFormLayout& form)
{
    for (const std::string& settingName : settingsOfPicture()) {
        const Setting& setting = settingOf(settingName);
        SettingControl* const control = SettingControl::make(setting, page);
        form.addRow(setting.label, control->getWidget());
        controls.push_back(control);
        connect(control, &SettingControl::chosen, this,
                [this, &setting](const QString& text) { choose(setting, text); });
        connect(control, &SettingControl::cleared, this, [this, &setting] {
            StyleRequest usual;
            choose(setting, QString::fromStdString(setting.value(usual).value_or("")));
        });
        connect(control, &SettingControl::trialBegun, this, [this] { choiceBeforeTrial = choice; });
        connect(control, &SettingControl::trialEnded, this, [this] {
            choice = choiceBeforeTrial;
            follow();
        });
    }
}

QWidget* PictureDialog::makeButtons()
{
    auto* row = new QWidget(this);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    asView = new QPushButton("As the &view", row);
    name(*asView, "pictureAsView", "As the view");
    asView->setToolTip("As large as the view, with its background and legend");
    asView->setAutoDefault(false);
    progress = new QProgressBar(row);
    progress->setRange(0, 1000);
    name(*progress, "pictureProgress", "Progress");
    QSizePolicy place = progress->sizePolicy();
    place.setRetainSizeWhenHidden(true);
    progress->setSizePolicy(place);
    progress->hide();
    auto* cancel = new QPushButton("Cancel", row);
    name(*cancel, "pictureCancel", "Cancel");
    cancel->setAutoDefault(false);
    saveButton = new QPushButton("&Save...", row);
    name(*saveButton, "pictureSave", "Save");
    saveButton->setDefault(true);
    layout->addWidget(asView);
    layout->addWidget(progress, 1);
    layout->addWidget(cancel);
    layout->addWidget(saveButton);
    connect(asView, &QPushButton::clicked, this, [this] {
        choice = PictureChoice();
        keepsShape->setChecked(true);
        measured->setChecked(false);
        show(sizeOfView());
        follow();
    });
    connect(cancel, &QPushButton::clicked, this, &PictureDialog::reject);
    connect(saveButton, &QPushButton::clicked, this, &PictureDialog::save);
    return row;
}

// Size

void PictureDialog::show(const PictureRequest& size)
{
    const QSignalBlocker quiet[] = {QSignalBlocker(width), QSignalBlocker(height),
                                    QSignalBlocker(dpi), QSignalBlocker(samples),
                                    QSignalBlocker(transparent)};
    const bool isOnPaper = size.paper.has_value();
    unit->setCurrentIndex(isOnPaper ? MILLIMETRES : PIXELS);
    for (SideBox* box : {width, height}) {
        box->setDecimals(isOnPaper ? 2 : 0);
        box->setRange(isOnPaper ? 0.01 : 1, LARGEST_PICTURE_SIDE);
    }
    width->setValue(isOnPaper ? size.paper->width : size.width);
    height->setValue(isOnPaper ? size.paper->height : size.height);
    dpi->setValue(size.resolution());
    samples->setValue(size.samples);
    transparent->setChecked(size.transparent);
    shape = width->value() / height->value();
}

void PictureDialog::changeSide(bool isWidth)
{
    if (keepsShape->isChecked()) {
        SideBox* const other = isWidth ? height : width;
        const QSignalBlocker quiet(other);
        other->setValue(isWidth ? width->value() / shape : height->value() * shape);
    }
    choice.isOfView = false;
    read();
}

// The pixels stay what they are.
void PictureDialog::changeUnit()
{
    const bool isOnPaper = unit->currentIndex() == MILLIMETRES;
    PictureRequest size = choice.isOfView ? sizeOfView() : choice.size;
    if (isOnPaper == size.paper.has_value())
        return;
    const double sides[] = {width->value(), height->value()};
    if (isOnPaper) {
        if (dpi->value() == DPI_OF_PIXELS)
            size.dpi = DPI_ON_PAPER;
        const auto millimetres = [&size](double pixels) {
            return std::round(100 * pixels / size.resolution() * 25.4) / 100;
        };
        size.paper = PaperSize{millimetres(sides[0]), millimetres(sides[1]), ""};
    } else {
        size.width = int(pixelsOf(sides[0], dpi->value()));
        size.height = int(pixelsOf(sides[1], dpi->value()));
        size.dpi = dpi->value();
        size.paper.reset();
    }
    const double kept = shape;
    show(size);
    shape = kept; // no rounding adds up
    choice.isOfView = false;
    read();
}

void PictureDialog::read()
{
    PictureRequest& size = choice.size;
    size.paper.reset();
    if (unit->currentIndex() == MILLIMETRES) {
        size.paper = PaperSize{width->value(), height->value(), ""};
        size.width = int(pixelsOf(width->value(), dpi->value()));
        size.height = int(pixelsOf(height->value(), dpi->value()));
    } else {
        size.width = int(width->value());
        size.height = int(height->value());
    }
    size.dpi = dpi->value();
    size.samples = samples->value();
    size.transparent = transparent->isChecked();
    follow();
}

// Look

void PictureDialog::choose(const Setting& setting, const QString& text)
{
    StyleRequest checked = view.style;
    if (setting.read(text.toStdString(), checked).empty()) {
        if (setting.value(checked) == setting.value(view.style))
            choice.settings.erase(setting.name);
        else
            choice.settings[setting.name] = text.toStdString();
    }
    follow();
}

void PictureDialog::follow()
{
    const StyleRequest style = styleOf(choice, view.style);
    for (SettingControl* control : controls) {
        const Setting& setting = control->getSetting();
        control->show(setting.write(style), setting.value(style));
        control->getWidget()->setEnabled(setting.isOfUse(style));
    }
    const PictureRequest size = choice.isOfView ? sizeOfView() : choice.size;
    const bool fits = isPictureSize(size.width, size.height);
    const auto millimetres = [&size](int pixels) {
        return QString::number(25.4 * pixels / size.resolution(), 'f', 1);
    };
    QString text = QString("%1 x %2 pixels").arg(size.width).arg(size.height);
    if (fits)
        text += ", " + millimetres(size.width) + " x " + millimetres(size.height) + " mm in print";
    else
        text += ", expected " + QString::fromStdString(wordsOfPictureSize());
    told->setText(text);
    saveButton->setEnabled(fits);
    if (fits)
        pause.start();
}

void PictureDialog::drawPreview()
{
    if (isSaving)
        return;
    QElapsedTimer clock;
    clock.start();
    const double scale = picture->devicePixelRatioF();
    QImage drawn = view.preview(choice, QSize(ROOM, ROOM) * scale);
    drawn.setDevicePixelRatio(scale);
    if (drawn.isNull())
        picture->setText("no preview");
    else
        picture->setPixmap(QPixmap::fromImage(drawn));
    pause.setInterval(std::max(PAUSE, SHARE * int(clock.elapsed())));
}

// Saving

bool PictureDialog::goOn(double done)
{
    progress->setValue(int(std::lround(1000 * done)));
    QApplication::processEvents();
    return !isStopped;
}

void PictureDialog::save()
{
    const std::string option = "Save a picture";
    QFileDialog files(this, "Save a picture of the view", view.folder,
                      "Pictures (" + pictureNamePatterns(choice.size.transparent) + ")");
    files.setAcceptMode(QFileDialog::AcceptSave);
    files.setDefaultSuffix("png"); // before the dialog asks whether to overwrite
    files.selectFile("picture.png");
    if (files.exec() != QDialog::Accepted)
        return;
    const QString file = files.selectedFiles().constFirst();
    std::string failure = checkPictureName(option, file.toStdString(), choice.size.transparent);
    if (failure.empty()) {
        pause.stop();
        isSaving = true;
        isStopped = false;
        for (QWidget* part : std::initializer_list<QWidget*>{page, asView, saveButton})
            part->setEnabled(false);
        progress->setValue(0);
        progress->show();
        failure = view.save(choice, file.toStdString(), [this](double done) { return goOn(done); });
        progress->hide();
        for (QWidget* part : std::initializer_list<QWidget*>{page, asView, saveButton})
            part->setEnabled(true);
        isSaving = false;
    }
    if (failure.empty()) {
        saved = file;
        accept();
    } else if (failure != PICTURE_STOPPED) {
        tellFailure(this, "Cannot save", failure);
    }
}

void PictureDialog::reject()
{
    if (isSaving)
        isStopped = true;
    else
        QDialog::reject();
}

} // namespace strandview
