// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/region_samples.h"

#include "regions/region_of_interest.h"

#include <algorithm>

void RegionSamples::start(const RunVolumes& volumes, const VoxelList& voxels) {
    forget();
    nrOfVoxels_ = voxels.size();
    nrOfVolumes_ = volumes.size();
    inUse_.assign(nrOfVoxels_, 0);
    const size_t samples = nrOfVolumes_ * nrOfVoxels_;
    // One region of many takes no more than an eighth of what is free; without it sums are slower.
    constexpr size_t sharers = 8;
    if (samples <= largestCopy / sizeof(int16_t) &&
        memoryIsAvailable(samples, sharers * sizeof(int16_t)))
        static_cast<void>(gathered_.allocate(samples));
}

void RegionSamples::gather(const RunVolumes& volumes, const VolumeSize& size,
                           const VoxelList& voxels, size_t nrOfVolumes) {
    if (gathered_.empty())
        return;
    for (; nrGathered_ < nrOfVolumes; ++nrGathered_) {
        const std::span<const int16_t> volume = volumes[nrGathered_];
        int16_t* const row = gathered_.data() + nrGathered_ * nrOfVoxels_;
        for (size_t i = 0; i < nrOfVoxels_; ++i)
            row[i] = volume[voxels.offset(i, size)];
    }
}

/// Brings the totals to other voxels.
template<typename SumAt> void RegionSamples::use(std::span<const int> used, const SumAt& sumAt) {
    std::vector<uint8_t> wanted(nrOfVoxels_, used.empty() ? 1 : 0);
    for (const int position : used)
        wanted[size_t(position)] = 1;
    if (wanted == inUse_)
        return;
    std::vector<int> entered;
    std::vector<int> left;
    positions_.clear();
    for (size_t i = 0; i < nrOfVoxels_; ++i) {
        if (wanted[i])
            positions_.push_back(int(i));
        if (wanted[i] != inUse_[i])
            (wanted[i] ? entered : left).push_back(int(i));
    }
    inUse_ = std::move(wanted);
    if (entered.size() + left.size() >= positions_.size())
        totals_.clear(); // quicker afresh
    for (size_t t = 0; t < totals_.size(); ++t)
        totals_[t] += sumAt(t, entered) - sumAt(t, left);
}

void RegionSamples::sum(const RunVolumes& volumes, const VolumeSize& size, const VoxelList& voxels,
                        std::span<const int> used, std::span<int64_t> sums) {
    if (voxels.size() != nrOfVoxels_ || volumes.size() != nrOfVolumes_)
        start(volumes, voxels);
    gather(volumes, size, voxels, sums.size());
    const auto sumAt = [&](size_t t, const std::vector<int>& positions) {
        int64_t total = 0;
        if (t < nrGathered_) {
            const int16_t* const row = gathered_.data() + t * nrOfVoxels_;
            for (const int position : positions)
                total += row[position];
            return total;
        }
        const std::span<const int16_t> volume = volumes[t];
        for (const int position : positions)
            total += volume[voxels.offset(size_t(position), size)];
        return total;
    };
    use(used, sumAt);
    while (totals_.size() < sums.size())
        totals_.push_back(sumAt(totals_.size(), positions_));
    std::copy_n(totals_.begin(), sums.size(), sums.begin());
}
