// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/run_smoothing.h"

#include "base/messages.h"
#include "volume/frequency_smoothing.h"
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
                   const StepProgress& progress) {
    SpatialSmoothing smoothing;
    for (int v = 0; v < nrOfVolumes; ++v)
        if (!smoothing.smoothVolume(project, v, widths) || !progress.advance(v + 1, nrOfVolumes))
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
               const StepProgress& progress) {
    if (!runSmoothingIsPossible(project, options))
        return false;
    const int volumes = nrOfCompleteVolumes(project, nrOfVolumes);
    const VoxelWidths widths = widthsOf(project, options);
    return options.inSpaceDomain ? smoothInSpace(project, volumes, widths, progress)
                                 : smoothInFrequency(project, volumes, widths, progress);
}
