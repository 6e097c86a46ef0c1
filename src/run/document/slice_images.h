// Grey images of the slices: the background over which maps are painted.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/volume_geometry.h"

#include <QImage>
#include <array>
#include <cstdint>
#include <span>
#include <vector>

/// Maps 16-bit samples to grey: index clamp((v - low) / (high - low) * 215, 0, 215) into tables of
/// 216 gradations with a gain for each channel.
struct GreyScale {
    static constexpr int nrOfGradations = 216;
    int low = 0; ///< display window, in sample values
    int high = 1000;
    std::array<float, 3> gain{1.0f, 1.0f, 1.0f};

    /// The table of colours, 0xffRRGGBB. Without gain gradation i is i * 255 / 215, rounded, so
    /// that the window spans black to white; a gain multiplies that and is limited to 0 and 255.
    [[nodiscard]] std::array<uint32_t, nrOfGradations> table() const;
};

/// Display window of a volume: from near its darkest to near its brightest tissue, so that single
/// bright samples don't darken the rest. Samples count as unsigned, those of 0 (outside the image,
/// or cut off by the scanner) not at all. `low` is the 2nd percentile, `high` the 99.5th and at
/// least low + 1; without any sample above 0 the window is 0 to 1.
void computeDisplayRange(GreyScale& scale, std::span<const int16_t> samples);

struct SliceImages {
    GreyScale greyScale;
    std::vector<QImage> SlicePixmaps;   ///< one for each slice, DimX x DimY
    std::vector<QImage> InplanePixmaps; ///< high-resolution slices, larger; may be empty

    /// DimX by DimY; empty without slices.
    [[nodiscard]] QSize gridSize() const {
        return SlicePixmaps.empty() ? QSize(0, 0) : SlicePixmaps.front().size();
    }
    /// Makes the images anew, one for each slice of `samples` (x fastest, then y, then slices).
    /// There are none when the samples don't fill the slices or memory runs out. Samples are taken
    /// as unsigned.
    void createSlicePixmaps(std::span<const int16_t> samples, const VolumeSize& size);
    /// Paints other samples into the images that are there; ignored when their number differs.
    void updateSlicePixmaps(std::span<const int16_t> samples);
    /// Makes InplanePixmaps anew with a display window of their own, that of computeDisplayRange();
    /// the arguments as for createSlicePixmaps().
    void createInplanePixmaps(std::span<const int16_t> samples, const VolumeSize& size);
};
