// The samples of a region's voxels, side by side.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/run_volumes.h"

#include <cstdint>
#include <span>
#include <vector>

struct VolumeSize;
struct VoxelList;

/// Makes sums over a region's voxels cheap. The sums of the volumes seen so far are kept, so a new
/// volume costs no more than itself. When other voxels are in use than before, only those that
/// entered or left are added and subtracted; their samples are gathered once for each volume and
/// read again from memory that is consecutive. A region too large for that is read from the volumes
/// themselves; the sums are the same.
class RegionSamples {
public:
    /// Bytes that the gathered samples of one region may take.
    static constexpr size_t largestCopy = size_t(8) << 20;

    /// Sums of the voxels for the volumes 0 to sums.size() - 1, over those at the positions `used`
    /// in the list (each at most once), or over all if `used` is empty. Exact: sums of whole
    /// numbers. The volumes must exist, be of this size and hold all voxels.
    void sum(const RunVolumes& volumes, const VolumeSize& size, const VoxelList& voxels,
             std::span<const int> used, std::span<int64_t> sums);
    /// The samples in memory have changed, or the voxels.
    void forget() { *this = RegionSamples(); }

private:
    void start(const RunVolumes& volumes, const VoxelList& voxels);
    void gather(const RunVolumes& volumes, const VolumeSize& size, const VoxelList& voxels,
                size_t nrOfVolumes);
    template<typename SumAt> void use(std::span<const int> used, const SumAt& sumAt);

    size_t nrOfVoxels_ = 0;
    size_t nrOfVolumes_ = 0;         ///< of the run
    ZeroedBuffer<int16_t> gathered_; ///< volume after volume, one sample for each voxel; or empty
    size_t nrGathered_ = 0;          ///< volumes
    std::vector<uint8_t> inUse_;     ///< for each voxel
    std::vector<int> positions_;     ///< of the voxels in use, ascending
    std::vector<int64_t> totals_;    ///< over the voxels in use, for each volume seen so far
};
