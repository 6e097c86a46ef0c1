// Which choices of post-processing are available, and the texts about them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/fmr_project.h"
#include "volume/postprocessing_options.h"

/// Which choices are available, given the others; none in an unchecked group.
struct AvailableChoices {
    bool direction = false;     ///< not with the measured times
    bool measuredTimes = false; ///< the headers have stated one for each slice
    bool interleaved = false; ///< from the first slice of the direction: for odd numbers of slices
    bool linearTrend = false; ///< the high-pass filter includes it
    bool highPassCycles = false; ///< needs the filter
    bool gaussianWidth = false;  ///< needs the temporal Gaussian
};
[[nodiscard]] AvailableChoices availableChoices(const PostprocessingOptions& options,
                                                const FMRHeader& header);

/// A choice that can be incomplete or impossible.
enum class PostprocessingChoice {
    None,
    SliceScanTime,
    MotionTarget,
    SpatialWidth,
    HighPassCycles,
    TemporalWidth
};

struct UnfinishedChoice {
    PostprocessingChoice choice = PostprocessingChoice::None;
    QString text; ///< what is missing; empty with None
};
/// The first missing choice: any step at all, or a number, which is then NaN in the options.
[[nodiscard]] UnfinishedChoice findUnfinishedChoice(const PostprocessingOptions& options);

/// The first checked step, in processing order, that is impossible for the first volumes of such a
/// run, after a message that says why.
[[nodiscard]] PostprocessingChoice findImpossibleStep(const FMRHeader& header, int nrOfVolumes,
                                                      const PostprocessingOptions& options);

/// "2, 4, 6 ... 23, 25" with the times, to compare with the scanner's protocol; for measured times
/// their range.
[[nodiscard]] QString sliceOrderText(const FMRHeader& header, const SliceScanTimeOptions& options);

/// "40 volumes of 64 x 64 x 25 voxels, TR 2000 ms".
[[nodiscard]] QString runSizeText(const FMRHeader& header, int nrOfVolumes);
