// Setting up dialogs, and placing windows on the screen.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QRect>
#include <QSize>
#include <QString>

class QDialog;
class QWidget;

/// Wraps tool tips, gives fields without a label of their own the tool tip as their name for
/// screen readers, and lets the dialog open as large as its content, but no larger than the screen.
void prepareDialog(QDialog& dialog);

/// Shows a modeless dialog or raises it, and gives it the keyboard focus.
void showInFront(QDialog& dialog);

/// After a message about a control: gives it the focus, with a text field's content selected.
void returnToControl(QWidget& control);

/// What the frame of a window's manager adds, about.
inline constexpr QSize windowFrame(8, 28);

/// `frame` moved, and made smaller if need be, to fit into `area`.
[[nodiscard]] QRect placedWithin(const QRect& area, const QRect& frame);

/// The place of the n-th window beside the slices, n from 0: beside the main window where the
/// screen has room, else over its right edge below the middle, so that slices at the left stay
/// free; a tall one over its left edge, so that the run button does. Each is 20 pixels from the one
/// before.
[[nodiscard]] QPoint placeBeside(const QRect& area, const QRect& main, QSize frame, int n);

/// Shows a modeless window of curves or raises it. It opens at such a place, and later where the
/// operator left it. `n` as for placeBeside(), for windows that open together.
void showBeside(QDialog& dialog, int n = 0);

/// Moves a shown window, and makes it smaller if need be, so that it fits on its screen with its
/// frame. For windows with a position of their own, and after resizing.
void keepOnScreen(QWidget& window);

/// Opens a modeless dialog with a text, which may be HTML, and an OK button. An open one with this
/// object name is raised instead.
void openTextDialog(QWidget& parent, const char* name, const QString& title, const QString& text);

/// Opens a help file in the program that the system has for it; an empty path does nothing. A
/// failure is reported.
void openHelpFile(const QString& path);
