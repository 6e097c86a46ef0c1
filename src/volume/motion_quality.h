// Measures of data quality that rest on motion: framewise displacement and DVARS.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/motion_correction.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

/// Millimetres: radius of the sphere on which rotations are turned into arcs.
inline constexpr double framewiseDisplacementRadius = 50.0;
/// A usual limit of framewise displacement in millimetres.
inline constexpr double framewiseDisplacementLimit = 0.5;

/// Framewise displacement of a volume in millimetres: the sum of the magnitudes of the differences
/// of the six parameters to those of the volume before (three translations in millimetres, three
/// rotations in degrees, taken as arcs at framewiseDisplacementRadius). Power et al. 2012,
/// NeuroImage 59:2142-2154.
[[nodiscard]] double framewiseDisplacement(const std::array<float, 6>& before,
                                           const std::array<float, 6>& now);

/// DVARS of a volume in percent: root mean square over the voxels in the mask (non-zero bytes) of
/// the difference to the volume before, divided by the mean of the volume before over these voxels.
/// The same paper. 0 without voxels in the mask, where that mean is not positive, or when the
/// lengths differ.
[[nodiscard]] double volumeDVARS(std::span<const int16_t> before, std::span<const int16_t> now,
                                 std::span<const uint8_t> mask);

/// Framewise displacement of the volumes from 0 to nrOfVolumes - 1. NaN where there is none: at
/// those below `first`, which have no predecessor with parameters of its own, and where the
/// parameters end.
[[nodiscard]] std::vector<float> framewiseDisplacements(const MotionCorrection& motion,
                                                        int nrOfVolumes, int first);

/// DVARS of the volumes of a run, computed once for each of them.
class RunDVARS {
public:
    void clear() { values_.clear(); }
    /// Computes values that are missing up to volume nrOfVolumes - 1, at most `atMost` of them.
    /// False when some are left. Without a mask of the size of the volumes there are none.
    bool update(const RunVolumes& volumes, int nrOfVolumes, std::span<const uint8_t> mask,
                int atMost);
    /// In percent, from volume 0, which has none (NaN).
    [[nodiscard]] const std::vector<float>& values() const { return values_; }

private:
    std::vector<float> values_;
};
