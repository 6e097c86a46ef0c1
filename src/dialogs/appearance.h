// The look of the program: dark, calm, one accent colour.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/rgb_color.h"

#include <QIcon>
#include <QPalette>
#include <QRect>
#include <QString>

class QWidget;

[[nodiscard]] QPalette darkPalette();
/// Channels outside 0 to 255 are brought to the nearest bound.
[[nodiscard]] QColor toQColor(const RgbColor& color);
/// A framed sample of a colour, the same for a selected row.
[[nodiscard]] QIcon colorIcon(const RgbColor& color, QSize size);
/// Style sheet of the main window's panels and controls.
[[nodiscard]] QString windowStyleSheet();
/// A long tool tip would lie over the slices in one line: makes those of all controls below `root`
/// HTML, which is wrapped.
void wrapToolTips(QWidget& root);
/// The free area of the screen that a widget is on.
[[nodiscard]] QRect screenArea(const QWidget* widget);
