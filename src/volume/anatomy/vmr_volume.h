// An anatomical volume: a cube of 8-bit voxels, and what its file says of its place in space.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/fmr_project.h"

#include <cstddef>
#include <cstdint>
#include <vector>

inline constexpr int cubeSide = 256; ///< voxels, of 1 mm
inline constexpr size_t cubeVoxels = size_t(cubeSide) * cubeSide * cubeSide;
/// The middle of the cube, in voxels.
inline constexpr float cubeCentre = 127.5f;
/// Intensities of anatomy are 0 to 225; the values above are colours of maps in files.
inline constexpr int maximumAnatomicalIntensity = 225;

/// x fastest, then y, then z.
[[nodiscard]] constexpr size_t cubeIndex(int x, int y, int z) {
    return (size_t(z) * cubeSide + size_t(y)) * cubeSide + size_t(x);
}

/// The sizes and the place of a volume, as the header of a .vmr file has them.
struct VMRHeader {
    int DimX = cubeSide; ///< of the volume in the file, 1 to 65535
    int DimY = cubeSide;
    int DimZ = cubeSide;
    bool hasExtendedHeader = false; ///< the prefix form, which has a second block of voxels
    int vmrVersion = 1;
    FMRPositionInfo position;    ///< valid when the file had a position block that says so
    int LeftRightConvention = 0; ///< 0 unknown, 1 radiological, 2 neurological
    int referenceSpace = 0;      ///< 0 unknown or native, 1 scanner, 2 AC-PC, 3 Talairach
};

/// In memory a volume always is a cube, in which a smaller one stands in the middle.
struct VMRVolume : VMRHeader {
    int offsetX = 0; ///< of the volume in the cube
    int offsetY = 0;
    int offsetZ = 0;
    std::vector<uint8_t> cube;   ///< cubeVoxels bytes; empty until one is loaded or made
    std::vector<uint8_t> second; ///< the second block of the prefix form; else empty

    [[nodiscard]] bool empty() const { return cube.empty(); }
    /// Zeroes the cube, allocating it first where there is none. False when memory runs out.
    [[nodiscard]] bool clearCube();
};
