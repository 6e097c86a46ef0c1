// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/run_smoothing.h"

#include "base/messages.h"
#include "volume/frequency_smoothing.h"
#include "volume/gaussian_kernel.h"
#include "volume/time_courses.h"

#include <cmath>

namespace {

VoxelWidths widthsOf(const FMRHeader& header, const SpatialSmoothingOptions& options) {
    const double width = double(options.fwhm);
    VoxelWidths widths =
        options.inMillimetres ? voxelWidths(header, width) : VoxelWidths{width, width, width};
    if (options.in2D)
        widths.z = 0.0;
    return widths;
}

bool smoothInSpace(FMRProject& project, int nrOfVolumes, const VoxelWidths& widths,
                   const StepProgress& progress, WorkerPool& workers) {
    SpatialSmoothing smoothing;
    for (int v = 0; v < nrOfVolumes; ++v)
        if (!smoothing.smoothVolume(project, v, widths, workers) ||
            !progress.advance(v + 1, nrOfVolumes))
            return false;
    return true;
}

bool smoothInFrequency(FMRProject& project, int nrOfVolumes, const VoxelWidths& widths,
                       const StepProgress& progress) {
    FrequencySmoothing smoothing;
    if (!smoothing.prepare(project, widths))
        return false;
    for (int v = 0; v < nrOfVolumes; ++v) {
        smoothing.smooth(project.volumes[size_t(v)].first(project.volumeSamples()));
        if (!progress.advance(v + 1, nrOfVolumes))
            return false;
    }
    return true;
}

constexpr double cutInSigmas = 4.0;

/// Weights of distances from 0 volumes on, within the run.
std::vector<double> weightsOfDistances(double width, int nrOfVolumes) {
    const double sigma = gaussianSigma(width);
    const double reach = std::min(std::ceil(cutInSigmas * sigma), double(nrOfVolumes - 1));
    std::vector<double> weights;
    for (int d = 0; d <= int(reach); ++d)
        weights.push_back(std::exp(-0.5 * (d / sigma) * (d / sigma)));
    return weights;
}

void smoothVolumeOfBlock(int volume, int nrOfVolumes, const std::vector<double>& weights,
                         const double* samples, double* __restrict target) {
    const int reach = int(weights.size()) - 1;
    double sum = 0.0;
    std::fill_n(target, timeCourseBlock, 0.0);
    for (int v = std::max(volume - reach, 0); v <= std::min(volume + reach, nrOfVolumes - 1); ++v) {
        const double weight = weights[size_t(std::abs(v - volume))];
        const double* const source = samples + size_t(v) * timeCourseBlock;
        sum += weight;
        for (size_t i = 0; i < timeCourseBlock; ++i)
            target[i] += weight * source[i];
    }
    for (size_t i = 0; i < timeCourseBlock; ++i)
        target[i] /= sum;
}

} // namespace

bool runSmoothingIsPossible(const FMRHeader& header, const SpatialSmoothingOptions& options) {
    if (!(options.fwhm > 0.0f) || !std::isfinite(options.fwhm)) {
        showWarning("ERROR: The width of the spatial smoothing must be above 0!");
        return false;
    }
    const VoxelWidths widths = widthsOf(header, options);
    if (!std::isfinite(widths.x) || !std::isfinite(widths.y) || !std::isfinite(widths.z)) {
        showWarning("ERROR: The project does not state the size of its voxels. Give the width of "
                    "the spatial smoothing in pixels!");
        return false;
    }
    if (options.inSpaceDomain && !SpatialSmoothing::isPossible(widths)) {
        showWarning("ERROR: The width of the spatial smoothing is too large!");
        return false;
    }
    return true;
}

bool smoothRun(FMRProject& project, int nrOfVolumes, const SpatialSmoothingOptions& options,
               const StepProgress& progress, WorkerPool& workers) {
    if (!runSmoothingIsPossible(project, options))
        return false;
    const int volumes = nrOfCompleteVolumes(project, nrOfVolumes);
    const VoxelWidths widths = widthsOf(project, options);
    return options.inSpaceDomain ? smoothInSpace(project, volumes, widths, progress, workers)
                                 : smoothInFrequency(project, volumes, widths, progress);
}

double widthInVolumes(const FMRHeader& header, const TemporalOptions& options) {
    constexpr double millisecondsPerSecond = 1000.0;
    const double width = options.gaussianInSeconds ? double(options.gaussianWidth) *
                                                         millisecondsPerSecond / double(header.TR)
                                                   : double(options.gaussianWidth);
    return width > 0.0 && std::isfinite(width) ? width : 0.0;
}

bool temporalSmoothingIsPossible(const FMRHeader& header, const TemporalOptions& options) {
    if (widthInVolumes(header, options) > 0.0)
        return true;
    showWarning("ERROR: The width of the temporal Gaussian must be above 0!");
    return false;
}

bool smoothTimeCourses(FMRProject& project, int nrOfVolumes, const TemporalOptions& options,
                       const StepProgress& progress) {
    const int volumes = nrOfCompleteVolumes(project, nrOfVolumes);
    if (!temporalSmoothingIsPossible(project, options))
        return false;
    const std::vector<double> weights =
        weightsOfDistances(widthInVolumes(project, options), volumes);
    const auto smooth = [&](int, std::span<const double> samples, std::span<double> filtered) {
        for (int v = 0; v < volumes; ++v)
            smoothVolumeOfBlock(v, volumes, weights, samples.data(),
                                filtered.data() + size_t(v) * timeCourseBlock);
    };
    return filterTimeCourses(project, volumes, SampleRange::Signed, progress, smooth);
}
