// A colour as files and the operator give it.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Channels from 0 to 255, though a file may state others; grey by default.
struct RgbColor {
    int red = 128;
    int green = 128;
    int blue = 128;
    bool operator==(const RgbColor&) const = default;
};
