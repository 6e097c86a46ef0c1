// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/window/key_commands.h"

#include "run/window/velo_cortivo.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>

KeyCommands::InputFlags KeyCommands::flagsOf(Qt::KeyboardModifiers modifiers,
                                             Qt::MouseButtons buttons) {
    return {modifiers.testFlag(Qt::ControlModifier), modifiers.testFlag(Qt::ShiftModifier),
            modifiers.testFlag(Qt::AltModifier), buttons};
}

bool KeyCommands::filter(QObject* watched, QEvent* event) {
    // An event reaches the native window first and then the widget: it counts at the widget.
    if (!watched->isWidgetType())
        return false;
    switch (event->type()) {
    case QEvent::KeyPress: {
        const auto* key = static_cast<QKeyEvent*>(event);
        inputFlags_ = flagsOf(key->modifiers(), inputFlags_.mouseButtons);
        return handleKey(key->key());
    }
    case QEvent::KeyRelease:
        inputFlags_ = {};
        // A held key repeats itself as releases and presses. Only the finger's release counts; and
        // not that of the keys that asked for the end of the program.
        if (!static_cast<QKeyEvent*>(event)->isAutoRepeat() && !window_.endsAfterRun())
            window_.session().requests.interruptFlag = false;
        return false;
    case QEvent::MouseButtonPress: {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        controlKeepsFocus_ = qobject_cast<QLineEdit*>(watched) != nullptr ||
                             qobject_cast<QAbstractSpinBox*>(watched) != nullptr;
        inputFlags_ = flagsOf(mouse->modifiers(), mouse->buttons());
        return false;
    }
    case QEvent::MouseButtonRelease:
        inputFlags_ = {};
        return false;
    case QEvent::ContextMenu:
        // These menus have an event loop of their own, in which a run would stand still.
        return !window_.session().phase.isIdle();
    default:
        return false;
    }
}

bool KeyCommands::handleKey(int key) {
    RunSession& session = window_.session();
    if (key == Qt::Key_Escape) {
        // A rectangle that is given up must not end the run.
        if (window_.cancelDrag())
            return true;
        session.requests.interruptFlag = true;
        return false; // it still closes a dialog
    }
    if (key == Qt::Key_Tab || key == Qt::Key_Backtab)
        controlKeepsFocus_ = true;
    // What a modal box is asking about must not change behind it.
    if (QApplication::activeModalWidget())
        return false;
    const bool vertical = key == Qt::Key_Up || key == Qt::Key_Down;
    if (vertical && inputFlags_.shift && window_.documentShown()) {
        session.shiftStartOffset(key == Qt::Key_Up);
        return true;
    }
    if (vertical && inputFlags_.control && window_.documentShown()) {
        session.stepThreshold(key == Qt::Key_Up);
        window_.refreshControls();
        return true;
    }
    if (key == Qt::Key_R && inputFlags_.control) {
        window_.nextROIDisplayStyle();
        return true;
    }
    return false;
}
