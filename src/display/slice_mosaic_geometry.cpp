// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/slice_mosaic_geometry.h"

#include <algorithm>
#include <cmath>
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

int placeOfSlice(const SliceMosaicLayout& layout, int slice, int nrOfSlices) {
    if (slice < 0 || slice >= nrOfSlices)
        return -1;
    const int64_t distance = (int64_t(slice) - layout.FirstShownSlice) % nrOfSlices;
    const int64_t place = distance < 0 ? distance + nrOfSlices : distance;
    return place < int64_t(layout.MosaicColumns) * layout.MosaicRows ? int(place) : -1;
}

int MosaicTiles::places() const {
    if (isEmpty())
        return 0;
    return int(std::min(int64_t(nrOfSlices), int64_t(layout.MosaicColumns) * layout.MosaicRows));
}

QRectF MosaicTiles::tile(int place) const {
    const double width = area.width() / layout.MosaicColumns;
    const double height = area.height() / layout.MosaicRows;
    return {area.left() + place % layout.MosaicColumns * width,
            area.top() + place / layout.MosaicColumns * height, width, height};
}

int MosaicTiles::placeAt(QPointF position) const {
    if (isEmpty() || !area.contains(position))
        return -1;
    const int column =
        std::min(int((position.x() - area.left()) / area.width() * layout.MosaicColumns),
                 layout.MosaicColumns - 1);
    const int row = std::min(int((position.y() - area.top()) / area.height() * layout.MosaicRows),
                             layout.MosaicRows - 1);
    const int place = row * layout.MosaicColumns + column;
    return place < places() ? place : -1;
}

VoxelPosition MosaicTiles::nearestVoxel(int place, QPointF position) const {
    const QRectF tile = this->tile(place);
    const auto voxel = [](double share, int count) {
        return int(std::clamp(std::floor(share * count), 0.0, double(count - 1)));
    };
    return {voxel((position.x() - tile.left()) / tile.width(), grid.width()),
            voxel((position.y() - tile.top()) / tile.height(), grid.height()),
            sliceAtPlace(layout, place, nrOfSlices)};
}

QRectF MosaicTiles::areaOf(int place, const QRect& voxels) const {
    const QRectF tile = this->tile(place);
    const double ratioX = tile.width() / grid.width();
    const double ratioY = tile.height() / grid.height();
    const auto rounded = [](double value) { return std::floor(value + 0.5); };
    const QPointF topLeft(rounded(tile.left() + voxels.left() * ratioX),
                          rounded(tile.top() + voxels.top() * ratioY));
    const QPointF bottomRight(rounded(tile.left() + (voxels.left() + voxels.width()) * ratioX),
                              rounded(tile.top() + (voxels.top() + voxels.height()) * ratioY));
    return {topLeft, bottomRight};
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
