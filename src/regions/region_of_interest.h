// Regions of interest: sets of functional voxels whose mean signal is followed volume by volume.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "regions/region_samples.h"
#include "volume/volume_geometry.h"

#include <array>
#include <optional>
#include <vector>

/// A rectangle of voxels on a slice, all from 0. The corners may come in any order; once they are
/// sorted, right and bottom are the first voxels outside.
struct VoxelRectangle {
    int slice = 0;
    int left = 0;
    int right = 0;
    int top = 0;
    int bottom = 0;
};

/// Coordinates from 0, in the order in which the voxels were taken; z is the slice.
struct VoxelList {
    std::vector<int> x;
    std::vector<int> y;
    std::vector<int> z;

    bool operator==(const VoxelList&) const = default;
    [[nodiscard]] size_t size() const { return x.size(); }
    /// Where the samples of the voxel at a position in the list lie in a volume.
    [[nodiscard]] size_t offset(size_t position, const VolumeSize& volume) const {
        return size_t(z[position]) * volume.sliceSamples() +
               size_t(y[position]) * size_t(volume.x) + size_t(x[position]);
    }
    void append(int voxelX, int voxelY, int voxelZ) {
        x.push_back(voxelX);
        y.push_back(voxelY);
        z.push_back(voxelZ);
    }
};

inline constexpr int allPredictors = -1; ///< of TopVoxelSelectionMode
/// Percent signal change that fills the feedback display, for the first three regions.
using FeedbackMaxima = std::array<float, 3>;
inline constexpr FeedbackMaxima defaultMaxPSC = {2.0f, 2.0f, 2.0f};

/// One region and what is known of its signal. Its number is its position in the list of regions.
struct RegionOfInterest {
    /// The rectangle that it was selected with, all from 1 as in files; of no meaning for a region
    /// that was made from a list of voxels.
    int FromSlice = 1;
    int Left = 1;
    int Right = 1;
    int Top = 1;
    int Bottom = 1;
    VoxelList voxels;

    /// Mean signal of the voxels in use at each volume, in the units of the data. NrOfValues long;
    /// valid up to CurrentTimePoint.
    std::vector<float> TimeCourseValues;
    int CurrentTimePoint = -1;

    float TopVoxelRatio = 1.0f;                ///< share of the voxels in use, 0 to 1
    int TopVoxelSelectionMode = allPredictors; ///< or the number of one condition, from 0
    std::vector<int> SortedVoxelList; ///< positions in the voxel list, best first; may be empty

    /// One beta for each design column, 0 for columns that are not in the model; those of
    /// conditions are in percent of the constant if that is above 0.01 in magnitude. Empty before
    /// the first fit.
    std::vector<float> ROIBetas;
    /// The inverse of X'X at the positions of the columns in the model, 0 elsewhere; columns x
    /// columns. Empty before the first fit.
    std::vector<double> BetaCovariance;
    float residualVariance = 0.0f; ///< of the fit, in squared units of the data
    int predictorsInFit = 0;       ///< 0 before the first fit

    /// The voxels' values, kept side by side for the sums; forget() when voxels or volumes change.
    RegionSamples samples;

    [[nodiscard]] int NrOfVoxels() const { return int(voxels.size()); }
    [[nodiscard]] int NrOfValues() const { return int(TimeCourseValues.size()); }
};

/// The operator's choices for all regions of a run.
struct RegionOptions {
    bool SelectOnlyMapVoxels = false;          ///< take only voxels in the shown maps of plug-ins
    bool BestVoxelSelection = false;           ///< rank the voxels and use only the best
    float TopVoxelRatio = 0.33f;               ///< of new regions
    int TopVoxelSelectionMode = allPredictors; ///< of new regions
    /// Those of the feedback display while one exists: they go into the file.
    std::optional<FeedbackMaxima> feedbackMaxima{};

    bool operator==(const RegionOptions&) const = default;
};
