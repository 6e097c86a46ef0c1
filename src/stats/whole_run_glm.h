// Fitting the linear model to complete data, slice by slice.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/progress.h"
#include "base/worker_pool.h"
#include "stats/whole_run_model.h"

#include <cstdint>
#include <span>

struct FMRProject;

/// Where the samples of the studies come from.
class SliceSource {
public:
    virtual ~SliceSource() = default;
    /// Sets one pointer for each data point, study after study, to the samples of the slice, x
    /// fastest; they are valid until the next call. False, after a message, when they can't be had.
    [[nodiscard]] virtual bool loadSlice(int slice, std::span<const int16_t*> points) = 0;
};

/// The first volumes of the run in memory, as one study. The fit must have the run's size.
class RunInMemory : public SliceSource {
public:
    explicit RunInMemory(const FMRProject& project) : project_(project) {}
    [[nodiscard]] bool loadSlice(int slice, std::span<const int16_t*> points) override;

private:
    const FMRProject& project_;
};

enum class WholeRunFit { Done, Cancelled, Failed };

/// Smallest mean of a study's first and last value in a voxel that is fitted, exclusive.
inline constexpr float wholeRunIntensityLimit = 100.0f;

/// Fits the design to the samples of all voxels and fills `model`. After each slice it
/// reports progress and can be cancelled. Cancelled or failed (after a message: memory, samples),
/// the model is released.
///
/// A voxel is left out, with zeros in all rows, when in any study the mean of the first and the
/// last value is at or below the limit; of the second and later studies the second value stands in
/// for the first. A deviation of z transformation below 0.01 counts as 1. Deviations are those of
/// the population. A study without a point at which a condition is not 0 takes them from all its
/// points. A voxel without variance is left out too, so that no row ever holds NaN.
///
/// With CorrectSerialCorrelations the data are fitted twice. The lag-one value a of the first fit's
/// residuals, sum e(t) e(t-1) / sum e(t)^2 within studies, picks the voxel's bin; data and design
/// are whitened with the bin's value within each study, y(t) - a y(t-1), which takes the first
/// point of each (D. Cochrane and G. H. Orcutt, Journal of the American Statistical Association 44,
/// 1949, 32-61), and fitted again.
///
/// MeanAR1Before and MeanAR1After are the means over the voxels that were not left out; noMeanAR1
/// where there are none, or without the correction. X must be finite and fit studies and
/// predictors.
///
/// Sums and inverses are computed in double and kept as float. The threads share the voxels of a
/// slice; their number changes no bit of the model.
[[nodiscard]] WholeRunFit fitWholeRunModel(WholeRunModel& model, const WholeRunDesign& design,
                                           const VolumeSize& size, SliceSource& samples,
                                           ProgressReporter& progress,
                                           WorkerPool& workers = callersThread());

/// Writes X as text, one line for each data point, each value "%8.6f  ", into DesignMatrix.txt of a
/// folder. Where that fails the operator is told, and nothing else happens.
void writeDesignText(const WholeRunDesign& design, const QString& folder);
