// The shape and place of the main window, which has no frame of the desktop's.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPixmap>
#include <optional>

class QMouseEvent;
class QWidget;
class SettingsFileWatch;

/// Size and place are kept in the master file.
class WindowFrame {
public:
    WindowFrame(QWidget& window, SettingsFileWatch& watch) : window_(window), watch_(watch) {}

    /// Skin, mask and panels for the size that the master file gives.
    void applySize();
    /// Moves the window to the place that the master file gives on this screen.
    void placeOnScreen();
    /// Swaps the two sizes.
    void switchSize();
    /// On a screen that the window leaves, its title row comes back.
    void keepReachable();
    void paint();

    /// Dragging: anywhere that no control takes the press.
    void press(const QMouseEvent& event);
    void drag(const QMouseEvent& event);
    void release() { dragOffset_.reset(); }

private:
    QWidget& window_;
    SettingsFileWatch& watch_;
    QPixmap skin_;
    std::optional<QPoint> dragOffset_; ///< of the pointer in the window, while it is dragged
};
