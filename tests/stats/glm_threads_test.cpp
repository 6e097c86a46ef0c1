// Models, maps and clusters are the same, bit for bit, however many threads share the work.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/clusters.h"
#include "stats/whole_run_glm.h"
#include "stats/whole_run_maps.h"

#include "glm_run.h"
#include "support/recorded_progress.h"

namespace {

struct Case {
    const char* name;
    VolumeSize size; ///< a part of the work has 4096 voxels
    int driftTerms;  ///< with ten of them the design lacks directions at first
};

constexpr int nrOfVolumes = 28;

template<typename Value> void append(std::vector<std::byte>& bytes, std::span<const Value> values) {
    const auto added = std::as_bytes(values);
    bytes.insert(bytes.end(), added.begin(), added.end());
}

void appendMaps(std::vector<std::byte>& bytes, const StatisticalMaps& maps) {
    append<float>(bytes, maps.ContrastMaps.span());
    for (const std::vector<int>& sizes : maps.ClusterSizeSlices)
        append<int>(bytes, sizes);
}

GLMTestRun preparedRun(const Case& each) {
    GLMTestRun run(nrOfVolumes, each.size);
    run.addCondition(3, 8);
    run.addCondition(18, 7);
    run.addDriftTerms(each.driftTerms);
    run.addContrast({1, 0}, ContrastBoth);
    run.addContrast({1, -1}, ContrastNegative);
    run.start({12, 20});
    return run;
}

/// Betas, residual sums, maps and cluster sizes of each volume of a run.
std::vector<std::byte> live(const Case& each, WorkerPool& workers) {
    GLMTestRun run = preparedRun(each);
    OverlayThresholds thresholds;
    thresholds.Threshold = 0.8f;
    std::vector<std::byte> bytes;
    for (int t = 0; t < nrOfVolumes; ++t) {
        updateGLM(run.parts(), t, workers);
        computeClusterSizes(run.maps, thresholds, false, workers);
        append<double>(bytes, run.glm.values.span());
        appendMaps(bytes, run.maps);
    }
    return bytes;
}

WholeRunDesign wholeDesign(const GLMTestRun& run) {
    WholeRunDesign whole;
    whole.studies.emplace_back().dataPoints = nrOfVolumes;
    whole.predictors.resize(size_t(run.design.NrOfPredictors));
    for (int j = 0; j < run.design.NrOfPredictors; ++j)
        whole.conditionOfColumn.push_back(j < run.design.NrOfConditionPredictors ? j : -1);
    for (size_t t = 0; t < nrOfVolumes; ++t)
        for (size_t j = 0; j < whole.predictors.size(); ++j)
            whole.GLMDesign.push_back(run.design.PredictorColumns[j][t]);
    whole.CorrectSerialCorrelations = true;
    return whole;
}

/// The model of the complete run and its maps.
std::vector<std::byte> complete(const Case& each, WorkerPool& workers) {
    GLMTestRun run = preparedRun(each);
    RunInMemory samples(run.project);
    RecordedProgress progress;
    WholeRunModel model;
    EXPECT_EQ(fitWholeRunModel(model, wholeDesign(run), each.size, samples, progress, workers),
              WholeRunFit::Done);
    EXPECT_TRUE(computeContrastMaps(model, run.mask, run.contrasts, run.maps, workers));
    std::vector<std::byte> bytes;
    append<float>(bytes, model.GLMMaps.span());
    append<float>(bytes, std::array{model.MeanAR1Before, model.MeanAR1After});
    appendMaps(bytes, run.maps);
    return bytes;
}

TEST(GLMThreads, AnyNumberGivesTheSameBits) {
    const Case cases[] = {{"several parts", {67, 61, 5}, 2},
                          {"without all directions", {67, 61, 5}, 10},
                          {"one inner slice", {83, 71, 3}, 1},
                          {"less than a part", {7, 6, 5}, 1},
                          {"one slice, so that the mask is empty", {13, 11, 1}, 1}};
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        const std::vector<std::byte> liveAlone = live(each, callersThread());
        const std::vector<std::byte> completeAlone = complete(each, callersThread());
        for (const int threads : {2, 3, 5}) {
            WorkerPool workers(threads);
            EXPECT_TRUE(live(each, workers) == liveAlone) << threads << " threads";
            EXPECT_TRUE(complete(each, workers) == completeAlone) << threads << " threads";
        }
    }
}

} // namespace
