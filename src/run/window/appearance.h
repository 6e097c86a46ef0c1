// The look of the program: dark, calm, one accent colour.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPalette>
#include <QRect>
#include <QString>

class QWidget;

[[nodiscard]] QPalette darkPalette();
/// Style sheet of the main window's panels and controls.
[[nodiscard]] QString windowStyleSheet();
/// A long tool tip would lie over the slices in one line: makes those of all controls below `root`
/// HTML, which is wrapped.
void wrapToolTips(QWidget& root);
/// The free area of the screen that a widget is on.
[[nodiscard]] QRect screenArea(const QWidget* widget);
