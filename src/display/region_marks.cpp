// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/region_marks.h"

#include "dialogs/appearance.h"
#include "regions/region_selection.h"
#include "regions/region_time_courses.h"

#include <QPainter>
#include <algorithm>

namespace {

constexpr int middleGrey = 128;

QColor colorOfRegion(const RegionColorTable& colors, int region) {
    return toQColor(regionColor(colors, region));
}

/// From 0, limited to the slice; empty without a rectangle.
QRect rectangleOf(const RegionOfInterest& region, const VolumeSize& size) {
    const auto fromZero = [](int value, int count) { return std::clamp(value, 1, count + 1) - 1; };
    if (region.FromSlice < 1 || region.FromSlice > size.slices)
        return {};
    const auto [left, right] =
        std::minmax({fromZero(region.Left, size.x), fromZero(region.Right, size.x)});
    const auto [top, bottom] =
        std::minmax({fromZero(region.Top, size.y), fromZero(region.Bottom, size.y)});
    return {left, top, right - left, bottom - top};
}

/// Calls `take(x, y, z)` for each voxel in use that lies inside the volume.
template<typename Take>
void forVoxelsInUse(const RegionOfInterest& region, const RegionMarking& marking,
                    const VolumeSize& size, Take take) {
    const VoxelList& voxels = region.voxels;
    const auto takeAt = [&](size_t i) {
        if (i < voxels.size() && isInside(size, voxels.x[i], voxels.y[i], voxels.z[i]))
            take(voxels.x[i], voxels.y[i], voxels.z[i]);
    };
    const std::span<const int> used = voxelsInUse(region, marking.bestVoxelSelection);
    for (const int i : used)
        takeAt(size_t(i));
    for (size_t i = 0; used.empty() && i < voxels.size(); ++i)
        takeAt(i);
}

void surroundVoxels(std::vector<RegionFrame>& frames, const RegionOfInterest& region, int number,
                    const RegionMarking& marking, const VolumeSize& size) {
    std::vector<QRect> bySlice(size_t(size.slices));
    forVoxelsInUse(region, marking, size,
                   [&](int x, int y, int z) { bySlice[size_t(z)] |= QRect(x, y, 1, 1); });
    for (int slice = 0; slice < size.slices; ++slice)
        if (!bySlice[size_t(slice)].isEmpty())
            frames.push_back({number, slice, bySlice[size_t(slice)], false});
}

/// First pixel of each of `count` voxels along a tile of this length, and the end.
std::vector<int> voxelBorders(double length, int count) {
    std::vector<int> borders(size_t(count) + 1);
    for (size_t i = 0; i < borders.size(); ++i)
        borders[i] = int(double(i) * length / count + 0.5);
    return borders;
}

/// The pixels of a mosaic by voxel.
class VoxelPixels {
public:
    VoxelPixels(QImage& mosaic, const MosaicTiles& tiles)
        : pixels_(reinterpret_cast<QRgb*>(mosaic.bits())),
          stride_(size_t(mosaic.bytesPerLine()) / sizeof(QRgb)),
          columns_(voxelBorders(tiles.tile(0).width(), tiles.grid.width())),
          rows_(voxelBorders(tiles.tile(0).height(), tiles.grid.height())) {
        for (int slice = 0; slice < tiles.nrOfSlices; ++slice) {
            const int place = placeOfSlice(tiles.layout, slice, tiles.nrOfSlices);
            const QPoint corner = place < 0 ? QPoint() : tiles.tile(place).topLeft().toPoint();
            corners_.push_back({place >= 0, corner.x(), corner.y()});
        }
    }

    void mix(int x, int y, int slice, QRgb color) {
        const Corner& corner = corners_[size_t(slice)];
        if (!corner.shown)
            return;
        const size_t left = size_t(corner.x + columns_[size_t(x)]);
        const size_t right = size_t(corner.x + columns_[size_t(x) + 1]);
        const int bottom = corner.y + rows_[size_t(y) + 1];
        for (int row = corner.y + rows_[size_t(y)]; row < bottom; ++row) {
            QRgb* line = pixels_ + size_t(row) * stride_;
            for (size_t i = left; i < right; ++i)
                line[i] = average(line[i], color);
        }
    }

private:
    struct Corner {
        bool shown;
        int x;
        int y;
    };
    /// Rounded down, channel by channel.
    static QRgb average(QRgb a, QRgb b) { return (a & b) + (((a ^ b) & 0xfefefefe) >> 1); }

    QRgb* pixels_;
    size_t stride_;
    std::vector<int> columns_;
    std::vector<int> rows_;
    std::vector<Corner> corners_; ///< of the tiles, by slice
};

/// Beside the upper right corner of the frame, or at its left where the tile ends.
QRectF numberArea(const QRectF& frame, const QRectF& tile, QSizeF size) {
    constexpr double gap = 2;
    double left = frame.right() + gap;
    if (left + size.width() > tile.right())
        left = std::max(frame.left() - gap - size.width(), tile.left());
    const double top = std::max(std::min(frame.top(), tile.bottom() - size.height()), tile.top());
    return {{left, top}, size};
}

} // namespace

std::vector<RegionFrame> regionFrames(const Regions& regions, const RegionMarking& marking,
                                      const VolumeSize& size) {
    std::vector<RegionFrame> frames;
    for (int number = 0; number < regions.count(); ++number) {
        const RegionOfInterest& region = regions[number];
        const QRect rectangle = rectangleOf(region, size);
        if (marking.style == RoiDisplayStyle::MarkedVoxels || rectangle.isEmpty()) {
            surroundVoxels(frames, region, number, marking, size);
            continue;
        }
        const SliceRange slices = selectedSlices(
            region.FromSlice - 1, std::max(marking.MultiSliceROISelection, 1), size.slices);
        for (int slice = slices.first; slice <= slices.last; ++slice)
            frames.push_back({number, slice, rectangle, true});
    }
    return frames;
}

void markRegionVoxels(QImage& mosaic, const MosaicTiles& tiles, const Regions& regions,
                      const RegionMarking& marking) {
    if (regions.empty() || tiles.isEmpty())
        return;
    const VolumeSize size{tiles.grid.width(), tiles.grid.height(), tiles.nrOfSlices};
    VoxelPixels pixels(mosaic, tiles);
    for (int number = 0; number < regions.count(); ++number) {
        const RegionOfInterest& region = regions[number];
        if (marking.style == RoiDisplayStyle::Rectangles && !rectangleOf(region, size).isEmpty())
            continue;
        const QRgb color = colorOfRegion(marking.colors, number).rgb();
        forVoxelsInUse(region, marking, size,
                       [&](int x, int y, int z) { pixels.mix(x, y, z, color); });
    }
}

void drawRegionFrames(QPainter& painter, const MosaicTiles& tiles,
                      std::span<const RegionFrame> frames, const RegionColorTable& colors,
                      int penWidth) {
    if (tiles.isEmpty())
        return;
    const QFontMetricsF metrics(painter.font());
    painter.setBrush(Qt::NoBrush);
    for (const RegionFrame& frame : frames) {
        const int place = placeOfSlice(tiles.layout, frame.slice, tiles.nrOfSlices);
        if (place < 0)
            continue;
        const QRectF area = tiles.areaOf(place, frame.voxels);
        const QColor color = colorOfRegion(colors, frame.region);
        painter.setPen(QPen(color, penWidth, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
        if (frame.drawn)
            painter.drawRect(area);
        const QString number = QString::number(frame.region + 1);
        const QRectF ground = numberArea(area, tiles.tile(place),
                                         {metrics.horizontalAdvance(number) + 2, metrics.height()});
        painter.fillRect(ground, color);
        painter.setPen(qGray(color.rgb()) >= middleGrey ? Qt::black : Qt::white);
        painter.drawText(ground, Qt::AlignCenter, number);
    }
}
