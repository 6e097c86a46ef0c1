// Times of the estimation of single trials: all voxels of a finished run, and a region during one.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/trial_fit.h"
#include "processor_time.h"
#include "volume/volume_geometry.h"

#include <cstdio>
#include <random>

namespace {

constexpr int nrOfVolumes = 300;
constexpr int nrOfTrials = 40;
constexpr VolumeSize runSize{104, 104, 72};
constexpr size_t regionVoxels = 2000;

TrialFit fitOf(int points, TrialEstimate estimate, bool zNormalization, bool linearTrend) {
    const TrialOptions options{.preOnset = 2, .postOnset = points - 3, .linearTrend = linearTrend};
    return {trialDesign(options, 3, 2000.0f), estimate, zNormalization};
}

void printRun(const RunVolumes& volumes, const char* name, const TrialFit& fit) {
    std::vector<float> map(runSize.samples());
    const double time = medianTime(3, [&] {
        for (int trial = 0; trial < nrOfTrials; ++trial)
            estimateConsecutiveVoxels(
                fit, volumes, windowVolumes(trial * 7 + 3, fit.design.nrOfPoints, nrOfVolumes), 0,
                0, map);
    });
    std::printf("%-40s %8.0f\n", name, time);
}

void printRegion(const RunVolumes& volumes, const char* name, const TrialFit& fit) {
    std::vector<size_t> places(regionVoxels);
    for (size_t i = 0; i < regionVoxels; ++i)
        places[i] = i * 389 % runSize.samples();
    std::vector<float> values(regionVoxels);
    int first = 0;
    const double time = medianTime(101, [&] {
        first = (first + 29) % (nrOfVolumes - fit.design.nrOfPoints);
        estimateVoxels(fit, volumes, windowVolumes(first, fit.design.nrOfPoints, nrOfVolumes),
                       places, values);
    });
    std::printf("%-40s %8.3f\n", name, time);
}

} // namespace

int main() {
    RunVolumes volumes;
    if (!volumes.allocate(nrOfVolumes, runSize.samples())) {
        std::fputs("not enough memory\n", stderr);
        return 1;
    }
    std::minstd_rand random(1);
    for (size_t t = 0; t < nrOfVolumes; ++t)
        for (int16_t& sample : volumes[t])
            sample = int16_t(500 + (random() >> 8 & 1023));
    std::printf("Milliseconds of processor time, one thread\n\n%d trials of 25 volumes, all voxels "
                "of %d x %d x %d; budget 10000\n",
                nrOfTrials, runSize.x, runSize.y, runSize.slices);
    printRun(volumes, "t values", fitOf(25, TrialEstimate::TValue, false, false));
    printRun(volumes, "t values, z normalization, trend",
             fitOf(25, TrialEstimate::TValue, true, true));
    printRun(volumes, "percent changes", fitOf(25, TrialEstimate::PercentBeta, false, false));
    std::printf("\nOne trial of 14 volumes, %d scattered voxels; budget 5\n", int(regionVoxels));
    printRegion(volumes, "t values", fitOf(14, TrialEstimate::TValue, false, false));
    printRegion(volumes, "t values, z normalization, trend",
                fitOf(14, TrialEstimate::TValue, true, true));
}
