// The samples of a region's voxels, side by side.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/run_volumes.h"

#include <cstdint>
#include <span>
#include <vector>

/// Makes sums over a region's voxels cheap: the samples of its voxels are gathered once for each
/// volume, and read again from memory that is consecutive. A region too large for that is summed
/// from the volumes themselves; the sums are the same.
class RegionSamples {
public:
    /// Sums of the voxels at `offsets` (into a volume) for the volumes 0 to sums.size() - 1, over
    /// those at the positions `used` in the list, or over all if `used` is empty. Exact: sums of
    /// whole numbers. The volumes must exist and hold all offsets.
    void sum(const RunVolumes& volumes, std::span<const size_t> offsets, std::span<const int> used,
             std::span<int64_t> sums);
    /// The samples in memory have changed, or the voxels.
    void forget();

private:
    std::vector<int16_t> gathered_; ///< volume after volume, one sample for each voxel
    std::vector<int64_t> totals_;   ///< of all voxels, for each volume seen so far
};
