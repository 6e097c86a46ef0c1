// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/window/window_layout.h"

#include <gtest/gtest.h>

TEST(WindowLayout, WindowStandsWhereItIsWantedAndCanBeReached) {
    const QRect screen(100, 50, 1920, 1080);
    const QRect laptop(0, 0, 1280, 720);
    const QSize window(1280, 1024);
    const std::tuple<QRect, bool, bool, QPoint> places[] = {
        {screen, true, true, {420, 78}},
        {screen, false, true, {7, 78}},
        {screen, true, false, {420, 8}},
        {laptop, true, true, {0, 0}}}; // never negative
    for (const auto& [area, centredX, centredY, position] : places)
        EXPECT_EQ(windowPosition(area, window, centredX, centredY, {7, 8}), position);
    // 80 pixels of the title row stay, and of a window that is too tall its lower edge is reached.
    const std::tuple<QRect, QPoint, QPoint> moves[] = {{screen, {300, 60}, {300, 60}},
                                                       {screen, {-5000, -5000}, {-1100, 50}},
                                                       {screen, {5000, 5000}, {1939, 1049}},
                                                       {laptop, {0, -5000}, {0, -304}},
                                                       {laptop, {0, 5000}, {0, 639}}};
    for (const auto& [area, wanted, position] : moves)
        EXPECT_EQ(reachablePosition(area, window, wanted), position);
}
