// Frames and buttons of panels.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

class QFrame;
class QToolButton;
class QWidget;

[[nodiscard]] QFrame* newPanel(const char* name, QWidget* parent);
/// The tool tip is also the name for screen readers.
[[nodiscard]] QToolButton* newButton(const char* name, const QString& toolTip, QWidget* parent);
/// A square button with the icon `:/images/<icon>.png`, which is fainter while it is disabled.
[[nodiscard]] QToolButton* newIconButton(const char* name, const char* icon, const QString& toolTip,
                                         QWidget* parent);
