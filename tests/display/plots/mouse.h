// The mouse over a widget, also one that isn't shown.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCoreApplication>
#include <QWheelEvent>
#include <QWidget>

namespace mouse {

inline void send(QWidget& widget, QEvent::Type type, QPoint place) {
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, place, widget.mapToGlobal(place), button, button, Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &event);
}

inline void drag(QWidget& widget, QPoint from, QPoint to) {
    send(widget, QEvent::MouseButtonPress, from);
    send(widget, QEvent::MouseMove, (from + to) / 2);
    send(widget, QEvent::MouseButtonRelease, to);
}

/// Turns the wheel away from the user; true if the widget uses it.
inline bool wheel(QWidget& widget, QPoint place, int steps) {
    QWheelEvent event(place, widget.mapToGlobal(place), {}, {0, 120 * steps}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&widget, &event);
    return event.isAccepted();
}

} // namespace mouse
