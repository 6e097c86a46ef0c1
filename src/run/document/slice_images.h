// Grey images of the slices: the background over which maps are painted.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

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

    /// The table of colours, 0xffRRGGBB.
    [[nodiscard]] std::array<uint32_t, nrOfGradations> table() const;
};

/// Display window of a volume: from near its darkest to near its brightest tissue, so that single
/// bright samples don't darken the rest.
void computeDisplayRange(GreyScale& scale, std::span<const int16_t> samples);

struct SliceImages {
    GreyScale greyScale;
    int sizeX = 0; ///< DimX
    int sizeY = 0;
    std::vector<QImage> SlicePixmaps;   ///< one for each slice, DimX x DimY
    std::vector<QImage> InplanePixmaps; ///< high-resolution slices; may be empty

    /// Makes the images anew, one for each slice of `samples` (x fastest, then y, then slices).
    void createSlicePixmaps(std::span<const int16_t> samples, int x, int y, int nrOfSlices);
    /// Paints other samples into the images that are there; ignored when their number differs.
    void updateSlicePixmaps(std::span<const int16_t> samples, int nrOfSlices);
};
