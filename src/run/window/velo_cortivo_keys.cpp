// The key commands, which work in all windows of the program.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/window/velo_cortivo.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>

bool VeloCortivo::eventFilter(QObject* watched, QEvent* event) {
    // An event reaches the native window first and then the widget: it counts at the widget.
    if (!watched->isWidgetType())
        return false;
    switch (event->type()) {
    case QEvent::KeyPress: {
        const auto* key = static_cast<QKeyEvent*>(event);
        return handleKey(key->key(), key->modifiers());
    }
    case QEvent::KeyRelease:
        inputFlags_ = {};
        // A held key repeats itself as releases and presses. Only the finger's release counts; and
        // not that of the keys that asked for the end of the program.
        if (!static_cast<QKeyEvent*>(event)->isAutoRepeat() && !endAfterRun_)
            session_.state.interruptFlag = false;
        return false;
    case QEvent::MouseButtonPress: {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        controlKeepsFocus_ = qobject_cast<QLineEdit*>(watched) != nullptr;
        inputFlags_ = {mouse->modifiers().testFlag(Qt::ControlModifier),
                       mouse->modifiers().testFlag(Qt::ShiftModifier),
                       mouse->modifiers().testFlag(Qt::AltModifier), mouse->buttons()};
        return false;
    }
    case QEvent::MouseButtonRelease:
        inputFlags_ = {};
        return false;
    case QEvent::ContextMenu:
        // These menus have an event loop of their own, in which a run would stand still.
        return runInProgress_;
    default:
        return false;
    }
}

bool VeloCortivo::handleKey(int key, Qt::KeyboardModifiers modifiers) {
    inputFlags_.control = modifiers.testFlag(Qt::ControlModifier);
    inputFlags_.shift = modifiers.testFlag(Qt::ShiftModifier);
    inputFlags_.alt = modifiers.testFlag(Qt::AltModifier);
    if (key == Qt::Key_Escape) {
        session_.state.interruptFlag = true;
        return false; // it still closes a dialog
    }
    if (key == Qt::Key_Tab || key == Qt::Key_Backtab)
        controlKeepsFocus_ = true;
    // What a modal box is asking about must not change behind it.
    if (QApplication::activeModalWidget())
        return false;
    const bool vertical = key == Qt::Key_Up || key == Qt::Key_Down;
    if (vertical && inputFlags_.shift && documentShown()) {
        session_.state.startOffsetSeconds += key == Qt::Key_Up ? 1 : -1;
        return true;
    }
    if (vertical && inputFlags_.control && documentShown()) {
        session_.stepThreshold(key == Qt::Key_Up);
        refreshControls();
        return true;
    }
    if (key == Qt::Key_R && inputFlags_.control) {
        nextRoiDisplayStyle();
        return true;
    }
    return false;
}

void VeloCortivo::nextRoiDisplayStyle() {
    switch (RoiDisplayStyle((int(roiDisplayStyle_) + 1) % 3)) {
    case RoiDisplayStyle::Rectangles:
        return onShowROIsAsRectangles();
    case RoiDisplayStyle::RectanglesAndMarkedVoxels:
        return onShowROIsAsRectanglesAndMarkedVoxels();
    case RoiDisplayStyle::MarkedVoxels:
        return onShowROIsAsMarkedVoxels();
    }
}
