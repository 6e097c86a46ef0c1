// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/ui/subject_screen_guard.h"

#include "dialogs/dialog_setup.h"

#include <QApplication>
#include <QEvent>
#include <QScreen>
#include <QWidget>

SubjectScreenGuard::SubjectScreenGuard(QWidget& mainWindow, const QWidget& display)
    : mainWindow_(mainWindow), display_(display) {
    qApp->installEventFilter(this);
}

void SubjectScreenGuard::protect(QScreen* screen, QScreen* home) {
    screen_ = screen;
    home_ = home;
    for (QWidget* window : QApplication::topLevelWidgets())
        if (window->isVisible())
            sendHome(*window);
}

// A window is shown after its event, so it never appears at the wrong place if that is known.
bool SubjectScreenGuard::eventFilter(QObject* watched, QEvent* event) {
    const bool placed = event->type() == QEvent::Show || event->type() == QEvent::Move ||
                        event->type() == QEvent::Resize;
    if (!placed || !watched->isWidgetType())
        return false;
    auto* widget = static_cast<QWidget*>(watched);
    if (widget->isWindow())
        sendHome(*widget);
    if (widget == &mainWindow_)
        Q_EMIT mainWindowMoved();
    return false;
}

void SubjectScreenGuard::sendHome(QWidget& window) const {
    if (!screen_ || !home_ || &window == &display_)
        return;
    const QRect subject = screen_->geometry();
    const QRect area = home_->availableGeometry();
    const QRect frame = window.frameGeometry();
    const QRect placed = placedWithin(area, frame);
    // Screens that show the same can't be told apart.
    if (!frame.intersects(subject) || placed.intersects(subject))
        return;
    if (placed.size() != frame.size())
        window.resize(window.size() - (frame.size() - placed.size()));
    window.move(placed.topLeft());
}
