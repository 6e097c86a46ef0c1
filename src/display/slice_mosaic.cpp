// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/slice_mosaic.h"

#include "display/overlay_coloring.h"
#include "display/slice_mosaic_geometry.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <optional>

namespace {

constexpr uint32_t black = 0xff000000;

/// Pixels of the picture that is composed.
struct Canvas {
    uint32_t* pixels;
    size_t stride; ///< pixels from one line to the next
    QSize size;

    explicit Canvas(QImage& image)
        : pixels(reinterpret_cast<uint32_t*>(image.bits())),
          stride(size_t(image.bytesPerLine()) / sizeof(uint32_t)), size(image.size()) {}

    uint32_t* line(int y) { return pixels + size_t(y) * stride; }
    /// Fills a square, clipped at the right and lower border.
    void fillSquare(int x, int y, int side, uint32_t color) {
        if (side == 1) {
            if (x < size.width() && y < size.height())
                line(y)[x] = color;
            return;
        }
        const int width = std::min(side, size.width() - x);
        const int bottom = std::min(y + side, size.height());
        for (int row = y; width > 0 && row < bottom; ++row)
            std::fill_n(line(row) + x, width, color);
    }
};

/// Paints the shown maps over the tiles of one mosaic.
class OverlayPainter {
public:
    OverlayPainter(const SliceMosaicSource& source, int scale, int nrOfThreads)
        : size_(source.maps.size), scale_(scale), coloring_(source.maps, source.thresholds),
          colors_(size_t(nrOfThreads), std::vector<uint32_t>(size_t(size_.x))) {}

    /// Works row by row, with the row of colours of a thread.
    void paintSlice(Canvas& canvas, int slice, int column, int row, size_t thread) {
        std::vector<uint32_t>& colors = colors_[thread];
        const int left = column * size_.x * scale_;
        for (int y = 0; y < size_.y; ++y) {
            const int top = (y + row * size_.y) * scale_;
            coloring_.colorStretch(slice, size_t(y) * size_t(size_.x), colors);
            if (scale_ == 1 && left + size_.x <= canvas.size.width()) {
                if (top < canvas.size.height())
                    paintOver(canvas.line(top) + left, colors);
                continue;
            }
            for (int x = 0; x < size_.x; ++x)
                if (colors[size_t(x)] != 0)
                    canvas.fillSquare(left + x * scale_, top, scale_, colors[size_t(x)]);
        }
    }

private:
    VolumeSize size_;
    int scale_;
    OverlayColoring coloring_;
    std::vector<std::vector<uint32_t>> colors_; ///< of a row, for each thread
};

/// True when there are maps to paint and they match the grid of the slices.
bool overlayIsUsable(const SliceMosaicSource& source) {
    const ShownMaps& maps = source.maps;
    return !maps.empty() && QSize(maps.size.x, maps.size.y) == source.slices->gridSize();
}

/// Copies a slice into its tile; the rest of the tile is black.
void copyTile(Canvas& canvas, const QImage& image, QPoint corner, QSize tile) {
    const QImage pixels = image.format() == QImage::Format_RGB32
                              ? image
                              : image.convertToFormat(QImage::Format_RGB32);
    const QSize common = tile.boundedTo(pixels.size());
    if (common != tile)
        for (int y = 0; y < tile.height(); ++y)
            std::fill_n(canvas.line(corner.y() + y) + corner.x(), tile.width(), black);
    for (int y = 0; y < common.height(); ++y)
        std::memcpy(canvas.line(corner.y() + y) + corner.x(), pixels.constScanLine(y),
                    size_t(common.width()) * sizeof(uint32_t));
}

/// The places from `first` on, which have no slice.
void blackenPlaces(Canvas& canvas, int first, int columns, QSize tile) {
    const int row = first / columns;
    const int free = first % columns * tile.width();
    for (int y = row * tile.height(); y < canvas.size.height(); ++y) {
        const int from = y < (row + 1) * tile.height() ? free : 0;
        std::fill_n(canvas.line(y) + from, canvas.size.width() - from, black);
    }
}

} // namespace

bool composeSliceMosaic(QImage& target, const SliceMosaicSource& source, WorkerPool& workers) {
    const std::vector<QImage>& images = source.images();
    const QSize tile = images.empty() ? QSize() : images.front().size();
    const QSize size = sliceMosaicSize(source.layout, tile);
    if (size.isEmpty()) {
        target = QImage();
        return false;
    }
    if (target.size() != size || target.format() != QImage::Format_RGB32)
        target = QImage(size, QImage::Format_RGB32);
    if (target.isNull())
        return false;

    const int columns = source.layout.MosaicColumns;
    const int nrOfPlaces = columns * source.layout.MosaicRows;
    const int nrOfSlices = int(images.size());
    const int dimX = source.slices->gridSize().width();
    const int scale = dimX > 0 ? int(std::lround(double(tile.width()) / dimX)) : 0;
    std::optional<OverlayPainter> painter;
    if (scale >= 1 && overlayIsUsable(source))
        painter.emplace(source, scale, workers.nrOfThreads());
    Canvas canvas(target);
    const int shown = std::min(nrOfSlices, nrOfPlaces);
    blackenPlaces(canvas, shown, columns, tile);
    const auto paint = [&](int tileAt, size_t thread) {
        const int slice = sliceAtPlace(source.layout, tileAt, nrOfSlices);
        if (painter && slice < source.maps.size.slices)
            painter->paintSlice(canvas, slice, tileAt % columns, tileAt / columns, thread);
    };
    // While the tile is still in the cache; but squares that don't fill their tiles reach into
    // others, so these come first then, and one thread paints in the order of the tiles.
    const bool tilesAreFilled = tile == source.slices->gridSize() * scale;
    workers.forParts(size_t(shown), [&](size_t part, size_t thread) {
        const int tileAt = int(part);
        copyTile(canvas, images[size_t(sliceAtPlace(source.layout, tileAt, nrOfSlices))],
                 {tileAt % columns * tile.width(), tileAt / columns * tile.height()}, tile);
        if (tilesAreFilled)
            paint(tileAt, thread);
    });
    for (int tileAt = 0; tileAt < shown && !tilesAreFilled; ++tileAt)
        paint(tileAt, 0);
    return true;
}
