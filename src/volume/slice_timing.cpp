// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/slice_timing.h"

#include "base/messages.h"
#include "volume/time_course_splines.h"
#include "volume/time_courses.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>

namespace {

// The sinc takes samples of three volumes before, of the volume itself, and of two after.
constexpr size_t sincVolumesBefore = 3;
constexpr size_t sincVolumesAfter = 2;
using SincTaps = std::array<double, sincVolumesBefore + 1 + sincVolumesAfter>;

/// Positions where every other slice is measured first; `odd` slices are the first, third, ...
int ascendingPosition(int s, int n, bool interleaved, bool interleaved2) {
    const int h = (n + 1) / 2;
    const bool odd = (s + 1) % 2 != 0;
    if (interleaved)
        return odd ? (s + 2) / 2 - 1 : (s + 1) / 2 - 1 + h;
    if (interleaved2) {
        if (!odd)
            return (s + 2) / 2 - 1;
        return n % 2 == 0 ? (s + 1) / 2 + h : (s + 1) / 2 - 1 + h;
    }
    return s;
}

int descendingPosition(int s, int n, bool interleaved, bool interleaved2) {
    const int h = (n + 1) / 2;
    const bool odd = (s + 1) % 2 != 0;
    // With an odd number of slices the last one is odd too, which swaps the patterns.
    if (n % 2 != 0)
        std::swap(interleaved, interleaved2);
    if (interleaved2) {
        if (odd)
            return (n - s + 1) / 2 - 1;
        return n % 2 == 0 ? (n - s) / 2 + h : (n - s) / 2 - 1 + h;
    }
    if (interleaved)
        return odd ? (n - s) / 2 - 1 + h : (n - s + 1) / 2 - 1;
    return n - s - 1;
}

void shiftLinearly(size_t volume, double delay, const double* samples, double* filtered) {
    const double* const before = samples + (volume - 1) * timeCourseBlock;
    const double* const here = samples + volume * timeCourseBlock;
    double* const target = filtered + volume * timeCourseBlock;
    for (size_t i = 0; i < timeCourseBlock; ++i)
        target[i] = before[i] * delay + here[i] * (1.0 - delay);
}

SincTaps sincTaps(double delay) {
    SincTaps taps{};
    for (size_t k = 0; k < taps.size(); ++k) {
        const double x = (double(k) - double(sincVolumesBefore) + delay) * std::numbers::pi;
        double& tap = taps[k];
        if (std::abs(x) < 1e-05)
            tap = 1.0;
        else if (std::abs(x) == std::floor(std::abs(x)))
            tap = 0.0;
        else
            tap = (0.5 * std::cos(x / 3.5) + 0.5) * std::sin(x) / x;
    }
    const double sum = std::accumulate(taps.begin(), taps.end(), 0.0);
    for (double& tap : taps)
        tap /= sum;
    return taps;
}

void shiftBySinc(size_t volume, const SincTaps& taps, const double* samples, double* filtered) {
    double* const target = filtered + volume * timeCourseBlock;
    std::fill_n(target, timeCourseBlock, 0.0);
    for (size_t k = 0; k < taps.size(); ++k) {
        const double* const source = samples + (volume + k - sincVolumesBefore) * timeCourseBlock;
        for (size_t i = 0; i < timeCourseBlock; ++i)
            target[i] += taps[k] * source[i];
    }
}

void shiftLinearlyOrBySinc(bool sinc, double delay, size_t volumes, const double* samples,
                           double* filtered) {
    const SincTaps taps = sincTaps(delay);
    for (size_t v = 1; v < volumes; ++v) {
        const bool whole = v >= sincVolumesBefore && v + sincVolumesAfter < volumes;
        if (sinc && whole)
            shiftBySinc(v, taps, samples, filtered);
        else
            shiftLinearly(v, delay, samples, filtered);
    }
}

bool measuredTimesAreValid(const FMRHeader& header) {
    if (header.sliceTimes.size() != size_t(std::max(header.NrOfSlices, 0))) {
        showWarning("ERROR: The headers of the run gave no time for each slice!");
        return false;
    }
    const bool inside = std::ranges::all_of(
        header.sliceTimes, [&](float time) { return time >= 0.0f && time < header.TR; });
    if (!inside)
        showWarning("ERROR: The times of the slices do not lie within the TR!");
    return inside;
}

} // namespace

int timePositionOfSlice(int slice, int nrOfSlices, const SliceScanTimeOptions& options,
                        int lastPosition) {
    // The first pattern that is set wins.
    const bool interleaved = options.interleavedSliceOrder;
    const bool interleaved2 = options.interleaved2SliceOrder && !interleaved;
    if (options.ascendingSliceOrder)
        return ascendingPosition(slice, nrOfSlices, interleaved, interleaved2);
    if (options.descendingSliceOrder)
        return descendingPosition(slice, nrOfSlices, interleaved, interleaved2);
    return lastPosition;
}

bool sliceTimesAreValid(const FMRHeader& header, const SliceScanTimeOptions& options) {
    if (options.measuredTimes)
        return measuredTimesAreValid(header);
    if (float(header.NrOfSlices) * header.InterSliceTime > header.TR) {
        showWarning("ERROR: NrOfSlices * InterSliceTime > TR !");
        return false;
    }
    if (!(header.TR > 0.0f && header.InterSliceTime >= 0.0f)) {
        showWarning("ERROR: The TR or the inter-slice time of the project is invalid!");
        return false;
    }
    return true;
}

bool correctSliceScanTime(FMRProject& project, int nrOfVolumes, const SliceScanTimeOptions& options,
                          const StepProgress& progress) {
    if (!sliceTimesAreValid(project, options))
        return false;
    const size_t volumes = size_t(nrOfCompleteVolumes(project, nrOfVolumes));
    TimeCourseSplines splines(volumes);
    int currentSlice = -1;
    int position = 0;
    const auto shift = [&](int slice, std::span<const double> samples, std::span<double> filtered) {
        if (slice != currentSlice)
            position = timePositionOfSlice(slice, project.NrOfSlices, options, position);
        currentSlice = slice;
        const double time = options.measuredTimes ? double(project.sliceTimes[size_t(slice)])
                                                  : position * double(project.InterSliceTime);
        const double delay = time / double(project.TR);
        std::copy_n(samples.begin(), timeCourseBlock, filtered.begin());
        if (options.cubicSplineInterpolation && !options.sincInterpolation)
            splines.shift(delay, samples.data(), filtered.data());
        else
            shiftLinearlyOrBySinc(options.sincInterpolation, delay, volumes, samples.data(),
                                  filtered.data());
    };
    return filterTimeCourses(project, nrOfVolumes, SampleRange::Unsigned, progress, shift);
}
