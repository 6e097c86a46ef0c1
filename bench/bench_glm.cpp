// Times of the model's steps at three sizes, compared with copying the model's memory.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/clusters.h"
#include "stats/glm_batch.h"
#include "stats/incremental_glm.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <functional>
#include <random>

namespace {

constexpr int nrOfVolumes = 300;
constexpr int nrOfConditions = 6; // with the constant and the trend 8 predictors
constexpr int manyDriftTerms = 10;
constexpr int nrOfContrasts = 3;

struct Size {
    int columns;
    int rows;
    int slices;
    double budgetMilliseconds; ///< for update, t maps and clusters of a volume
};

/// Median over `repeats` of the milliseconds that `work` takes, after one call to warm up.
double medianMilliseconds(int repeats, const std::function<void()>& work) {
    using Clock = std::chrono::steady_clock;
    work();
    std::vector<double> times;
    for (int i = 0; i < repeats; ++i) {
        const Clock::time_point start = Clock::now();
        work();
        times.push_back(std::chrono::duration<double, std::milli>(Clock::now() - start).count());
    }
    std::ranges::nth_element(times, times.begin() + repeats / 2);
    return times[size_t(repeats / 2)];
}

/// A run with all voxels of the inner slices inside the mask.
struct BenchmarkRun {
    FMRProject project;
    DesignMatrix design;
    ContrastDefinitions contrasts;
    BrainMask mask;
    GLMState glm;
    StatisticalMaps maps;
    OverlayThresholds thresholds;

    GLMRun parts() { return {project, design, contrasts, mask, glm, maps}; }

    [[nodiscard]] bool prepare(const Size& size, int driftTerms) {
        project.ResolutionX = size.columns;
        project.ResolutionY = size.rows;
        project.NrOfSlices = size.slices;
        project.NrOfVolumes = nrOfVolumes;
        makeDesign(driftTerms);
        makeContrasts();
        return makeVolumes() && createBrainMask(mask, project, 100) &&
               glm.allocate(design.NrOfPredictors, project.volumeSamples()) &&
               maps.allocateMaps(nrOfContrasts, project.size());
    }

private:
    void makeDesign(int driftTerms) {
        design.NrOfVolumes = nrOfVolumes;
        design.NrOfConditionPredictors = nrOfConditions;
        design.NrOfConfoundPredictors = 1 + driftTerms;
        design.NrOfPredictors = nrOfConditions + 1 + driftTerms;
        for (int j = 0; j < design.NrOfPredictors; ++j)
            for (int t = 0; t < nrOfVolumes; ++t)
                design.PredictorColumns[size_t(j)].push_back(predictor(j, t));
        design.PredictorOnsets.assign(nrOfConditions, 0);
    }
    static float predictor(int column, int volume) {
        if (column < nrOfConditions)
            return std::max(0.0f, std::sin(float(volume * 6 + column * 50) * 0.0174533f));
        return std::cos(float((column - nrOfConditions) * volume) / nrOfVolumes * 3.1416f);
    }
    void makeContrasts() {
        contrasts.NrOfContrasts = nrOfContrasts;
        contrasts.ContrastSelectionStates.assign(nrOfContrasts, ContrastPositive);
        for (size_t c = 0; c < nrOfContrasts; ++c) {
            contrasts.ContrastWeights.emplace_back(design.NrOfPredictors, 0);
            contrasts.ContrastWeights[c][c] = 1;
            contrasts.ContrastWeights[c][c + 1] = -1;
        }
    }
    [[nodiscard]] bool makeVolumes() {
        std::minstd_rand random(1);
        if (!project.allocateVolumes())
            return false;
        for (size_t v = 0; v < project.volumes.size(); ++v)
            for (int16_t& sample : project.volumes[v])
                sample = int16_t(900 + (random() >> 8) % 64);
        return true;
    }
};

/// Calls `work` repeatedly with volumes from the batch solution on.
struct VolumeCounter {
    int volume = 100;
    int next() { return volume = volume + 1 < nrOfVolumes ? volume + 1 : 101; }
};

double batchMilliseconds(BenchmarkRun& run, int nrOfVolumesInModel) {
    return medianMilliseconds(3, [&] {
        if (!solveBatch(run.glm, run.project, run.design, run.mask, nrOfVolumesInModel - 1,
                        callersThread()))
            std::fputs("the batch solution failed\n", stderr);
    });
}

bool printSize(const Size& size) {
    BenchmarkRun run;
    if (!run.prepare(size, 1)) {
        std::fputs("not enough memory\n", stderr);
        return false;
    }
    const double batch300 = batchMilliseconds(run, 300);
    const double batch100 = batchMilliseconds(run, 100);

    constexpr int repeats = 101;
    const size_t bytes = run.glm.values.size() * sizeof(double);
    std::vector<double> copy(run.glm.values.size());
    const double memcpyTime = medianMilliseconds(
        repeats, [&] { std::memcpy(copy.data(), run.glm.values.data(), bytes); });

    VolumeCounter counter;
    const auto update = [&] { updateGLM(run.parts(), counter.next()); };
    run.contrasts.ContrastSelectionStates.assign(nrOfContrasts, ContrastOff);
    run.contrasts.ContrastsChanged = true;
    const double updateTime = medianMilliseconds(repeats, update);
    run.contrasts.ContrastSelectionStates.assign(nrOfContrasts, ContrastPositive);
    const double mapTime = medianMilliseconds(repeats, update);
    const double wholeTime = medianMilliseconds(repeats, [&] {
        update();
        computeClusterSizes(run.maps, run.thresholds, false);
    });
    std::printf("%3d x %3d x %2d  %7.2f  %7.2f  %6.2f  %7.2f  %7.2f  %7.0f  %7.1f  %7.1f\n",
                size.columns, size.rows, size.slices, memcpyTime, updateTime,
                updateTime / memcpyTime, mapTime, wholeTime, size.budgetMilliseconds, batch100,
                batch300);
    return true;
}

/// Median time of a volume, with t maps, after a solution from the first volumes.
double volumeMilliseconds(BenchmarkRun& run, int nrOfVolumesInModel) {
    batchMilliseconds(run, nrOfVolumesInModel);
    VolumeCounter counter;
    run.glm.GLMStartVolume = counter.volume;
    run.contrasts.ContrastsChanged = true;
    return medianMilliseconds(49, [&] { updateGLM(run.parts(), counter.next()); });
}

bool printGrowingRank(const Size& size) {
    BenchmarkRun run;
    if (!run.prepare(size, manyDriftTerms)) {
        std::fputs("not enough memory\n", stderr);
        return false;
    }
    const double whole = volumeMilliseconds(run, 300);
    const double lacking = volumeMilliseconds(run, 100);
    std::printf("%3d x %3d x %2d  %7.2f  %7.2f  %6.2f  %8d\n", size.columns, size.rows, size.slices,
                whole, lacking, lacking / whole, run.glm.nrOfDirections);
    return true;
}

} // namespace

int main() {
    std::printf("Milliseconds, medians; 8 predictors, 3 contrasts, all voxels of the inner slices\n"
                "size            memcpy   update   ratio   +t maps +clusters  budget  batch100  "
                "batch300\n");
    const std::array sizes{Size{64, 64, 25, 2}, Size{74, 74, 36, 6}, Size{104, 104, 72, 25}};
    if (!std::ranges::all_of(sizes, printSize))
        return 1;
    std::printf("\nUpdate and t maps, %d drift terms, 17 predictors\n"
                "size            whole   lacking   ratio  directions\n",
                manyDriftTerms);
    return std::ranges::all_of(sizes, printGrowingRank) ? 0 : 1;
}
