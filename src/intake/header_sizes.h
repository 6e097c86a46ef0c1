// Voxel sizes and fields of view that an image header states, on their way into the project.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/fmr_project.h"

#include <optional>

/// No scanner measures anything larger or further away, in millimetres.
inline constexpr float largestLength = 10000.0f;

/// In millimetres; what a header does not state is empty.
struct HeaderSizes {
    std::optional<float> pixelSizeX;
    std::optional<float> pixelSizeY;
    std::optional<float> sliceThickness;
    std::optional<float> sliceGap; ///< negative where slices overlap
    std::optional<float> fieldOfViewX;
    std::optional<float> fieldOfViewY;
};

/// Takes what is stated into the project and the record of its slice geometry, together with matrix
/// and slice distance there. What can't be is left out, after a warning that names the file, and
/// the project keeps what it had: a length that is no number, not above 0 or above largestLength.
/// Thickness and gap are judged by their sum; a thickness of 0 stands for one that is not known
/// beside the distance.
void takeHeaderSizes(const HeaderSizes& sizes, const QString& fileName, FMRProject& project);
