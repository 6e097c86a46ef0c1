// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/ui/subject_display.h"

#include "dialogs/dialog_setup.h"

#include <QCloseEvent>
#include <QPainter>
#include <QScreen>
#include <QWindow>

namespace {

constexpr QSize firstWindowSize(400, 300);

} // namespace

SubjectDisplay::SubjectDisplay() {
    setObjectName("SubjectDisplay");
    setWindowTitle("The Subject's Screen");
    setFocusPolicy(Qt::NoFocus);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_QuitOnClose, false); // the program ends with its main window
}

// Flags and screen of a window take effect when it is shown anew. showFullScreen() and showNormal()
// would ask for the keyboard.
void SubjectDisplay::becomeWindow(Qt::WindowFlags flags, QScreen& screen) {
    hide();
    setWindowState(Qt::WindowNoState);
    setWindowFlags(flags | Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus);
    if (windowHandle())
        windowHandle()->setTransientParent(nullptr);
    setScreen(&screen);
}

void SubjectDisplay::showOnScreen(QScreen& screen) {
    // The subject must not see it go and come.
    if (isVisible() && (windowFlags() & Qt::FramelessWindowHint) && this->screen() == &screen) {
        setGeometry(screen.geometry());
        return;
    }
    becomeWindow(Qt::Window | Qt::FramelessWindowHint, screen);
    setCursor(Qt::BlankCursor);
    setGeometry(screen.geometry());
    setWindowState(Qt::WindowFullScreen);
    setVisible(true);
}

void SubjectDisplay::showInWindow(QScreen& screen, QWidget& mainWindow) {
    // Of the kinds of windows only dialogs stand above the window that they belong to.
    becomeWindow(Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint, screen);
    unsetCursor();
    const QRect area = screen.availableGeometry();
    const QRect frame(area.bottomRight(), firstWindowSize + windowFrame);
    resize(firstWindowSize);
    move(placedWithin(area, frame).topLeft());
    // A main window that fills its screen would hide one that does not belong to it.
    (void)winId();
    windowHandle()->setTransientParent(mainWindow.window()->windowHandle());
    setVisible(true);
}

void SubjectDisplay::showNow(const SubjectPicture& picture) {
    picture_ = picture;
    repaint();
}

void SubjectDisplay::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    paintSubjectPicture(painter, size(), picture_);
}

void SubjectDisplay::closeEvent(QCloseEvent* event) {
    event->accept();
    Q_EMIT closed();
}
