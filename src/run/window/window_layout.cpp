// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/window/window_layout.h"

#include <algorithm>
#include <array>

namespace {

// Read by scripts/render_art: one panel for each line, {x, y, width, height} for both sizes.
// clang-format off
constexpr std::array<PanelPlace, 8> places{{
    {"TitleFrm", {12, 6, 226, 34}, {12, 6, 226, 34}},
    {"MenuBarFrm", {246, 6, 482, 34}, {246, 6, 698, 34}},
    {"WindowButtonsFrm", {740, 6, 272, 34}, {956, 6, 312, 34}},
    {"ImageView", {12, 48, 716, 556}, {12, 48, 932, 780}},
    {"ViewButtonsFrm", {12, 612, 716, 36}, {12, 836, 932, 36}},
    {"LogInfos", {12, 656, 716, 100}, {12, 880, 932, 132}},
    {"InputPanelFrm", {740, 48, 272, 124}, {956, 48, 312, 124}},
    {"ContrastBackgroundGrpBx", {740, 180, 272, 576}, {956, 180, 312, 832}},
}};
// clang-format on

} // namespace

std::span<const PanelPlace> panelPlaces() {
    return places;
}

QSize windowPixels(WindowSize size) {
    return size == WindowSize::Small ? QSize(1024, 768) : QSize(1280, 1024);
}

QPoint windowPosition(const QRect& screen, QSize window, bool centredX, bool centredY,
                      QPoint wanted) {
    const auto centre = [](int start, int free) { return start + std::max(free / 2, 0); };
    return {centredX ? centre(screen.x(), screen.width() - window.width()) : wanted.x(),
            centredY ? centre(screen.y(), screen.height() - window.height()) : wanted.y()};
}

QPoint reachablePosition(const QRect& screen, QSize window, QPoint position) {
    constexpr int handle = 80; // pixels of the title row that stay on the screen
    const int left = screen.left() + handle - window.width();
    const int right = std::max(screen.right() - handle, left);
    const int top = std::min(screen.top(), screen.bottom() + 1 - window.height());
    const int bottom = std::max(screen.bottom() - handle, top);
    return {std::clamp(position.x(), left, right), std::clamp(position.y(), top, bottom)};
}
