// Grey images of the slices: the background over which maps are painted.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/worker_pool.h"
#include "volume/volume_geometry.h"

#include <QImage>
#include <array>
#include <cstdint>
#include <span>
#include <vector>

/// Maps 16-bit samples to grey: index clamp((v - low) / (high - low) * 215, 0, 215) into tables of
/// 216 grey levels with a gain for each channel.
struct GreyScale {
    static constexpr int nrOfGradations = 216;
    int low = 0; ///< display window, in sample values
    int high = 1000;
    std::array<float, 3> gain{1.0f, 1.0f, 1.0f};

    /// The table of colours, 0xffRRGGBB. With unit gain entry i is i * 255 / 215, rounded, so that
    /// the window spans black to white; with a gain the product is clamped to 0 to 255.
    [[nodiscard]] std::array<uint32_t, nrOfGradations> table() const;
};

/// Display window of a volume: from near its darkest to near its brightest tissue, so that single
/// bright samples don't darken the rest. Samples are read as unsigned; zeros (outside the image, or
/// clipped by the scanner) are ignored. `low` is the 2nd percentile, `high` the 99.5th and at least
/// low + 1; without any sample above 0 the window is 0 to 1.
void computeDisplayRange(GreyScale& scale, std::span<const int16_t> samples);

struct SliceImages {
    GreyScale greyScale;
    std::vector<QImage> SlicePixmaps;   ///< one for each slice, DimX x DimY
    std::vector<QImage> InplanePixmaps; ///< high-resolution slices, larger; may be empty

    /// DimX by DimY; empty without slices.
    [[nodiscard]] QSize gridSize() const {
        return SlicePixmaps.empty() ? QSize(0, 0) : SlicePixmaps.front().size();
    }
    /// Creates the images, one for each slice of `samples` (x fastest, then y, then slices; read as
    /// unsigned). There are none when the samples don't fill the slices or memory runs out.
    void createSlicePixmaps(std::span<const int16_t> samples, const VolumeSize& size);
    /// Repaints the existing images with new samples; does nothing when their number differs. The
    /// threads share the slices.
    void updateSlicePixmaps(std::span<const int16_t> samples,
                            WorkerPool& workers = callersThread());
    /// Creates InplanePixmaps with their own display window, from computeDisplayRange(); arguments
    /// as for createSlicePixmaps().
    void createInplanePixmaps(std::span<const int16_t> samples, const VolumeSize& size);
};
