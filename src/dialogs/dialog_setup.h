// What every dialog does after its form is set up, and where it stands.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QRect>
#include <QString>

class QDialog;
class QWidget;

/// Wraps tool tips, gives fields without a label of their own the tool tip as their name for
/// screen readers, and lets the dialog open as large as its content, but no larger than the screen.
void prepareDialog(QDialog& dialog);

/// Shows a dialog that is not waited for, or brings it to the front, and gives it the keyboard.
void showInFront(QDialog& dialog);

/// After a message about a control: gives it the keyboard, with a text field's content selected.
void returnToControl(QWidget& control);

/// `frame` moved, and made smaller if need be, so that it lies within `area`.
[[nodiscard]] QRect placedWithin(const QRect& area, const QRect& frame);

/// Moves a window that is shown, and makes it smaller if need be, so that it lies on its screen
/// with its frame. For windows that stand at a place of their own, and after a change of their
/// size.
void keepOnScreen(QWidget& window);

/// Opens a modeless dialog with a text, which may be HTML, and an OK button. One of this object
/// name that is open already comes to the front.
void openTextDialog(QWidget& parent, const char* name, const QString& title, const QString& text);
