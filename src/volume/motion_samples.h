// The voxels of a target volume that tell most about motion.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/motion_fit.h"
#include "volume/spline_volume.h"

#include <array>
#include <vector>

/// What a fit needs of the chosen voxels, one entry for each. Their number is a multiple of
/// `parts` * `lanes`; the first of the parts are voxels from all over the volume.
struct MotionSamples {
    static constexpr size_t parts = 4;
    static constexpr size_t lanes = 8; ///< that are worked on at once
    static constexpr size_t nrOfClasses = 8;

    /// The most voxels that are chosen. More make the fit slower and, beyond this number, hardly
    /// more exact: in a head of 3 mm voxels that is the number of all voxels with texture.
    static constexpr size_t maximumCount = 60000;

    VolumeGrid grid;
    std::array<std::vector<float>, 3> positions; ///< millimetres from the centre
    /// Changes of the value by a motion of the head: by a millimetre along x, y and z, and by a
    /// radian about x, y and z.
    std::array<std::vector<float>, nrOfMotionParameters> derivatives;
    std::vector<float> values; ///< of the spline, smoothed where that smooths
    /// How much the neighbours of a voxel differ from it: 0 for the smoothest of the samples to
    /// nrOfClasses - 1 for the roughest. The classes are of equal size.
    std::vector<uint8_t> roughness;

    [[nodiscard]] size_t count() const { return values.size(); }
};

/// Chooses the voxels with the steepest slopes, and none at the border of the volume. `target`
/// holds the samples of `volume`. Empty when memory runs out, or when the volume has too few
/// voxels.
[[nodiscard]] MotionSamples chooseMotionSamples(const SplineVolume& target,
                                                std::span<const int16_t> volume);
