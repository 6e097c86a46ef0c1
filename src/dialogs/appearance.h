// The look of the program: dark, calm, one accent colour.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/rgb_color.h"

#include <QIcon>
#include <QPalette>
#include <QRect>
#include <QString>

class QFont;
class QWidget;

[[nodiscard]] QPalette darkPalette();
/// Of a text that asks for the operator's attention.
[[nodiscard]] QColor warningColor();
/// Channels are clamped to 0 to 255.
[[nodiscard]] QColor toQColor(const RgbColor& color);
/// A framed colour swatch, which looks the same in a selected row.
[[nodiscard]] QIcon colorIcon(const RgbColor& color, QSize size);
[[nodiscard]] QFont scaledFont(QFont font, double factor);
/// The system's fixed-width font at the size of `font` times `factor`, for numbers that change.
[[nodiscard]] QFont numberFont(const QFont& font, double factor = 1.0);
/// Style sheet of the main window's panels and controls.
[[nodiscard]] QString windowStyleSheet();
/// A tool tip as HTML, which wraps: as one line a long one would cover the slices.
[[nodiscard]] QString wrappedToolTip(const QString& toolTip);
/// Wraps the tool tips of all controls below `root`; those set later are wrapped one by one.
void wrapToolTips(QWidget& root);
/// The available area of a widget's screen.
[[nodiscard]] QRect screenArea(const QWidget* widget);
