// Voxel sizes and fields of view that an image header states, on their way into the project.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/fmr_project.h"

#include <optional>

/// Upper bound of sizes and of distances from the scanner's centre, in millimetres.
inline constexpr float largestLength = 10000.0f;

/// More than 0 and at most largestLength.
[[nodiscard]] bool isLength(float millimetres);

/// A field of a header; 0 means that the scanner left it empty.
[[nodiscard]] std::optional<float> statedLength(double millimetres);

/// In millimetres; empty if the header does not state it.
struct HeaderSizes {
    std::optional<float> pixelSizeX;
    std::optional<float> pixelSizeY;
    std::optional<float> sliceThickness;
    std::optional<float> sliceGap; ///< negative where slices overlap
    std::optional<float> fieldOfViewX;
    std::optional<float> fieldOfViewY;
};

/// Copies the stated sizes into the project and its slice positions. For invalid ones the project
/// keeps its values, after a warning that names the file. Thickness and gap are checked by their
/// sum; a thickness of 0 with a stated gap means that it is unknown.
void takeHeaderSizes(const HeaderSizes& sizes, const QString& fileName, FMRProject& project);
