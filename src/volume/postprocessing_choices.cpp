// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/postprocessing_choices.h"

#include "volume/high_pass.h"
#include "volume/run_motion.h"
#include "volume/run_smoothing.h"
#include "volume/slice_timing.h"

#include <algorithm>

AvailableChoices availableChoices(const PostprocessingOptions& options, const FMRHeader& header) {
    const SliceScanTimeOptions& times = options.sliceScanTime;
    const TemporalOptions& temporal = options.temporal;
    const bool timesAreKnown =
        header.NrOfSlices > 0 && header.sliceTimes.size() == size_t(header.NrOfSlices);
    return {times.checked && !times.measuredTimes,
            times.checked && timesAreKnown,
            times.checked && !interleavedBeginsWithSecond(header.NrOfSlices),
            temporal.checked && !temporal.highPass,
            temporal.checked && temporal.highPass,
            temporal.checked && temporal.gaussian};
}

UnfinishedChoice findUnfinishedChoice(const PostprocessingOptions& options) {
    const TemporalOptions& temporal = options.temporal;
    const bool filters =
        temporal.checked && (temporal.linearTrendRemoval || temporal.highPass || temporal.gaussian);
    if (!options.sliceScanTime.checked && !options.motion.checked && !options.spatial.checked &&
        !filters)
        return {PostprocessingChoice::SliceScanTime,
                "Nothing is chosen yet: check a group, and in the last one a filter."};
    if (options.spatial.checked && std::isnan(options.spatial.fwhm))
        return {PostprocessingChoice::SpatialWidth,
                "The width of the spatial smoothing is not a number."};
    if (temporal.checked && temporal.highPass && std::isnan(temporal.highPassCycles))
        return {PostprocessingChoice::HighPassCycles,
                "The number of sines/cosines is not a number."};
    if (temporal.checked && temporal.gaussian && std::isnan(temporal.gaussianWidth))
        return {PostprocessingChoice::TemporalWidth,
                "The width of the temporal Gaussian is not a number."};
    return {};
}

PostprocessingChoice findImpossibleStep(const FMRHeader& header, int nrOfVolumes,
                                        const PostprocessingOptions& options) {
    const TemporalOptions& temporal = options.temporal;
    if (options.sliceScanTime.checked && !sliceTimesAreValid(header, options.sliceScanTime))
        return PostprocessingChoice::SliceScanTime;
    if (options.motion.checked && !runMotionIsPossible(nrOfVolumes, options.motion))
        return PostprocessingChoice::MotionTarget;
    if (options.spatial.checked && !runSmoothingIsPossible(header, options.spatial))
        return PostprocessingChoice::SpatialWidth;
    if (temporal.checked && temporal.highPass &&
        !highPassIsPossible(nrOfVolumes, temporal.nrOfHighPassCycles()))
        return PostprocessingChoice::HighPassCycles;
    if (temporal.checked && temporal.gaussian && !temporalSmoothingIsPossible(header, temporal))
        return PostprocessingChoice::TemporalWidth;
    return PostprocessingChoice::None;
}

QString sliceOrderText(const FMRHeader& header, const SliceScanTimeOptions& options) {
    if (options.measuredTimes && !header.sliceTimes.empty()) {
        const auto [first, last] =
            std::minmax_element(header.sliceTimes.begin(), header.sliceTimes.end());
        return QStringLiteral("Slices from %1 to %2 ms of a TR of %3 ms")
            .arg(double(*first))
            .arg(double(*last))
            .arg(double(header.TR));
    }
    constexpr int shownAtStart = 6;
    constexpr int shownAtEnd = 3;
    const int slices = std::max(header.NrOfSlices, 0);
    QStringList measured(slices);
    for (int slice = 0; slice < slices; ++slice)
        measured[timePositionOfSlice(slice, slices, options, 0)] = QString::number(slice + 1);
    QString order = measured.join(", ");
    if (slices > shownAtStart + shownAtEnd)
        order = measured.first(shownAtStart).join(", ") + " ... " +
                measured.last(shownAtEnd).join(", ");
    return QStringLiteral("Slices in the order %1; one every %2 ms of a TR of %3 ms")
        .arg(order)
        .arg(double(header.InterSliceTime))
        .arg(double(header.TR));
}

QString runSizeText(const FMRHeader& header, int nrOfVolumes) {
    return QStringLiteral("%1 volumes of %2 x %3 x %4 voxels, TR %5 ms")
        .arg(nrOfVolumes)
        .arg(header.ResolutionX)
        .arg(header.ResolutionY)
        .arg(header.NrOfSlices)
        .arg(double(header.TR));
}
