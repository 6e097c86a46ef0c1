// Keeps every window of the program off the screen that the subject sees.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QPointer>

class QScreen;
class QWidget;

/// Windows, boxes, menus and tool tips that are about to be shown on the subject's screen, or are
/// moved there, are put back onto that of the main window. Works for the whole program.
class SubjectScreenGuard : public QObject {
    Q_OBJECT

public:
    /// Both live longer than the guard. The display alone may stand on the subject's screen.
    SubjectScreenGuard(QWidget& mainWindow, const QWidget& display);

    /// From now on this screen is the subject's, and windows that stand on it leave for `home`;
    /// nullptr for none.
    void protect(QScreen* screen, QScreen* home);

    bool eventFilter(QObject* watched, QEvent* event) override;

Q_SIGNALS:
    /// The main window was shown or moved.
    void mainWindowMoved();

private:
    void sendHome(QWidget& window) const;

    QWidget& mainWindow_;
    const QWidget& display_;
    QPointer<QScreen> screen_;
    QPointer<QScreen> home_;
};
