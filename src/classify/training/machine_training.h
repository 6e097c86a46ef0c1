// Training a machine with patterns: scaling, folds or the search for C, and the training itself.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "classify/svm_tasks.h"
#include "classify/training/classifier_training.h"

/// Why no machine can be trained with these patterns and options; empty when one can: labels are
/// whole numbers of at least two classes, features exist and are finite and not too large, C is
/// above 0.
[[nodiscard]] QString faultOfTraining(const PatternSet& patterns, const SVMOptions& options);

/// What a training gives.
struct TrainedMachine {
    SVMResult result = SVMResult::Done;
    SVMOptions options; ///< with the C that was used
    SVMModel model;
    PredictionReport predictions; ///< of the patterns
};
/// Cross-validates or searches C if the choices say so, and trains. The patterns are scaled, and
/// without a fault. Lines go to `log` as they come.
[[nodiscard]] TrainedMachine trainMachine(const PatternSet& patterns,
                                          const TrainingChoices& choices,
                                          const std::function<void(const QString&)>& log,
                                          ProgressReporter& progress);

/// It has support vectors and finite constants; it has not where a kernel's values overflowed.
[[nodiscard]] bool isUsable(const SVMModel& model);

/// "Model_..." beside the patterns: of their name, what stands before and at the first "_" goes if
/// it begins with "Train" or "Learn".
[[nodiscard]] QString modelPathOf(const QString& patternPath);
/// Writes the model and its scaling, both or none. False after a message.
[[nodiscard]] bool saveMachine(const QString& path, const SVMModel& model,
                               const FeatureScaling& scaling);
/// Reads the scaling beside a model; none where there is no such file. False after a message.
[[nodiscard]] bool readScalingOfModel(const QString& modelPath, FeatureScaling& scaling);
/// The scaling was learnt from patterns of this many features.
[[nodiscard]] bool scalingFits(const FeatureScaling& scaling, int nrOfFeatures);
