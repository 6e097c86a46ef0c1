// Where the panels of the main window lie, for both window sizes.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QRect>
#include <QSize>
#include <span>

enum class WindowSize { Small = 1, Large = 2 };

/// One panel: the object name of its widget, and its rectangle in the window, in pixels.
struct PanelPlace {
    const char* name;
    QRect small;
    QRect large;

    [[nodiscard]] const QRect& at(WindowSize size) const {
        return size == WindowSize::Small ? small : large;
    }
};

/// All panels. scripts/render_art reads the same table, so that the frames of the skin lie around
/// the panels.
[[nodiscard]] std::span<const PanelPlace> panelPlaces();
/// 1024 x 768 or 1280 x 1024.
[[nodiscard]] QSize windowPixels(WindowSize size);
/// Top left corner for a window on a screen; a centred axis gets half the free space, and never a
/// negative position.
[[nodiscard]] QPoint windowPosition(const QRect& screen, QSize window, bool centredX, bool centredY,
                                    QPoint wanted);
/// The position moved so that the title row of the window can be reached on the screen, or, where
/// the window is taller than the screen, its lower edge.
[[nodiscard]] QPoint reachablePosition(const QRect& screen, QSize window, QPoint position);
