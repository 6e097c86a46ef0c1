// The screen that the subject sees.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "feedback/ui/subject_picture.h"

#include <QWidget>

class QScreen;

/// Draws the picture at the resolution of its screen. It takes neither the keyboard nor the mouse,
/// and stays on top.
class SubjectDisplay : public QWidget {
    Q_OBJECT

public:
    SubjectDisplay();

    /// Covers the whole screen, without frame and pointer, and follows its size.
    void showOnScreen(QScreen& screen);
    /// A small window on `screen`, above the main one, which the operator can move and close.
    void showInWindow(QScreen& screen, QWidget& mainWindow);

    /// Draws it, if the display is shown, and returns when that is done.
    void showNow(const SubjectPicture& picture);

Q_SIGNALS:
    /// The operator closed it by its frame.
    void closed();

protected:
    void paintEvent(QPaintEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void becomeWindow(Qt::WindowFlags flags, QScreen& screen);

    SubjectPicture picture_;
};
