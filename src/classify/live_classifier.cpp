// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/live_classifier.h"

#include "classify/trial_fit.h"
#include "classify/voxels_file.h"

QString predictionLine(const LivePrediction& prediction) {
    const CurrentTrial& trial = prediction.trial;
    const QString beginning =
        QStringLiteral("Time point: %1  last trial onset: %2 duration: %3  condition id: %4")
            .arg(prediction.twoClasses ? prediction.volume : prediction.volume + 1, 4)
            .arg(trial.onset, 4)
            .arg(trial.duration() + 1, 3)
            .arg(trial.condition + 1, 2);
    const QString value =
        prediction.twoClasses
            ? QStringLiteral("  predicted value: %1").arg(prediction.prediction.output, 9, 'g')
            : QString();
    return beginning + value +
           QStringLiteral("  predicted class: %1").arg(prediction.prediction.classNumber, 2);
}

QString misfitLine(size_t nrOfVoxels, int nrOfFeatures) {
    return "Classifier does not fit to test data! " + mismatchText(nrOfVoxels, nrOfFeatures);
}

void LiveClassifier::start(SVMModel model, VoxelList voxels) {
    model_ = std::move(model);
    restart(std::move(voxels));
}

void LiveClassifier::restart(VoxelList voxels) {
    voxels_ = std::move(voxels);
    patterns_ = {};
    patterns_.nrOfFeatures = nrOfVoxels();
    pairValues_.clear();
    predictedClass_ = 0;
    LastProcessedOnset_ = 0;
}

void LiveClassifier::stop() {
    model_ = {};
    pairValues_.clear();
    predictedClass_ = 0;
}

std::optional<LiveWindow> LiveClassifier::dueWindow(const CurrentTrial& trial, const LiveRun& run,
                                                    const LiveOptions& options) const {
    switch (options.mode) {
    case PredictionMode::EndOfTrial:
        if (trial.onset == LastProcessedOnset_) // one prediction for each trial
            return {};
        return windowAtEndOfTrial(trial, options.trial, run.volume, run.nrOfVolumes, run.TR);
    case PredictionMode::WithinCondition:
        return windowWithinCondition(trial, options, run.volume, run.nrOfVolumes);
    case PredictionMode::Continuous:
        return {};
    }
    return {};
}

QString LiveClassifier::faultOf(const LiveRun& run) const {
    if (nrOfVoxels() != model_.nrOfFeatures())
        return misfitLine(voxels_.size(), model_.nrOfFeatures());
    return voxelsInside(voxels_, run.size)
               ? QString()
               : QStringLiteral("No prediction: some voxels of the training lie outside this run");
}

std::vector<double> LiveClassifier::pattern(LiveWindow window, const LiveRun& run,
                                            const TrialOptions& options) const {
    std::vector<size_t> places(voxels_.size());
    for (size_t i = 0; i < places.size(); ++i)
        places[i] = voxels_.offset(i, run.size);
    std::vector<float> values(places.size());
    const TrialFit fit{std::move(window.design), options.estimate, options.zNormalization};
    estimateVoxels(fit, run.volumes, window.volumes, places, values);
    return {values.begin(), values.end()};
}

std::optional<LivePrediction> LiveClassifier::step(const LiveRun& run, const LiveOptions& options,
                                                   QString& fault) {
    pairValues_.clear();
    predictedClass_ = 0;
    const CurrentTrial trial = currentTrial(run.protocol, run.volume);
    std::optional<LiveWindow> window =
        isPredicting() ? dueWindow(trial, run, options) : std::nullopt;
    // A design that found no memory is empty.
    if (!window || size_t(window->design.nrOfPoints) != window->volumes.size())
        return {};
    LastProcessedOnset_ = trial.onset;
    fault = faultOf(run);
    if (!fault.isEmpty())
        return {};
    const std::vector<double> features = pattern(std::move(*window), run, options.trial);
    LivePrediction made{run.volume, trial, predict(model_, features), nrOfClasses() == 2};
    pairValues_.assign(made.prediction.pairValues.begin(), made.prediction.pairValues.end());
    predictedClass_ = made.prediction.classNumber;
    patterns_.append(0.0, features);
    return made;
}
