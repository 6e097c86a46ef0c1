// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/time_courses.h"

#include "base/messages.h"

#include <cmath>

namespace {

/// A block of neighbouring voxels of one slice.
struct Block {
    size_t first; ///< sample in the volume
    size_t count;
};

void readBlock(const FMRProject& project, const Block& block, std::span<double> samples) {
    for (size_t row = 0; row < samples.size() / timeCourseBlock; ++row) {
        const int16_t* const source = project.volumes[row].data() + block.first;
        double* const target = samples.data() + row * timeCourseBlock;
        for (size_t i = 0; i < block.count; ++i)
            target[i] = double(uint16_t(source[i]));
        std::fill(target + block.count, target + timeCourseBlock, 0.0);
    }
}

std::array<bool, timeCourseBlock> findFlatCourses(std::span<const double> samples) {
    std::array<bool, timeCourseBlock> flat;
    flat.fill(true);
    for (size_t row = timeCourseBlock; row < samples.size(); row += timeCourseBlock)
        for (size_t i = 0; i < timeCourseBlock; ++i)
            flat[i] &= samples[row + i] == samples[i];
    return flat;
}

void writeBlock(FMRProject& project, const Block& block, SampleRange range,
                const std::array<bool, timeCourseBlock>& flat, std::span<const double> filtered) {
    const double largest = double(range);
    for (size_t row = 0; row < filtered.size() / timeCourseBlock; ++row) {
        int16_t* const target = project.volumes[row].data() + block.first;
        const double* const source = filtered.data() + row * timeCourseBlock;
        for (size_t i = 0; i < block.count; ++i) {
            // Not below 0, so that truncation rounds half up.
            const double limited = std::min(std::max(source[i], 0.0), largest);
            const auto sample = int16_t(uint16_t(int(limited + 0.5)));
            target[i] = flat[i] ? target[i] : sample;
        }
    }
}

} // namespace

int nrOfCompleteVolumes(const FMRProject& project, int nrOfVolumes) {
    const size_t samples = project.volumeSamples();
    if (samples == 0 || project.volumes.samplesOfEach() < samples)
        return 0;
    return int(std::min(size_t(std::max(nrOfVolumes, 0)), project.volumes.size()));
}

bool filterTimeCourses(FMRProject& project, int nrOfVolumes, SampleRange range,
                       const StepProgress& progress, const TimeCourseFilter& filter) {
    const size_t rows = size_t(nrOfCompleteVolumes(project, nrOfVolumes));
    ZeroedBuffer<double> samples;
    ZeroedBuffer<double> filtered;
    if (!samples.allocate(rows * timeCourseBlock) || !filtered.allocate(rows * timeCourseBlock)) {
        showCritical("ERROR: Insufficient memory for creating pixel time course array.");
        return false;
    }
    const size_t sliceSamples = project.sliceSamples();
    const auto total = int64_t(project.volumeSamples());
    for (int slice = 0; slice < project.NrOfSlices && rows > 0; ++slice)
        for (size_t pixel = 0; pixel < sliceSamples; pixel += timeCourseBlock) {
            const Block block{size_t(slice) * sliceSamples + pixel,
                              std::min(timeCourseBlock, sliceSamples - pixel)};
            readBlock(project, block, samples.span());
            filter(slice, samples.span(), filtered.span());
            writeBlock(project, block, range, findFlatCourses(samples.span()), filtered.span());
            // A slice of a long run may take seconds.
            if (!progress.advance(int64_t(block.first + block.count), total))
                return false;
        }
    return true;
}
