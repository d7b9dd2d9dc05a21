// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/SideBySide.h"

#include <utility>

#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/fields/SoField.h>
#include <Inventor/nodes/SoCamera.h>
#include <Inventor/nodes/SoSeparator.h>
#include <QCoreApplication>
#include <QEvent>
#include <QLabel>
#include <QVBoxLayout>

#include "scene/Progress.h"
#include "scene/SceneBuilder.h"

namespace strandview {

namespace {

const double QUARTER = 1.5707963267948966; // of a turn

// What cameras have that is not of a view alone, as its planes in front and behind are.
const char* const CAMERA_FIELDS[] = {"position", "orientation", "focalDistance", "height",
                                     "heightAngle"};

void copyFields(const SoCamera& from, SoCamera& to)
{
    for (const char* const name : CAMERA_FIELDS) {
        const SoField* const field = from.getField(name);
        SoField* const copy = to.getField(name);
        if (field && copy && !copy->isSame(*field))
            copy->copyFrom(*field);
    }
}

// A caption, hidden at first, above a place for a viewer.
QWidget* addColumn(QSplitter& to, QLabel*& caption, QWidget*& area)
{
    auto* column = new QWidget(&to);
    auto* layout = new QVBoxLayout(column);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    caption = new QLabel(column);
    caption->setAlignment(Qt::AlignCenter);
    caption->setTextFormat(Qt::PlainText);
    caption->setMinimumWidth(1); // names are long
    caption->hide();
    layout->addWidget(caption);
    area = new QWidget(column);
    area->setMinimumSize(160, 120);
    layout->addWidget(area, 1);
    to.addWidget(column);
    to.setCollapsible(to.count() - 1, false);
    return column;
}

void setCaption(QLabel& label, const std::string& text)
{
    label.setText(QString::fromStdString(text));
    label.setToolTip(label.text());
    label.show();
}

} // namespace

SideBySide::SideBySide(QWidget* parent)
    : QSplitter(Qt::Horizontal, parent),
      reader([this](BesideReader::Result& result) { showResult(result); })
{
    addColumn(*this, firstCaption, firstArea);
}

SideBySide::~SideBySide() { close(); }

void SideBySide::open(const std::string& captionOfFirst, const std::string& captionOfSecond)
{
    if (!isOpen()) {
        QWidget* area = nullptr;
        secondColumn = addColumn(*this, secondCaption, area);
        second = std::make_unique<WindowViewer>(area);
        second->setTransparencyType(SoGLRenderAction::SORTED_OBJECT_BLEND);
        second->setHeadlight(FALSE);
        second->setDecoration(FALSE);
        second->setBackgroundColor(first->getBackgroundColor());
        second->setSceneGraph(new SoSeparator);
        second->onCamera = [this] { followSecond(); };
        second->getGLWidget()->installEventFilter(this);
        auto* layout = new QVBoxLayout(area); // SoQt fills what is there before the window is shown
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(second->getWidget());
        secondColumn->show();
        second->show();
        setSizes({width() / 2, width() / 2});
    }
    setCaption(*firstCaption, captionOfFirst);
    setCaption(*secondCaption, captionOfSecond);
}

void SideBySide::close()
{
    if (!isOpen())
        return;
    reader.setSeries(nullptr);
    scene = nullptr;
    second->onCamera = nullptr;
    second.reset();
    delete std::exchange(secondColumn, nullptr);
    firstCaption->hide();
}

void SideBySide::setTied(bool tied)
{
    isTied = tied;
    followFirst();
}

void SideBySide::setSeries(FrameStore::Opener opener) { reader.setSeries(std::move(opener)); }

void SideBySide::show(std::shared_ptr<const Configuration> data, std::size_t frame,
                      const DataScene& as, LookChange change)
{
    if (!isOpen())
        return;
    keepLooks(as);
    hasColours = as.areColoursShown();
    if (change == OTHER_LOOK)
        ++look;
    reader.ask({std::move(data), frame, as.getStyle(), as.getPlacement(), as.getColouring(), look});
}

void SideBySide::showResult(BesideReader::Result& result)
{
    if (!isOpen())
        return;
    const std::string error = result.error.empty() ? hand(result) : result.error;
    if (!error.empty()) {
        if (onFailure)
            onFailure(error);
        return;
    }
    if (shownLook != result.task.look)
        room.makeEmpty();
    room.extendBy(scene->getBox());
    shownLook = result.task.look;
    scene->setData(result.task.data);
    showLooks();
    scene->showColours(hasColours);
    second->scheduleRedraw();
    if (onShown)
        onShown();
}

// The nodes; a line if that cannot be.
std::string SideBySide::hand(BesideReader::Result& result)
{
    const BesideReader::Task& task = result.task;
    const Colouring* const colouring = result.colouring ? &*result.colouring : nullptr;
    Progress unwatched;
    std::string error;
    if (scene && task.look == shownLook)
        return updateScene(*scene, *task.data, colouring, std::move(result.geometry), unwatched);
    if (scene)
        return restyleScene(*scene, *task.data, task.style, colouring, std::move(result.geometry),
                            unwatched);
    DataScene* const made =
        buildScene(*task.data, task.style, colouring, std::move(result.geometry), unwatched, error);
    if (!made)
        return error;
    scene = made;
    scene->onPick = [this](const SoPickedPoint& picked) {
        second->hasPicked = true;
        if (second->isClick && onPick)
            onPick(scene->describe(picked));
    };
    const SbColor background = second->getBackgroundColor();
    scene->setBackground({background[0], background[1], background[2]});
    const bool wasTied = std::exchange(isTied, false); // it is put somewhere first
    second->SoQtGeneralViewer::setSceneGraph(static_cast<SoGeneralScene*>(scene));
    scene->keepLineWidth();
    follow(*first, *second);
    if (!wasTied)
        second->rotateCamera(SbVec3f(0, 1, 0), QUARTER);
    setTied(wasTied);
    return "";
}

void SideBySide::followLooks(const DataScene& ofFirst)
{
    keepLooks(ofFirst);
    if (scene)
        showLooks();
}

void SideBySide::keepLooks(const DataScene& ofFirst)
{
    looks = ofFirst.getLooks();
    transparency = ofFirst.getStyle().transparency;
    clip = ofFirst.getStyle().clip;
    drawing = ofFirst.getStyle().drawing;
}

void SideBySide::showLooks()
{
    scene->setLooks(looks);
    scene->setTransparency(transparency);
    scene->cut(clip);
    scene->draw(drawing);
}

void SideBySide::showColours(bool ofData)
{
    hasColours = ofData;
    if (scene)
        scene->showColours(ofData);
}

void SideBySide::setBackground(const SbColor& background)
{
    if (!isOpen() || second->getBackgroundColor() == background)
        return;
    second->setBackgroundColor(background);
    if (scene)
        scene->setBackground({background[0], background[1], background[2]});
}

void SideBySide::drawCoarsely(bool coarse)
{
    if (!isOpen())
        return;
    second->drawCoarsely(coarse);
    if (scene)
        scene->drawCoarsely(coarse);
}

// Cameras

void SideBySide::followFirst()
{
    if (isTied && scene && first->getCamera())
        follow(*first, *second);
}

void SideBySide::followSecond()
{
    if (!isTied || !scene || isFollowing || !second->getCamera())
        return;
    follow(*second, *first);
    if (onCamera)
        onCamera();
}

void SideBySide::follow(const WindowViewer& from, WindowViewer& to)
{
    if (isFollowing) // what follows does not lead
        return;
    isFollowing = true;
    const SoCamera& camera = *from.getCamera();
    if (to.getCamera()->getTypeId() != camera.getTypeId())
        to.setCameraType(camera.getTypeId());
    copyFields(camera, *to.getCamera());
    isFollowing = false;
}

bool SideBySide::eventFilter(QObject* object, QEvent* event)
{
    const bool isKey = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
    if (!isKey || !isTied || !scene)
        return QSplitter::eventFilter(object, event);
    return QCoreApplication::sendEvent(first->getGLWidget(), event);
}

} // namespace strandview
