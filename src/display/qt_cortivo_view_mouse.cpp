// The mouse on the slices: rectangles, read-outs, zoom.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/qt_cortivo_view.h"

#include "run/document/qt_cortivo_doc.h"

#include <QApplication>
#include <QMouseEvent>
#include <QWheelEvent>
#include <cmath>

namespace {

constexpr double zoomStep = 1.25;
constexpr double unitsOfWheelStep = 120.0; // as the toolkit counts
constexpr double panShare = 0.1;           ///< of the room, for each key

} // namespace

// No action has an event loop of its own: a run goes on, and may replace the view, at any time.

Qt::MouseButton QtCortivoView::buttonOfAction() const {
    if (action_ == MouseAction::None)
        return Qt::NoButton;
    return action_ == MouseAction::Pan ? Qt::MiddleButton : Qt::LeftButton;
}

void QtCortivoView::mousePressEvent(QMouseEvent* event) {
    const QPointF position = event->position();
    if (event->button() == Qt::RightButton) {
        cancelDrag();
        return;
    }
    // A button that is pressed again was released elsewhere: its action is over.
    const Qt::MouseButton held = buttonOfAction();
    if (event->buttons() & held && event->button() != held)
        return;
    action_ = MouseAction::None;
    pressed_ = position;
    if (event->button() == Qt::MiddleButton && !zoom_.isWhole()) {
        action_ = MouseAction::Pan;
    } else if (event->button() == Qt::LeftButton && room().contains(position)) {
        action_ = MouseAction::Click;
        const MosaicTiles shown = tiles();
        drag_ = {};
        drag_.place = shown.placeAt(position);
        if (drag_.place >= 0)
            drag_.first = drag_.last = shown.nearestVoxel(drag_.place, position);
    }
}

void QtCortivoView::mouseMoveEvent(QMouseEvent* event) {
    const QPointF position = event->position();
    if (action_ == MouseAction::None)
        return;
    // The release went elsewhere, as when another window came to the front.
    if (!(event->buttons() & buttonOfAction())) {
        action_ = MouseAction::None;
        update();
        return;
    }
    if (action_ == MouseAction::Pan) {
        zoom_.pan(position - pressed_, fittedArea(), room());
        pressed_ = position;
        update();
        return;
    }
    const bool farEnough =
        (position - pressed_).manhattanLength() >= QApplication::startDragDistance();
    if (selectsRegions_ && action_ == MouseAction::Click && drag_.place >= 0 && farEnough)
        action_ = MouseAction::Rectangle;
    if (action_ != MouseAction::Rectangle)
        return;
    drag_.last = tiles().nearestVoxel(drag_.place, position);
    update();
}

void QtCortivoView::mouseReleaseEvent(QMouseEvent* event) {
    const MouseAction action = action_;
    if (action == MouseAction::None || event->button() != buttonOfAction())
        return;
    action_ = MouseAction::None;
    update();
    if (action == MouseAction::Rectangle)
        Q_EMIT rectangleSelected(drag_.rectangle());
    else if (action == MouseAction::Click)
        click();
}

// The first click of the two has moved the read-out, or cleared it.
void QtCortivoView::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return mousePressEvent(event);
    if (action_ != MouseAction::None)
        return;
    readOut_ = readOutBeforeClick_;
    zoom_.reset();
    update();
    if (readOut_)
        Q_EMIT voxelClicked(*readOut_);
}

void QtCortivoView::click() {
    readOutBeforeClick_ = readOut_;
    const bool again = readOut_ && *readOut_ == drag_.first;
    if (drag_.place < 0 || again)
        readOut_.reset();
    else
        readOut_ = drag_.first;
    if (readOut_)
        Q_EMIT voxelClicked(*readOut_);
}

bool QtCortivoView::cancelDrag() {
    const bool dragged = action_ == MouseAction::Rectangle;
    if (dragged || action_ == MouseAction::Click) {
        action_ = MouseAction::None;
        update();
    }
    return dragged;
}

SliceRange QtCortivoView::slicesOfDrag() const {
    return selectedSlices(drag_.first.slice, std::max(marking_.MultiSliceROISelection, 1),
                          shown_.nrOfSlices);
}

void QtCortivoView::wheelEvent(QWheelEvent* event) {
    event->accept();
    if (action_ == MouseAction::None && !tiles().isEmpty() && room().contains(event->position()))
        zoom(std::pow(zoomStep, event->angleDelta().y() / unitsOfWheelStep), event->position());
}

void QtCortivoView::zoom(double by, QPointF position) {
    zoom_.zoom(by, position, fittedArea(), room());
    update();
}

void QtCortivoView::zoomByKey(int key) {
    if (action_ != MouseAction::None)
        return;
    if (key == Qt::Key_0)
        zoom_.reset();
    else
        zoom(key == Qt::Key_Minus ? 1 / zoomStep : zoomStep, room().center());
    update();
}

void QtCortivoView::panByKey(int key) {
    // The key says where to look, so the slices move the other way.
    const double x = room().width() * panShare;
    const double y = room().height() * panShare;
    const QPointF by = key == Qt::Key_Left    ? QPointF(x, 0)
                       : key == Qt::Key_Right ? QPointF(-x, 0)
                       : key == Qt::Key_Up    ? QPointF(0, y)
                                              : QPointF(0, -y);
    zoom_.pan(by, fittedArea(), room());
    update();
}
