// Time of the classifier's step during a run: design, estimation, prediction.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/live_classifier.h"
#include "processor_time.h"

#include <algorithm>
#include <cstdio>
#include <random>

namespace {

constexpr VolumeSize runSize{104, 104, 40};
constexpr int nrOfVolumes = 100;
constexpr int nrOfVoxels = 2000;
constexpr int nrOfExemplars = 60;

SVMModel modelOf(SVMKernel kernel, int classes) {
    std::mt19937 random(3);
    std::normal_distribution<double> noise;
    PatternSet patterns;
    patterns.nrOfFeatures = nrOfVoxels;
    std::vector<double> values(size_t{nrOfVoxels});
    for (int i = 0; i < nrOfExemplars; ++i) {
        std::ranges::generate(values, [&] { return noise(random); });
        patterns.append(classes == 2 ? 1 - 2 * (i % 2) : 1 + i % classes, values);
    }
    SVMModel model;
    if (SVMTrainer().train(patterns, {.kernel = kernel}, model) != SVMResult::Done)
        std::printf("no model\n");
    return model;
}

/// Median and longest time over volumes that are all predicted.
void printStep(const RunVolumes& volumes, const char* name, PredictionMode mode, SVMModel model) {
    VoxelList voxels;
    for (int i = 0; i < nrOfVoxels; ++i)
        voxels.append(i * 37 % runSize.x, i * 11 % runSize.y, i % runSize.slices);
    StimulationProtocol protocol;
    protocol.conditions.resize(2);
    protocol.conditions[1].nrOfIntervals = 1;
    LiveOptions options = defaultLiveOptions();
    options.mode = mode;
    options.pointPreOnset = 11;
    options.trial.postOnset = 12; // 14 volumes in both modes
    LiveClassifier classifier;
    classifier.start(std::move(model), std::move(voxels));
    std::vector<double> times;
    QString fault;
    for (int volume = 30; volume < nrOfVolumes; ++volume) {
        protocol.conditions[1].from[0] = volume - 11; // each one is a trial's last
        protocol.conditions[1].to[0] = volume;
        bool made = false;
        times.push_back(milliseconds([&] {
            made = classifier
                       .step({volumes, runSize, protocol, volume, nrOfVolumes, 2000.0f}, options,
                             fault)
                       .has_value();
        }));
        if (!made)
            std::printf("no prediction at volume %d\n", volume);
    }
    std::ranges::sort(times);
    std::printf("%-40s %8.3f %8.3f\n", name, times[times.size() / 2], times.back());
}

} // namespace

int main() {
    RunVolumes volumes;
    if (!volumes.allocate(size_t{nrOfVolumes}, runSize.samples()))
        return 1;
    std::mt19937 random(1);
    for (size_t v = 0; v < volumes.size(); ++v)
        for (int16_t& sample : volumes[v])
            sample = int16_t(800 + int(random() % 400));
    std::printf("%d voxels, windows of 14 volumes, %d support vectors at most; milliseconds of "
                "processor time\n",
                nrOfVoxels, nrOfExemplars);
    std::printf("%-40s %8s %8s\n", "step", "median", "longest");
    printStep(volumes, "end of trial, linear", PredictionMode::EndOfTrial,
              modelOf(SVMKernel::Linear, 2));
    printStep(volumes, "within condition, linear", PredictionMode::WithinCondition,
              modelOf(SVMKernel::Linear, 2));
    printStep(volumes, "within condition, RBF, 4 classes", PredictionMode::WithinCondition,
              modelOf(SVMKernel::RBF, 4));
    return 0;
}
