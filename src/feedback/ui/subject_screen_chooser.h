// The choice of the screen that the subject sees.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "feedback/ui/subject_display.h"
#include "feedback/ui/subject_screen_guard.h"

#include <QPointer>
#include <QStringList>
#include <vector>

class QComboBox;

/// Owns the subject's display and shows it on the screen that the operator chooses. When that
/// screen is unplugged the display waits for one of its name. The screen on which the main window
/// stands can't be chosen; should the main window come to stand on the subject's screen, because
/// its own is gone, the display is switched off.
class SubjectScreenChooser : public QWidget {
    Q_OBJECT

public:
    SubjectScreenChooser(QWidget& mainWindow, QWidget* parent);

    /// Puts it onto the subject's screen, if there is one, and returns when it is drawn.
    void showNow(const SubjectPicture& picture);
    [[nodiscard]] const SubjectDisplay& display() const { return display_; }

private:
    enum class Choice { Off, Window, Screen };

    void choose(int index);
    void screenAdded(QScreen* screen);
    void screenRemoved(QScreen* screen);
    void followScreen(QScreen* screen);
    void findHome();
    void apply();
    void listScreens();
    void addEntry(const QString& text, Choice choice, QScreen* screen = nullptr);
    void disableEntry(int index, const QString& reason);
    [[nodiscard]] bool isPluggedIn(const QScreen* screen) const;
    /// The subject's screen; null while there is none.
    [[nodiscard]] QScreen* chosenScreen() const;

    QWidget& mainWindow_;
    QComboBox* box_;
    SubjectDisplay display_;
    SubjectScreenGuard guard_;
    std::vector<QScreen*> screens_; ///< that are plugged in
    QPointer<QScreen> home_;        ///< the main window stands on it
    Choice choice_ = Choice::Off;
    QPointer<QScreen> chosen_;
    QString chosenName_; ///< by which the chosen screen is known when it is plugged in again
};
