// How the slices are arranged on the screen.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

struct SliceMosaicLayout {
    int MosaicColumns = 5;
    int MosaicRows = 5;
    int FirstShownSlice = 0;
    int SliceScrollForward = 1;
    int SliceScrollBackward = 1;

    bool operator==(const SliceMosaicLayout&) const = default;
};
