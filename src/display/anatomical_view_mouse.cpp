// The mouse on the sections: the cross, the window of intensities.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/anatomical_view.h"

#include <QMouseEvent>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

namespace {

constexpr int brightest = 255;
constexpr double unitsOfWheelStep = 120.0; // as the toolkit counts

Qt::MouseButton buttonOf(bool movesCross) {
    return movesCross ? Qt::LeftButton : Qt::RightButton;
}

} // namespace

// No action has an event loop of its own: a run goes on, and may replace the view, at any time.

bool AnatomicalView::cancelDrag() {
    const bool dragged = action_ != MouseAction::None;
    action_ = MouseAction::None;
    return dragged;
}

void AnatomicalView::mousePressEvent(QMouseEvent* event) {
    const auto section = fields().sectionAt(event->position());
    const bool left = event->button() == Qt::LeftButton;
    // Another button that is still down goes on with what it does.
    const bool busy = action_ != MouseAction::None &&
                      event->buttons() & buttonOf(action_ == MouseAction::Cross) &&
                      event->button() != buttonOf(action_ == MouseAction::Cross);
    if (!composed_ || !section || busy || (!left && event->button() != Qt::RightButton))
        return;
    pressed_ = event->position();
    active_ = *section;
    update();
    if (!left) {
        action_ = MouseAction::Window;
        windowAtPress_ = {sources_.anatomy.windowLow, sources_.anatomy.windowHigh};
        return;
    }
    action_ = MouseAction::Cross;
    Q_EMIT crossMoved(fields().voxelAt(active_, pressed_, cross()));
}

void AnatomicalView::mouseMoveEvent(QMouseEvent* event) {
    if (action_ == MouseAction::None)
        return;
    // The release went elsewhere, as when another window came to the front.
    if (!(event->buttons() & buttonOf(action_ == MouseAction::Cross))) {
        action_ = MouseAction::None;
        return;
    }
    if (action_ == MouseAction::Window)
        return dragWindow(event->position());
    const CubeVoxel voxel = fields().voxelAt(active_, event->position(), cross());
    if (voxel != cross())
        Q_EMIT crossMoved(voxel);
}

// Over the side of a section the window changes by all intensities.
void AnatomicalView::dragWindow(QPointF position) {
    const double perUnit = brightest / fields().sections[size_t(active_)].width();
    const QPointF moved = (position - pressed_) * perUnit;
    const double width = std::max(windowAtPress_[1] - windowAtPress_[0] + moved.x(), 1.0);
    // Upwards is brighter, which a lower level is.
    const double level = (windowAtPress_[0] + windowAtPress_[1]) / 2.0 + moved.y();
    const int low = std::clamp(int(std::lround(level - width / 2)), 0, brightest - 1);
    const int high = std::clamp(int(std::lround(level + width / 2)), low + 1, brightest);
    Q_EMIT windowChanged(low, high);
}

void AnatomicalView::mouseReleaseEvent(QMouseEvent* event) {
    if (action_ != MouseAction::None && event->button() == buttonOf(action_ == MouseAction::Cross))
        action_ = MouseAction::None;
}

void AnatomicalView::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() != Qt::RightButton)
        return mousePressEvent(event);
    if (composed_ && fields().sectionAt(event->position()))
        Q_EMIT windowChanged(0, maximumAnatomicalIntensity);
}

void AnatomicalView::wheelEvent(QWheelEvent* event) {
    event->accept();
    const auto section = fields().sectionAt(event->position());
    const int steps = int(std::lround(event->angleDelta().y() / unitsOfWheelStep));
    if (!section || action_ != MouseAction::None || steps == 0)
        return;
    active_ = *section;
    update();
    moveCross(0, 0, steps);
}
