// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/slice_mosaic_geometry.h"

#include <algorithm>
#include <cstdint>

QSize sliceMosaicSize(const SliceMosaicLayout& layout, QSize tile) {
    if (layout.MosaicColumns <= 0 || layout.MosaicRows <= 0 || tile.isEmpty())
        return {};
    const int64_t width = int64_t(layout.MosaicColumns) * tile.width();
    const int64_t height = int64_t(layout.MosaicRows) * tile.height();
    if (width > maximumSliceMosaicSide || height > maximumSliceMosaicSide)
        return {};
    return {int(width), int(height)};
}

int sliceAtPlace(const SliceMosaicLayout& layout, int place, int nrOfSlices) {
    if (place < 0 || place >= nrOfSlices)
        return -1;
    const int64_t slice = (int64_t(layout.FirstShownSlice) + place) % nrOfSlices;
    return int(slice < 0 ? slice + nrOfSlices : slice);
}

bool allSlicesShown(const SliceMosaicLayout& layout, int nrOfSlices) {
    return int64_t(layout.MosaicColumns) * layout.MosaicRows >= nrOfSlices;
}

void scrollForward(SliceMosaicLayout& layout, int nrOfSlices) {
    const int last = std::max(nrOfSlices - 1, 0);
    const int64_t next = int64_t(layout.FirstShownSlice) + layout.SliceScrollForward;
    if (next > last)
        layout.FirstShownSlice = allSlicesShown(layout, nrOfSlices) ? last : 0;
    else
        layout.FirstShownSlice = int(std::max(next, int64_t(0)));
}

void scrollBackward(SliceMosaicLayout& layout, int nrOfSlices) {
    const int last = std::max(nrOfSlices - 1, 0);
    const int64_t next = int64_t(layout.FirstShownSlice) - layout.SliceScrollBackward;
    layout.FirstShownSlice = next < 0 ? last : int(std::min(next, int64_t(last)));
}
