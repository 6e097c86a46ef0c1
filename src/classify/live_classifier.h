// The classifier of a run: it is given volumes, and knows neither widgets nor a session.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "classify/live_trial.h"
#include "classify/svm_prediction.h"
#include "regions/region_of_interest.h"
#include "volume/run_volumes.h"

#include <QStringList>

/// The run as far as it is measured.
struct LiveRun {
    const RunVolumes& volumes;
    VolumeSize size;
    const StimulationProtocol& protocol;
    int volume = 0;      ///< that was measured last, index from 0
    int nrOfVolumes = 0; ///< of the whole run
    float TR = 2000.0f;  ///< milliseconds
};

/// One prediction.
struct LivePrediction {
    int volume = 0; ///< index from 0
    CurrentTrial trial;
    SVMPrediction prediction;
    bool twoClasses = true;
};
/// Its line in the log. The time point counts from 0 for two classes, and from 1 for more.
[[nodiscard]] QString predictionLine(const LivePrediction& prediction);
/// Of a model with another number of features than there are voxels.
[[nodiscard]] QString misfitLine(size_t nrOfVoxels, int nrOfFeatures);

/// Estimates the current trial the way it is done offline, and asks the model.
class LiveClassifier {
public:
    /// Predicts from now on with these voxels, in the order of the model's features. Patterns and
    /// the trial that was predicted last are forgotten.
    void start(SVMModel model, VoxelList voxels);
    /// The same with the model that it has.
    void restart(VoxelList voxels);
    /// The model and the output go; the patterns stay until the next start.
    void stop();
    [[nodiscard]] bool isPredicting() const { return !model_.isEmpty(); }
    [[nodiscard]] const SVMModel& model() const { return model_; }
    [[nodiscard]] int nrOfVoxels() const { return int(voxels_.size()); }

    /// The step of a volume. Nothing where there is none to make: output is invalid then. A
    /// mismatch of model, voxels and run is said in `fault` where a prediction was due.
    [[nodiscard]] std::optional<LivePrediction> step(const LiveRun& run, const LiveOptions& options,
                                                     QString& fault);

    [[nodiscard]] int nrOfClasses() const { return model_.nrOfClasses(); }
    /// Of the last step; empty when it made no prediction.
    [[nodiscard]] std::span<const float> pairValues() const { return pairValues_; }
    [[nodiscard]] int predictedClass() const { return predictedClass_; } ///< from 1
    [[nodiscard]] bool outputValid() const { return !pairValues_.empty(); }
    /// The estimated patterns since the start, with label 0.
    [[nodiscard]] const PatternSet& patterns() const { return patterns_; }

private:
    [[nodiscard]] std::optional<LiveWindow> dueWindow(const CurrentTrial& trial, const LiveRun& run,
                                                      const LiveOptions& options) const;
    [[nodiscard]] QString faultOf(const LiveRun& run) const;
    [[nodiscard]] std::vector<double> pattern(LiveWindow window, const LiveRun& run,
                                              const TrialOptions& options) const;

    SVMModel model_;
    VoxelList voxels_;
    std::vector<float> pairValues_;
    int predictedClass_ = 0;
    int LastProcessedOnset_ = 0;
    PatternSet patterns_;
};
