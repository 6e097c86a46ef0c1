// Three orthogonal sections through a cube, and which functional voxel each of their points shows.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/anatomy/coordinate_chain.h"
#include "volume/anatomy/vmr_volume.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

/// A voxel of the cube, each coordinate 0 to 255.
struct CubeVoxel {
    int x = 128;
    int y = 128;
    int z = 128;

    bool operator==(const CubeVoxel&) const = default;
};

/// The axis that a section is perpendicular to.
enum class SectionAxis { X = 0, Y = 1, Z = 2 };

/// Column and row of a section are: for X, z and y; for Y, z and x; for Z, x and y. The axes of an
/// AC-PC or Talairach cube run from front to back (x), from top to bottom (y) and from right to
/// left (z), so X gives coronal, Y transversal and Z sagittal sections: top or front in the upper
/// rows, and in the first columns the right side, of sagittal sections the front. So it is with the
/// cube of an anatomy that was measured in sagittal slices from right to left, and with the
/// functional cube of a run whose rows go from right to left and whose columns go to the back.
[[nodiscard]] CubeVoxel sectionVoxel(SectionAxis axis, int column, int row, const CubeVoxel& cross);

/// The grey values of a section through `cross`, limited to the cube: 256 x 256 bytes, row by row.
/// All 0 for a cube that is empty.
void cutSection(std::span<const uint8_t> cube, SectionAxis axis, const CubeVoxel& cross,
                std::span<uint8_t> section);

inline constexpr int32_t outsideRun = -1;
/// For each point of the section the index of its nearest functional voxel (x fastest, then y, then
/// slices) by nearestVoxel(), or outsideRun. 256 x 256 entries, row by row. Computed incrementally
/// along rows; cheap enough for each volume (three sections well under 5 ms; of a Talairach
/// cube, whose points are scaled one by one, under 10 ms).
void mapSection(const CubeMapping& mapping, const VolumeSize& functional, SectionAxis axis,
                const CubeVoxel& cross, std::span<int32_t> indices);
