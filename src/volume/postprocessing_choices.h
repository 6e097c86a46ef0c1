// What may be chosen for the post-processing of a run, and what the operator reads about it.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/fmr_project.h"
#include "volume/postprocessing_options.h"

/// Choices that others rule out or imply; of a group that is not checked none is open.
struct OpenChoices {
    bool direction = false;      ///< not with the measured times
    bool measuredTimes = false;  ///< the headers have stated one for each slice
    bool interleaved = false;    ///< from the first slice of the direction: not with an even number
    bool linearTrend = false;    ///< the high-pass filter includes it
    bool highPassCycles = false; ///< needs the filter
    bool gaussianWidth = false;  ///< needs the temporal Gaussian
};
[[nodiscard]] OpenChoices openChoices(const PostprocessingOptions& options,
                                      const FMRHeader& header);

/// A choice of the operator in which something can be wrong.
enum class PostprocessingChoice {
    None,
    SliceScanTime,
    SpatialWidth,
    HighPassCycles,
    TemporalWidth
};

struct UnfinishedChoice {
    PostprocessingChoice choice = PostprocessingChoice::None;
    QString text; ///< what is missing; empty with None
};
/// The first thing that the operator has not yet chosen or typed: a step at all, or a number, which
/// is NaN in the options then.
[[nodiscard]] UnfinishedChoice findUnfinishedChoice(const PostprocessingOptions& options);

/// The first checked step, in the order of the work, that can't be carried out on the first volumes
/// of such a run, after a message that says why.
[[nodiscard]] PostprocessingChoice findImpossibleStep(const FMRHeader& header, int nrOfVolumes,
                                                      const PostprocessingOptions& options);

/// "2, 4, 6 ... 23, 25" with the times, to be held against the protocol of the scanner; with the
/// measured times their range.
[[nodiscard]] QString sliceOrderText(const FMRHeader& header, const SliceScanTimeOptions& options);

/// "40 volumes of 64 x 64 x 25 voxels, TR 2000 ms".
[[nodiscard]] QString runSizeText(const FMRHeader& header, int nrOfVolumes);
