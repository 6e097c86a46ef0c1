// Voxel sizes and fields of view that an image header states, on their way into the project.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/fmr_project.h"

#include <optional>

/// No scanner measures anything larger or further away, in millimetres.
inline constexpr float largestLength = 10000.0f;

/// More than 0 and at most largestLength.
[[nodiscard]] bool isLength(float millimetres);

/// A field of a header; one that is 0 was left empty by the scanner.
[[nodiscard]] std::optional<float> statedLength(double millimetres);

/// In millimetres; what a header does not state is empty.
struct HeaderSizes {
    std::optional<float> pixelSizeX;
    std::optional<float> pixelSizeY;
    std::optional<float> sliceThickness;
    std::optional<float> sliceGap; ///< negative where slices overlap
    std::optional<float> fieldOfViewX;
    std::optional<float> fieldOfViewY;
};

/// Takes what is stated into the project and the record of its slice positions. What is no length
/// is left out, after a warning that names the file, and the project keeps what it had. Thickness
/// and gap are judged by their sum; a thickness of 0 beside a stated gap is one that is not known.
void takeHeaderSizes(const HeaderSizes& sizes, const QString& fileName, FMRProject& project);
