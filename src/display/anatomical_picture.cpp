// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/anatomical_picture.h"

#include "display/overlay_coloring.h"

#include <algorithm>
#include <optional>

namespace {

constexpr size_t sectionPixels = size_t(cubeSide) * cubeSide;
/// Voxels that are coloured at once; their values stay in the nearest cache.
constexpr size_t stretchLength = cubeSide;

using GreyTable = std::array<uint32_t, 256>;

GreyTable greyTable(int low, int high) {
    constexpr uint32_t opaque = 0xff000000;
    constexpr int white = 255;
    const int width = std::max(high - low, 1);
    GreyTable table;
    for (int intensity = 0; intensity < int(table.size()); ++intensity) {
        const int inside = std::clamp(intensity - low, 0, width);
        table[size_t(intensity)] = opaque | uint32_t(inside * white / width) * 0x010101u;
    }
    return table;
}

bool mapsAreUsable(const AnatomicalPictureSource& source) {
    return !source.maps.empty() && source.cube->mapping && source.maps.size == source.run;
}

/// Paints section after section; its buffers serve all three.
class SectionPainter {
public:
    explicit SectionPainter(const AnatomicalPictureSource& source)
        : source_(source), greys_(greyTable(source.windowLow, source.windowHigh)),
          intensities_(sectionPixels) {
        if (!mapsAreUsable(source))
            return;
        coloring_.emplace(source.maps, source.thresholds);
        voxels_.resize(sectionPixels);
        colors_.resize(stretchLength);
    }

    void paint(SectionAxis axis, uint32_t* pixels) {
        cutSection(source_.cube->volume.cube, axis, source_.cross, intensities_);
        for (size_t pixel = 0; pixel < sectionPixels; ++pixel)
            pixels[pixel] = greys_[intensities_[pixel]];
        if (!coloring_)
            return;
        mapSection(*source_.cube->mapping, source_.run, axis, source_.cross, voxels_);
        for (size_t first = 0; first < sectionPixels; first += stretchLength) {
            const auto stretch = std::span(voxels_).subspan(first, stretchLength);
            if (std::ranges::all_of(stretch, [](int32_t voxel) { return voxel < 0; }))
                continue;
            coloring_->colorVoxels(stretch, colors_);
            paintOver(pixels + first, colors_);
        }
    }

private:
    const AnatomicalPictureSource& source_;
    GreyTable greys_;
    std::vector<uint8_t> intensities_;
    std::optional<OverlayColoring> coloring_; ///< with maps to paint
    std::vector<int32_t> voxels_;
    std::vector<uint32_t> colors_;
};

} // namespace

bool composeSections(SectionImages& images, const AnatomicalPictureSource& source) {
    if (source.cube->volume.cube.size() != cubeVoxels)
        return false;
    SectionPainter painter(source);
    for (const SectionAxis axis : {SectionAxis::X, SectionAxis::Y, SectionAxis::Z}) {
        QImage& image = images[size_t(axis)];
        if (image.isNull())
            image = QImage(cubeSide, cubeSide, QImage::Format_RGB32);
        if (image.isNull())
            return false;
        // A line has 1024 bytes, which needs no padding.
        painter.paint(axis, reinterpret_cast<uint32_t*>(image.bits()));
    }
    return true;
}
